#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "regression/logistic_fit.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// Forward selection: the x variables enter one at a time, the forced
// startsWith variables first and untested, the others while the best of them
// passes the entry test at pvalue, for at most `steps` variables beyond the
// forced ones. Each command files the model of the selected variables.
CellMatrix linear_reg_forward_select(const CellMatrix& x, const CellMatrix& y,
                                     const CellMatrix& pvalue, const CellMatrix& steps,
                                     const CellMatrix& startsWith, const CellMatrix& weight);
CellMatrix linear_reg_forward_select_from_file(const std::string& filename,
                                               const CellMatrix& xNames, const CellMatrix& yName,
                                               const CellMatrix& pvalue, const CellMatrix& steps,
                                               const CellMatrix& startsWith,
                                               const CellMatrix& weightName,
                                               const CellMatrix& delimiter);
CellMatrix logistic_reg_forward_select(const CellMatrix& x, const CellMatrix& y,
                                       const CellMatrix& pvalue, const CellMatrix& steps,
                                       const CellMatrix& startsWith, const CellMatrix& weight);
CellMatrix logistic_reg_forward_select_from_file(const std::string& filename,
                                                 const CellMatrix& xNames, const CellMatrix& yName,
                                                 const CellMatrix& pvalue, const CellMatrix& steps,
                                                 const CellMatrix& startsWith,
                                                 const CellMatrix& weightName,
                                                 const CellMatrix& delimiter);

// The selection cores, exposed for the tests. `forced` are column indices of
// x; `limit` is the most variables that may enter, forced ones included.
struct LinearSelection {
    std::vector<std::int32_t> selected;  // in order of entry
    dvec r_square, f_value, p_value;     // one per entry
    double final_r_square = 0.0;
    int n = 0;
    double sum_weight = 0.0, y_mean = 0.0, y_sd = 0.0;
    dvec coefs, std_errors, t_values, p_values;  // selected order, intercept last
};
LinearSelection linear_forward_core(const dmat& x, const dvec& y, const dvec& weight, double pvalue,
                                    std::size_t limit, const std::vector<std::int32_t>& forced);

struct LogisticSelection {
    std::vector<std::int32_t> selected;
    dvec score, p_value;  // one per entry
    LogisticFit fit;      // of the selected columns in order of entry
};
// y coded 0 and 1.
LogisticSelection logistic_forward_core(const dmat& x, const dvec& y, const dvec& weight,
                                        double pvalue, std::size_t limit,
                                        const std::vector<std::int32_t>& forced);

}  // namespace zentable
