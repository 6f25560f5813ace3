#pragma once

#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// One step of the 31-bit multiplicative congruential generator (multiplier
// 16807) on seed, mapped to an integer from min(a, b) to max(a, b). A seed of
// 0, the generator's fixed point, ends the process with a message on the error
// stream.
int i4_uniform_ab(int a, int b, int& seed);

// Improved distributed hypercube sampling: `numbers` points with integer
// coordinates from 1 to numbers, each value once per dimension, spread so that
// each point's nearest neighbour lies close to the ideal spacing. Each step
// weighs `duplication` times as many candidates as points are left. Row i is
// point i.
std::vector<ivec> ihs(int dimension, int numbers, int duplication, int& seed);

// Title "Latin Hypercube Sampling", the block "Points" and the block "Latin
// Squares" with one grid per pair of dimensions, `symbol` where a point lies.
CellMatrix Latin_hypercube(const CellMatrix& numbers, const CellMatrix& dimension,
                           const CellMatrix& seed, const CellMatrix& symbol);

}  // namespace zentable
