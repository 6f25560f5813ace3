#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "optimisation/expression_function.hpp"
#include "optimisation/function_eval.hpp"

namespace zentable {
namespace {

template <class F>
std::string failure_of(F build) {
    try {
        build();
    } catch (const std::string& text) {
        return text;
    } catch (const char* text) {
        return text;
    }
    return "";
}

TEST(ExpressionScan, SortsNamesAndFindsTheFreeOnesByFirstUse) {
    // The language's words, the constants and the added functions are no names;
    // z1 is assigned at first use, a is read first.
    const ExpressionNames names = scan_expression(
        "Z1 := x*x + Y; z1 + a + a := 1 + pi + prob_normal(epsilon) + Sin(inf) + CINV(1, 2)");
    EXPECT_EQ(names.symbols, (svec{"a", "x", "y", "z1"}));
    EXPECT_EQ(names.free, (svec{"a", "x", "y"}));
}

TEST(GenericFunction, BindsInputsByPositionAndKeepsLocalsBetweenCalls) {
    const GenericFunction f("k := k + x; k * Y", "x", {"y", "unused", "X"}, false);
    EXPECT_EQ(f.positions(), (std::vector<int>{2, -1, 1}));
    EXPECT_EQ(f({10.0, 99.0, 1.0}), 10.0);
    EXPECT_EQ(f({10.0, 99.0, 2.0}), 30.0);  // the local held 1 and adds 2

    EXPECT_EQ(failure_of([] {
                  GenericFunction("x + 1", "lowerAndUpperBound", {"x", "Q"}, true);
              }),
              "The variable 'Q' from the input 'lowerAndUpperBound' is not in the expression of "
              "the function");

    // Objects move into containers without losing their bindings.
    std::vector<GenericFunction> moved;
    moved.push_back(GenericFunction("2 * x", "x", {"x"}, true));
    EXPECT_EQ(moved[0]({4.0}), 8.0);
}

TEST(GenericFunction, SumsOverRowsWithParametersFirst) {
    // f = a + b t at a = 1, b = 2 gives 3, 5, 7 on t = 1, 2, 3, worked by hand.
    const dmat rows = {{1.0}, {2.0}, {3.0}};
    const GenericFunction2 squares("a + b*t", "lowerAndUpperBound", {"a", "b"}, {"t"}, rows,
                                   {3.0, 4.0, 8.0}, {1.0, 2.0, 0.5}, true);
    EXPECT_EQ(squares({1.0, 2.0}), 2.5);  // 1 * 0 + 2 * 1 + 0.5 * 1
    EXPECT_EQ(squares.predict({1.0, 2.0}), (dvec{3.0, 5.0, 7.0}));

    const GenericFunction_Sum sum("a + b*t", "lowerAndUpperBound", {"a", "b"}, {"t"}, rows,
                                  {1.0, 2.0, 0.5}, true);
    EXPECT_EQ(sum({1.0, 2.0}), 16.5);  // 3 + 10 + 3.5
    EXPECT_EQ(sum.predict({0.0, 1.0}), (dvec{1.0, 2.0, 3.0}));
}

TEST(GenericIntegralFunction, TakesTheOneFreeName) {
    const GenericIntegralFunction f("u := T*t; u + 1");
    EXPECT_EQ(f.variable(), "t");
    EXPECT_EQ(f(3.0), 10.0);
    EXPECT_EQ(f(dvec{2.0}), 5.0);
}

TEST(TanhSinh, EvaluatesPairsOnTheNodesLevelByLevel) {
    // A NaN never passes the error test, so every one of the 193 nodes is used:
    // the centre once and each other node as a pair, the upper point first.
    std::vector<double> points;
    tanh_sinh(
        [&](double t) {
            points.push_back(t);
            return std::numeric_limits<double>::quiet_NaN();
        },
        1.0, 5.0, 1e-6);
    ASSERT_EQ(points.size(), 385u);
    const double half_pi = 1.5707963267948966;
    EXPECT_EQ(points[0], 3.0);
    // Node 1 is t = 1; node 4, the first of level 1, is t = 0.5; the last is t = 2 + 63/64.
    EXPECT_NEAR(points[1], 3.0 + 2.0 * std::tanh(half_pi * std::sinh(1.0)), 1e-15);
    EXPECT_NEAR(points[2], 3.0 - 2.0 * std::tanh(half_pi * std::sinh(1.0)), 1e-15);
    EXPECT_NEAR(points[7], 3.0 + 2.0 * std::tanh(half_pi * std::sinh(0.5)), 1e-15);
    EXPECT_NEAR(points[383], 3.0 + 2.0 * std::tanh(half_pi * std::sinh(2.984375)), 1e-15);
}

}  // namespace
}  // namespace zentable
