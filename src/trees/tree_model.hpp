#pragma once

#include <string>
#include <utility>
#include <vector>

#include "models/model_store.hpp"
#include "trees/tree_core.hpp"

namespace zentable {

// A grown regression tree: the x names in input order and the node sequence.
class regressionTreeModel : public base_c {
  public:
    regressionTreeModel(svec x_names, treeNodes tree_nodes)
        : names(std::move(x_names)), nodes(std::move(tree_nodes)) {}
    regressionTreeModel(const regressionTreeModel&) = default;

    const svec names;
    const treeNodes nodes;
};

// A grown classification tree, whose leaves score the event rate of the
// higher of the two target levels; levels are as the user gave them, ascending.
class classificationTreeModel : public base_c {
  public:
    classificationTreeModel(svec x_names, treeNodes tree_nodes, dvec target_levels)
        : names(std::move(x_names)),
          nodes(std::move(tree_nodes)),
          levels(std::move(target_levels)) {}
    classificationTreeModel(const classificationTreeModel&) = default;

    const svec names;
    const treeNodes nodes;
    const dvec levels;
};

}  // namespace zentable
