#pragma once

#include <cstdint>

#include "numeric/column_scaling.hpp"
#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// The numerics of binary logistic regression, shared with forward selection.
// Coefficient vectors hold the slopes in column order and the intercept last.

// Codes y as 0 and 1 in place, the higher level being the event, and gives
// the two levels as the user wrote them, ascending. Fails unless y has
// exactly two distinct values.
dvec binary_recode(dvec& y);

struct LogLikelihood {
    double value = 0.0;
    dvec gradient;  // p + 1
    dmat hessian;   // (p + 1) by (p + 1), negative definite
};

// The weighted log-likelihood at coefs, with its gradient and Hessian.
LogLikelihood logistic_loglik(const dmat& x, const dvec& y, const dvec& weight, const dvec& coefs);

// Newton-Raphson with step halving on standardised columns, started at
// `start`; the coefficients and Hessian come back on the raw scale of x.
LogLikelihood logistic_newton(const dmat& x, const dvec& y, const dvec& weight, const dvec& start,
                              dvec& coefs);

struct LogisticFit {
    std::int32_t n1 = 0;
    double w0 = 0.0, w1 = 0.0;
    double ll0 = 0.0, ll = 0.0;
    dvec coefs, std_errors, wald, p_values;  // intercept last
};

// The record counts and weight sums of a y coded 0 and 1 into fit, with the
// weight total and the weighted event count.
void count_target(const dvec& y, const dvec& weight, LogisticFit& fit, double& total,
                  double& events);
// The log-likelihood of the intercept-only model.
double intercept_only_loglik(double total, double events);
// Standard errors, Wald chi-squares and p values of fit.coefs from the
// Hessian on the raw scale.
void add_wald_tests(const dmat& hessian, LogisticFit& fit);

// The maximum-likelihood fit of a y coded 0 and 1, with Wald tests.
LogisticFit logistic_fit(const dmat& x, const dvec& y, const dvec& weight);

// The event probability of each row of x.
dvec logistic_predict(const dmat& x, const dvec& coefs);

// The model fit statistics of a binary model with k parameters on n records,
// intercept only beside the full model, from the head row `top`: AIC, SC,
// -2LogL and the two R-squares.
void write_model_fit_rows(CellMatrix& r, std::size_t top, int n, int k, double ll0, double ll);

}  // namespace zentable
