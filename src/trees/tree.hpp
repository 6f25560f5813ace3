#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "trees/tree_core.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// tree(x, y, treeConfig, weight): one regression ("LS") or classification
// ("GINI", "ENTROPY") tree, grown best-first, filed, and reported.
CellMatrix tree(const CellMatrix& x, const CellMatrix& y, const CellMatrix& treeConfig,
                const CellMatrix& weight);

// tree on the x, y and weight variables of a delimited file, read by name.
CellMatrix tree_from_file(const std::string& filename, const CellMatrix& xNames,
                          const CellMatrix& yName, const CellMatrix& treeConfig,
                          const CellMatrix& weightName, const CellMatrix& delimiter);

// The settings of a treeConfig table over the defaults.
TreeSettings read_tree_config(const CellMatrix& treeConfig);

// The growth, filing and report that both commands share.
CellMatrix tree_run(const dmat& x, const svec& names, const dvec& y, const dvec& weight,
                    const std::string& y_name, const TreeSettings& settings);

}  // namespace zentable
