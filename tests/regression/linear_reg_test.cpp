#include <gtest/gtest.h>

#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "../support/tables.hpp"
#include "../xlw/table_builder.hpp"
#include "models/model_store.hpp"
#include "regression/linear_reg.hpp"
#include "regression/linear_reg_model.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::make_table;
using testing::solve;
using testing::table_with_header;
using testing::thrown_text;

using Rows = std::vector<std::vector<double>>;

// Weighted least squares by the normal equations, intercept first:
// coefficients, their standard errors, and the residual sum of squares.
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

struct Sample {
    Rows x;
    std::vector<double> y;
};

// y = 1.5 + 2 x1 - 3 x2 + 0.5 x3 + noise.
Sample make_sample(int n, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(-2.0, 5.0);
    std::normal_distribution<double> noise(0.0, 0.8);
    Sample s;
    for (int i = 0; i < n; ++i) {
        const double x1 = u(gen), x2 = u(gen), x3 = u(gen);
        s.x.push_back({x1, x2, x3});
        s.y.push_back(1.5 + 2 * x1 - 3 * x2 + 0.5 * x3 + noise(gen));
    }
    return s;
}

double num(const CellMatrix& r, int row, int col) {
    return r(row, col).NumericValue();
}
std::string text(const CellMatrix& r, int row, int col) {
    return r(row, col).StringValue();
}

void expect_rel(double actual, long double expected, double tolerance, const char* what) {
    EXPECT_NEAR(actual, static_cast<double>(expected),
                tolerance * std::max(1.0, std::fabs(static_cast<double>(expected))))
        << what;
}

TEST(LinearReg, ReportAgainstAnIndependentLeastSquaresFit) {
    const Sample s = make_sample(60, 7);
    const CellMatrix r = linear_reg(table_with_header({"x1", "x2", "x3"}, s.x), column("y", s.y),
                                    CellMatrix(), CellMatrix());

    const int k = 4, n = 60;
    ASSERT_EQ(r.RowsInStructure(), static_cast<std::size_t>(k + 23));
    ASSERT_EQ(r.ColumnsInStructure(), 6u);
    EXPECT_EQ(text(r, 0, 0).rfind("linearRegModel->", 0), 0u);
    EXPECT_TRUE(r(1, 0).IsEmpty());
    EXPECT_EQ(text(r, 2, 0), "Analysis of Variance");
    EXPECT_EQ(text(r, 4, 0), "Number of Records");
    EXPECT_EQ(num(r, 4, 1), n);
    EXPECT_EQ(text(r, 5, 0), "Number of Parameters");
    EXPECT_EQ(num(r, 5, 1), k);
    EXPECT_EQ(text(r, 6, 0), "R-Square");
    EXPECT_EQ(text(r, 7, 0), "Adj R-Square");
    const char* anova[] = {"", "DF", "Sum", "Mean", "F Value", "P Value"};
    for (int c = 1; c < 6; ++c)
        EXPECT_EQ(text(r, 9, c), anova[c]);
    EXPECT_EQ(text(r, 10, 0), "SSR");
    EXPECT_EQ(text(r, 11, 0), "SSE");
    EXPECT_EQ(text(r, 12, 0), "SST");
    EXPECT_EQ(text(r, 14, 0), "RMSE");
    EXPECT_EQ(text(r, 15, 0), "Y Mean");
    EXPECT_EQ(text(r, 16, 0), "Coeff Var");
    EXPECT_EQ(text(r, 18, 0), "Model Parameter Estimates");
    const char* params[] = {"#", "Variable", "Estimate", "Standard Error", "t Value", "P Value"};
    for (int c = 0; c < 6; ++c)
        EXPECT_EQ(text(r, 20, c), params[c]);
    const char* variables[] = {"Intercept", "x1", "x2", "x3"};
    for (int i = 0; i < k; ++i) {
        EXPECT_EQ(num(r, 21 + i, 0), i);
        EXPECT_EQ(text(r, 21 + i, 1), variables[i]);
    }
    EXPECT_TRUE(r(25, 0).IsEmpty());
    EXPECT_EQ(text(r, k + 22, 0), "End of output: linear_reg");

    const Reference ref = weighted_least_squares(s.x, s.y, std::vector<double>(n, 1.0));
    const boost::math::students_t_distribution<double> t_dist(n - k);
    for (int i = 0; i < k; ++i) {
        expect_rel(num(r, 21 + i, 2), ref.coef[i], 1e-10, "estimate");
        expect_rel(num(r, 21 + i, 3), ref.se[i], 1e-9, "standard error");
        const double t = static_cast<double>(ref.coef[i] / ref.se[i]);
        expect_rel(num(r, 21 + i, 4), t, 1e-9, "t value");
        const double p = 2 * boost::math::cdf(boost::math::complement(t_dist, std::fabs(t)));
        EXPECT_NEAR(num(r, 21 + i, 5), p, 1e-6) << "p value of " << variables[i];
    }

    const double r2 = static_cast<double>(1 - ref.sse / ref.sst);
    expect_rel(num(r, 6, 1), r2, 1e-12, "r square");
    expect_rel(num(r, 7, 1), 1 - (1 - r2) * (n - 1) / (n - k), 1e-12, "adj r square");
    EXPECT_EQ(num(r, 10, 1), k - 1);
    EXPECT_EQ(num(r, 11, 1), n - k);
    EXPECT_EQ(num(r, 12, 1), n - 1);
    expect_rel(num(r, 11, 2), ref.sse, 1e-9, "sse");
    expect_rel(num(r, 12, 2), ref.sst, 1e-12, "sst");
    expect_rel(num(r, 10, 2) + num(r, 11, 2), ref.sst, 1e-12, "ssr + sse");
    expect_rel(num(r, 11, 3), ref.sse / (n - k), 1e-9, "mse");
    expect_rel(num(r, 14, 1), std::sqrt(ref.sse / (n - k)), 1e-9, "rmse");
    double y_mean = 0;
    for (double v : s.y)
        y_mean += v / n;
    expect_rel(num(r, 15, 1), y_mean, 1e-12, "y mean");
    expect_rel(num(r, 16, 1), num(r, 14, 1) / y_mean, 1e-12, "coeff var");
    const double f = (r2 / (1 - r2)) * (n - k) / (k - 1);
    expect_rel(num(r, 10, 4), f, 1e-9, "f value");
    const boost::math::fisher_f_distribution<double> f_dist(k - 1, n - k);
    EXPECT_NEAR(num(r, 10, 5), boost::math::cdf(boost::math::complement(f_dist, f)), 1e-6);

    // The model in the store carries the same numbers, intercept last.
    const handle_c<linearRegModel> model = string_to_handle<linearRegModel>(text(r, 0, 0));
    ASSERT_EQ(model->coefs.size(), 4u);
    EXPECT_EQ(model->coefs[3], num(r, 21, 2));
    EXPECT_EQ(model->coefs[0], num(r, 22, 2));
    EXPECT_EQ(model->names, (std::vector<std::string>{"x1", "x2", "x3"}));
    EXPECT_EQ(model->stats.n, n);
    EXPECT_EQ(model->stats.k, k);
    EXPECT_EQ(model->stats.sse, num(r, 11, 2));
}

TEST(LinearReg, WeightsEnterTheMomentsAndAZeroWeightStillCountsARecord) {
    Sample s = make_sample(40, 11);
    std::vector<double> w;
    for (int i = 0; i < 40; ++i)
        w.push_back(0.5 + (i % 4));
    const CellMatrix fitted = linear_reg(table_with_header({"x1", "x2", "x3"}, s.x),
                                         column("y", s.y), column("w", w), CellMatrix());
    const Reference ref = weighted_least_squares(s.x, s.y, w);
    for (int i = 0; i < 4; ++i)
        expect_rel(num(fitted, 21 + i, 2), ref.coef[i], 1e-10, "estimate");
    expect_rel(num(fitted, 11, 2), ref.sse, 1e-9, "weighted sse");

    // An outlier with weight 0 changes nothing but the record count.
    Sample more = s;
    more.x.push_back({1.0, 1.0, 1.0});
    more.y.push_back(1000.0);
    std::vector<double> w0 = w;
    w0.push_back(0.0);
    const CellMatrix with_zero = linear_reg(table_with_header({"x1", "x2", "x3"}, more.x),
                                            column("y", more.y), column("w", w0), CellMatrix());
    EXPECT_EQ(num(with_zero, 4, 1), 41);
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(num(with_zero, 21 + i, 2), num(fitted, 21 + i, 2), 1e-12);
}

TEST(LinearReg, RidgeSolvesTheStandardisedSystemWithLambdaOnTheDiagonal) {
    const Sample s = make_sample(30, 3);
    const CellMatrix x = table_with_header({"x1", "x2", "x3"}, s.x);
    const CellMatrix one = linear_reg(x, column("y", s.y), CellMatrix(), CellMatrix(0.5));
    const CellMatrix each =
        linear_reg(x, column("y", s.y), CellMatrix(), make_table({{0.5, 0.5, 0.5}}));

    // Independent: population moments, (Rxx + 0.5 I) beta = rxy, then rescale.
    const int n = 30, p = 3;
    std::vector<long double> mean(p + 1, 0), sd(p + 1, 0);
    auto value = [&](int r, int j) -> long double { return j < p ? s.x[r][j] : s.y[r]; };
    for (int j = 0; j <= p; ++j) {
        for (int r = 0; r < n; ++r)
            mean[j] += value(r, j) / n;
        for (int r = 0; r < n; ++r)
            sd[j] += (value(r, j) - mean[j]) * (value(r, j) - mean[j]) / n;
        sd[j] = std::sqrt(sd[j]);
    }
    auto corr = [&](int a, int b) {
        long double c = 0;
        for (int r = 0; r < n; ++r)
            c += (value(r, a) - mean[a]) * (value(r, b) - mean[b]) / n;
        return c / sd[a] / sd[b];
    };
    std::vector<std::vector<long double>> rxx(p, std::vector<long double>(p));
    std::vector<long double> rxy(p);
    for (int i = 0; i < p; ++i) {
        for (int j = 0; j < p; ++j)
            rxx[i][j] = corr(i, j) + (i == j ? 0.5L : 0.0L);
        rxy[i] = corr(i, p);
    }
    const std::vector<long double> beta = solve(rxx, rxy);
    long double intercept = mean[p];
    for (int i = 0; i < p; ++i) {
        const long double coef = beta[i] * sd[p] / sd[i];
        intercept -= mean[i] * coef;
        expect_rel(num(one, 22 + i, 2), coef, 1e-10, "ridge coefficient");
        EXPECT_EQ(num(each, 22 + i, 2), num(one, 22 + i, 2));
    }
    expect_rel(num(one, 21, 2), intercept, 1e-10, "ridge intercept");
}

TEST(LinearReg, LinearRelationshipsAreReportedInsteadOfAFit) {
    const Rows copied = {{1, 1, 5}, {2, 2, 3}, {3, 3, 8}, {4, 4, 1}, {5, 5, 2}, {6, 6, 9}};
    const CellMatrix y = column("y", {1, 3, 2, 5, 4, 6});
    const CellMatrix x = table_with_header({"a", "b", "c"}, copied);
    const std::size_t models_before = model_list<linearRegModel>().size();
    const CellMatrix r = linear_reg(x, y, CellMatrix(), CellMatrix());
    ASSERT_EQ(r.RowsInStructure(), 2u);
    ASSERT_EQ(r.ColumnsInStructure(), 1u);
    EXPECT_EQ(text(r, 0, 0),
              "linear_reg: input data matrix is not full rank. Some variables are linear "
              "combinations of other variables. Run matrix_corr() and matrix_sym_eign() to find "
              "linear relationships");
    // a and b have variance 35/12; the unit eigenvector (1, -1)/sqrt(2) over
    // that spread gives 0.4140393 on each, and no constant term.
    const std::string relation = text(r, 1, 0);
    EXPECT_TRUE(relation == " + 0.414039 * a - 0.414039 * b = 0" ||
                relation == " - 0.414039 * a + 0.414039 * b = 0")
        << relation;
    EXPECT_EQ(model_list<linearRegModel>().size(), models_before);
    // Weights do not enter the rank test.
    const CellMatrix weighted = linear_reg(x, y, column("w", {1, 2, 3, 1, 2, 3}), CellMatrix());
    ASSERT_EQ(weighted.RowsInStructure(), 2u);
    EXPECT_EQ(text(weighted, 1, 0), relation);

    // With lambda given the fit is attempted, and a zero ridge cannot save it.
    EXPECT_EQ(thrown_text([&] { linear_reg(x, y, CellMatrix(), CellMatrix(0.0)); }),
              "Pivot singular in matrix sweep function. Matrix is singular.");
    const CellMatrix ridged = linear_reg(x, y, CellMatrix(), CellMatrix(0.1));
    EXPECT_EQ(ridged.RowsInStructure(), 27u);
    EXPECT_NEAR(num(ridged, 23, 2), num(ridged, 22, 2), 1e-12);  // a and b share the weight

    // A constant column is a dependency with a constant term: c = 7.
    const Rows constant = {{1, 7}, {2, 7}, {4, 7}, {3, 7}, {5, 7}};
    const CellMatrix rc = linear_reg(table_with_header({"x", "c"}, constant),
                                     column("y", {1, 2, 3, 4, 5}), CellMatrix(), CellMatrix());
    ASSERT_EQ(rc.RowsInStructure(), 2u);
    EXPECT_TRUE(text(rc, 1, 0) == " + 1 * c - 7 = 0" || text(rc, 1, 0) == " - 1 * c + 7 = 0")
        << text(rc, 1, 0);
}

TEST(LinearReg, BoundaryFits) {
    // n = p + 1: df falls back to 1 for the errors, the table shows n - k = 0.
    const CellMatrix tight = linear_reg(table_with_header({"x"}, {{1}, {3}}), column("y", {2, 5}),
                                        CellMatrix(), CellMatrix());
    EXPECT_EQ(num(tight, 11, 1), 0);
    EXPECT_EQ(num(tight, 11, 3), 0);
    EXPECT_EQ(num(tight, 14, 1), 0);
    EXPECT_NEAR(num(tight, 22, 2), 1.5, 1e-12);
    EXPECT_NEAR(num(tight, 21, 2), 0.5, 1e-12);

    // A perfect fit: R-square 1, no F test.
    const CellMatrix perfect =
        linear_reg(table_with_header({"x"}, {{1}, {2}, {3}, {4}, {6}}),
                   column("y", {3, 5, 7, 9, 13}), CellMatrix(), CellMatrix());
    EXPECT_EQ(num(perfect, 6, 1), 1.0);
    EXPECT_EQ(num(perfect, 10, 4), 0.0);
    EXPECT_EQ(num(perfect, 10, 5), 1.0);
    EXPECT_NEAR(num(perfect, 22, 2), 2.0, 1e-12);
    EXPECT_NEAR(num(perfect, 21, 2), 1.0, 1e-12);
}

TEST(LinearReg, ArgumentFailures) {
    const Sample s = make_sample(10, 5);
    const CellMatrix x = table_with_header({"x1", "x2", "x3"}, s.x);
    const CellMatrix y = column("y", s.y);
    EXPECT_EQ(thrown_text([&] {
                  linear_reg(x, y, CellMatrix(), make_table({{0.1}, {0.2}}));
              }),
              "The size of ridge constants lambda must be either 1 or the same size as x");
    EXPECT_EQ(thrown_text([&] {
                  linear_reg(x, y, CellMatrix(), make_table({{0.1, -0.2, 0.3}}));
              }),
              "The ridge constants lambda for ridge regression must be non-negative");

    const CellMatrix few_x = table_with_header({"x1", "x2", "x3"}, {s.x[0], s.x[1], s.x[2]});
    EXPECT_EQ(thrown_text([&] {
                  linear_reg(few_x, column("y", {1, 2, 3}), CellMatrix(), CellMatrix());
              }),
              "Cannot perform linear regression when the number of data points is less than or "
              "equal to the number of variables");
    EXPECT_EQ(thrown_text([&] {
                  linear_reg(x, column("y", {1, 2}), CellMatrix(), CellMatrix());
              }),
              "The numbers of observations in input data X, Y, and weight must be the same");
}

}  // namespace
}  // namespace zentable
