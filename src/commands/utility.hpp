#pragma once

#include "xlw/cell_matrix.hpp"

namespace zentable {

// "Zentable 2.00 is built on <date> <time>".
CellMatrix version();
// The hand-kept list of functions by section, 251 rows by 3.
CellMatrix function_list();

}  // namespace zentable
