#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "../support/render.hpp"
#include "../support/tables.hpp"
#include "../xlw/table_builder.hpp"
#include "models/model_eval.hpp"
#include "models/scoring.hpp"
#include "trees/tree.hpp"
#include "trees/tree_core.hpp"
#include "trees_testing.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::kOmitted;
using testing::make_table;
using testing::num;
using testing::render;
using testing::render_report;
using testing::table_with_header;
using testing::text;
using testing::thrown_text;
using Rows = std::vector<std::vector<double>>;

// The node rows of a tree report: NodeIndex -> row number.
std::map<long long, std::size_t> node_rows(const CellMatrix& t, std::size_t first) {
    std::map<long long, std::size_t> rows;
    for (std::size_t r = first; r + 2 < t.RowsInStructure(); ++r)
        rows[static_cast<long long>(num(t, r, 0))] = r;
    return rows;
}

// Weighted sum of squares about the weighted mean, in long double.
long double weighted_ss(const std::vector<double>& y, const std::vector<double>& w) {
    long double sw = 0, swy = 0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        sw += w[i];
        swy += w[i] * y[i];
    }
    const long double m = swy / sw;
    long double ss = 0;
    for (std::size_t i = 0; i < y.size(); ++i)
        ss += w[i] * (y[i] - m) * (y[i] - m);
    return ss;
}

// y steps up at x1 = 100 and at x1 = 200; x2 is noise. Weights vary, so a
// leaf's value must be the weighted mean, not the plain one.
struct StepData {
    Rows x;
    std::vector<double> y, w;
};

StepData step_data() {
    StepData d;
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (int i = 1; i <= 300; ++i) {
        const double level = i <= 100 ? 10.0 : i <= 200 ? 20.0 : 35.0;
        d.x.push_back({static_cast<double>(i), std::floor(u(gen) * 1000)});
        d.y.push_back(level + (u(gen) - 0.5));
        d.w.push_back(0.5 + u(gen));
    }
    return d;
}

TEST(Tree, FindsTheTwoThresholdsAndWeightedLeafMeans) {
    const StepData d = step_data();
    const CellMatrix config =
        make_table({{"numTerminals", 3}, {"MinSize", 10}, {"minchild", 5}, {"MAXLEVEL", 5}});
    const CellMatrix t =
        tree(table_with_header({"x1", "x2"}, d.x), column("y", d.y), config, column("w", d.w));
    ASSERT_EQ(t.ColumnsInStructure(), 10u);
    // 36 + one variable + five nodes.
    ASSERT_EQ(t.RowsInStructure(), 42u);
    const std::string handle = text(t, 0, 0);
    EXPECT_EQ(handle.rfind("regressionTreeModel->", 0), 0u);
    render_report(t, "decision tree");

    const std::size_t first = 17 + 17 + 1;  // r + 17 + nv
    EXPECT_EQ(text(t, first - 3, 0), "Tree structure");
    const auto rows = node_rows(t, first);
    ASSERT_EQ(rows.size(), 5u);

    // The split points are data values (the largest left value), on x1.
    std::set<double> points;
    for (const auto& [index, r] : rows) {
        if (text(t, r, 9) == "NO") {
            EXPECT_EQ(text(t, r, 6), "x1");
            points.insert(num(t, r, 7));
        }
    }
    EXPECT_EQ(points, (std::set<double>{100.0, 200.0}));

    // Each record's leaf from the two thresholds: the root's split, then on
    // one side the other split. A leaf's count and weighted mean are those of
    // the records it gets.
    const auto root = rows.at(1);
    const double first_point = num(t, root, 7);
    auto leaf_of = [&](double x1) {
        if (first_point == 100.0)
            return x1 <= 100.0 ? 2LL : (x1 <= 200.0 ? 6LL : 7LL);
        return x1 <= 200.0 ? (x1 <= 100.0 ? 4LL : 5LL) : 3LL;
    };
    std::map<long long, std::vector<long double>> leaves;  // count, sum w, sum w y
    for (std::size_t i = 0; i < d.y.size(); ++i) {
        auto& s = leaves[leaf_of(d.x[i][0])];
        s.resize(3);
        s[0] += 1;
        s[1] += d.w[i];
        s[2] += d.w[i] * d.y[i];
    }
    ASSERT_EQ(leaves.size(), 3u);
    for (const auto& [index, s] : leaves) {
        const std::size_t r = rows.at(index);
        EXPECT_EQ(text(t, r, 9), "YES") << "node " << index;
        EXPECT_EQ(num(t, r, 3), static_cast<double>(s[0])) << "node " << index;
        EXPECT_NEAR(num(t, r, 4), static_cast<double>(s[2] / s[1]), 1e-12) << "node " << index;
    }

    // The root's gain is the largest reduction of the weighted sum of squares
    // over all thresholds of either variable, found here by brute force.
    long double best = -1;
    double best_point = 0;
    const long double total = weighted_ss(d.y, d.w);
    for (int v = 0; v < 2; ++v) {
        std::set<double> values;
        for (const auto& row : d.x)
            values.insert(row[v]);
        for (double cut : values) {
            std::vector<double> yl, wl, yr, wr;
            for (std::size_t i = 0; i < d.y.size(); ++i) {
                auto& ys = d.x[i][v] <= cut ? yl : yr;
                auto& ws = d.x[i][v] <= cut ? wl : wr;
                ys.push_back(d.y[i]);
                ws.push_back(d.w[i]);
            }
            if (yl.size() < 5 || yr.size() < 5)
                continue;
            const long double gain = total - weighted_ss(yl, wl) - weighted_ss(yr, wr);
            if (gain > best) {
                best = gain;
                best_point = cut;
            }
        }
    }
    EXPECT_EQ(num(t, root, 7), best_point);
    EXPECT_NEAR(num(t, root, 8), static_cast<double>(best), 1e-9 * static_cast<double>(best));

    // Scoring the training data through the handle gives each record its
    // leaf's weighted mean; the evaluation agrees with those scores.
    const CellMatrix scored = model_score(handle, table_with_header({"x1", "x2"}, d.x));
    long double sse = 0, sw = 0, swy = 0;
    for (std::size_t i = 0; i < d.y.size(); ++i) {
        EXPECT_EQ(num(scored, i + 1, 0), num(t, rows.at(leaf_of(d.x[i][0])), 4)) << "record " << i;
        const double e = d.y[i] - num(scored, i + 1, 0);
        sse += d.w[i] * e * e;
        sw += d.w[i];
        swy += d.w[i] * d.y[i];
    }
    EXPECT_NEAR(num(t, 6, 1), static_cast<double>(1 - sse / total), 1e-12);
    EXPECT_NEAR(num(t, 15, 1), static_cast<double>(swy / sw), 1e-12);
    // One split variable: k = 2 parameters, one degree of freedom for SSR.
    EXPECT_EQ(num(t, 5, 1), 1);
    EXPECT_EQ(num(t, 10, 1), 1);
    EXPECT_EQ(num(t, 11, 1), 298);

    const CellMatrix eval = model_eval(handle, table_with_header({"x1", "x2"}, d.x),
                                       column("y", d.y), CellMatrix(3.0), column("w", d.w));
    EXPECT_EQ(text(eval, 0, 0), "regressionTreeModel Performance");
    EXPECT_NEAR(num(eval, 6, 1), num(t, 6, 1), 1e-15);
}

TEST(Tree, ReportLayoutOfASmallRegressionTree) {
    // Worked by hand: one split of y = 1,1,1,5,5,5 on x at 3; gain
    // (1 - 3)^2 * 3 * 6 / 3 = 24; x2 never helps more.
    const CellMatrix x = make_table({{"x", "z"}, {1, 9}, {2, 8}, {3, 7}, {4, 7}, {5, 8}, {6, 9}});
    const CellMatrix y = make_table({{"y"}, {1}, {1}, {1}, {5}, {5}, {5}});
    const CellMatrix config =
        make_table({{"MINSIZE", 2}, {"minChild", 1.9}, {"numterminals", 5}, {"method", "ls"}});
    const CellMatrix t = tree(x, y, config, kOmitted);
    ASSERT_EQ(t.RowsInStructure(), 36u + 1 + 3);
    const std::string body = render_report(t, "decision tree");
    // Rows 18 onward hold the configuration, the importance and the nodes;
    // minChild 1.9 truncates to 1.
    const std::string blank(9, '|');
    const std::string expected_tail =
        "'Tree Configuration'|||||||||\n" + blank + "\n" +
        "'method'|'LS'||||||||\n"
        "'numTerminals'|5||||||||\n"
        "'minSize'|2||||||||\n"
        "'minChild'|1||||||||\n"
        "'maxLevel'|3||||||||\n" +
        blank + "\n" + "'Number of variables selected in model'|1||||||||\n" + blank + "\n" +
        "'#'|'Variable'|'Relative Importance'|||||||\n"
        "1|'x'|100|||||||\n" +
        blank + "\n" + "'Tree structure'|||||||||\n" + blank + "\n" +
        "'NodeIndex'|'Level'|'NodeStr'|'NumRecords'|'Y Mean'|'Step'|'SplitVariable'|"
        "'SplitPoint'|'Gain'|'Terminal'\n"
        "1|0|'A'|6|3|1|'x'|3|24|'NO'\n"
        "2|1|'L'|3|1|||||'YES'\n"
        "3|1|'R'|3|5|||||'YES'\n";
    EXPECT_EQ(body.substr(body.find("'Tree Configuration'")), expected_tail);
    EXPECT_EQ(text(t, 2, 0), "Analysis of Variance");
    EXPECT_EQ(num(t, 4, 1), 6);
    // A perfect fit: SSE 0, SST 24, R-square 1.
    EXPECT_EQ(num(t, 11, 2), 0);
    EXPECT_EQ(num(t, 12, 2), 24);
    EXPECT_EQ(num(t, 6, 1), 1);
    EXPECT_EQ(text(t, 9, 1), "DF");
    EXPECT_EQ(text(t, 9, 5), "P Value");
    EXPECT_EQ(text(t, 17, 0), "Coeff Var");
}

TEST(Tree, ClassificationRecodesByTheMidpointAndReportsLevels) {
    // Target 2 or 5: 5 (the event) when x > 10 but for x = 18, and at x = 3.
    // By hand, the cut at 10 has the largest GINI gain, 10 - 2 * 10 * 0.18 = 6.4
    // (the next best, at 9 or 11, gain 4.95), and by symmetry also the
    // largest ENTROPY gain.
    Rows x;
    std::vector<double> y;
    for (int i = 1; i <= 20; ++i) {
        x.push_back({static_cast<double>(i)});
        y.push_back(i > 10 ? (i == 18 ? 2 : 5) : (i == 3 ? 5 : 2));
    }
    for (const char* method : {"GINI", "entropy"}) {
        const CellMatrix config =
            make_table({{"method", method}, {"MINSIZE", 4}, {"MINCHILD", 2}, {"NUMTERMINALS", 2}});
        const CellMatrix t = tree(table_with_header({"x"}, x), column("flag", y), config, kOmitted);
        ASSERT_EQ(t.RowsInStructure(), 39u + 1 + 3) << method;
        EXPECT_EQ(text(t, 0, 0).rfind("classificationTreeModel->", 0), 0u);
        render_report(t, "decision tree");
        EXPECT_EQ(text(t, 2, 0), "Model Performance");
        EXPECT_EQ(text(t, 4, 0), "flag");
        EXPECT_EQ(text(t, 4, 4), "Weight Percent");
        const int n1 = 10;
        EXPECT_EQ(num(t, 5, 1), 20);
        EXPECT_EQ(num(t, 5, 3), 20);  // no weight given: all 1
        EXPECT_EQ(num(t, 6, 0), 5);
        EXPECT_EQ(num(t, 6, 1), n1);
        EXPECT_EQ(num(t, 7, 0), 2);
        EXPECT_EQ(num(t, 7, 1), 20 - n1);
        EXPECT_EQ(text(t, 8, 0), "Number of Variables");
        EXPECT_EQ(num(t, 8, 1), 1);
        EXPECT_EQ(text(t, 22, 0), "Tree Configuration");

        // The split is x <= 10 (largest left value); leaf rates 1/10 and 9/10.
        const std::size_t first = 20 + 17 + 1;
        EXPECT_EQ(num(t, first, 7), 10);
        EXPECT_NEAR(num(t, first + 1, 4), 0.1, 1e-15);
        EXPECT_NEAR(num(t, first + 2, 4), 0.9, 1e-15);
        // LL0 = 20 h(0.5), LL1 = 10 h(0.1) + 10 h(0.9), h(q) = q ln q + (1-q) ln(1-q).
        const double ll0 = 20 * std::log(0.5);
        const double h = 0.1 * std::log(0.1) + 0.9 * std::log(0.9);
        const double ll1 = 20 * h;
        EXPECT_NEAR(num(t, 13, 1), -2 * ll0, 1e-12);
        EXPECT_NEAR(num(t, 13, 2), -2 * ll1, 1e-12);
        EXPECT_NEAR(num(t, 11, 2), 2 * 2 - 2 * ll1, 1e-12);
        EXPECT_NEAR(num(t, 12, 2), 2 * std::log(20.0) - 2 * ll1, 1e-12);
        const double r2 = 1 - std::exp(2 * (ll0 - ll1) / 20);
        EXPECT_NEAR(num(t, 14, 2), r2, 1e-12);
        EXPECT_NEAR(num(t, 15, 2), r2 / (1 - std::exp(2 * ll0 / 20)), 1e-12);
        // Pairs 10 * 10; the two leaves order 81 pairs right, 1 wrong, 18 tied.
        EXPECT_EQ(num(t, 20, 1), 100);
        EXPECT_NEAR(num(t, 17, 1), 0.81, 1e-15);
        EXPECT_NEAR(num(t, 18, 1), 0.01, 1e-15);
        EXPECT_NEAR(num(t, 19, 1), 0.18, 1e-15);
    }
}

TEST(Tree, SplitSearchGainsTiesAndChildCounts) {
    // GINI by hand: y = 0,0,1,1 split after the second row: parent g = 0.5,
    // both children pure: gain 0.5 * 4 = 2 (up to the 1e-20 guards).
    SplitChoice s = best_split({1, 2, 3, 4}, {0, 0, 1, 1}, {1, 1, 1, 1}, 1, "GINI");
    EXPECT_EQ(s.point, 2);
    EXPECT_NEAR(s.gain, 2.0, 1e-15);
    // ENTROPY: 4 ln 2 for the same pure split.
    s = best_split({1, 2, 3, 4}, {0, 0, 1, 1}, {1, 1, 1, 1}, 1, "ENTROPY");
    EXPECT_NEAR(s.gain, 4 * std::log(2.0), 1e-12);
    // LS with weights: left w 3 at y 0, right w 1 at y 4; m = 1;
    // (0 - 1)^2 * 3 * 4 / 1 = 12. The rows come unsorted.
    s = best_split({5, 2}, {4, 0}, {1, 3}, 1, "LS");
    EXPECT_EQ(s.point, 2);
    EXPECT_DOUBLE_EQ(s.gain, 12);

    // Tied x stay together: the only cut with three rows a side is after
    // the ties at 1; with four a side none passes, even though weights are large.
    const std::vector<double> x{2, 1, 3, 1, 2, 1}, y{1, 0, 3, 0, 2, 9}, w{9, 9, 9, 9, 9, 9};
    s = best_split(x, y, w, 3, "LS");
    EXPECT_EQ(s.point, 1);
    EXPECT_GT(s.gain, 0);
    s = best_split(x, y, w, 4, "LS");
    EXPECT_EQ(s.gain, -1);
    // A constant x has only the last row as candidate, which the child test refuses.
    EXPECT_EQ(best_split({7, 7, 7}, {1, 2, 3}, {1, 1, 1}, 1, "LS").gain, -1);
    EXPECT_EQ(thrown_text([] {
                  best_split({1, 2}, {0, 1}, {1, 1}, 1, "CART");
              }),
              "Error: wrong method of tree: only LS, GINI, or ENTROPY is valid.");
}

TEST(Tree, ABlockedWinnerEndsTheWholeTree) {
    // Root splits x1 (groups A and B). Within A, x2 halves y by +-5 and x3
    // by +-3; within B, x2 moves y by +-1 only (x1 is shuffled within each group). After A splits
    // on x2, its halves (level 2) still gain more from x3 than B does from x2, so with maxLevel 2
    // the winner is blocked and B stays a leaf.
    Rows x;
    std::vector<double> y;
    for (int g = 0; g < 2; ++g)
        for (int i = 0; i < 100; ++i) {
            x.push_back({static_cast<double>(g * 100 + (i * 37) % 100), static_cast<double>(i < 50),
                         static_cast<double>(i % 2)});
            y.push_back(g == 0 ? (i < 50 ? 5.0 : -5.0) + (i % 2 ? 3.0 : -3.0)
                               : 100.0 + (i < 50 ? 1.0 : -1.0));
        }
    auto grow = [&](int max_level) {
        TreeSettings s;
        s.numTerminals = 10;
        s.minSize = 10;
        s.minChild = 5;
        s.maxLevel = max_level;
        dvec w(y.size(), 1.0);
        return growTree(make_tree_table(x, y, w), {"x1", "x2", "x3"}, {0, 1, 2}, {3}, 4, s);
    };
    const GrownTree blocked = grow(2);
    ASSERT_EQ(blocked.nodes.size(), 5u);
    EXPECT_EQ(blocked.nodes[0].SplitVariable, 0);
    EXPECT_EQ(blocked.nodes[1].SplitVariable, 1);  // A on x2
    EXPECT_FALSE(blocked.nodes[1].Terminal);
    EXPECT_TRUE(blocked.nodes[2].Terminal);  // B, though its gain is 100 * 1^2
    EXPECT_NEAR(blocked.nodes[2].Gain, 100.0, 1e-9);
    // Paths pad with A to the depth of 2.
    EXPECT_EQ(blocked.nodes[0].NodeStr, "AA");
    EXPECT_EQ(blocked.nodes[2].NodeStr, "RA");
    EXPECT_EQ(blocked.nodes[3].NodeStr, "LL");
    EXPECT_EQ(blocked.nodes[4].NodeStr, "LR");
    EXPECT_EQ(blocked.nodes[4].Step, 0);
    EXPECT_EQ(blocked.nodes[1].Step, 2);
    // Importance: x1 100, x2 below; the gains by hand: x1 root gain is
    // (sum of squares of the group means about 50) = 200 * 50^2 = 500000,
    // x2 in A = 100 * 25 = 2500.
    ASSERT_EQ(blocked.importance.size(), 2u);
    EXPECT_EQ(blocked.importance[0][0], 0);
    EXPECT_EQ(blocked.importance[0][1], 100);
    EXPECT_EQ(blocked.importance[1][0], 1);
    EXPECT_NEAR(blocked.importance[1][1], 100 * std::sqrt(2500.0 / 500000.0), 1e-12);

    // One level deeper, every leaf splits in turn.
    const GrownTree deeper = grow(3);
    EXPECT_EQ(deeper.nodes.size(), 11u);
    EXPECT_EQ(deeper.nodes[5].NodeIndex, 8);
    EXPECT_EQ(deeper.nodes[5].NodeStr, "LLL");
    EXPECT_EQ(deeper.nodes[10].NodeIndex, 7);
    EXPECT_EQ(deeper.nodes[10].NodeStr, "RRA");
    EXPECT_EQ(deeper.nodes[10].Level, 2);
}

TEST(Tree, ScoringWalksByNameAndSendsTheSplitValueLeft) {
    const CellMatrix x = make_table({{"a", "b"}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}});
    const CellMatrix y = make_table({{"y"}, {1}, {1}, {1}, {5}, {5}, {5}});
    const CellMatrix config = make_table({{"MINSIZE", 2}, {"MINCHILD", 1}});
    const std::string handle = tree(x, y, config, kOmitted)(0, 0).StringValue();
    // Only a is needed; b may be absent, columns may come in any order.
    const CellMatrix data = make_table({{"c", "a"}, {0, 3}, {0, 3.0000001}, {0, -50}, {1, "x"}});
    const CellMatrix s = model_score(handle, data);
    EXPECT_EQ(render(s), "'Y Predicted'\n1\n5\n1\n'.'\n");
    EXPECT_EQ(thrown_text([&] {
                  model_score(handle, make_table({{"b"}, {1}}));
              }),
              "The variable used in tree: a: cannot be found in data matrix");

    // numTerminals 1: the root alone, no variable selected, an empty path.
    const CellMatrix root_only = tree(x, y, make_table({{"NUMTERMINALS", 1}}), kOmitted);
    ASSERT_EQ(root_only.RowsInStructure(), 37u);
    EXPECT_EQ(num(root_only, 27, 1), 0);
    const std::string root_row = "1|0|''|6|3|||||'YES'\n";
    EXPECT_NE(render(root_only).find(root_row), std::string::npos);
    const CellMatrix scored = model_score(root_only(0, 0).StringValue(), make_table({{"q"}, {1}}));
    EXPECT_EQ(num(scored, 1, 0), 3);
}

TEST(Tree, ConfigurationAndDataFailures) {
    const CellMatrix x = make_table({{"a"}, {1}, {2}, {3}});
    const CellMatrix y = make_table({{"y"}, {1}, {2}, {3}});
    EXPECT_EQ(thrown_text([&] {
                  tree(x, y, make_table({{"METHOD", "LS", 1}}), kOmitted);
              }),
              "Input treeConfig must have two columns, one for names and the other for values");
    EXPECT_EQ(thrown_text([&] {
                  tree(x, y, make_table({{"minLeaf", 3}}), kOmitted);
              }),
              "MINLEAF is not a valid treeConfig name. The valid names are method, "
              "numTerminals, minSize, minChild, and maxLevel.");
    EXPECT_EQ(thrown_text([&] {
                  tree(x, y, make_table({{"method", "cart"}}), kOmitted);
              }),
              "Error: wrong method of tree: only LS, GINI, or ENTROPY is valid.");
    EXPECT_EQ(thrown_text([&] {
                  tree(x, y, make_table({{"method", "gini"}}), kOmitted);
              }),
              "Variable have 3 categories. It must be binary");
    // A later row overrides an earlier one.
    const TreeSettings s = read_tree_config(
        make_table({{"maxlevel", 2}, {"MAXLEVEL", 7.9}, {"minsize", -3.5}, {"method", "Entropy"}}));
    EXPECT_EQ(s.maxLevel, 7);
    EXPECT_EQ(s.minSize, -3);
    EXPECT_EQ(s.method, "ENTROPY");
    EXPECT_EQ(s.numTerminals, 4);
    EXPECT_EQ(s.minChild, 30);
}

TEST(Tree, FromFileMatchesTheTableForm) {
    const std::string path = ::testing::TempDir() + "tree_from_file.csv";
    Rows x;
    std::vector<double> y, w;
    {
        std::ofstream out(path);
        out << "id;a;y;w\n";
        for (int i = 1; i <= 40; ++i) {
            x.push_back({static_cast<double>((i * 7) % 40)});
            y.push_back(x.back()[0] > 17 ? 3.5 : 1.0);
            w.push_back(1 + i % 2);
            out << i << ';' << x.back()[0] << ';' << y.back() << ';' << w.back() << '\n';
        }
        out << "41;;5;1\n";  // missing a: left out
    }
    const CellMatrix config = make_table({{"MINSIZE", 5}, {"MINCHILD", 2}});
    const CellMatrix from_file = tree_from_file(path, make_table({{"a"}}), CellMatrix("y"), config,
                                                CellMatrix("w"), CellMatrix(";"));
    const CellMatrix from_table =
        tree(table_with_header({"a"}, x), column("y", y), config, column("w", w));
    std::string a = render(from_file), b = render(from_table);
    a = a.substr(a.find('\n'));
    b = b.substr(b.find('\n'));
    EXPECT_EQ(a, b);
    EXPECT_NE(a.find("1|0|'A'|40|"), std::string::npos);
    std::remove(path.c_str());
}

}  // namespace
}  // namespace zentable
