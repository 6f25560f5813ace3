#pragma once

#include <cstddef>
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

// The same ending written into the last of kReportEndRows rows that a big
// report was made with, so that no joining copies it.
constexpr std::size_t kReportEndRows = 2;
inline void write_report_end(CellMatrix& report, const std::string& command_name) {
    report(report.RowsInStructure() - 1, 0) = "End of output: " + command_name;
}

// The analysis of variance rows of a fit with n records and k parameters:
// the column heads on row `top`, then SSR, SSE and SST with their degrees of
// freedom, sums and means. A fit with no degrees of freedom left shows 0 as
// the mean of SSE; a one-parameter fit shows SSR's division by zero.
inline void write_variance_rows(CellMatrix& r, std::size_t top, int n, int k, double ssr,
                                double sse, double sst, double f_value, double p_value) {
    const char* const columns[] = {"DF", "Sum", "Mean", "F Value", "P Value"};
    for (std::size_t c = 0; c < 5; ++c)
        r(top, c + 1) = columns[c];
    r(top + 1, 0) = "SSR";
    r(top + 1, 1) = k - 1;
    r(top + 1, 2) = ssr;
    r(top + 1, 3) = ssr / (k - 1);
    r(top + 1, 4) = f_value;
    r(top + 1, 5) = p_value;
    r(top + 2, 0) = "SSE";
    r(top + 2, 1) = n - k;
    r(top + 2, 2) = sse;
    r(top + 2, 3) = n > k ? sse / (n - k) : 0.0;
    r(top + 3, 0) = "SST";
    r(top + 3, 1) = n - 1;
    r(top + 3, 2) = sst;
    r(top + 3, 3) = sst / (n - 1);
}

}  // namespace zentable
