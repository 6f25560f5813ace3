#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// HP_filter(x, lambda): the Hodrick-Prescott trend and the cycle about it.
CellMatrix HP_filter(const CellMatrix& x, const CellMatrix& lambda);
// ts_sma(x, n): the mean of each run of n points, from the n-th point on.
CellMatrix ts_sma(const CellMatrix& x, const CellMatrix& n);
// ts_diff(x, lag, order): lag differences taken order times.
CellMatrix ts_diff(const CellMatrix& x, const CellMatrix& lag, const CellMatrix& order);
// natural_cubic_spline(xKnots, yKnots, x): the natural cubic spline through the knots at x.
CellMatrix natural_cubic_spline(const CellMatrix& xKnots, const CellMatrix& yKnots,
                                const CellMatrix& x);
// detect_outlier(x, numPoints, numStdDev): each point against the mean and
// standard deviation of the numPoints points before it.
CellMatrix detect_outlier(const CellMatrix& x, const CellMatrix& numPoints,
                          const CellMatrix& numStdDev);

dvec hp_trend(const dvec& x, double lambda);

// The spline's coefficients per knot interval: on [x[i], x[i+1]] the value is
// y[i] + b[i] u + c[i] u^2 + d[i] u^3 with u = t - x[i].
struct NaturalSpline {
    dvec x, y, b, c, d;
    double operator()(double t) const;
};
NaturalSpline natural_spline(const dvec& x_knots, const dvec& y_knots);

}  // namespace zentable
