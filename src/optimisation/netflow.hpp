#pragma once

#include <utility>
#include <vector>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// A network with nodes numbered from 1, as the solver class takes it.
struct FlowNetwork {
    int nodes = 0;
    std::vector<std::pair<int, double>> deficits;  // inflow less outflow
    std::vector<int> tail;
    std::vector<int> head;
    std::vector<double> lower;
    std::vector<double> upper;
    std::vector<double> cost;
};

struct FlowSolution {
    std::vector<double> flows;  // one per arc, in arc order
    double objective = 0.0;
};

// Solves for the least cost, then checks the flows against the bounds and
// the balances and the potentials against complementary slackness; every
// outcome but an optimum that passes both checks fails with its text.
FlowSolution solve_min_cost_flow(const FlowNetwork& network);

CellMatrix netflow_solver(const CellMatrix& arcCapacityAndCost, const CellMatrix& nodeNetSupplies,
                          const CellMatrix& minOrMax);
CellMatrix maxflow_solver(const CellMatrix& arcCapacity, const CellMatrix& startNode,
                          const CellMatrix& endNode);
CellMatrix shortest_path_solver(const CellMatrix& arcDistance, const CellMatrix& startNode,
                                const CellMatrix& endNode);

}  // namespace zentable
