#pragma once

#include "numeric/complex_matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// The roots of c0 + c1 x + ... + cn x^n as the eigenvalues of the companion
// matrix of the monic polynomial, after the highest powers with coefficients
// below 2.220446049250313e-14 in absolute value are dropped.
cvec polynomial_roots(const dvec& coefficients);

// The coefficients, from the power 0 up, of the polynomial through the points.
dvec lagrange_coefficients(const dvec& x, const dvec& y);

struct ShiftedLognormal {
    double mu;  // the mean of the lognormal part before the shift
    double sigma;
    double shift;
};
ShiftedLognormal match_shifted_lognormal(double m1, double m2, double m3);

CellMatrix poly_roots(const CellMatrix& coefs);
CellMatrix poly_prod(const CellMatrix& a, const CellMatrix& b);
CellMatrix Lagrange_interpolation(const CellMatrix& x, const CellMatrix& y);
CellMatrix three_moment_match_to_SLN(const CellMatrix& m1, const CellMatrix& m2,
                                     const CellMatrix& m3);

}  // namespace zentable
