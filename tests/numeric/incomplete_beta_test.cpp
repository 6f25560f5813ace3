#include "numeric/incomplete_beta.hpp"

#include <gtest/gtest.h>

#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/special_functions/beta.hpp>
#include "thrown_text.hpp"

#include <algorithm>
#include <cmath>
#include <string>

using namespace zentable;

TEST(Gammln, MatchesLogGamma) {
    // The Lanczos sum is good to about 2e-10 relative.
    for (double x : {0.5, 1.0, 1.5, 2.0, 3.7, 10.0, 55.5, 100.0, 1000.0}) {
        const double exact = std::lgamma(x);
        EXPECT_NEAR(gammln(x), exact, 2e-10 * std::max(1.0, std::fabs(exact))) << x;
    }
    EXPECT_NEAR(gammln(0.5), std::log(std::sqrt(std::acos(-1.0))), 1e-10);
    EXPECT_NEAR(gammln(6.0), std::log(120.0), 1e-10);
}

TEST(Betai, ClosedForms) {
    for (double x : {0.0, 0.01, 0.2, 0.5, 0.77, 0.99, 1.0}) {
        EXPECT_NEAR(betai(1, 1, x), x, 1e-7) << x;
        EXPECT_NEAR(betai(3.5, 1, x), std::pow(x, 3.5), 1e-7) << x;
        EXPECT_NEAR(betai(1, 2.5, x), 1.0 - std::pow(1.0 - x, 2.5), 1e-7) << x;
    }
    EXPECT_EQ(betai(2, 3, 0.0), 0.0);
    EXPECT_EQ(betai(2, 3, 1.0), 1.0);
    // By symmetry the median of B(a, a) is 1/2.
    EXPECT_NEAR(betai(7.3, 7.3, 0.5), 0.5, 1e-7);
}

TEST(Betai, AgreesWithBoostToSevenDigits) {
    for (double a : {0.5, 1.5, 4.0, 12.5, 40.0})
        for (double b : {0.5, 2.0, 7.5, 30.0})
            for (double x : {0.001, 0.05, 0.3, 0.5, 0.8, 0.97})
                EXPECT_NEAR(betai(a, b, x), boost::math::ibeta(a, b, x), 3e-7)
                    << a << ", " << b << ", " << x;
}

TEST(Betai, Failures) {
    const std::string range = "x should be in [0, 1] in function betai()";
    EXPECT_EQ(THROWN_TEXT(betai(2, 3, -0.01)), range);
    EXPECT_EQ(THROWN_TEXT(betai(2, 3, 1.01)), range);
    // Near the mean of a very peaked beta the fraction needs far more than
    // 100 rounds.
    EXPECT_EQ(THROWN_TEXT(betai(1e6, 1e6, 0.5)),
              "a or b too big, or MAXIT too small in function betacf()");
}

TEST(FCdf, AgreesWithBoost) {
    for (double df1 : {1.0, 2.0, 5.0, 12.0}) {
        for (double df2 : {1.0, 3.0, 10.0, 60.0}) {
            const boost::math::fisher_f_distribution<double> dist(df1, df2);
            for (double f : {0.05, 0.5, 1.0, 2.5, 8.0, 40.0})
                EXPECT_NEAR(f_cdf(f, df1, df2), boost::math::cdf(dist, f), 3e-7)
                    << df1 << ", " << df2 << ", " << f;
        }
    }
    // With 2 and 2 degrees of freedom the distribution function is f / (1 + f).
    EXPECT_NEAR(f_cdf(3.0, 2, 2), 0.75, 1e-7);
    EXPECT_EQ(f_cdf(0.0, 3, 4), 0.0);
    EXPECT_EQ(f_cdf(-1.0, 3, 4), 0.0);
}
