#pragma once

#include "xlw/cell_matrix.hpp"

namespace zentable {

// The distinct texts of a table in byte order, then its distinct numbers
// ascending, under a heading.
CellMatrix set(const CellMatrix& matrix);
CellMatrix set_union(const CellMatrix& set1, const CellMatrix& set2);
CellMatrix set_intersection(const CellMatrix& set1, const CellMatrix& set2);
CellMatrix set_difference(const CellMatrix& set1, const CellMatrix& set2);

}  // namespace zentable
