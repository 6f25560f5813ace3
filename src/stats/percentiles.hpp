#pragma once

#include "xlw/cell_matrix.hpp"

namespace zentable {

// percentiles(x, p, classVar): the values of x at the probabilities p,
// without interpolation, in all of x or in each class of classVar. The table
// has a "Class" column and one column per p, labelled p * 100; one row per
// class in ascending order, or a single row "All" when classVar is omitted.
// classVar is laid out as x is: its name first, then one class per value.
CellMatrix percentiles(const CellMatrix& x, const CellMatrix& p, const CellMatrix& classVar);

}  // namespace zentable
