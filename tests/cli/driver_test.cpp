#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>

#include "driver.hpp"
#include "driver_error.hpp"

namespace zentable::cli {
namespace {

TEST(Driver, NumbersPrintShortestAndReadBackExactly) {
    auto text = [](double v) { return cell_text(CellMatrix(v)(0, 0)); };
    EXPECT_EQ(text(34077421.54873547), "34077421.54873547");
    EXPECT_EQ(text(0.0002), "0.0002");
    EXPECT_EQ(text(1e-5), "1e-05");
    EXPECT_EQ(text(1e20), "1e+20");
    EXPECT_EQ(text(0.1), "0.1");
    EXPECT_EQ(text(-3), "-3");
    EXPECT_EQ(text(10), "10");
    EXPECT_EQ(text(123456789012.0), "123456789012");
    EXPECT_EQ(text(1e16), "1e+16");
    EXPECT_EQ(text(-0.000123), "-0.000123");
    EXPECT_EQ(text(1.5e-300), "1.5e-300");
    EXPECT_EQ(text(0.0), "0");
    // Any double: the text reads back to it, and where %g at the text's own
    // number of digits reads back too, the two agree character for character.
    std::mt19937_64 bits(7);
    for (int i = 0; i < 200000; ++i) {
        double v;
        const std::uint64_t b = bits();
        std::memcpy(&v, &b, sizeof v);
        if (!std::isfinite(v))
            continue;
        const std::string t = text(v);
        ASSERT_EQ(std::strtod(t.c_str(), nullptr), v) << t;
        std::size_t digits = 0;  // significant: from the first digit that is not 0
        for (char ch : t.substr(0, t.find('e')))
            digits += std::isdigit(static_cast<unsigned char>(ch)) && (digits || ch != '0');
        char g[64];
        std::snprintf(g, sizeof g, "%.*g", static_cast<int>(digits), v);
        if (std::strtod(g, nullptr) == v) {
            ASSERT_EQ(t, g);
        }
    }
}

TEST(Driver, DigitsRoundAsASheetCellInGeneralFormatShows) {
    auto text = [](double v, int digits) { return cell_text(CellMatrix(v)(0, 0), digits); };
    EXPECT_EQ(text(0.26666666666666666, 10), "0.2666666667");
    EXPECT_EQ(text(1234567.891234, 10), "1234567.891");
    EXPECT_EQ(text(0.5, 10), "0.5");         // no trailing zeros
    EXPECT_EQ(text(2.5e-7, 10), "2.5e-07");  // small: an exponent
    EXPECT_EQ(text(12345678901.5, 10), "1.23456789e+10");
    EXPECT_EQ(text(3.14159, 3), "3.14");
    EXPECT_EQ(text(0.1, 17), "0.10000000000000001");
    // An integer keeps every digit and no point: ten digits of it would name
    // another integer.
    EXPECT_EQ(text(123456789012.0, 10), "123456789012");
    EXPECT_EQ(text(-2866, 2), "-2866");
    EXPECT_EQ(text(1e15, 10), "1e+15");
}

TEST(Driver, SuggestsTheClosestNames) {
    const std::vector<std::string> arguments = {"x", "y", "weight", "lambda"};
    EXPECT_EQ(suggestion("wieght", arguments), "did you mean weight?");
    EXPECT_EQ(suggestion("LAMBDA", arguments), "did you mean lambda?");
    EXPECT_EQ(suggestion("colour", arguments), "");
    const std::vector<std::string> functions = {"linear_reg", "linear_reg_from_file",
                                                "logistic_reg", "means"};
    // A longer spelling of a name shares its start; the closest comes first.
    EXPECT_EQ(suggestion("linear_regression", functions), "did you mean linear_reg?");
    EXPECT_EQ(suggestion("mean", functions), "did you mean means?");
}

}  // namespace
}  // namespace zentable::cli
