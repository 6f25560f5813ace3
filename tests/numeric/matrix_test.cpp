#include "numeric/matrix.hpp"

#include <gtest/gtest.h>

#include "thrown_text.hpp"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

using namespace zentable;

namespace {

void expect_matrix_near(const dmat& actual, const dmat& expected, double tol) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(actual[i].size(), expected[i].size()) << "row " << i;
        for (std::size_t j = 0; j < expected[i].size(); ++j)
            EXPECT_NEAR(actual[i][j], expected[i][j], tol) << "at (" << i << ", " << j << ")";
    }
}

}  // namespace

TEST(MatrixBasics, ShapesDiagonalsAndTests) {
    EXPECT_EQ(identity(3), (dmat{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
    EXPECT_TRUE(identity(0).empty());

    EXPECT_EQ(transpose(dmat{{1, 2, 3}, {4, 5, 6}}), (dmat{{1, 4}, {2, 5}, {3, 6}}));
    EXPECT_THROW(transpose(dmat{}), std::out_of_range);
    EXPECT_TRUE(transpose(dmat{{}, {}}).empty());

    const dmat a{{1, 2}, {3, 4}};
    EXPECT_EQ(diag(a), (dvec{1, 4}));
    EXPECT_EQ(vecdiag(a), (dvec{1, 4}));
    EXPECT_EQ(trace(a), 5.0);
    EXPECT_EQ(diag(dvec{2, 3}), (dmat{{2, 0}, {0, 3}}));

    const dmat wide{{1, 2, 3}, {4, 5, 6}};
    EXPECT_EQ(THROWN_TEXT(diag(wide)), "matrix is not square in diag()");
    EXPECT_EQ(THROWN_TEXT(vecdiag(wide)), "matrix is not square in vecdiag()");
    EXPECT_EQ(THROWN_TEXT(trace(wide)), "matrix is not square in trace()");

    EXPECT_TRUE(is_zero(0.0));
    EXPECT_TRUE(is_zero(2.220446049250313e-16));
    EXPECT_TRUE(is_zero(-2.220446049250313e-16));
    EXPECT_FALSE(is_zero(std::nextafter(2.220446049250313e-16, 1.0)));
    EXPECT_FALSE(is_zero(std::nextafter(-2.220446049250313e-16, -1.0)));
    // Both comparisons are "not greater", and a NaN is greater than nothing.
    EXPECT_TRUE(is_zero(std::numeric_limits<double>::quiet_NaN()));

    EXPECT_EQ(max_abs(dmat{{-5, 2}, {3, -7}}), 7.0);
    EXPECT_EQ(max_abs(dvec{-5, 2}), 5.0);
}

TEST(MatrixArithmetic, ElementwiseOperations) {
    const dmat a{{1, 2}, {3, 4}};
    const dmat b{{10, 20}, {30, 40}};
    EXPECT_EQ(mat_sub(b, a), (dmat{{9, 18}, {27, 36}}));
    EXPECT_EQ(THROWN_TEXT(mat_sub(a, dmat{{1, 2, 3}, {4, 5, 6}})),
              "Not conformable matrix subtraction");
    EXPECT_EQ(THROWN_TEXT(mat_sub(a, dmat{{1, 2}})), "Not conformable matrix subtraction");
    // A true division: 3 * (1 / 10) would be 0.30000000000000004.
    EXPECT_EQ(mat_div(dmat{{3}}, 10)[0][0], 0.3);

    EXPECT_EQ(elementwise_mul(a, b), (dmat{{10, 40}, {90, 160}}));
    EXPECT_EQ(elementwise_mul(dmat{{3}}, a), (dmat{{3, 6}, {9, 12}}));
    EXPECT_EQ(elementwise_mul(a, dmat{{-1}}), (dmat{{-1, -2}, {-3, -4}}));
    EXPECT_EQ(THROWN_TEXT(elementwise_mul(a, dmat{{1, 2}})),
              "Not conformable elementwise multiplication");
    EXPECT_EQ(THROWN_TEXT(elementwise_mul(dmat{{1, 2}}, dmat{{1}, {2}})),
              "Not conformable elementwise multiplication");
}

TEST(MatrixArithmetic, ProductsWorkedByHand) {
    const dmat a{{1, 2, 3}, {4, 5, 6}};
    const dmat b{{7, 8}, {9, 10}, {11, 12}};
    EXPECT_EQ(mat_mul(a, b), (dmat{{58, 64}, {139, 154}}));
    EXPECT_EQ(mat_mul_unchecked(a, b), (dmat{{58, 64}, {139, 154}}));
    EXPECT_EQ(THROWN_TEXT(mat_mul(a, a)), "Not conformable matrix multiplication");

    EXPECT_EQ(mat_vec(a, dvec{1, 0, -1}), (dvec{-2, -2}));
    EXPECT_EQ(vec_mat(dvec{1, -1}, a), (dvec{-3, -3, -3}));
    EXPECT_EQ(dot(dvec{1, 2, 3}, dvec{4, 5, 6}), 32.0);

    EXPECT_EQ(direct_product(dmat{{1, 2}, {3, 4}}, dmat{{0, 5}}),
              (dmat{{0, 5, 0, 10}, {0, 15, 0, 20}}));

    // (1 + x)(1 - x) and (1 + 2x)(3 + 4x + 5x^2).
    EXPECT_EQ(poly_mul(dvec{1, 1}, dvec{1, -1}), (dvec{1, 0, -1}));
    EXPECT_EQ(poly_mul(dvec{1, 2}, dvec{3, 4, 5}), (dvec{3, 10, 13, 10}));
}

// Users compare last digits, so the order of the sums is part of the result.
TEST(MatrixArithmetic, SumsRunInIncreasingOrderFromZero) {
    // 1 + 1e17 loses the 1, so only the left-to-right order gives 0; the
    // reverse order would give 1.
    const dvec u{1, 1e17, -1e17};
    const dvec ones{1, 1, 1};
    EXPECT_EQ(dot(u, ones), 0.0);
    EXPECT_EQ(mat_mul(dmat{u}, dmat{{1}, {1}, {1}})[0][0], 0.0);
    EXPECT_EQ(mat_vec(dmat{u}, ones)[0], 0.0);
    EXPECT_EQ(vec_mat(u, dmat{{1}, {1}, {1}})[0], 0.0);
    EXPECT_EQ(trace(dmat{{1, 0, 0}, {0, 1e17, 0}, {0, 0, -1e17}}), 0.0);

    // Starting from +0.0 turns a lone -0.0 term into +0.0.
    EXPECT_FALSE(std::signbit(dot(dvec{-1}, dvec{0})));
    EXPECT_FALSE(std::signbit(mat_mul(dmat{{-1}}, dmat{{0}})[0][0]));
}

TEST(Inverse, KnownInversesAndIdentity) {
    // det 10: the inverse is the adjugate over 10.
    expect_matrix_near(inverse(dmat{{4, 7}, {2, 6}}), dmat{{0.6, -0.7}, {-0.2, 0.4}}, 1e-15);

    // Zeros in the top-left corner need a row exchange; det -6.
    expect_matrix_near(inverse(dmat{{0, 2}, {3, 4}}), dmat{{-2.0 / 3, 1.0 / 3}, {0.5, 0}}, 1e-15);
    expect_matrix_near(inverse(dmat{{0, 0, 1}, {0, 1, 0}, {1, 0, 0}}),
                       dmat{{0, 0, 1}, {0, 1, 0}, {1, 0, 0}}, 0.0);

    const dmat a{{2, -1, 0, 3}, {1, 5, -2, 0}, {0, 3, 4, 1}, {-2, 0, 1, 6}};
    expect_matrix_near(mat_mul(inverse(a), a), identity(4), 1e-14);
    expect_matrix_near(mat_mul(a, inverse(a)), identity(4), 1e-14);

    EXPECT_TRUE(inverse(dmat{}).empty());

    // Rows are divided by the pivot, not multiplied by its reciprocal:
    // 3 * (1 / 10) would leave 0.30000000000000004 where 3 / 10 gives 0.3.
    EXPECT_EQ(inverse(dmat{{10, 3}, {0, 1}}), (dmat{{0.1, -0.3}, {0, 1}}));
    EXPECT_EQ(sweep(dmat{{10, 3}}, ivec{0}), (dmat{{0.1, 0.3}}));
}

TEST(Inverse, FixedPivotTolerance) {
    const std::string singular = "matrix singular in inverse matrix";
    EXPECT_EQ(THROWN_TEXT(inverse(dmat{{1e-16}})), singular);
    EXPECT_EQ(inverse(dmat{{1e-15}})[0][0], 1.0 / 1e-15);
    EXPECT_EQ(inverse(dmat{{-1e-15}})[0][0], -1.0 / 1e-15);
    // The pivot must be strictly greater than the tolerance.
    EXPECT_EQ(THROWN_TEXT(inverse(dmat{{2.220446049250313e-16}})), singular);
    EXPECT_NO_THROW(inverse(dmat{{std::nextafter(2.220446049250313e-16, 1.0)}}));

    EXPECT_EQ(THROWN_TEXT(inverse(dmat{{1, 2}, {2, 4}})), singular);
    // A NaN never beats the starting best of 0.
    EXPECT_EQ(THROWN_TEXT(inverse(dmat{{std::numeric_limits<double>::quiet_NaN()}})), singular);
}

TEST(Sweep, RegressionByHand) {
    // Cross-products of (1, x, y) for x = 0, 1, 2, 3 and y = 1, 3, 2, 5.
    // Least squares: y = 1.1 + 1.1 x, residual sum of squares 2.7; the
    // inverse of [[4, 6], [6, 14]] is [[0.7, -0.3], [-0.3, 0.2]].
    const dmat xtx{{4, 6, 11}, {6, 14, 22}, {11, 22, 39}};
    expect_matrix_near(sweep(xtx, ivec{0, 1}),
                       dmat{{0.7, -0.3, 1.1}, {-0.3, 0.2, 1.1}, {-1.1, -1.1, 2.7}}, 1e-13);

    // All pivots: the full inverse.
    expect_matrix_near(mat_mul(sweep(xtx, ivec{0, 1, 2}), xtx), identity(3), 1e-12);

    EXPECT_EQ(sweep(identity(2), ivec{0, 1}), identity(2));
}

TEST(Sweep, RectangularAndRepeatedPivots) {
    // Three rows, two columns: only the first two rows get an identity.
    //   [2 0 | 1 0]      [1 0 | 0.5 0]
    //   [0 4 | 0 1]  ->  [0 4 | 0   1]
    //   [6 8 | 0 0]      [0 8 | -3  0]
    EXPECT_EQ(sweep(dmat{{2, 0}, {0, 4}, {6, 8}}, ivec{0}), (dmat{{0.5, 0}, {0, 4}, {-3, 8}}));

    // A second sweep of the same pivot is one more Gauss-Jordan step on a
    // pivot that is now 1, not an undoing: 4 -> 0.25 -> 0.25.
    EXPECT_EQ(sweep(dmat{{4}}, ivec{0, 0}), (dmat{{0.25}}));

    // An empty list leaves even a singular matrix alone.
    const dmat zeros{{0, 0}, {0, 0}, {0, 0}};
    EXPECT_EQ(sweep(zeros, ivec{}), zeros);
}

TEST(Sweep, Failures) {
    const std::string beyond = "pivot is beyond matrix indexes in matrix sweep function";
    const std::string singular = "Pivot singular in matrix sweep function. Matrix is singular.";

    // The range is min(rows, columns), whichever side is short.
    EXPECT_EQ(THROWN_TEXT(sweep(identity(2), ivec{2})), beyond);
    EXPECT_EQ(THROWN_TEXT(sweep(dmat{{1, 0}, {0, 1}, {0, 0}}, ivec{2})), beyond);
    EXPECT_EQ(THROWN_TEXT(sweep(dmat{{1, 0, 0}, {0, 1, 0}}, ivec{2})), beyond);
    // Checked before any pivot is swept: the singular first pivot is never reached.
    EXPECT_EQ(THROWN_TEXT(sweep(dmat{{0, 1}, {1, 0}}, ivec{0, 2})), beyond);

    // Tighter than inverse, by design.
    EXPECT_EQ(THROWN_TEXT(sweep(dmat{{5e-11}}, ivec{0})), singular);
    EXPECT_NO_THROW(inverse(dmat{{5e-11}}));
    EXPECT_EQ(sweep(dmat{{1e-10}}, ivec{0})[0][0], 1.0 / 1e-10);
    EXPECT_EQ(THROWN_TEXT(sweep(dmat{{0, 1}, {1, 0}}, ivec{0})), singular);

    // A plain less-than: a NaN pivot goes through.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(sweep(dmat{{nan}}, ivec{0})[0][0]));
}
