#include "trees/tree.hpp"

#include <algorithm>
#include <cctype>

#include "data/delimited_file.hpp"
#include "models/model_eval.hpp"
#include "regression/logistic_fit.hpp"
#include "trees/tree_model.hpp"
#include "trees/tree_report.hpp"
#include "xlw/decoders.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kShape =
    "Input treeConfig must have two columns, one for names and the other for values";

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

// LL1 of a classification tree: each leaf's weight times h of its event rate.
double leaf_log_likelihood(const treeNodes& nodes) {
    double ll = 0.0;
    for (const treeNode& node : nodes)
        if (node.Terminal)
            ll += node.SumWeight * binary_entropy_term(node.YMean[0]);
    return ll;
}

void write_configuration(CellMatrix& r, std::size_t at, const TreeSettings& s) {
    r(at, 0) = "Tree Configuration";
    r(at + 2, 0) = "method";
    r(at + 2, 1) = s.method;
    r(at + 3, 0) = "numTerminals";
    r(at + 3, 1) = s.numTerminals;
    r(at + 4, 0) = "minSize";
    r(at + 4, 1) = s.minSize;
    r(at + 5, 0) = "minChild";
    r(at + 5, 1) = s.minChild;
    r(at + 6, 0) = "maxLevel";
    r(at + 6, 1) = s.maxLevel;
}

void write_structure(CellMatrix& r, std::size_t at, const treeNodes& nodes, const svec& names) {
    r(at, 0) = "Tree structure";
    const char* headers[] = {"NodeIndex", "Level",         "NodeStr",    "NumRecords", "Y Mean",
                             "Step",      "SplitVariable", "SplitPoint", "Gain",       "Terminal"};
    for (int c = 0; c < 10; ++c)
        r(at + 2, c) = headers[c];
    for (std::size_t k = 0; k < nodes.size(); ++k) {
        const treeNode& node = nodes[k];
        const std::size_t row = at + 3 + k;
        r(row, 0) = node.NodeIndex;
        r(row, 1) = node.Level;
        r(row, 2) = node.NodeStr;
        r(row, 3) = node.NumRecords;
        r(row, 4) = node.YMean[0];
        if (!node.Terminal) {
            r(row, 5) = node.Step;
            r(row, 6) = names[static_cast<std::size_t>(node.SplitVariable)];
            r(row, 7) = node.SplitPoint;
            r(row, 8) = node.Gain;
        }
        r(row, 9) = node.Terminal ? "YES" : "NO";
    }
}

}  // namespace

TreeSettings read_tree_config(const CellMatrix& treeConfig) {
    TreeSettings s;
    for (const ConfigEntry& e : read_config_table(treeConfig, kShape)) {
        if (e.name == "METHOD")
            s.method = upper(e.text);
        else if (e.name == "NUMTERMINALS")
            s.numTerminals = config_int(e);
        else if (e.name == "MINSIZE")
            s.minSize = config_int(e);
        else if (e.name == "MINCHILD")
            s.minChild = config_int(e);
        else if (e.name == "MAXLEVEL")
            s.maxLevel = config_int(e);
        else
            throw e.name +
                " is not a valid treeConfig name. The valid names are method, numTerminals, "
                "minSize, minChild, and maxLevel.";
    }
    return s;
}

CellMatrix tree(const CellMatrix& x, const CellMatrix& y, const CellMatrix& treeConfig,
                const CellMatrix& weight) {
    const TreeSettings settings = read_tree_config(treeConfig);
    const XYW data = read_xyw(x, y, weight);
    return tree_run(data.x, data.x_names, data.y, data.weight, data.y_name, settings);
}

CellMatrix tree_from_file(const std::string& filename, const CellMatrix& xNames,
                          const CellMatrix& yName, const CellMatrix& treeConfig,
                          const CellMatrix& weightName, const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const TreeSettings settings = read_tree_config(treeConfig);
    const XYW data = read_xyw_from_file(filename, xNames, yName, weightName, separator);
    return tree_run(data.x, data.x_names, data.y, data.weight, data.y_name, settings);
}

CellMatrix tree_run(const dmat& x, const svec& names, const dvec& y, const dvec& weight,
                    const std::string& y_name, const TreeSettings& settings) {
    const bool regression = settings.method == "LS";
    if (!regression && settings.method != "GINI" && settings.method != "ENTROPY")
        throw "Error: wrong method of tree: only LS, GINI, or ENTROPY is valid.";
    dvec target = y;
    dvec levels;
    if (!regression)
        levels = binary_recode(target);

    const int p = static_cast<int>(names.size());
    std::vector<int> x_columns(names.size());
    for (int v = 0; v < p; ++v)
        x_columns[static_cast<std::size_t>(v)] = v;
    const GrownTree grown =
        growTree(make_tree_table(x, target, weight), names, x_columns, {p}, p + 1, settings);
    const int nv = static_cast<int>(grown.importance.size());
    const std::size_t r = regression ? 17 : 20;
    const std::size_t nodes = grown.nodes.size();
    CellMatrix result(r + 19 + static_cast<std::size_t>(nv) + nodes, 10);

    // From here on the model is in the store, whatever follows.
    std::string handle;
    if (regression) {
        const handle_c<regressionTreeModel> model(new regressionTreeModel(names, grown.nodes));
        handle = regressionTreeModelHandle_to_string(model);
        ContEval eval;
        model_continuous_stats(handle, names, x, y, weight, eval);
        write_anova_block(result, eval, nv);
    } else {
        const handle_c<classificationTreeModel> model(
            new classificationTreeModel(names, grown.nodes, levels));
        handle = classificationTreeModelHandle_to_string(model);
        BinaryEval eval;
        model_binary_association(handle, names, x, target, weight, eval);
        BinaryPerformance perf;
        perf.y_name = y_name;
        perf.levels = levels;
        count_events(target, weight, perf);
        perf.candidates = p;
        perf.nv = nv;
        perf.ll0 = perf.w * binary_entropy_term(perf.w1 / perf.w);
        perf.ll1 = leaf_log_likelihood(grown.nodes);
        write_binary_block(result, perf, eval);
    }
    result(0, 0) = handle;

    write_configuration(result, r + 2, settings);
    result(r + 10, 0) = "Number of variables selected in model";
    result(r + 10, 1) = nv;
    write_importance(result, r + 12, grown.importance, names);
    write_structure(result, r + 14 + static_cast<std::size_t>(nv), grown.nodes, names);
    result(result.RowsInStructure() - 1, 0) = "End of output: decision tree";
    return result;
}

}  // namespace zentable
