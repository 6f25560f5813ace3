#include <gtest/gtest.h>
#include <ql/math/randomnumbers/mt19937uniformrng.hpp>

#include <random>

// QuantLib's generator is MT19937 and maps a 32-bit draw u to (u + 0.5) / 2^32,
// so its first draw from a seed equals the standard library's engine, mapped.
TEST(QuantLib, FirstSeededMersenneTwisterDraw) {
    QuantLib::MersenneTwisterUniformRng rng(42);
    std::mt19937 reference(42);
    const double expected = (static_cast<double>(reference()) + 0.5) / 4294967296.0;
    EXPECT_DOUBLE_EQ(rng.next().value, expected);
    EXPECT_EQ(std::mt19937(42)(), 1608637542u);
}
