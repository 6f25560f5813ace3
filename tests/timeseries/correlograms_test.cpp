#include "timeseries/correlograms.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "../support/tables.hpp"

namespace zentable {
namespace {

dvec ar1(std::size_t n, unsigned seed) {
    std::mt19937 gen(seed);
    std::normal_distribution<double> noise;
    dvec x(n);
    double previous = 0.0;
    for (double& v : x) {
        previous = 0.6 * previous + noise(gen);
        v = 3.0 + previous;
    }
    return x;
}

// The lags summed in blocks, and in two threads on long series, give each
// lag's sum bit for bit as a loop of its own over t does.
TEST(LaggedProducts, EqualTheOneLagLoopBitForBit) {
    for (std::size_t n : {1u, 5u, 17u, 40u, 100000u}) {
        const dvec a = ar1(n, 3), b = ar1(n, 4);
        for (int maxLag : {1, 15, 16, 45, 100}) {
            const dvec blocked = lagged_products(a, b, maxLag);
            ASSERT_EQ(blocked.size(), static_cast<std::size_t>(maxLag) + 1);
            for (std::size_t k = 0; k < blocked.size(); ++k) {
                double plain = 0.0;
                for (std::size_t t = 0; t + k < n; ++t)
                    plain += a[t] * b[t + k];
                ASSERT_EQ(std::memcmp(&blocked[k], &plain, sizeof plain), 0)
                    << "n " << n << ", lag " << k << ": " << blocked[k] << " against " << plain;
            }
        }
    }
}

// Durbin-Levinson against its definition: the partial autocorrelation at lag
// k is the last coefficient of the Yule-Walker system of order k, solved here
// in long double by elimination.
TEST(PartialAutocorrelations, EqualTheLastYuleWalkerCoefficient) {
    const dvec r = autocorrelations(ar1(500, 9), 12);
    const dvec pacf = partial_autocorrelations(r, 12);
    ASSERT_EQ(pacf.size(), 12u);
    for (std::size_t k = 1; k <= 12; ++k) {
        std::vector<std::vector<long double>> toeplitz(k, std::vector<long double>(k));
        std::vector<long double> rhs(k);
        for (std::size_t i = 0; i < k; ++i) {
            for (std::size_t j = 0; j < k; ++j)
                toeplitz[i][j] = r[i > j ? i - j : j - i];
            rhs[i] = r[i + 1];
        }
        const long double last = testing::solve(toeplitz, rhs)[k - 1];
        EXPECT_NEAR(pacf[k - 1], static_cast<double>(last), 1e-14) << "lag " << k;
    }
}

}  // namespace
}  // namespace zentable
