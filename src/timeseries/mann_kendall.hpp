#pragma once

#include <cstdint>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// Mann_Kendall_trend_test(x, frequency): Kendall's S of the series against
// time, its variance with the tie term, tau and the normal approximation.
CellMatrix Mann_Kendall_trend_test(const CellMatrix& x, const CellMatrix& frequency);

// S over all pairs i < j of the sign of x[j] - x[i], and the sizes of the
// groups of two or more equal values, in rising order of value.
struct KendallCount {
    std::int64_t s = 0;
    std::vector<std::int64_t> tie_groups;
};
// By a merge sort: S is the number of pairs minus the tied pairs minus twice
// the pairs out of order, the same integer the sum over all pairs gives.
KendallCount kendall_count(const dvec& x);

}  // namespace zentable
