#include "numeric/matrix_algebra.hpp"

#include <algorithm>
#include <cmath>
#include <set>

#include "numeric/complex_matrix.hpp"
#include "numeric/decompositions.hpp"
#include "numeric/matrix_cells.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

bool same_shape(const CellMatrix& a, const CellMatrix& b) {
    return a.RowsInStructure() == b.RowsInStructure() &&
           a.ColumnsInStructure() == b.ColumnsInStructure();
}

bool is_square(const CellMatrix& a) {
    return a.RowsInStructure() == a.ColumnsInStructure();
}

bool is_single(const CellMatrix& a) {
    return a.RowsInStructure() == 1 && a.ColumnsInStructure() == 1;
}

bool is_line(const CellMatrix& a) {
    return a.RowsInStructure() == 1 || a.ColumnsInStructure() == 1;
}

// The right side of a banded system: B's rows must be A's; each column of B
// is solved on its own.
dmat read_right_side(const CellMatrix& a, const CellMatrix& b) {
    if (a.RowsInStructure() != b.RowsInStructure())
        throw "The inputs A and B must have the same rows";
    return read_numeric_matrix(b);
}

// Column `column` of A from row `from` to row `to` (exclusive): the cells of
// one band, the unused corner cells never read.
dvec band(const CellMatrix& a, std::size_t column, std::size_t from, std::size_t to) {
    dvec out;
    for (std::size_t i = from; i < to; ++i)
        out.push_back(a(i, column).NumericValue());
    return out;
}

template <class Solve>
CellMatrix solve_each_column(const dmat& b, Solve solve) {
    dmat x(b.size(), dvec(columns_of(b)));
    for (std::size_t j = 0; j < columns_of(b); ++j) {
        dvec rhs(b.size());
        for (std::size_t i = 0; i < b.size(); ++i)
            rhs[i] = b[i][j];
        const dvec solution = solve(rhs);
        for (std::size_t i = 0; i < b.size(); ++i)
            x[i][j] = solution[i];
    }
    return matrix_table(x);
}

}  // namespace

CellMatrix matrix_prod(const CellMatrix& matrix1, const CellMatrix& matrix2) {
    const dmat a = read_numeric_matrix(matrix1);
    const dmat b = read_numeric_matrix(matrix2);
    if (is_single(matrix1))
        return matrix_table(mat_scale(b, a[0][0]));
    if (is_single(matrix2))
        return matrix_table(mat_scale(a, b[0][0]));
    return matrix_table(mat_mul(a, b));
}

CellMatrix matrix_directprod(const CellMatrix& matrix1, const CellMatrix& matrix2) {
    check_result_size(
        static_cast<double>(matrix1.RowsInStructure()) * matrix2.RowsInStructure(),
        static_cast<double>(matrix1.ColumnsInStructure()) * matrix2.ColumnsInStructure());
    return matrix_table(direct_product(read_numeric_matrix(matrix1), read_numeric_matrix(matrix2)));
}

CellMatrix matrix_elementprod(const CellMatrix& matrix1, const CellMatrix& matrix2) {
    if (!same_shape(matrix1, matrix2))
        throw "matrix1 and matrix2 must be the same size";
    return matrix_table(
        elementwise_mul(read_numeric_matrix(matrix1), read_numeric_matrix(matrix2)));
}

CellMatrix matrix_plus(const CellMatrix& matrix1, const CellMatrix& matrix2) {
    if (!same_shape(matrix1, matrix2))
        throw "Not conformable matrix addition: two matrixes must have the same dimension";
    return matrix_table(mat_add(read_numeric_matrix(matrix1), read_numeric_matrix(matrix2)));
}

CellMatrix matrix_minus(const CellMatrix& matrix1, const CellMatrix& matrix2) {
    if (!same_shape(matrix1, matrix2))
        throw "Not conformable matrix addition: two matrixes must have the same dimension";
    return matrix_table(mat_sub(read_numeric_matrix(matrix1), read_numeric_matrix(matrix2)));
}

CellMatrix matrix_I(const CellMatrix& dim) {
    constexpr const char* kMessage = "Input dim must be a positive integer";
    double n = 0.0;
    read_double_required(dim, kMessage, n);
    if (!(n >= 1.0) || std::floor(n) != n)
        throw kMessage;
    check_result_size(n, n);
    return matrix_table(identity(static_cast<int>(n)));
}

CellMatrix matrix_t(const CellMatrix& matrix) {
    return matrix_table(transpose(read_numeric_matrix(matrix)));
}

CellMatrix matrix_diag(const CellMatrix& matrix) {
    if (is_line(matrix)) {
        const double n =
            static_cast<double>(std::max(matrix.RowsInStructure(), matrix.ColumnsInStructure()));
        check_result_size(n, n);
        dvec v;
        for (const dvec& row : read_numeric_matrix(matrix))
            v.insert(v.end(), row.begin(), row.end());
        return matrix_table(diag(v));
    }
    return matrix_table(diag(diag(read_numeric_matrix(matrix))));
}

CellMatrix matrix_tr(const CellMatrix& matrix) {
    return CellMatrix(trace(read_numeric_matrix(matrix)));
}

CellMatrix matrix_det(const CellMatrix& matrix) {
    if (!is_square(matrix))
        throw "Input matrix must be a square matrix";
    return CellMatrix(determinant(read_numeric_matrix(matrix)));
}

CellMatrix matrix_inv(const CellMatrix& matrix) {
    if (!is_square(matrix))
        throw "Input matrix must be square matrix";
    return matrix_table(inverse(read_numeric_matrix(matrix)));
}

CellMatrix matrix_pinv(const CellMatrix& matrix) {
    return matrix_table(pseudo_inverse(read_numeric_matrix(matrix)));
}

CellMatrix matrix_complex_pinv(const CellMatrix& matrixReal, const CellMatrix& matrixImag) {
    const cmat a = read_complex_matrix(
        matrixReal, matrixImag,
        "Imaginary part of an input complex matrix must have the same dimension as real part");
    // [Re -Im; Im Re] represents the complex matrix faithfully, conjugate
    // transpose included, so its pseudo-inverse represents the complex one.
    const std::size_t m = a.size();
    const std::size_t n = a[0].size();
    dmat embedded(2 * m, dvec(2 * n));
    for (std::size_t i = 0; i < m; ++i)
        for (std::size_t j = 0; j < n; ++j) {
            embedded[i][j] = embedded[m + i][n + j] = a[i][j].real();
            embedded[m + i][j] = a[i][j].imag();
            embedded[i][n + j] = -a[i][j].imag();
        }
    const dmat p = pseudo_inverse(embedded);
    dmat re(n, dvec(m)), im(n, dvec(m));
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < m; ++j) {
            re[i][j] = p[i][j];
            im[i][j] = p[n + i][j];
        }
    return labelled_blocks({"Real part", "Imag part"}, {re, im});
}

CellMatrix matrix_solver(const CellMatrix& A, const CellMatrix& B) {
    if (A.RowsInStructure() != B.RowsInStructure())
        throw "The numbers of rows of matrix A and matrix B must be the same";
    const dmat a = read_numeric_matrix(A);
    const dmat b = read_numeric_matrix(B);
    // A system that is not square has the least-squares solution of least norm.
    const dmat solver = is_square(A) ? inverse(a) : pseudo_inverse(a);
    return matrix_table(mat_mul(solver, b));
}

CellMatrix matrix_tridiagonal_solver(const CellMatrix& A, const CellMatrix& B) {
    if (A.ColumnsInStructure() != 3)
        throw "The input A must have 3 columns";
    const dmat b = read_right_side(A, B);
    const std::size_t n = A.RowsInStructure();
    const dvec lower = band(A, 0, 1, n);
    const dvec diagonal = band(A, 1, 0, n);
    const dvec upper = band(A, 2, 0, n - 1);
    return solve_each_column(
        b, [&](const dvec& rhs) { return tridiagonalMatrixSolver(lower, diagonal, upper, rhs); });
}

CellMatrix matrix_pentadiagonal_solver(const CellMatrix& A, const CellMatrix& B) {
    if (A.ColumnsInStructure() != 5)
        throw "The input A must have 5 columns";
    const dmat b = read_right_side(A, B);
    const std::size_t n = A.RowsInStructure();
    if (n < 3)
        throw "The dimension of a pentagonal must be larger than or equal to 3";
    const dvec lower2 = band(A, 0, 2, n);
    const dvec lower1 = band(A, 1, 1, n);
    const dvec diagonal = band(A, 2, 0, n);
    const dvec upper1 = band(A, 3, 0, n - 1);
    const dvec upper2 = band(A, 4, 0, n - 2);
    return solve_each_column(b, [&](const dvec& rhs) {
        return pentagonalMatrixSolver(lower2, lower1, diagonal, upper1, upper2, rhs);
    });
}

CellMatrix matrix_Sylvester_solver(const CellMatrix& A, const CellMatrix& B, const CellMatrix& C) {
    if (!is_square(A))
        throw "The input matrix A must be a square matrix";
    if (!is_square(B))
        throw "The input matrix B must be a square matrix";
    if (A.RowsInStructure() != C.RowsInStructure())
        throw "The number of rows of the input matrix A must be the same as the number of rows of "
              "the input matrix C";
    if (B.ColumnsInStructure() != C.ColumnsInStructure())
        throw "The number of columns of the input matrix B must be the same as the number of "
              "columns of the input matrix C";
    const cmat x =
        sylvester_solve(to_complex(read_numeric_matrix(A)), to_complex(read_numeric_matrix(B)),
                        to_complex(read_numeric_matrix(C)));
    return matrix_table(real_part(x));
}

CellMatrix matrix_sweep(const CellMatrix& matrix, const CellMatrix& pivotIndexes) {
    const std::size_t q = std::min(matrix.RowsInStructure(), matrix.ColumnsInStructure());
    ivec pivots;
    if (is_omitted(pivotIndexes)) {
        for (std::size_t i = 0; i < q; ++i)
            pivots.push_back(static_cast<std::int32_t>(i));
    } else {
        dvec indexes;
        read_double_vector_optional(pivotIndexes, "Input pivot indexes must be numbers", indexes);
        std::set<double> seen;
        for (double k : indexes) {
            if (!seen.insert(k).second)
                throw "Input pivot indexes must be unique";
            if (!(k >= 1.0) || std::floor(k) != k)
                throw "Input pivot indexes must be whole numbers from 1";
            if (k > static_cast<double>(q))
                throw "Pivot indexes must be less than or equal to the smaller of the number of "
                      "rows and the number of columns for a given matrix";
            pivots.push_back(static_cast<std::int32_t>(k) - 1);
        }
    }
    return matrix_table(sweep(read_numeric_matrix(matrix), pivots));
}

}  // namespace zentable
