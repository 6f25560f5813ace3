#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "trees/tree_core.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// tree_boosting_ls_reg(x, y, boostingTreeConfig, weight): gradient boosted
// regression trees under the squared error loss, filed and reported.
CellMatrix tree_boosting_ls_reg(const CellMatrix& x, const CellMatrix& y,
                                const CellMatrix& boostingTreeConfig, const CellMatrix& weight);
CellMatrix tree_boosting_ls_reg_from_file(const std::string& filename, const CellMatrix& xNames,
                                          const CellMatrix& yName,
                                          const CellMatrix& boostingTreeConfig,
                                          const CellMatrix& weightName,
                                          const CellMatrix& delimiter);

// tree_boosting_logistic_reg(x, y, boostingTreeConfig, weight): the same for a
// binary target under the logistic loss; the score is the probability of the
// higher level.
CellMatrix tree_boosting_logistic_reg(const CellMatrix& x, const CellMatrix& y,
                                      const CellMatrix& boostingTreeConfig,
                                      const CellMatrix& weight);
CellMatrix tree_boosting_logistic_reg_from_file(const std::string& filename,
                                                const CellMatrix& xNames, const CellMatrix& yName,
                                                const CellMatrix& boostingTreeConfig,
                                                const CellMatrix& weightName,
                                                const CellMatrix& delimiter);

struct BoostingSettings {
    double learnRate = 0.1;
    int numTrees = 100;
    TreeSettings tree;  // its method stays "LS"
};

// The settings of a boostingTreeConfig table over the defaults.
BoostingSettings read_boosting_config(const CellMatrix& boostingTreeConfig);

// The fits, filing and reports that each pair of twins shares.
CellMatrix tree_boosting_ls_run(const dmat& x, const svec& names, const dvec& y, const dvec& weight,
                                const BoostingSettings& settings);
CellMatrix tree_boosting_logistic_run(const dmat& x, const svec& names, const dvec& y,
                                      const dvec& weight, const std::string& y_name,
                                      const BoostingSettings& settings);

}  // namespace zentable
