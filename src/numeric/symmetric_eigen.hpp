#pragma once

#include "numeric/matrix.hpp"

namespace zentable {

struct EigenPairs {
    dvec values;   // largest first
    dmat vectors;  // vectors[i][j]: component i of the eigenvector of values[j]
};

// Householder tridiagonalisation, then QL with implicit shifts.
EigenPairs symmetricEigen(const dmat& a);

}  // namespace zentable
