#pragma once

#include <cstdint>
#include <string>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// k_means(x, numClusters, seed, showAssignments): Lloyd's iteration from a
// seeded random assignment, with the variance decomposition of the result.
CellMatrix k_means(const CellMatrix& x, const CellMatrix& numClusters, const CellMatrix& seed,
                   const CellMatrix& showAssignments);
CellMatrix k_means_from_file(const std::string& filename, const CellMatrix& varNames,
                             const CellMatrix& numClusters, const CellMatrix& seed,
                             const CellMatrix& delimiter, const CellMatrix& showAssignments);

struct Clustering {
    ivec cluster;         // per record, from 0
    ivec counts;          // per cluster
    dmat centers;         // per cluster; zeros for a cluster without records
    double total = 0.0;   // sum of squared deviations from the overall means
    double within = 0.0;  // sum of squared deviations from the own center
    long long rounds = 0;
};

// The start: record i below k in cluster i, each later one in cluster
// trunc((rand15() + 1) / 32769 * n) mod k, drawn after seed_rand15(seed).
ivec initial_assignment(std::size_t records, int clusters, std::uint32_t seed);

// Lloyd's iteration on `data` (one row per record) from `start` until no
// record moves; k must not exceed the number of records.
Clustering lloyd(const dmat& data, int clusters, ivec start);

}  // namespace zentable
