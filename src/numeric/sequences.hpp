#pragma once

#include <cstdint>
#include <vector>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// The first `count` primes, each tested against the known primes up to its
// square root.
std::vector<std::int64_t> first_primes(int count);

// The digits of i in base b mirrored about the radix point.
double radical_inverse(std::int64_t i, std::int64_t base);

// Row 0 "Prime Numbers"; then one row per prime: its number from 1, the prime.
CellMatrix prime_numbers(const CellMatrix& numPrimeNumbers);

// Points 1 to numbers of the Halton sequence whose dimension d takes the d-th
// prime as base; headers "Halton_1" and on.
CellMatrix Halton_numbers(const CellMatrix& numbers, const CellMatrix& dimension);

// The first points of the Sobol sequence, origin skipped, in up to 1111
// dimensions; headers "Sobol_1" and on.
CellMatrix Sobol_numbers(const CellMatrix& numbers, const CellMatrix& dimension);

}  // namespace zentable
