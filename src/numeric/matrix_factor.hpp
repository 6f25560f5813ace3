#pragma once

#include "xlw/cell_matrix.hpp"

namespace zentable {

// Factorisations, eigen-decompositions and exponentials as labelled blocks.
CellMatrix matrix_chol(const CellMatrix& matrix);
CellMatrix matrix_sym_eigen(const CellMatrix& matrix);
CellMatrix matrix_eigen(const CellMatrix& matrix);
CellMatrix matrix_complex_eigen(const CellMatrix& matrixReal, const CellMatrix& matrixImag);
CellMatrix matrix_svd(const CellMatrix& matrix);
CellMatrix matrix_LU(const CellMatrix& matrix);
CellMatrix matrix_QR(const CellMatrix& matrix);
CellMatrix matrix_complex_QR(const CellMatrix& matrixReal, const CellMatrix& matrixImag);
CellMatrix matrix_Schur(const CellMatrix& matrix);
CellMatrix matrix_complex_Schur(const CellMatrix& matrixReal, const CellMatrix& matrixImag);
CellMatrix matrix_exp(const CellMatrix& matrix);
CellMatrix matrix_complex_exp(const CellMatrix& matrixReal, const CellMatrix& matrixImag);

}  // namespace zentable
