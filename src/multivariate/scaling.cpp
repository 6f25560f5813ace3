#include "multivariate/scaling.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

#include "numeric/random.hpp"
#include "numeric/symmetric_eigen.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kNotSquare = "Input distance matrix must be a square matrix";
constexpr const char* kBadDim = "dim must be a positive integer";
constexpr const char* kDimAbovePoints = "dim cannot be more than the number of points";
constexpr const char* kBadIterations = "maxIteration must be a positive integer";
constexpr const char* kBadSeed = "Input seed must be a non-negative integer";
constexpr const char* kNoSolution = "There is no solution in cmds()";

std::size_t square_size(const CellMatrix& distanceMatrix) {
    const std::size_t n = distanceMatrix.RowsInStructure();
    if (n == 0 || n != distanceMatrix.ColumnsInStructure())
        throw kNotSquare;
    return n;
}

int read_positive(const CellMatrix& table, const char* message) {
    int value = 0;
    read_int_required(table, message, value);
    if (value < 1)
        throw message;
    return value;
}

CellMatrix point_table(const dmat& points) {
    const std::size_t columns = points.empty() ? 0 : points[0].size();
    CellMatrix r(points.size(), columns);
    for (std::size_t i = 0; i < points.size(); ++i)
        for (std::size_t c = 0; c < columns; ++c)
            r(i, c) = points[i][c];
    return r;
}

// Shuffles by swapping entry i, from the last down to 1, with entry
// rand15() mod (i + 1).
void shuffle(std::vector<std::size_t>& list) {
    for (std::size_t i = list.size(); i-- > 1;)
        std::swap(list[i], list[static_cast<std::size_t>(rand15()) % (i + 1)]);
}

}  // namespace

dmat classical_scaling(const dmat& distance, int dim) {
    const std::size_t n = distance.size();
    // B is made symmetric below, so an unsymmetric D must fail here, where
    // the eigen-decomposition of J A J would have failed.
    for (std::size_t r = 0; r < n; ++r)
        for (std::size_t s = 0; s < r; ++s)
            if (distance[r][s] != distance[s][r])
                throw "The matrix must be symmetric";
    const double share = 1.0 / static_cast<double>(n);
    dmat j = identity(static_cast<int>(n));
    dmat a(n, dvec(n));
    for (std::size_t r = 0; r < n; ++r) {
        for (std::size_t s = 0; s < n; ++s) {
            j[r][s] -= share;
            a[r][s] = -0.5 * distance[r][s] * distance[r][s];
        }
    }
    dmat b = mat_mul(mat_mul(j, a), j);
    // The two products round the mirror entries differently; the upper
    // triangle stands for both, as the eigen-decomposition wants exact symmetry.
    for (std::size_t r = 0; r < n; ++r)
        for (std::size_t s = 0; s < r; ++s)
            b[r][s] = b[s][r];
    const EigenPairs eigen = symmetricEigen(b);
    if (!(eigen.values[0] > 0.0))
        throw kNoSolution;
    const auto q = static_cast<std::size_t>(dim);
    dmat x(n, dvec(q));
    for (std::size_t c = 0; c < q; ++c) {
        // A column of a negative eigenvalue comes out as NaN: the distances
        // are then not those of any points in a real space of that many
        // dimensions.
        const double scale = std::sqrt(eigen.values[c]);
        for (std::size_t r = 0; r < n; ++r)
            x[r][c] = eigen.vectors[r][c] * scale;
    }
    return x;
}

dmat sammon_mapping(const dmat& distance, int dim, int iterations, std::uint32_t seed) {
    const std::size_t n = distance.size();
    const auto q = static_cast<std::size_t>(dim);
    double largest = distance[0][0];
    for (const dvec& row : distance)
        for (double d : row)
            largest = std::max(largest, d);

    MersenneTwister generator(seed);
    dmat y(n, dvec(q));
    for (dvec& point : y)
        for (double& c : point)
            c = uniform_draw(generator) * largest;
    seed_rand15(seed);

    std::vector<std::size_t> first(n), second(n);
    std::iota(first.begin(), first.end(), std::size_t{0});
    std::iota(second.begin(), second.end(), std::size_t{0});
    // Keeps a correction finite when two points meet.
    const double floor = largest * 1e-10;
    for (int t = 0; t < iterations; ++t) {
        const double step = std::pow(0.01, static_cast<double>(t) / iterations);
        shuffle(first);
        shuffle(second);
        for (std::size_t r : first) {
            for (std::size_t s : second) {
                if (s == r)
                    continue;
                dvec& yr = y[r];
                dvec& ys = y[s];
                double squares = 0.0;
                for (std::size_t c = 0; c < q; ++c)
                    squares += (yr[c] - ys[c]) * (yr[c] - ys[c]);
                const double d = std::sqrt(squares);
                const double f = (distance[r][s] - d) * (step * 0.5) / (d + floor);
                for (std::size_t c = 0; c < q; ++c) {
                    const double e = (yr[c] - ys[c]) * f;
                    yr[c] += e;
                    ys[c] -= e;
                }
            }
        }
    }
    for (std::size_t c = 0; c < q; ++c) {
        double sum = 0.0;
        for (const dvec& point : y)
            sum += point[c];
        const double mean = sum / static_cast<double>(n);
        for (dvec& point : y)
            point[c] -= mean;
    }
    return y;
}

CellMatrix cmds(const CellMatrix& distanceMatrix, const CellMatrix& dim) {
    const std::size_t n = square_size(distanceMatrix);
    const int q = read_positive(dim, kBadDim);
    // Beyond n there are no more eigenvectors to give.
    if (static_cast<std::size_t>(q) > n)
        throw kDimAbovePoints;
    return point_table(classical_scaling(read_numeric_matrix(distanceMatrix), q));
}

CellMatrix mds(const CellMatrix& distanceMatrix, const CellMatrix& dim,
               const CellMatrix& maxIteration, const CellMatrix& seed) {
    square_size(distanceMatrix);
    const int q = read_positive(dim, kBadDim);
    const int iterations = read_positive(maxIteration, kBadIterations);
    int seed_value = 0;
    read_int(seed, kBadSeed, seed_value);
    if (seed_value < 0)
        throw kBadSeed;
    // The timer's seed, when asked for, serves both the start and the
    // shuffles, as a given seed does.
    const auto used = static_cast<std::uint32_t>(
        seed_value > 0 ? static_cast<unsigned long>(seed_value) : timer_seed());
    return point_table(sammon_mapping(read_numeric_matrix(distanceMatrix), q, iterations, used));
}

}  // namespace zentable
