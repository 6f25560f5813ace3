#pragma once

#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// LDA(x, y, weight): linear discriminant analysis of the classes of y on the
// numeric x, with the pooled within-class covariance (divisor W - K).
CellMatrix LDA(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight);
// QDA(x, y, weight): quadratic discriminant analysis, one covariance per class
// (divisor W_k - 1).
CellMatrix QDA(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight);

// model_score's table for an LDA or QDA handle.
CellMatrix discriminant_score(const std::string& handle, const CellMatrix& x);

}  // namespace zentable
