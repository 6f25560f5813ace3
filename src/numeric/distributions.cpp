#include "numeric/distributions.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/non_central_chi_squared.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>

#include "numeric/incomplete_beta.hpp"

namespace zentable {

namespace {

const double kSqrt2 = 1.4142135623730951;
const double kTwoOverSqrtPi = 1.1283791670955126;
// Where the normal quantile is cut off at p = 0 and p = 1.
const double kQuantileBound = std::sqrt(1352.0);  // 26 sqrt(2), correctly rounded

// The series and the continued fraction stop at the accuracy that the
// p values of the models have always shown.
const int kMaxRounds = 100;
const double kEps = 3e-07;
const double kTiny = 1e-30;

// A failure of the series or the fraction ends the process, with its text on
// standard output, instead of reaching the sheet as a thrown text; gammp
// tests the arguments that it can before either is called.
[[noreturn]] void fatal(const char* text) {
    std::cout << text << std::flush;
    std::exit(1);
}

// Acklam's rational approximation of the standard normal quantile, good to
// about 1e-9 relative; one Halley step against erf or erfc then brings it to
// full precision.
const double kLowTail = 0.02425;

double normal_quantile_central(double q) {  // q = p - 0.5, |q| <= 0.5 - kLowTail
    static const double a[6] = {-3.969683028665376e+01, 2.209460984245205e+02,
                                -2.759285104469687e+02, 1.383577518672690e+02,
                                -3.066479806614716e+01, 2.506628277459239e+00};
    static const double b[5] = {-5.447609879822406e+01, 1.615858368580409e+02,
                                -1.556989798598866e+02, 6.680131188771972e+01,
                                -1.328068155288572e+01};
    const double r = q * q;
    const double num = ((((a[0] * r + a[1]) * r + a[2]) * r + a[3]) * r + a[4]) * r + a[5];
    const double den = ((((b[0] * r + b[1]) * r + b[2]) * r + b[3]) * r + b[4]) * r + 1.0;
    return num * q / den;
}

double normal_quantile_lower_tail(double p) {  // 0 < p < kLowTail
    static const double c[6] = {-7.784894002430293e-03, -3.223964580411365e-01,
                                -2.400758277161838e+00, -2.549732539343734e+00,
                                4.374664141464968e+00,  2.938163982698783e+00};
    static const double d[4] = {7.784695709041462e-03, 3.224671290700398e-01, 2.445134137142996e+00,
                                3.754408661907416e+00};
    const double q = std::sqrt(-2.0 * std::log(p));
    const double num = ((((c[0] * q + c[1]) * q + c[2]) * q + c[3]) * q + c[4]) * q + c[5];
    const double den = (((d[0] * q + d[1]) * q + d[2]) * q + d[3]) * q + 1.0;
    return num / den;
}

}  // namespace

// ---------------------------------------------------------------------------
// The own layer

double gser(double a, double x) {
    const double gln = gammln(a);
    if (x < 0.0)
        fatal("x less than 0 in routine gser\n");
    if (x == 0.0)
        return 0.0;
    double ap = a;
    double sum = 1.0 / a;
    double del = sum;
    for (int n = 1; n <= kMaxRounds; ++n) {
        ap += 1.0;
        del *= x / ap;
        sum += del;
        if (std::fabs(del) < std::fabs(sum) * kEps)
            return sum * std::exp(-x + a * std::log(x) - gln);
    }
    fatal("a too large, ITMAX too small in routine gser\n");
}

double gcf(double a, double x) {
    const double gln = gammln(a);
    // Modified Lentz; kTiny stands in for a zero denominator.
    double b = x + 1.0 - a;
    double c = 1.0 / kTiny;
    double d = 1.0 / b;
    double h = d;
    for (int i = 1; i <= kMaxRounds; ++i) {
        const double an = -i * (i - a);
        b += 2.0;
        d = an * d + b;
        if (std::fabs(d) < kTiny)
            d = kTiny;
        c = b + an / c;
        if (std::fabs(c) < kTiny)
            c = kTiny;
        d = 1.0 / d;
        const double del = d * c;
        h *= del;
        if (std::fabs(del - 1.0) < kEps)
            return std::exp(-x + a * std::log(x) - gln) * h;
    }
    fatal("a too large, ITMAX too small in gcf\n");
}

double gammp(double a, double x) {
    if (x < 0.0 || a <= 0.0)
        throw "Invalid arguments in function gammp()";
    // The series converges fast below a + 1, the fraction above it.
    if (x < a + 1.0)
        return gser(a, x);
    return 1.0 - gcf(a, x);
}

double gammq(double a, double x) {
    if (x < 0.0 || a <= 0.0)
        throw "Invalid arguments in function gammp()";
    if (x < a + 1.0)
        return 1.0 - gser(a, x);
    return gcf(a, x);
}

double chi_square_cdf(double x, double df) {
    return gammp(df / 2.0, x / 2.0);
}

double chi_square_upper(double x, double df) {
    return gammq(df / 2.0, x / 2.0);
}

double t_cdf(double t, double df) {
    const double h = 0.5 * betai(df / 2.0, 0.5, df / (t * t + df));
    return t <= 0.0 ? h : 1.0 - h;
}

double inverse_erf(double x, double y) {
    // The floor keeps the far tail finite: x of plus or minus 1 maps to about
    // plus or minus 9.3 rather than to an infinity.
    y = std::max(y, 1.1754943508222875e-38);
    if (y >= 0.5) {
        // Near the centre x itself carries the precision.
        const double z = normal_quantile_central(x / 2.0) / kSqrt2;
        const double u = (std::erf(z) - x) / (kTwoOverSqrtPi * std::exp(-z * z));
        return z - u / (1.0 + z * u);
    }
    // In the tails y does: erfc(z) = y is Phi(-sqrt(2) z) = y / 2.
    const double p = y / 2.0;
    double z =
        -(p < kLowTail ? normal_quantile_lower_tail(p) : normal_quantile_central(p - 0.5)) / kSqrt2;
    const double u = -(std::erfc(z) - y) / (kTwoOverSqrtPi * std::exp(-z * z));
    z -= u / (1.0 + z * u);
    return x < 0.0 ? -z : z;
}

double normal_quantile(double p) {
    if (p <= 0.0)
        return -kQuantileBound;
    if (p >= 1.0)
        return kQuantileBound;
    const double x = 2.0 * p - 1.0;
    return kSqrt2 * inverse_erf(x, 1.0 - std::fabs(x));
}

double igami(double a, double q) {
    const double kMaxNum = 1.7976931348623157e+308;
    const double kMachEp = 1.1102230246251565e-16;
    const double kMaxLog = 709.782712893384;
    const double kWidth = 5.551115123125783e-16;

    // The root is bracketed by [x1, x0], where the upper incomplete gamma
    // falls from yh to yl.
    double x0 = kMaxNum;
    double yl = 0.0;
    double x1 = 0.0;
    double yh = 1.0;

    // Wilson-Hilferty start.
    double d = 1.0 / (9.0 * a);
    double y = 1.0 - d - normal_quantile(q) * std::sqrt(d);
    double x = a * y * y * y;
    const double lgm = gammln(a);

    for (int i = 0; i < 10; ++i) {
        if (x > x0 || x < x1)
            break;
        y = 1.0 - gammp(a, x);
        if (y < yl || y > yh)
            break;
        if (y < q) {
            x0 = x;
            yl = y;
        } else {
            x1 = x;
            yh = y;
        }
        d = (a - 1.0) * std::log(x) - x - lgm;
        if (d < -kMaxLog)
            break;
        d = -std::exp(d);  // the derivative of the upper incomplete gamma
        d = (y - q) / d;
        if (std::fabs(d / x) < kMachEp)
            return x;
        x -= d;
    }

    if (x0 == kMaxNum) {
        // Newton never overshot: find an upper bound by growing steps.
        if (x <= 0.0)
            x = 1.0;
        d = 0.0625;
        while (x0 == kMaxNum) {
            x *= 1.0 + d;
            y = 1.0 - gammp(a, x);
            if (y < q)
                x0 = x;
            d += d;
        }
    }

    bool converged = false;
    for (int i = 0; i < 400; ++i) {
        x = x1 + 0.5 * (x0 - x1);
        if (std::fabs((x0 - x1) / (x1 + x0)) < kWidth) {
            converged = true;
            break;
        }
        y = 1.0 - gammp(a, x);
        if (y >= q)
            x1 = x;
        else
            x0 = x;
    }
    if (!converged || x == 0.0)
        std::cout << "igami, underflow\n" << std::flush;
    return x;
}

double chi_square_quantile(double p, double df) {
    // The cap keeps a chi-square cut finite where it stands as a bound.
    if (p <= 0.0)
        return 0.0;
    if (p >= 1.0)
        return 10000.0;
    return 2.0 * igami(df / 2.0, 1.0 - p);
}

// ---------------------------------------------------------------------------
// The Boost.Math layer

double normal_cdf(double z) {
    return boost::math::cdf(boost::math::normal_distribution<double>(0.0, 1.0), z);
}

double normal_upper(double z) {
    return boost::math::cdf(
        boost::math::complement(boost::math::normal_distribution<double>(0.0, 1.0), z));
}

double normal_inv(double p) {
    // Boost would overflow at the ends; a sheet wants a number there.
    if (p <= 0.0)
        return -kQuantileBound;
    if (p >= 1.0)
        return kQuantileBound;
    return boost::math::quantile(boost::math::normal_distribution<double>(0.0, 1.0), p);
}

double student_cdf(double t, double df) {
    return boost::math::cdf(boost::math::students_t_distribution<double>(df), t);
}

double student_inv(double p, double df) {
    return boost::math::quantile(boost::math::students_t_distribution<double>(df), p);
}

double f_cdf_boost(double f, double df1, double df2) {
    return boost::math::cdf(boost::math::fisher_f_distribution<double>(df1, df2), f);
}

double f_inv(double p, double df1, double df2) {
    return boost::math::quantile(boost::math::fisher_f_distribution<double>(df1, df2), p);
}

namespace {

void check_chi_df(double df) {
    if (!(df > 0.0))
        throw "df must be positive in chi-squared distribution";
}

void check_nc_chi_df_nc(double df, double nc) {
    if (!(df > 0.0))
        throw "df must be positive in non-central chi-squared distribution";
    if (nc < 0.0)
        throw "nc must be larger than or equal to 0 in non-central chi-squared distribution";
}

}  // namespace

double chi_cdf(double x, double df) {
    if (x < 0.0)
        throw "x must be larger than or equal to 0 in chi-squared distribution";
    check_chi_df(df);
    return boost::math::cdf(boost::math::chi_squared_distribution<double>(df), x);
}

double chi_inv(double p, double df) {
    if (p < 0.0)
        throw "p must be larger than or equal to 0 in chi-squared distribution";
    check_chi_df(df);
    return boost::math::quantile(boost::math::chi_squared_distribution<double>(df), p);
}

double nc_chi_cdf(double x, double df, double nc) {
    if (x < 0.0)
        throw "x must be larger than or equal to 0 in non-central chi-squared distribution";
    check_nc_chi_df_nc(df, nc);
    return boost::math::cdf(boost::math::non_central_chi_squared_distribution<double>(df, nc), x);
}

double nc_chi_inv(double p, double df, double nc) {
    if (p < 0.0)
        throw "p must be larger than or equal to 0 in non-central chi-squared distribution";
    check_nc_chi_df_nc(df, nc);
    return boost::math::quantile(boost::math::non_central_chi_squared_distribution<double>(df, nc),
                                 p);
}

}  // namespace zentable
