#pragma once

namespace zentable {

// The own layer: continued fractions and series to 3e-07, as the statistics
// inside the models carry it.
double gser(double a, double x);
double gcf(double a, double x);
double gammp(double a, double x);
// The upper tails, taken directly where the fraction gives them, so that a
// small p value keeps its digits rather than becoming 1 - (1 - p).
double gammq(double a, double x);
double chi_square_cdf(double x, double df);
double chi_square_upper(double x, double df);
double t_cdf(double t, double df);
double inverse_erf(double x, double y);  // y = 1 - |x|, given beside it
double normal_quantile(double p);
double igami(double a, double q);
double chi_square_quantile(double p, double df);

// The Boost.Math layer, each with its own tests before the call.
double normal_cdf(double z);
double normal_upper(double z);
double normal_inv(double p);
double student_cdf(double t, double df);
double student_inv(double p, double df);
double f_cdf_boost(double f, double df1, double df2);
double f_inv(double p, double df1, double df2);
double chi_cdf(double x, double df);
double chi_inv(double p, double df);
double nc_chi_cdf(double x, double df, double nc);
double nc_chi_inv(double p, double df, double nc);

}  // namespace zentable
