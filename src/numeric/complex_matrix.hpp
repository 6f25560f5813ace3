#pragma once

#include <complex>
#include <vector>

#include "numeric/matrix.hpp"

namespace zentable {

using cplx = std::complex<double>;
using cvec = std::vector<cplx>;
using cmat = std::vector<cvec>;  // row-major, as dmat

// The complex matrix of a real part and an imaginary part of the same shape;
// an empty imaginary part means zero.
cmat to_complex(const dmat& re, const dmat& im = dmat());
dmat real_part(const cmat& a);
dmat imag_part(const cmat& a);
cmat cmat_mul(const cmat& a, const cmat& b);
cmat conj_transpose(const cmat& a);

// A = Q T Q^H with Q unitary and T upper triangular, by Householder reduction
// to Hessenberg form and single-shift QR with Wilkinson shifts. Fails with
// kSchurNoConvergence after 60 rounds on one eigenvalue (a NaN never settles).
struct ComplexSchur {
    cmat q;
    cmat t;
};
extern const char* const kSchurNoConvergence;
ComplexSchur complex_schur(const cmat& a);

// Eigenvalues by real part descending, then imaginary part descending, with
// eigenvectors as columns in the same order: each of unit length with its
// largest component real and positive.
struct ComplexEigen {
    cvec values;
    cmat vectors;  // vectors[i][j]: component i of the eigenvector of values[j]
};
ComplexEigen complex_eigen(const cmat& a);
// A real matrix: an eigenvalue whose imaginary part is within
// 2.220446049250313e-14 times the Frobenius norm of the matrix (scaled by a
// power of 2 to a largest entry in [0.5, 1), and at least 1) is real, and so
// is its eigenvector.
ComplexEigen general_eigen(const dmat& a);

// A = Q R for a square A, Q unitary, R upper triangular, by Householder
// reflections.
struct ComplexQR {
    cmat q;
    cmat r;
};
ComplexQR complex_qr(const cmat& a);

// exp(A) by scaling and squaring with the degree-13 Pade approximant.
dmat matrix_exponential(const dmat& a);
cmat matrix_exponential(const cmat& a);

// X of A X + X B = C, A m by m, B n by n, C m by n, by the Bartels-Stewart
// method on the complex Schur forms of A and B. Fails with kSylvesterSingular
// when A and -B share an eigenvalue.
extern const char* const kSylvesterSingular;
cmat sylvester_solve(const cmat& a, const cmat& b, const cmat& c);

}  // namespace zentable
