#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

struct QuadratureRule {
    dvec abscissas;  // ascending
    dvec weights;
};

// n-point Gauss rules by Newton's method on the three-term recurrence of
// their orthogonal polynomials: Legendre on [lower, upper], Laguerre against
// e^-x on [0, inf), Hermite against e^-x^2 on the whole line.
QuadratureRule gauss_legendre_rule(int n, double lower, double upper);
QuadratureRule gauss_laguerre_rule(int n);
QuadratureRule gauss_hermite_rule(int n);

CellMatrix gauss_legendre(const CellMatrix& numPoints, const CellMatrix& lower,
                          const CellMatrix& upper);
CellMatrix gauss_laguerre(const CellMatrix& numPoints);
CellMatrix gauss_hermite(const CellMatrix& numPoints);

}  // namespace zentable
