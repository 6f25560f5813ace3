#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// ranks(inputData, numBins, order): the rank group, 1 to numBins, of each
// record's value; equal values share a group. One row per input record under
// the variable's name; a record whose cell is not a number shows ".".
CellMatrix ranks(const CellMatrix& inputData, const CellMatrix& numBins, const CellMatrix& order);

// The same for a variable of a file, written as a new last column of a copy
// of the file; a record whose field is not a number gets no rank ("nan").
CellMatrix ranks_from_file(const CellMatrix& varName, const std::string& filename,
                           const CellMatrix& rankVarName, const std::string& outfilename,
                           const CellMatrix& numBins, const CellMatrix& order,
                           const CellMatrix& delimiter);

// The rank groups of values in their own order: order 1 counts from the
// smallest value, -1 from the largest.
dvec rank_values(const dvec& values, int numBins, int order);

}  // namespace zentable
