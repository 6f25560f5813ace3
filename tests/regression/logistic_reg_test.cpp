#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iomanip>
#include <random>
#include <string>
#include <vector>

#include "../support/render.hpp"
#include "../support/tables.hpp"
#include "../xlw/table_builder.hpp"
#include "models/model_eval.hpp"
#include "models/model_store.hpp"
#include "models/scoring.hpp"
#include "regression/logistic_fit.hpp"
#include "regression/logistic_reg.hpp"
#include "regression/logistic_reg_model.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::solve;
using testing::table_with_header;
using testing::thrown_text;

using testing::make_table;
using Rows = std::vector<std::vector<double>>;
using LongVec = std::vector<long double>;
using LongMat = std::vector<LongVec>;

double number(const CellMatrix& t, std::size_t r, std::size_t c) {
    EXPECT_TRUE(t(r, c).IsANumber()) << "cell " << r << "," << c;
    return t(r, c).IsANumber() ? t(r, c).NumericValue() : NAN;
}

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

// Numbers are shown only when whole, so that the layout is pinned without
// pinning the digits of the fit.
std::string layout(const CellMatrix& t) {
    CellMatrix masked(t.RowsInStructure(), t.ColumnsInStructure());
    for (std::size_t i = 0; i < t.RowsInStructure(); ++i)
        for (std::size_t j = 0; j < t.ColumnsInStructure(); ++j) {
            const CellValue& c = t(i, j);
            if (c.IsANumber() && c.NumericValue() != std::floor(c.NumericValue()))
                masked(i, j) = "~";
            else if (c.IsString() && c.StringValue().rfind("logisticRegModel->", 0) == 0)
                masked(i, j) = "HANDLE";
            else if (!c.IsEmpty())
                masked(i, j) = c;
        }
    return testing::render_report(masked, "logistic_reg");
}

TEST(LogisticFit, RecodeStandardiseAndLikelihoodByHand) {
    dvec y{2, 1, 2, 2};
    EXPECT_EQ(binary_recode(y), (dvec{1, 2}));
    EXPECT_EQ(y, (dvec{1, 0, 1, 1}));
    y = {-1, 1, 1};
    EXPECT_EQ(binary_recode(y), (dvec{-1, 1}));
    EXPECT_EQ(y, (dvec{0, 1, 1}));
    y = {0, 1, 2};
    EXPECT_EQ(thrown_text([&] { binary_recode(y); }),
              "Variable have 3 categories. It must be binary");

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

TEST(LogisticReg, ReportStatisticsAgainstTheReference) {
    const Sample s = draw(5, 300, true);
    const std::vector<std::string> names{"age", "score", "income"};
    const std::size_t before = model_list<logisticRegModel>().size();
    const CellMatrix r =
        logistic_reg(table_with_header(names, s.x), column("bad", s.y), column("w", s.w));
    EXPECT_EQ(model_list<logisticRegModel>().size(), before + 1);
    const Reference ref = newton_reference(s.x, s.y, s.w);
    const double n = 300, k = 4;
    double total = 0, events = 0;
    for (std::size_t i = 0; i < s.y.size(); ++i) {
        total += s.w[i];
        events += s.w[i] * s.y[i];
    }
    const double p = events / total;
    const double ll0 = total * (p * std::log(p) + (1 - p) * std::log(1 - p));
    const double ll = static_cast<double>(ref.ll);
    EXPECT_NEAR(number(r, 12, 1), 2 - 2 * ll0, 1e-9);
    EXPECT_NEAR(number(r, 12, 2), 2 * k - 2 * ll, 1e-8);
    EXPECT_NEAR(number(r, 13, 1), std::log(n) - 2 * ll0, 1e-9);
    EXPECT_NEAR(number(r, 13, 2), k * std::log(n) - 2 * ll, 1e-8);
    EXPECT_NEAR(number(r, 14, 1), -2 * ll0, 1e-9);
    EXPECT_NEAR(number(r, 14, 2), -2 * ll, 1e-8);
    const double r2 = 1 - std::exp(2 * (ll0 - ll) / n);
    EXPECT_NEAR(number(r, 15, 2), r2, 1e-10);
    EXPECT_NEAR(number(r, 16, 2), r2 / (1 - std::exp(2 * ll0 / n)), 1e-10);
    // Intercept first in the table, then the variables in input order.
    EXPECT_EQ(r(26, 1).StringValue(), "Intercept");
    for (std::size_t row = 0; row < 4; ++row) {
        expect_relative(number(r, 26 + row, 2), ref.coef[row], 1e-8, "estimate");
        expect_relative(number(r, 26 + row, 3), ref.se[row], 1e-8, "standard error");
    }
    EXPECT_EQ(r(28, 1).StringValue(), "score");

    // The association counts records, never weights: every pair of an event
    // and a non-event, compared by predicted probability.
    std::vector<double> prob;
    for (const auto& row : s.x) {
        long double eta = ref.coef[0];
        for (int j = 0; j < 3; ++j)
            eta += ref.coef[j + 1] * row[j];
        prob.push_back(static_cast<double>(1 / (1 + std::exp(-eta))));
    }
    double concordant = 0, discordant = 0, pairs = 0;
    for (std::size_t i = 0; i < prob.size(); ++i)
        for (std::size_t j = 0; j < prob.size(); ++j)
            if (s.y[i] == 1 && s.y[j] == 0) {
                ++pairs;
                concordant += prob[i] > prob[j];
                discordant += prob[i] < prob[j];
            }
    EXPECT_EQ(number(r, 21, 1), pairs);
    EXPECT_NEAR(number(r, 18, 1), concordant / pairs, 1e-12);
    EXPECT_NEAR(number(r, 19, 1), discordant / pairs, 1e-12);
    EXPECT_NEAR(number(r, 18, 3), (concordant - discordant) / pairs, 1e-12);
    EXPECT_NEAR(number(r, 21, 3), (concordant + 0.5 * (pairs - concordant - discordant)) / pairs,
                1e-12);
}

// Eight records, the target coded 1 and 2, so that 2 is the event.
const Rows kSmallX{{1, 4}, {2, 1}, {3, 3}, {4, 2}, {5, 6}, {6, 5}, {7, 8}, {8, 7}};
const std::vector<double> kSmallY{1, 2, 1, 1, 2, 1, 2, 2};

TEST(LogisticReg, ReportLayoutWithAndWithoutWeights) {
    const CellMatrix x = table_with_header({"a", "b"}, kSmallX);
    std::vector<double> bad;
    for (double v : kSmallY)
        bad.push_back(v - 1);
    const CellMatrix plain = logistic_reg(x, column("bad", bad), CellMatrix());
    ASSERT_EQ(plain.RowsInStructure(), 31u);
    ASSERT_EQ(plain.ColumnsInStructure(), 6u);
    EXPECT_EQ(layout(plain),
              "'HANDLE'|||||\n"
              "|||||\n"
              "'Model Performance'|||||\n"
              "|||||\n"
              "'bad'|'Freq'|'Percent'|||\n"
              "'ALL'|8|1|||\n"
              "1|4|'~'|||\n"
              "0|4|'~'|||\n"
              "'Probability Modeled is for bad'|1||||\n"
              "'Number of Parameters'|3||||\n"
              "|||||\n"
              "|'Intercept Only'|'Full Model'|||\n"
              "'AIC'|'~'|'~'|||\n"
              "'SC'|'~'|'~'|||\n"
              "'-2LogL'|'~'|'~'|||\n"
              "'R-Square'||'~'|||\n"
              "'Max-rescaled R-Square'||'~'|||\n"
              "|||||\n"
              "'%Concordant'|'~'|'Somers' D'|'~'||\n"
              "'%Discordant'|'~'|'Gamma'|'~'||\n"
              "'%Tied'|0|'Tau-a'|'~'||\n"
              "'#Pairs'|16|'c'|'~'||\n"
              "|||||\n"
              "'Model Parameter Estimates'|||||\n"
              "|||||\n"
              "'#'|'Variable'|'Estimate'|'Standard Error'|'Wald Chi-Square'|'P Value'\n"
              "0|'Intercept'|'~'|'~'|'~'|'~'\n"
              "1|'a'|'~'|'~'|'~'|'~'\n"
              "2|'b'|'~'|'~'|'~'|'~'\n");
    EXPECT_EQ(number(plain, 6, 2), 0.5);

    // With weights the weight columns appear; n stays a count of records.
    const CellMatrix weighted =
        logistic_reg(x, column("bad", bad), column("w", {1, 1, 1, 1, 1, 1, 3, 3}));
    const std::string expected_head =
        "'bad'|'Freq'|'Percent'|'Weight'|'Weight Percent'|\n"
        "'ALL'|8|1|12|1|\n"
        "1|4|0.5|8|0.6666666666666666|\n"
        "0|4|0.5|4|0.3333333333333333|\n";
    CellMatrix head(4, 6);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 6; ++j)
            head(i, j) = weighted(4 + i, j);
    EXPECT_EQ(testing::render(head), expected_head);
    EXPECT_EQ(number(weighted, 9, 1), 3.0);
    EXPECT_NEAR(number(weighted, 13, 1) - number(weighted, 14, 1), std::log(8.0), 1e-12);
    EXPECT_EQ(number(weighted, 21, 1), 16.0);
}

TEST(LogisticReg, TargetLevelsAreCodedAroundTheirMiddle) {
    const CellMatrix x = table_with_header({"a", "b"}, kSmallX);
    std::vector<double> coded, minus_one;
    for (double v : kSmallY) {
        coded.push_back(v == 2 ? 1 : 0);
        minus_one.push_back(v == 2 ? 1 : -1);
    }
    const CellMatrix base = logistic_reg(x, column("y", coded), CellMatrix());
    const CellMatrix two = logistic_reg(x, column("y", kSmallY), CellMatrix());
    const CellMatrix signs = logistic_reg(x, column("y", minus_one), CellMatrix());
    for (std::size_t row = 26; row < 29; ++row)
        for (std::size_t c = 2; c < 6; ++c) {
            EXPECT_EQ(number(two, row, c), number(base, row, c));
            EXPECT_EQ(number(signs, row, c), number(base, row, c));
        }
    EXPECT_EQ(number(signs, 6, 0), 1.0);
    EXPECT_EQ(number(signs, 7, 0), -1.0);
    EXPECT_EQ(number(base, 8, 1), 1.0);
}

TEST(LogisticReg, Failures) {
    const CellMatrix x = table_with_header({"a", "b"}, kSmallX);
    EXPECT_EQ(thrown_text([&] {
                  logistic_reg(x, column("y", {0, 1, 2, 0, 1, 2, 0, 1}), CellMatrix());
              }),
              "Variable have 3 categories. It must be binary");
    EXPECT_EQ(thrown_text([&] {
                  logistic_reg(x, column("y", {1, 1, 1, 1, 1, 1, 1, 1}), CellMatrix());
              }),
              "Variable have 1 categories. It must be binary");
    EXPECT_EQ(thrown_text([&] {
                  logistic_reg(x, column("y", {0, 1}), CellMatrix());
              }),
              "The numbers of observations in input data X, Y, and weight must be the same");

    // A constant column is a dependency: a one-cell table, no model filed.
    const std::size_t before = model_list<logisticRegModel>().size();
    Rows constant = kSmallX;
    for (auto& row : constant)
        row[1] = 3;
    const CellMatrix r =
        logistic_reg(table_with_header({"a", "c"}, constant), column("y", kSmallY), CellMatrix());
    EXPECT_EQ(testing::render(r),
              "'logistic_reg: input data matrix is not full rank. Some variables are linear "
              "combinations of other variables. Run matrix_corr() and matrix_sym_eign() to find "
              "linear relationships'\n");
    EXPECT_EQ(model_list<logisticRegModel>().size(), before);
}

TEST(LogisticReg, FitsThatCannotFinishLeaveTheStoreAlone) {
    const std::size_t before = model_list<logisticRegModel>().size();
    // Perfect separation: the likelihood climbs to 0 until the convergence
    // test stops it, and the curvature left is too small to invert.
    const CellMatrix x = column("x", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    const CellMatrix y = column("y", {0, 0, 0, 0, 0, 1, 1, 1, 1, 1});
    dvec coefs;
    const LogLikelihood end =
        logistic_newton({{1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}, {9}, {10}},
                        {0, 0, 0, 0, 0, 1, 1, 1, 1, 1}, dvec(10, 1.0), {0, 0}, coefs);
    EXPECT_GT(end.value, -1e-10);
    EXPECT_GT(coefs[0], 10.0);
    EXPECT_EQ(thrown_text([&] { logistic_reg(x, y, CellMatrix()); }),
              "matrix singular in inverse matrix");
    EXPECT_EQ(model_list<logisticRegModel>().size(), before);

    // Negative weights make the likelihood lose its single peak, and the
    // iteration runs out of steps.
    const CellMatrix x2 =
        column("x", {-0.964, 0.620, -0.014, -0.166, -1.133, -0.423, 1.295, 1.103, 0.060, 0.291});
    const CellMatrix y2 = column("y", {0, 1, 0, 0, 0, 0, 1, 1, 0, 1});
    const CellMatrix w2 = column("w", {1, 1, 1, 1, 1, 1, 1, -0.5, 1, -0.5});
    EXPECT_EQ(thrown_text([&] { logistic_reg(x2, y2, w2); }), "Not converge after ITMAX in newton");
    EXPECT_EQ(model_list<logisticRegModel>().size(), before);
}

TEST(LogisticReg, TheHandleScoresAndEvaluates) {
    const Sample s = draw(11, 120, false);
    const std::vector<std::string> names{"age", "score", "income"};
    const CellMatrix r =
        logistic_reg(table_with_header(names, s.x), column("y", s.y), CellMatrix());
    const std::string model = r(0, 0).StringValue();
    const double b0 = number(r, 26, 2), b1 = number(r, 27, 2), b2 = number(r, 28, 2),
                 b3 = number(r, 29, 2);
    auto prob = [&](double age, double score, double income) {
        return 1 / (1 + std::exp(-(b0 + b1 * age + b2 * score + b3 * income)));
    };

    // Columns found by name in any order; a row with a text cell gets ".".
    const CellMatrix data = make_table({{"income", "id", "age", "score"},
                                        {300, 1, 40, 0.5},
                                        {100, 2, "n/a", 0.5},
                                        {900, 3, 65, -1.0}});
    const CellMatrix scored = model_score(model, data);
    EXPECT_EQ(scored(0, 0).StringValue(), "Y Predicted");
    EXPECT_NEAR(number(scored, 1, 0), prob(40, 0.5, 300), 1e-14);
    EXPECT_EQ(scored(2, 0).StringValue(), ".");
    EXPECT_NEAR(number(scored, 3, 0), prob(65, -1.0, 900), 1e-14);

    const ModelScores sc = score_by_model(model, names, {s.x[0]});
    EXPECT_EQ(sc.type, "BIN");
    EXPECT_EQ(sc.levels, (dvec{0, 1}));
    EXPECT_EQ(sc.parameter_count, 0);

    // The evaluation on the fit's own data repeats the report's association.
    const CellMatrix eval = model_eval(model, table_with_header(names, s.x), column("y", s.y),
                                       CellMatrix(2.0), CellMatrix());
    bool found_c = false;
    for (std::size_t i = 0; i < eval.RowsInStructure(); ++i)
        for (std::size_t j = 0; j + 1 < eval.ColumnsInStructure(); ++j)
            if (eval(i, j).IsString() && eval(i, j).StringValue() == "c") {
                found_c = true;
                EXPECT_EQ(number(eval, i, j + 1), number(r, 21, 3));
            }
    EXPECT_TRUE(found_c);
    EXPECT_EQ(eval(0, 0).StringValue().rfind("logisticRegModel", 0), 0u);
}

TEST(LogisticReg, FromFileEqualsTheCells) {
    const Sample s = draw(3, 60, true);
    const std::string path = ::testing::TempDir() + "logistic_reg_data.txt";
    {
        // Seventeen digits: the file holds exactly the doubles that the cells do.
        std::ofstream out(path);
        out << std::setprecision(17) << "id;age;score;income;bad;w\n";
        for (std::size_t i = 0; i < s.y.size(); ++i)
            out << i << ';' << s.x[i][0] << ';' << s.x[i][1] << ';' << s.x[i][2] << ';' << s.y[i]
                << ';' << s.w[i] << '\n';
    }
    const CellMatrix cells = logistic_reg(table_with_header({"age", "score", "income"}, s.x),
                                          column("bad", s.y), column("w", s.w));
    const CellMatrix file =
        logistic_reg_from_file(path, make_table({{"age", "score", "income"}}), CellMatrix("bad"),
                               CellMatrix("w"), CellMatrix(";"));
    EXPECT_NE(cells(0, 0).StringValue(), file(0, 0).StringValue());
    CellMatrix a = cells, b = file;
    a(0, 0) = "handle";
    b(0, 0) = "handle";
    EXPECT_EQ(testing::render(a), testing::render(b));
}

TEST(LogisticRegScoreFromCoefs, MatchesNamesAndDefaultsToZero) {
    const CellMatrix data = make_table({{"a", "b", "c"}, {1, 2, 3}, {-1, 0, 4}});
    // Names in any order, a column left out counts 0, the intercept last.
    const CellMatrix r =
        logistic_reg_score_from_coefs(make_table({{"c", 0.5}, {"Intercept", -1}, {"a", 2}}), data);
    EXPECT_EQ(testing::render(r),
              "'yhat'\n" + number_to_text(1 / (1 + std::exp(-(-1 + 2 * 1 + 0.5 * 3)))) + "\n" +
                  number_to_text(1 / (1 + std::exp(-(-1 - 2 + 0.5 * 4)))) + "\n");
    const CellMatrix only = logistic_reg_score_from_coefs(make_table({{"Intercept", 0}}), data);
    EXPECT_EQ(testing::render(only), "'yhat'\n0.5\n0.5\n");
    EXPECT_EQ(thrown_text([&] {
                  logistic_reg_score_from_coefs(make_table({{"A", 1}}), data);
              }),
              "The variable in coefficients, A, cannot be found in data matrix");
}

}  // namespace
}  // namespace zentable
