#pragma once

#include "numeric/matrix.hpp"

namespace zentable {

// The covariance matrix of the columns of `data` (one row per observation)
// with the divisor n, the number of rows: each mean is summed in row order,
// then each entry is the sum of the products of deviations in row order,
// divided by n.
dmat covarianceMatrix(const dmat& data);

// The covariance matrix with entry (a, b) divided by the square root of
// entry (a, a), then by that of entry (b, b). A column without variance
// divides by zero: there is no guard.
dmat correlationMatrix(const dmat& data);

}  // namespace zentable
