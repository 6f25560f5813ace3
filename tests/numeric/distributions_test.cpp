#include "numeric/distributions.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include "thrown_text.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <string>

using namespace zentable;

namespace {

const double kPi = std::acos(-1.0);
const double kBound = 36.76955262170047;  // 26 sqrt(2)

// The standard normal distribution function of the C library, apart from
// both layers.
double phi(double z) {
    return 0.5 * std::erfc(-z / std::sqrt(2.0));
}

}  // namespace

// ---------------------------------------------------------------------------
// The own layer

TEST(IncompleteGamma, ClosedFormsAndInvalidArguments) {
    // P(1, x) = 1 - exp(-x) and P(1/2, x) = erf(sqrt(x)), on both sides of
    // a + 1 where the series hands over to the fraction.
    for (double x : {0.01, 0.3, 1.4, 1.6, 1.99, 2.0, 7.0, 20.0}) {
        EXPECT_NEAR(gammp(1.0, x), 1.0 - std::exp(-x), 3e-7) << x;
        EXPECT_NEAR(gammp(0.5, x), std::erf(std::sqrt(x)), 3e-7) << x;
    }
    // By hand: P(2, 1) = 1 - 2/e and Q(2, 5) = 6 exp(-5).
    EXPECT_NEAR(gser(2.0, 1.0), 1.0 - 2.0 / std::exp(1.0), 1e-7);
    EXPECT_NEAR(gcf(2.0, 5.0), 6.0 * std::exp(-5.0), 1e-8);
    EXPECT_EQ(gammp(3.0, 0.0), 0.0);

    const std::string invalid = "Invalid arguments in function gammp()";
    EXPECT_EQ(THROWN_TEXT(gammp(2.0, -0.5)), invalid);
    EXPECT_EQ(THROWN_TEXT(gammp(0.0, 1.0)), invalid);
    EXPECT_EQ(THROWN_TEXT(gammp(-1.0, 1.0)), invalid);
}

// The stops write to standard output and end the process with status 1; the
// child sends standard output to standard error, where the text can be matched.
#define EXPECT_FATAL(call, text)                  \
    EXPECT_EXIT(                                  \
        {                                         \
            dup2(fileno(stderr), fileno(stdout)); \
            call;                                 \
        },                                        \
        ::testing::ExitedWithCode(1), text)

TEST(IncompleteGammaDeathTest, FatalStopsEndTheProcess) {
    EXPECT_FATAL(gser(1.0, -1.0), "x less than 0 in routine gser");
    // Near x = a the terms of a large a fall too slowly for 100 rounds.
    EXPECT_FATAL(gser(1e6, 1e6), "a too large, ITMAX too small in routine gser");
    EXPECT_FATAL(gcf(1e6, 1e6 + 10.0), "a too large, ITMAX too small in gcf");
}

TEST(OwnLayer, ClosedFormsAndBoostToItsOwnAccuracy) {
    // One degree of freedom is the Cauchy distribution.
    for (double t : {-30.0, -0.4, 0.0, 3.0, 100.0})
        EXPECT_NEAR(t_cdf(t, 1.0), 0.5 + std::atan(t) / kPi, 3e-7) << t;
    EXPECT_EQ(t_cdf(0.0, 7.0), 0.5);

    double chi_worst = 0.0;
    double t_worst = 0.0;
    for (double df : {1.0, 2.0, 3.0, 5.0, 10.0, 30.0, 100.0, 200.0}) {
        const boost::math::chi_squared_distribution<double> chi(df);
        for (double x = 0.01; x < 3.0 * df + 30.0; x *= 1.1)
            chi_worst = std::max(chi_worst, std::fabs(chi_square_cdf(x, df) - cdf(chi, x)));
        const boost::math::students_t_distribution<double> t(df);
        for (double v = -20.0; v < 20.0; v += 0.173)
            t_worst = std::max(t_worst, std::fabs(t_cdf(v, df) - cdf(t, v)));
    }
    // The series and fractions stop at 3e-07: the difference shows, within that.
    EXPECT_LT(chi_worst, 3e-7);
    EXPECT_GT(chi_worst, 1e-8);
    EXPECT_LT(t_worst, 3e-7);
    EXPECT_GT(t_worst, 1e-12);
}

TEST(InverseErf, FullPrecisionAndFiniteEnds) {
    EXPECT_EQ(inverse_erf(0.0, 1.0), 0.0);
    // Below the resolution of 1 - |x| the centre keeps x itself.
    EXPECT_NEAR(inverse_erf(1e-20, 1.0), std::sqrt(kPi) / 2.0 * 1e-20, 1e-35);
    for (double x = -0.999; x < 1.0; x += 0.0123) {
        const double z = inverse_erf(x, 1.0 - std::fabs(x));
        EXPECT_NEAR(std::erf(z), x, 4e-16) << x;
        EXPECT_NEAR(z, boost::math::erf_inv(x), 1e-15 * std::max(1.0, std::fabs(z))) << x;
    }
    // In the tails y carries the precision that x has lost; erfc changes by
    // 2 z^2 times a relative change of z.
    for (double y : {0.4, 1e-3, 1e-17, 1e-37}) {
        const double z = inverse_erf(1.0 - y, y);
        EXPECT_NEAR(std::erfc(z) / y, 1.0, 8e-16 * z * z + 1e-15) << y;
        EXPECT_EQ(inverse_erf(y - 1.0, y), -z) << y;
    }
    // y is floored, so that x of 1 stays finite.
    const double end = inverse_erf(1.0, 0.0);
    EXPECT_EQ(end, inverse_erf(1.0, 1.1754943508222875e-38));
    EXPECT_EQ(end, inverse_erf(1.0, 1e-300));
    EXPECT_NEAR(end, boost::math::erfc_inv(1.1754943508222875e-38), 1e-14);
}

TEST(NormalQuantile, EndsAndRoundTrip) {
    EXPECT_EQ(normal_quantile(0.0), -kBound);
    EXPECT_EQ(normal_quantile(-0.3), -kBound);
    EXPECT_EQ(normal_quantile(1.0), kBound);
    EXPECT_EQ(normal_quantile(0.5), 0.0);
    EXPECT_NEAR(normal_quantile(0.975), 1.959963984540054, 1e-15);
    // 2p - 1 is rounded before the tail sees it: p is good to 1e-16 absolute.
    for (double p : {1e-12, 0.001, 0.0243, 0.0244, 0.6, 0.999})
        EXPECT_NEAR(phi(normal_quantile(p)), p, 1.2e-16 + 1e-15 * p) << p;
}

TEST(ChiSquareQuantile, IgamiAgainstClosedFormsAndBoost) {
    EXPECT_EQ(chi_square_quantile(0.0, 3.0), 0.0);
    EXPECT_EQ(chi_square_quantile(-1.0, 3.0), 0.0);
    EXPECT_EQ(chi_square_quantile(1.0, 3.0), 10000.0);
    EXPECT_EQ(chi_square_quantile(1.5, 3.0), 10000.0);
    // Two degrees of freedom: Q(1, x / 2) = exp(-x / 2).
    for (double p : {0.01, 0.5, 0.9999}) {
        const double exact = -2.0 * std::log(1.0 - p);
        EXPECT_NEAR(chi_square_quantile(p, 2.0), exact, 1e-6 * exact) << p;
    }
    // igami is as good as the 3e-07 of gammp lets it be.
    for (double a : {0.5, 1.0, 2.5, 5.0, 25.0, 100.0}) {
        for (double q : {1e-8, 0.001, 0.05, 0.3, 0.5, 0.7, 0.95, 0.999, 0.99999999}) {
            const double x = igami(a, q);
            EXPECT_NEAR(boost::math::gamma_q(a, x), q, 3e-7) << a << ", " << q;
            EXPECT_NEAR(x, boost::math::gamma_q_inv(a, q), 1e-6 * x) << a << ", " << q;
        }
    }
}

// ---------------------------------------------------------------------------
// The Boost.Math layer

// The prob_ commands state the rest of this layer; the central chi-squared
// wrappers have no command yet, and the commands test nc before the layer can.
TEST(BoostLayer, CentralChiSquaredAndTheTestsNoCommandReaches) {
    EXPECT_NEAR(chi_cdf(3.0, 2.0), 1.0 - std::exp(-1.5), 1e-15);
    EXPECT_NEAR(chi_inv(0.5, 2.0), 2.0 * std::log(2.0), 1e-15);

    const std::string chi = " in chi-squared distribution";
    EXPECT_EQ(THROWN_TEXT(chi_cdf(-0.1, 0.0)), "x must be larger than or equal to 0" + chi);
    EXPECT_EQ(THROWN_TEXT(chi_cdf(1.0, 0.0)), "df must be positive" + chi);
    EXPECT_EQ(THROWN_TEXT(chi_inv(-0.1, -2.0)), "p must be larger than or equal to 0" + chi);
    EXPECT_EQ(THROWN_TEXT(chi_inv(0.5, -2.0)), "df must be positive" + chi);
    const std::string nc =
        "nc must be larger than or equal to 0 in non-central chi-squared distribution";
    EXPECT_EQ(THROWN_TEXT(nc_chi_cdf(1.0, 2.0, -1.0)), nc);
    EXPECT_EQ(THROWN_TEXT(nc_chi_inv(0.5, 3.0, -0.01)), nc);
    try {
        chi_inv(1.5, 3.0);
        ADD_FAILURE() << "nothing thrown";
    } catch (const std::domain_error& e) {
        EXPECT_NE(std::string(e.what()).find("Probability argument is 1.5"), std::string::npos);
    }
}
