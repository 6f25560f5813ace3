#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// ADF_test(x, maxLag, timeTerms): the augmented Dickey-Fuller regression of
// the first differences on the lagged level, maxLag lagged differences and
// the time terms, with MacKinnon's critical values.
CellMatrix ADF_test(const CellMatrix& x, const CellMatrix& maxLag, const CellMatrix& timeTerms);

// The coefficient of the lagged level, its standard error and their ratio,
// with the number of regression rows. Fails when the regression has no
// residual degree of freedom left.
struct AdfFit {
    double estimate = 0.0;
    double standard_error = 0.0;
    double stat = 0.0;
    int rows = 0;
};
AdfFit adf_regression(const dvec& x, int maxLag, const std::string& timeTerms);

}  // namespace zentable
