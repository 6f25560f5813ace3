#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "../support/render.hpp"
#include "../xlw/table_builder.hpp"
#include "stats/freq.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {
namespace {

using testing::blank;
using testing::make_table;
using testing::thrown;

// Reports here close with their command's line, checked by every render.
std::string render(const CellMatrix& t) {
    return testing::render_report(t, "freq");
}

// The rows after the title, the blank row and the first header.
std::string body(const CellMatrix& t) {
    const std::string all = render(t);
    std::size_t at = 0;
    for (int line = 0; line < 3; ++line) {
        at = all.find('\n', at) + 1;
    }
    return all.substr(at);
}

std::string write_file(const std::string& name, const std::string& text) {
    const std::string path = ::testing::TempDir() + name;
    std::ofstream(path) << text;
    return path;
}

const CellMatrix kOmitted(1, 1);

// Numbers as cells and as text key by value (2 < 2.5 < 10, where text order
// would put 10 first); a column starting with text keys by text.
CellMatrix sample() {
    return make_table({{"n", "color", "code"},
                       {10, "red", "b"},
                       {2, "blue", "10"},
                       {"10", "red", "9"},
                       {blank, blank, blank},
                       {2.5, "green", "b"}});
}

TEST(Freq, BlocksCountValuesInKeyOrderWithFractions) {
    EXPECT_EQ(render(freq(sample(), kOmitted)),
              "'Frequency tables'||||\n"
              "||||\n"
              "'n'|'Freq'|'Percent'|'CumFreq'|'CumPercent'\n"
              "2|1|0.25|1|0.25\n"
              "2.5|1|0.25|2|0.5\n"
              "10|2|0.5|4|1\n"
              "||||\n"
              "'color'|'Freq'|'Percent'|'CumFreq'|'CumPercent'\n"
              "'blue'|1|0.25|1|0.25\n"
              "'green'|1|0.25|2|0.5\n"
              "'red'|2|0.5|4|1\n"
              "||||\n"
              "'code'|'Freq'|'Percent'|'CumFreq'|'CumPercent'\n"
              "'10'|1|0.25|1|0.25\n"
              "'9'|1|0.25|2|0.5\n"
              "'b'|2|0.5|4|1\n");
}

TEST(Freq, MissingRowJoinsTheTotalOnlyWhenAskedFor) {
    const CellMatrix t = make_table({{"v"}, {"a"}, {blank}, {"b"}, {"a"}, {"  "}});
    EXPECT_EQ(render(freq(t, CellMatrix(1.0))),
              "'Frequency tables'||||\n"
              "||||\n"
              "'v'|'Freq'|'Percent'|'CumFreq'|'CumPercent'\n"
              "'a'|2|0.4|2|0.4\n"
              "'b'|1|0.2|3|0.6\n"
              "'Missing'|2|0.4|5|1\n");
    // 0 is the default: missing values leave the total.
    EXPECT_EQ(render(freq(t, CellMatrix(0.0))), render(freq(t, kOmitted)));
    EXPECT_EQ(body(freq(t, kOmitted)),
              "'a'|2|0.6666666666666666|2|0.6666666666666666\n"
              "'b'|1|0.3333333333333333|3|1\n");
    // A leading missing value does not make a numeric column text.
    EXPECT_EQ(body(freq(make_table({{"v"}, {blank}, {10}, {9}}), kOmitted)),
              "9|1|0.5|1|0.5\n10|1|0.5|2|1\n");
}

TEST(Freq, Failures) {
    const std::string message = "Input includeMissing must be 0 or 1";
    EXPECT_EQ(thrown([&] { freq(sample(), CellMatrix(2.0)); }), "literal: " + message);
    EXPECT_EQ(thrown([&] { freq(sample(), CellMatrix("yes")); }), "string: " + message);
    EXPECT_EQ(thrown([&] {
                  freq(make_table({{"a", 1}, {1, 2}}), kOmitted);
              }),
              "literal: Headers for variable names must be strings");
    EXPECT_EQ(thrown([&] { freq_from_file("x.csv", kOmitted, kOmitted, kOmitted); }),
              "string: Error: variable names (varNames) are missing");
    EXPECT_EQ(thrown([&] {
                  freq_from_file(::testing::TempDir() + "no_such_file.csv", make_table({{"a"}}),
                                 kOmitted, kOmitted);
              }),
              "string: Error: cannot open file " + ::testing::TempDir() + "no_such_file.csv");
}

TEST(Freq, FileTwinGivesTheSameTable) {
    const std::string path = write_file("freq_twin.csv",
                                        "n;color;code;other\n"
                                        "10;red;b;x\n"
                                        "2;blue;10;x\n"
                                        "10; red ;9;x\n"
                                        ";;;x\n"
                                        "2.5;green;b;x\n");
    const CellMatrix names = make_table({{"n", "color", "code"}});
    for (double include : {0.0, 1.0}) {
        EXPECT_EQ(render(freq_from_file(path, names, CellMatrix(";"), CellMatrix(include))),
                  render(freq(sample(), CellMatrix(include))));
    }
    EXPECT_EQ(thrown([&] { freq_from_file(path, make_table({{"N"}}), CellMatrix(";"), kOmitted); }),
              "string: Error: cannot find the variable (N) in data file");
}

}  // namespace
}  // namespace zentable
