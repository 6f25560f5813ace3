#include <gtest/gtest.h>

#include <boost/math/distributions/fisher_f.hpp>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <variant>
#include <vector>

#include "../support/render.hpp"
#include "../support/tables.hpp"
#include "models/model_eval.hpp"
#include "regression/linear_reg.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::table_with_header;
using testing::thrown_text;

using testing::render_report;

// An expected cell: blank, a text, or a number to within the tolerance.
using Cell = std::variant<std::monostate, std::string, double>;
using Grid = std::vector<std::vector<Cell>>;

void expect_table(const CellMatrix& t, const Grid& want, std::size_t columns, double tolerance) {
    ASSERT_EQ(t.RowsInStructure(), want.size());
    ASSERT_EQ(t.ColumnsInStructure(), columns);
    for (std::size_t i = 0; i < want.size(); ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            const Cell want_cell = j < want[i].size() ? want[i][j] : Cell{};
            const CellValue& c = t(i, j);
            if (const auto* text = std::get_if<std::string>(&want_cell)) {
                EXPECT_TRUE(c.IsString() && c.StringValue() == *text)
                    << "(" << i << "," << j << ") want '" << *text << "'";
            } else if (const auto* number = std::get_if<double>(&want_cell)) {
                ASSERT_TRUE(c.IsANumber()) << "(" << i << "," << j << ") want " << *number;
                if (std::isfinite(*number))
                    EXPECT_NEAR(c.NumericValue(), *number, tolerance)
                        << "(" << i << "," << j << ")";
                else
                    EXPECT_EQ(c.NumericValue(), *number) << "(" << i << "," << j << ")";
            } else {
                EXPECT_TRUE(c.IsEmpty()) << "(" << i << "," << j << ") want blank";
            }
        }
    }
}

std::string temp_file(const std::string& name, const std::string& text) {
    const std::string path = ::testing::TempDir() + "model_eval_" + name;
    std::ofstream(path) << text;
    return path;
}

const std::vector<std::string> kBinHeader = {
    "Decile",   "Freq",    "Bad",          "Min_Score", "Max_Score", "Mean_Score", "Mean_Bad",
    "Cum_Freq", "Cum_Bad", "Cum_Bad_Rate", "Cum_Rate",  "KS",        "Cum_Lift"};
const std::vector<std::string> kContHeader = {
    "Decile",      "Freq",       "Min_Score",       "Max_Score", "Mean_Score",
    "Mean_Actual", "Std_Actual", "Cum_Mean_Actual", "Cum_Lift"};

double number_at(const CellMatrix& t, std::size_t i, std::size_t j) {
    return t(i, j).NumericValue();
}

// Rows first to last - 1 as text, for comparing parts of two reports.
std::string render_rows(const CellMatrix& t, std::size_t first, std::size_t last) {
    CellMatrix part(last - first, t.ColumnsInStructure());
    for (std::size_t i = first; i < last; ++i)
        for (std::size_t j = 0; j < t.ColumnsInStructure(); ++j)
            part(i - first, j) = t(i, j);
    return testing::render(part);
}

std::vector<Cell> header_row(const std::vector<std::string>& names) {
    return std::vector<Cell>(names.begin(), names.end());
}

// Ten records worked by hand: scores 0.8 and 0.6 are tied across the classes.
const std::vector<double> kY = {1, 1, 0, 1, 0, 1, 0, 0, 1, 0};
const std::vector<double> kP = {0.9, 0.8, 0.8, 0.7, 0.6, 0.6, 0.6, 0.4, 0.3, 0.2};

TEST(ModelBinEval, HandWorkedReportMatchesPairCountsByBruteForce) {
    double c = 0, d = 0, t = 0;
    for (std::size_t i = 0; i < kY.size(); ++i)
        for (std::size_t j = 0; j < kY.size(); ++j)
            if (kY[i] == 1 && kY[j] == 0) {
                c += kP[i] > kP[j];
                d += kP[i] < kP[j];
                t += kP[i] == kP[j];
            }
    ASSERT_EQ(c, 16);
    ASSERT_EQ(d, 6);
    ASSERT_EQ(t, 3);
    const double pairs = 25, n = 10;

    // Four bins by average descending rank r and trunc(r * 4 / 11): the three
    // records at 0.6 (rank 6) stay together and join 0.4 in the third bin.
    const CellMatrix report =
        model_bin_eval(column("bad", kY), column("score", kP), CellMatrix(4.0), CellMatrix());
    expect_table(
        report,
        {{std::string("Binary Target Model Performance")},
         {},
         {std::string("%Concordant"), c / pairs, std::string("Somers' D"), (c - d) / pairs},
         {std::string("%Discordant"), d / pairs, std::string("Gamma"), (c - d) / (c + d)},
         {std::string("%Tied"), t / pairs, std::string("Tau-a"), 2 * (c - d) / (n * (n - 1))},
         {std::string("#Pairs"), pairs, std::string("c"), (c + 0.5 * t) / pairs},
         {},
         header_row(kBinHeader),
         {1.0, 3.0, 2.0, 0.8, 0.9, 2.5 / 3, 2.0 / 3, 3.0, 2.0, 2.0 / 3, 0.4, 0.2, 4.0 / 3},
         {2.0, 1.0, 1.0, 0.7, 0.7, 0.7, 1.0, 4.0, 3.0, 0.75, 0.6, 0.4, 1.5},
         {3.0, 4.0, 1.0, 0.4, 0.6, 0.55, 0.25, 8.0, 4.0, 0.5, 0.8, 0.0, 1.0},
         {4.0, 2.0, 1.0, 0.2, 0.3, 0.25, 0.5, 10.0, 5.0, 0.5, 1.0, 0.0, 1.0},
         {std::string("Total"), 10.0, 5.0, 0.2, 0.9, 0.59, 0.5, 10.0, 5.0, 0.5, 1.0, 0.4, 1.0},
         {},
         {std::string("End of output: model_bin_eval")}},
        13, 1e-12);

    // Ten bins leave codes 1, 4 and 6 empty; the deciles still count 1 to 7.
    const CellMatrix ten =
        model_bin_eval(column("bad", kY), column("score", kP), CellMatrix(10.0), CellMatrix());
    ASSERT_EQ(ten.RowsInStructure(), 18u);
    const double freq[] = {1, 2, 1, 3, 1, 1, 1};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(ten(8 + i, 0).NumericValue(), i + 1);
        EXPECT_EQ(ten(8 + i, 1).NumericValue(), freq[i]);
    }
    EXPECT_EQ(ten(15, 0).StringValue(), "Total");

    // Weights change the gains, not the pair counts: Freq is the weight sum,
    // Bad the weighted count of ones.
    const CellMatrix weighted =
        model_bin_eval(column("bad", kY), column("score", kP), CellMatrix(4.0),
                       column("w", {1, 2, 1, 1, 2, 1, 1, 3, 1, 1}));
    EXPECT_EQ(render_rows(weighted, 0, 8), render_rows(report, 0, 8));
    const double weight_sum[] = {4, 1, 7, 2, 14}, bad[] = {3, 1, 1, 1, 6};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(weighted(8 + i, 1).NumericValue(), weight_sum[i]) << i;
        EXPECT_EQ(weighted(8 + i, 2).NumericValue(), bad[i]) << i;
    }
}

TEST(ModelBinEval, DropsIncompleteRecordsAndChecksItsArguments) {
    // A text cell in any of the three vectors drops its record.
    CellMatrix p = column("score", kP);
    p(3, 0) = "n/a";
    std::vector<double> y_kept = kY, p_kept = kP;
    y_kept.erase(y_kept.begin() + 2);
    p_kept.erase(p_kept.begin() + 2);
    EXPECT_EQ(testing::render(model_bin_eval(column("bad", kY), p, CellMatrix(3.0), CellMatrix())),
              testing::render(model_bin_eval(column("bad", y_kept), column("score", p_kept),
                                             CellMatrix(3.0), CellMatrix())));

    const CellMatrix y = column("bad", kY), score = column("score", kP);
    EXPECT_EQ(thrown_text([&] { model_bin_eval(y, column("score", {0.5}), CellMatrix(2.0), {}); }),
              "The numbers of observations of y_actual and y_predicted must be the same");
    EXPECT_EQ(thrown_text([&] {
                  model_bin_eval(y, score, CellMatrix(2.0), column("w", {1, 2}));
              }),
              "The numbers of observations of y_actual must be the same as weight");
    for (const CellMatrix& bins :
         {CellMatrix(0.0), CellMatrix(0.9), CellMatrix(-3.0), CellMatrix("four"), CellMatrix()})
        EXPECT_EQ(thrown_text([&] { model_bin_eval(y, score, bins, CellMatrix()); }),
                  "Groups must be a positive integer");
    // 1.9 is truncated to one bin.
    EXPECT_EQ(model_bin_eval(y, score, CellMatrix(1.9), CellMatrix()).RowsInStructure(), 12u);
}

// A continuous example with its statistics worked out directly.
const std::vector<double> kActual = {3, 5, 4, 8, 10, 9, 12, 15};
const std::vector<double> kPredicted = {3.5, 4.5, 5, 7, 9, 10, 12.5, 14};

TEST(ModelContEval, ReportAgainstStatisticsComputedDirectlyAndMessages) {
    const double n = 8, k = 2;
    double ym = 0, pm = 0;
    for (std::size_t i = 0; i < 8; ++i) {
        ym += kActual[i] / n;
        pm += kPredicted[i] / n;
    }
    double sst = 0, ssr = 0, sse = 0;
    for (std::size_t i = 0; i < 8; ++i) {
        sst += (kActual[i] - ym) * (kActual[i] - ym);
        ssr += (kPredicted[i] - ym) * (kPredicted[i] - ym);
        sse += (kActual[i] - kPredicted[i]) * (kActual[i] - kPredicted[i]);
    }
    const double r2 = 1 - sse / sst, f = r2 / (1 - r2) * (n - k) / (k - 1);
    const double rmse = std::sqrt(sse / (n - k));
    const double p = boost::math::cdf(
        boost::math::complement(boost::math::fisher_f_distribution<double>(k - 1, n - k), f));

    // Three bins of the scores from high to low: ranks 1-2, 3-5, 6-8.
    auto sd = [](std::vector<double> v) {
        double m = 0, s = 0;
        for (double x : v)
            m += x / v.size();
        for (double x : v)
            s += (x - m) * (x - m);
        return std::sqrt(s / (v.size() - 1));
    };
    const double m1 = 13.5, m2 = 9, m3 = 4;
    const CellMatrix report = model_cont_eval(column("y", kActual), column("p", kPredicted),
                                              CellMatrix(2.0), CellMatrix(3.0), CellMatrix());
    expect_table(
        report,
        {{std::string("Continuous Target Model Performance")},
         {},
         {std::string("Analysis of Variance")},
         {},
         {std::string("Number of Records"), n},
         {std::string("Number of Parameters"), k},
         {std::string("R-Square"), r2},
         {std::string("Adj R-Square"), 1 - (n - 1) * (1 - r2) / (n - k)},
         {},
         {Cell{}, std::string("DF"), std::string("Sum"), std::string("Mean"),
          std::string("F Value"), std::string("P Value")},
         {std::string("SSR"), k - 1, ssr, ssr / (k - 1), f, p},
         {std::string("SSE"), n - k, sse, sse / (n - k)},
         {std::string("SST"), n - 1, sst, sst / (n - 1)},
         {},
         {std::string("RMSE"), rmse},
         {std::string("Y-actual Mean"), ym},
         {std::string("Y-predicted Mean"), pm},
         {std::string("Coeff Var"), rmse / ym},
         {},
         {std::string("Gains Chart")},
         {},
         header_row(kContHeader),
         {1.0, 2.0, 12.5, 14.0, 13.25, m1, sd({12, 15}), m1, m1 / ym},
         {2.0, 3.0, 7.0, 10.0, 26.0 / 3, m2, sd({8, 10, 9}), (27 + 27) / 5.0, (27 + 27) / 5.0 / ym},
         {3.0, 3.0, 3.5, 5.0, 13.0 / 3, m3, sd({3, 5, 4}), ym, 1.0},
         {std::string("Total"), 8.0, 3.5, 14.0, pm, ym, sd(kActual), ym, 1.0},
         {},
         {std::string("End of output: model_cont_eval")}},
        9, 1e-6);

    // A model of one parameter, as model_eval may pass, divides the SSR by zero.
    CellMatrix one;
    cont_eval_table({{1, 1.5, 1}, {3, 2.5, 1}}, 1, 1, "t", "n", one);
    EXPECT_EQ(number_at(one, 10, 1), 0);
    EXPECT_TRUE(std::isinf(number_at(one, 10, 3)));

    const CellMatrix y = column("y", kActual), predicted = column("p", kPredicted);
    for (const CellMatrix& k : {CellMatrix(1.9), CellMatrix("two"), CellMatrix()})
        EXPECT_EQ(
            thrown_text([&] { model_cont_eval(y, predicted, k, CellMatrix(3.0), CellMatrix()); }),
            "num_vars must be larger than or equal to 2");
    EXPECT_EQ(
        thrown_text([&] { model_cont_eval(y, predicted, CellMatrix(2.0), CellMatrix(0.5), {}); }),
        "groups must be a positive integer");
    EXPECT_EQ(
        thrown_text([&] {
            model_cont_eval(y, column("p", {1, 2}), CellMatrix(2.0), CellMatrix(3.0), CellMatrix());
        }),
        "The numbers of observations of y_actual and y_predicted must be the same");
}

TEST(EvaluationFromFile, TwinsReportAsTheirCellFormsOnTheSameData) {
    // An unused text column, and a record with no prediction, which both forms drop.
    std::string text = "id,actual,pred,w\n";
    std::vector<double> w = {1, 2, 1, 1, 2, 1, 1, 3, 1, 1};
    for (std::size_t i = 0; i < kY.size(); ++i)
        text += "r" + std::to_string(i) + "," + number_to_text(kY[i]) + "," +
                (i == 4 ? std::string("") : number_to_text(kP[i])) + "," + number_to_text(w[i]) +
                "\n";
    const std::string path = temp_file("bin.csv", text);
    CellMatrix p = column("pred", kP);
    p(5, 0).clear();  // blank: not a number
    const CellMatrix y = column("actual", kY), weights = column("w", w);

    const CellMatrix cells = model_bin_eval(y, p, CellMatrix(3.0), weights);
    const CellMatrix file =
        model_bin_eval_from_file(path, CellMatrix("actual"), CellMatrix("pred"), CellMatrix(3.0),
                                 CellMatrix("w"), CellMatrix(","));
    EXPECT_EQ(render_report(file, "model_bin_eval_from_file"),
              render_report(cells, "model_bin_eval"));
    EXPECT_EQ(cells(8, 1).NumericValue(), 4);  // 0.9 and both 0.8s, weights 1, 2, 1

    // The continuous twin closes with the sheet command's name.
    const CellMatrix cont_cells = model_cont_eval(y, p, CellMatrix(3.0), CellMatrix(4.0), weights);
    const CellMatrix cont_file =
        model_cont_eval_from_file(path, CellMatrix("actual"), CellMatrix("pred"), CellMatrix(3.0),
                                  CellMatrix(4.0), CellMatrix("w"), CellMatrix());
    EXPECT_EQ(render_report(cont_file, "model_cont_eval"),
              render_report(cont_cells, "model_cont_eval"));

    const CellMatrix actual("actual"), pred("pred");
    EXPECT_EQ(thrown_text([&] {
                  model_cont_eval_from_file(path, actual, pred, CellMatrix(2.0), CellMatrix(0.0),
                                            {}, {});
              }),
              "Groups must be a positive integer");
    EXPECT_EQ(thrown_text([&] {
                  model_cont_eval_from_file(path, actual, pred, CellMatrix(1.0), CellMatrix(3.0),
                                            {}, {});
              }),
              "num_vars must be larger than or equal to 2");
    EXPECT_EQ(thrown_text(
                  [&] { model_bin_eval_from_file(path, actual, pred, CellMatrix(-1.0), {}, {}); }),
              "Groups must be a positive integer");
    EXPECT_EQ(thrown_text([&] {
                  model_bin_eval_from_file(path, actual, CellMatrix(), CellMatrix(3.0), {}, {});
              }),
              "Error: predicted variable name (y_predicted_name) is missing");
    EXPECT_EQ(thrown_text([&] {
                  model_bin_eval_from_file(path, CellMatrix(), pred, CellMatrix(3.0), {}, {});
              }),
              "Error: dependent variable name (y_name) is missing");
    EXPECT_EQ(thrown_text([&] {
                  model_bin_eval_from_file(path, actual, CellMatrix("score"), CellMatrix(3.0), {},
                                           {});
              }),
              "Error: cannot find the variable (score) in data file");
    std::remove(path.c_str());
}

// x1, x2 and y with weights; y is not an exact linear function of x.
struct LinearData {
    std::vector<double> x1, x2, y, w;
    CellMatrix x() const {
        std::vector<std::vector<double>> rows;
        for (std::size_t i = 0; i < x1.size(); ++i)
            rows.push_back({x1[i], x2[i]});
        return table_with_header({"x1", "x2"}, rows);
    }
};

LinearData linear_data() {
    LinearData d;
    for (int i = 0; i < 14; ++i) {
        d.x1.push_back(i);
        d.x2.push_back((i * 7) % 5);
        d.y.push_back(2 + 0.5 * i - 1.5 * ((i * 7) % 5) + ((i * 13) % 7 - 3) * 0.4);
        d.w.push_back(1 + i % 3);
    }
    return d;
}

TEST(ModelEval, ScoresALinearModelAndReportsAsModelContEval) {
    const LinearData d = linear_data();
    const CellMatrix weights = column("w", d.w);
    const CellMatrix fit = linear_reg(d.x(), column("y", d.y), weights, CellMatrix());
    const std::string handle = fit(0, 0).StringValue();

    const CellMatrix report = model_eval(handle, d.x(), column("y", d.y), CellMatrix(4.0), weights);
    EXPECT_EQ(report(0, 0).StringValue(), "linearRegModel Performance");
    EXPECT_EQ(number_at(report, 5, 1), 3);  // two variables and the intercept
    // The least-squares fit's own analysis of variance, reached another way.
    for (std::size_t row : {6, 7})
        EXPECT_NEAR(number_at(report, row, 1), number_at(fit, row, 1), 1e-10) << row;
    for (std::size_t row : {10, 11, 12})
        for (std::size_t col = 1; col <= 3; ++col)
            EXPECT_NEAR(number_at(report, row, col), number_at(fit, row, col),
                        1e-9 * (1 + std::fabs(number_at(fit, row, col))))
                << row << "," << col;
    EXPECT_NEAR(number_at(report, 10, 4), number_at(fit, 10, 4), 1e-8);
    EXPECT_NEAR(number_at(report, 10, 5), number_at(fit, 10, 5), 1e-7);

    // The same report as model_cont_eval of the predictions from the fit's
    // estimates (intercept first in its table), but for title and name.
    std::vector<double> predicted;
    const double b0 = number_at(fit, 21, 2), b1 = number_at(fit, 22, 2), b2 = number_at(fit, 23, 2);
    for (std::size_t i = 0; i < d.y.size(); ++i)
        predicted.push_back(b0 + b1 * d.x1[i] + b2 * d.x2[i]);
    const CellMatrix direct = model_cont_eval(column("y", d.y), column("p", predicted),
                                              CellMatrix(3.0), CellMatrix(4.0), weights);
    ASSERT_EQ(report.RowsInStructure(), direct.RowsInStructure());
    const std::size_t last = report.RowsInStructure() - 1;
    EXPECT_EQ(report(last, 0).StringValue(), "End of output: model_eval");
    for (std::size_t i = 1; i < last; ++i)
        for (std::size_t j = 0; j < 9; ++j) {
            const CellValue &a = report(i, j), &b = direct(i, j);
            if (b.IsANumber()) {
                ASSERT_TRUE(a.IsANumber()) << i << "," << j;
                EXPECT_NEAR(a.NumericValue(), b.NumericValue(),
                            1e-9 * (1 + std::fabs(b.NumericValue())))
                    << i << "," << j;
            } else {
                EXPECT_EQ(a.IsString() ? a.StringValue() : "", b.IsString() ? b.StringValue() : "")
                    << i << "," << j;
            }
        }

    // The file twin offers the model every other column, in any order.
    std::string text = "y,x2,w,x1\n";
    for (std::size_t i = 0; i < d.y.size(); ++i)
        text += number_to_text(d.y[i]) + "," + number_to_text(d.x2[i]) + "," +
                number_to_text(d.w[i]) + "," + number_to_text(d.x1[i]) + "\n";
    text += "1,,1,2\n";  // incomplete: dropped, as a blank cell drops a row of x
    const std::string path = temp_file("linear.csv", text);
    const CellMatrix from_file = model_eval_from_file(
        handle, path, CellMatrix("y"), CellMatrix(4.0), CellMatrix("w"), CellMatrix());
    EXPECT_EQ(render_report(from_file, "model_eval"), render_report(report, "model_eval"));
    std::remove(path.c_str());
}

TEST(ModelEval, Messages) {
    const LinearData d = linear_data();
    const CellMatrix fit = linear_reg(d.x(), column("y", d.y), CellMatrix(), CellMatrix());
    const std::string handle = fit(0, 0).StringValue();
    CellMatrix x = d.x();
    for (std::size_t i = 1; i < x.RowsInStructure(); ++i)
        x(i, i % 2) = "missing";
    EXPECT_EQ(thrown_text([&] { model_eval(handle, x, column("y", d.y), CellMatrix(4.0), {}); }),
              "Number of non-missing records in input data is 0");
    for (const CellMatrix& bins : {CellMatrix(0.0), CellMatrix("ten"), CellMatrix()})
        EXPECT_EQ(thrown_text([&] { model_eval(handle, d.x(), column("y", d.y), bins, {}); }),
                  "numBins must be a positive integer");
    EXPECT_EQ(thrown_text([&] {
                  model_eval("noSuchModel->1", d.x(), column("y", d.y), CellMatrix(4.0), {});
              }),
              "Invalid model");
}

}  // namespace
}  // namespace zentable
