#include "numeric/sobol.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

using namespace zentable;

TEST(Sobol, EveryDimensionIsStratifiedInsideTheUnitInterval) {
    // Points 0 to 2^k - 1, and 2^k to 2^(k+1) - 1, of each dimension lie one
    // in each interval of width 2^-k. Point 0 is the origin, which the
    // sequence skips so as to stay inside (0, 1): the emitted points 1 to
    // 2^k - 1 fill every interval but the first.
    constexpr int kMaxK = 10;
    constexpr int kCount = (1 << (kMaxK + 1)) - 1;
    Sobol sequence(kSobolMaxDimension);
    std::vector<std::vector<double>> points(kCount + 1, std::vector<double>(kSobolMaxDimension));
    for (int n = 1; n <= kCount; ++n)
        sequence.next(points[n].data());
    for (int d = 0; d < kSobolMaxDimension; ++d) {
        for (int n = 1; n <= kCount; ++n) {
            ASSERT_GT(points[n][d], 0.0) << "dimension " << d + 1 << " point " << n;
            ASSERT_LT(points[n][d], 1.0) << "dimension " << d + 1 << " point " << n;
        }
        for (int k = 1; k <= kMaxK; ++k) {
            const int cells = 1 << k;
            std::set<int> first{0};  // the origin's interval
            std::set<int> second;
            for (int n = 1; n < cells; ++n)
                first.insert(static_cast<int>(std::floor(points[n][d] * cells)));
            for (int n = cells; n < 2 * cells; ++n)
                second.insert(static_cast<int>(std::floor(points[n][d] * cells)));
            ASSERT_EQ(first.size(), static_cast<std::size_t>(cells))
                << "dimension " << d + 1 << ", k " << k;
            ASSERT_EQ(second.size(), static_cast<std::size_t>(cells))
                << "dimension " << d + 1 << ", k " << k;
        }
    }
}

TEST(SobolDeathTest, DimensionOutsideTheTableEndsTheProcess) {
    EXPECT_EXIT(Sobol(1112), ::testing::ExitedWithCode(1), "outside 1 to 1111");
    EXPECT_EXIT(Sobol(0), ::testing::ExitedWithCode(1), "outside 1 to 1111");
}
