#include <gtest/gtest.h>

#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "../support/tables.hpp"
#include "models/model_store.hpp"
#include "regression/linear_reg.hpp"
#include "regression/linear_reg_model.hpp"
#include "regression/weighted_regression.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::solve;
using testing::table_with_header;

using Rows = std::vector<std::vector<double>>;

// Weighted least squares by the normal equations in long double, intercept
// first: coefficients, their standard errors, and the sums of squares.
struct Reference {
    std::vector<long double> coef, se;
    long double sse = 0, sst = 0;
};

Reference weighted_least_squares(const Rows& x, const std::vector<double>& y,
                                 const std::vector<double>& w) {
    const std::size_t n = x.size(), k = x[0].size() + 1;
    std::vector<std::vector<long double>> xtx(k, std::vector<long double>(k, 0));
    std::vector<long double> xty(k, 0);
    long double sw = 0, swy = 0;
    for (std::size_t r = 0; r < n; ++r) {
        std::vector<long double> row{1.0L};
        for (double v : x[r])
            row.push_back(v);
        for (std::size_t i = 0; i < k; ++i) {
            for (std::size_t j = 0; j < k; ++j)
                xtx[i][j] += w[r] * row[i] * row[j];
            xty[i] += w[r] * row[i] * y[r];
        }
        sw += w[r];
        swy += w[r] * y[r];
    }
    Reference ref;
    ref.coef = solve(xtx, xty);
    for (std::size_t r = 0; r < n; ++r) {
        long double fitted = ref.coef[0];
        for (std::size_t j = 1; j < k; ++j)
            fitted += ref.coef[j] * x[r][j - 1];
        ref.sse += w[r] * (y[r] - fitted) * (y[r] - fitted);
        ref.sst += w[r] * (y[r] - swy / sw) * (y[r] - swy / sw);
    }
    const long double sigma2 = ref.sse / (n - k);
    for (std::size_t i = 0; i < k; ++i) {
        std::vector<long double> e(k, 0);
        e[i] = 1;
        ref.se.push_back(std::sqrt(sigma2 * solve(xtx, e)[i]));
    }
    return ref;
}

void expect_rel(double actual, long double expected, double tolerance, const std::string& what) {
    EXPECT_NEAR(actual, static_cast<double>(expected),
                tolerance * std::max(1.0, std::fabs(static_cast<double>(expected))))
        << what;
}

// Sixty records of y = 1.5 + 2 x1 - 3 x2 + 0.5 x3 + noise, x on a range away
// from 0, so that the standardised solve and the move back to the data's scale
// both matter; once with unit weights and once with weights from 0.5 to 3.5.
TEST(LinearReg, FitAgreesWithLongDoubleNormalEquations) {
    for (bool weighted : {false, true}) {
        SCOPED_TRACE(weighted ? "weighted" : "unweighted");
        std::mt19937 gen(weighted ? 11 : 7);
        std::uniform_real_distribution<double> u(-2.0, 5.0);
        std::normal_distribution<double> noise(0.0, 0.8);
        const int n = 60, k = 4;
        Rows x;
        std::vector<double> y, w;
        for (int i = 0; i < n; ++i) {
            const double x1 = u(gen), x2 = u(gen), x3 = u(gen);
            x.push_back({x1, x2, x3});
            y.push_back(1.5 + 2 * x1 - 3 * x2 + 0.5 * x3 + noise(gen));
            w.push_back(weighted ? 0.5 + (i % 4) : 1.0);
        }
        const RegressionFit fit = fit_weighted_regression(x, y, w, {});
        const Reference ref = weighted_least_squares(x, y, w);

        const boost::math::students_t_distribution<double> t_dist(n - k);
        for (int i = 0; i < k; ++i) {
            const int v = i == 0 ? k - 1 : i - 1;  // the fit keeps the intercept last
            const std::string what = "coefficient " + std::to_string(i);
            expect_rel(fit.coefs[v], ref.coef[i], 1e-10, what);
            expect_rel(fit.std_errors[v], ref.se[i], 1e-9, what + " error");
            const double t = static_cast<double>(ref.coef[i] / ref.se[i]);
            expect_rel(fit.t_values[v], t, 1e-9, what + " t");
            // The continued fraction under the p value stops at a change of 3e-7.
            const double p = 2 * boost::math::cdf(boost::math::complement(t_dist, std::fabs(t)));
            EXPECT_NEAR(fit.p_values[v], p, 1e-6) << what;
        }

        const double r2 = static_cast<double>(1 - ref.sse / ref.sst);
        expect_rel(fit.r_square, r2, 1e-12, "r square");
        const RegressionStats st =
            regression_stats(n, k, fit.sum_weight, fit.r_square, fit.y_mean, fit.y_sd);
        expect_rel(st.sse, ref.sse, 1e-9, "sse");
        expect_rel(st.sst, ref.sst, 1e-12, "sst");
        expect_rel(st.adj_r_square, 1 - (1 - r2) * (n - 1) / (n - k), 1e-12, "adj r square");
        const double f = (r2 / (1 - r2)) * (n - k) / (k - 1);
        expect_rel(st.f_value, f, 1e-9, "f value");
        const boost::math::fisher_f_distribution<double> f_dist(k - 1, n - k);
        EXPECT_NEAR(st.p_value, boost::math::cdf(boost::math::complement(f_dist, f)), 1e-6);
    }
}

// A table of dependencies instead of a fit files no model.
TEST(LinearReg, DependentColumnsFileNoModel) {
    const std::size_t before = model_list<linearRegModel>().size();
    const CellMatrix r = linear_reg(table_with_header({"a", "b"}, {{1, 1}, {2, 2}, {3, 3}}),
                                    column("y", {1, 3, 2}), CellMatrix(), CellMatrix());
    EXPECT_EQ(r.ColumnsInStructure(), 1u);
    EXPECT_EQ(model_list<linearRegModel>().size(), before);
}

}  // namespace
}  // namespace zentable
