#include "trees/boosting_core.hpp"

#include <cmath>

#include "commands/progress.hpp"

namespace zentable {

namespace {

// base^exponent by repeated squaring.
double power(double base, int exponent) {
    double result = 1.0;
    while (exponent > 0) {
        if (exponent & 1)
            result *= base;
        base *= base;
        exponent >>= 1;
    }
    return result;
}

// What a loss tells the loop: the residual of a record, and the record's
// share of a leaf's denominator.
struct LsLoss {
    double residual(double y, double F) const { return y - F; }
    double denominator(double, double w, double) const { return w; }
};

struct LogisticLoss {
    // y2 is +1 for the event and -1 otherwise.
    double residual(double y2, double F) const { return 2.0 * y2 / (1.0 + std::exp(2.0 * y2 * F)); }
    double denominator(double r, double w, double y2) const { return r * w * (2.0 * y2 - r); }
};

template <class Loss>
BoostingFit boost(const TreeTable& data, const dvec& target, double F0,
                  const std::vector<int>& x_columns, const std::vector<int>& y_columns,
                  int weight_column, int numTrees, const TreeSettings& settings, double rateBase,
                  double rateAmplitude, double rateDecay, const Loss& loss) {
    const std::size_t n = data.rows;
    const auto y_column = static_cast<std::size_t>(y_columns[0]);
    const auto w_column = static_cast<std::size_t>(weight_column);
    TreeSettings tree_settings = settings;
    tree_settings.method = "LS";

    BoostingFit fit;
    fit.F0 = F0;
    fit.scores.assign(n, F0);
    // The working copy, whose target column takes the residuals of each round.
    TreeTable work = data;
    dvec residual(n);
    std::vector<std::size_t> leaf(n);
    const svec no_names;
    for (int m = 1; m <= numTrees; ++m) {
        progress::report(progress::Unit::trees, m, numTrees);
        for (std::size_t i = 0; i < n; ++i) {
            residual[i] = loss.residual(target[i], fit.scores[i]);
            work(i, y_column) = residual[i];
        }
        treeNodes nodes =
            growTree(work, no_names, x_columns, y_columns, weight_column, tree_settings).nodes;

        dvec numerator(nodes.size(), 0.0), denominator(nodes.size(), 0.0);
        for (std::size_t i = 0; i < n; ++i) {
            leaf[i] = leaf_of(nodes, [&](int v) {
                return work(i, static_cast<std::size_t>(x_columns[static_cast<std::size_t>(v)]));
            });
            const double w = data(i, w_column);
            numerator[leaf[i]] += residual[i] * w;
            denominator[leaf[i]] += loss.denominator(residual[i], w, target[i]);
        }
        for (std::size_t k = 0; k < nodes.size(); ++k)
            if (nodes[k].Terminal)
                nodes[k].Value = numerator[k] / denominator[k];

        const double rate = rateBase + rateAmplitude * power(rateDecay, m - 1);
        for (std::size_t i = 0; i < n; ++i)
            fit.scores[i] += rate * nodes[leaf[i]].Value;
        fit.trees.push_back(std::move(nodes));
        fit.rates.push_back(rate);
    }
    std::vector<const treeNodes*> all;
    for (const treeNodes& nodes : fit.trees)
        all.push_back(&nodes);
    fit.importance = relative_importance(all);
    return fit;
}

}  // namespace

BoostingFit fitBoostingLs(const TreeTable& data, const std::vector<int>& x_columns,
                          const std::vector<int>& y_columns, int weight_column, int numTrees,
                          const TreeSettings& settings, double rateBase, double rateAmplitude,
                          double rateDecay) {
    const auto y_column = static_cast<std::size_t>(y_columns[0]);
    const auto w_column = static_cast<std::size_t>(weight_column);
    dvec y(data.rows);
    double sum_wy = 0.0, sum_w = 0.0;
    for (std::size_t i = 0; i < data.rows; ++i) {
        y[i] = data(i, y_column);
        sum_wy += data(i, w_column) * y[i];
        sum_w += data(i, w_column);
    }
    return boost(data, y, sum_wy / sum_w, x_columns, y_columns, weight_column, numTrees, settings,
                 rateBase, rateAmplitude, rateDecay, LsLoss());
}

BoostingFit fitBoostingLogistic(const TreeTable& data, const std::vector<int>& x_columns,
                                const std::vector<int>& y_columns, int weight_column, int numTrees,
                                const TreeSettings& settings, double rateBase, double rateAmplitude,
                                double rateDecay) {
    const auto y_column = static_cast<std::size_t>(y_columns[0]);
    const auto w_column = static_cast<std::size_t>(weight_column);
    dvec y2(data.rows);
    double sum_wy = 0.0, sum_w = 0.0;
    for (std::size_t i = 0; i < data.rows; ++i) {
        y2[i] = data(i, y_column) >= 0.5 ? 1.0 : -1.0;
        sum_wy += data(i, w_column) * y2[i];
        sum_w += data(i, w_column);
    }
    const double a = sum_wy / sum_w;
    const double F0 = 0.5 * std::log((1.0 + a) / (1.0 - a));
    return boost(data, y2, F0, x_columns, y_columns, weight_column, numTrees, settings, rateBase,
                 rateAmplitude, rateDecay, LogisticLoss());
}

dvec scoreLsBoosting(const svec& model_names, const std::vector<treeNodes>& trees,
                     const dvec& rates, double F0, const svec& data_names, const dmat& data) {
    dvec F(data.size(), F0);
    for (std::size_t t = 0; t < trees.size(); ++t) {
        const dvec gamma = scoreTree(model_names, trees[t], data_names, data);
        for (std::size_t i = 0; i < F.size(); ++i)
            F[i] += rates[t] * gamma[i];
    }
    return F;
}

dvec scoreLogisticBoosting(const svec& model_names, const std::vector<treeNodes>& trees,
                           const dvec& rates, double F0, const svec& data_names, const dmat& data) {
    dvec p = scoreLsBoosting(model_names, trees, rates, F0, data_names, data);
    for (double& v : p)
        v = 1.0 / (1.0 + std::exp(-2.0 * v));
    return p;
}

std::vector<svec> scoreBoostingNodes(const svec& model_names, const std::vector<treeNodes>& trees,
                                     const svec& data_names, const dmat& data) {
    std::vector<svec> nodes;
    nodes.reserve(trees.size());
    for (const treeNodes& tree : trees)
        nodes.push_back(scoreTreeNodeStr(model_names, tree, data_names, data));
    return nodes;
}

}  // namespace zentable
