#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <dirent.h>
#include <stdlib.h>

#include "../support/tables.hpp"
#include "learners/svm.hpp"
#include "models/scoring.hpp"

namespace zentable {
namespace {

using namespace zentable::testing;

// Twenty records of four inputs with no pattern the fit could find by luck,
// and a binary and a continuous target made from them.
std::vector<std::vector<double>> inputs() {
    std::vector<std::vector<double>> rows;
    for (int i = 0; i < 20; ++i)
        rows.push_back({double(i % 7), double((i * 3) % 5) + 0.5, double((i * i) % 11) / 4.0,
                        i < 10 ? 1.0 : 3.0});
    return rows;
}
const std::vector<std::string> kNames{"a", "b", "c", "d"};

std::vector<double> binary_target() {
    std::vector<double> y;
    for (const auto& r : inputs())
        y.push_back(r[0] + r[1] - r[2] > 3.0 ? 7.0 : 2.0);  // levels 2 and 7
    y[3] = 7.0 - y[3] + 2.0;                                // one record against the rule
    return y;
}

std::vector<double> continuous_target() {
    std::vector<double> y;
    for (const auto& r : inputs())
        y.push_back(2.0 * r[0] - r[1] + 0.5 * r[2] + r[3]);
    return y;
}

std::string fresh_directory() {
    std::string pattern = ::testing::TempDir() + "svmXXXXXX";
    return mkdtemp(&pattern[0]);
}

std::string only_file(const std::string& dir, const std::string& prefix) {
    std::string found;
    DIR* d = opendir(dir.c_str());
    while (dirent* e = readdir(d))
        if (std::string(e->d_name).rfind(prefix, 0) == 0)
            found = dir + "/" + e->d_name;
    closedir(d);
    return found;
}

std::vector<std::string> lines_of(const std::string& path) {
    std::ifstream in(path);
    std::vector<std::string> out;
    for (std::string line; std::getline(in, line);)
        out.push_back(line);
    return out;
}

// Equal line for line, numbers to 1e-12: the test's own scaling may round the
// data file's last digit otherwise, which moves the solution by as much.
void expect_same_model(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::istringstream x(a[i]), y(b[i]);
        std::string u, v;
        while (x >> u) {
            ASSERT_TRUE(bool(y >> v)) << a[i] << " | " << b[i];
            char* end = nullptr;
            const double p = std::strtod(u.c_str(), &end);
            if (*end == '\0' && !u.empty())
                EXPECT_NEAR(p, std::strtod(v.c_str(), nullptr), 1e-12 * std::max(1.0, std::fabs(p)))
                    << a[i] << " | " << b[i];
            else
                EXPECT_EQ(u, v);
        }
        EXPECT_FALSE(bool(y >> v)) << b[i];
    }
}

std::vector<std::string> without_probabilities(std::vector<std::string> lines) {
    std::vector<std::string> out;
    for (const std::string& l : lines)
        if (l.rfind("probA", 0) != 0 && l.rfind("probB", 0) != 0)
            out.push_back(l);
    return out;
}

// Standardised by mean and population deviation, written again here.
std::vector<std::vector<double>> standardised(std::vector<std::vector<double>> rows,
                                              std::vector<double>* y = nullptr) {
    const double n = double(rows.size());
    for (std::size_t j = 0; j < rows[0].size(); ++j) {
        double mean = 0, ss = 0;
        for (const auto& r : rows)
            mean += r[j] / n;
        for (const auto& r : rows)
            ss += (r[j] - mean) * (r[j] - mean);
        for (auto& r : rows)
            r[j] = (r[j] - mean) / std::sqrt(ss / n);
    }
    if (y) {
        double mean = 0, ss = 0;
        for (double v : *y)
            mean += v / n;
        for (double v : *y)
            ss += (v - mean) * (v - mean);
        for (double& v : *y)
            v = (v - mean) / std::sqrt(ss / n);
    }
    return rows;
}

std::string write_data(const std::string& path, const std::vector<double>& labels,
                       const std::vector<std::vector<double>>& rows, bool integer_labels) {
    std::FILE* f = std::fopen(path.c_str(), "w");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (integer_labels)
            std::fprintf(f, "%d", int(labels[i]));
        else
            std::fprintf(f, "%.16g", labels[i]);
        for (std::size_t j = 0; j < rows[i].size(); ++j)
            std::fprintf(f, " %zu:%.16g", j + 1, rows[i][j]);
        std::fputs("\n", f);
    }
    std::fclose(f);
    return path;
}

void run(const std::string& command) {
    ASSERT_EQ(std::system((command + " >/dev/null 2>&1").c_str()), 0) << command;
}

// The numbers of a prediction file's lines: the last field, the probability
// of label 1 when the head line lists "labels -1 1" or "labels 0 1" in the order
// the tool found them.
std::vector<double> tool_column(const std::string& path, bool probability) {
    std::vector<std::string> lines = lines_of(path);
    std::size_t field = 0;
    if (probability) {
        std::istringstream head(lines[0]);
        std::string word;
        head >> word;
        for (std::size_t k = 1; head >> word; ++k)
            if (word == "1")
                field = k;
        lines.erase(lines.begin());
    }
    std::vector<double> out;
    for (const std::string& l : lines) {
        std::istringstream in(l);
        double v = 0;
        for (std::size_t k = 0; k <= field; ++k)
            in >> v;
        out.push_back(v);
    }
    return out;
}

std::vector<double> scores(const CellMatrix& report) {
    const CellMatrix s =
        model_score(report(0, 0).StringValue(), table_with_header(kNames, inputs()));
    std::vector<double> out;
    for (std::size_t i = 1; i < s.RowsInStructure(); ++i)
        out.push_back(s(i, 0).NumericValue());
    return out;
}

std::size_t row_of(const CellMatrix& r, const std::string& label) {
    for (std::size_t i = 0; i < r.RowsInStructure(); ++i)
        if (r(i, 0).IsString() && r(i, 0).StringValue() == label)
            return i;
    return r.RowsInStructure();
}

const CellMatrix none(1, 1);

// Gamma omitted on four inputs reaches the library as 0.25, which the tool,
// reading single precision, also holds exactly; C 1 likewise.
TEST(Svm, ClassifierEqualsTheToolsAndItsPairCount) {
    const std::string dir = fresh_directory();
    const std::vector<double> y = binary_target();
    const CellMatrix report =
        svm(make_table({{dir.c_str()}}), table_with_header(kNames, inputs()), column("y", y),
            make_table({{"svc"}}), make_table({{"rbf"}}), none, none, none, none, none, none, none);
    const std::string model = only_file(dir, "tmp_svm_model_");
    std::vector<double> labels;
    for (double v : y)
        labels.push_back(v == 7.0 ? 1 : -1);
    const std::string data = write_data(dir + "/mine.txt", labels, standardised(inputs()), true);
    run("svm-train -s 0 -t 2 -c 1 -g 0.25 -b 1 " + data + " " + dir + "/tool_model.txt");
    expect_same_model(without_probabilities(lines_of(model)),
                      without_probabilities(lines_of(dir + "/tool_model.txt")));
    EXPECT_EQ(lines_of(model)[2], "gamma 0.25");

    run("svm-predict -b 1 " + data + " " + model + " " + dir + "/tool_predict.txt");
    const std::vector<double> tool = tool_column(dir + "/tool_predict.txt", true);
    const std::vector<double> mine = scores(report);
    ASSERT_EQ(mine.size(), tool.size());
    for (std::size_t i = 0; i < tool.size(); ++i)
        EXPECT_NEAR(mine[i], tool[i], 5e-6 * std::max(1.0, tool[i]));

    // c by counting every pair of an event and a non-event.
    double concordant = 0, tied = 0, pairs = 0;
    for (std::size_t i = 0; i < y.size(); ++i)
        for (std::size_t j = 0; j < y.size(); ++j)
            if (y[i] == 7.0 && y[j] == 2.0) {
                ++pairs;
                concordant += mine[i] > mine[j];
                tied += mine[i] == mine[j];
            }
    const std::size_t last = row_of(report, "#Pairs");
    ASSERT_LT(last, report.RowsInStructure());
    EXPECT_EQ(report(last, 1).NumericValue(), pairs);
    EXPECT_EQ(report(last, 2).StringValue(), "c");
    EXPECT_NEAR(report(last, 3).NumericValue(), (concordant + 0.5 * tied) / pairs, 1e-12);
}

// The tool's single precision holds 0.5 exactly; 0.1 it would not.
TEST(Svm, RegressionScoresAreTheToolsUnscaled) {
    const std::string dir = fresh_directory();
    std::vector<double> y = continuous_target();
    const CellMatrix report = svm(
        make_table({{dir.c_str()}}), table_with_header(kNames, inputs()), column("y", y),
        make_table({{"SVR"}}), make_table({{"POLYNOMIAL"}}), make_table({{2.5}}),
        make_table({{0.5}}), make_table({{2}}), make_table({{0.5}}), make_table({{1}}), none, none);
    const std::string model = only_file(dir, "tmp_svm_model_");
    double mean = 0, ss = 0;
    for (double v : y)
        mean += v / y.size();
    for (double v : y)
        ss += (v - mean) * (v - mean);
    const double sd = std::sqrt(ss / y.size());
    std::vector<double> scaled_y = y;
    const std::string data =
        write_data(dir + "/mine.txt", scaled_y, standardised(inputs(), &scaled_y), false);
    run("svm-train -s 3 -t 1 -c 2.5 -p 0.5 -d 2 -g 0.5 -r 1 " + data + " " + dir +
        "/tool_model.txt");
    expect_same_model(lines_of(model), lines_of(dir + "/tool_model.txt"));

    run("svm-predict " + data + " " + model + " " + dir + "/tool_predict.txt");
    const std::vector<double> tool = tool_column(dir + "/tool_predict.txt", false);
    const std::vector<double> mine = scores(report);
    double sse = 0, sst = 0;
    for (std::size_t i = 0; i < tool.size(); ++i) {
        EXPECT_NEAR(mine[i], tool[i] * sd + mean, 1e-12 * std::fabs(mean));
        sse += (y[i] - mine[i]) * (y[i] - mine[i]);
        sst += (y[i] - mean) * (y[i] - mean);
    }
    const std::size_t r2 = row_of(report, "R-Square");
    const std::size_t rmse = row_of(report, "RMSE");
    ASSERT_LT(rmse, report.RowsInStructure());
    EXPECT_NEAR(report(r2, 1).NumericValue(), 1.0 - sse / sst, 1e-10);
    EXPECT_NEAR(report(rmse, 1).NumericValue(), std::sqrt(sse / (y.size() - 5)), 1e-10);
}

// Unscaled, the classifier trains on the raw inputs and the labels 0 and 1;
// gamma 1/3 reaches the library as "%f" text, 0.333333.
TEST(Svm, UnscaledClassifierUsesRawDataAndSixDecimals) {
    const std::string dir = fresh_directory();
    std::vector<std::vector<double>> three;
    for (const auto& r : inputs())
        three.push_back({r[0], r[1], r[2]});
    const std::vector<double> y = binary_target();
    const CellMatrix report =
        svm(make_table({{dir.c_str()}}), table_with_header({"a", "b", "c"}, three), column("y", y),
            make_table({{"SVC"}}), make_table({{"LINEAR"}}), none, none, none, none, none, none,
            make_table({{0}}));
    const std::vector<std::string> model = lines_of(only_file(dir, "tmp_svm_model_"));
    EXPECT_EQ(model[1], "kernel_type linear");
    std::vector<std::string> label_line;
    for (const std::string& l : model)
        if (l.rfind("label ", 0) == 0)
            label_line.push_back(l);
    ASSERT_EQ(label_line.size(), 1u);
    EXPECT_TRUE(label_line[0] == "label 1 0" || label_line[0] == "label 0 1") << label_line[0];
    EXPECT_EQ(report(row_of(report, "kernelType") + 2, 0).StringValue(), "Model Performance");

    const CellMatrix again =
        svm(make_table({{dir.c_str()}}), table_with_header({"a", "b", "c"}, three), column("y", y),
            make_table({{"SVC"}}), make_table({{"RBF"}}), none, none, none, none, none, none,
            make_table({{0}}));
    EXPECT_EQ(lines_of(only_file(dir, "tmp_svm_model_"))[2], "gamma 0.33333299999999999");
    (void)again;
}

TEST(Svm, EqualSeedsGiveEqualModelFilesAndALostFileFailsAtScoring) {
    std::string first, second;
    CellMatrix report;
    for (std::string* model : {&first, &second}) {
        const std::string dir = fresh_directory();
        report = svm(make_table({{dir.c_str()}}), table_with_header(kNames, inputs()),
                     column("y", binary_target()), make_table({{"SVC"}}), make_table({{"RBF"}}),
                     none, none, none, none, none, make_table({{7}}), none);
        *model = only_file(dir, "tmp_svm_model_");
    }
    EXPECT_EQ(lines_of(first), lines_of(second));
    std::remove(second.c_str());
    const std::string handle = report(0, 0).StringValue();
    EXPECT_EQ(thrown_text([&] { model_score(handle, table_with_header(kNames, inputs())); }),
              "can't open model file " + second);
}

// A binary label is cut to an integer; every value, zeros too, takes 16 digits.
TEST(Svm, DataFileFormat) {
    const std::string path = fresh_directory() + "/d.txt";
    writeSvmDataFile(path, "BIN", {1.9, -1.0}, {{0.0, 1.0 / 3.0}, {-2.5e-7, 1e20}});
    EXPECT_EQ(lines_of(path),
              (std::vector<std::string>{"1 1:0 2:0.3333333333333333", "-1 1:-2.5e-07 2:1e+20"}));
    writeSvmDataFile(path, "CONT", {2.0 / 3.0}, {{0.0}});
    EXPECT_EQ(lines_of(path), std::vector<std::string>{"0.6666666666666666 1:0"});
    EXPECT_EQ(thrown_text([&] { writeSvmDataFile(path, "ORD", {1.0}, {{0.0}}); }),
              "Only BIN and CONT of y support");
    EXPECT_EQ(thrown_text([&] { writeSvmDataFile("/no/such/d.txt", "BIN", {1.0}, {{0.0}}); }),
              "Error: open file /no/such/d.txt failed!");
}

}  // namespace
}  // namespace zentable
