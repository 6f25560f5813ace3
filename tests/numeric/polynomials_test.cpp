#include "numeric/polynomials.hpp"

#include <gtest/gtest.h>

#include <cmath>

using namespace zentable;

namespace {

TEST(PolynomialRoots, GivesBackKnownRootsWithAComplexPair) {
    const cvec roots = {2.0, -0.5, {1.0, 2.0}, {1.0, -2.0}, 3.0};
    // The coefficients of the product of (x - r), expanded in complex numbers.
    cvec c = {1.0};
    for (const cplx& r : roots) {
        cvec next(c.size() + 1, 0.0);
        for (std::size_t k = 0; k < c.size(); ++k) {
            next[k + 1] += c[k];
            next[k] -= r * c[k];
        }
        c = next;
    }
    dvec coefficients;
    for (const cplx& z : c)
        coefficients.push_back(z.real());
    const cvec found = polynomial_roots(coefficients);
    ASSERT_EQ(found.size(), roots.size());
    for (const cplx& r : roots) {
        double nearest = 1e300;
        for (const cplx& z : found)
            nearest = std::min(nearest, std::abs(z - r));
        EXPECT_LT(nearest, 1e-10) << r;
    }
}

TEST(ShiftedLognormal, MomentsInClosedFormGiveTheParametersBack) {
    // X = shift + L with ln L normal (m, s^2): E L^k = exp(k m + k^2 s^2 / 2).
    const double m = -0.3, s = 0.8, shift = -1.5;
    auto moment = [&](int k) { return std::exp(k * m + k * k * s * s / 2.0); };
    const double m1 = shift + moment(1);
    const double m2 = shift * shift + 2.0 * shift * moment(1) + moment(2);
    const double m3 =
        std::pow(shift, 3) + 3.0 * shift * shift * moment(1) + 3.0 * shift * moment(2) + moment(3);
    const ShiftedLognormal p = match_shifted_lognormal(m1, m2, m3);
    EXPECT_NEAR(p.sigma, s, 1e-9);
    EXPECT_NEAR(p.mu, moment(1), 1e-9);
    EXPECT_NEAR(p.shift, shift, 1e-9);
}

}  // namespace
