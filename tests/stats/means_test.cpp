#include "stats/means.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace zentable {
namespace {

// Above 65536 values the columns are split between two threads, which a
// sheet-sized call never reaches; each column must still be sorted whole.
TEST(SortColumns, TwoThreadsSortEveryColumnAsOneWould) {
    std::mt19937 gen(7);
    std::vector<dvec> columns;
    for (std::size_t size : {70000u, 10u, 0u, 40000u, 25000u}) {
        dvec c(size);
        for (double& v : c)
            v = static_cast<double>(gen() % 1000);  // with many ties
        columns.push_back(c);
    }
    std::vector<dvec> expected = columns;
    for (dvec& c : expected)
        std::sort(c.begin(), c.end());
    sort_columns(columns);
    EXPECT_EQ(columns, expected);
}

}  // namespace
}  // namespace zentable
