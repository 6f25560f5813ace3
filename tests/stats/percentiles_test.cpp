#include "stats/percentiles.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "stats_testing.hpp"

namespace zentable {
namespace {

using testing::blank;
using testing::cells_of;
using testing::failure_text;
using testing::make_table;
using Row = std::vector<std::string>;

const CellMatrix kOmitted(1, 1);
const std::string kBadP =
    "Input percentiles p must be numbers between 0 and 1 inclusive in one row or one column";

TEST(Percentiles, OneGroupAndLabelsOfPTimes100At16Digits) {
    // Over four values p = 0.5 takes index 2, the third smallest; no interpolation.
    const CellMatrix x = make_table({{"x"}, {40.0}, {10.0}, {30.0}, {20.0}});
    EXPECT_EQ(cells_of(percentiles(x, make_table({{0.0, 0.5, 1.0, 0.3}}), kOmitted)),
              (std::vector<Row>{{"s:Class", "s:0", "s:50", "s:100", "s:30"},
                                {"s:All", "n:10", "n:30", "n:40", "n:20"}}));

    // In doubles 0.07 * 100 is 7.000000000000001 and 0.999 * 100 is
    // 99.90000000000001, while 0.025 * 100 is 2.5.
    const CellMatrix row = make_table({{"x", 1.0, 2.0}});  // a row is read along it
    const CellMatrix t = percentiles(row, make_table({{0.07}, {0.025}, {0.999}}), kOmitted);
    EXPECT_EQ(cells_of(t)[0],
              (Row{"s:Class", "s:7.000000000000001", "s:2.5", "s:99.90000000000001"}));
    EXPECT_EQ(cells_of(t)[1], (Row{"s:All", "n:1", "n:1", "n:2"}));
}

TEST(Percentiles, NumericClassesSortAsNumbersTextClassesAsText) {
    const CellMatrix x = make_table({{"x"}, {5.0}, {1.0}, {7.0}, {3.0}, {9.0}, {2.0}});
    const CellMatrix p = make_table({{0.0, 0.5, 1.0}});
    // As numbers 2 < 10; as text "10" < "2".
    EXPECT_EQ(cells_of(percentiles(
                  x, p, make_table({{"c"}, {2.0}, {10.0}, {2.0}, {1.0}, {10.0}, {2.0}}))),
              (std::vector<Row>{{"s:Class", "s:0", "s:50", "s:100"},
                                {"n:1", "n:3", "n:3", "n:3"},
                                {"n:2", "n:2", "n:5", "n:7"},
                                {"n:10", "n:1", "n:9", "n:9"}}));
    // One text makes all classes text; the blank class sorts first.
    EXPECT_EQ(cells_of(percentiles(
                  x, p, make_table({{"c"}, {2.0}, {10.0}, {2.0}, {"b"}, {10.0}, {blank}}))),
              (std::vector<Row>{{"s:Class", "s:0", "s:50", "s:100"},
                                {"s:", "n:2", "n:2", "n:2"},
                                {"s:10", "n:1", "n:9", "n:9"},
                                {"s:2", "n:5", "n:7", "n:7"},
                                {"s:b", "n:3", "n:3", "n:3"}}));
}

TEST(Percentiles, InputFailures) {
    const CellMatrix x = make_table({{"x"}, {1.0}, {2.0}});
    EXPECT_EQ(failure_text([&] { percentiles(x, make_table({{0.5, 1.5}}), kOmitted); }), kBadP);
    EXPECT_EQ(failure_text([&] { percentiles(x, make_table({{-0.1}}), kOmitted); }), kBadP);
    EXPECT_EQ(failure_text([&] {
                  percentiles(x, CellMatrix(0.5), make_table({{"c"}, {1.0}}));
              }),
              "The sizes of classVar and x must be the same");
}

}  // namespace
}  // namespace zentable
