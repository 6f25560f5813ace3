#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// One node of a binary tree. A tree is a plain sequence of nodes in order of
// creation (root first, then for each split its left child and its right
// child); the links are implicit in the heap number NodeIndex.
struct treeNode {
    std::vector<int> rows;  // training rows while growing; released when growth ends
    int NumRows = 0;
    long long NodeIndex = 1;  // root 1, left child 2i, right child 2i + 1
    int Level = 0;
    int SplitVariable = -1;  // index into the tree's variable list, -1 if none
    double SplitPoint = 0.0;
    double Gain = 0.0;
    bool Terminal = true;
    int Step = 0;  // growth step that split this node, from 1
    int NumRecords = 0;
    double SumWeight = 0.0;
    dvec YMean;  // one entry per target column
    dvec YStd;
    std::string NodeStr;
    double Value = 0.0;  // what the node contributes when scored
};

using treeNodes = std::vector<treeNode>;

// The engine's table: one row per record, the x columns in input order, then
// y, then the weight, stored row after row in one block.
struct TreeTable {
    std::size_t rows = 0;
    std::size_t columns = 0;
    dvec cells;

    double operator()(std::size_t row, std::size_t column) const {
        return cells[row * columns + column];
    }
    double& operator()(std::size_t row, std::size_t column) {
        return cells[row * columns + column];
    }
};

// x, y and w joined into the engine's table.
TreeTable make_tree_table(const dmat& x, const dvec& y, const dvec& weight);

struct TreeSettings {
    int numTerminals = 4;
    int minSize = 50;
    int minChild = 30;
    int maxLevel = 3;
    std::string method = "LS";
};

struct GrownTree {
    treeNodes nodes;
    dmat importance;  // per variable used: its index as a double, its importance
};

// Grows one tree best-first: the terminal node with the largest gain is split
// next, until numTerminals - 1 splits are made or the winner is blocked.
GrownTree growTree(const TreeTable& data, const svec& names, const std::vector<int>& x_columns,
                   const std::vector<int>& y_columns, int weight_column,
                   const TreeSettings& settings);

// The best split of one variable over (x, y, w) rows: the largest left value
// and its gain, or a gain of -1 when no candidate passes the child test.
struct SplitChoice {
    double point = 0.0;
    double gain = -1.0;
};
SplitChoice best_split(const dvec& x, const dvec& y, const dvec& w, int minChild,
                       const std::string& method);

// Importance rows of the gains summed by split variable over the non-terminal
// nodes of the trees, largest first: 100 sqrt(g) / sqrt(G).
dmat relative_importance(const std::vector<const treeNodes*>& trees);

// Sorted distinct split variables of the non-terminal nodes.
std::vector<int> splitVariablesOfTree(const treeNodes& nodes);
std::vector<int> splitVariablesOfTree(const std::vector<treeNodes>& trees);

// The leaf that each data row reaches: its Value, or its NodeStr. The data
// table's columns are matched to the tree's split variables by name.
dvec scoreTree(const svec& model_names, const treeNodes& nodes, const svec& data_names,
               const dmat& data);
svec scoreTreeNodeStr(const svec& model_names, const treeNodes& nodes, const svec& data_names,
                      const dmat& data);

// The position in the node sequence of the leaf that a row reaches; value_of
// gives the row's value of a tree variable.
template <class ValueOf>
std::size_t leaf_of(const treeNodes& nodes, ValueOf value_of) {
    std::size_t at = 0;
    while (!nodes[at].Terminal) {
        const treeNode& node = nodes[at];
        const long long next = node.SplitPoint >= value_of(node.SplitVariable)
                                   ? 2 * node.NodeIndex
                                   : 2 * node.NodeIndex + 1;
        // A linear scan: trees are small.
        std::size_t k = 0;
        while (nodes[k].NodeIndex != next)
            ++k;
        at = k;
    }
    return at;
}

// The settings of a two-column configuration table, names folded to upper
// case; an omitted table has none. Rows with an empty name are passed over.
struct ConfigEntry {
    std::string name;
    double number = 0.0;  // the value cell through cell_to_double
    std::string text;     // and through cell_to_text, trimmed
};
std::vector<ConfigEntry> read_config_table(const CellMatrix& table,
                                           const std::string& shape_message);
// A numeric setting, truncated toward zero.
int config_int(const ConfigEntry& entry);

// h(q) = q ln q + (1 - q) ln(1 - q), 0 at the ends.
double binary_entropy_term(double q);

}  // namespace zentable
