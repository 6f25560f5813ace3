#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "../support/tables.hpp"
#include "learners/neural_net.hpp"
#include "models/scoring.hpp"

namespace zentable {
namespace {

using Layers = std::vector<dmat>;  // [step][target node][source node, intercept last]

// The generator and the initial weights as the design fixes them, written out again.
Layers seeded_weights(const std::vector<int>& sizes, std::uint32_t state) {
    Layers w;
    for (std::size_t l = 0; l + 1 < sizes.size(); ++l) {
        w.emplace_back(sizes[l + 1], dvec(sizes[l] + 1));
        for (dvec& row : w.back())
            for (double& v : row) {
                state = state * 214013u + 2531011u;
                v = ((((state >> 16) & 0x7FFF) + 1.0) / 32769.0 - 0.5) * 0.01;
            }
    }
    return w;
}

// The output node's net and its activation.
std::pair<double, double> run_forward(const Layers& w, dvec a) {
    double net = 0.0;
    for (const dmat& m : w) {
        dvec next;
        for (const dvec& row : m) {
            net = row.back();
            for (std::size_t i = 0; i < a.size(); ++i)
                net += row[i] * a[i];
            next.push_back(net < -10 ? -1.0 : net > 10 ? 1.0 : 2.0 / (1.0 + std::exp(-net)) - 1);
        }
        a = next;
    }
    return {net, a[0]};
}

std::size_t row_of(const CellMatrix& r, const std::string& label, std::size_t from = 0) {
    while (!(r(from, 0).IsString() && r(from, 0).StringValue().rfind(label, 0) == 0))
        ++from;
    return from;
}

// The weight blocks of a report, in layer order.
Layers reported_weights(const CellMatrix& r, const std::vector<int>& sizes) {
    Layers w;
    std::size_t row = 0;
    for (std::size_t l = 0; l + 1 < sizes.size(); ++l) {
        row = row_of(r, "Weights from", row + 1);
        w.emplace_back(sizes[l + 1], dvec(sizes[l] + 1));
        for (int i = 0; i <= sizes[l]; ++i)
            for (int j = 0; j < sizes[l + 1]; ++j)
                w.back()[j][i] = r(row + 2 + i, 2 + j).NumericValue();
    }
    return w;
}

// The weighted mean and population scale.
std::pair<double, double> moments(const dvec& v, const dvec& w) {
    double s = 0, q = 0, t = 0;
    for (std::size_t i = 0; i < v.size(); ++i) {
        s += w[i] * v[i];
        q += w[i] * v[i] * v[i];
        t += w[i];
    }
    return {s / t, std::sqrt(q / t - s * s / t / t)};
}

TEST(NeuralNet, OneResilientEpochByHand) {
    const dmat x = {{0, 1}, {1, 3}, {2, 2}, {3, 5}, {4, 4}};
    const dvec y = {1, 2, 2, 5, 4}, w = {1, 2, 1, 3, 1};
    const auto a = moments({0, 1, 2, 3, 4}, w), b = moments({1, 3, 2, 5, 4}, w);
    const auto t = moments(y, w);
    const double m[] = {a.first, b.first}, s[] = {a.second, b.second};

    // The batch gradient of the unweighted squared error in scaled units, by
    // central differences: the record weight takes no part in it.
    const Layers start = seeded_weights({2, 2, 1}, 7);
    auto error = [&](const Layers& v) {
        double e = 0;
        for (std::size_t r = 0; r < x.size(); ++r) {
            const dvec scaled = {(x[r][0] - m[0]) / s[0], (x[r][1] - m[1]) / s[1]};
            const double d = (y[r] - t.first) / t.second - run_forward(v, scaled).first;
            e += d * d;
        }
        return e;
    };
    Layers expected = start;
    for (std::size_t l = 0; l < start.size(); ++l)
        for (std::size_t j = 0; j < start[l].size(); ++j)
            for (std::size_t i = 0; i < start[l][j].size(); ++i) {
                Layers up = start, down = start;
                up[l][j][i] += 1e-6;
                down[l][j][i] -= 1e-6;
                const double g = (error(up) - error(down)) / 2e-6;
                ASSERT_GT(std::fabs(g), 1e-6) << "a zero gradient would not move";
                // The first step: 0.1 grown by 1.2, against the gradient.
                expected[l][j][i] -= g > 0 ? 0.12 : -0.12;
            }

    const CellMatrix r =
        neural_net(testing::table_with_header({"a", "b"}, x), testing::column("y", y), "LS",
                   CellMatrix(2.0), CellMatrix(1.0), CellMatrix(7.0), testing::column("w", w),
                   CellMatrix(), CellMatrix(), CellMatrix());
    EXPECT_TRUE(r(row_of(r, "Epoch") + 2, 0).IsEmpty()) << "one epoch, one history row";
    // Undo the fold: the input scaling out of the first step, the target's out of the last.
    Layers got = reported_weights(r, {2, 2, 1});
    for (dvec& row : got[0])
        for (std::size_t i = 0; i < 2; ++i) {
            row[2] += row[i] * m[i];
            row[i] *= s[i];
        }
    got[1][0][2] -= t.first;
    for (double& v : got[1][0])
        v /= t.second;
    for (std::size_t l = 0; l < got.size(); ++l)
        for (std::size_t j = 0; j < got[l].size(); ++j)
            for (std::size_t i = 0; i < got[l][j].size(); ++i)
                EXPECT_NEAR(got[l][j][i], expected[l][j][i], 1e-12) << l << j << i;
}

// Records of a smooth target of three inputs, weights 1 to 3; a binary target
// takes the levels 2 and 4.
NetData smooth_sample(std::size_t n, unsigned seed, bool binary = false) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(-2.0, 2.0);
    NetData d;
    for (std::size_t i = 0; i < n; ++i) {
        const double a = u(gen), b = u(gen), c = 10.0 + u(gen);
        const double f = std::sin(a) + 0.5 * b * (c - 10.0) + 0.2 * u(gen);
        d.x.push_back({a, b, c});
        d.y.push_back(binary ? (f > 0.3 ? 4.0 : 2.0) : f);
        d.weight.push_back(1 + static_cast<int>(u(gen) + 2.0) % 3);
    }
    return d;
}

// The columns in reverse order (the model's order too), so that scoring and
// the test set match them by name.
dvec reversed(const dvec& v) {
    return {v[2], v[1], v[0]};
}

CellMatrix x_cells(const dmat& x) {
    dmat rows;
    for (const dvec& v : x)
        rows.push_back(reversed(v));
    return testing::table_with_header({"c", "b", "a"}, rows);
}

dvec model_scores(const CellMatrix& report, const dmat& x) {
    const CellMatrix s = model_score(report(0, 0).StringValue(), x_cells(x));
    dvec out;
    for (std::size_t i = 1; i < s.RowsInStructure(); ++i)
        out.push_back(s(i, 0).NumericValue());
    return out;
}

TEST(NeuralNet, LeastSquaresReportFollowsFromItsWeights) {
    const NetData train = smooth_sample(60, 11), test = smooth_sample(40, 12);
    auto fit = [&] {
        return neural_net(x_cells(train.x), testing::column("y", train.y), "LS",
                          testing::make_table({{3, 2}}), CellMatrix(30.0), CellMatrix(5.0),
                          testing::column("w", train.weight), x_cells(test.x),
                          testing::column("y", test.y), testing::column("w", test.weight));
    };
    const CellMatrix r = fit();
    const Layers weights = reported_weights(r, {3, 3, 2, 1});
    const double ys = moments(train.y, train.weight).second;
    std::size_t last = row_of(r, "Epoch") + 1;
    for (; r(last + 1, 0).IsANumber(); ++last)
        EXPECT_LE(r(last + 1, 1).NumericValue(), r(last, 1).NumericValue()) << "only improves";

    const NetData* sets[] = {&train, &test};
    for (std::size_t c = 0; c < 2; ++c) {
        const NetData& d = *sets[c];
        const dvec scores = model_scores(r, d.x);
        const double mean = moments(d.y, d.weight).first;
        double sse = 0, sst = 0, total = 0;
        for (std::size_t i = 0; i < d.x.size(); ++i) {
            EXPECT_NEAR(scores[i], run_forward(weights, reversed(d.x[i])).first,
                        1e-12 * (1 + std::fabs(scores[i])));
            sse += d.weight[i] * (d.y[i] - scores[i]) * (d.y[i] - scores[i]);
            sst += d.weight[i] * (d.y[i] - mean) * (d.y[i] - mean);
            total += d.weight[i];
        }
        EXPECT_NEAR(r(last, 1 + c).NumericValue(), sse / (total * ys * ys), 1e-9);
        EXPECT_NEAR(r(row_of(r, "R-Sqaure"), 1 + c).NumericValue(), 1 - sse / sst, 1e-9);
        EXPECT_NEAR(r(row_of(r, "RMSE"), 1 + c).NumericValue(), std::sqrt(sse / (d.x.size() - 4.0)),
                    1e-9);
    }
    // The same seed gives the same network.
    EXPECT_EQ(reported_weights(fit(), {3, 3, 2, 1}), weights);
}

TEST(NeuralNet, BinaryReportFollowsFromItsScores) {
    const NetData d = smooth_sample(80, 21, true);
    const CellMatrix r = neural_net(
        x_cells(d.x), testing::column("y", d.y), "ML", CellMatrix(3.0), CellMatrix(25.0),
        CellMatrix(3.0), testing::column("w", d.weight), CellMatrix(), CellMatrix(), CellMatrix());
    const dvec p = model_scores(r, d.x);
    const Layers weights = reported_weights(r, {3, 3, 1});
    double ll = 0, concordant = 0, pairs = 0, sse = 0, total = 0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        EXPECT_NEAR(p[i], (run_forward(weights, reversed(d.x[i])).second + 1) / 2, 1e-12);
        const double event = d.y[i] > 3 ? 1 : 0;
        ll += d.weight[i] * (event * std::log(p[i]) + (1 - event) * std::log(1 - p[i]));
        sse += d.weight[i] * 4 * (event - p[i]) * (event - p[i]);  // in the -1, 1 coding
        total += d.weight[i];
        for (std::size_t k = 0; k < p.size() && event == 1; ++k)
            if (d.y[k] < 3) {
                ++pairs;
                concordant += p[i] > p[k] ? 1 : p[i] == p[k] ? 0.5 : 0;
            }
    }
    EXPECT_NEAR(r(row_of(r, "-2LogL"), 2).NumericValue(), -2 * ll, 1e-9 * std::fabs(ll));
    EXPECT_NEAR(r(row_of(r, "#Pairs"), 3).NumericValue(), concordant / pairs, 1e-12);
    // Without test data the testing error is the training error.
    std::size_t last = row_of(r, "Epoch") + 1;
    while (r(last + 1, 0).IsANumber())
        ++last;
    EXPECT_NEAR(r(last, 1).NumericValue(), sse / total, 1e-9);
    EXPECT_EQ(r(last, 1).NumericValue(), r(last, 2).NumericValue());
}

NetSettings settings_for(const std::string& algorithm, double rate, int epochs) {
    NetSettings s;
    s.algorithm = algorithm;
    s.layerSizes = {3, 4, 1};
    s.epochs = epochs;
    s.learnRate = rate;
    s.momentum = 0.3;
    s.variableNames = {"a", "b", "c"};
    return s;
}

dmat train_history(const NetSettings& s, NetData& d) {
    dmat history;
    trainNeuralNet(s, d, nullptr, history);
    return history;
}

TEST(NeuralNet, BackPropagationLowersTheErrorAndKeepsTheBest) {
    // The online rate moves the weights after every record, the batch rate once an epoch.
    for (const auto& [algorithm, rate] : {std::pair{"BP_BATCH", 0.5}, {"BP_ONLINE", 0.02}}) {
        NetData a = smooth_sample(30, 31), b = smooth_sample(30, 31);
        const dmat history = train_history(settings_for(algorithm, rate, 40), a);
        EXPECT_LT(history.back()[0], 0.8 * history.front()[0]) << algorithm;
        EXPECT_EQ(train_history(settings_for(algorithm, rate, 40), b), history) << algorithm;
    }
    // A rate of 0 never moves the weights: every epoch ties, and a tie adds a row.
    NetData d = smooth_sample(30, 31);
    EXPECT_EQ(train_history(settings_for("BP_BATCH", 0.0, 4), d).size(), 4u);
    // A rate far too large overshoots: worse epochs add no row.
    d = smooth_sample(30, 31);
    EXPECT_LT(train_history(settings_for("BP_BATCH", 200.0, 20), d).size(), 20u);
}

TEST(NeuralNet, OnlineShuffleDrawsFromTheSeededGenerator) {
    // Two epochs at rate 0 only shuffle: the records end in the order that
    // seeds 100 and 101 give, each epoch going on from the last one's order.
    NetData d = smooth_sample(30, 31);
    const dvec original = d.y;
    train_history(settings_for("BP_ONLINE", 0.0, 2), d);
    const std::size_t n = original.size();
    std::vector<std::size_t> order(n);
    for (std::size_t i = 0; i < n; ++i)
        order[i] = i;
    for (std::uint32_t state : {100u, 101u})
        for (std::size_t i = 0; i < n; ++i) {
            state = state * 214013u + 2531011u;
            const auto j = static_cast<std::size_t>((((state >> 16) & 0x7FFF) + 1.0) / 32769 * n);
            std::swap(order[i], order[j < n ? j : n - 1]);
        }
    const auto t = moments(original, smooth_sample(30, 31).weight);
    for (std::size_t i = 0; i < n; ++i)
        EXPECT_NEAR(d.y[i], (original[order[i]] - t.first) / t.second, 1e-12);
}

TEST(NeuralNet, EngineRefusesWhatTheCommandsNeverSend) {
    NetData d = smooth_sample(10, 1);
    auto refusal = [&](const NetSettings& s) {
        return testing::thrown_text([&] { train_history(s, d); });
    };
    NetSettings s = settings_for("IRPROPM", 0.0, 1);
    s.layerSizes = {2, 4, 1};
    EXPECT_EQ(refusal(s), "The input nodes must have the same size as input variables");
    s.layerSizes = {3, 4, 2};
    EXPECT_EQ(refusal(s), "The output layer must only have one node");
    s = settings_for("QUICKPROP", 0.0, 1);
    EXPECT_EQ(refusal(s),
              "Unknown training algorithm. Available training algorithms are: BP_ONLINE, "
              "BP_BATCH, IRPROPM");
    d.weight.pop_back();
    EXPECT_EQ(refusal(settings_for("IRPROPM", 0.0, 1)), "Data matrix is not conformable");
}

}  // namespace
}  // namespace zentable
