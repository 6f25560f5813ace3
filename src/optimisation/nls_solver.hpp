#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// A weighted least-squares problem as the command decodes it, free of cells.
struct LeastSquaresProblem {
    std::string text;
    svec parameter_names;
    dvec initial;
    bool bounded = false;  // with lower and upper, else unconstrained
    dvec lower;
    dvec upper;
    svec column_names;
    dmat rows;  // one per observation, a cell per column
    dvec y;
    dvec weight;
};

struct LeastSquaresFit {
    dvec estimates;
    double sse = 0.0;
    std::string criterion;  // the optimiser's name for how it ended
    // The optimiser's m by n work array as it ends: the factored Jacobian,
    // row i and column j being element (i, j) of the column-major array.
    dmat jacobian_factor;
    int evaluations = 0;
};

// Levenberg-Marquardt with forward differences, the work array kept.
LeastSquaresFit fit_least_squares(const LeastSquaresProblem& problem);
// The same fit through the optimiser's own entry, which keeps no work array:
// the reference that fit_least_squares must match digit for digit.
LeastSquaresFit fit_least_squares_by_optimiser(const LeastSquaresProblem& problem);

// Standard errors from the work array: RMSE times the square roots of the
// diagonal of the inverse of J'J, the array taken as it stands.
dvec standard_errors(const dmat& jacobian_factor, double rmse);

// nls_solver(func, params, x, y, weight): estimates, standard errors and the
// fitted values; the optimiser's end criterion goes out as a note.
CellMatrix nls_solver(const CellMatrix& func, const CellMatrix& params, const CellMatrix& x,
                      const CellMatrix& y, const CellMatrix& weight);

}  // namespace zentable
