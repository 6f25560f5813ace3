#include "stats/means.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "stats_testing.hpp"

namespace zentable {
namespace {

using testing::cells_of;
using testing::failure_text;
using testing::make_table;
using testing::number_at;
using Row = std::vector<std::string>;

// a: 4, 1, 3, 2 with a text and a blank; b: one value; c: no numbers at all.
CellMatrix small_table() {
    return make_table({{"a", "b", "c"},
                       {4.0, "x", "text"},
                       {1.0, 7.5, testing::blank},
                       {"n/a", testing::blank, true},
                       {3.0, testing::blank, testing::blank},
                       {testing::blank, testing::blank, testing::blank},
                       {2.0, testing::blank, testing::blank}});
}

TEST(Means, ReportsCountsSumsPopulationStdevAndExtremes) {
    // Population stdev of 1..4: sqrt(((1.5^2 + 0.5^2) * 2) / 4) = sqrt(1.25).
    EXPECT_EQ(cells_of(means(small_table())),
              (std::vector<Row>{{"s:Variable", "s:Nmiss", "s:Freq", "s:Sum", "s:Avg", "s:Stdev",
                                 "s:Min", "s:Max"},
                                {"s:a", "n:2", "n:4", "n:10", "n:2.5",
                                 "n:" + number_to_text(std::sqrt(1.25)), "n:1", "n:4"},
                                {"s:b", "n:5", "n:1", "n:7.5", "n:7.5", "n:0", "n:7.5", "n:7.5"},
                                {"s:c", "n:6", "n:0", "n:0", "n:0", "n:0", "n:0", "n:0"}}));
}

TEST(Univariate, ReportsSampleStdevPercentilesAndExtremes) {
    const CellMatrix t = univariate(small_table());
    const Row header = {"s:Variable", "s:Nmiss", "s:Freq", "s:Sum",  "s:Avg",  "s:Stdev", "s:1%",
                        "s:2.5%",     "s:5%",    "s:10%",  "s:25%",  "s:50%",  "s:75%",   "s:90%",
                        "s:95%",      "s:97.5%", "s:99%",  "s:Min",  "s:Min2", "s:Min3",  "s:Min4",
                        "s:Min5",     "s:Max1",  "s:Max2", "s:Max3", "s:Max4", "s:Max"};
    const std::vector<std::vector<std::string>> cells = cells_of(t);
    ASSERT_EQ(cells.size(), 4u);
    EXPECT_EQ(cells[0], header);
    // Sample stdev of 1..4: sqrt(5 / 3). Over four values the index trunc(4p)
    // reaches 1 at 25%, 2 at 50% and 3 at 75%. Short lists repeat their ends.
    EXPECT_EQ(
        cells[1],
        (Row{"s:a", "n:2", "n:4", "n:10", "n:2.5", "n:" + number_to_text(std::sqrt(5.0 / 3.0)),
             "n:1", "n:1", "n:1", "n:1",  "n:2",   "n:3",
             "n:4", "n:4", "n:4", "n:4",  "n:4",   "n:1",
             "n:2", "n:3", "n:4", "n:4",  "n:1",   "n:1",
             "n:2", "n:3", "n:4"}));
    // A single value has no spread in either form.
    EXPECT_EQ(number_at(t, 2, 5), 0.0);
    EXPECT_EQ(cells[3][1], "n:6");
    for (std::size_t j = 2; j < header.size(); ++j)
        EXPECT_EQ(cells[3][j], "n:0") << header[j];
}

TEST(Univariate, PercentilesByIndexAndSumsInRecordOrder) {
    // 1..10 in a scrambled order: percentile p is the value at trunc(10 p).
    const CellMatrix t =
        make_table({{"v"}, {7.0}, {3.0}, {10.0}, {1.0}, {5.0}, {9.0}, {2.0}, {8.0}, {6.0}, {4.0}});
    const CellMatrix u = univariate(t);
    // 1%, 2.5%, 5% -> index 0; 10% -> 1; 25% -> 2; 50% -> 5; 75% -> 7; 90% and up -> 9.
    const double expected[] = {1, 1, 1, 2, 3, 6, 8, 10, 10, 10, 10, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    for (int k = 0; k < 21; ++k)
        EXPECT_EQ(number_at(u, 1, 6 + k), expected[k]) << "column " << 6 + k;

    // In record order 1e16 - 1e16 + 1 is 1; in sorted order the 1 is lost.
    const CellMatrix cancel = make_table({{"v"}, {1e16}, {-1e16}, {1.0}});
    EXPECT_EQ(number_at(univariate(cancel), 1, 3), 1.0);
    EXPECT_EQ(number_at(means(cancel), 1, 3), 1.0);
}

TEST(Means, InputFailures) {
    EXPECT_EQ(failure_text([] {
                  means(make_table({{"a", 1.0}, {1.0, 2.0}}));
              }),
              "Headers for variable names must be strings");
    EXPECT_EQ(failure_text([] {
                  univariate(make_table({{"a", "b"}}));
              }),
              "Input data table is empty");
}

// The same data as a table and as a file, with non-numbers of each kind.
TEST(MeansFromFile, SameTableAsCellsAndFailures) {
    const std::string path = testing::temp_file(
        "means.csv", "id;b;a\n1;2.5;4\n2;;1\n3;x;1e1\n4;-3;3 \n5;0.125;2\n6;7;-1\n7; 8; \n");
    // The same records as cells: a blank, a text and "3 " (trailing blank) are missing.
    const CellMatrix cells = make_table({{"a", "b"},
                                         {4.0, 2.5},
                                         {1.0, testing::blank},
                                         {10.0, "x"},
                                         {"3 ", -3.0},
                                         {2.0, 0.125},
                                         {-1.0, 7.0},
                                         {testing::blank, 8.0}});
    const CellMatrix names = testing::text_row({"a", "b"});
    const CellMatrix semicolon(";");
    testing::expect_same_table(means_from_file(path, names, semicolon), means(cells));
    testing::expect_same_table(univariate_from_file(path, names, semicolon), univariate(cells));
    EXPECT_EQ(number_at(means_from_file(path, names, semicolon), 1, 1), 2.0);  // Nmiss of a

    const std::string comma = testing::temp_file("means_names.csv", "a,b\n1,2\n");
    const std::string head_only = testing::temp_file("means_head.csv", "a,b\n");
    const CellMatrix omitted(1, 1);
    EXPECT_EQ(failure_text([&] { means_from_file(comma, omitted, omitted); }),
              "Error: variable names (varNames) are missing");
    EXPECT_EQ(failure_text([&] { univariate_from_file(comma, CellMatrix("z"), omitted); }),
              "Error: cannot find the variable (z) in data file");
    EXPECT_EQ(failure_text([&] { means_from_file(head_only, CellMatrix("a"), omitted); }),
              "Input data table is empty");
}

TEST(SortColumns, TwoThreadsSortEveryColumnAsOneWould) {
    std::mt19937 gen(7);
    std::vector<dvec> columns;
    for (std::size_t size : {70000u, 10u, 0u, 40000u, 25000u}) {
        dvec c(size);
        for (double& v : c)
            v = static_cast<double>(gen() % 1000);  // with many ties
        columns.push_back(c);
    }
    std::vector<dvec> expected = columns;
    for (dvec& c : expected)
        std::sort(c.begin(), c.end());
    sort_columns(columns);
    EXPECT_EQ(columns, expected);
}

}  // namespace
}  // namespace zentable
