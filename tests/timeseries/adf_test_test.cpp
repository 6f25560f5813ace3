#include "timeseries/adf_test.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "../numeric/thrown_text.hpp"
#include "timeseries/mackinnon.hpp"

namespace zentable {
namespace {

// The Dickey-Fuller regression in long double with the raw trend 1 .. T, by
// the normal equations and elimination; the residuals in long double too.
AdfFit long_double_reference(const dvec& x, int lags, int terms) {
    const std::size_t n = x.size(), p = static_cast<std::size_t>(lags);
    const std::size_t rows = n - 1 - p, q = 1 + p + static_cast<std::size_t>(terms);
    std::vector<std::vector<long double>> z(rows, std::vector<long double>(q));
    std::vector<long double> y(rows);
    for (std::size_t r = 0; r < rows; ++r) {
        const std::size_t t = r + p + 1;
        y[r] = static_cast<long double>(x[t]) - x[t - 1];
        z[r][0] = x[t - 1];
        for (std::size_t j = 1; j <= p; ++j)
            z[r][j] = static_cast<long double>(x[t - j]) - x[t - j - 1];
        const long double trend = static_cast<long double>(r + 1);
        const long double time_terms[] = {1.0L, trend, trend * trend};
        for (int k = 0; k < terms; ++k)
            z[r][1 + p + static_cast<std::size_t>(k)] = time_terms[k];
    }
    std::vector<std::vector<long double>> xtx(q, std::vector<long double>(q, 0.0L));
    std::vector<long double> xty(q, 0.0L);
    for (std::size_t r = 0; r < rows; ++r)
        for (std::size_t i = 0; i < q; ++i) {
            xty[i] += z[r][i] * y[r];
            for (std::size_t j = 0; j < q; ++j)
                xtx[i][j] += z[r][i] * z[r][j];
        }
    const std::vector<long double> beta = testing::solve(xtx, xty);
    std::vector<long double> first(q, 0.0L);
    first[0] = 1.0L;
    const long double inverse00 = testing::solve(xtx, first)[0];
    long double sse = 0.0L;
    for (std::size_t r = 0; r < rows; ++r) {
        long double e = y[r];
        for (std::size_t j = 0; j < q; ++j)
            e -= z[r][j] * beta[j];
        sse += e * e;
    }
    AdfFit fit;
    fit.rows = static_cast<int>(rows);
    fit.estimate = static_cast<double>(beta[0]);
    fit.standard_error = static_cast<double>(std::sqrt(sse / (rows - q) * inverse00));
    fit.stat = fit.estimate / fit.standard_error;
    return fit;
}

// A long random walk with drift: the level runs with the trend, the case in
// which the raw trend squared would reach 10^14 in the cross-products.
TEST(AdfRegression, AgreesWithALongDoubleFitOnTheRawTrend) {
    std::mt19937 gen(17);
    std::normal_distribution<double> noise;
    dvec walk(5000);
    double level = 100.0;
    for (double& v : walk) {
        level += 0.05 + noise(gen);
        v = level;
    }
    const char* const names[] = {"nc", "c", "ct", "ctt"};
    for (int terms = 0; terms < 4; ++terms) {
        for (int lags : {0, 7, 30}) {
            const AdfFit fit = adf_regression(walk, lags, names[terms]);
            const AdfFit reference = long_double_reference(walk, lags, terms);
            EXPECT_EQ(fit.rows, reference.rows);
            EXPECT_NEAR(fit.estimate, reference.estimate, 1e-10 * std::fabs(reference.estimate))
                << names[terms] << ", " << lags << " lags";
            EXPECT_NEAR(fit.standard_error, reference.standard_error,
                        1e-10 * reference.standard_error)
                << names[terms] << ", " << lags << " lags";
            EXPECT_NEAR(fit.stat, reference.stat, 1e-10 * std::fabs(reference.stat))
                << names[terms] << ", " << lags << " lags";
        }
    }
}

// The N = 1 rows as Table 2 of MacKinnon (2010) prints them: b0 at the 1%, 5%
// and 10% levels with b1, b2, b3, typed from the paper's layout, checked
// through the surface at T = 1, 2, 4 and 8, where every term shows.
TEST(MacKinnon, TheNOneRowsAreThePapers) {
    struct Row {
        const char* terms;
        double b[3][4];
    };
    const Row rows[] = {
        {"nc",
         {{-2.56574, -2.2358, -3.627, 0},
          {-1.94100, -0.2686, -3.365, 31.223},
          {-1.61682, 0.2656, -2.714, 25.364}}},
        {"c",
         {{-3.43035, -6.5393, -16.786, -79.433},
          {-2.86154, -2.8903, -4.234, -40.040},
          {-2.56677, -1.5384, -2.809, 0}}},
        {"ct",
         {{-3.95877, -9.0531, -28.428, -134.155},
          {-3.41049, -4.3904, -9.036, -45.374},
          {-3.12705, -2.5856, -3.925, -22.380}}},
        {"ctt",
         {{-4.37113, -11.5882, -35.819, -334.047},
          {-3.83239, -5.9057, -12.490, -118.284},
          {-3.55326, -3.6596, -5.293, -63.559}}},
    };
    for (const Row& row : rows) {
        for (double t : {1.0, 2.0, 4.0, 8.0}) {
            const auto values = mackinnon_criticalValue(1, row.terms, t);
            for (int level = 0; level < 3; ++level) {
                const double* b = row.b[level];
                const double expected = b[0] + b[1] / t + b[2] / (t * t) + b[3] / (t * t * t);
                EXPECT_DOUBLE_EQ(values[static_cast<std::size_t>(level)], expected)
                    << row.terms << ", level " << level << ", T " << t;
            }
        }
    }
}

// ADF_test reaches the routine with N = 1 only, so its texts are met here.
TEST(MacKinnon, FailsWithItsOwnTexts) {
    EXPECT_EQ(THROWN_TEXT(mackinnon_criticalValue(13, "c", 100.0)),
              "N can not be large than 12 in mackinnon_criticalValue()");
    EXPECT_EQ(THROWN_TEXT(mackinnon_criticalValue(1, "ctc", 100.0)), "timeTermsctc is not valid");
    // The table has no "nc" row beyond N = 1.
    EXPECT_EQ(THROWN_TEXT(mackinnon_criticalValue(2, "nc", 100.0)), "timeTermsnc is not valid");
    EXPECT_EQ(THROWN_TEXT(mackinnon_criticalValue(0, "c", 100.0)),
              "N must be at least 1 in mackinnon_criticalValue()");
    // N = 12 is the last row: b0 of "ctt" at 1% is -7.02582 in the paper.
    EXPECT_NEAR(mackinnon_criticalValue(12, "ctt", 1e12)[0], -7.02582, 1e-9);
}

}  // namespace
}  // namespace zentable
