#include "numeric/matrix_factor.hpp"

#include <string>
#include <vector>

#include "numeric/complex_matrix.hpp"
#include "numeric/decompositions.hpp"
#include "numeric/matrix_cells.hpp"
#include "numeric/symmetric_eigen.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kNotSquare = "Input matrix must be a square matrix";
constexpr const char* kComplexSameDimension =
    "Imaginary part of an input complex matrix must have the same dimension as real part";
constexpr const char* kComplexSameSize =
    "Imaginary part of an input complex matrix must have the same size as the real part";

dmat read_square(const CellMatrix& matrix) {
    if (matrix.RowsInStructure() != matrix.ColumnsInStructure())
        throw kNotSquare;
    return read_numeric_matrix(matrix);
}

dmat read_nonempty_square(const CellMatrix& matrix) {
    if (is_omitted(matrix))
        throw "Input matrix is empty";
    return read_square(matrix);
}

cmat read_complex_square(const CellMatrix& real, const CellMatrix& imag, const char* same_size) {
    cmat a = read_complex_matrix(real, imag, same_size);
    if (a.size() != a[0].size())
        throw kNotSquare;
    return a;
}

// "Eigenvalues" over the real and imaginary parts side by side, then
// "Eigenvectors in columns" as a "Real part" block and an "Imag part" block.
CellMatrix eigen_report(const ComplexEigen& e) {
    const std::size_t n = e.values.size();
    const dmat re = real_part(e.vectors);
    const dmat im = imag_part(e.vectors);
    const std::size_t width = std::max<std::size_t>(n, 2);
    const std::size_t rows = 2 + n + 1 + 1 + 1 + n + 1 + 1 + n;
    check_result_size(static_cast<double>(rows), static_cast<double>(width));
    CellMatrix r(rows, width);
    std::size_t row = 0;
    r(row++, 0) = "Eigenvalues";
    r(row, 0) = "Real part";
    r(row++, 1) = "Imag part";
    for (const cplx& z : e.values) {
        r(row, 0) = z.real();
        r(row++, 1) = z.imag();
    }
    ++row;
    r(row++, 0) = "Eigenvectors in columns";
    r(row++, 0) = "Real part";
    write_matrix(r, row, 0, re);
    row += n + 1;
    r(row++, 0) = "Imag part";
    write_matrix(r, row, 0, im);
    return r;
}

template <class F>
auto or_fail(const char* text, F work) {
    try {
        return work();
    } catch (const char*) {
        throw text;
    }
}

CellMatrix schur_report(const ComplexSchur& s) {
    return labelled_blocks({"Q real", "Q imag", "R real", "R imag"},
                           {real_part(s.q), imag_part(s.q), real_part(s.t), imag_part(s.t)},
                           "A = Q R Q^H");
}

}  // namespace

CellMatrix matrix_chol(const CellMatrix& matrix) {
    return matrix_table(cholesky(read_square(matrix)));
}

CellMatrix matrix_sym_eigen(const CellMatrix& matrix) {
    const EigenPairs e = symmetricEigen(read_square(matrix));
    dmat values;
    for (double v : e.values)
        values.push_back({v});
    return labelled_blocks({"eigenvalues", "eigenvectors in columns"}, {values, e.vectors});
}

CellMatrix matrix_eigen(const CellMatrix& matrix) {
    const dmat a = read_nonempty_square(matrix);
    return eigen_report(or_fail("matrix_eigen failed", [&] { return general_eigen(a); }));
}

CellMatrix matrix_complex_eigen(const CellMatrix& matrixReal, const CellMatrix& matrixImag) {
    const cmat a = read_complex_square(matrixReal, matrixImag, kComplexSameDimension);
    return eigen_report(or_fail("matrix_complex_eigen failed", [&] { return complex_eigen(a); }));
}

CellMatrix matrix_svd(const CellMatrix& matrix) {
    const SVD s = svdDecomp(read_numeric_matrix(matrix));
    // W as the diagonal matrix, so that U W V^T multiplies out as it reads.
    return labelled_blocks({"U", "W", "V"}, {s.u, diag(s.w), s.v}, "A = U W V^T");
}

CellMatrix matrix_LU(const CellMatrix& matrix) {
    const dmat a = read_square(matrix);
    LU lu;
    try {
        lu = lu_decompose(a);
    } catch (const char*) {
        throw "Input matrix is singular";
    }
    if (lu.singular)
        throw "Input matrix is singular";
    return labelled_blocks({"P", "L", "U"}, {lu.p, lu.l, lu.u}, "P A = L U");
}

CellMatrix matrix_QR(const CellMatrix& matrix) {
    const QR qr = qr_decompose(read_square(matrix));
    return labelled_blocks({"Q", "R"}, {qr.q, qr.r}, "A = Q R");
}

CellMatrix matrix_complex_QR(const CellMatrix& matrixReal, const CellMatrix& matrixImag) {
    const ComplexQR qr = complex_qr(read_complex_square(matrixReal, matrixImag, kComplexSameSize));
    return labelled_blocks({"Q real", "Q imag", "R real", "R imag"},
                           {real_part(qr.q), imag_part(qr.q), real_part(qr.r), imag_part(qr.r)},
                           "A = Q R");
}

CellMatrix matrix_Schur(const CellMatrix& matrix) {
    const cmat a = to_complex(read_nonempty_square(matrix));
    return schur_report(or_fail("matrix_Schur failed", [&] { return complex_schur(a); }));
}

CellMatrix matrix_complex_Schur(const CellMatrix& matrixReal, const CellMatrix& matrixImag) {
    const cmat a = read_complex_square(matrixReal, matrixImag, kComplexSameDimension);
    return schur_report(or_fail("matrix_Schur failed", [&] { return complex_schur(a); }));
}

CellMatrix matrix_exp(const CellMatrix& matrix) {
    return matrix_table(matrix_exponential(read_nonempty_square(matrix)));
}

CellMatrix matrix_complex_exp(const CellMatrix& matrixReal, const CellMatrix& matrixImag) {
    const bool has_real = !is_omitted(matrixReal);
    const bool has_imag = !is_omitted(matrixImag);
    if (!has_real && !has_imag)
        throw "Input matrixReal and matrixImag are missing";
    if (has_real && matrixReal.RowsInStructure() != matrixReal.ColumnsInStructure())
        throw "Input matrixReal must be a square matrix";
    if (has_imag && matrixImag.RowsInStructure() != matrixImag.ColumnsInStructure())
        throw "Input matrixImag must be a square matrix";
    if (has_real && has_imag && matrixReal.RowsInStructure() != matrixImag.RowsInStructure())
        throw "Input matrixReal and matrixImag must be the same dimension";
    dmat re = has_real ? read_numeric_matrix(matrixReal) : dmat();
    dmat im = has_imag ? read_numeric_matrix(matrixImag) : dmat();
    if (!has_real)
        re.assign(im.size(), dvec(im.size(), 0.0));
    const cmat e = matrix_exponential(to_complex(re, im));
    return labelled_blocks({"Real part", "Imag part"}, {real_part(e), imag_part(e)});
}

}  // namespace zentable
