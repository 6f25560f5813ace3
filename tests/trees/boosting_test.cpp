#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "trees/boosting_core.hpp"

namespace zentable {
namespace {

// The test's own walk: from the node numbered 1, left when the split point
// is at or above the value, found by number; returns the leaf.
const treeNode& walk(const treeNodes& nodes, const dvec& row) {
    long long index = 1;
    for (;;) {
        const treeNode* node = nullptr;
        for (const treeNode& n : nodes)
            if (n.NodeIndex == index)
                node = &n;
        if (node->Terminal)
            return *node;
        index = row[static_cast<std::size_t>(node->SplitVariable)] <= node->SplitPoint
                    ? 2 * index
                    : 2 * index + 1;
    }
}

struct Data {
    dmat x;
    dvec y, w;
};

// y from a of three variables: a smooth function, or a binary draw whose
// event probability rises with a.
Data make_data(std::size_t n, bool binary) {
    Data d;
    std::mt19937 gen(11);
    std::uniform_real_distribution<double> u(-2.0, 2.0);
    for (std::size_t i = 0; i < n; ++i) {
        const double a = u(gen), b = u(gen), c = u(gen);
        d.x.push_back({a, b, c});
        d.y.push_back(binary ? (u(gen) + 2 < 4 / (1 + std::exp(-2 * a)) ? 1.0 : 0.0)
                             : std::sin(a) + 0.5 * b * b);
        d.w.push_back(1.0 + 0.25 * (u(gen) + 2.0));
    }
    return d;
}

BoostingFit fit(const Data& d, bool logistic, int numTrees, double amplitude) {
    TreeSettings s;
    s.minSize = 20;
    s.minChild = 10;
    const TreeTable table = make_tree_table(d.x, d.y, d.w);
    return logistic
               ? fitBoostingLogistic(table, {0, 1, 2}, {3}, 4, numTrees, s, 0.1, amplitude, 0.5)
               : fitBoostingLs(table, {0, 1, 2}, {3}, 4, numTrees, s, 0.1, amplitude, 0.5);
}

// Round by round from the stored trees, in long double: each leaf's gamma
// is sum r w / sum d(r) w over its records, and F moves by rate * gamma.
// Gives F after the last round.
template <class Residual, class Denominator>
std::vector<long double> replay(const Data& d, const BoostingFit& f, Residual residual,
                                Denominator denominator) {
    std::vector<long double> F(d.y.size(), f.F0);
    for (std::size_t m = 0; m < f.trees.size(); ++m) {
        std::map<long long, std::pair<long double, long double>> sums;
        for (std::size_t i = 0; i < d.y.size(); ++i) {
            const long double r = residual(d.y[i], F[i]);
            auto& s = sums[walk(f.trees[m], d.x[i]).NodeIndex];
            s.first += r * d.w[i];
            s.second += denominator(r, d.y[i]) * d.w[i];
        }
        for (const treeNode& node : f.trees[m]) {
            if (!node.Terminal || !sums.count(node.NodeIndex))
                continue;
            const auto& s = sums[node.NodeIndex];
            EXPECT_NEAR(node.Value, static_cast<double>(s.first / s.second),
                        1e-12 * (1 + std::fabs(node.Value)))
                << "round " << m + 1;
        }
        for (std::size_t i = 0; i < d.y.size(); ++i)
            F[i] += f.rates[m] * walk(f.trees[m], d.x[i]).Value;
    }
    return F;
}

TEST(Boosting, LeastSquaresRoundsAgainstALongDoubleReplay) {
    const Data d = make_data(400, false);
    // The decaying term of the rate, which the commands switch off:
    // 0.1 + 0.4 * 0.5^(m - 1).
    const BoostingFit f = fit(d, false, 25, 0.4);
    ASSERT_EQ(f.trees.size(), 25u);
    EXPECT_DOUBLE_EQ(f.rates[0], 0.5);
    EXPECT_DOUBLE_EQ(f.rates[1], 0.3);
    EXPECT_DOUBLE_EQ(f.rates[3], 0.15);
    long double sw = 0, swy = 0;
    for (std::size_t i = 0; i < d.y.size(); ++i) {
        sw += d.w[i];
        swy += d.w[i] * d.y[i];
    }
    EXPECT_NEAR(f.F0, static_cast<double>(swy / sw), 1e-14);

    const auto F = replay(
        d, f, [](long double y, long double F) { return y - F; },
        [](long double, double) { return 1.0L; });
    const dvec scored =
        scoreLsBoosting({"a", "b", "c"}, f.trees, f.rates, f.F0, {"a", "b", "c"}, d.x);
    long double sse = 0, sse0 = 0;
    for (std::size_t i = 0; i < d.y.size(); ++i) {
        EXPECT_NEAR(f.scores[i], static_cast<double>(F[i]), 1e-12) << "record " << i;
        EXPECT_EQ(scored[i], f.scores[i]) << "record " << i;
        sse += d.w[i] * (d.y[i] - F[i]) * (d.y[i] - F[i]);
        sse0 += d.w[i] * (d.y[i] - f.F0) * (d.y[i] - f.F0);
    }
    EXPECT_LT(sse, 0.2 * sse0);

    // A constant weight scales N and D alike: the same trees and gammas.
    Data tripled = d;
    tripled.w.assign(d.w.size(), 3.0);
    Data plain = d;
    plain.w.assign(d.w.size(), 1.0);
    const BoostingFit one = fit(plain, false, 5, 0.0), three = fit(tripled, false, 5, 0.0);
    for (std::size_t m = 0; m < 5; ++m) {
        ASSERT_EQ(one.trees[m].size(), three.trees[m].size());
        for (std::size_t k = 0; k < one.trees[m].size(); ++k) {
            EXPECT_EQ(one.trees[m][k].SplitPoint, three.trees[m][k].SplitPoint);
            EXPECT_NEAR(one.trees[m][k].Value, three.trees[m][k].Value, 1e-12);
        }
    }
}

TEST(Boosting, LogisticRoundsAgainstALongDoubleReplay) {
    const Data d = make_data(300, true);
    const BoostingFit f = fit(d, true, 6, 0.0);
    long double W = 0, W1 = 0;
    for (std::size_t i = 0; i < d.y.size(); ++i) {
        W += d.w[i];
        W1 += d.y[i] * d.w[i];
    }
    const long double p = W1 / W;
    EXPECT_NEAR(f.F0, static_cast<double>(0.5L * std::log(p / (1 - p))), 1e-14);

    // r = 2 y2 / (1 + exp(2 y2 F)) with y2 = +-1; the denominator's share
    // r (2 y2 - r) is |r| (2 - |r|).
    const auto F = replay(
        d, f,
        [](long double y, long double F) {
            const long double y2 = y > 0.5 ? 1 : -1;
            return 2 * y2 / (1 + std::exp(2 * y2 * F));
        },
        [](long double r, double) { return std::fabs(r) * (2 - std::fabs(r)); });
    const dvec scored =
        scoreLogisticBoosting({"a", "b", "c"}, f.trees, f.rates, f.F0, {"c", "b", "a"}, [&] {
            dmat swapped;
            for (const dvec& row : d.x)
                swapped.push_back({row[2], row[1], row[0]});
            return swapped;
        }());
    for (std::size_t i = 0; i < d.y.size(); ++i)
        EXPECT_NEAR(scored[i], static_cast<double>(1 / (1 + std::exp(-2 * F[i]))), 1e-14)
            << "record " << i;
}

}  // namespace
}  // namespace zentable
