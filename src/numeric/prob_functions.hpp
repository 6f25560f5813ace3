#pragma once

#include "xlw/cell_matrix.hpp"

namespace zentable {

// The worksheet probability functions, all on the Boost.Math layer. Each
// single value comes back as a 1 by 1 table.
CellMatrix prob_normal(double z);
CellMatrix prob_normal_inv(double p);
// 353 by 2: z from 0 to 3.49 by 0.01 and N(z).
CellMatrix prob_normal_table();

CellMatrix prob_t(double t, double df);
CellMatrix prob_t_inv(double p, double df);
// 103 by 7: six percentiles for df 1 to 100 and for an infinite df.
CellMatrix prob_t_table();

// nc is optional and 0 when omitted: the central distribution.
CellMatrix prob_chi(double c, double df, const CellMatrix& nc);
CellMatrix prob_chi_inv(double p, double df, const CellMatrix& nc);
// 52 by 14: thirteen percentiles for df 1 to 50.
CellMatrix prob_chi_table(const CellMatrix& nc);

CellMatrix prob_f(double f, double df1, double df2);
CellMatrix prob_f_inv(double p, double df1, double df2);
// 103 by 102: the p percentile (0.95 when omitted) for df1 across and df2
// down, each from 1 to 100 and infinite.
CellMatrix prob_f_table(const CellMatrix& p);

// 4 by 2: the normal quantile of cl and its Cornish-Fisher adjustment.
CellMatrix Cornish_Fisher_expansion(double cl, double skewness, double kurtosis);

}  // namespace zentable
