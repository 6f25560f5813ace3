#include "numeric/random.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <string>

#include "../support/render.hpp"
#include "../support/tables.hpp"
#include "../xlw/table_builder.hpp"
#include "numeric/latin_hypercube.hpp"
#include "numeric/matrix_random.hpp"

using namespace zentable;
using zentable::testing::make_table;
using zentable::testing::render;
using zentable::testing::thrown_text;

namespace {

const CellMatrix kOmitted(1, 1);

CellMatrix number(double x) {
    return CellMatrix(x);
}

CellMatrix random_table(double rows, double columns, const CellMatrix& dist, const CellMatrix& corr,
                        const CellMatrix& lower, const CellMatrix& upper, double seed) {
    return matrix_random(number(rows), number(columns), dist, corr, lower, upper, number(seed));
}

}  // namespace

TEST(MersenneTwister, SeededDrawsAreTheStandardEngineAndZeroIsTheClock) {
    // The standard library's mt19937 is an independent MT19937.
    for (unsigned long seed : {1ul, 5489ul, 4294967295ul}) {
        MersenneTwister generator(seed);
        std::mt19937 reference(static_cast<std::mt19937::result_type>(seed));
        for (int i = 0; i < 1000; ++i)
            ASSERT_EQ(generator.next(), reference()) << "seed " << seed << " draw " << i;
    }
    MersenneTwister generator(42);
    std::mt19937 reference(42);
    for (int i = 0; i < 1000; ++i) {
        const double u = uniform_draw(generator);
        ASSERT_EQ(u, (reference() + 0.5) / 4294967296.0);
    }

    MersenneTwister first(0);
    MersenneTwister second(0);
    bool differ = false;
    for (int i = 0; i < 4; ++i)
        differ = differ || first.next() != second.next();
    EXPECT_TRUE(differ);
}

TEST(MatrixRandom, SeedsAndDistributions) {
    const CellMatrix a = random_table(4, 3, kOmitted, kOmitted, kOmitted, kOmitted, 17);
    EXPECT_EQ(render(a), render(random_table(4, 3, kOmitted, kOmitted, kOmitted, kOmitted, 17)));
    EXPECT_NE(render(random_table(4, 3, kOmitted, kOmitted, kOmitted, kOmitted, 0)),
              render(random_table(4, 3, kOmitted, kOmitted, kOmitted, kOmitted, 0)));
    // Uniform draws, row by row, from the seeded engine.
    std::mt19937 reference(17);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_EQ(a(i, j).NumericValue(), (reference() + 0.5) / 4294967296.0);

    // Every integer from lower to upper, and nothing else.
    const CellMatrix d =
        random_table(400, 5, CellMatrix("discrete_uniform"), kOmitted, number(-2), number(3), 5);
    std::set<double> seen;
    for (int i = 0; i < 400; ++i)
        for (int j = 0; j < 5; ++j)
            seen.insert(d(i, j).NumericValue());
    EXPECT_EQ(seen, (std::set<double>{-2, -1, 0, 1, 2, 3}));
}

TEST(MatrixRandom, CorrelatedNormalColumns) {
    // GAUSSIAN reads as NORMAL; the columns take the correlation given.
    const CellMatrix t = random_table(20000, 3, CellMatrix("Gaussian"),
                                      make_table({{1, 0.8, -0.3}, {0.8, 1, 0}, {-0.3, 0, 1}}),
                                      kOmitted, kOmitted, 99);
    const int n = 20000;
    double s[3] = {0, 0, 0};
    double ss[3][3] = {};
    for (int i = 0; i < n; ++i)
        for (int a = 0; a < 3; ++a) {
            s[a] += t(i, a).NumericValue();
            for (int b = 0; b < 3; ++b)
                ss[a][b] += t(i, a).NumericValue() * t(i, b).NumericValue();
        }
    auto cov = [&](int a, int b) { return ss[a][b] / n - s[a] / n * s[b] / n; };
    EXPECT_NEAR(cov(0, 0), 1.0, 0.04);
    EXPECT_NEAR(cov(1, 1), 1.0, 0.04);
    EXPECT_NEAR(cov(0, 1) / std::sqrt(cov(0, 0) * cov(1, 1)), 0.8, 0.015);
    EXPECT_NEAR(cov(0, 2) / std::sqrt(cov(0, 0) * cov(2, 2)), -0.3, 0.025);
    EXPECT_NEAR(cov(1, 2) / std::sqrt(cov(1, 1) * cov(2, 2)), 0.0, 0.025);
}

TEST(MatrixRandom, Messages) {
    auto fails = [](double rows, double columns, const CellMatrix& dist, const CellMatrix& corr,
                    const CellMatrix& lower, const CellMatrix& upper, double seed) {
        return thrown_text([&] { random_table(rows, columns, dist, corr, lower, upper, seed); });
    };
    EXPECT_EQ(fails(0, 2, kOmitted, kOmitted, kOmitted, kOmitted, 1),
              "Input nrows must be a positive integer");
    EXPECT_EQ(fails(2, -1, kOmitted, kOmitted, kOmitted, kOmitted, 1),
              "Input ncols must be a positive integer");
    EXPECT_EQ(fails(2, 2, CellMatrix("POISSON"), kOmitted, kOmitted, kOmitted, 1),
              "Valid distribution is UNIFORM, NORMAL, or DISCRETE_UNIFORM");
    EXPECT_EQ(fails(2, 2, kOmitted, make_table({{1, 0.5}}), kOmitted, kOmitted, 1),
              "correlation matrix must be a square matrix");
    EXPECT_EQ(fails(2, 2, kOmitted, make_table({{1, 0.5}, {0.4, 1}}), kOmitted, kOmitted, 1),
              "correlation matrix must be a symmetric matrix");
    EXPECT_EQ(fails(2, 3, kOmitted, make_table({{1, 0.5}, {0.5, 1}}), kOmitted, kOmitted, 1),
              "number of columns is not the same as the dimension of correlation matrix");
    EXPECT_EQ(
        fails(2, 2, CellMatrix("NORMAL"), make_table({{1, 2}, {2, 1}}), kOmitted, kOmitted, 1),
        "Cholesky decomposition failed: input matrix is not positive semi-definite");
    EXPECT_EQ(fails(2, 2, kOmitted, kOmitted, number(1.5), kOmitted, 1),
              "Input lower must be an integer");
    EXPECT_EQ(fails(2, 2, kOmitted, kOmitted, kOmitted, CellMatrix("ten"), 1),
              "Input upper must be an integer");
    EXPECT_EQ(fails(2, 2, kOmitted, kOmitted, number(3), number(3), 1),
              "Input lower must be less than input upper");
    EXPECT_EQ(fails(2, 2, kOmitted, kOmitted, kOmitted, kOmitted, -1),
              "Input seed must be a non-negative integer");
}

TEST(LatinHypercube, CongruentialStepIsTheMinimalStandard) {
    // Park and Miller's minimal standard generator from seed 1: 16807,
    // 282475249, 1622650073, and 1043618065 after 10000 steps.
    int seed = 1;
    i4_uniform_ab(1, 10, seed);
    EXPECT_EQ(seed, 16807);
    i4_uniform_ab(1, 10, seed);
    EXPECT_EQ(seed, 282475249);
    i4_uniform_ab(1, 10, seed);
    EXPECT_EQ(seed, 1622650073);
    seed = 1;
    std::set<int> values;
    for (int i = 0; i < 10000; ++i)
        values.insert(i4_uniform_ab(7, -2, seed));
    EXPECT_EQ(seed, 1043618065);
    EXPECT_EQ(values.size(), 10u);  // -2 to 7, both ends included
    EXPECT_EQ(*values.begin(), -2);
    EXPECT_EQ(*values.rbegin(), 7);
}

TEST(LatinHypercubeDeathTest, SeedZeroEndsTheProcess) {
    int zero = 0;
    EXPECT_EXIT(i4_uniform_ab(1, 5, zero), ::testing::ExitedWithCode(1),
                "I4_UNIFORM_AB - Fatal error!\n  Input value of SEED = 0.\n");
}

TEST(LatinHypercube, EveryValueOncePerDimension) {
    for (int dimension : {1, 2, 4}) {
        for (int numbers : {1, 2, 7, 20}) {
            int seed = 123;
            const std::vector<ivec> points = ihs(dimension, numbers, 5, seed);
            ASSERT_EQ(points.size(), static_cast<std::size_t>(numbers));
            for (int d = 0; d < dimension; ++d) {
                std::set<int> column;
                for (const ivec& p : points)
                    column.insert(p[d]);
                EXPECT_EQ(column.size(), static_cast<std::size_t>(numbers));
                EXPECT_EQ(*column.begin(), 1);
                EXPECT_EQ(*column.rbegin(), numbers);
            }
        }
    }
}

TEST(LatinHypercube, ReportLayout) {
    const CellMatrix t = Latin_hypercube(number(3), number(3), number(7), CellMatrix("*"));
    // Title, blank, Points, header, 3 points, blank, Latin Squares, then three
    // grids of 3 + 2 rows with a blank between, the blank and closing line.
    ASSERT_EQ(t.RowsInStructure(), 7u + 2u + 3u * 5u + 2u + 2u);
    ASSERT_EQ(t.ColumnsInStructure(), 4u);
    EXPECT_EQ(t(0, 0).StringValue(), "Latin Hypercube Sampling");
    EXPECT_EQ(t(2, 0).StringValue(), "Points");
    EXPECT_EQ(t(3, 0).StringValue(), "Point");
    EXPECT_EQ(t(3, 3).StringValue(), "Dimension 3");
    EXPECT_EQ(t(8, 0).StringValue(), "Latin Squares");
    EXPECT_EQ(t(9, 0).StringValue(), "Dimension 1 by Dimension 2");
    EXPECT_EQ(t(15, 0).StringValue(), "Dimension 1 by Dimension 3");
    EXPECT_EQ(t(21, 0).StringValue(), "Dimension 2 by Dimension 3");
    EXPECT_EQ(t(t.RowsInStructure() - 1, 0).StringValue(), "End of output: Latin_hypercube");
    // Each grid marks exactly the points' pairs of values.
    const int firsts[3][2] = {{0, 1}, {0, 2}, {1, 2}};
    for (int g = 0; g < 3; ++g) {
        const std::size_t top = 9 + 6 * g;
        std::set<std::pair<int, int>> marked;
        for (int r = 1; r <= 3; ++r) {
            EXPECT_EQ(t(top + 1, r).NumericValue(), r);
            EXPECT_EQ(t(top + 1 + r, 0).NumericValue(), r);
            for (int c = 1; c <= 3; ++c)
                if (t(top + 1 + r, c).IsString()) {
                    EXPECT_EQ(t(top + 1 + r, c).StringValue(), "*");
                    marked.insert({r, c});
                }
        }
        std::set<std::pair<int, int>> expected;
        for (int p = 0; p < 3; ++p)
            expected.insert({static_cast<int>(t(4 + p, 1 + firsts[g][0]).NumericValue()),
                             static_cast<int>(t(4 + p, 1 + firsts[g][1]).NumericValue())});
        EXPECT_EQ(marked, expected) << "grid " << g;
    }
}

TEST(LatinHypercube, SeedsAndMessages) {
    auto draw = [](double seed) {
        return render(Latin_hypercube(number(12), number(3), number(seed), kOmitted));
    };
    EXPECT_EQ(draw(5), draw(5));
    EXPECT_NE(draw(5), draw(6));
    EXPECT_NE(draw(0), draw(0));
    // The default seed is 100 and the default mark X.
    EXPECT_EQ(render(Latin_hypercube(number(12), number(3), kOmitted, kOmitted)), draw(100));
    EXPECT_NE(draw(100).find("'X'"), std::string::npos);
    // With one dimension there is no pair, so no Latin squares.
    EXPECT_EQ(Latin_hypercube(number(4), number(1), kOmitted, kOmitted).RowsInStructure(), 10u);

    EXPECT_EQ(thrown_text([] { Latin_hypercube(number(0), number(2), kOmitted, kOmitted); }),
              "Input numbers must be a positive integer");
    EXPECT_EQ(thrown_text([] { Latin_hypercube(number(3), kOmitted, kOmitted, kOmitted); }),
              "Input dimension must be a positive integer");
    EXPECT_EQ(thrown_text([] { Latin_hypercube(number(3), number(2), number(-4), kOmitted); }),
              "Input seed must be a non-negative integer");
}
