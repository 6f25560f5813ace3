#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// lowess(x, y, xForSmoothing, fraction, degree): locally weighted polynomial
// regression over the nearest ceil(fraction n) points, tricube weights, no
// robustness iterations.
CellMatrix lowess(const CellMatrix& x, const CellMatrix& y, const CellMatrix& xForSmoothing,
                  const CellMatrix& fraction, const CellMatrix& degree);

// The smoothed values at each of `at`, from pairs in any order.
dvec lowess_smooth(const dvec& x, const dvec& y, const dvec& at, double fraction, int degree);

}  // namespace zentable
