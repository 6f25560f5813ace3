#pragma once

#include "xlw/cell_matrix.hpp"

namespace zentable {

// Products, sums and the linear solvers of the matrix commands. Every cell of
// a matrix argument must be a number.
CellMatrix matrix_prod(const CellMatrix& matrix1, const CellMatrix& matrix2);
CellMatrix matrix_directprod(const CellMatrix& matrix1, const CellMatrix& matrix2);
CellMatrix matrix_elementprod(const CellMatrix& matrix1, const CellMatrix& matrix2);
CellMatrix matrix_plus(const CellMatrix& matrix1, const CellMatrix& matrix2);
CellMatrix matrix_minus(const CellMatrix& matrix1, const CellMatrix& matrix2);
CellMatrix matrix_I(const CellMatrix& dim);
CellMatrix matrix_t(const CellMatrix& matrix);
CellMatrix matrix_diag(const CellMatrix& matrix);
CellMatrix matrix_tr(const CellMatrix& matrix);
CellMatrix matrix_det(const CellMatrix& matrix);
CellMatrix matrix_inv(const CellMatrix& matrix);
CellMatrix matrix_pinv(const CellMatrix& matrix);
CellMatrix matrix_complex_pinv(const CellMatrix& matrixReal, const CellMatrix& matrixImag);
CellMatrix matrix_solver(const CellMatrix& A, const CellMatrix& B);
CellMatrix matrix_tridiagonal_solver(const CellMatrix& A, const CellMatrix& B);
CellMatrix matrix_pentadiagonal_solver(const CellMatrix& A, const CellMatrix& B);
CellMatrix matrix_Sylvester_solver(const CellMatrix& A, const CellMatrix& B, const CellMatrix& C);
// Pivot indexes count from 1; omitted, every diagonal entry is swept in order.
CellMatrix matrix_sweep(const CellMatrix& matrix, const CellMatrix& pivotIndexes);

}  // namespace zentable
