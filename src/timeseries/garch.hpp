#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// garch(returns, initialOmega, initialAlpha, initialBeta): fits a GARCH(1, 1)
// variance to a column of returns by maximum likelihood with the simplex.
CellMatrix garch(const CellMatrix& returns, const CellMatrix& initialOmega,
                 const CellMatrix& initialAlpha, const CellMatrix& initialBeta);

// The log-likelihood that the fit maximises, without the constant and the
// factor of one half: the variance starts at the sample variance and follows
// h[t] = omega + alpha r[t - 1]^2 + beta h[t - 1]. The parameters must be
// above 0; the fit keeps them there. The simplex asks for it some 160 times
// on one series, so the squares and the starting variance are kept.
class GarchLikelihood {
  public:
    explicit GarchLikelihood(const dvec& returns);
    double operator()(double omega, double alpha, double beta) const;

  private:
    dvec squares_;
    double start_variance_ = 0.0;
};

double garch_log_likelihood(const dvec& r, double omega, double alpha, double beta);

}  // namespace zentable
