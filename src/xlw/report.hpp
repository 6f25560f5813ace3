#pragma once

#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// A report ends two rows below its last block with the line that names the
// command, so that a user sees where a long report stops.
inline void end_report(CellMatrix& report, const std::string& command_name) {
    CellMatrix ending(2, 1);
    ending(1, 0) = "End of output: " + command_name;
    report.PushBottom(ending);
}

}  // namespace zentable
