#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "../support/tables.hpp"
#include "models/model_store.hpp"
#include "regression/logistic_fit.hpp"
#include "regression/logistic_reg.hpp"
#include "regression/logistic_reg_model.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::solve;
using testing::table_with_header;
using testing::thrown_text;

using Rows = std::vector<std::vector<double>>;
using LongVec = std::vector<long double>;
using LongMat = std::vector<LongVec>;

// Newton-Raphson on the raw columns in long double, intercept first, from
// the intercept-only start. Newton's iterates do not depend on an affine
// change of the columns, nor does the stopping quantity g'd, so with the same
// step halving and stopping rule this walks the library's path on its own
// scale. With to_optimum it instead runs on to the maximum itself.
struct Reference {
    LongVec coef, se;
    long double ll = 0;
};

struct Evaluation {
    long double ll = 0;
    LongVec score;
    LongMat info;
};

Evaluation evaluate(const Rows& x, const std::vector<double>& y, const std::vector<double>& w,
                    const LongVec& coef) {
    const std::size_t k = coef.size();
    Evaluation e;
    e.score.assign(k, 0);
    e.info.assign(k, LongVec(k, 0));
    for (std::size_t r = 0; r < x.size(); ++r) {
        LongVec row{1.0L};
        for (double v : x[r])
            row.push_back(v);
        long double eta = 0;
        for (std::size_t i = 0; i < k; ++i)
            eta += coef[i] * row[i];
        const long double p = 1 / (1 + std::exp(-eta));
        e.ll += w[r] * (y[r] * std::log(p) + (1 - y[r]) * std::log(1 - p));
        for (std::size_t i = 0; i < k; ++i) {
            e.score[i] += w[r] * (y[r] - p) * row[i];
            for (std::size_t j = 0; j < k; ++j)
                e.info[i][j] += w[r] * p * (1 - p) * row[i] * row[j];
        }
    }
    return e;
}

Reference newton_reference(const Rows& x, const std::vector<double>& y,
                           const std::vector<double>& w, bool to_optimum = false) {
    const std::size_t k = x[0].size() + 1;
    long double total = 0, events = 0;
    for (std::size_t r = 0; r < y.size(); ++r) {
        total += w[r];
        events += w[r] * y[r];
    }
    Reference ref;
    ref.coef.assign(k, 0);
    ref.coef[0] = std::log(events / (total - events));
    Evaluation e = evaluate(x, y, w, ref.coef);
    for (int iteration = 0; iteration < (to_optimum ? 40 : 100); ++iteration) {
        const LongVec step = solve(e.info, e.score);
        LongVec next(k);
        long double t = 1;
        Evaluation trial;
        do {
            for (std::size_t i = 0; i < k; ++i)
                next[i] = ref.coef[i] + t * step[i];
            trial = evaluate(x, y, w, next);
            t /= 2;
        } while (!to_optimum && trial.ll < e.ll);
        ref.coef = next;
        e = trial;
        long double s = 0;
        for (std::size_t i = 0; i < k; ++i)
            s += e.score[i] * step[i];
        if (!to_optimum && std::fabs(s) / (std::fabs(e.ll) + 1e-6L) < 1e-8L)
            break;
    }
    ref.ll = e.ll;
    for (std::size_t i = 0; i < k; ++i) {
        LongVec unit(k, 0);
        unit[i] = 1;
        ref.se.push_back(std::sqrt(solve(e.info, unit)[i]));
    }
    return ref;
}

// Records drawn from a known logistic model, with columns on very different
// scales so that the standardisation matters.
struct Sample {
    Rows x;
    std::vector<double> y, w;
};

Sample draw(unsigned seed, int n, bool weighted) {
    std::mt19937 gen(seed);
    std::normal_distribution<double> normal(0.0, 1.0);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    Sample s;
    for (int i = 0; i < n; ++i) {
        const double age = 50 + 10 * normal(gen);
        const double score = normal(gen);
        const double income = 1000 * uniform(gen);
        const double eta = -2.5 + 0.03 * age - 0.8 * score + 0.002 * income;
        s.x.push_back({age, score, income});
        s.y.push_back(uniform(gen) < 1 / (1 + std::exp(-eta)) ? 1.0 : 0.0);
        s.w.push_back(weighted ? 0.5 + 2 * uniform(gen) : 1.0);
    }
    return s;
}

void expect_relative(double actual, long double expected, double tolerance, const char* what) {
    EXPECT_LE(std::fabs(actual - expected), tolerance * std::fabs(expected))
        << what << ": " << actual << " against " << static_cast<double>(expected);
}

TEST(LogisticFit, StandardiseAndLikelihoodByHand) {
    // Weights 1, 1, 2 on a column 0, 2, 4: mean 10/4 = 2.5, variance
    // 36/4 - 6.25 = 2.75 with the weight total as divisor; a constant is
    // centred but not scaled.
    dmat x{{0, 7}, {2, 7}, {4, 7}};
    const ColumnScaling s = standardize_columns(x, {1, 1, 2});
    EXPECT_DOUBLE_EQ(s.mean[0], 2.5);
    EXPECT_DOUBLE_EQ(s.sd[0], std::sqrt(2.75));
    EXPECT_EQ(s.mean[1], 7.0);
    EXPECT_EQ(s.sd[1], 1.0);
    EXPECT_EQ(s.sum_weight, 4.0);
    EXPECT_EQ(s.n, 3);
    EXPECT_DOUBLE_EQ(x[2][0], 1.5 / std::sqrt(2.75));
    EXPECT_EQ(x[0][1], 0.0);
    dmat short_x{{1}};
    EXPECT_EQ(thrown_text([&] {
                  standardize_columns(short_x, {1, 1});
              }),
              "Data matrix is not conformable");

    // At zero coefficients every P is 1/2: LL = (sum of w) ln(1/2), the
    // gradient is sum w (y - 1/2) x and the Hessian -1/4 sum w x x'.
    const LogLikelihood l = logistic_loglik({{1, 2}, {3, -1}}, {1, 0}, {1, 2}, {0, 0, 0});
    EXPECT_DOUBLE_EQ(l.value, 3 * std::log(0.5));
    EXPECT_DOUBLE_EQ(l.gradient[0], 0.5 * 1 - 2 * 0.5 * 3);
    EXPECT_DOUBLE_EQ(l.gradient[1], 0.5 * 2 + 2 * 0.5 * 1);
    EXPECT_DOUBLE_EQ(l.gradient[2], 0.5 - 1.0);
    const dmat h{{-0.25 * (1 + 18), -0.25 * (2 - 6), -0.25 * (1 + 6)},
                 {-0.25 * (2 - 6), -0.25 * (4 + 2), -0.25 * (2 - 2)},
                 {-0.25 * (1 + 6), -0.25 * (2 - 2), -0.25 * 3}};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_DOUBLE_EQ(l.hessian[i][j], h[i][j]) << i << "," << j;

    // A probability of exactly 1 is clamped in the logarithm only.
    const LogLikelihood far = logistic_loglik({{0}}, {0}, {1}, {0, 40});
    EXPECT_DOUBLE_EQ(far.value, std::log(2.220446049250313e-16));
    EXPECT_DOUBLE_EQ(far.gradient[1], -1.0);
}

TEST(LogisticFit, AgreesWithAnIndependentNewtonIteration) {
    for (bool weighted : {false, true}) {
        SCOPED_TRACE(weighted ? "weighted" : "unweighted");
        const Sample s = draw(weighted ? 99 : 20240611, 400, weighted);
        const Reference ref = newton_reference(s.x, s.y, s.w);
        const LogisticFit fit = logistic_fit(s.x, s.y, s.w);
        ASSERT_EQ(fit.coefs.size(), 4u);
        for (std::size_t i = 0; i < 4; ++i) {
            const std::size_t r = i == 3 ? 0 : i + 1;  // the reference has the intercept first
            expect_relative(fit.coefs[i], ref.coef[r], 1e-8, "coefficient");
            expect_relative(fit.std_errors[i], ref.se[r], 1e-8, "standard error");
            const long double z = ref.coef[r] / ref.se[r];
            expect_relative(fit.wald[i], z * z, 1e-8, "Wald");
            // The chi-square tail of one degree of freedom is erfc(|z| / sqrt 2).
            EXPECT_NEAR(fit.p_values[i],
                        std::erfc(std::fabs(static_cast<double>(z)) / std::sqrt(2.0)), 1e-6);
        }
        expect_relative(fit.ll, ref.ll, 1e-8, "log-likelihood");

        // The stopping rule leaves the estimates near the maximum, not on it.
        const Reference optimum = newton_reference(s.x, s.y, s.w, true);
        for (std::size_t i = 0; i < 4; ++i)
            expect_relative(fit.coefs[i], optimum.coef[i == 3 ? 0 : i + 1], 1e-4, "maximum");
        expect_relative(fit.ll, optimum.ll, 1e-10, "maximum log-likelihood");

        double total = 0, events = 0, w1 = 0;
        int n1 = 0;
        for (std::size_t i = 0; i < s.y.size(); ++i) {
            total += s.w[i];
            events += s.w[i] * s.y[i];
            n1 += s.y[i] == 1;
            w1 += s.y[i] == 1 ? s.w[i] : 0;
        }
        EXPECT_EQ(fit.n1, n1);
        EXPECT_DOUBLE_EQ(fit.w1, w1);
        EXPECT_NEAR(fit.w0, total - w1, 1e-10);
        const double p = events / total;
        EXPECT_NEAR(fit.ll0, total * (p * std::log(p) + (1 - p) * std::log(1 - p)), 1e-9);

        // The probabilities are those of the fitted coefficients.
        const dvec probs = logistic_predict({s.x[0]}, fit.coefs);
        long double eta = ref.coef[0];
        for (int j = 0; j < 3; ++j)
            eta += ref.coef[j + 1] * s.x[0][j];
        EXPECT_NEAR(probs[0], 1 / (1 + std::exp(-eta)), 1e-9);
    }
}

// A fit that cannot finish files no model, nor does a table of dependencies.
TEST(LogisticReg, FailedFitsLeaveTheStoreAlone) {
    const std::size_t before = model_list<logisticRegModel>().size();
    // Perfect separation: the likelihood climbs to 0 and the curvature left
    // is too small to invert.
    dvec coefs;
    const LogLikelihood end =
        logistic_newton({{1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}},
                        {0, 0, 0, 0, 0, 1, 1, 1, 1, 1}, dvec(10, 1.0), {0, 0}, coefs);
    EXPECT_GT(end.value, -1e-10);
    EXPECT_GT(coefs[0], 10.0);
    EXPECT_THROW(logistic_reg(column("x", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}),
                              column("y", {0, 0, 0, 0, 0, 1, 1, 1, 1, 1}), CellMatrix()),
                 const char*);
    const CellMatrix dependent =
        logistic_reg(table_with_header({"a", "c"}, {{1, 3}, {2, 3}, {4, 3}}),
                     column("y", {0, 1, 1}), CellMatrix());
    EXPECT_EQ(dependent.RowsInStructure(), 1u);
    EXPECT_EQ(model_list<logisticRegModel>().size(), before);
}

}  // namespace
}  // namespace zentable
