#include "multivariate/pca.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "../support/tables.hpp"
#include "numeric/decompositions.hpp"
#include "numeric/random.hpp"

using namespace zentable;

namespace {

// Six variables made from two factors and noise.
dmat factor_data(std::size_t n, unsigned long seed) {
    MersenneTwister g(seed);
    const double weights[6][2] = {{0.9, 0.1}, {0.8, 0.3},  {0.7, -0.2},
                                  {0.2, 0.9}, {-0.1, 0.8}, {0.3, 0.7}};
    dmat x(n, dvec(6));
    for (dvec& row : x) {
        const double f1 = normal_draw(g), f2 = normal_draw(g);
        for (std::size_t v = 0; v < 6; ++v)
            row[v] = 3.0 + weights[v][0] * f1 + weights[v][1] * f2 + 0.4 * normal_draw(g);
    }
    return x;
}

CellMatrix headed(const dmat& x) {
    std::vector<std::string> names;
    for (std::size_t v = 0; v < x[0].size(); ++v)
        names.push_back("x" + std::to_string(v + 1));
    return zentable::testing::table_with_header(names, x);
}

dmat block(const CellMatrix& r, std::size_t top, std::size_t left, std::size_t rows,
           std::size_t columns) {
    dmat a(rows, dvec(columns));
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = 0; j < columns; ++j)
            a[i][j] = r(top + i, left + j).NumericValue();
    return a;
}

}  // namespace

TEST(PCA, DecomposesTheCovarianceOfTwoPasses) {
    const dmat x = factor_data(50, 4);
    const std::size_t p = 6, n = x.size();
    const CellMatrix r = PCA(headed(x), CellMatrix(1, 1));
    const dmat m = block(r, 3, 1, p, p);
    std::vector<long double> mean(p, 0.0L);
    for (const dvec& row : x)
        for (std::size_t a = 0; a < p; ++a)
            mean[a] += row[a] / static_cast<long double>(n);
    for (std::size_t a = 0; a < p; ++a) {
        for (std::size_t b = 0; b < p; ++b) {
            long double s = 0.0L;
            for (const dvec& row : x)
                s += (row[a] - mean[a]) * (row[b] - mean[b]);
            EXPECT_NEAR(m[a][b], static_cast<double>(s / n), 1e-12);
        }
    }
    const dmat eigen = block(r, p + 5, 1, p, 3);
    const dmat v = block(r, 2 * p + 7, 1, p, p);
    double sum = 0.0, proportions = 0.0, trace = 0.0;
    for (std::size_t a = 0; a < p; ++a) {
        sum += eigen[a][0];
        proportions += eigen[a][1];
        trace += m[a][a];
        for (std::size_t b = 0; b < p; ++b) {
            double dot = 0.0;
            for (std::size_t i = 0; i < p; ++i)
                dot += v[i][a] * v[i][b];
            EXPECT_NEAR(dot, a == b ? 1.0 : 0.0, 1e-12);
        }
    }
    EXPECT_NEAR(sum, trace, 1e-12 * trace);
    EXPECT_NEAR(proportions, 1.0, 1e-12);
    EXPECT_NEAR(eigen[p - 1][2], 1.0, 1e-12);
}

// The rotation moves loadings within each variable's row space: communalities
// and A A-transpose stay, and the variance explained adds up to them.
TEST(FactorAnalysis, RotationKeepsCommunalities) {
    const dmat x = factor_data(80, 8);
    const std::size_t p = 6;
    for (std::size_t k : {2u, 3u, 6u}) {
        const CellMatrix r =
            factor_analysis(headed(x), CellMatrix(static_cast<double>(k)), CellMatrix("corr"));
        const dmat m = block(r, 3, 1, p, p);
        const dmat a = block(r, 2 * p + 9, 1, p, k + 1);
        const dmat rot = block(r, 3 * p + 11, 1, p, k + 1);
        const dmat explained = block(r, 4 * p + 13, 1, 1, k + 1);
        double communalities = 0.0;
        for (std::size_t i = 0; i < p; ++i) {
            communalities += a[i][k];
            EXPECT_NEAR(rot[i][k], a[i][k], 1e-12);
            if (k == p) {
                EXPECT_NEAR(a[i][k], m[i][i], 1e-12);
            }
            for (std::size_t j = 0; j < p; ++j) {
                double aa = 0.0, rr = 0.0;
                for (std::size_t f = 0; f < k; ++f) {
                    aa += a[i][f] * a[j][f];
                    rr += rot[i][f] * rot[j][f];
                }
                EXPECT_NEAR(rr, aa, 1e-12);
            }
        }
        EXPECT_NEAR(explained[0][k], communalities, 1e-12 * communalities);
    }
}

// For two factors the order of the elementwise products used here and the
// usual cube less Z D have the same fixed points: the usual iteration, run to
// convergence here, gives the same rotated loadings.
TEST(FactorAnalysis, TwoFactorsAgreeWithTheUsualVarimax) {
    const dmat x = factor_data(200, 15);
    const std::size_t p = 6, k = 2;
    const CellMatrix r = factor_analysis(headed(x), CellMatrix(2.0), CellMatrix("CORR"));
    const dmat a = block(r, 2 * p + 9, 1, p, k);
    const dmat rot = block(r, 3 * p + 11, 1, p, k);

    dmat b = a;
    for (dvec& row : b) {
        const double h = std::sqrt(row[0] * row[0] + row[1] * row[1]);
        row[0] /= h;
        row[1] /= h;
    }
    dmat t = identity(2);
    for (int round = 0; round < 1000; ++round) {
        const dmat z = mat_mul(b, t);
        double d[2] = {0.0, 0.0};
        for (const dvec& row : z)
            for (std::size_t f = 0; f < k; ++f)
                d[f] += row[f] * row[f] / p;
        dmat g(p, dvec(k));
        for (std::size_t i = 0; i < p; ++i)
            for (std::size_t f = 0; f < k; ++f)
                g[i][f] = z[i][f] * z[i][f] * z[i][f] - z[i][f] * d[f];
        const SVD svd = svdDecomp(mat_mul(transpose(b), g));
        t = mat_mul(svd.u, transpose(svd.v));
    }
    const dmat expected = mat_mul(a, t);
    double largest = 0.0;
    for (const dvec& row : expected)
        for (double v : row)
            largest = std::max(largest, std::fabs(v));
    for (std::size_t i = 0; i < p; ++i)
        for (std::size_t f = 0; f < k; ++f)
            EXPECT_NEAR(rot[i][f], expected[i][f], 1e-5 * largest);
}
