#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// ts_acf(x, maxLag): the autocorrelations at lags 0 to maxLag.
CellMatrix ts_acf(const CellMatrix& x, const CellMatrix& maxLag);
// ts_pacf(x, maxLag): the partial autocorrelations at lags 1 to maxLag.
CellMatrix ts_pacf(const CellMatrix& x, const CellMatrix& maxLag);
// ts_ccf(x, y, maxLag): the cross-correlations at lags -maxLag to maxLag;
// at lag k x[t] meets y[t + k].
CellMatrix ts_ccf(const CellMatrix& x, const CellMatrix& y, const CellMatrix& maxLag);

// The deviations of a series from its plain mean, made in place.
dvec deviations(dvec x);

// sum over t of a[t] b[t + k], t rising over the overlap, for k from 0 to
// maxLag; a lag beyond the series has no terms and gives 0.
dvec lagged_products(const dvec& a, const dvec& b, int maxLag);

// c[k] / c[0] for k from 0 to maxLag, c[k] the sum of the products of the
// deviations k apart. A constant series gives NaN from lag 1 on.
dvec autocorrelations(dvec x, int maxLag);

// phi[k][k] of the Durbin-Levinson recursion for k from 1 to maxLag, from the
// autocorrelations r[0] to r[maxLag].
dvec partial_autocorrelations(const dvec& r, int maxLag);

}  // namespace zentable
