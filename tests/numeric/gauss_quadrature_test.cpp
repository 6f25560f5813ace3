// Each Gauss rule integrates x^k exactly against its weight for k up to
// 2n - 1; the moments are closed forms.

#include "numeric/gauss_quadrature.hpp"

#include <gtest/gtest.h>

#include <cmath>

using namespace zentable;

namespace {

// The relative error of the rule on x^k, against the sum of the sizes of its
// terms, which is what rounding scales with.
double error(const QuadratureRule& rule, int k, double exact) {
    double sum = 0.0, size = 0.0;
    for (std::size_t i = 0; i < rule.abscissas.size(); ++i) {
        const double term = rule.weights[i] * std::pow(rule.abscissas[i], k);
        sum += term;
        size += std::fabs(term);
    }
    return std::fabs(sum - exact) / std::max(size, 1.0);
}

TEST(GaussRules, IntegrateEveryPowerUpTo2nMinus1) {
    const double lower = -0.5, upper = 2.0;
    for (int n = 2; n <= 12; ++n) {
        const QuadratureRule legendre = gauss_legendre_rule(n, lower, upper);
        const QuadratureRule laguerre = gauss_laguerre_rule(n);
        const QuadratureRule hermite = gauss_hermite_rule(n);
        for (int k = 0; k <= 2 * n - 1; ++k) {
            // The Legendre weights come from the last-but-one Newton iterate,
            // whose stop at 3e-11 leaves about 1e-9.
            const double segment = (std::pow(upper, k + 1) - std::pow(lower, k + 1)) / (k + 1);
            EXPECT_LT(error(legendre, k, segment), 1e-9) << n << " " << k;
            // Integral of x^k e^-x over [0, inf) is k!.
            EXPECT_LT(error(laguerre, k, std::tgamma(k + 1.0)), 1e-12) << n << " " << k;
            // Integral of x^k e^-x^2 over the line: Gamma((k + 1) / 2) for even k.
            const double line = k % 2 == 0 ? std::tgamma((k + 1) / 2.0) : 0.0;
            EXPECT_LT(error(hermite, k, line), 1e-12) << n << " " << k;
        }
    }
}

}  // namespace
