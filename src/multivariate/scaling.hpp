#pragma once

#include <cstdint>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// cmds(distanceMatrix, dim): classical scaling through the eigenvectors of
// the double-centred matrix of -0.5 times the squared distances.
CellMatrix cmds(const CellMatrix& distanceMatrix, const CellMatrix& dim);

// mds(distanceMatrix, dim, maxIteration, seed): Sammon's mapping by
// randomised pairwise corrections with a decaying step.
CellMatrix mds(const CellMatrix& distanceMatrix, const CellMatrix& dim,
               const CellMatrix& maxIteration, const CellMatrix& seed);

// The points of classical scaling, n by dim; dim must not exceed n.
dmat classical_scaling(const dmat& distance, int dim);

// The points of Sammon's mapping, n by dim, from a seed above 0.
dmat sammon_mapping(const dmat& distance, int dim, int iterations, std::uint32_t seed);

}  // namespace zentable
