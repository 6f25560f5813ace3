#include "timeseries/mann_kendall.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "stats/freq.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {
namespace {

// S by its definition, over all pairs.
std::int64_t brute_force_s(const dvec& x) {
    std::int64_t s = 0;
    for (std::size_t i = 0; i < x.size(); ++i)
        for (std::size_t j = i + 1; j < x.size(); ++j)
            s += (x[j] > x[i]) - (x[j] < x[i]);
    return s;
}

// S by another road for series too long for all pairs: for each point, the
// earlier points below it less those above it, counted in a Fenwick tree over
// the ranks of the distinct values.
std::int64_t fenwick_s(const dvec& x) {
    dvec values = x;
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    std::vector<std::int64_t> tree(values.size() + 1, 0);
    auto below = [&](std::size_t rank) {  // earlier points of rank < rank
        std::int64_t c = 0;
        for (std::size_t i = rank; i > 0; i -= i & (~i + 1))
            c += tree[i];
        return c;
    };
    std::int64_t s = 0;
    for (std::size_t t = 0; t < x.size(); ++t) {
        const std::size_t rank = static_cast<std::size_t>(
            std::lower_bound(values.begin(), values.end(), x[t]) - values.begin());
        const std::int64_t lower = below(rank), not_above = below(rank + 1);
        s += lower - (static_cast<std::int64_t>(t) - not_above);
        for (std::size_t i = rank + 1; i < tree.size(); i += i & (~i + 1))
            ++tree[i];
    }
    return s;
}

dvec tied_series(std::size_t n, unsigned seed, int levels) {
    std::mt19937 gen(seed);
    dvec x(n);
    for (std::size_t t = 0; t < n; ++t)
        x[t] =
            static_cast<double>(static_cast<int>(gen() % levels) + static_cast<int>(t / 50)) / 4.0;
    return x;
}

TEST(KendallCount, EqualsTheSumOverAllPairs) {
    for (std::size_t n : {1u, 2u, 15u, 16u, 17u, 33u, 1000u, 3001u}) {
        for (int levels : {3, 40, 1 << 30}) {
            const dvec x = tied_series(n, static_cast<unsigned>(n), levels);
            EXPECT_EQ(kendall_count(x).s, brute_force_s(x)) << "n " << n << ", levels " << levels;
        }
    }
}

// Past 2^16 points the halves are counted in two threads.
TEST(KendallCount, EqualsAFenwickCountOnTheTwoThreadPath) {
    const dvec x = tied_series(150001, 5, 1000);
    EXPECT_EQ(kendall_count(x).s, fenwick_s(x));
    EXPECT_EQ(fenwick_s(dvec{1, 3, 2, 2}), brute_force_s(dvec{1, 3, 2, 2}));
}

// The tie groups are the counts of the frequency table of the values, those
// above 1, in the same rising order.
TEST(KendallCount, TieGroupsAreTheFrequencyTableCounts) {
    const dvec x = tied_series(2000, 8, 30);
    svec texts;
    for (double v : x)
        texts.push_back(number_to_text(v));
    const FreqLevels levels = make_freq_levels(texts);
    std::vector<std::int64_t> expected;
    for (int count : levels.counts)
        if (count > 1)
            expected.push_back(count);
    EXPECT_EQ(kendall_count(x).tie_groups, expected);
}

}  // namespace
}  // namespace zentable
