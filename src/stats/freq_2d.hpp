#pragma once

#include <array>
#include <string>

#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// freq_2d(x1, x2, format, output): the cross-tabulation of two columns.
CellMatrix freq_2d(const CellMatrix& x1, const CellMatrix& x2, const CellMatrix& format,
                   const CellMatrix& output);

// The same for two variables of a delimited file, read by name.
CellMatrix freq_2d_from_file(const std::string& filename, const CellMatrix& x1Name,
                             const CellMatrix& x2Name, const CellMatrix& format,
                             const CellMatrix& output, const CellMatrix& delimiter);

// Which of Freq, Percent, RowPct and ColPct the table form stacks in a cell.
using Freq2dStatistics = std::array<bool, 4>;

// The report over two decoded text columns of equal length; both forms end here.
CellMatrix freq_2d_report(const std::string& name1, const svec& x1, const std::string& name2,
                          const svec& x2, bool list_form, const Freq2dStatistics& shown);

}  // namespace zentable
