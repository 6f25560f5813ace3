#include "stats/ranks.hpp"

#include <gtest/gtest.h>

#include <random>

namespace zentable {
namespace {

// A value preceded by `before` others in the chosen order and equal to
// `equal` values, itself included, holds positions before + 1 to before +
// equal, whose mean is (2 before + equal + 1) / 2. The rank group follows in
// integers alone, with no rounding to hide behind.
double brute_force_rank(const dvec& values, std::size_t i, int bins, int order) {
    long long before = 0, equal = 0;
    for (double v : values) {
        if (v == values[i])
            ++equal;
        else if (order == 1 ? v < values[i] : v > values[i])
            ++before;
    }
    const long long n = static_cast<long long>(values.size());
    return static_cast<double>((2 * before + equal + 1) * bins / (2 * (n + 1)) + 1);
}

TEST(RankValues, MatchesCountingWithTiesInBothOrders) {
    std::mt19937 gen(11);
    for (std::size_t n : {1u, 2u, 7u, 300u}) {
        dvec values(n);
        for (double& v : values)
            v = static_cast<double>(gen() % 40) / 4.0;  // ties at every size above a few
        for (int bins : {1, 3, 10, static_cast<int>(n)}) {
            for (int order : {1, -1}) {
                const dvec ranked = rank_values(values, bins, order);
                ASSERT_EQ(ranked.size(), n);
                for (std::size_t i = 0; i < n; ++i)
                    ASSERT_EQ(ranked[i], brute_force_rank(values, i, bins, order))
                        << "n " << n << ", bins " << bins << ", order " << order << ", i " << i;
            }
        }
    }
}

}  // namespace
}  // namespace zentable
