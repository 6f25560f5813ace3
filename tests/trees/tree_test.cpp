#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "trees/tree_core.hpp"

namespace zentable {
namespace {

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
    // Of two equal best gains the smaller split point wins: y = 0,3,3,0 at
    // x = 1..4 gives exactly 3 after 1 and after 3.
    s = best_split({4, 3, 2, 1}, {0, 3, 3, 0}, {1, 1, 1, 1}, 1, "LS");
    EXPECT_EQ(s.point, 1);

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

TEST(Tree, RootSplitAndLeavesAgainstABruteForceReference) {
    // y steps up at x1 = 100 and at x1 = 200; x2 is noise. Weights vary, so a
    // leaf's value must be the weighted mean, not the plain one.
    dmat x;
    dvec y, w;
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (int i = 1; i <= 300; ++i) {
        const double level = i <= 100 ? 10.0 : i <= 200 ? 20.0 : 35.0;
        x.push_back({static_cast<double>(i), std::floor(u(gen) * 1000)});
        y.push_back(level + (u(gen) - 0.5));
        w.push_back(0.5 + u(gen));
    }
    TreeSettings settings;
    settings.numTerminals = 3;
    settings.minSize = 10;
    settings.minChild = 5;
    settings.maxLevel = 5;
    const GrownTree grown =
        growTree(make_tree_table(x, y, w), {"x1", "x2"}, {0, 1}, {2}, 3, settings);
    ASSERT_EQ(grown.nodes.size(), 5u);

    // The root's gain is the largest reduction of the weighted sum of squares
    // over all thresholds of either variable, found here by brute force.
    long double best = -1;
    double best_point = 0;
    int best_variable = -1;
    const long double total = weighted_ss(y, w);
    for (int v = 0; v < 2; ++v) {
        std::set<double> values;
        for (const auto& row : x)
            values.insert(row[v]);
        for (double cut : values) {
            std::vector<double> yl, wl, yr, wr;
            for (std::size_t i = 0; i < y.size(); ++i) {
                (x[i][v] <= cut ? yl : yr).push_back(y[i]);
                (x[i][v] <= cut ? wl : wr).push_back(w[i]);
            }
            if (yl.size() < 5 || yr.size() < 5)
                continue;
            const long double gain = total - weighted_ss(yl, wl) - weighted_ss(yr, wr);
            if (gain > best) {
                best = gain;
                best_point = cut;
                best_variable = v;
            }
        }
    }
    const treeNode& root = grown.nodes[0];
    EXPECT_EQ(root.SplitVariable, best_variable);
    EXPECT_EQ(root.SplitPoint, best_point);
    EXPECT_NEAR(root.Gain, static_cast<double>(best), 1e-9 * static_cast<double>(best));

    // Each leaf holds the count and weighted mean of the records that the
    // two thresholds send there, and scoring gives that mean.
    std::set<double> points;
    for (const treeNode& node : grown.nodes)
        if (!node.Terminal)
            points.insert(node.SplitPoint);
    EXPECT_EQ(points, (std::set<double>{100.0, 200.0}));
    const dvec scores = scoreTree({"x1", "x2"}, grown.nodes, {"x2", "x1"}, [&] {
        dmat swapped;
        for (const dvec& row : x)
            swapped.push_back({row[1], row[0]});
        return swapped;
    }());
    std::map<int, std::vector<long double>> groups;  // count, sum w, sum w y
    for (std::size_t i = 0; i < y.size(); ++i) {
        auto& s = groups[x[i][0] <= 100.0 ? 0 : x[i][0] <= 200.0 ? 1 : 2];
        s.resize(3);
        s[0] += 1;
        s[1] += w[i];
        s[2] += w[i] * y[i];
    }
    for (std::size_t i = 0; i < y.size(); ++i) {
        const auto& s = groups[x[i][0] <= 100.0 ? 0 : x[i][0] <= 200.0 ? 1 : 2];
        ASSERT_NEAR(scores[i], static_cast<double>(s[2] / s[1]), 1e-12) << "record " << i;
    }
    for (const treeNode& node : grown.nodes) {
        if (node.Terminal) {
            EXPECT_EQ(node.NumRecords, 100) << "node " << node.NodeIndex;
        }
    }
}

}  // namespace
}  // namespace zentable
