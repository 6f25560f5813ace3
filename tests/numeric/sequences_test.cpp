#include "numeric/sequences.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <set>
#include <vector>

#include "../support/render.hpp"
#include "../support/tables.hpp"
#include "numeric/sobol.hpp"

using namespace zentable;
using zentable::testing::render;
using zentable::testing::thrown_text;

namespace {

const CellMatrix kOmitted(1, 1);

CellMatrix number(double x) {
    return CellMatrix(x);
}

// The base-2 radical inverse by reversing the 32 bits of i.
double bit_reversed(std::uint32_t i) {
    std::uint32_t r = 0;
    for (int b = 0; b < 32; ++b)
        if (i & (1u << b))
            r |= 1u << (31 - b);
    return r / 4294967296.0;
}

}  // namespace

TEST(PrimeNumbers, ListAndMessages) {
    EXPECT_EQ(render(prime_numbers(number(1))), "'Prime Numbers'|\n1|2\n");
    const CellMatrix ten = prime_numbers(number(10));
    ASSERT_EQ(ten.RowsInStructure(), 11u);
    const double primes[] = {2, 3, 5, 7, 11, 13, 17, 19, 23, 29};
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(ten(i + 1, 0).NumericValue(), i + 1);
        EXPECT_EQ(ten(i + 1, 1).NumericValue(), primes[i]);
    }
    // The 1000th prime is 7919, the 10000th 104729.
    EXPECT_EQ(first_primes(1000).back(), 7919);
    EXPECT_EQ(first_primes(10000).back(), 104729);
    const std::string message = "Input numPrimeNumbers must be a positive integer";
    EXPECT_EQ(thrown_text([] { prime_numbers(number(0)); }), message);
    EXPECT_EQ(thrown_text([] { prime_numbers(CellMatrix("ten")); }), message);
    EXPECT_EQ(thrown_text([] { prime_numbers(kOmitted); }), message);
}

TEST(Halton, RadicalInversesInPrimeBases) {
    EXPECT_EQ(render(Halton_numbers(number(4), kOmitted)), "'Halton_1'\n0.5\n0.25\n0.75\n0.125\n");
    // Base 3: 1/3, 2/3, 1/9, 4/9, 7/9; base 5: 1/5 ... 4/5, 1/25.
    const CellMatrix h = Halton_numbers(number(5), number(3));
    ASSERT_EQ(h.RowsInStructure(), 6u);
    ASSERT_EQ(h.ColumnsInStructure(), 3u);
    EXPECT_EQ(h(0, 2).StringValue(), "Halton_3");
    const double base3[] = {1.0 / 3, 2.0 / 3, 1.0 / 9, 4.0 / 9, 7.0 / 9};
    const double base5[] = {0.2, 0.4, 0.6, 0.8, 1.0 / 25};
    for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(h(i + 1, 1).NumericValue(), base3[i], 2e-16);
        EXPECT_NEAR(h(i + 1, 2).NumericValue(), base5[i], 2e-16);
    }
    EXPECT_EQ(thrown_text([] { Halton_numbers(number(0), kOmitted); }),
              "Input numbers must be a positive integer");
    EXPECT_EQ(thrown_text([] { Halton_numbers(number(3), number(-1)); }),
              "Input dimension must be a positive integer");
}

TEST(Sobol, CommandShapeAndLimit) {
    EXPECT_EQ(thrown_text([] { Sobol_numbers(number(10), number(1112)); }),
              "The maximum dimension is 1111");
    EXPECT_EQ(thrown_text([] { Sobol_numbers(CellMatrix("x"), number(2)); }),
              "Input numbers must be a positive integer");
    const CellMatrix s = Sobol_numbers(number(10), number(1111));
    ASSERT_EQ(s.RowsInStructure(), 11u);
    ASSERT_EQ(s.ColumnsInStructure(), 1111u);
    EXPECT_EQ(s(0, 0).StringValue(), "Sobol_1");
    EXPECT_EQ(s(0, 1110).StringValue(), "Sobol_1111");
    EXPECT_EQ(render(Sobol_numbers(number(3), kOmitted)), "'Sobol_1'\n0.5\n0.25\n0.75\n");
}

TEST(Sobol, FirstDimensionIsTheBaseTwoRadicalInverse) {
    Sobol sequence(1);
    double x = 0.0;
    for (std::uint32_t i = 1; i <= 5000; ++i) {
        sequence.next(&x);
        ASSERT_EQ(x, bit_reversed(i)) << i;
    }
}

TEST(Sobol, PublishedFirstPoints) {
    // The first points of Joe and Kuo's generator in three dimensions, in its
    // Gray-code order: its row r is point r ^ (r >> 1) of the natural order.
    const double published[][3] = {
        {0.5, 0.5, 0.5},       {0.75, 0.25, 0.25},       {0.25, 0.75, 0.75},
        {0.375, 0.375, 0.625}, {0.875, 0.875, 0.125},    {0.625, 0.125, 0.875},
        {0.125, 0.625, 0.375}, {0.1875, 0.3125, 0.9375}, {0.6875, 0.8125, 0.4375}};
    Sobol sequence(3);
    std::vector<std::vector<double>> points(14, std::vector<double>(3));
    for (int n = 1; n < 14; ++n)
        sequence.next(points[n].data());
    for (int r = 1; r <= 9; ++r)
        for (int d = 0; d < 3; ++d)
            EXPECT_EQ(points[r ^ (r >> 1)][d], published[r - 1][d]) << "row " << r;
}

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
