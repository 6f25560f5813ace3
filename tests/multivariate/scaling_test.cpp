#include "multivariate/scaling.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <utility>

#include "numeric/random.hpp"

using namespace zentable;

namespace {

dmat random_points(std::size_t n, std::size_t q, unsigned long seed) {
    MersenneTwister g(seed);
    dmat x(n, dvec(q));
    for (dvec& point : x)
        for (double& c : point)
            c = 10.0 * uniform_draw(g) - 5.0;
    return x;
}

double distance(const dvec& a, const dvec& b) {
    double s = 0.0;
    for (std::size_t c = 0; c < a.size(); ++c)
        s += (a[c] - b[c]) * (a[c] - b[c]);
    return std::sqrt(s);
}

dmat distances(const dmat& x) {
    dmat d(x.size(), dvec(x.size()));
    for (std::size_t r = 0; r < x.size(); ++r)
        for (std::size_t s = 0; s < x.size(); ++s)
            d[r][s] = distance(x[r], x[s]);
    return d;
}

}  // namespace

// Points in three dimensions come back, up to a rotation, with their distances.
TEST(Cmds, GivesBackTheDistancesOfPointsInItsDimension) {
    const dmat d = distances(random_points(8, 3, 17));
    const dmat x = classical_scaling(d, 3);
    for (std::size_t r = 0; r < 8; ++r)
        for (std::size_t s = 0; s < 8; ++s)
            EXPECT_NEAR(distance(x[r], x[s]), d[r][s], 1e-10);
}

// Distances of points in the plane are reproduced after 100 rounds, with
// each column centred.
TEST(Mds, ReproducesPlanarDistances) {
    const dmat d = distances(random_points(6, 2, 23));
    const dmat y = sammon_mapping(d, 2, 100, 3);
    double stress = 0.0, scale = 0.0;
    for (std::size_t r = 0; r < 6; ++r) {
        for (std::size_t s = r + 1; s < 6; ++s) {
            const double e = d[r][s] - distance(y[r], y[s]);
            stress += e * e / d[r][s];
            scale += d[r][s];
        }
    }
    EXPECT_LT(stress / scale, 1e-9);
    for (std::size_t c = 0; c < 2; ++c) {
        double sum = 0.0;
        for (const dvec& point : y)
            sum += point[c];
        EXPECT_NEAR(sum, 0.0, 1e-12);
    }
}

// One round on two points, by the formulas: the start from MT19937 of seed
// 5489 (its published first outputs), the shuffles from the 15-bit step, a
// = 0.01^0 = 1, then the two corrections in the order of the first list and
// the centring.
TEST(Mds, OneRoundOnTwoPointsFollowsTheFormula) {
    const double m = 2.0;
    double y[2] = {(3499211612.0 + 0.5) * 2.3283064365386963e-10 * m,
                   (581869302.0 + 0.5) * 2.3283064365386963e-10 * m};
    std::uint32_t state = 5489;
    state = state * 214013u + 2531011u;
    const int first_draw = static_cast<int>((state >> 16) & 0x7FFF);
    // Swapping entry 1 with entry draw mod 2 leaves {0, 1} for an odd draw.
    const int order[2] = {first_draw % 2 == 1 ? 0 : 1, first_draw % 2 == 1 ? 1 : 0};
    for (int r : order) {
        const int s = 1 - r;
        const double dist = std::fabs(y[r] - y[s]);
        const double f = (2.0 - dist) * (1.0 * 0.5) / (dist + m * 1e-10);
        const double e = (y[r] - y[s]) * f;
        y[r] += e;
        y[s] -= e;
    }
    const double mean = (y[0] + y[1]) / 2;
    const dmat got = sammon_mapping({{0, 2}, {2, 0}}, 1, 1, 5489);
    EXPECT_DOUBLE_EQ(got[0][0], y[0] - mean);
    EXPECT_DOUBLE_EQ(got[1][0], y[1] - mean);
}
