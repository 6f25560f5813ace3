#pragma once

#include "xlw/cell_matrix.hpp"

namespace zentable {

// binning(inputData, lower, upper, numBins): counts of the values in numBins
// bins of equal width from lower to upper; values beyond the bounds fall in
// the end bins. Cells that are not numbers are left out.
CellMatrix binning(const CellMatrix& inputData, double lower, double upper, double numBins);

// QQ_plot(inputData): the sorted values beside the standard normal quantiles
// of their probability levels (i - 0.5) / n.
CellMatrix QQ_plot(const CellMatrix& inputData);

}  // namespace zentable
