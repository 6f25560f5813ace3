#pragma once

#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// The two lenient conversions; all leniency of the system is here.
double cell_to_double(const CellValue& cell);
std::string cell_to_text(const CellValue& cell);

// Text of a double as a stream prints it at 16 significant digits.
std::string number_to_text(double value);

// Removes blanks, tabs and newlines: mode 0 both ends, -1 the left, else the right.
std::string trim(const std::string& text, int mode = 0);

// No rows, no columns, or a single empty cell.
bool is_omitted(const CellMatrix& table);

}  // namespace zentable
