#include "timeseries/arima.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>

namespace zentable {
namespace {

// The conditional sum of squares exactly as written: one loop over t, the AR
// terms then the MA terms, every coefficient taken, zeros included.
double plain_css(const dvec& y, double mean, const dvec& a, const dvec& m, std::size_t start,
                 dvec& f) {
    dvec e(y.size(), 0.0);
    f.assign(y.size(), 0.0);
    double sse = 0.0;
    for (std::size_t t = start; t < y.size(); ++t) {
        double value = mean;
        for (std::size_t i = 1; i <= a.size(); ++i)
            value += (y[t - i] - mean) * a[i - 1];
        for (std::size_t j = 1; j <= std::min(m.size(), t); ++j)
            value += m[j - 1] * e[t - j];
        f[t] = value;
        e[t] = y[t] - value;
        sse += (y[t] - value) * (y[t] - value);
    }
    return sse;
}

dvec random_series(std::size_t n, unsigned seed) {
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal(5.0, 2.0);
    dvec y(n);
    for (double& v : y)
        v = normal(generator);
    return y;
}

bool same_bits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(Arima, ObjectivesGiveThePlainLoopsSumsBitForBit) {
    const dvec y = random_series(300, 3);
    // The AR part summed ahead of the MA chain, and the zeros of the seasonal
    // expansion skipped, leave every sum as the plain loop makes it.
    const GenericFunction3 arma(2, 2, y);
    const dvec params{4.9, 0.61, -0.27, 0.33, 0.0};
    dvec f;
    const double expected = plain_css(y, 4.9, {0.61, -0.27}, {0.33, 0.0}, 2, f);
    EXPECT_TRUE(same_bits(arma(params), expected));
    const dvec predicted = arma.predictions(params);
    for (std::size_t t = 0; t < y.size(); ++t)
        ASSERT_TRUE(same_bits(predicted[t], f[t])) << t;

    const GenericFunctionForSARIMA seasonal(1, 1, 12, 1, 1, y);
    const dvec sp{5.1, 0.4, -0.35, 0.5, -0.6};
    const dvec a = seasonal_ar_expansion({0.4}, {0.5}, 12);
    const dvec m = seasonal_ma_expansion({-0.35}, {-0.6}, 12);
    EXPECT_TRUE(same_bits(seasonal(sp), plain_css(y, 5.1, a, m, 13, f)));
}

TEST(Arima, ExpansionsMultiplyThePolynomials) {
    // (1 - 0.5B)(1 - 0.3B^4) = 1 - 0.5B - 0.3B^4 + 0.15B^5.
    EXPECT_EQ(seasonal_ar_expansion({0.5}, {0.3}, 4), (dvec{0.5, 0, 0, 0.3, -0.15}));
    // (1 + 0.4B)(1 + 0.2B^2) = 1 + 0.4B + 0.2B^2 + 0.08B^3.
    const dvec m = seasonal_ma_expansion({0.4}, {0.2}, 2);
    ASSERT_EQ(m.size(), 3u);
    EXPECT_DOUBLE_EQ(m[2], 0.08);
    // The repeated (1 - B) rule and the product of polynomials agree:
    // (1 - 0.5B)(1 - B)^2 = 1 - 2.5B + 2B^2 - 0.5B^3.
    EXPECT_EQ(integrated_ar({0.5}, 2), (dvec{2.5, -2, 0.5}));
    EXPECT_EQ(integrated_seasonal_ar({0.5}, {}, 4, 2, 0), integrated_ar({0.5}, 2));
    EXPECT_EQ(integrated_ar({}, 1), dvec{1.0});
    // (1 - B)(1 - B^4) = 1 - B - B^4 + B^5.
    EXPECT_EQ(integrated_seasonal_ar({}, {}, 4, 1, 1), (dvec{1, 0, 0, 1, -1}));
}

TEST(Arima, DifferencingShortensBySeasonThenByOne) {
    EXPECT_EQ(difference({1, 4, 9, 16, 25}, 1, 2), (dvec{2, 2, 2}));
    EXPECT_EQ(difference({1, 2, 3, 5, 8, 13}, 4, 1), (dvec{7, 11}));
    EXPECT_TRUE(difference({1, 2}, 1, 3).empty());
}

TEST(Arima, WrongParameterCountIsRefused) {
    const dvec y = random_series(20, 1);
    auto message = [](auto&& call) {
        try {
            call();
        } catch (const char* text) {
            return std::string(text);
        }
        return std::string("no failure");
    };
    const GenericFunction3 arma(1, 1, y);
    EXPECT_EQ(message([&] { arma({0.0, 0.5}); }), "Dimension not matched in de_param");
    const GenericFunctionForSARIMA seasonal(0, 1, 4, 0, 1, y);
    EXPECT_EQ(message([&] {
                  seasonal({0.0, 0.5, 0.1, 0.2});
              }),
              "Dimension not matched in de_param");
}

TEST(Arima, PathsOfOneSeedShareTheirNormalNoise) {
    const int n = 20000;
    const dvec noise = simulate_path(n, 0.0, {}, {}, 1.0, 11);
    // An ARMA(1,1) of the same seed draws the same noise, the first draw
    // going to its warm-up point y[0] = e[0]; undoing the recursion on the
    // kept points gives the other draws back.
    const dvec path = simulate_path(n - 1, 2.0, {0.6}, {0.3}, 1.0, 11);
    double y_before = noise[0];
    double e_before = noise[0];
    for (int t = 1; t < n; ++t) {
        const double y = path[static_cast<std::size_t>(t - 1)] - 2.0;
        const double e = y - 0.6 * y_before - 0.3 * e_before;
        ASSERT_NEAR(e, noise[static_cast<std::size_t>(t)], 1e-9) << t;
        y_before = y;
        e_before = e;
    }
    // Jarque-Bera: skewness and excess kurtosis of the draws, against the
    // 1% point of the chi-square with 2 degrees of freedom.
    double mean = 0.0;
    for (double v : noise)
        mean += v / n;
    double m2 = 0.0, m3 = 0.0, m4 = 0.0;
    for (double v : noise) {
        const double d = v - mean;
        m2 += d * d / n;
        m3 += d * d * d / n;
        m4 += d * d * d * d / n;
    }
    const double skew = m3 / std::pow(m2, 1.5);
    const double kurtosis = m4 / (m2 * m2) - 3.0;
    EXPECT_LT(n / 6.0 * (skew * skew + kurtosis * kurtosis / 4.0), 9.21);
    EXPECT_NEAR(mean, 0.0, 4.0 / std::sqrt(n));
    EXPECT_NEAR(std::sqrt(m2), 1.0, 0.02);
}

}  // namespace
}  // namespace zentable
