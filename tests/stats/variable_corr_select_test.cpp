#include "stats/variable_corr_select.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace zentable {
namespace {

// A symmetric matrix from its upper triangle, ones on the diagonal.
dmat symmetric(std::size_t p, const std::vector<std::vector<double>>& upper) {
    dmat m(p, dvec(p, 1.0));
    for (std::size_t i = 0; i < upper.size(); ++i)
        for (std::size_t k = 0; k < upper[i].size(); ++k)
            m[i][i + 1 + k] = m[i + 1 + k][i] = upper[i][k];
    return m;
}

// First, second and keeper of each pair, in order.
std::vector<std::size_t> pair_list(const CorrSelection& s) {
    std::vector<std::size_t> out;
    for (const CorrSelection::Pair& p : s.pairs) {
        out.push_back(p.first);
        out.push_back(p.second);
        out.push_back(p.keeper);
    }
    return out;
}

// Correlations that data small enough for a call file cannot give exactly:
// a pair at the cut-off, and keepers that drop each other in turn.
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

}  // namespace
}  // namespace zentable
