#include <gtest/gtest.h>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/normal.hpp>

// The 95% point of a chi-squared with one degree of freedom is the square of
// the two-sided 95% normal point, 1.959963984540054.
TEST(BoostMath, ChiSquaredQuantileIsSquaredNormalQuantile) {
    const double z = 1.959963984540054;
    const double q =
        boost::math::quantile(boost::math::chi_squared_distribution<double>(1.0), 0.95);
    EXPECT_NEAR(q, z * z, 1e-12);
    EXPECT_NEAR(q, 3.841458820694124, 1e-12);
}
