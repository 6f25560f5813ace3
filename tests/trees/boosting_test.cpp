#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "../support/render.hpp"
#include "../support/tables.hpp"
#include "../xlw/table_builder.hpp"
#include "models/model_eval.hpp"
#include "models/model_store.hpp"
#include "models/scoring.hpp"
#include "trees/boosting_model.hpp"
#include "trees/tree.hpp"
#include "trees/tree_boosting.hpp"
#include "trees_testing.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::kOmitted;
using testing::make_table;
using testing::num;
using testing::render_report;
using testing::table_with_header;
using testing::text;
using testing::thrown_text;
using Rows = std::vector<std::vector<double>>;

// The test's own walk: from the node numbered 1, left when the split point
// is at or above the value, found by number; returns the leaf.
const treeNode& walk(const treeNodes& nodes, const std::vector<double>& row) {
    long long index = 1;
    for (;;) {
        const treeNode* node = nullptr;
        for (const treeNode& n : nodes)
            if (n.NodeIndex == index)
                node = &n;
        if (node->Terminal)
            return *node;
        const double v = row[static_cast<std::size_t>(node->SplitVariable)];
        index = v <= node->SplitPoint ? 2 * index : 2 * index + 1;
    }
}

struct Smooth {
    Rows x;
    std::vector<double> y, w;
};

// A smooth target of two of three variables.
Smooth smooth_data(std::size_t n) {
    Smooth d;
    std::mt19937 gen(11);
    std::uniform_real_distribution<double> u(-2.0, 2.0);
    for (std::size_t i = 0; i < n; ++i) {
        const double a = u(gen), b = u(gen), c = u(gen);
        d.x.push_back({a, b, c});
        d.y.push_back(std::sin(a) + 0.5 * b * b);
        d.w.push_back(1.0 + 0.25 * (u(gen) + 2.0));
    }
    return d;
}

TEST(Boosting, LeastSquaresLowersTheErrorAndScoresAsItsTrees) {
    const Smooth d = smooth_data(400);
    const CellMatrix config =
        make_table({{"NUMTREES", 25}, {"learnRate", 0.3}, {"minsize", 20}, {"MINCHILD", 10}});
    const CellMatrix t = tree_boosting_ls_reg(table_with_header({"a", "b", "c"}, d.x),
                                              column("y", d.y), config, column("w", d.w));
    ASSERT_EQ(t.ColumnsInStructure(), 12u);
    render_report(t, "ls_boosting_tree");
    const std::string handle = text(t, 0, 0);
    const handle_c<lsRegBoostingTreeModel> model = string_to_handle<lsRegBoostingTreeModel>(handle);
    ASSERT_EQ(model->trees.size(), 25u);
    ASSERT_EQ(model->rates.size(), 25u);

    // F0 is the weighted mean of y.
    long double sw = 0, swy = 0;
    for (std::size_t i = 0; i < d.y.size(); ++i) {
        sw += d.w[i];
        swy += d.w[i] * d.y[i];
    }
    EXPECT_NEAR(model->initial, static_cast<double>(swy / sw), 1e-14);

    // Round by round, from the stored trees: F moves by rate * gamma, and
    // each gamma is the weighted mean residual of its leaf's records.
    std::vector<double> F(d.y.size(), model->initial);
    double previous = INFINITY;
    for (std::size_t m = 0; m < model->trees.size(); ++m) {
        const treeNodes& nodes = model->trees[m];
        EXPECT_EQ(model->rates[m], 0.3);
        std::map<long long, std::pair<long double, long double>> sums;
        for (std::size_t i = 0; i < d.y.size(); ++i) {
            auto& s = sums[walk(nodes, d.x[i]).NodeIndex];
            s.first += d.w[i] * (d.y[i] - F[i]);
            s.second += d.w[i];
        }
        for (const treeNode& node : nodes) {
            if (node.Terminal && sums.count(node.NodeIndex)) {
                EXPECT_NEAR(
                    node.Value,
                    static_cast<double>(sums[node.NodeIndex].first / sums[node.NodeIndex].second),
                    1e-12)
                    << "tree " << m;
            }
        }
        double sse = 0;
        for (std::size_t i = 0; i < d.y.size(); ++i) {
            F[i] += model->rates[m] * walk(nodes, d.x[i]).Value;
            sse += d.w[i] * (d.y[i] - F[i]) * (d.y[i] - F[i]);
        }
        EXPECT_LT(sse, previous) << "round " << m + 1;
        previous = sse;
    }

    // model_score through the handle equals that sum, in the same order.
    const CellMatrix scored = model_score(handle, table_with_header({"c", "b", "a"}, [&] {
                                              Rows r;
                                              for (const auto& row : d.x)
                                                  r.push_back({row[2], row[1], row[0]});
                                              return r;
                                          }()));
    for (std::size_t i = 0; i < d.y.size(); ++i)
        EXPECT_EQ(num(scored, i + 1, 0), F[i]) << "record " << i;

    // The report: the analysis of variance on those scores, then the settings.
    long double sse = 0, sst = 0;
    for (std::size_t i = 0; i < d.y.size(); ++i) {
        sse += d.w[i] * (d.y[i] - F[i]) * (d.y[i] - F[i]);
        sst += d.w[i] * (d.y[i] - swy / sw) * (d.y[i] - swy / sw);
    }
    EXPECT_NEAR(num(t, 11, 2), static_cast<double>(sse), 1e-9);
    EXPECT_NEAR(num(t, 12, 2), static_cast<double>(sst), 1e-9);
    EXPECT_EQ(text(t, 19, 0), "learnRate");
    EXPECT_EQ(num(t, 19, 1), 0.3);
    EXPECT_EQ(num(t, 20, 1), 25);
    EXPECT_EQ(num(t, 21, 1), 4);
    EXPECT_EQ(num(t, 22, 1), 20);
    EXPECT_EQ(num(t, 23, 1), 10);
    EXPECT_EQ(num(t, 24, 1), 3);
    const int nv = static_cast<int>(num(t, 26, 1));
    EXPECT_EQ(text(t, 30 + nv, 0), "Details of Trees");
    EXPECT_EQ(text(t, 32 + nv, 10), "Gamma");
    std::size_t nodes = 0;
    for (const treeNodes& tree : model->trees)
        nodes += tree.size();
    EXPECT_EQ(t.RowsInStructure(), 33 + nv + nodes + 2);
    // The first tree's root and its first terminal row.
    const std::size_t first = 33 + static_cast<std::size_t>(nv);
    EXPECT_EQ(num(t, first, 0), 1);
    EXPECT_EQ(num(t, first, 1), 1);
    EXPECT_EQ(text(t, first, 11), "NO");
    EXPECT_TRUE(t(first, 10).IsEmpty());
    EXPECT_EQ(num(t, t.RowsInStructure() - 3, 0), 25);

    const CellMatrix eval = model_eval(handle, table_with_header({"a", "b", "c"}, d.x),
                                       column("y", d.y), CellMatrix(4.0), column("w", d.w));
    EXPECT_EQ(text(eval, 0, 0), "lsRegBoostingTreeModel Performance");
    EXPECT_NEAR(num(eval, 11, 2), static_cast<double>(sse), 1e-9);
    EXPECT_EQ(thrown_text([&] {
                  model_score_node(handle, make_table({{"a"}, {1}}));
              }),
              "model_score_node works only for logisticRegBoostingTreeModel");
}

TEST(Boosting, ConstantWeightsChangeNothingInLeastSquares) {
    const Smooth d = smooth_data(200);
    const CellMatrix config = make_table({{"NUMTREES", 5}, {"minsize", 20}, {"MINCHILD", 10}});
    const CellMatrix x = table_with_header({"a", "b", "c"}, d.x);
    const CellMatrix plain = tree_boosting_ls_reg(x, column("y", d.y), config, kOmitted);
    const CellMatrix tripled = tree_boosting_ls_reg(
        x, column("y", d.y), config, column("w", std::vector<double>(d.y.size(), 3.0)));
    const auto one = string_to_handle<lsRegBoostingTreeModel>(text(plain, 0, 0));
    const auto three = string_to_handle<lsRegBoostingTreeModel>(text(tripled, 0, 0));
    ASSERT_EQ(one->trees.size(), three->trees.size());
    for (std::size_t m = 0; m < one->trees.size(); ++m) {
        ASSERT_EQ(one->trees[m].size(), three->trees[m].size());
        for (std::size_t k = 0; k < one->trees[m].size(); ++k) {
            EXPECT_EQ(one->trees[m][k].SplitPoint, three->trees[m][k].SplitPoint);
            EXPECT_NEAR(one->trees[m][k].Value, three->trees[m][k].Value, 1e-12);
        }
    }
}

TEST(Boosting, LogisticStartsAtHalfTheLogOddsAndScoresTheHigherLevel) {
    // Levels 2 and 5; 5 is likelier for large a.
    Rows x;
    std::vector<double> y, w;
    std::mt19937 gen(5);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (int i = 0; i < 300; ++i) {
        const double a = u(gen) * 4 - 2, b = u(gen);
        x.push_back({a, b});
        y.push_back(u(gen) < 1 / (1 + std::exp(-2 * a)) ? 5 : 2);
        w.push_back(i % 4 == 0 ? 2.0 : 1.0);
    }
    const CellMatrix config =
        make_table({{"NUMTREES", 4}, {"minSize", 30}, {"minChild", 15}, {"numTerminals", 3}});
    const CellMatrix t = tree_boosting_logistic_reg(table_with_header({"a", "b"}, x),
                                                    column("y", y), config, column("w", w));
    render_report(t, "boosting_tree");
    const std::string handle = text(t, 0, 0);
    const auto model = string_to_handle<logisticRegBoostingTreeModel>(handle);
    EXPECT_EQ(model->levels, (dvec{2, 5}));

    long double W = 0, W1 = 0;
    int n1 = 0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        W += w[i];
        if (y[i] == 5) {
            W1 += w[i];
            ++n1;
        }
    }
    const double p = static_cast<double>(W1 / W);
    EXPECT_NEAR(model->initial, 0.5 * std::log(p / (1 - p)), 1e-13);

    // Each round from the stored trees: r = 2 y2 / (1 + exp(2 y2 F)); a
    // leaf's gamma is sum r w / sum r w (2 y2 - r), i.e. sum |r| w (2 - |r|).
    std::vector<double> F(y.size(), model->initial);
    for (std::size_t m = 0; m < model->trees.size(); ++m) {
        std::map<long long, std::pair<long double, long double>> sums;
        for (std::size_t i = 0; i < y.size(); ++i) {
            const double y2 = y[i] == 5 ? 1.0 : -1.0;
            const double r = 2 * y2 / (1 + std::exp(2 * y2 * F[i]));
            auto& s = sums[walk(model->trees[m], x[i]).NodeIndex];
            s.first += r * w[i];
            s.second += std::fabs(r) * w[i] * (2 - std::fabs(r));
        }
        for (const treeNode& node : model->trees[m]) {
            if (node.Terminal && sums.count(node.NodeIndex)) {
                EXPECT_NEAR(
                    node.Value,
                    static_cast<double>(sums[node.NodeIndex].first / sums[node.NodeIndex].second),
                    1e-12);
            }
        }
        for (std::size_t i = 0; i < y.size(); ++i)
            F[i] += model->rates[m] * walk(model->trees[m], x[i]).Value;
    }
    const CellMatrix scored = model_score(handle, table_with_header({"a", "b"}, x));
    long double ll = 0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        const double prob = 1 / (1 + std::exp(-2 * F[i]));
        EXPECT_NEAR(num(scored, i + 1, 0), prob, 1e-15);
        const double event = y[i] == 5 ? 1 : 0;
        ll += w[i] * (event * std::log(prob) + (1 - event) * std::log(1 - prob));
    }

    // The performance block: counts by level as given, and -2LogL from the
    // fitted probabilities against the intercept-only W h(p).
    EXPECT_EQ(num(t, 6, 0), 5);
    EXPECT_EQ(num(t, 6, 1), n1);
    EXPECT_EQ(num(t, 7, 0), 2);
    EXPECT_NEAR(num(t, 6, 3), static_cast<double>(W1), 1e-12);
    EXPECT_EQ(num(t, 8, 1), 2);
    const double ll0 = static_cast<double>(W) * (p * std::log(p) + (1 - p) * std::log(1 - p));
    EXPECT_NEAR(num(t, 13, 1), -2 * ll0, 1e-9);
    EXPECT_NEAR(num(t, 13, 2), -2 * static_cast<double>(ll), 1e-9);
    EXPECT_EQ(text(t, 22, 0), "learnRate");
    EXPECT_EQ(num(t, 22, 1), 0.1);

    // Node strings: one column a tree, from the same walk; "." for a row
    // with a text cell.
    Rows some(x.begin(), x.begin() + 5);
    CellMatrix data = table_with_header({"a", "b"}, some);
    data(3, 1) = "n/a";
    const CellMatrix nodes = model_score_node(handle, data);
    ASSERT_EQ(nodes.RowsInStructure(), 6u);
    ASSERT_EQ(nodes.ColumnsInStructure(), 4u);
    EXPECT_EQ(text(nodes, 0, 0), "Y Predicted");
    EXPECT_TRUE(nodes(0, 1).IsEmpty());
    for (std::size_t i = 0; i < 5; ++i) {
        if (i == 2) {
            EXPECT_EQ(text(nodes, 3, 0), ".");
            EXPECT_TRUE(nodes(3, 1).IsEmpty());
            continue;
        }
        for (std::size_t m = 0; m < 4; ++m)
            EXPECT_EQ(text(nodes, i + 1, m), walk(model->trees[m], x[i]).NodeStr);
    }

    const CellMatrix eval = model_eval(handle, table_with_header({"a", "b"}, x), column("y", y),
                                       CellMatrix(5.0), column("w", w));
    EXPECT_EQ(text(eval, 0, 0), "logisticRegBoostingTreeModel Performance");
}

TEST(Boosting, NoTreesLeavesTheConstantAndFailuresAreExact) {
    const CellMatrix x = make_table({{"a"}, {1}, {2}, {3}, {4}});
    const CellMatrix y = make_table({{"y"}, {0}, {1}, {1}, {1}});
    const CellMatrix none = make_table({{"NUMTREES", 0}});
    const CellMatrix t = tree_boosting_logistic_reg(x, y, none, kOmitted);
    // 20 + 16 head rows, no importance, no nodes, two closing rows.
    ASSERT_EQ(t.RowsInStructure(), 38u);
    render_report(t, "boosting_tree");
    EXPECT_EQ(num(t, 29, 1), 0);
    const CellMatrix s = model_score(text(t, 0, 0), x);
    for (std::size_t i = 1; i <= 4; ++i)
        EXPECT_NEAR(num(s, i, 0), 0.75, 1e-15);
    const CellMatrix ls = tree_boosting_ls_reg(x, y, none, kOmitted);
    ASSERT_EQ(ls.RowsInStructure(), 35u);
    EXPECT_EQ(num(model_score(text(ls, 0, 0), x), 2, 0), 0.75);

    EXPECT_EQ(thrown_text([&] {
                  tree_boosting_ls_reg(x, y, make_table({{1, 2, 3}}), kOmitted);
              }),
              "Input boostingTreeConfig must have two columns, one for names and the other for "
              "values");
    EXPECT_EQ(
        thrown_text([&] {
            tree_boosting_ls_reg(x, y, make_table({{"method", "LS"}}), kOmitted);
        }),
        "METHOD is not a valid boostingTreeConfig name. The valid names are learnRate, numTrees, "
        "numTerminals, minSize, minChild, and maxLevel.");
    EXPECT_EQ(
        thrown_text([&] {
            tree_boosting_logistic_reg(x, make_table({{"y"}, {1}, {1}, {1}, {1}}), none, kOmitted);
        }),
        "Variable have 1 categories. It must be binary");
}

}  // namespace
}  // namespace zentable
