#pragma once

#include <cstddef>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// variable_corr_select(x, y, corrCutOff, weight): the pairs of x variables
// whose weighted correlation reaches the cut-off in absolute value, and of
// each correlated group the variables closest to y. The report has the block
// of pairs, then a block "Keep List" of every x variable not dropped, in the
// order of x, and a block "Drop List" in the order of dropping, one name a row.
CellMatrix variable_corr_select(const CellMatrix& x, const CellMatrix& y,
                                const CellMatrix& corrCutOff, const CellMatrix& weight);

// The pairs i < j with |corr_xx[i][j]| at or above the cut-off, in input
// order, and the variables dropped from them, in the order of dropping.
struct CorrSelection {
    struct Pair {
        std::size_t first, second;
        std::size_t keeper, other;
        double value;  // the keeper's absolute correlation with y
    };
    std::vector<Pair> pairs;
    std::vector<std::size_t> dropped;
};
CorrSelection select_by_correlation(const dmat& corr_xx, const dvec& corr_xy, double cut_off);

}  // namespace zentable
