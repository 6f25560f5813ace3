#include "numeric/incomplete_beta.hpp"

#include <cmath>

namespace zentable {

double gammln(double x) {
    static const double cof[6] = {76.18009172947146,  -86.50532032941678,   24.01409824083091,
                                  -1.231739572450155, 0.001208650973866179, -5.395239384953e-06};
    double y = x;
    double tmp = x + 5.5;
    tmp -= (x + 0.5) * std::log(tmp);
    double ser = 1.000000000190015;
    for (double c : cof) {
        y += 1.0;
        ser += c / y;
    }
    return -tmp + std::log(2.5066282746310007 * ser / x);
}

double betacf(double a, double b, double x) {
    const int max_rounds = 100;
    const double eps = 3e-07;
    // Stands in for a zero denominator so that Lentz's ratios stay finite.
    const double tiny = 1e-30;

    const double qab = a + b;
    const double qap = a + 1.0;
    const double qam = a - 1.0;
    double c = 1.0;
    double d = 1.0 - qab * x / qap;
    if (std::fabs(d) < tiny)
        d = tiny;
    d = 1.0 / d;
    double h = d;
    for (int m = 1; m <= max_rounds; ++m) {
        const int m2 = 2 * m;
        // The even step of the fraction.
        double aa = m * (b - m) * x / ((qam + m2) * (a + m2));
        d = 1.0 + aa * d;
        if (std::fabs(d) < tiny)
            d = tiny;
        c = 1.0 + aa / c;
        if (std::fabs(c) < tiny)
            c = tiny;
        d = 1.0 / d;
        h *= d * c;
        // The odd step.
        aa = -(a + m) * (qab + m) * x / ((a + m2) * (qap + m2));
        d = 1.0 + aa * d;
        if (std::fabs(d) < tiny)
            d = tiny;
        c = 1.0 + aa / c;
        if (std::fabs(c) < tiny)
            c = tiny;
        d = 1.0 / d;
        const double del = d * c;
        h *= del;
        if (std::fabs(del - 1.0) < eps)
            return h;
    }
    throw "a or b too big, or MAXIT too small in function betacf()";
}

double betai(double a, double b, double x) {
    if (x < 0.0 || x > 1.0)
        throw "x should be in [0, 1] in function betai()";
    double bt = 0.0;
    if (x != 0.0 && x != 1.0) {
        bt = std::exp(gammln(a + b) - gammln(a) - gammln(b) + a * std::log(x) +
                      b * std::log(1.0 - x));
    }
    // The fraction converges fast only on the near side of the mean; beyond
    // it the symmetry I_x(a, b) = 1 - I_{1-x}(b, a) is used instead.
    if (x < (a + 1.0) / (a + b + 2.0))
        return bt * betacf(a, b, x) / a;
    return 1.0 - bt * betacf(b, a, 1.0 - x) / b;
}

double f_cdf(double f, double df1, double df2) {
    if (!(f > 0.0))
        return 0.0;
    return betai(df1 / 2.0, df2 / 2.0, f * df1 / (f * df1 + df2));
}

double f_upper(double f, double df1, double df2) {
    if (!(f > 0.0))
        return 1.0;
    return betai(df2 / 2.0, df1 / 2.0, df2 / (f * df1 + df2));
}

}  // namespace zentable
