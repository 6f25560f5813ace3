#include "numeric/sequences.hpp"

#include <cmath>
#include <string>

#include "numeric/sobol.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kNumbersMessage = "Input numbers must be a positive integer";
constexpr const char* kDimensionMessage = "Input dimension must be a positive integer";

int read_numbers(const CellMatrix& numbers) {
    int n = 0;
    read_int_required(numbers, kNumbersMessage, n);
    if (n < 1)
        throw kNumbersMessage;
    return n;
}

int read_dimension(const CellMatrix& dimension) {
    int d = 1;
    read_int(dimension, kDimensionMessage, d);
    if (d < 1)
        throw kDimensionMessage;
    return d;
}

// numbers + 1 rows under the headers prefix_1, prefix_2 and on.
CellMatrix point_table(int numbers, int dimension, const std::string& prefix) {
    CellMatrix table(static_cast<std::size_t>(numbers) + 1, dimension);
    for (int d = 0; d < dimension; ++d)
        table(0, d) = prefix + std::to_string(d + 1);
    return table;
}

}  // namespace

std::vector<std::int64_t> first_primes(int count) {
    std::vector<std::int64_t> primes;
    if (count < 1)
        return primes;
    primes.reserve(count);
    primes.push_back(2);
    for (std::int64_t candidate = 3; static_cast<int>(primes.size()) < count; candidate += 2) {
        const auto limit = static_cast<std::int64_t>(std::sqrt(static_cast<double>(candidate)));
        bool prime = true;
        for (std::size_t k = 0; k < primes.size() && primes[k] <= limit; ++k)
            if (candidate % primes[k] == 0) {
                prime = false;
                break;
            }
        if (prime)
            primes.push_back(candidate);
    }
    return primes;
}

double radical_inverse(std::int64_t i, std::int64_t base) {
    const double inverse_base = 1.0 / static_cast<double>(base);
    double digit_weight = inverse_base;
    double value = 0.0;
    for (; i > 0; i /= base) {
        value += static_cast<double>(i % base) * digit_weight;
        digit_weight *= inverse_base;
    }
    return value;
}

CellMatrix prime_numbers(const CellMatrix& numPrimeNumbers) {
    constexpr const char* kMessage = "Input numPrimeNumbers must be a positive integer";
    int count = 0;
    read_int_required(numPrimeNumbers, kMessage, count);
    if (count < 1)
        throw kMessage;
    const std::vector<std::int64_t> primes = first_primes(count);
    CellMatrix table(static_cast<std::size_t>(count) + 1, 2);
    table(0, 0) = "Prime Numbers";
    for (int i = 0; i < count; ++i) {
        table(i + 1, 0) = i + 1;
        table(i + 1, 1) = static_cast<double>(primes[i]);
    }
    return table;
}

CellMatrix Halton_numbers(const CellMatrix& numbers, const CellMatrix& dimension) {
    const int n = read_numbers(numbers);
    const int dim = read_dimension(dimension);
    const std::vector<std::int64_t> bases = first_primes(dim);
    CellMatrix table = point_table(n, dim, "Halton_");
    for (int i = 1; i <= n; ++i)
        for (int d = 0; d < dim; ++d)
            table(i, d) = radical_inverse(i, bases[d]);
    return table;
}

CellMatrix Sobol_numbers(const CellMatrix& numbers, const CellMatrix& dimension) {
    const int n = read_numbers(numbers);
    const int dim = read_dimension(dimension);
    if (dim > kSobolMaxDimension)
        throw "The maximum dimension is 1111";
    Sobol sequence(dim);
    CellMatrix table = point_table(n, dim, "Sobol_");
    std::vector<double> point(dim);
    for (int i = 1; i <= n; ++i) {
        sequence.next(point.data());
        for (int d = 0; d < dim; ++d)
            table(i, d) = point[d];
    }
    return table;
}

}  // namespace zentable
