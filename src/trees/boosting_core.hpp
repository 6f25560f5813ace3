#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "trees/tree_core.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// A fitted sum of trees: F = F0 + over the rounds, rate times the Value
// (gamma) of the leaf that a record reaches.
struct BoostingFit {
    double F0 = 0.0;
    std::vector<treeNodes> trees;
    dvec rates;
    dvec scores;      // the fit F of each training record
    dmat importance;  // as growTree's, over all trees
};

// The two losses; the tree settings' method is ignored, each round's tree is
// a least-squares one. The rate of round m is rateBase + rateAmplitude *
// rateDecay^(m - 1). The logistic fit wants a target coded 0 and 1.
BoostingFit fitBoostingLs(const TreeTable& data, const std::vector<int>& x_columns,
                          const std::vector<int>& y_columns, int weight_column, int numTrees,
                          const TreeSettings& settings, double rateBase, double rateAmplitude,
                          double rateDecay);
BoostingFit fitBoostingLogistic(const TreeTable& data, const std::vector<int>& x_columns,
                                const std::vector<int>& y_columns, int weight_column, int numTrees,
                                const TreeSettings& settings, double rateBase, double rateAmplitude,
                                double rateDecay);

// F of each data row; the logistic form gives 1 / (1 + exp(-2 F)).
dvec scoreLsBoosting(const svec& model_names, const std::vector<treeNodes>& trees,
                     const dvec& rates, double F0, const svec& data_names, const dmat& data);
dvec scoreLogisticBoosting(const svec& model_names, const std::vector<treeNodes>& trees,
                           const dvec& rates, double F0, const svec& data_names, const dmat& data);
// For each tree in round order, the NodeStr of the leaf each row reaches.
std::vector<svec> scoreBoostingNodes(const svec& model_names, const std::vector<treeNodes>& trees,
                                     const svec& data_names, const dmat& data);

}  // namespace zentable
