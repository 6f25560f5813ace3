#pragma once

#include <string>
#include <vector>

#include "models/model_store.hpp"
#include "numeric/matrix.hpp"

namespace zentable {

struct LinearRegStats {
    std::int32_t n = 0;  // records used
    std::int32_t k = 0;  // parameters, p + 1
    double sum_weight = 0.0;
    double y_mean = 0.0;
    double y_mean_again = 0.0;  // kept twice, as the model record has always had it
    double sst = 0.0, ssr = 0.0, sse = 0.0;
    double rmse = 0.0, coeff_var = 0.0;
    double r_square = 0.0, adj_r_square = 0.0;
    double f_value = 0.0, p_value = 1.0;
};

// A fitted linear or ridge regression. Vectors hold the variables in input
// order and the intercept last.
class linearRegModel : public base_c {
  public:
    linearRegModel(const LinearRegStats& fit_stats, std::vector<std::string> x_names,
                   dvec coefficients, dvec errors, dvec t, dvec p)
        : stats(fit_stats),
          names(std::move(x_names)),
          coefs(std::move(coefficients)),
          std_errors(std::move(errors)),
          t_values(std::move(t)),
          p_values(std::move(p)) {}
    linearRegModel(const linearRegModel&) = default;

    LinearRegStats stats;
    std::vector<std::string> names;
    dvec coefs, std_errors, t_values, p_values;
};

}  // namespace zentable
