#pragma once

#include <string>
#include <utility>
#include <vector>

#include "models/model_store.hpp"
#include "numeric/matrix.hpp"

namespace zentable {

// A fitted binary logistic regression. The coefficients are on the raw scale
// of the data, the variables in input order and the intercept last; levels
// are the target's two values as the user gave them, the second modelled.
class logisticRegModel : public base_c {
  public:
    logisticRegModel(std::vector<std::string> x_names, dvec coefficients, dvec target_levels)
        : names(std::move(x_names)),
          coefs(std::move(coefficients)),
          levels(std::move(target_levels)) {}
    logisticRegModel(const logisticRegModel&) = default;

    const std::vector<std::string> names;
    const dvec coefs;
    const dvec levels;
};

}  // namespace zentable
