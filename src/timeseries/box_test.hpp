#pragma once

#include "xlw/cell_matrix.hpp"

namespace zentable {

// Box_white_noise_test(x, maxLag, method, numParams): the Box-Ljung or
// Box-Pierce statistic over the first maxLag autocorrelations, with
// maxLag - numParams degrees of freedom.
CellMatrix Box_white_noise_test(const CellMatrix& x, const CellMatrix& maxLag,
                                const CellMatrix& method, const CellMatrix& numParams);

}  // namespace zentable
