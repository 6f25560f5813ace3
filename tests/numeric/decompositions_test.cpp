#include "numeric/decompositions.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "../support/tables.hpp"

using namespace zentable;
using zentable::testing::thrown_text;

namespace {

dmat random_matrix(int rows, int columns, unsigned seed) {
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    dmat a(rows, dvec(columns));
    for (dvec& row : a)
        for (double& x : row)
            x = uniform(engine);
    return a;
}

// Products in long double, so that the check does not share the rounding of
// what it checks.
dmat product(const dmat& a, const dmat& b) {
    dmat c(a.size(), dvec(b[0].size()));
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t j = 0; j < b[0].size(); ++j) {
            long double s = 0.0L;
            for (std::size_t k = 0; k < b.size(); ++k)
                s += static_cast<long double>(a[i][k]) * b[k][j];
            c[i][j] = static_cast<double>(s);
        }
    return c;
}

// The largest entry of a - b relative to the largest of b.
double relative_gap(const dmat& a, const dmat& b) {
    EXPECT_EQ(a.size(), b.size());
    EXPECT_EQ(a[0].size(), b[0].size());
    double gap = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t j = 0; j < a[0].size(); ++j)
            gap = std::max(gap, std::fabs(a[i][j] - b[i][j]));
    return gap / std::max(max_abs(b), 1e-300);
}

void expect_orthonormal_columns(const dmat& q) {
    EXPECT_LT(relative_gap(product(transpose(q), q), identity(static_cast<int>(q[0].size()))),
              1e-13);
}

dmat scaled_columns(const dmat& a, const dvec& w) {
    dmat out = a;
    for (dvec& row : out)
        for (std::size_t j = 0; j < w.size(); ++j)
            row[j] *= w[j];
    return out;
}

}  // namespace

TEST(Svd, ReconstructsRandomMatricesOfEveryShape) {
    const int shapes[][2] = {{1, 1}, {6, 4}, {4, 6}, {9, 9}, {40, 25}, {1, 5}, {5, 1}};
    unsigned seed = 1;
    for (const auto& shape : shapes) {
        const dmat a = random_matrix(shape[0], shape[1], seed++);
        const SVD s = svdDecomp(a);
        const std::size_t k = std::min(shape[0], shape[1]);
        ASSERT_EQ(s.w.size(), k);
        ASSERT_EQ(s.u.size(), static_cast<std::size_t>(shape[0]));
        ASSERT_EQ(s.v.size(), static_cast<std::size_t>(shape[1]));
        EXPECT_LT(relative_gap(product(scaled_columns(s.u, s.w), transpose(s.v)), a), 1e-12)
            << shape[0] << " by " << shape[1];
        expect_orthonormal_columns(s.u);
        expect_orthonormal_columns(s.v);
        EXPECT_GE(s.w.back(), 0.0);
        EXPECT_TRUE(std::is_sorted(s.w.rbegin(), s.w.rend()));
    }
}

TEST(Svd, ClosedFormsAndOrder) {
    // [[3, 0], [4, 5]]: A'A = [[25, 20], [20, 25]] has eigenvalues 45 and 5.
    const SVD s = svdDecomp({{3, 0}, {4, 5}});
    EXPECT_NEAR(s.w[0], std::sqrt(45.0), 1e-14);
    EXPECT_NEAR(s.w[1], std::sqrt(5.0), 1e-14);

    // A diagonal matrix is sorted largest first; the vectors follow their values.
    const SVD d = svdDecomp({{1, 0, 0}, {0, -3, 0}, {0, 0, 2}});
    EXPECT_NEAR(d.w[0], 3.0, 1e-15);
    EXPECT_NEAR(d.w[1], 2.0, 1e-15);
    EXPECT_NEAR(d.w[2], 1.0, 1e-15);
    EXPECT_NEAR(std::fabs(d.u[1][0]), 1.0, 1e-15);
    EXPECT_NEAR(std::fabs(d.v[1][0]), 1.0, 1e-15);
    EXPECT_NEAR(std::fabs(d.u[2][1]), 1.0, 1e-15);
    EXPECT_NEAR(std::fabs(d.u[0][2]), 1.0, 1e-15);
    EXPECT_NEAR(d.u[1][0] * d.v[1][0], -1.0, 1e-15);  // the sign of -3 goes to one side

    // Equal singular values keep the order in which they came.
    const SVD e = svdDecomp(identity(4));
    for (int j = 0; j < 4; ++j) {
        EXPECT_NEAR(e.w[j], 1.0, 1e-15);
        EXPECT_NEAR(std::fabs(e.u[j][j]), 1.0, 1e-15) << j;
    }

    // Rank 1: u v' has one singular value |u| |v| and the rest zero.
    const SVD r = svdDecomp({{1, 2, 2}, {2, 4, 4}});
    EXPECT_NEAR(r.w[0], std::sqrt(5.0) * 3.0, 1e-14);
    EXPECT_NEAR(r.w[1], 0.0, 1e-14);
}

TEST(PseudoInverse, FourPenroseConditions) {
    // Full rank both ways round, and a 5 by 5 of rank 2.
    const dmat rank2 = product(random_matrix(5, 2, 11), random_matrix(2, 5, 12));
    for (const dmat& a : {random_matrix(5, 3, 7), random_matrix(3, 5, 8), rank2}) {
        const dmat x = pseudo_inverse(a);
        ASSERT_EQ(x.size(), a[0].size());
        ASSERT_EQ(x[0].size(), a.size());
        const dmat ax = product(a, x);
        const dmat xa = product(x, a);
        EXPECT_LT(relative_gap(product(ax, a), a), 1e-12);
        EXPECT_LT(relative_gap(product(xa, x), x), 1e-12);
        EXPECT_LT(relative_gap(transpose(ax), ax), 1e-12);
        EXPECT_LT(relative_gap(transpose(xa), xa), 1e-12);
    }
    // A column v has the pseudo-inverse v' / |v|^2.
    const dmat v = pseudo_inverse({{1}, {2}, {2}});
    EXPECT_NEAR(v[0][0], 1.0 / 9.0, 1e-15);
    EXPECT_NEAR(v[0][1], 2.0 / 9.0, 1e-15);
    EXPECT_NEAR(v[0][2], 2.0 / 9.0, 1e-15);
}

TEST(Cholesky, ReconstructsPassesSemiDefiniteAndFails) {
    // B B' + I is positive definite.
    const dmat b = random_matrix(8, 8, 21);
    dmat a = product(b, transpose(b));
    for (int i = 0; i < 8; ++i)
        a[i][i] += 1.0;
    const dmat l = cholesky(a);
    for (int i = 0; i < 8; ++i)
        for (int j = i + 1; j < 8; ++j)
            EXPECT_EQ(l[i][j], 0.0);
    EXPECT_LT(relative_gap(product(l, transpose(l)), a), 1e-12);

    // Rank 1: v v' with v = (1, 2, 3) has the factor v in its first column
    // and zero columns for the two dependent variables.
    const dmat rank1{{1, 2, 3}, {2, 4, 6}, {3, 6, 9}};
    const dmat l1 = cholesky(rank1);
    EXPECT_EQ(l1, (dmat{{1, 0, 0}, {2, 0, 0}, {3, 0, 0}}));

    // Cross-products of x1, x2 and x3 = x1 + x2: the third column is zero.
    const dmat x{{1, 0, 1}, {2, 1, 3}, {0, 3, 3}, {1, 1, 2}};
    const dmat l3 = cholesky(product(transpose(x), x));
    EXPECT_GT(l3[1][1], 0.0);
    EXPECT_EQ(l3[2][2], 0.0);
    EXPECT_LT(relative_gap(product(l3, transpose(l3)), product(transpose(x), x)), 1e-12);

    // A rounding error of -1e-15 on the diagonal passes as a zero pivot.
    const dmat rounding = cholesky({{1, 1}, {1, 1 - 1e-15}});
    EXPECT_EQ(rounding[1][1], 0.0);

    EXPECT_EQ(thrown_text([] {
                  cholesky({{1, 0.5}, {0.5 + 1e-15, 1}});
              }),
              "Cholesky decomposition failed: input matrix is not symmetric");
    // A zero pivot with a non-zero entry below it.
    EXPECT_EQ(thrown_text([] {
                  cholesky({{0, 1}, {1, 1}});
              }),
              "Cholesky decomposition failed: input matrix is not positive semi-definite");
}

TEST(Lu, ReconstructsWithPermutation) {
    for (unsigned seed : {31u, 32u, 33u}) {
        const dmat a = random_matrix(7, 7, seed);
        const LU lu = lu_decompose(a);
        EXPECT_LT(relative_gap(product(lu.l, lu.u), product(lu.p, a)), 1e-12);
        EXPECT_FALSE(lu.singular);
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(lu.l[i][i], 1.0);
            for (int j = i + 1; j < 7; ++j) {
                EXPECT_EQ(lu.l[i][j], 0.0);
                EXPECT_EQ(lu.u[j][i], 0.0);
            }
        }
    }
    // A zero in the corner forces an exchange: P swaps the two rows.
    const LU swap = lu_decompose({{0, 1}, {2, 3}});
    EXPECT_EQ(swap.p, (dmat{{0, 1}, {1, 0}}));
    EXPECT_EQ(swap.sign, -1);
    EXPECT_EQ(swap.u, (dmat{{2, 3}, {0, 1}}));

    // Implicit scaling: 2 is the larger candidate, but small against its own
    // row's 1000, so row 1 is the pivot.
    const LU scaled = lu_decompose({{2, 1000}, {1, 1}});
    EXPECT_EQ(scaled.permutation, (ivec{1, 0}));

    // Third row = first + second: singular, though no row is zero.
    EXPECT_TRUE(lu_decompose({{1, 2, 3}, {4, 5, 6}, {5, 7, 9}}).singular);
    EXPECT_EQ(thrown_text([] {
                  lu_decompose({{0, 0}, {0, 0}});
              }),
              "Singular matrix in routine ludcmp");
}

TEST(Determinant, HandWorkedAndClosedForms) {
    // By cofactors along the first row: 2 (0 + 4) + 3 (10 + 1) + 1 (8 - 0) = 49.
    EXPECT_NEAR(determinant({{2, -3, 1}, {2, 0, -1}, {1, 4, 5}}), 49.0, 49.0 * 1e-14);
    // Vandermonde: the product of x_j - x_i over i < j.
    const dvec x{1.5, -2, 3, 0.5, 4};
    dmat v(5, dvec(5));
    double expected = 1.0;
    for (int i = 0; i < 5; ++i) {
        for (int j = 0; j < 5; ++j)
            v[i][j] = std::pow(x[i], j);
        for (int j = i + 1; j < 5; ++j)
            expected *= x[j] - x[i];
    }
    EXPECT_NEAR(determinant(v), expected, std::fabs(expected) * 1e-12);
    // One exchange of rows of the identity.
    EXPECT_EQ(determinant({{0, 1, 0}, {1, 0, 0}, {0, 0, 1}}), -1.0);
    EXPECT_EQ(determinant({{1, 2, 3}, {4, 5, 6}, {5, 7, 9}}), 0.0);
    EXPECT_EQ(determinant({{1, 2}, {0, 0}}), 0.0);
}

TEST(Qr, ReconstructsRandomMatrices) {
    for (unsigned seed : {41u, 42u}) {
        const dmat a = random_matrix(6, 6, seed);
        const QR qr = qr_decompose(a);
        EXPECT_LT(relative_gap(product(qr.q, qr.r), a), 1e-12);
        expect_orthonormal_columns(qr.q);
        for (int i = 0; i < 6; ++i)
            for (int j = 0; j < i; ++j)
                EXPECT_EQ(qr.r[i][j], 0.0);
    }
    // A zero column needs no reflection; the rest still factors.
    const dmat z{{0, 1, 2}, {0, 3, 4}, {0, 5, 7}};
    const QR qz = qr_decompose(z);
    EXPECT_LT(relative_gap(product(qz.q, qz.r), z), 1e-12);
    // |R[0][0]| is the length of the first column.
    const QR q2 = qr_decompose({{3, 1}, {4, 2}});
    EXPECT_NEAR(std::fabs(q2.r[0][0]), 5.0, 1e-15);
}

TEST(BandedSolvers, SolveSystemsMadeFromKnownSolutionsAndFail) {
    // Tridiagonal: b = A x worked out row by row for x = (1, 2, 3, 4).
    // A = [[4, 1, 0, 0], [2, 5, 1, 0], [0, 1, 6, 2], [0, 0, 3, 7]].
    const dvec t = tridiagonalMatrixSolver({2, 1, 3}, {4, 5, 6, 7}, {1, 1, 2}, {6, 15, 28, 37});
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(t[i], i + 1.0, 1e-14);

    // Pentadiagonal, 6 by 6 and diagonally dominant; b = A x in long double.
    const dvec l2{1, -1, 2, 0.5}, l1{2, 1, -1, 3, 1}, d{10, 9, 11, 12, 8, 10}, u1{1, 2, -2, 1, 3},
        u2{-1, 1, 0.5, 2};
    const dvec x{1, -2, 3, 0.5, -1, 2};
    dmat a(6, dvec(6, 0.0));
    for (int i = 0; i < 6; ++i) {
        a[i][i] = d[i];
        if (i >= 1)
            a[i][i - 1] = l1[i - 1];
        if (i >= 2)
            a[i][i - 2] = l2[i - 2];
        if (i < 5)
            a[i][i + 1] = u1[i];
        if (i < 4)
            a[i][i + 2] = u2[i];
    }
    const dmat b = product(a, transpose(dmat{x}));
    dvec rhs(6);
    for (int i = 0; i < 6; ++i)
        rhs[i] = b[i][0];
    const dvec p = pentagonalMatrixSolver(l2, l1, d, u1, u2, rhs);
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(p[i], x[i], 1e-14);

    const std::string tri_bands =
        "The numbers of off-diagonal elements must be compatible with diagonal elements in "
        "tridiagonalMatrixSolver";
    EXPECT_EQ(thrown_text([] { tridiagonalMatrixSolver({1, 1}, {1, 2}, {1}, {1, 1}); }), tri_bands);
    EXPECT_EQ(thrown_text([] {
                  tridiagonalMatrixSolver({1}, {0, 2}, {1}, {1, 1});
              }),
              "tridiagonalMatrixSolver failed: rewrite equations");
    // The second pivot is 1 - 1 * 1 = 0.
    EXPECT_EQ(thrown_text([] {
                  tridiagonalMatrixSolver({1}, {1, 1}, {1}, {1, 1});
              }),
              "tridiagonalMatrixSolver failed");

    EXPECT_EQ(thrown_text([] {
                  pentagonalMatrixSolver({}, {1}, {1, 2}, {1}, {}, {1, 1});
              }),
              "The dimension of a pentagonal must be larger than or equal to 3");
    EXPECT_EQ(thrown_text([] {
                  pentagonalMatrixSolver({1, 1}, {1, 1}, {4, 4, 4}, {1, 1}, {1}, {1, 1, 1});
              }),
              "The numbers of off-diagonal elements must be compatible with diagonal elements in "
              "pentagonalMatrixSolver");
}
