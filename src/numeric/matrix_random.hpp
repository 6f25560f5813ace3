#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

enum class RandomDistribution { uniform, normal, discrete_uniform };

// nrows by ncols draws, filled row by row from one generator made from seed:
// uniform_draw; an integer from lower to upper inclusive; or normal_draw, each
// row multiplied by the lower Cholesky factor `corr_factor` when it is not
// empty.
dmat random_matrix(int nrows, int ncols, RandomDistribution dist, const dmat& corr_factor,
                   int lower, int upper, unsigned long seed);

// The worksheet form: dist defaults to UNIFORM (GAUSSIAN reads as NORMAL),
// corr to the identity, lower to 0, upper to 1, seed to 0 (the timer).
CellMatrix matrix_random(const CellMatrix& nrows, const CellMatrix& ncols, const CellMatrix& dist,
                         const CellMatrix& corr, const CellMatrix& lower, const CellMatrix& upper,
                         const CellMatrix& seed);

}  // namespace zentable
