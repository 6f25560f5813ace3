#pragma once

#include <utility>
#include <vector>

#include "models/model_store.hpp"
#include "trees/tree_core.hpp"

namespace zentable {

// Least-squares boosted trees: F0 plus, tree by tree, the learn rate times the
// gamma (the Value) of the leaf a record reaches.
class lsRegBoostingTreeModel : public base_c {
  public:
    lsRegBoostingTreeModel(svec x_names, std::vector<treeNodes> fitted_trees, double F0,
                           dvec learn_rates)
        : names(std::move(x_names)),
          trees(std::move(fitted_trees)),
          initial(F0),
          rates(std::move(learn_rates)) {}
    lsRegBoostingTreeModel(const lsRegBoostingTreeModel&) = default;

    const svec names;
    const std::vector<treeNodes> trees;
    const double initial;
    const dvec rates;
};

// Logistic boosted trees for a binary target: the same F, scored as
// 1 / (1 + exp(-2 F)), the probability of the higher level.
class logisticRegBoostingTreeModel : public base_c {
  public:
    logisticRegBoostingTreeModel(svec x_names, std::vector<treeNodes> fitted_trees, double F0,
                                 dvec learn_rates, dvec target_levels)
        : names(std::move(x_names)),
          trees(std::move(fitted_trees)),
          initial(F0),
          rates(std::move(learn_rates)),
          levels(std::move(target_levels)) {}
    logisticRegBoostingTreeModel(const logisticRegBoostingTreeModel&) = default;

    const svec names;
    const std::vector<treeNodes> trees;
    const double initial;
    const dvec rates;
    const dvec levels;  // as the user gave them, ascending
};

}  // namespace zentable
