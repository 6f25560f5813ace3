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
#include "regression/linear_reg.hpp"

namespace zentable::cli {
namespace {

std::string csv_of(const CellMatrix& table) {
    std::ostringstream out;
    CellMatrix copy = table;
    copy(0, 0) = "handle";  // handles differ from fit to fit
    print_table(out, copy, Format::csv);
    return out.str();
}

TEST(Driver, AFileReadAsCellsGivesTheSameReportAsTheSameCells) {
    const std::string path = ::testing::TempDir() + "driver_x.csv";
    std::ofstream(path) << "x1, x2\r\n1,5\n2,\"3\"\n3,8\n4,1\n5,2\n6,9\n";
    CellMatrix x(7, 2), y(7, 1);
    x(0, 0) = "x1";
    x(0, 1) = " x2";
    y(0, 0) = "y";
    const double x1[] = {1, 2, 3, 4, 5, 6}, x2[] = {5, 3, 8, 1, 2, 9}, ys[] = {1, 3, 2, 5, 4, 6};
    for (int i = 0; i < 6; ++i) {
        x(i + 1, 0) = x1[i];
        x(i + 1, 1) = x2[i];
        y(i + 1, 0) = ys[i];
    }
    const CellMatrix direct = linear_reg(x, y, CellMatrix(), CellMatrix());

    const FunctionInfo& f = function_named("linear_reg");
    const GuardedResult through_driver =
        call_entry(f, bind_arguments(f, {{"", parse_value("@" + path, nullptr)},
                                         {"y", parse_value("{\"y\";1;3;2;5;4;6}", nullptr)}}));
    ASSERT_FALSE(through_driver.failed());
    EXPECT_EQ(csv_of(through_driver.table), csv_of(direct));
    std::remove(path.c_str());
}

TEST(Driver, ArgumentForms) {
    const CellMatrix a = parse_array_constant("{\"x1\",\"a \"\"q\"\"\";1,-2.5e-3;TRUE,}");
    ASSERT_EQ(a.RowsInStructure(), 3u);
    ASSERT_EQ(a.ColumnsInStructure(), 2u);
    EXPECT_EQ(a(0, 1).StringValue(), "a \"q\"");
    EXPECT_EQ(a(1, 1).NumericValue(), -2.5e-3);
    EXPECT_TRUE(a(2, 0).IsBoolean() && a(2, 0).BooleanValue());
    EXPECT_TRUE(a(2, 1).IsEmpty());
    EXPECT_THROW(parse_array_constant("{1,2;3}"), DriverError);

    EXPECT_TRUE(parse_value("-1", nullptr)(0, 0).IsANumber());
    EXPECT_TRUE(parse_value("1e5x", nullptr)(0, 0).IsString());
    EXPECT_TRUE(parse_value("inf", nullptr)(0, 0).IsString());
    EXPECT_TRUE(parse_value("_", nullptr)(0, 0).IsEmpty());
    EXPECT_EQ(parse_value("data.csv", nullptr)(0, 0).StringValue(), "data.csv");

    Results results;
    results["fit"] = parse_array_constant("{1,2,3;4,5,6;7,8,9}");
    const CellMatrix cut = parse_value("fit!B2:C3", &results);
    ASSERT_EQ(cut.RowsInStructure(), 2u);
    EXPECT_EQ(cut(0, 0).NumericValue(), 5);
    EXPECT_EQ(cut(1, 1).NumericValue(), 9);
    EXPECT_EQ(parse_value("fit!c1", &results)(0, 0).NumericValue(), 3);
    EXPECT_THROW(parse_value("fit!D1", &results), DriverError);
    EXPECT_THROW(parse_value("fit!B2:A1", &results), DriverError);
    EXPECT_THROW(parse_value("fot!A1", &results), DriverError);
}

TEST(Driver, BindsArgumentsByPositionAndName) {
    const FunctionInfo& f = function_named("linear_reg");
    const CellMatrix one(1.0), two(2.0);
    const auto args = bind_arguments(f, {{"lambda", one}, {"", two}});
    ASSERT_EQ(args.size(), 4u);
    EXPECT_EQ(args[0](0, 0).NumericValue(), 2.0);
    EXPECT_EQ(args[3](0, 0).NumericValue(), 1.0);
    EXPECT_TRUE(args[1](0, 0).IsEmpty());
    EXPECT_THROW(bind_arguments(f, {{"x", one}, {"x", two}}), DriverError);
    EXPECT_THROW(bind_arguments(f, {{"", one}, {"", one}, {"", one}, {"", one}, {"", one}}),
                 DriverError);
    EXPECT_EQ(&function_named("LINEAR_REG"), &f);
}

}  // namespace
}  // namespace zentable::cli

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

}  // namespace
}  // namespace zentable::cli
