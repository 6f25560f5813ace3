#include "stats/variable_corr_select.hpp"

#include <gtest/gtest.h>

#include <cmath>
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

// Weighted Pearson correlation by the textbook formula.
double weighted_corr(const dvec& a, const dvec& b, const dvec& w) {
    double sw = 0, ma = 0, mb = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sw += w[i];
        ma += w[i] * a[i];
        mb += w[i] * b[i];
    }
    ma /= sw;
    mb /= sw;
    double sab = 0, saa = 0, sbb = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sab += w[i] * (a[i] - ma) * (b[i] - mb);
        saa += w[i] * (a[i] - ma) * (a[i] - ma);
        sbb += w[i] * (b[i] - mb) * (b[i] - mb);
    }
    return sab / std::sqrt(saa * sbb);
}

// A symmetric matrix from its upper triangle, ones on the diagonal.
dmat symmetric(std::size_t p, const std::vector<std::vector<double>>& upper) {
    dmat m(p, dvec(p, 1.0));
    for (std::size_t i = 0; i < upper.size(); ++i)
        for (std::size_t k = 0; k < upper[i].size(); ++k)
            m[i][i + 1 + k] = m[i + 1 + k][i] = upper[i][k];
    return m;
}

std::vector<std::size_t> pair_list(const CorrSelection& s) {
    std::vector<std::size_t> out;
    for (const CorrSelection::Pair& p : s.pairs) {
        out.push_back(p.first);
        out.push_back(p.second);
        out.push_back(p.keeper);
    }
    return out;
}

TEST(SelectByCorrelation, StrongestKeeperFirstAndTiesToTheFirst) {
    // |corr with y|: v0 .5, v1 .9, v2 .3, v3 .6, v4 .2. Pairs at |r| >= .8:
    // (0,1) keeper 1, (0,2) keeper 0, (2,3) keeper 3, (3,4) keeper 3; (1,4)
    // at -.79 is out and (2,4) at exactly .8 is in, keeper 2.
    const dmat rxx =
        symmetric(5, {{0.95, -0.85, 0.1, 0.0}, {0.2, 0.3, -0.79}, {0.81, 0.8}, {-0.99}});
    const CorrSelection s = select_by_correlation(rxx, {0.5, -0.9, 0.3, 0.6, -0.2}, 0.8);
    EXPECT_EQ(pair_list(s),
              (std::vector<std::size_t>{0, 1, 1, 0, 2, 0, 2, 3, 3, 2, 4, 2, 3, 4, 3}));
    // Keeper 1 (.9) drops 0, which takes (0,2) with it. Keeper 3 (.6) then
    // drops 2 and 4, so 2 never gets to keep 4.
    EXPECT_EQ(s.dropped, (std::vector<std::size_t>{0, 2, 4}));

    // Equal |corr with y| everywhere: (0,1) is taken first and its keeper is 0.
    const CorrSelection tie =
        select_by_correlation(symmetric(3, {{0.9, 0.0}, {0.9}}), {0.4, -0.4, 0.4}, 0.5);
    EXPECT_EQ(pair_list(tie), (std::vector<std::size_t>{0, 1, 0, 1, 2, 1}));
    EXPECT_EQ(tie.dropped, (std::vector<std::size_t>{1}));
}

TEST(VariableCorrSelect, ReportsWeightedCorrelationsAndTheTwoLists) {
    const dvec x1 = {1, 2, 3, 4, 5, 6}, x2 = {1.1, 2.0, 2.9, 4.2, 4.8, 6.1},
               x3 = {1, -1, 0, 0, -1, 1}, x4 = {6.2, 4.9, 4.1, 2.8, 2.2, 0.9},
               y = {2, 1, 4, 3, 6, 5}, w = {1, 2, 1, 2, 1, 2};
    const std::vector<dvec> xs = {x1, x2, x3, x4};
    const char* names[] = {"x1", "x2", "x3", "x4"};
    // The records of the vectors, and a last one whose missing y keeps it out.
    const CellMatrix x = make_table({{"x1", "x2", "x3", "x4"},
                                     {1.0, 1.1, 1.0, 6.2},
                                     {2.0, 2.0, -1.0, 4.9},
                                     {3.0, 2.9, 0.0, 4.1},
                                     {4.0, 4.2, 0.0, 2.8},
                                     {5.0, 4.8, -1.0, 2.2},
                                     {6.0, 6.1, 1.0, 0.9},
                                     {100.0, -100.0, 100.0, 100.0}});
    const CellMatrix yt = make_table({{"y"}, {2.0}, {1.0}, {4.0}, {3.0}, {6.0}, {5.0}, {"."}});
    const CellMatrix wt = make_table({{"w"}, {1.0}, {2.0}, {1.0}, {2.0}, {1.0}, {2.0}, {1.0}});

    // Weighted |r| with y: x1 .846, x2 .819, x3 .320, x4 .802; among x only
    // x1, x2 and x4 pass .99. Keeper x1 drops x2 and x4.
    const CellMatrix t = variable_corr_select(x, yt, CellMatrix(0.99), wt);
    const std::vector<Row> cells = cells_of(t);
    ASSERT_EQ(cells.size(), 15u);
    EXPECT_EQ(cells[0], (Row{"s:Variable pairs with correlations larger than the cut off", "empty",
                             "empty", "empty", "empty"}));
    EXPECT_EQ(cells[1], (Row{"s:Var1", "s:Var2", "s:Corr(Var1, Var2)", "s:Corr(Var1, y)",
                             "s:Corr(Var2, y)"}));
    const std::size_t pairs[3][2] = {{0, 1}, {0, 3}, {1, 3}};
    for (std::size_t k = 0; k < 3; ++k) {
        const std::size_t a = pairs[k][0], b = pairs[k][1];
        EXPECT_EQ(cells[k + 2][0], std::string("s:") + names[a]);
        EXPECT_EQ(cells[k + 2][1], std::string("s:") + names[b]);
        EXPECT_NEAR(number_at(t, k + 2, 2), weighted_corr(xs[a], xs[b], w), 1e-13);
        EXPECT_NEAR(number_at(t, k + 2, 3), weighted_corr(xs[a], y, w), 1e-13);
        EXPECT_NEAR(number_at(t, k + 2, 4), weighted_corr(xs[b], y, w), 1e-13);
    }
    const auto first = [&](std::size_t from) {
        Row column;
        for (std::size_t i = from; i < cells.size(); ++i)
            column.push_back(cells[i][0]);
        return column;
    };
    EXPECT_EQ(first(5), (Row{"empty", "s:Keep List", "s:x1", "s:x3", "empty", "s:Drop List", "s:x2",
                             "s:x4", "empty", "s:End of output: variable_corr_select"}));
}

TEST(VariableCorrSelect, InputFailures) {
    const CellMatrix x = make_table({{"a", "b"}, {1.0, 2.0}, {2.0, 1.0}});
    const CellMatrix y = make_table({{"y"}, {1.0}, {2.0}});
    const CellMatrix omitted(1, 1);
    const std::string bad = "Input corrCutOff must be a number between 0 and 1";
    EXPECT_EQ(failure_text([&] { variable_corr_select(x, y, CellMatrix(1.5), omitted); }), bad);
    EXPECT_EQ(failure_text([&] { variable_corr_select(x, y, omitted, omitted); }), bad);
    EXPECT_EQ(
        failure_text([&] {
            variable_corr_select(x, make_table({{"y"}, {"a"}, {"b"}}), CellMatrix(0.5), omitted);
        }),
        "There are no complete records in x, y and weight");
}

}  // namespace
}  // namespace zentable
