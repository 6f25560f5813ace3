#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "../support/render.hpp"
#include "../xlw/table_builder.hpp"
#include "stats/summary.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {
namespace {

using testing::blank;
using testing::make_table;
using testing::thrown;

// Reports here close with their command's line, checked by every render.
std::string render(const CellMatrix& t) {
    return testing::render_report(t, "summary");
}

// The first `lines` rows of render(t).
std::string head(const CellMatrix& t, std::size_t lines) {
    const std::string all = render(t);
    std::size_t at = 0;
    for (std::size_t i = 0; i < lines; ++i) {
        at = all.find('\n', at) + 1;
    }
    return all.substr(0, at);
}

// The two class cells of a row, as render shows them.
std::string class_cells(const CellMatrix& t, std::size_t row) {
    std::string out = t(row, 0).IsString() ? "'" + t(row, 0).StringValue() + "'" : "";
    out += '|';
    if (t(row, 1).IsANumber()) {
        out += number_to_text(t(row, 1).NumericValue());
    }
    return out;
}

const CellMatrix kOmitted(1, 1);

const CellMatrix kClasses = make_table({{"region", "year"},
                                        {"E", 2020},
                                        {"W", 2020},
                                        {"E", 2021},
                                        {"E", 2020},
                                        {"W", 2021},
                                        {"E", 2021}});
const CellMatrix kX = make_table({{"sales"}, {10}, {4}, {6}, {2}, {8}, {4}});
const CellMatrix kWeight = make_table({{"w"}, {1}, {2}, {3}, {1}, {1}, {1}});

// Freq, Sumwgt, then Sum, Avg, Stdev, Min, Max of sales, as worked by hand.
// Stdev is sqrt(sum w (x - avg)^2 / sum w * n / (n - 1)).
struct Expected {
    double type, freq, sumwgt, sum, avg, stdev, min, max;
};

void expect_row(const CellMatrix& t, std::size_t row, const Expected& e) {
    const double got[] = {t(row, 2).NumericValue(), t(row, 3).NumericValue(),
                          t(row, 4).NumericValue(), t(row, 5).NumericValue(),
                          t(row, 6).NumericValue(), t(row, 7).NumericValue(),
                          t(row, 8).NumericValue(), t(row, 9).NumericValue()};
    const double want[] = {e.type, e.freq, e.sumwgt, e.sum, e.avg, e.stdev, e.min, e.max};
    for (int i = 0; i < 8; ++i) {
        EXPECT_NEAR(got[i], want[i], 1e-13 * std::max(1.0, std::fabs(want[i])))
            << "row " << row << " value " << i;
    }
}

TEST(Summary, WeightedStatisticsOfEveryCombination) {
    const CellMatrix t = summary(kClasses, kX, kWeight, kOmitted, kOmitted);
    ASSERT_EQ(t.RowsInStructure(), 7u + 2u);  // with the closing line
    ASSERT_EQ(t.ColumnsInStructure(), 10u);
    EXPECT_EQ(head(t, 3),
              "'Summary'|||||||||\n"
              "|||||||||\n"
              "'region'|'year'|'Type'|'Freq'|'Sumwgt'|'sales_Sum'|'sales_Avg'|'sales_Stdev'|"
              "'sales_Min'|'sales_Max'\n");
    const char* groups[] = {"'E'|2020", "'E'|2021", "'W'|2020", "'W'|2021"};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(class_cells(t, 3 + i), groups[i]);
    }
    // E 2020: 10 and 2, weights 1 and 1.
    expect_row(t, 3, {3, 2, 2, 12, 6, std::sqrt(32.0), 2, 10});
    // E 2021: 6 and 4, weights 3 and 1: avg 22/4, squares 3(0.5)^2 + (1.5)^2 = 3.
    expect_row(t, 4, {3, 2, 4, 22, 5.5, std::sqrt(3.0 / 4 * 2), 4, 6});
    expect_row(t, 5, {3, 1, 2, 8, 4, 0, 4, 4});
    expect_row(t, 6, {3, 1, 1, 8, 8, 0, 8, 8});
}

TEST(Summary, NwayZeroGivesEverySubsetFromTheWholeUp) {
    const CellMatrix t = summary(kClasses, kX, kWeight, CellMatrix(0.0), kOmitted);
    ASSERT_EQ(t.RowsInStructure(), 3u + 9u + 2u);  // with the closing line
    // Type 0, then year alone (1), region alone (2), both (3).
    const char* labels[] = {"'All'|",   "|2020",    "|2021",    "'E'|",    "'W'|",
                            "'E'|2020", "'E'|2021", "'W'|2020", "'W'|2021"};
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(class_cells(t, 3 + i), labels[i]);
    }
    // All: sum w = 9, sum wx = 50, sum wx^2 = 324, so squares 324 - 2500/9 = 416/9.
    expect_row(t, 3, {0, 6, 9, 50, 50.0 / 9, std::sqrt(416.0 / 9 / 9 * 6 / 5), 2, 10});
    // 2020: 10, 4, 2 with weights 1, 2, 1: avg 5, squares 25 + 2 + 9.
    expect_row(t, 4, {1, 3, 4, 20, 5, std::sqrt(36.0 / 4 * 3 / 2), 2, 10});
    // 2021: 6, 8, 4 with weights 3, 1, 1: avg 6, squares 0 + 4 + 4.
    expect_row(t, 5, {1, 3, 5, 30, 6, std::sqrt(8.0 / 5 * 3 / 2), 4, 8});
    // E: 10, 6, 2, 4 with weights 1, 3, 1, 1: avg 17/3, squares 228 - 6 (17/3)^2 = 106/3.
    expect_row(t, 6, {2, 4, 6, 34, 34.0 / 6, std::sqrt(106.0 / 3 / 6 * 4 / 3), 2, 10});
    // W: 4, 8 with weights 2, 1: avg 16/3, squares 32/9 + 64/9.
    expect_row(t, 7, {2, 2, 3, 16, 16.0 / 3, 8.0 / 3, 4, 8});
    expect_row(t, 8, {3, 2, 2, 12, 6, std::sqrt(32.0), 2, 10});
    expect_row(t, 11, {3, 1, 1, 8, 8, 0, 8, 8});
}

TEST(Summary, ChosenStatisticsInTheirOrderForEachVariable) {
    const CellMatrix x = make_table({{"a", "b"}, {1, 10}, {3, 30}});
    const CellMatrix classes = make_table({{"c"}, {"k"}, {"k"}});
    // Unit weights: the sample deviation of 1 and 3 is sqrt(2).
    EXPECT_EQ(render(summary(classes, x, kOmitted, kOmitted,
                             make_table({{"max", " STDEV ", "Sum", blank}}))),
              "'Summary'|||||||||\n"
              "|||||||||\n"
              "'c'|'Type'|'Freq'|'Sumwgt'|'a_Max'|'a_Stdev'|'a_Sum'|'b_Max'|'b_Stdev'|'b_Sum'\n"
              "'k'|1|2|2|3|1.414213562373095|4|30|14.14213562373095|40\n");
}

TEST(Summary, Failures) {
    auto call = [](const CellMatrix& c, const CellMatrix& x, const CellMatrix& w,
                   const CellMatrix& nway, const CellMatrix& output) {
        return thrown([&] { summary(c, x, w, nway, output); });
    };
    EXPECT_EQ(call(kClasses, kX, kWeight, CellMatrix(2.0), kOmitted),
              "literal: Input nway must be 1 or 0");
    EXPECT_EQ(call(kClasses, kX, kWeight, CellMatrix("all"), kOmitted),
              "string: Input nway must be 1 or 0");
    EXPECT_EQ(call(kClasses, kX, kWeight, kOmitted, make_table({{"Sum", "Median"}})),
              "literal: Error: output must be Sum, Avg, Stdev, Min, Max");
    EXPECT_EQ(call(kClasses, kX, kWeight, kOmitted, make_table({{"Sum", 1}})),
              "literal: Error: output must be Sum, Avg, Stdev, Min, Max");
    EXPECT_EQ(call(kClasses, kX, kWeight, kOmitted, make_table({{"Sum", "Avg"}, {"Min", "Max"}})),
              "literal: Error: output must be in one row or one column");
    const std::string counts =
        "literal: The numbers of records in classVars, x, and weight must be the same";
    EXPECT_EQ(call(kClasses, make_table({{"sales"}, {1}}), kOmitted, kOmitted, kOmitted), counts);
    EXPECT_EQ(call(kClasses, kX, make_table({{"w"}, {1}, {2}}), kOmitted, kOmitted), counts);
    EXPECT_EQ(call(kClasses, make_table({{"s"}, {"low"}}), kOmitted, kOmitted, kOmitted),
              "literal: Input x must be numeric variables");
    EXPECT_EQ(thrown([] {
                  summary_from_file("f.csv", CellMatrix("c"), kOmitted, kOmitted, kOmitted,
                                    kOmitted);
              }),
              "string: Error: analysis variable names (xNames) are missing");
    EXPECT_EQ(thrown([] {
                  summary_from_file("f.csv", CellMatrix("c"), CellMatrix("x"),
                                    make_table({{"w", "v"}}), kOmitted, kOmitted);
              }),
              "string: Error: only one weight variable name (w_name) is allowed");
}

TEST(Summary, FileTwinGivesTheSameTable) {
    const std::string path = ::testing::TempDir() + "summary_twin.csv";
    std::ofstream(path) << "w,year,note,sales,region\n"
                           "1,2020,x,10,E\n"
                           "2,2020,x,4,W\n"
                           "3,2021,x,6,E\n"
                           "1,2020,x,2,E\n"
                           "1,2021,x,8,W\n"
                           "1,2021,x,4,E\n";
    for (double nway : {0.0, 1.0}) {
        EXPECT_EQ(
            render(summary_from_file(path, make_table({{"region"}, {"year"}}), CellMatrix("sales"),
                                     CellMatrix("w"), CellMatrix(nway), kOmitted)),
            render(summary(kClasses, kX, kWeight, CellMatrix(nway), kOmitted)));
    }
    // Without a weight every record weighs 1.
    EXPECT_EQ(render(summary_from_file(path, make_table({{"region", "year"}}), CellMatrix("sales"),
                                       kOmitted, kOmitted, CellMatrix(","))),
              render(summary(kClasses, kX, kOmitted, kOmitted, kOmitted)));
}

}  // namespace
}  // namespace zentable
