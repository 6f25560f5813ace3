#include <gtest/gtest.h>
#include <exprtk.hpp>

TEST(ExprTk, ExpressionWithAVariable) {
    double x = 0.0;
    exprtk::symbol_table<double> symbols;
    symbols.add_variable("x", x);
    exprtk::expression<double> expression;
    expression.register_symbol_table(symbols);
    exprtk::parser<double> parser;
    ASSERT_TRUE(parser.compile("x^2 + 3*x - 1", expression)) << parser.error();
    x = 2.0;
    EXPECT_DOUBLE_EQ(expression.value(), 9.0);
    x = -0.5;
    EXPECT_DOUBLE_EQ(expression.value(), -2.25);
}
