#include "numeric/symmetric_eigen.hpp"

#include <gtest/gtest.h>

#include "thrown_text.hpp"

#include <cmath>
#include <limits>
#include <string>

using namespace zentable;

namespace {

// Each column is a unit eigenvector of a for its value, and the columns are
// orthogonal.
void expect_eigenpairs(const dmat& a, const EigenPairs& e, double tol) {
    const std::size_t n = a.size();
    ASSERT_EQ(e.values.size(), n);
    ASSERT_EQ(e.vectors.size(), n);
    for (std::size_t j = 0; j < n; ++j) {
        for (std::size_t i = 0; i < n; ++i) {
            double av = 0.0;
            for (std::size_t k = 0; k < n; ++k)
                av += a[i][k] * e.vectors[k][j];
            EXPECT_NEAR(av, e.values[j] * e.vectors[i][j], tol) << "pair " << j << " row " << i;
        }
        for (std::size_t k = 0; k < n; ++k) {
            double vv = 0.0;
            for (std::size_t i = 0; i < n; ++i)
                vv += e.vectors[i][j] * e.vectors[i][k];
            EXPECT_NEAR(vv, j == k ? 1.0 : 0.0, tol) << "columns " << j << ", " << k;
        }
    }
}

}  // namespace

TEST(SymmetricEigen, ClosedFormEigenvalues) {
    // [[2, 1], [1, 2]]: 3 along (1, 1), 1 along (1, -1).
    const dmat a2{{2, 1}, {1, 2}};
    const EigenPairs e2 = symmetricEigen(a2);
    EXPECT_NEAR(e2.values[0], 3.0, 1e-14);
    EXPECT_NEAR(e2.values[1], 1.0, 1e-14);
    EXPECT_NEAR(std::fabs(e2.vectors[0][0]), std::sqrt(0.5), 1e-14);
    EXPECT_NEAR(e2.vectors[0][0], e2.vectors[1][0], 1e-14);
    EXPECT_NEAR(e2.vectors[0][1], -e2.vectors[1][1], 1e-14);
    expect_eigenpairs(a2, e2, 1e-14);

    // The second-difference matrix: 2 - 2 cos(k pi / 4), k = 1, 2, 3.
    const dmat a3{{2, -1, 0}, {-1, 2, -1}, {0, -1, 2}};
    const EigenPairs e3 = symmetricEigen(a3);
    EXPECT_NEAR(e3.values[0], 2.0 + std::sqrt(2.0), 1e-14);
    EXPECT_NEAR(e3.values[1], 2.0, 1e-14);
    EXPECT_NEAR(e3.values[2], 2.0 - std::sqrt(2.0), 1e-14);
    expect_eigenpairs(a3, e3, 1e-14);
}

TEST(SymmetricEigen, MatrixBuiltFromKnownEigenvalues) {
    // A = H diag(5, -1, 3, 0.5) H with H = I - 2 u u' / u'u a reflection; the
    // values come back largest first, with the negative one last.
    const dvec u{1, 2, -1, 3};
    const dvec lambda{5, -1, 3, 0.5};
    const double uu = 15.0;
    dmat h(4, dvec(4));
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            h[i][j] = (i == j ? 1.0 : 0.0) - 2.0 * u[i] * u[j] / uu;
    dmat a(4, dvec(4, 0.0));
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            for (int k = 0; k < 4; ++k)
                a[i][j] += h[i][k] * lambda[k] * h[j][k];
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < i; ++j)
            a[i][j] = a[j][i];  // exactly symmetric

    const EigenPairs e = symmetricEigen(a);
    EXPECT_NEAR(e.values[0], 5.0, 1e-13);
    EXPECT_NEAR(e.values[1], 3.0, 1e-13);
    EXPECT_NEAR(e.values[2], 0.5, 1e-13);
    EXPECT_NEAR(e.values[3], -1.0, 1e-13);
    expect_eigenpairs(a, e, 1e-13);
    // The eigenvector of 5 is the first column of H, up to sign.
    const double sign = e.vectors[0][0] * h[0][0] > 0 ? 1.0 : -1.0;
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(e.vectors[i][0], sign * h[i][0], 1e-13);
}

TEST(SymmetricEigen, TiesKeepIterationOrder) {
    // A diagonal matrix needs no rotation, so the iteration leaves the values
    // as 1, 3, 1 with the unit vectors; the two 1s stay in that order.
    const EigenPairs e = symmetricEigen(dmat{{1, 0, 0}, {0, 3, 0}, {0, 0, 1}});
    EXPECT_EQ(e.values, (dvec{3, 1, 1}));
    EXPECT_EQ(e.vectors, (dmat{{0, 1, 0}, {1, 0, 0}, {0, 0, 1}}));

    const EigenPairs one = symmetricEigen(dmat{{-4}});
    EXPECT_EQ(one.values, dvec{-4});
    EXPECT_EQ(one.vectors, dmat{{1}});
    EXPECT_TRUE(symmetricEigen(dmat{}).values.empty());
}

TEST(SymmetricEigen, Failures) {
    const std::string asymmetric = "The matrix must be symmetric";
    // Exactly symmetric means exactly: one unit in the last place is enough.
    EXPECT_EQ(THROWN_TEXT(symmetricEigen(dmat{{1, 2}, {std::nextafter(2.0, 3.0), 1}})), asymmetric);
    EXPECT_EQ(THROWN_TEXT(symmetricEigen(dmat{{1, 2, 3}, {2, 1, 0}})), asymmetric);

    // A NaN on the diagonal never lets the off-diagonal element look small.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(THROWN_TEXT(symmetricEigen(dmat{{nan, 1}, {1, 0}})), "Too many iterations in tqli");
}
