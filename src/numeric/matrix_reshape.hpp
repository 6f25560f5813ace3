#pragma once

#include "xlw/cell_matrix.hpp"

namespace zentable {

// A vector into numRows by numCols, filled by rows or by columns (default).
CellMatrix matrix_from_vector(const CellMatrix& vector, const CellMatrix& numRows,
                              const CellMatrix& numCols, const CellMatrix& byRowOrCol);
// A matrix into one column, read by rows or by columns (default).
CellMatrix matrix_to_vector(const CellMatrix& matrix, const CellMatrix& byRowOrCol);
// Each number as the text of a fraction where one with a small denominator is
// exact to rounding, "-3/2"; whole numbers and the rest stay numbers.
CellMatrix matrix_decimal_to_fraction(const CellMatrix& matrix);

}  // namespace zentable
