#include "stats/binning.hpp"

#include <gtest/gtest.h>

#include <boost/math/distributions/normal.hpp>
#include <string>
#include <vector>

#include "stats_testing.hpp"

namespace zentable {
namespace {

using testing::blank;
using testing::cells_of;
using testing::failure_text;
using testing::make_table;
using testing::number_at;
using Row = std::vector<std::string>;

TEST(Binning, CountsWithOutlyingValuesInTheEndBinsAndFailures) {
    // Width 2 over [0, 10). 10 itself and 15 fall in the last bin, -3 in the
    // first; the text and the blank are no values.
    const CellMatrix x = make_table(
        {{"x"}, {0.0}, {1.9}, {2.0}, {9.99}, {10.0}, {-3.0}, {"n/a"}, {15.0}, {blank}, {5.0}});
    const auto f = [](double v) { return "n:" + number_to_text(v); };
    EXPECT_EQ(cells_of(binning(x, 0.0, 10.0, 5.0)),
              (std::vector<Row>{{"s:Bin", "s:Min", "s:Max", "s:Mid", "s:Freq", "s:Percent"},
                                {"n:1", "n:0", "n:2", "n:1", "n:3", f(3.0 / 8)},
                                {"n:2", "n:2", "n:4", "n:3", "n:1", f(1.0 / 8)},
                                {"n:3", "n:4", "n:6", "n:5", "n:1", f(1.0 / 8)},
                                {"n:4", "n:6", "n:8", "n:7", "n:0", "n:0"},
                                {"n:5", "n:8", "n:10", "n:9", "n:3", f(3.0 / 8)}}));

    const std::string bad_bins = "Input numBins must be a positive integer";
    EXPECT_EQ(failure_text([&] { binning(x, 0, 1, 0); }), bad_bins);
    EXPECT_EQ(failure_text([&] { binning(x, 0, 1, 2.5); }), bad_bins);
    EXPECT_EQ(failure_text([&] { binning(x, 1, 1, 3); }),
              "Input upper must be larger than input lower");
}

TEST(QQPlot, SortedValuesBesideNormalQuantilesOfTheirLevels) {
    const CellMatrix x = make_table({{"height"}, {3.5}, {"x"}, {1.0}, {4.0}, {2.0}});
    const CellMatrix t = QQ_plot(x);
    ASSERT_EQ(t.RowsInStructure(), 5u);
    ASSERT_EQ(t.ColumnsInStructure(), 4u);
    EXPECT_EQ(cells_of(t)[0], (Row{"s:#", "s:Prob level", "s:Q", "s:height"}));
    const boost::math::normal standard;
    const double levels[] = {0.125, 0.375, 0.625, 0.875};
    const double sorted[] = {1.0, 2.0, 3.5, 4.0};
    for (std::size_t i = 1; i <= 4; ++i) {
        EXPECT_EQ(number_at(t, i, 0), static_cast<double>(i));
        EXPECT_EQ(number_at(t, i, 1), levels[i - 1]);
        EXPECT_NEAR(number_at(t, i, 2), boost::math::quantile(standard, levels[i - 1]), 1e-14);
        EXPECT_EQ(number_at(t, i, 3), sorted[i - 1]);
    }
    // The published value at 0.875.
    EXPECT_NEAR(number_at(t, 4, 2), 1.1503493803760079, 1e-14);
}

}  // namespace
}  // namespace zentable
