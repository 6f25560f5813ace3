#include "trees/tree_boosting.hpp"

#include <utility>

#include "data/delimited_file.hpp"
#include "models/model_eval.hpp"
#include "regression/logistic_fit.hpp"
#include "trees/boosting_core.hpp"
#include "trees/boosting_model.hpp"
#include "trees/tree_report.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kShape =
    "Input boostingTreeConfig must have two columns, one for names and the other for values";
// The learn rate stays the same in every round: the engine's decaying term
// is switched off by a zero amplitude.
constexpr double kRateAmplitude = 0.0;
constexpr double kRateDecay = 0.8;

BoostingFit fit(const dmat& x, const dvec& target, const dvec& weight,
                const BoostingSettings& settings, bool logistic) {
    const int p = static_cast<int>(x.empty() ? 0 : x[0].size());
    std::vector<int> x_columns(static_cast<std::size_t>(p));
    for (int v = 0; v < p; ++v)
        x_columns[static_cast<std::size_t>(v)] = v;
    const TreeTable table = make_tree_table(x, target, weight);
    if (logistic)
        return fitBoostingLogistic(table, x_columns, {p}, p + 1, settings.numTrees, settings.tree,
                                   settings.learnRate, kRateAmplitude, kRateDecay);
    return fitBoostingLs(table, x_columns, {p}, p + 1, settings.numTrees, settings.tree,
                         settings.learnRate, kRateAmplitude, kRateDecay);
}

std::size_t node_count(const std::vector<treeNodes>& trees) {
    std::size_t count = 0;
    for (const treeNodes& nodes : trees)
        count += nodes.size();
    return count;
}

// Everything below the performance block, whose last row is r.
void write_details(CellMatrix& t, std::size_t r, const BoostingSettings& s,
                   const std::vector<treeNodes>& trees, const dmat& importance, const svec& names,
                   const std::string& command) {
    t(r + 2, 0) = "learnRate";
    t(r + 2, 1) = s.learnRate;
    t(r + 3, 0) = "numTrees";
    t(r + 3, 1) = s.numTrees;
    t(r + 4, 0) = "numTerminals";
    t(r + 4, 1) = s.tree.numTerminals;
    t(r + 5, 0) = "minSize";
    t(r + 5, 1) = s.tree.minSize;
    t(r + 6, 0) = "minChild";
    t(r + 6, 1) = s.tree.minChild;
    t(r + 7, 0) = "maxLevel";
    t(r + 7, 1) = s.tree.maxLevel;
    const std::size_t nv = importance.size();
    t(r + 9, 0) = "Number of variables selected in model";
    t(r + 9, 1) = static_cast<int>(nv);
    write_importance(t, r + 11, importance, names);

    t(r + 13 + nv, 0) = "Details of Trees";
    const char* headers[] = {"Tree",       "NodeIndex", "Level", "NodeStr",
                             "NumRecords", "Y Mean",    "Step",  "SplitVariable",
                             "SplitPoint", "Gain",      "Gamma", "Terminal"};
    for (int c = 0; c < 12; ++c)
        t(r + 15 + nv, c) = headers[c];
    std::size_t row = r + 16 + nv;
    for (std::size_t k = 0; k < trees.size(); ++k) {
        for (const treeNode& node : trees[k]) {
            t(row, 0) = static_cast<int>(k + 1);
            t(row, 1) = node.NodeIndex;
            t(row, 2) = node.Level;
            t(row, 3) = node.NodeStr;
            t(row, 4) = node.NumRecords;
            t(row, 5) = node.YMean[0];
            if (node.Terminal) {
                t(row, 10) = node.Value;
                t(row, 11) = "YES";
            } else {
                t(row, 6) = node.Step;
                t(row, 7) = names[static_cast<std::size_t>(node.SplitVariable)];
                t(row, 8) = node.SplitPoint;
                t(row, 9) = node.Gain;
                t(row, 11) = "NO";
            }
            ++row;
        }
    }
    t(row + 1, 0) = "End of output: " + command;
}

CellMatrix sized_report(std::size_t r, const BoostingFit& f) {
    return CellMatrix(r + 16 + f.importance.size() + node_count(f.trees) + 2, 12);
}

}  // namespace

BoostingSettings read_boosting_config(const CellMatrix& boostingTreeConfig) {
    BoostingSettings s;
    for (const ConfigEntry& e : read_config_table(boostingTreeConfig, kShape)) {
        if (e.name == "LEARNRATE")
            s.learnRate = e.number;
        else if (e.name == "NUMTREES")
            s.numTrees = config_int(e);
        else if (e.name == "NUMTERMINALS")
            s.tree.numTerminals = config_int(e);
        else if (e.name == "MINSIZE")
            s.tree.minSize = config_int(e);
        else if (e.name == "MINCHILD")
            s.tree.minChild = config_int(e);
        else if (e.name == "MAXLEVEL")
            s.tree.maxLevel = config_int(e);
        else
            throw e.name +
                " is not a valid boostingTreeConfig name. The valid names are learnRate, "
                "numTrees, numTerminals, minSize, minChild, and maxLevel.";
    }
    return s;
}

CellMatrix tree_boosting_ls_reg(const CellMatrix& x, const CellMatrix& y,
                                const CellMatrix& boostingTreeConfig, const CellMatrix& weight) {
    const BoostingSettings settings = read_boosting_config(boostingTreeConfig);
    const XYW data = read_xyw(x, y, weight);
    return tree_boosting_ls_run(data.x, data.x_names, data.y, data.weight, settings);
}

CellMatrix tree_boosting_ls_reg_from_file(const std::string& filename, const CellMatrix& xNames,
                                          const CellMatrix& yName,
                                          const CellMatrix& boostingTreeConfig,
                                          const CellMatrix& weightName,
                                          const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const BoostingSettings settings = read_boosting_config(boostingTreeConfig);
    const XYW data = read_xyw_from_file(filename, xNames, yName, weightName, separator);
    return tree_boosting_ls_run(data.x, data.x_names, data.y, data.weight, settings);
}

CellMatrix tree_boosting_logistic_reg(const CellMatrix& x, const CellMatrix& y,
                                      const CellMatrix& boostingTreeConfig,
                                      const CellMatrix& weight) {
    const BoostingSettings settings = read_boosting_config(boostingTreeConfig);
    const XYW data = read_xyw(x, y, weight);
    return tree_boosting_logistic_run(data.x, data.x_names, data.y, data.weight, data.y_name,
                                      settings);
}

CellMatrix tree_boosting_logistic_reg_from_file(const std::string& filename,
                                                const CellMatrix& xNames, const CellMatrix& yName,
                                                const CellMatrix& boostingTreeConfig,
                                                const CellMatrix& weightName,
                                                const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const BoostingSettings settings = read_boosting_config(boostingTreeConfig);
    const XYW data = read_xyw_from_file(filename, xNames, yName, weightName, separator);
    return tree_boosting_logistic_run(data.x, data.x_names, data.y, data.weight, data.y_name,
                                      settings);
}

CellMatrix tree_boosting_ls_run(const dmat& x, const svec& names, const dvec& y, const dvec& weight,
                                const BoostingSettings& settings) {
    BoostingFit f = fit(x, y, weight, settings, false);
    const std::size_t r = 17;
    CellMatrix result = sized_report(r, f);
    // Filed after the last round and before the evaluation, which scores
    // through the store.
    const handle_c<lsRegBoostingTreeModel> model(
        new lsRegBoostingTreeModel(names, std::move(f.trees), f.F0, f.rates));
    const std::string handle = lsRegBoostingTreeModelHandle_to_string(model);
    ContEval eval;
    model_continuous_stats(handle, names, x, y, weight, eval);
    result(0, 0) = handle;
    write_anova_block(result, eval, static_cast<int>(f.importance.size()));
    write_details(result, r, settings, model->trees, f.importance, names, "ls_boosting_tree");
    return result;
}

CellMatrix tree_boosting_logistic_run(const dmat& x, const svec& names, const dvec& y,
                                      const dvec& weight, const std::string& y_name,
                                      const BoostingSettings& settings) {
    dvec target = y;
    const dvec levels = binary_recode(target);
    BoostingFit f = fit(x, target, weight, settings, true);
    const std::size_t r = 20;
    CellMatrix result = sized_report(r, f);
    const handle_c<logisticRegBoostingTreeModel> model(
        new logisticRegBoostingTreeModel(names, std::move(f.trees), f.F0, f.rates, levels));
    const std::string handle = logisticRegBoostingTreeModelHandle_to_string(model);
    BinaryEval eval;
    model_binary_association(handle, names, x, target, weight, eval);

    BinaryPerformance perf;
    perf.y_name = y_name;
    perf.levels = levels;
    count_events(target, weight, perf);
    perf.candidates = static_cast<int>(names.size());
    perf.nv = static_cast<int>(f.importance.size());
    perf.ll0 = perf.w * binary_entropy_term(perf.w1 / perf.w);
    perf.ll1 = eval.log_likelihood;
    result(0, 0) = handle;
    write_binary_block(result, perf, eval);
    write_details(result, r, settings, model->trees, f.importance, names, "boosting_tree");
    return result;
}

}  // namespace zentable
