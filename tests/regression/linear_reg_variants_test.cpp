#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "../support/render.hpp"
#include "../support/tables.hpp"
#include "../xlw/table_builder.hpp"
#include "regression/linear_reg.hpp"
#include "regression/linear_reg_variants.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::make_table;
using testing::thrown_text;

const std::string kTooFew =
    "Cannot perform linear regression when the number of data points is less than or equal to "
    "the number of variables";

CellMatrix columns(const std::vector<std::string>& names,
                   const std::vector<std::vector<double>>& values) {
    CellMatrix t(values[0].size() + 1, names.size());
    for (std::size_t j = 0; j < names.size(); ++j) {
        t(0, j) = names[j];
        for (std::size_t i = 0; i < values[j].size(); ++i)
            if (!std::isnan(values[j][i]))
                t(i + 1, j) = values[j][i];
    }
    return t;
}

CellMatrix cell(double value) {
    return CellMatrix(value);
}
CellMatrix cell(int value) {
    return CellMatrix(static_cast<double>(value));
}
CellMatrix cell(const char* text) {
    return CellMatrix(text);
}
const CellMatrix kOmitted(1, 1);

std::string temp_path(const std::string& name) {
    return ::testing::TempDir() + "lrv_" + name;
}

void write_file(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
}

std::string read_file(const std::string& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Two reports agree cell by cell, kind and value, apart from the handle in
// the first cell and the command named in the last row.
void expect_same_report(const CellMatrix& a, const CellMatrix& b, double tolerance = 0.0) {
    ASSERT_EQ(a.RowsInStructure(), b.RowsInStructure());
    ASSERT_EQ(a.ColumnsInStructure(), b.ColumnsInStructure());
    for (std::size_t i = 1; i + 1 < a.RowsInStructure(); ++i)
        for (std::size_t j = 0; j < a.ColumnsInStructure(); ++j) {
            SCOPED_TRACE("cell " + std::to_string(i) + "," + std::to_string(j));
            ASSERT_EQ(a(i, j).kind(), b(i, j).kind());
            if (a(i, j).IsString()) {
                EXPECT_EQ(a(i, j).StringValue(), b(i, j).StringValue());
            } else if (a(i, j).IsANumber()) {
                EXPECT_NEAR(a(i, j).NumericValue(), b(i, j).NumericValue(), tolerance);
            }
        }
}

std::string last_line(const CellMatrix& report) {
    return report(report.RowsInStructure() - 1, 0).StringValue();
}

TEST(LinearRegFromFile, ReportsAsLinearRegDoesOnTheSameCells) {
    const std::string path = temp_path("from_file.csv");
    // A text column that is not used, a record with an empty x2 and one with a
    // text y: both are dropped, as read_xyw drops them from cells.
    write_file(path,
               " x1 ;x2;note;y;w\n"
               "1;5;a;1.5;1\n"
               "2;;b;3;2\n"
               "3;8;c;2.25;1\n"
               "4;1;d;5;0.5\n"
               "5;2;e;none;1\n"
               "6;9;f;6;1\n"
               "7;4;g;5.5;3\n"
               "8;6;h;7;1\n");
    const double gap = NAN;
    const CellMatrix x =
        columns({"x1", "x2"}, {{1, 2, 3, 4, 5, 6, 7, 8}, {5, gap, 8, 1, 2, 9, 4, 6}});
    const CellMatrix y = column("y", {1.5, 3, 2.25, 5, gap, 6, 5.5, 7});
    const CellMatrix w = column("w", {1, 2, 1, 0.5, 1, 1, 3, 1});
    const CellMatrix names = make_table({{"x1", "x2"}});

    const CellMatrix plain =
        linear_reg_from_file(path, names, cell("y"), kOmitted, kOmitted, cell(";"));
    const CellMatrix table = linear_reg(x, y, kOmitted, kOmitted);
    expect_same_report(plain, table);
    EXPECT_EQ(plain(4, 1).NumericValue(), 6.0);
    EXPECT_EQ(plain(0, 0).StringValue().rfind("linearRegModel->", 0), 0u);
    EXPECT_EQ(last_line(plain), "End of output: linear_reg");

    expect_same_report(
        linear_reg_from_file(path, names, cell("y"), cell("w"), cell(0.5), cell(";")),
        linear_reg(x, y, w, cell(0.5)));

    std::remove(path.c_str());
}

TEST(LinearRegNz, FitsExactlyTheRecordsWithNonZeroY) {
    const CellMatrix x =
        columns({"a", "b"}, {{1, 2, 3, 4, 5, 6, 7, 8, 9}, {2, 7, 1, 8, 2, 8, 1, 8, 3}});
    const CellMatrix y = column("y", {3, 0, 4, 1e-17, 5, -0.0, 9, 2, 6});
    const CellMatrix w = column("w", {1, 5, 2, 5, 1, 5, 0.5, 1, 2});
    const CellMatrix kept_x = columns({"a", "b"}, {{1, 3, 5, 7, 8, 9}, {2, 1, 2, 1, 8, 3}});
    const CellMatrix kept_y = column("y", {3, 4, 5, 9, 2, 6});
    const CellMatrix kept_w = column("w", {1, 2, 1, 0.5, 1, 2});

    const CellMatrix nz = linear_reg_nz(x, y, w, kOmitted);
    expect_same_report(nz, linear_reg(kept_x, kept_y, kept_w, kOmitted));
    EXPECT_EQ(last_line(nz), "End of output: linear_reg_nz");
    expect_same_report(linear_reg_nz(x, y, kOmitted, cell(0.25)),
                       linear_reg(kept_x, kept_y, kOmitted, cell(0.25)));

    EXPECT_EQ(thrown_text([&] {
                  linear_reg_nz(x, column("y", {0, 0, 0, 0, 0, 0, 0, 0, 0}), kOmitted, kOmitted);
              }),
              kTooFew);
}

// t = 1..6 and y = 1, 3, 0, 5, 4, 8: without the zero, y = 1, 3, 5, 4, 8 at
// t = 1, 2, 4, 5, 6. Windows of 3 with one standard deviation:
//   {5, 3, 1}: mean 3, sd 2, so 5;   {4, 5, 3}: mean 4, sd 1, so 5;
//   {8, 4, 5}: mean 17/3, sd sqrt(13/3).
const double kLastEnvelope = 17.0 / 3 + std::sqrt(13.0 / 3);

TEST(LinearRegEnvelope, FitsTheEnvelopeWorkedByHandAndFails) {
    const CellMatrix t = column("t", {1, 2, 3, 4, 5, 6});
    const CellMatrix y = column("y", {1, 3, 0, 5, 4, 8});
    const CellMatrix w = column("w", {9, 9, 9, 2, 1, 3});

    const CellMatrix report = linear_reg_envelope(t, y, cell(3), cell(1), w, kOmitted);
    expect_same_report(report,
                       linear_reg(column("t", {4, 5, 6}), column("y", {5, 5, kLastEnvelope}),
                                  column("w", {2, 1, 3}), kOmitted),
                       1e-12);
    EXPECT_EQ(last_line(report), "End of output: linear_reg_envelope");

    // Unweighted, the line through (4, 5), (5, 5), (6, e) has slope (e - 5) / 2
    // and passes through (5, (10 + e) / 3).
    const CellMatrix plain = linear_reg_envelope(t, y, cell(3), cell(1), kOmitted, kOmitted);
    const double slope = (kLastEnvelope - 5) / 2;
    EXPECT_EQ(plain(4, 1).NumericValue(), 3);
    EXPECT_NEAR(plain(22, 2).NumericValue(), slope, 1e-12);
    EXPECT_NEAR(plain(21, 2).NumericValue(), (10 + kLastEnvelope) / 3 - 5 * slope, 1e-12);

    // A window of one is y itself, whatever numStdev.
    expect_same_report(linear_reg_envelope(t, y, cell(1), cell(5), w, cell(0.5)),
                       linear_reg_nz(t, y, w, cell(0.5)));

    // Five non-zero records: a window of five leaves one record, of nine none.
    EXPECT_EQ(thrown_text([&] { linear_reg_envelope(t, y, cell(5), cell(1), kOmitted, kOmitted); }),
              kTooFew);
    EXPECT_EQ(thrown_text([&] { linear_reg_envelope(t, y, cell(9), cell(1), kOmitted, kOmitted); }),
              kTooFew);
    EXPECT_EQ(thrown_text([&] { linear_reg_envelope(t, y, cell(0), cell(1), kOmitted, kOmitted); }),
              "Input numPoints must be a positive integer");
    EXPECT_EQ(
        thrown_text([&] { linear_reg_envelope(t, y, cell(2), kOmitted, kOmitted, kOmitted); }),
        "Input numStdev must be a number");
    // lambda is decoded before the window.
    EXPECT_EQ(thrown_text([&] { linear_reg_envelope(t, y, cell(0), cell(1), kOmitted, cell(-1)); }),
              "The ridge constants lambda for ridge regression must be non-negative");
}

TEST(LinearRegEnvelopeFromFile, WritesTheEnvelopeFitAndForecastWorkedByHand) {
    const std::string in = temp_path("envelope_in.csv");
    const std::string out = temp_path("envelope_out.csv");
    // The record with a text x is dropped, as is the zero y; the third column
    // is not used.
    write_file(in, "t,sales,note\n1,1,a\n2,3,b\n3,0,c\n4,5,d\n5,4,e\nlate,7,f\n6,8,g\n");
    const CellMatrix report = linear_reg_envelope_from_file(in, cell(3), cell(1), cell(2), cell(2),
                                                            out, kOmitted, kOmitted);
    // The line through (4, 5), (5, 5), (6, 7.748...): slope 1.37417, intercept
    // -0.95472; forecasts at t = 8 and 10.
    EXPECT_EQ(read_file(out),
              "t,sales,envelope,fitted\n"
              "4.00,5.00,5.00,4.54\n"
              "5.00,4.00,5.00,5.92\n"
              "6.00,8.00,7.75,7.29\n"
              "8.00,,,10.04\n"
              "10.00,,,12.79\n");
    expect_same_report(report, linear_reg_envelope(column("t", {1, 2, 3, 4, 5, 6}),
                                                   column("sales", {1, 3, 0, 5, 4, 8}), cell(3),
                                                   cell(1), kOmitted, kOmitted));
    EXPECT_EQ(report(22, 1).StringValue(), "t");
    EXPECT_EQ(last_line(report), "End of output: linear_reg_envelope_from_file");

    // A window of one keeps y; the line is 7/3 + t/2, so 2.83, 3.33, 3.83 and
    // 4.33 at the forecast t = 4, all at no decimals.
    write_file(in, "t;sales\n1;2\n2;5\n3;3\n");
    linear_reg_envelope_from_file(in, cell(1), cell(0), cell(1), cell(1), out, cell(";"), cell(0));
    EXPECT_EQ(read_file(out), "t;sales;envelope;fitted\n1;2;2;3\n2;5;5;3\n3;3;3;4\n4;;;4\n");
    std::remove(in.c_str());
    std::remove(out.c_str());
}

TEST(LinearRegEnvelopeFromFile, ChecksItsArgumentsInOrder) {
    const std::string in = temp_path("envelope_args.csv");
    const std::string out = temp_path("envelope_args_out.csv");
    write_file(in, "t,y\n1,1\n2,3\n3,2\n4,5\n");
    auto failure = [&](const std::string& outfile, const CellMatrix& points,
                       const CellMatrix& stdev, const CellMatrix& step, const CellMatrix& forecast,
                       const CellMatrix& delimiter, const CellMatrix& digits) {
        return thrown_text([&] {
            linear_reg_envelope_from_file(in, points, stdev, step, forecast, outfile, delimiter,
                                          digits);
        });
    };
    const CellMatrix bad = cell("bad");
    EXPECT_EQ(failure(in, bad, bad, bad, bad, cell(1), bad),
              "Input file and output file must be different");
    EXPECT_EQ(failure(out, bad, bad, bad, bad, cell(1), bad), "delimiter must be a char");
    EXPECT_EQ(failure(out, cell(-2), bad, bad, bad, kOmitted, bad),
              "Input numPoints must be a positive integer");
    EXPECT_EQ(failure(out, cell(2), bad, bad, bad, kOmitted, bad),
              "Input numStdev must be a number");
    EXPECT_EQ(failure(out, cell(2), cell(1), cell(0), bad, kOmitted, bad),
              "Input stepSize must be a positive integer");
    EXPECT_EQ(failure(out, cell(2), cell(1), cell(1), cell(-1), kOmitted, bad),
              "Input numForecast must be a non-negative integer");
    EXPECT_EQ(failure(out, cell(2), cell(1), cell(1), kOmitted, kOmitted, cell(1)),
              "Input numForecast must be a non-negative integer");
    EXPECT_EQ(failure(out, cell(2), cell(1), cell(1), cell(0), kOmitted, cell(-1)),
              "Input digits must be a non-negative integer");
    EXPECT_EQ(failure(out, cell(4), cell(1), cell(1), cell(0), kOmitted, kOmitted), kTooFew);
    EXPECT_EQ(failure(temp_path("no/such/dir.csv"), cell(2), cell(1), cell(1), cell(0), kOmitted,
                      kOmitted),
              "Error: cannot open output file " + temp_path("no/such/dir.csv"));

    write_file(in, "t,y\n1,1\n2\n3,2\n");
    EXPECT_EQ(failure(out, cell(1), cell(1), cell(1), cell(0), kOmitted, kOmitted),
              "Error: data line 2 has 1 fields, which is less than expected in " + in);
    std::remove(in.c_str());
    std::remove(out.c_str());
}

TEST(LinearRegScoreFromCoefs, ScoresAsWorkedByHand) {
    const CellMatrix data = columns({"x1", "x2", "x3"}, {{1, 2, -1}, {10, 0, 4}, {100, 7, 3}});
    // 3 + 0.5 x2 - 2 x1: 3 + 5 - 2 = 6, 3 + 0 - 4 = -1, 3 + 2 + 2 = 7; names
    // are trimmed and a header row is passed over.
    const CellMatrix coefs =
        make_table({{"Variable", "Estimate"}, {" x2", 0.5}, {"Intercept ", 3.0}, {"x1", -2.0}});
    EXPECT_EQ(testing::render(linear_reg_score_from_coefs(coefs, data)), "'yhat'\n6\n-1\n7\n");

    // Without a header or an intercept: 0.25 x3 alone.
    const CellMatrix x3 = linear_reg_score_from_coefs(make_table({{"x3", 0.25}}), data);
    EXPECT_EQ(x3(1, 0).NumericValue(), 25.0);
    EXPECT_EQ(x3(3, 0).NumericValue(), 0.75);

    EXPECT_EQ(thrown_text([&] {
                  linear_reg_score_from_coefs(make_table({{"x1", 1.0}, {"X2", 1.0}}), data);
              }),
              "The variable in coefficients, X2, cannot be found in data matrix");
    const std::string bad_coefs =
        "coefs must hold variable names in the first column and coefficients in the second";
    EXPECT_EQ(thrown_text([&] {
                  linear_reg_score_from_coefs(make_table({{"x1", 1.0}, {"x2", "two"}}), data);
              }),
              bad_coefs);
    EXPECT_EQ(thrown_text([&] { linear_reg_score_from_coefs(column("x1", {1}), data); }),
              bad_coefs);
}

}  // namespace
}  // namespace zentable
