#include <gtest/gtest.h>

#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <map>
#include <random>
#include <vector>

#include "models/evaluation.hpp"

namespace zentable {
namespace {

const double kNaN = std::nan("");

// The descending rank group of each record by brute force: the average rank
// of a score is the count of higher scores plus the middle of its ties.
std::vector<int> groups_by_brute_force(const dmat& records, int bins) {
    const std::size_t n = records.size();
    std::vector<int> code(n);
    for (std::size_t i = 0; i < n; ++i) {
        double higher = 0, equal = 0;
        for (const dvec& r : records) {
            higher += r[1] > records[i][1];
            equal += r[1] == records[i][1];
        }
        const double rank = higher + (equal + 1) / 2;
        code[i] = static_cast<int>(std::floor(rank * bins / (n + 1.0)));
    }
    return code;
}

struct GroupTotals {
    double weight = 0, wy = 0, wp = 0, min_p = 1e300, max_p = -1e300;
};

// Per group in code order, then the total last.
std::vector<GroupTotals> totals_by_group(const dmat& records, int bins) {
    const std::vector<int> code = groups_by_brute_force(records, bins);
    std::map<int, GroupTotals> groups;
    GroupTotals all;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const double y = records[i][0], p = records[i][1], w = records[i][2];
        for (GroupTotals* g : {&groups[code[i]], &all}) {
            g->weight += w;
            g->wy += w * y;
            g->wp += w * p;
            g->min_p = std::min(g->min_p, p);
            g->max_p = std::max(g->max_p, p);
        }
    }
    std::vector<GroupTotals> out;
    for (const auto& entry : groups)
        out.push_back(entry.second);
    out.push_back(all);
    return out;
}

TEST(RankGroups, TiesShareTheGroupOfTheirAverageRank) {
    const dmat data = {{5, 10}, {3, 11}, {3, 12}, {8, 13}, {1, 14}, {3, 15}, {9, 16}, {2, 17}};
    // Ascending: 1, 2, then 3 at positions 2-4 (average rank 4), 5, 8, 9;
    // code = trunc(rank * 4 / 9).
    const dmat up = rank_groups(data, 1, 4, 1);
    const std::vector<double> up_codes = {2, 1, 1, 3, 0, 1, 3, 0};
    // Descending: 9, 8, 5, then the 3s at positions 3-5 (average rank 5), 2, 1.
    const dmat down = rank_groups(data, 1, 4, -1);
    const std::vector<double> down_codes = {1, 2, 2, 0, 3, 2, 0, 3};
    ASSERT_EQ(up.size(), data.size());
    for (std::size_t i = 0; i < data.size(); ++i) {
        EXPECT_EQ(up[i], (dvec{data[i][0], data[i][1], up_codes[i]})) << i;
        EXPECT_EQ(down[i], (dvec{data[i][0], data[i][1], down_codes[i]})) << i;
    }
    // The key may be any column; one run of ties takes one code and leaves
    // the others empty: rank 2.5 * 4 / 5 = 2.
    const dmat same = rank_groups({{0, 7}, {1, 7}, {2, 7}, {3, 7}}, 2, 4, 1);
    for (const dvec& row : same)
        EXPECT_EQ(row[2], 2.0);
    EXPECT_TRUE(rank_groups({}, 1, 4, 1).empty());
}

TEST(GroupSummary, WeightedStatisticsTotalFirstThenGroupsAscending) {
    // class, v, w
    const dmat data = {{2, 1, 1}, {1, 4, 2}, {2, 3, 3}, {1, 6, 1}, {2, 5, 1}, {7, 9, 2.5}};
    dmat out;
    group_summary(data, {1}, {2}, 3, false, out);
    ASSERT_EQ(out.size(), 4u);
    // Worked by hand: sum v*w, min, max, mean = sum / W, and
    // sd = sqrt((sum v*w*v / W - mean^2) * N / (N - 1)).
    const double total_mean = 51.5 / 10.5;
    const double total_var = (323.5 / 10.5 - total_mean * total_mean) * 6 / 5;
    const std::vector<dvec> expected = {
        {kNaN, 0, 6, 10.5, 51.5, 1, 9, total_mean, std::sqrt(total_var)},
        {1, 1, 2, 3, 14, 4, 6, 14.0 / 3, 4.0 / 3},
        {2, 1, 3, 5, 15, 1, 5, 3, std::sqrt(2.4)},
        {7, 1, 1, 2.5, 22.5, 9, 9, 9, 0},  // one record: no spread
    };
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(out[i].size(), 9u);
        for (std::size_t j = 0; j < 9; ++j) {
            if (std::isnan(expected[i][j]))
                EXPECT_TRUE(std::isnan(out[i][j])) << i << "," << j;
            else
                EXPECT_NEAR(out[i][j], expected[i][j], 1e-12) << i << "," << j;
        }
    }

    // Two class columns: a block per subset by type code (the first class
    // column the high bit), or the full combinations alone.
    const dmat pairs = {{1, 2, 5}, {1, 1, 6}, {2, 1, 7}};
    group_summary(pairs, {1, 2}, {3}, 0, false, out);
    std::vector<std::vector<double>> heads;
    for (const dvec& row : out)
        heads.push_back({row[0], row[1], row[2], row[3], row[4]});
    const std::vector<std::vector<double>> want = {
        {kNaN, kNaN, 0, 3, 3}, {kNaN, 1, 1, 2, 2}, {kNaN, 2, 1, 1, 1}, {1, kNaN, 2, 2, 2},
        {2, kNaN, 2, 1, 1},    {1, 1, 3, 1, 1},    {1, 2, 3, 1, 1},    {2, 1, 3, 1, 1}};
    ASSERT_EQ(heads.size(), want.size());
    for (std::size_t i = 0; i < want.size(); ++i)
        for (std::size_t j = 0; j < 5; ++j)
            EXPECT_TRUE(heads[i][j] == want[i][j] ||
                        (std::isnan(want[i][j]) && std::isnan(heads[i][j])))
                << i << "," << j;
    group_summary(pairs, {1, 2}, {3}, 0, true, out);
    ASSERT_EQ(out.size(), 3u);
    EXPECT_EQ(out[0][2], 3.0);
}

TEST(BinaryEvalCore, PairCountsAndGainsMatchBruteForceAndEdges) {
    std::mt19937 rng(17);
    std::uniform_int_distribution<int> score_step(0, 12);  // few distinct scores: many ties
    std::uniform_real_distribution<double> weight(0.5, 3.0);
    dmat records;
    for (int i = 0; i < 300; ++i) {
        const double p = 0.04 + 0.07 * score_step(rng);
        const double y = std::bernoulli_distribution(p)(rng) ? 1 : 0;
        records.push_back({y, p, weight(rng)});
    }
    const int bins = 7;
    BinaryEval e;
    binary_eval_core(records, bins, e);

    double n1 = 0, c = 0, d = 0, t = 0, ll = 0;
    for (const dvec& a : records) {
        n1 += a[0];
        ll += a[2] * (a[0] * std::log(a[1]) + (1 - a[0]) * std::log(1 - a[1]));
        if (a[0] != 1)
            continue;
        for (const dvec& b : records) {
            if (b[0] != 0)
                continue;
            c += a[1] > b[1];
            d += a[1] < b[1];
            t += a[1] == b[1];
        }
    }
    const double n = records.size(), n0 = n - n1, pairs = n1 * n0;
    ASSERT_EQ(c + d + t, pairs);
    EXPECT_EQ(e.n, n);
    EXPECT_EQ(e.n1, n1);
    EXPECT_EQ(e.n0, n0);
    EXPECT_EQ(e.pairs, pairs);
    EXPECT_NEAR(e.concordant, c / pairs, 1e-14);
    EXPECT_NEAR(e.discordant, d / pairs, 1e-14);
    EXPECT_NEAR(e.tied, t / pairs, 1e-14);
    EXPECT_NEAR(e.somers_d, (c - d) / pairs, 1e-14);
    EXPECT_NEAR(e.gamma, (c - d) / (c + d), 1e-14);
    EXPECT_NEAR(e.tau_a, 2 * (c - d) / (n * (n - 1)), 1e-14);
    EXPECT_NEAR(e.c, (c + 0.5 * t) / pairs, 1e-14);
    EXPECT_NEAR(e.log_likelihood, ll, 1e-9);

    // Gains: the bins that a brute-force rank makes, weighted, then a total.
    const std::vector<GroupTotals> g = totals_by_group(records, bins);
    ASSERT_EQ(e.gains.size(), g.size());
    const GroupTotals& all = g.back();
    double cum_f = 0, cum_b = 0, ks = 0, hl = 0;
    for (std::size_t i = 0; i < g.size(); ++i) {
        const bool closing = i + 1 == g.size();
        if (!closing) {
            cum_f += g[i].weight;
            cum_b += g[i].wy;
        }
        const double mean_p = g[i].wp / g[i].weight;
        const double ks_i = std::fabs(cum_b / all.wy - (cum_f - cum_b) / (all.weight - all.wy));
        const dvec want = {closing ? 0.0 : i + 1.0,
                           g[i].weight,
                           g[i].wy,
                           g[i].min_p,
                           g[i].max_p,
                           mean_p,
                           g[i].wy / g[i].weight,
                           cum_f,
                           cum_b,
                           cum_b / cum_f,
                           cum_b / all.wy,
                           closing ? ks : ks_i,
                           (cum_b / cum_f) / (all.wy / all.weight)};
        ASSERT_EQ(e.gains[i].size(), 13u);
        for (std::size_t j = 0; j < 13; ++j)
            EXPECT_NEAR(e.gains[i][j], want[j], 1e-12) << i << "," << j;
        if (!closing) {
            ks = std::max(ks, ks_i);
            const double r = g[i].wy - mean_p * g[i].weight;
            hl += r * r / (mean_p * g[i].weight * (1 - mean_p));
        }
    }
    EXPECT_NEAR(e.ks, ks, 1e-12);
    EXPECT_NEAR(e.hl_chi_square, hl, 1e-9);
    const double df = std::max<double>(g.size() - 1, 3) - 2;
    EXPECT_NEAR(e.hl_p_value, boost::math::gamma_q(df / 2, hl / 2), 1e-6);

    // No bins: no gains, no KS, and the Hosmer-Lemeshow of nothing.
    binary_eval_core({{1, 0.8, 1}, {0, 0.2, 1}}, 0, e);
    EXPECT_TRUE(e.gains.empty());
    EXPECT_EQ(e.ks, 0);
    EXPECT_EQ(e.hl_chi_square, 0);
    EXPECT_EQ(e.hl_p_value, 1);
    EXPECT_EQ(e.c, 1);

    // The pair counters are 32-bit: 50000 * 50000 pairs wrap.
    dmat many;
    for (int i = 0; i < 100000; ++i)
        many.push_back({i % 2 ? 1.0 : 0.0, i % 2 ? 0.75 : 0.25, 1.0});
    binary_eval_core(many, 0, e);
    EXPECT_EQ(e.pairs, 2500000000.0 - 4294967296.0);
}

TEST(ContEvalCore, MatchesStatisticsComputedDirectlyAndEdges) {
    std::mt19937 rng(5);
    std::normal_distribution<double> noise(0.0, 1.5);
    std::uniform_real_distribution<double> u(0.0, 10.0);
    dmat records;
    for (int i = 0; i < 40; ++i) {
        const double x1 = u(rng), x2 = u(rng);
        const double y = 3 + 0.8 * x1 - 0.5 * x2 + noise(rng);
        // A prediction from coefficients near the truth, not a fit.
        const double p = 2.5 + 0.85 * x1 - 0.45 * x2;
        records.push_back({y, p, 0.5 + (i % 4)});
    }
    const int n = 40, k = 3;
    ContEval e;
    cont_eval_core(records, k, 0, e);

    long double w = 0, wy = 0, wp = 0;
    for (const dvec& r : records) {
        w += r[2];
        wy += r[2] * r[0];
        wp += r[2] * r[1];
    }
    const long double ym = wy / w;
    long double sst = 0, ssr = 0, sse = 0;
    for (const dvec& r : records) {
        sst += r[2] * (r[0] - ym) * (r[0] - ym);
        ssr += r[2] * (r[1] - ym) * (r[1] - ym);
        sse += r[2] * (r[0] - r[1]) * (r[0] - r[1]);
    }
    const double r2 = static_cast<double>(1 - sse / sst);
    const double f = r2 / (1 - r2) * (n - k) / (k - 1);
    const double rmse = std::sqrt(static_cast<double>(sse) / (n - k));
    EXPECT_EQ(e.n, n);
    EXPECT_NEAR(e.w, static_cast<double>(w), 1e-12);
    EXPECT_NEAR(e.y_mean, static_cast<double>(ym), 1e-12);
    EXPECT_NEAR(e.p_mean, static_cast<double>(wp / w), 1e-12);
    EXPECT_NEAR(e.sst, static_cast<double>(sst), 1e-9);
    EXPECT_NEAR(e.ssr, static_cast<double>(ssr), 1e-9);
    EXPECT_NEAR(e.sse, static_cast<double>(sse), 1e-9);
    EXPECT_NEAR(e.r_square, r2, 1e-12);
    EXPECT_NEAR(e.adj_r_square, 1 - (n - 1) * (1 - r2) / (n - k), 1e-12);
    EXPECT_NEAR(e.rmse, rmse, 1e-12);
    EXPECT_NEAR(e.coeff_var, rmse / static_cast<double>(ym), 1e-12);
    EXPECT_NEAR(e.f_value, f, 1e-9);
    boost::math::fisher_f_distribution<double> fisher(k - 1, n - k);
    EXPECT_NEAR(e.p_value, boost::math::cdf(boost::math::complement(fisher, f)), 1e-6);

    // A perfect fit: 1 - R-square is inside the band, so there is no F.
    cont_eval_core({{1, 1, 1}, {2, 2, 1}, {4, 4, 1}, {5, 5, 1}}, 2, 0, e);
    EXPECT_EQ(e.r_square, 1);
    EXPECT_EQ(e.f_value, 0);
    EXPECT_EQ(e.p_value, 1);

    // One parameter, as a tree without a split gives model evaluation:
    // the SSR mean divides by zero.
    CellMatrix one;
    cont_eval_table({{1, 1.5, 1}, {3, 2.5, 1}}, 1, 1, "t", "n", one);
    EXPECT_EQ(one(10, 1).NumericValue(), 0);
    EXPECT_TRUE(std::isinf(one(10, 3).NumericValue()));
}

}  // namespace
}  // namespace zentable
