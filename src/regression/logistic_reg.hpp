#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// logistic_reg(x, y, weight): binary logistic regression by maximum
// likelihood; the higher of y's two values is the event.
CellMatrix logistic_reg(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight);

// logistic_reg on the x, y and weight variables of a delimited file, read by name.
CellMatrix logistic_reg_from_file(const std::string& filename, const CellMatrix& xNames,
                                  const CellMatrix& yName, const CellMatrix& weightName,
                                  const CellMatrix& delimiter);

// A "yhat" column of event probabilities: each record of inputData scored
// with a table of variable names and coefficients, "Intercept" naming the
// constant.
CellMatrix logistic_reg_score_from_coefs(const CellMatrix& coefs, const CellMatrix& inputData);

// The fit, filing and report that both fitting commands share. has_weight
// alone decides whether the weight columns are shown.
CellMatrix logistic_reg_run(const dmat& x, const dvec& y, const dvec& weight,
                            const std::vector<std::string>& names, const std::string& y_name,
                            bool has_weight);

}  // namespace zentable
