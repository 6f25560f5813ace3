#include "numeric/matrix_random.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string>

#include "numeric/decompositions.hpp"
#include "numeric/random.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

RandomDistribution read_distribution(const CellMatrix& dist) {
    constexpr const char* kMessage = "Valid distribution is UNIFORM, NORMAL, or DISCRETE_UNIFORM";
    std::string name = "UNIFORM";
    read_text(dist, kMessage, name);
    name = trim(name);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (name == "UNIFORM")
        return RandomDistribution::uniform;
    if (name == "NORMAL" || name == "GAUSSIAN")
        return RandomDistribution::normal;
    if (name == "DISCRETE_UNIFORM")
        return RandomDistribution::discrete_uniform;
    throw kMessage;
}

// An optional whole number; a fraction fails as well as a text.
int read_whole(const CellMatrix& table, const char* message, int value) {
    double x = value;
    read_double(table, message, x);
    if (std::floor(x) != x || x < -2147483648.0 || x > 2147483647.0)
        throw message;
    return static_cast<int>(x);
}

int read_positive(const CellMatrix& table, const char* message) {
    int n = 0;
    read_int_required(table, message, n);
    if (n < 1)
        throw message;
    return n;
}

}  // namespace

dmat random_matrix(int nrows, int ncols, RandomDistribution dist, const dmat& corr_factor,
                   int lower, int upper, unsigned long seed) {
    MersenneTwister generator(seed);
    dmat out(nrows, dvec(ncols));
    // In double: upper - lower + 1 may pass the range of int.
    const double span = static_cast<double>(upper) - lower + 1.0;
    dvec draws(ncols);
    for (dvec& row : out) {
        switch (dist) {
            case RandomDistribution::uniform:
                for (double& x : row)
                    x = uniform_draw(generator);
                break;
            case RandomDistribution::discrete_uniform:
                // The draw is below 1, so the floor never reaches span.
                for (double& x : row)
                    x = lower + std::floor(uniform_draw(generator) * span);
                break;
            case RandomDistribution::normal:
                for (double& z : draws)
                    z = normal_draw(generator);
                if (corr_factor.empty()) {
                    row = draws;
                } else {
                    for (int i = 0; i < ncols; ++i) {
                        double sum = 0.0;
                        for (int k = 0; k <= i; ++k)
                            sum += corr_factor[i][k] * draws[k];
                        row[i] = sum;
                    }
                }
                break;
        }
    }
    return out;
}

CellMatrix matrix_random(const CellMatrix& nrows, const CellMatrix& ncols, const CellMatrix& dist,
                         const CellMatrix& corr, const CellMatrix& lower, const CellMatrix& upper,
                         const CellMatrix& seed) {
    const int rows = read_positive(nrows, "Input nrows must be a positive integer");
    const int columns = read_positive(ncols, "Input ncols must be a positive integer");
    const RandomDistribution distribution = read_distribution(dist);

    dmat factor;
    if (!is_omitted(corr)) {
        const dmat c = read_numeric_matrix(corr);
        const std::size_t n = c.size();
        if (n == 0 || c[0].size() != n)
            throw "correlation matrix must be a square matrix";
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = i + 1; j < n; ++j)
                if (std::fabs(c[i][j] - c[j][i]) > kZeroTolerance)
                    throw "correlation matrix must be a symmetric matrix";
        if (static_cast<int>(n) != columns)
            throw "number of columns is not the same as the dimension of correlation matrix";
        factor = cholesky(c);
    }

    const int low = read_whole(lower, "Input lower must be an integer", 0);
    const int high = read_whole(upper, "Input upper must be an integer", 1);
    if (!(low < high))
        throw "Input lower must be less than input upper";
    constexpr const char* kSeedMessage = "Input seed must be a non-negative integer";
    int seed_value = 0;
    read_int(seed, kSeedMessage, seed_value);
    if (seed_value < 0)
        throw kSeedMessage;

    const dmat values = random_matrix(rows, columns, distribution,
                                      distribution == RandomDistribution::normal ? factor : dmat(),
                                      low, high, static_cast<unsigned long>(seed_value));
    CellMatrix table(rows, columns);
    for (int i = 0; i < rows; ++i)
        for (int j = 0; j < columns; ++j)
            table(i, j) = values[i][j];
    return table;
}

}  // namespace zentable
