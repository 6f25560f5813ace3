#include "numeric/prob_functions.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "../support/tables.hpp"

using namespace zentable;
using zentable::testing::thrown_text;

namespace {

const double kBound = 36.76955262170047;  // 26 sqrt(2)
const std::string kNcMessage = "Input nc must be a non-negative number";
const std::string kPMessage = "Input p must be a number between 0 and 1";
const CellMatrix kOmitted(1, 1);

double phi(double z) {
    return 0.5 * std::erfc(-z / std::sqrt(2.0));
}

// The one number of a 1 by 1 result.
double value_of(const CellMatrix& table) {
    EXPECT_EQ(table.RowsInStructure(), 1u);
    EXPECT_EQ(table.ColumnsInStructure(), 1u);
    EXPECT_TRUE(table(0, 0).IsANumber());
    return table(0, 0).NumericValue();
}

std::string text_at(const CellMatrix& t, std::size_t i, std::size_t j) {
    return t(i, j).IsString() ? t(i, j).StringValue() : "<not text>";
}

double number_at(const CellMatrix& t, std::size_t i, std::size_t j) {
    EXPECT_TRUE(t(i, j).IsANumber()) << i << ", " << j;
    return t(i, j).IsANumber() ? t(i, j).NumericValue() : NAN;
}

}  // namespace

// Each command once, against an independent value.
TEST(ProbCommands, SingleValuesAndNonCentrality) {
    EXPECT_EQ(value_of(prob_normal(0.0)), 0.5);
    EXPECT_EQ(value_of(prob_normal_inv(0.0)), -kBound);
    EXPECT_EQ(value_of(prob_normal_inv(1.0)), kBound);
    EXPECT_NEAR(value_of(prob_t(1.0, 1.0)), 0.75, 1e-15);  // Cauchy: 1/2 + atan(1)/pi
    EXPECT_NEAR(value_of(prob_t_inv(0.975, 10.0)), 2.228139, 1e-6);
    EXPECT_NEAR(value_of(prob_f(3.0, 2.0, 2.0)), 0.75, 1e-15);  // f / (1 + f)
    EXPECT_NEAR(value_of(prob_f_inv(0.95, 5.0, 6.0)), 4.387374, 1e-6);

    // nc omitted in any form, or 0, is the central distribution:
    // 1 - e^(-x/2) (1 + x/2) at 4 df.
    for (const CellMatrix& central : {kOmitted, CellMatrix(0, 0), CellMatrix(0.0)}) {
        EXPECT_NEAR(value_of(prob_chi(3.0, 4.0, central)), 1.0 - std::exp(-1.5) * 2.5, 1e-15);
        EXPECT_NEAR(value_of(prob_chi_inv(0.5, 10.0, central)), 9.341818, 1e-6);
    }
    // One degree of freedom with nc 4 is (Z + 2)^2.
    EXPECT_NEAR(value_of(prob_chi(9.0, 1.0, CellMatrix(4.0))), phi(1.0) - phi(-5.0), 1e-13);
    const double q = value_of(prob_chi_inv(0.3, 1.0, CellMatrix(4.0)));
    EXPECT_NEAR(phi(std::sqrt(q) - 2.0) - phi(-std::sqrt(q) - 2.0), 0.3, 1e-13);

    for (const CellMatrix& bad : {CellMatrix(-1.0), CellMatrix("two"), CellMatrix(2, 1)}) {
        EXPECT_EQ(thrown_text([&] { prob_chi(1.0, 2.0, bad); }), kNcMessage);
        EXPECT_EQ(thrown_text([&] { prob_chi_inv(0.5, 2.0, bad); }), kNcMessage);
        EXPECT_EQ(thrown_text([&] { prob_chi_table(bad); }), kNcMessage);
    }
    EXPECT_EQ(thrown_text([] { prob_chi(-1.0, 2.0, kOmitted); }),
              "x must be larger than or equal to 0 in non-central chi-squared distribution");
}

TEST(ProbTables, Normal) {
    const CellMatrix t = prob_normal_table();
    ASSERT_EQ(t.RowsInStructure(), 353u);
    ASSERT_EQ(t.ColumnsInStructure(), 2u);
    EXPECT_EQ(text_at(t, 0, 0),
              "Cumulative Normal Distribution. Table Entry Is N(z) = Prob(Z < z). Example: Prob(Z "
              "< 2.18) = 0.985371.");
    EXPECT_TRUE(t(0, 1).IsEmpty());
    EXPECT_TRUE(t(1, 0).IsEmpty() && t(1, 1).IsEmpty());
    EXPECT_EQ(text_at(t, 2, 0), "z");
    EXPECT_EQ(text_at(t, 2, 1), "N(z)");
    EXPECT_EQ(number_at(t, 3, 0), 0.0);
    EXPECT_EQ(number_at(t, 3, 1), 0.5);
    // The title's example.
    EXPECT_EQ(number_at(t, 3 + 218, 0), 2.18);
    EXPECT_NEAR(number_at(t, 3 + 218, 1), 0.985371, 5e-7);
    EXPECT_EQ(number_at(t, 352, 0), 3.49);
    EXPECT_NEAR(number_at(t, 352, 1), phi(3.49), 1e-15);
}

TEST(ProbTables, StudentT) {
    const CellMatrix t = prob_t_table();
    ASSERT_EQ(t.RowsInStructure(), 103u);
    ASSERT_EQ(t.ColumnsInStructure(), 7u);
    EXPECT_EQ(text_at(t, 0, 0),
              "Percentiles of the Student's t Distribution. Table Entry Is t Such That Prob(t_n < "
              "t) = P. Example: Prob(t_10 < 1.372184) = 0.9.");
    EXPECT_EQ(text_at(t, 1, 0), "d.f.");
    const double probabilities[6] = {0.75, 0.9, 0.95, 0.975, 0.99, 0.995};
    for (int j = 0; j < 6; ++j) {
        EXPECT_EQ(number_at(t, 1, j + 1), probabilities[j]);
    }
    for (int df = 1; df <= 100; ++df) {
        EXPECT_EQ(number_at(t, df + 1, 0), df);
    }
    // Cauchy at 1 df: tan(pi (P - 1/2)); published values.
    EXPECT_NEAR(number_at(t, 2, 1), 1.0, 1e-14);
    EXPECT_NEAR(number_at(t, 11, 2), 1.372184, 1e-6);
    EXPECT_NEAR(number_at(t, 11, 4), 2.228139, 1e-6);
    EXPECT_NEAR(number_at(t, 101, 6), 2.625891, 1e-6);

    // The last row is the normal distribution.
    EXPECT_EQ(text_at(t, 102, 0), "Infinity");
    const double normal[6] = {0.6744897501960817, 1.2815515655446004, 1.6448536269514722,
                              1.959963984540054,  2.3263478740408408, 2.5758293035489004};
    for (int j = 0; j < 6; ++j) {
        EXPECT_EQ(number_at(t, 102, j + 1), value_of(prob_normal_inv(probabilities[j])));
        EXPECT_NEAR(number_at(t, 102, j + 1), normal[j], 1e-14);
    }
}

TEST(ProbTables, ChiSquared) {
    const CellMatrix t = prob_chi_table(kOmitted);
    ASSERT_EQ(t.RowsInStructure(), 52u);
    ASSERT_EQ(t.ColumnsInStructure(), 14u);
    EXPECT_EQ(text_at(t, 0, 0),
              "Percentiles of the Chi-Squared Distribution. Table Entry Is c Such That Prob(X^2 < "
              "c) = P. Example: Prob(X^2(10) < 9.341818) = 0.5.");
    EXPECT_EQ(text_at(t, 1, 0), "d.f.");
    const double probabilities[13] = {0.005, 0.01, 0.025, 0.05,  0.1,  0.25, 0.5,
                                      0.75,  0.9,  0.95,  0.975, 0.99, 0.995};
    for (int j = 0; j < 13; ++j) {
        EXPECT_EQ(number_at(t, 1, j + 1), probabilities[j]);
        // Two degrees of freedom: -2 log(1 - P).
        EXPECT_NEAR(number_at(t, 3, j + 1), -2.0 * std::log(1.0 - probabilities[j]), 1e-12);
    }
    for (int df = 1; df <= 50; ++df) {
        EXPECT_EQ(number_at(t, df + 1, 0), df);
    }
    EXPECT_NEAR(number_at(t, 11, 7), 9.341818, 1e-6);   // the title's example
    EXPECT_NEAR(number_at(t, 2, 10), 3.841459, 1e-6);   // 1 df, 0.95
    EXPECT_NEAR(number_at(t, 51, 13), 79.48998, 1e-5);  // 50 df, 0.995

    // nc of 1 at 1 df: each entry c has Prob((Z + 1)^2 < c) = P.
    const CellMatrix nc = prob_chi_table(CellMatrix(1.0));
    ASSERT_EQ(nc.RowsInStructure(), 52u);
    for (int j = 0; j < 13; ++j) {
        const double c = number_at(nc, 2, j + 1);
        EXPECT_NEAR(phi(std::sqrt(c) - 1.0) - phi(-std::sqrt(c) - 1.0), probabilities[j], 1e-13);
    }
}

TEST(ProbTables, FisherF) {
    const CellMatrix t = prob_f_table(kOmitted);
    ASSERT_EQ(t.RowsInStructure(), 103u);
    ASSERT_EQ(t.ColumnsInStructure(), 102u);
    EXPECT_EQ(text_at(t, 0, 0),
              "Percentiles of the F-Distribution. Table Entry Is f Such That Prob(F(df1, df2) < f) "
              "= P. Example: Prob(F(5, 6) < 4.387374) = 0.95.");
    EXPECT_EQ(text_at(t, 1, 0), "df2 \\ df1");
    for (int k = 1; k <= 100; ++k) {
        EXPECT_EQ(number_at(t, 1, k), k);
        EXPECT_EQ(number_at(t, k + 1, 0), k);
    }
    EXPECT_EQ(text_at(t, 1, 101), "Infinity");
    EXPECT_EQ(text_at(t, 102, 0), "Infinity");

    // Row df2, column df1.
    EXPECT_NEAR(number_at(t, 7, 5), 4.387374, 1e-6);
    EXPECT_NEAR(number_at(t, 3, 2), 19.0, 1e-12);  // F(2, 2): p / (1 - p)
    // An infinite df2 leaves chi-square(df1) / df1; an infinite df1 leaves
    // df2 / chi-square(df2) at 1 - p.
    EXPECT_NEAR(number_at(t, 102, 1), 3.841459, 1e-5);
    EXPECT_NEAR(number_at(t, 3, 101), 2.0 / (-2.0 * std::log(0.95)), 1e-5);
    // Both infinite: about 1 + z sqrt(2 / df1 + 2 / df2).
    EXPECT_NEAR(number_at(t, 102, 101), 1.0 + 1.6448536269514722 * std::sqrt(4e-9), 1e-8);

    // Other p: the p quantile of F(df1, df2) is the reciprocal of the 1 - p
    // quantile of F(df2, df1).
    const CellMatrix upper = prob_f_table(CellMatrix(0.9));
    const CellMatrix lower = prob_f_table(CellMatrix(0.1));
    EXPECT_NEAR(number_at(upper, 3, 2), 9.0, 1e-12);
    for (int df1 : {1, 4, 30, 101}) {
        for (int df2 : {2, 9, 77, 101}) {
            EXPECT_NEAR(number_at(upper, df2 + 1, df1) * number_at(lower, df1 + 1, df2), 1.0, 1e-12)
                << df1 << ", " << df2;
        }
    }

    for (const CellMatrix& bad :
         {CellMatrix(1.5), CellMatrix(-0.1), CellMatrix("half"), CellMatrix(1, 2)}) {
        EXPECT_EQ(thrown_text([&] { prob_f_table(bad); }), kPMessage);
    }
}

TEST(ProbTables, CornishFisher) {
    // With no skewness and kurtosis the percentile is the normal quantile.
    const CellMatrix plain = Cornish_Fisher_expansion(0.975, 0.0, 0.0);
    ASSERT_EQ(plain.RowsInStructure(), 4u);
    ASSERT_EQ(plain.ColumnsInStructure(), 2u);
    EXPECT_EQ(text_at(plain, 0, 0), "Cornish-Fisher expansion");
    EXPECT_EQ(text_at(plain, 2, 0), "Gaussian variate");
    EXPECT_EQ(text_at(plain, 2, 1), "Confidence level");
    EXPECT_NEAR(number_at(plain, 3, 0), 1.959963984540054, 1e-15);
    EXPECT_EQ(number_at(plain, 3, 1), number_at(plain, 3, 0));

    // At z = 2 by hand: 2 + 3/6 skewness + 2/24 kurtosis - 6/36 skewness^2.
    const CellMatrix shaped = Cornish_Fisher_expansion(phi(2.0), 1.0, 1.0);
    EXPECT_NEAR(number_at(shaped, 3, 0), 2.0, 1e-12);
    EXPECT_NEAR(number_at(shaped, 3, 1), 2.0 + 0.5 + 1.0 / 12.0 - 1.0 / 6.0, 1e-12);

    for (double cl : {0.0, 1.0, -0.2, 1.2}) {
        EXPECT_EQ(thrown_text([&] { Cornish_Fisher_expansion(cl, 0.0, 0.0); }),
                  "Input confidence level cl must be between 0 and 1")
            << cl;
    }
}
