#pragma once

#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

enum class SimplexStatus { optimal, unbounded, infeasible };

struct LinearProgramResult {
    SimplexStatus status = SimplexStatus::infeasible;
    dvec x;
    double objective = 0.0;
    long pivots = 0;
};

// Maximises c x for x >= 0 under the rows of `a` and `b`: the first `le` rows
// are "<=", the next `ge` rows ">=", the last `eq` rows "="; every b at least 0.
LinearProgramResult simplex_maximise(const dvec& c, const dmat& a, const dvec& b, int le, int ge,
                                     int eq);

CellMatrix linear_prog(const CellMatrix& c, const CellMatrix& constraints,
                       const CellMatrix& maxOrMin);

}  // namespace zentable
