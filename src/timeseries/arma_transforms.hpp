#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// arma_to_ma(ar, ma, maxLag): the weights psi 1 to maxLag of the pure MA form.
CellMatrix arma_to_ma(const CellMatrix& ar, const CellMatrix& ma, const CellMatrix& maxLag);
// arma_to_ar(ar, ma, maxLag): the weights pi 1 to maxLag of the pure AR form.
CellMatrix arma_to_ar(const CellMatrix& ar, const CellMatrix& ma, const CellMatrix& maxLag);
// acf_of_arma(ar, ma, sigma, maxLag): the autocovariances from lag 0.
CellMatrix acf_of_arma(const CellMatrix& ar, const CellMatrix& ma, const CellMatrix& sigma,
                       const CellMatrix& maxLag);
// ddacf_of_arma(ar, ma, sigma): the stationary covariance of the state form.
CellMatrix ddacf_of_arma(const CellMatrix& ar, const CellMatrix& ma, const CellMatrix& sigma);

// The numerics, with ar[0] and ma[0] the coefficients of lag 1.
// psi[0] = 1 to psi[lag].
dvec ma_weights(const dvec& ar, const dvec& ma, int lag);
// pi[0] = -1 to pi[lag].
dvec ar_weights(const dvec& ar, const dvec& ma, int lag);
// gamma(0) to gamma(max(p + 1, maxLag)).
dvec arma_autocovariances(const dvec& ar, const dvec& ma, double sigma, int maxLag);
dmat arma_state_covariance(const dvec& ar, const dvec& ma, double sigma);

}  // namespace zentable
