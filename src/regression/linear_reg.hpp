#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "regression/weighted_regression.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// linear_reg(x, y, weight, lambda): weighted least squares, ridge with lambda.
CellMatrix linear_reg(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight,
                      const CellMatrix& lambda);

// The ridge constants: omitted gives an empty vector, one value is repeated
// for all p variables, else one each; never negative.
dvec read_lambda(const CellMatrix& lambda, std::size_t p);

// The fit and report that every linear regression command shares; the
// commands differ only in how they prepare x, y and the weights.
CellMatrix run_linear_reg(const std::vector<std::string>& names, const dmat& x, const dvec& y,
                          const dvec& weight, const dvec& lambda, const std::string& command_name);

// Files the model and lays out the report of k + 23 rows by 6 columns.
CellMatrix report_linear_reg(const std::vector<std::string>& names, const RegressionFit& fit,
                             const std::string& command_name);

// The table that names the linear relationships found among x.
CellMatrix report_dependencies(const std::vector<std::string>& names, const dmat& dep,
                               const std::string& command_name);

}  // namespace zentable
