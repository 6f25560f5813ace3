#pragma once

namespace zentable {

double gammln(double x);
// Continued fraction of the incomplete beta, to the 3e-07 that p values carry.
double betacf(double a, double b, double x);
double betai(double a, double b, double x);
double f_cdf(double f, double df1, double df2);
// 1 - f_cdf, taken directly.
double f_upper(double f, double df1, double df2);

}  // namespace zentable
