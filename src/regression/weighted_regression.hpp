#pragma once

#include <array>
#include <cstddef>

#include "numeric/matrix.hpp"

namespace zentable {

// Weighted means, standard deviations and correlations of x and y, from the
// two-pass central sums. Standard deviations divide by the weight total.
struct Moments {
    double sum_weight = 0.0;
    dvec x_mean;
    double y_mean = 0.0;
    dvec x_sd;
    double y_sd = 0.0;
    dmat corr_xx;  // p by p
    dvec corr_xy;  // p
};

Moments weighted_moments(const dmat& x, const dvec& y, const dvec& weight);
// The moments of the records from begin to end alone, as if they were all.
Moments weighted_moments(const dmat& x, const dvec& y, const dvec& weight, std::size_t begin,
                         std::size_t end);
// The same for one variable held as a plain vector, as a moving window holds it.
Moments weighted_line_moments(const dvec& x, const dvec& y, const dvec& weight, std::size_t begin,
                              std::size_t end);
// Four weightings of the same records at once, lane k's weight of record r at
// weights[k][r - begin]; each equals the one-weighting call bit for bit, and a
// record of weight 0 adds nothing to a lane, so lanes may cover a common span.
std::array<Moments, 4> weighted_line_moments(const dvec& x, const dvec& y,
                                             const std::array<const double*, 4>& weights,
                                             std::size_t begin, std::size_t end);
// The moments of x alone, every record weighted 1.
Moments unit_moments(const dmat& x);

// Columns of (coefficients on the variables, constant) that x satisfies
// exactly; no columns when x has full rank.
dmat dependency_matrix(const dmat& x);
dmat dependency_matrix(const Moments& unit_x_moments);

// A regression solved on the standardised scale by sweeping the correlations.
struct StandardisedSolve {
    dvec beta, se, t, p_values;
    double r_square = 0.0;
    double df = 0.0;
    dmat inv;  // the swept block of the x correlations
};
StandardisedSolve regress_on_correlations(int n, const dmat& rxx, const dvec& rxy, double ryy);

// The two-sided p value of a t statistic.
double t_two_sided_p_value(double t, double df);

// Coefficients, errors, t and p values on the data's scale, intercept last.
struct RegressionFit {
    int n = 0;
    double sum_weight = 0.0;
    double y_mean = 0.0;
    double y_sd = 0.0;
    double r_square = 0.0;
    dvec coefs, std_errors, t_values, p_values;
};

// Weighted least squares, ridge when lambda is not empty (one entry per x).
RegressionFit fit_weighted_regression(const dmat& x, const dvec& y, const dvec& weight,
                                      const dvec& lambda);
// The same fit from moments already taken, n being the count of records.
RegressionFit fit_from_moments(const Moments& moments, int n, const dvec& lambda);

struct RegressionStats {
    double sst = 0.0, ssr = 0.0, sse = 0.0;
    double rmse = 0.0, coeff_var = 0.0, adj_r_square = 0.0;
    double f_value = 0.0, p_value = 1.0;
};
RegressionStats regression_stats(int n, int k, double sum_weight, double r_square, double y_mean,
                                 double y_sd);

}  // namespace zentable
