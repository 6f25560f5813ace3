#include "numeric/gauss_quadrature.hpp"

#include <algorithm>
#include <cmath>

#include "numeric/matrix_cells.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr int kMaxRounds = 10;
constexpr double kTolerance = 3e-14;

int read_points(const CellMatrix& numPoints) {
    constexpr const char* kMessage = "Input numPoints must be an integer larger than 1";
    double n = 0.0;
    read_double_required(numPoints, kMessage, n);
    if (!(n > 1.0) || std::floor(n) != n)
        throw kMessage;
    check_result_size(n + 2.0, 2.0);
    return static_cast<int>(n);
}

CellMatrix rule_table(const char* title, const QuadratureRule& rule) {
    CellMatrix r(rule.abscissas.size() + 2, 2);
    r(0, 0) = title;
    r(1, 0) = "Abscissas";
    r(1, 1) = "Weights";
    for (std::size_t i = 0; i < rule.abscissas.size(); ++i) {
        r(i + 2, 0) = rule.abscissas[i];
        r(i + 2, 1) = rule.weights[i];
    }
    return r;
}

}  // namespace

QuadratureRule gauss_legendre_rule(int n, double lower, double upper) {
    QuadratureRule rule{dvec(n), dvec(n)};
    const int m = (n + 1) / 2;
    const double middle = 0.5 * (upper + lower);
    const double half = 0.5 * (upper - lower);
    for (int i = 1; i <= m; ++i) {
        double z = std::cos(3.141592654 * (i - 0.25) / (n + 0.5));
        double z1 = 0.0;
        double pp = 0.0;
        // The weight takes the derivative at the last-but-one iterate.
        do {
            double p1 = 1.0;
            double p2 = 0.0;
            for (int j = 1; j <= n; ++j) {
                const double p3 = p2;
                p2 = p1;
                p1 = ((2.0 * j - 1.0) * z * p2 - (j - 1.0) * p3) / j;
            }
            pp = n * (z * p1 - p2) / (z * z - 1.0);
            z1 = z;
            z = z1 - p1 / pp;
        } while (std::fabs(z - z1) > 3e-11);
        rule.abscissas[i - 1] = middle - half * z;
        rule.abscissas[n - i] = middle + half * z;
        rule.weights[i - 1] = 2.0 * half / ((1.0 - z * z) * pp * pp);
        rule.weights[n - i] = rule.weights[i - 1];
    }
    return rule;
}

QuadratureRule gauss_laguerre_rule(int n) {
    QuadratureRule rule{dvec(n), dvec(n)};
    double z = 0.0;
    for (int i = 1; i <= n; ++i) {
        if (i == 1) {
            z = 3.0 / (1.0 + 2.4 * n);
        } else if (i == 2) {
            z += 15.0 / (1.0 + 2.5 * n);
        } else {
            const double j = i - 2;
            z += (1.0 + 2.55 * j) / (1.9 * j) * (z - rule.abscissas[i - 3]);
        }
        double p1 = 0.0;
        double p2 = 0.0;
        double pp = 0.0;
        int round = 1;
        for (; round <= kMaxRounds; ++round) {
            p1 = 1.0;
            p2 = 0.0;
            for (int j = 1; j <= n; ++j) {
                const double p3 = p2;
                p2 = p1;
                p1 = ((2.0 * j - 1.0 - z) * p2 - (j - 1.0) * p3) / j;
            }
            pp = (n * p1 - n * p2) / z;
            const double z1 = z;
            z = z1 - p1 / pp;
            if (std::fabs(z - z1) <= kTolerance)
                break;
        }
        if (round > kMaxRounds)
            throw "too many iterations in gaulag";
        rule.abscissas[i - 1] = z;
        // With the weight e^-x the factor Gamma(n + a) / Gamma(n) is 1.
        rule.weights[i - 1] = -1.0 / (pp * n * p2);
    }
    return rule;
}

QuadratureRule gauss_hermite_rule(int n) {
    constexpr double kPiToMinusQuarter = 0.7511255444649425;
    QuadratureRule rule{dvec(n), dvec(n)};
    // Found from the largest root down; the rule is written ascending.
    dvec& x = rule.abscissas;
    const int m = (n + 1) / 2;
    double z = 0.0;
    dvec found(m + 1);
    for (int i = 1; i <= m; ++i) {
        if (i == 1)
            z = std::sqrt(2.0 * n + 1.0) - 1.85575 * std::pow(2.0 * n + 1.0, -0.16667);
        else if (i == 2)
            z -= 1.14 * std::pow(static_cast<double>(n), 0.426) / z;
        else if (i == 3)
            z = 1.86 * z - 0.86 * found[1];
        else if (i == 4)
            z = 1.91 * z - 0.91 * found[2];
        else
            z = 2.0 * z - found[i - 2];
        double pp = 0.0;
        int round = 1;
        for (; round <= kMaxRounds; ++round) {
            double p1 = kPiToMinusQuarter;
            double p2 = 0.0;
            for (int j = 1; j <= n; ++j) {
                const double p3 = p2;
                p2 = p1;
                p1 = z * std::sqrt(2.0 / j) * p2 - std::sqrt((j - 1.0) / j) * p3;
            }
            pp = std::sqrt(2.0 * n) * p2;
            const double z1 = z;
            z = z1 - p1 / pp;
            if (std::fabs(z - z1) <= kTolerance)
                break;
        }
        if (round > kMaxRounds)
            throw "too many iterations in gaussHermite";
        found[i] = z;
        x[n - i] = z;
        x[i - 1] = 0.0 - z;  // +0, not -0, for the middle root of an odd n
        rule.weights[i - 1] = rule.weights[n - i] = 2.0 / (pp * pp);
    }
    return rule;
}

CellMatrix gauss_legendre(const CellMatrix& numPoints, const CellMatrix& lower,
                          const CellMatrix& upper) {
    const int n = read_points(numPoints);
    double a = 0.0;
    double b = 0.0;
    read_double_required(lower, "Input lower must be a number", a);
    read_double_required(upper, "Input upper must be a number", b);
    if (!(a < b))
        throw "Input lower must be less than input upper";
    return rule_table("Gauss_Legendre", gauss_legendre_rule(n, a, b));
}

CellMatrix gauss_laguerre(const CellMatrix& numPoints) {
    return rule_table("Gauss_Laguerre", gauss_laguerre_rule(read_points(numPoints)));
}

CellMatrix gauss_hermite(const CellMatrix& numPoints) {
    return rule_table("Gauss_Hermite", gauss_hermite_rule(read_points(numPoints)));
}

}  // namespace zentable
