#include "numeric/latin_hypercube.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <string>

#include "numeric/random.hpp"
#include "xlw/decoders.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr int kModulus = 2147483647;  // 2^31 - 1
constexpr int kDuplication = 5;

// A seed the congruential generator can run from: 1 to 2^31 - 2. Every seed
// below the modulus is its own; the modulus itself, whose step would be the
// fixed point 0, becomes 1.
int generator_seed(unsigned long value) {
    return static_cast<int>((value - 1) % (kModulus - 1)) + 1;
}

}  // namespace

int i4_uniform_ab(int a, int b, int& seed) {
    if (seed == 0) {
        std::cerr << "I4_UNIFORM_AB - Fatal error!\n";
        std::cerr << "  Input value of SEED = 0.\n";
        std::exit(EXIT_FAILURE);
    }
    // Schrage's factorisation of 16807 seed mod 2^31 - 1, which never overflows.
    const int k = seed / 127773;
    seed = 16807 * (seed - k * 127773) - k * 2836;
    if (seed < 0)
        seed += kModulus;
    const double r = seed * 4.656612875e-10;
    const int low = std::min(a, b);
    const int high = std::max(a, b);
    // Half a unit beyond each end, so that the ends are as likely as the rest.
    const double x = (1.0 - r) * (low - 0.5) + r * (high + 0.5);
    const long rounded = std::lround(x);
    return static_cast<int>(std::clamp<long>(rounded, low, high));
}

std::vector<ivec> ihs(int dimension, int numbers, int duplication, int& seed) {
    std::vector<ivec> x(numbers, ivec(dimension, 0));
    if (numbers < 1 || dimension < 1)
        return x;
    const double ideal = numbers / std::pow(static_cast<double>(numbers), 1.0 / dimension);

    // available[i][0..count-1]: the values of dimension i not used yet.
    std::vector<ivec> available(dimension, ivec(numbers));
    for (int i = 0; i < dimension; ++i)
        for (int j = 0; j < numbers; ++j)
            available[i][j] = j + 1;
    // Takes value out of the first count values of dimension i, by moving
    // the last of them into its place.
    auto take_out = [&](int i, int value, int count) {
        ivec& list = available[i];
        for (int j = 0; j < count; ++j)
            if (list[j] == value) {
                list[j] = list[count - 1];
                break;
            }
    };

    // The last point is drawn freely.
    for (int i = 0; i < dimension; ++i) {
        x[numbers - 1][i] = i4_uniform_ab(1, numbers, seed);
        take_out(i, x[numbers - 1][i], numbers);
    }

    // Backward over the rest: count points are still to be placed.
    std::vector<ivec> candidates;
    ivec pool;
    for (int count = numbers - 1; count >= 2; --count) {
        const int candidate_count = duplication * count;
        candidates.assign(candidate_count, ivec(dimension));
        for (int i = 0; i < dimension; ++i) {
            // Each free value `duplication` times, dealt out in random order.
            pool.resize(candidate_count);
            for (int k = 0; k < duplication; ++k)
                for (int j = 0; j < count; ++j)
                    pool[j + k * count] = available[i][j];
            for (int k = candidate_count - 1; k >= 0; --k) {
                const int pick = i4_uniform_ab(0, k, seed);
                candidates[k][i] = pool[pick];
                pool[pick] = pool[k];
            }
        }
        // The candidate whose nearest chosen point is nearest the ideal spacing.
        double best_gap = std::numeric_limits<double>::max();
        int best = 0;
        for (int k = 0; k < candidate_count; ++k) {
            double nearest = std::numeric_limits<double>::max();
            for (int j = count; j < numbers; ++j) {
                double sum = 0.0;
                for (int i = 0; i < dimension; ++i) {
                    const double d = candidates[k][i] - x[j][i];
                    sum += d * d;
                }
                nearest = std::min(nearest, std::sqrt(sum));
            }
            const double gap = std::fabs(nearest - ideal);
            if (gap < best_gap) {
                best_gap = gap;
                best = k;
            }
        }
        x[count - 1] = candidates[best];
        for (int i = 0; i < dimension; ++i)
            take_out(i, x[count - 1][i], count);
    }

    // The first point takes the values that are left.
    if (numbers > 1)
        for (int i = 0; i < dimension; ++i)
            x[0][i] = available[i][0];
    return x;
}

CellMatrix Latin_hypercube(const CellMatrix& numbers, const CellMatrix& dimension,
                           const CellMatrix& seed, const CellMatrix& symbol) {
    constexpr const char* kNumbersMessage = "Input numbers must be a positive integer";
    constexpr const char* kDimensionMessage = "Input dimension must be a positive integer";
    constexpr const char* kSeedMessage = "Input seed must be a non-negative integer";
    int n = 0;
    read_int_required(numbers, kNumbersMessage, n);
    if (n < 1)
        throw kNumbersMessage;
    int dim = 0;
    read_int_required(dimension, kDimensionMessage, dim);
    if (dim < 1)
        throw kDimensionMessage;
    int seed_value = 100;
    read_int(seed, kSeedMessage, seed_value);
    if (seed_value < 0)
        throw kSeedMessage;
    std::string mark = "X";
    read_text(symbol, "Input symbol must be a text", mark);

    // Seed 0: the first draw of a generator on the timer path.
    int lcg_seed = seed_value > 0 ? generator_seed(static_cast<unsigned long>(seed_value))
                                  : generator_seed(MersenneTwister(0).next() + 1ul);
    const std::vector<ivec> points = ihs(dim, n, kDuplication, lcg_seed);

    // Title, blank, "Points" with a header row and one row per point; then
    // blank, "Latin Squares" and per pair of dimensions a label, a header row
    // of the column dimension's values, and a row per value of the row
    // dimension.
    const int pairs = dim * (dim - 1) / 2;
    const std::size_t rows = 4 + static_cast<std::size_t>(n) +
                             (pairs > 0 ? 2 + static_cast<std::size_t>(pairs) * (n + 3) - 1 : 0);
    const std::size_t columns = std::max<std::size_t>(dim + 1, pairs > 0 ? n + 1 : 1);
    CellMatrix table(rows, columns);
    table(0, 0) = "Latin Hypercube Sampling";
    table(2, 0) = "Points";
    table(3, 0) = "Point";
    for (int i = 0; i < dim; ++i)
        table(3, i + 1) = "Dimension " + std::to_string(i + 1);
    for (int p = 0; p < n; ++p) {
        table(4 + p, 0) = p + 1;
        for (int i = 0; i < dim; ++i)
            table(4 + p, i + 1) = points[p][i];
    }
    if (pairs > 0) {
        std::size_t row = 5 + n;
        table(row++, 0) = "Latin Squares";
        for (int a = 0; a < dim; ++a)
            for (int b = a + 1; b < dim; ++b) {
                table(row, 0) =
                    "Dimension " + std::to_string(a + 1) + " by Dimension " + std::to_string(b + 1);
                for (int v = 1; v <= n; ++v) {
                    table(row + 1, v) = v;
                    table(row + 1 + v, 0) = v;
                }
                for (int p = 0; p < n; ++p)
                    table(row + 1 + points[p][a], points[p][b]) = mark;
                row += n + 3;
            }
    }
    end_report(table, "Latin_hypercube");
    return table;
}

}  // namespace zentable
