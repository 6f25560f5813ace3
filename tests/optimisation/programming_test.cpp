#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "optimisation/lcp.hpp"
#include "optimisation/linear_prog.hpp"

namespace zentable {
namespace {

std::string failure_of(const dvec& c, const dmat& a, const dvec& b, int le, int ge, int eq) {
    try {
        simplex_maximise(c, a, b, le, ge, eq);
    } catch (const char* text) {
        return text;
    }
    return "";
}

TEST(Simplex, GuardsItsOwnInput) {
    const dmat a = {{1.0, 1.0}};
    EXPECT_EQ(failure_of({1.0, 1.0}, a, {2.0}, 1, 1, 0), "Bad input constraint counts in simplx");
    EXPECT_EQ(failure_of({1.0, 1.0}, a, {-2.0}, 1, 0, 0), "Bad input tableau in simplx");
}

// Traced by hand: y enters first (coefficient 5) on the row 2y <= 12, then x
// on 3x + 2y <= 18; "<=" rows alone start feasible and take no phase-one pivot.
TEST(Simplex, LessOrEqualRowsOnlyGoStraightToPhaseTwo) {
    const LinearProgramResult r = simplex_maximise({3.0, 5.0}, {{1.0, 0.0}, {0.0, 2.0}, {3.0, 2.0}},
                                                   {4.0, 12.0, 18.0}, 3, 0, 0);
    ASSERT_EQ(r.status, SimplexStatus::optimal);
    EXPECT_EQ(r.pivots, 2);
    EXPECT_EQ(r.objective, 36.0);
}

// w = M z + q must be complementary for M positive definite, whether or not
// it is symmetric: Lemke's method cannot end on a ray for such M.
TEST(Lemke, ComplementaryOnRandomPositiveDefiniteMatrices) {
    std::mt19937 generator(2024);
    std::normal_distribution<double> normal(0.0, 1.0);
    for (int trial = 0; trial < 40; ++trial) {
        const std::size_t n = 2 + static_cast<std::size_t>(trial % 9);
        const bool symmetric = trial % 2 == 0;
        dmat b(n, dvec(n));
        dmat skew(n, dvec(n, 0.0));
        for (auto& row : b)
            for (double& v : row)
                v = normal(generator);
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = i + 1; j < n; ++j) {
                skew[i][j] = symmetric ? 0.0 : 2.0 * normal(generator);
                skew[j][i] = -skew[i][j];
            }
        dmat m(n, dvec(n, 0.0));
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0; j < n; ++j) {
                for (std::size_t k = 0; k < n; ++k)
                    m[i][j] += b[k][i] * b[k][j];
                m[i][j] += (i == j ? 0.5 : 0.0) + skew[i][j];
            }
        dvec q(n);
        for (double& v : q)
            v = 3.0 * normal(generator);
        const LcpResult r = lemke(m, q);
        ASSERT_TRUE(r.solved) << "trial " << trial;
        double gap = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            double w = q[i];
            for (std::size_t j = 0; j < n; ++j)
                w += m[i][j] * r.z[j];
            EXPECT_GE(w, -1e-9) << "trial " << trial;
            EXPECT_GE(r.z[i], 0.0) << "trial " << trial;
            gap += w * r.z[i];
        }
        EXPECT_LE(std::fabs(gap), 1e-9) << "trial " << trial;
    }
}

}  // namespace
}  // namespace zentable
