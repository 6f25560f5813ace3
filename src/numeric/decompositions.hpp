#pragma once

#include "numeric/matrix.hpp"

namespace zentable {

// A = U diag(w) V-transpose, thin: with k = min(m, n), U is m by k, w has k
// values, largest first, and V is n by k. The columns of U and V follow the
// order of w.
struct SVD {
    dmat u;
    dvec w;
    dmat v;
};

// Householder bidiagonalisation and QR iteration on the bidiagonal form, at
// most 40 rounds per singular value.
SVD svdDecomp(const dmat& a);

// The lower factor L of A = L L-transpose for a symmetric positive
// semi-definite A; a zero pivot leaves a zero column. A must be square.
dmat cholesky(const dmat& a);

// P A = L U with L unit lower triangular, by Crout's method with implicit
// scaled partial pivoting.
struct LU {
    dmat p;
    dmat l;
    dmat u;
    ivec permutation;  // row i of P A is row permutation[i] of A
    int sign = 1;      // the sign of the permutation
    // Some pivot was within 2.220446049250313e-14 of zero, relative to the
    // largest entry of A.
    bool singular = false;
};
LU lu_decompose(const dmat& a);

// A = Q R with Q orthogonal and R upper triangular, by Householder
// reflections; A is m by n with m at least n, Q is m by m and R m by n.
struct QR {
    dmat q;
    dmat r;
};
QR qr_decompose(const dmat& a);

// V W+ U-transpose, where W+ inverts the singular values above
// max(m, n) * 2.220446049250313e-16 * the largest one and zeroes the rest.
dmat pseudo_inverse(const dmat& a);

// The product of the LU pivots with the sign of the row exchanges; 0 when a
// row is all zeros or a pivot is negligible against the largest entry.
double determinant(const dmat& a);

// Solves the tridiagonal system whose sub-diagonal is `lower` (n - 1 values),
// diagonal `diagonal` (n) and super-diagonal `upper` (n - 1), with right side
// `rhs` (n), by the Thomas algorithm.
dvec tridiagonalMatrixSolver(const dvec& lower, const dvec& diagonal, const dvec& upper,
                             const dvec& rhs);

// Solves the pentadiagonal system with bands lower2 (n - 2), lower1 (n - 1),
// diagonal (n), upper1 (n - 1), upper2 (n - 2) and right side `rhs` (n) by band
// elimination without pivoting; n must be at least 3.
// A vector of n copies of value whose memory is asked for huge pages before
// it is touched: the banded solvers run over series of millions of points,
// where small pages cost more in faults than the elimination does.
dvec huge_page_vector(std::size_t n, double value);

dvec pentagonalMatrixSolver(const dvec& lower2, const dvec& lower1, const dvec& diagonal,
                            const dvec& upper1, const dvec& upper2, const dvec& rhs);

}  // namespace zentable
