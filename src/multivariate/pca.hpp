#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// PCA(inputData, covOrCorr): the eigenvalues and eigenvectors of the
// covariance or correlation matrix of the columns, or of a matrix given.
CellMatrix PCA(const CellMatrix& inputData, const CellMatrix& covOrCorr);

// factor_analysis(inputData, numFactors, covOrCorr): principal factors of the
// same matrix, and their varimax rotation on Kaiser-normalised rows.
CellMatrix factor_analysis(const CellMatrix& inputData, const CellMatrix& numFactors,
                           const CellMatrix& covOrCorr);

// The orthomax rotation of the p by k loadings `b` with weight `gamma`, by
// singular value decomposition, at most 50 rounds; the k by k rotation.
dmat varimaxRotation(const dmat& b, double gamma);

}  // namespace zentable
