#pragma once

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

struct LcpResult {
    bool solved = false;
    dvec z;
};

// Lemke's complementary pivoting for w = M z + q, w and z at least 0, w' z = 0.
LcpResult lemke(const dmat& m, const dvec& q);

CellMatrix lcp(const CellMatrix& m, const CellMatrix& q);

CellMatrix quadratic_prog(const CellMatrix& c, const CellMatrix& H, const CellMatrix& constraints,
                          const CellMatrix& minOrMax);

}  // namespace zentable
