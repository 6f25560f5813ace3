#include "trees/tree_core.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <new>

#include "numeric/radix_sort.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

enum class Method { ls, gini, entropy };

Method method_of(const std::string& method) {
    if (method == "LS")
        return Method::ls;
    if (method == "GINI")
        return Method::gini;
    if (method == "ENTROPY")
        return Method::entropy;
    throw "Error: wrong method of tree: only LS, GINI, or ENTROPY is valid.";
}

double gini(double q) {
    return 1.0 - q * q - (1.0 - q) * (1.0 - q);
}

double entropy(double q) {
    return -q * std::log(q + 1e-20) - (1.0 - q) * std::log(1.0 - q + 1e-20);
}

double split_gain(Method method, double wL, double W, double sL, double m) {
    switch (method) {
        case Method::ls: {
            const double d = sL / wL - m;
            return d * d * wL * W / (W - wL);
        }
        case Method::gini: {
            const double pL = sL / (wL + 1e-20);
            const double pR = (W * m - sL) / ((W - wL) + 1e-20);
            return gini(m) * W - gini(pL) * wL - gini(pR) * (W - wL);
        }
        case Method::entropy: {
            const double pL = sL / (wL + 1e-20);
            const double pR = (W * m - sL) / ((W - wL) + 1e-20);
            return entropy(m) * W - entropy(pL) * wL - entropy(pR) * (W - wL);
        }
    }
    return 0.0;
}

// A key whose unsigned order is the order of the doubles; -0.0 and 0.0 share
// one key, since no split falls between them.
std::uint64_t sort_key(double x) {
    return order_key(x == 0.0 ? 0.0 : x);
}

// Orders the positions 0..n-1 of a node's rows by x, ascending, equal values
// keeping the node's order. The order is fully determined, so the running
// sums of the split search add up in the same order whatever the data.
// A least-significant-digit radix sort gives that order in a few passes.
class PositionSorter {
  public:
    const std::vector<std::uint32_t>& sort(const dvec& x) {
        const std::size_t n = x.size();
        keys_.resize(n);
        order_.resize(n);
        spare_keys_.resize(n);
        spare_order_.resize(n);
        for (auto& h : counts_)
            h.fill(0);
        for (std::size_t i = 0; i < n; ++i) {
            const std::uint64_t key = sort_key(x[i]);
            keys_[i] = key;
            order_[i] = static_cast<std::uint32_t>(i);
            for (int d = 0; d < kDigits; ++d)
                ++counts_[d][(key >> (d * kBits)) & kMask];
        }
        for (int d = 0; d < kDigits; ++d) {
            auto& count = counts_[d];
            const int shift = d * kBits;
            // A digit that all keys share leaves the order as it is.
            if (n == 0 || count[(keys_[0] >> shift) & kMask] == n)
                continue;
            std::size_t start = 0;
            for (auto& c : count) {
                const std::size_t here = c;
                c = start;
                start += here;
            }
            for (std::size_t i = 0; i < n; ++i) {
                const std::size_t to = count[(keys_[i] >> shift) & kMask]++;
                spare_keys_[to] = keys_[i];
                spare_order_[to] = order_[i];
            }
            keys_.swap(spare_keys_);
            order_.swap(spare_order_);
        }
        return order_;
    }

  private:
    static constexpr int kBits = 11;
    static constexpr int kDigits = 6;  // 66 bits cover the 64 of a key
    static constexpr std::uint64_t kMask = (1u << kBits) - 1;

    std::vector<std::uint64_t> keys_, spare_keys_;
    std::vector<std::uint32_t> order_, spare_order_;
    std::array<std::array<std::size_t, 1u << kBits>, kDigits> counts_{};
};

SplitChoice search_sorted(const dvec& x, const dvec& y, const dvec& w,
                          const std::vector<std::uint32_t>& order, int minChild, Method method) {
    const std::size_t n = x.size();
    double W = 0.0, S = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        W += w[order[i]];
        S += w[order[i]] * y[order[i]];
    }
    const double m = S / W;
    SplitChoice best;
    double wL = 0.0, sL = 0.0;
    const long long count = static_cast<long long>(n);
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint32_t at = order[i];
        wL += w[at];
        sL += w[at] * y[at];
        const long long nL = static_cast<long long>(i) + 1;
        if (i + 1 < n && x[order[i + 1]] == x[at])
            continue;
        if (nL < minChild || count - nL < minChild)
            continue;
        const double gain = split_gain(method, wL, W, sL, m);
        if (gain > best.gain) {
            best.gain = gain;
            best.point = x[at];
        }
    }
    return best;
}

int level_of(long long node_index) {
    return static_cast<int>(std::log(static_cast<double>(node_index) + 0.1) / std::log(2.0));
}

std::vector<int> row_array(std::size_t n) {
    try {
        std::vector<int> rows;
        rows.reserve(n);
        return rows;
    } catch (const std::bad_alloc&) {
        throw "allocation failure in ivector()";
    }
}

// The growth of one tree; lives for one call.
class TreeGrower {
  public:
    TreeGrower(const TreeTable& data, const std::vector<int>& x_columns,
               const std::vector<int>& y_columns, int weight_column, const TreeSettings& settings)
        : data_(data),
          x_columns_(x_columns),
          y_columns_(y_columns),
          weight_column_(weight_column),
          settings_(settings),
          method_(method_of(settings.method)) {}

    treeNodes grow() {
        treeNode root;
        root.rows = row_array(data_.rows);
        for (std::size_t r = 0; r < data_.rows; ++r)
            root.rows.push_back(static_cast<int>(r));
        fill(root);
        nodes_.push_back(std::move(root));

        long long splits = 0;
        for (long long next = next_split();
             next >= 0 && splits < static_cast<long long>(settings_.numTerminals) - 1;
             next = next_split()) {
            ++splits;
            split(static_cast<std::size_t>(next), static_cast<int>(splits));
        }
        finish();
        return std::move(nodes_);
    }

  private:
    // The position of the node to split next, or -1 when growth ends. The
    // single best leaf is tested; a blocked winner ends the whole tree.
    long long next_split() const {
        long long winner = -1;
        double best = 0.0;
        for (std::size_t k = 0; k < nodes_.size(); ++k) {
            if (nodes_[k].Terminal && nodes_[k].Gain > best) {
                best = nodes_[k].Gain;
                winner = static_cast<long long>(k);
            }
        }
        if (winner < 0)
            return -1;
        const treeNode& node = nodes_[static_cast<std::size_t>(winner)];
        if (node.NumRecords < settings_.minSize || node.Level >= settings_.maxLevel ||
            !(node.Gain > 1e-20))
            return -1;
        return winner;
    }

    void split(std::size_t at, int step) {
        nodes_[at].Terminal = false;
        nodes_[at].Step = step;
        const treeNode& parent = nodes_[at];
        const int column = x_columns_[static_cast<std::size_t>(parent.SplitVariable)];
        treeNode left, right;
        left.NodeIndex = 2 * parent.NodeIndex;
        right.NodeIndex = 2 * parent.NodeIndex + 1;
        left.Level = level_of(left.NodeIndex);
        right.Level = level_of(right.NodeIndex);
        left.rows = row_array(parent.rows.size());
        right.rows = row_array(parent.rows.size());
        for (int r : parent.rows) {
            if (parent.SplitPoint >=
                data_(static_cast<std::size_t>(r), static_cast<std::size_t>(column)))
                left.rows.push_back(r);
            else
                right.rows.push_back(r);
        }
        fill(left);
        fill(right);
        nodes_.push_back(std::move(left));
        nodes_.push_back(std::move(right));
    }

    // The node's best split over all variables, then its counts and moments.
    void fill(treeNode& node) {
        const std::size_t n = node.rows.size();
        node.NumRows = static_cast<int>(n);
        const auto y_column = static_cast<std::size_t>(y_columns_[0]);
        const auto w_column = static_cast<std::size_t>(weight_column_);
        // The node's scratch, reused across its variables.
        y_.resize(n);
        w_.resize(n);
        x_.resize(n);
        for (std::size_t k = 0; k < n; ++k) {
            const auto r = static_cast<std::size_t>(node.rows[k]);
            y_[k] = data_(r, y_column);
            w_[k] = data_(r, w_column);
        }
        node.SplitVariable = -1;
        node.SplitPoint = 0.0;
        node.Gain = 0.0;
        for (std::size_t v = 0; v < x_columns_.size(); ++v) {
            const auto column = static_cast<std::size_t>(x_columns_[v]);
            for (std::size_t k = 0; k < n; ++k)
                x_[k] = data_(static_cast<std::size_t>(node.rows[k]), column);
            const SplitChoice choice =
                search_sorted(x_, y_, w_, sorter_.sort(x_), settings_.minChild, method_);
            if (choice.gain > node.Gain) {
                node.Gain = choice.gain;
                node.SplitPoint = choice.point;
                node.SplitVariable = static_cast<int>(v);
            }
        }
        node.NumRecords = static_cast<int>(n);
        node.SumWeight = 0.0;
        node.YMean.assign(y_columns_.size(), 0.0);
        node.YStd.assign(y_columns_.size(), 0.0);
        for (std::size_t t = 0; t < y_columns_.size(); ++t) {
            const auto column = static_cast<std::size_t>(y_columns_[t]);
            double sum = 0.0, squares = 0.0;
            for (int r : node.rows) {
                const double w = data_(static_cast<std::size_t>(r), w_column);
                const double y = data_(static_cast<std::size_t>(r), column);
                node.SumWeight += w;
                sum += w * y;
                squares += w * y * y;
            }
            const double mean = sum / node.SumWeight;
            node.YMean[t] = mean;
            // Rounding can leave a hair below zero for a constant target.
            node.YStd[t] = std::sqrt(std::max(0.0, squares / node.SumWeight - mean * mean));
        }
    }

    void finish() {
        int depth = 0;
        for (const treeNode& node : nodes_)
            depth = std::max(depth, node.Level);
        for (treeNode& node : nodes_) {
            std::string path;
            long long i = node.NodeIndex;
            for (int d = 0; d < depth; ++d) {
                if (i > 1) {
                    path.insert(path.begin(), i % 2 ? 'R' : 'L');
                    i /= 2;
                } else {
                    path += 'A';
                }
            }
            node.NodeStr = path;
            node.rows = std::vector<int>();
            node.Value = node.YMean[0];
        }
    }

    const TreeTable& data_;
    const std::vector<int>& x_columns_;
    const std::vector<int>& y_columns_;
    int weight_column_;
    TreeSettings settings_;
    Method method_;
    treeNodes nodes_;
    dvec x_, y_, w_;
    PositionSorter sorter_;
};

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

// For each variable of the tree, its column in the data table; -1 for one
// that the tree never splits on.
std::vector<int> tree_columns(const svec& model_names, const treeNodes& nodes,
                              const svec& data_names) {
    std::vector<int> columns(model_names.size(), -1);
    for (int v : splitVariablesOfTree(nodes)) {
        const std::string& name = model_names[static_cast<std::size_t>(v)];
        const auto it = std::find(data_names.begin(), data_names.end(), name);
        if (it == data_names.end())
            throw "The variable used in tree: " + name + ": cannot be found in data matrix";
        columns[static_cast<std::size_t>(v)] = static_cast<int>(it - data_names.begin());
    }
    return columns;
}

template <class Answer>
auto walk_rows(const svec& model_names, const treeNodes& nodes, const svec& data_names,
               const dmat& data, Answer answer) {
    const std::vector<int> columns = tree_columns(model_names, nodes, data_names);
    std::vector<decltype(answer(nodes[0]))> out;
    out.reserve(data.size());
    for (const dvec& row : data) {
        const std::size_t leaf = leaf_of(nodes, [&](int v) {
            return row[static_cast<std::size_t>(columns[static_cast<std::size_t>(v)])];
        });
        out.push_back(answer(nodes[leaf]));
    }
    return out;
}

}  // namespace

TreeTable make_tree_table(const dmat& x, const dvec& y, const dvec& weight) {
    TreeTable table;
    table.rows = x.size();
    table.columns = (x.empty() ? 0 : x[0].size()) + 2;
    table.cells.resize(table.rows * table.columns);
    for (std::size_t r = 0; r < table.rows; ++r) {
        double* row = &table.cells[r * table.columns];
        std::copy(x[r].begin(), x[r].end(), row);
        row[table.columns - 2] = y[r];
        row[table.columns - 1] = weight[r];
    }
    return table;
}

SplitChoice best_split(const dvec& x, const dvec& y, const dvec& w, int minChild,
                       const std::string& method) {
    PositionSorter sorter;
    return search_sorted(x, y, w, sorter.sort(x), minChild, method_of(method));
}

GrownTree growTree(const TreeTable& data, const svec& names, const std::vector<int>& x_columns,
                   const std::vector<int>& y_columns, int weight_column,
                   const TreeSettings& settings) {
    (void)names;  // the nodes refer to variables by their place in x_columns
    GrownTree tree;
    tree.nodes = TreeGrower(data, x_columns, y_columns, weight_column, settings).grow();
    tree.importance = relative_importance({&tree.nodes});
    return tree;
}

dmat relative_importance(const std::vector<const treeNodes*>& trees) {
    std::map<int, double> totals;
    for (const treeNodes* nodes : trees)
        for (const treeNode& node : *nodes)
            if (!node.Terminal)
                totals[node.SplitVariable] += node.Gain;
    std::vector<std::pair<int, double>> ranked(totals.begin(), totals.end());
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    dmat importance;
    if (ranked.empty())
        return importance;
    const double largest = std::sqrt(ranked.front().second);
    for (const auto& [variable, gain] : ranked)
        importance.push_back({static_cast<double>(variable), 100.0 * std::sqrt(gain) / largest});
    return importance;
}

std::vector<int> splitVariablesOfTree(const treeNodes& nodes) {
    std::vector<int> variables;
    for (const treeNode& node : nodes)
        if (!node.Terminal)
            variables.push_back(node.SplitVariable);
    std::sort(variables.begin(), variables.end());
    variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
    return variables;
}

std::vector<int> splitVariablesOfTree(const std::vector<treeNodes>& trees) {
    std::vector<int> variables;
    for (const treeNodes& nodes : trees)
        for (int v : splitVariablesOfTree(nodes))
            variables.push_back(v);
    std::sort(variables.begin(), variables.end());
    variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
    return variables;
}

dvec scoreTree(const svec& model_names, const treeNodes& nodes, const svec& data_names,
               const dmat& data) {
    return walk_rows(model_names, nodes, data_names, data,
                     [](const treeNode& leaf) { return leaf.Value; });
}

svec scoreTreeNodeStr(const svec& model_names, const treeNodes& nodes, const svec& data_names,
                      const dmat& data) {
    return walk_rows(model_names, nodes, data_names, data,
                     [](const treeNode& leaf) { return leaf.NodeStr; });
}

std::vector<ConfigEntry> read_config_table(const CellMatrix& table,
                                           const std::string& shape_message) {
    std::vector<ConfigEntry> entries;
    if (is_omitted(table))
        return entries;
    if (table.ColumnsInStructure() != 2)
        throw shape_message;
    for (std::size_t r = 0; r < table.RowsInStructure(); ++r) {
        ConfigEntry entry;
        entry.name = upper(trim(cell_to_text(table(r, 0)), 0));
        if (entry.name.empty())
            continue;
        entry.number = cell_to_double(table(r, 1));
        entry.text = trim(cell_to_text(table(r, 1)), 0);
        entries.push_back(entry);
    }
    return entries;
}

int config_int(const ConfigEntry& entry) {
    const double t = std::trunc(entry.number);
    if (!(t > INT_MIN))
        return INT_MIN;
    if (!(t < INT_MAX))
        return INT_MAX;
    return static_cast<int>(t);
}

double binary_entropy_term(double q) {
    const double tolerance = 2.220446049250313e-16;
    if (std::fabs(q) < tolerance || std::fabs(q - 1.0) < tolerance)
        return 0.0;
    return q * std::log(q) + (1.0 - q) * std::log(1.0 - q);
}

}  // namespace zentable
