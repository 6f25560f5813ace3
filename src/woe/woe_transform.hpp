#pragma once

#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// woe_transform(woeModel, inputData): each variable of a stored weight of
// evidence model replaced by the value of its bin (WOE or mean of y), one
// column per model variable in the model's order under its name.
CellMatrix woe_transform(const CellMatrix& woeModel, const CellMatrix& inputData);

// The same over the variables xNames of a delimited file, written to
// outfilename; answers with one message cell.
CellMatrix woe_transform_from_file(const CellMatrix& woeModel, const CellMatrix& xNames,
                                   const std::string& infilename, const std::string& outfilename,
                                   const CellMatrix& delimiter);

}  // namespace zentable
