#include "optimisation/netflow.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>

#include "optimisation/constraints.hpp"
#include "optimisation/mcf_simplex.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr double kMachineEpsilon = 2.220446049250313e-16;

// Flows, capacities, deficits and the objective, checked on the caller's side
// of the lower bounds' shift.
void check_primal(const MCFSimplex& solver, const FlowNetwork& net, const FlowSolution& s) {
    const int m = solver.MCFm();
    const double slack = solver.EpsFlow() * m;
    std::vector<double> net_inflow(net.nodes, 0.0);
    double objective = 0.0;
    for (int j = 0; j < m; ++j) {
        const double x = s.flows[j];
        const double lower = solver.MCFLCap(j);
        const double upper = solver.MCFUCap(j);
        if (solver.IsClosedArc(j) && std::fabs(x) > slack)
            throw "Closed arc with nonzero flow";
        if (upper < MCFClass::kUnlimited && x - lower > upper - lower + slack)
            throw "Arc flow exceeds capacity";
        if (x - lower < -slack)
            throw "Arc flow is negative";
        net_inflow[solver.MCFSNde(j) - 1] -= x;
        net_inflow[solver.MCFENde(j) - 1] += x;
        objective += solver.MCFCost(j) * x;
    }
    for (int i = 1; i <= net.nodes; ++i)
        if (std::fabs(net_inflow[i - 1] - solver.MCFDfct(i)) > slack)
            throw "Node is not balanced";
    if (std::fabs(objective - s.objective) > slack * std::max(1.0, std::fabs(objective)))
        throw "Objective function value is wrong";
}

// Potentials start near 1e10 and 2e10, so a reduced cost carries the
// rounding of numbers that size: the tolerance scales with them.
void check_dual(const MCFSimplex& solver, const FlowSolution& s) {
    const int m = solver.MCFm();
    const int n = solver.MCFn();
    const double slack = solver.EpsFlow() * m;
    const std::vector<double> pi = solver.MCFGetPi();
    const std::vector<double> rc = solver.MCFGetRC();
    // Supplies sum to zero, so potentials measured from any one node give
    // the same dual objective without the cancellation of 1e10 terms.
    const double reference = n > 0 ? pi[0] : 0.0;
    double dual = 0.0;
    double scale = 1.0;
    for (int i = 1; i <= n; ++i) {
        const double term = (pi[i - 1] - reference) * solver.MCFDfct(i);
        dual += term;
        scale += std::fabs(term);
    }
    for (int j = 0; j < m; ++j) {
        const double pt = pi[solver.MCFSNde(j) - 1];
        const double ph = pi[solver.MCFENde(j) - 1];
        const double cost = solver.MCFCost(j);
        const double tolerance =
            solver.EpsCost() * std::max({1.0, std::fabs(cost), std::fabs(pt), std::fabs(ph)});
        if (std::fabs(rc[j] - (cost + pt - ph)) > tolerance)
            throw "Reduced Cost value is wrong";
        const double x = s.flows[j];
        const double lower = solver.MCFLCap(j);
        const double upper = solver.MCFUCap(j);
        if (rc[j] > tolerance) {
            if (x - lower > slack)
                throw "Complementary Slackness violated";
            dual += rc[j] * lower;
            scale += std::fabs(rc[j] * lower);
        } else if (rc[j] < -tolerance) {
            if (upper >= MCFClass::kUnlimited || upper - x > slack)
                throw "Complementary Slackness violated";
            dual += rc[j] * upper;
            scale += std::fabs(rc[j] * upper);
        } else {
            // A reduced cost this close to 0 does not say at which bound
            // the arc stands, so it enters at its flow.
            dual += rc[j] * x;
            scale += std::fabs(rc[j] * x);
        }
    }
    if (std::fabs(dual - s.objective) > 1e-9 * std::max(scale, std::fabs(s.objective)))
        throw "Objective function value is wrong";
}

}  // namespace

FlowSolution solve_min_cost_flow(const FlowNetwork& net) {
    MCFSimplex solver;
    solver.SetMCFTime();
    solver.LoadNet(net.nodes, net.deficits, net.tail, net.head, net.lower, net.upper, net.cost);
    const int m = solver.MCFm();
    // Unlimited arcs stay out of the scale of the flow tolerance: one bound
    // of 1e30 would make every real step read as zero.
    double max_cap = 1.0;
    for (int j = 0; j < m; ++j)
        if (solver.MCFUCap(j) < MCFClass::kUnlimited)
            max_cap = std::max(max_cap, std::fabs(solver.MCFUCap(j) - solver.MCFLCap(j)));
    for (int i = 1; i <= solver.MCFn(); ++i)
        max_cap = std::max(max_cap, std::fabs(solver.MCFDfct(i)));
    solver.SetPar(MCFClass::kEpsFlw, max_cap * kMachineEpsilon * m * 10);
    solver.SetPar(MCFClass::kEpsCst, kMachineEpsilon * m * 10);
    solver.SolveMCF();
    switch (solver.MCFGetStatus()) {
        case MCFClass::kOK:
            break;
        case MCFClass::kUnfeasible:
            throw "No solution satisfies the given constraints";
        case MCFClass::kUnbounded:
            throw "Objective function unbounded";
        default:
            throw "Error in netflow_solver";
    }
    FlowSolution solution;
    solution.flows = solver.MCFGetX();
    solution.objective = solver.MCFGetFO();
    check_primal(solver, net, solution);
    check_dual(solver, solution);
    return solution;
}

namespace {

// Node names as text, numbered by first appearance.
class NodeNames {
  public:
    int number(const std::string& name) {
        const auto found = numbers_.emplace(name, static_cast<int>(numbers_.size()) + 1);
        return found.first->second;
    }
    int find(const std::string& name) const {
        const auto found = numbers_.find(name);
        return found == numbers_.end() ? 0 : found->second;
    }
    int size() const { return static_cast<int>(numbers_.size()); }

  private:
    std::unordered_map<std::string, int> numbers_;
};

std::string node_name(const CellValue& cell) {
    return trim(cell_to_text(cell));
}

// The arcs' ends and the numbers after them; `columns` counts both ends.
FlowNetwork read_arcs(const CellMatrix& arcs, std::size_t columns, NodeNames& names,
                      bool whole_rows) {
    FlowNetwork net;
    const std::size_t m = arcs.RowsInStructure();
    net.tail.reserve(m);
    net.head.reserve(m);
    for (std::size_t r = 0; r < m; ++r) {
        const std::string from = node_name(arcs(r, 0));
        if (from.empty())
            throw "from node in arc " + std::to_string(r + 1) + " is empty";
        const std::string to = node_name(arcs(r, 1));
        if (to.empty())
            throw "to node in arc " + std::to_string(r + 1) + " is empty";
        if (whole_rows)
            for (std::size_t c = 2; c < columns; ++c)
                if (arcs(r, c).IsEmpty())
                    throw "Arc's capacity constraints must have 5 columns";
        net.tail.push_back(names.number(from));
        net.head.push_back(names.number(to));
    }
    net.nodes = names.size();
    return net;
}

double number_at(const CellMatrix& table, std::size_t r, std::size_t c) {
    return cell_to_double(table(r, c));
}

int named_node(const CellMatrix& cell, const NodeNames& names, const char* which,
               const char* table) {
    const std::string name = node_name(cell(0, 0));
    const int node = names.find(name);
    if (node == 0)
        throw std::string("The ") + which + " node " + name + " is not in " + table;
    return node;
}

void check_one_cell(const CellMatrix& cell, const char* message) {
    if (cell.RowsInStructure() != 1 || cell.ColumnsInStructure() != 1 || cell(0, 0).IsEmpty())
        throw message;
}

// Title, total and the column heads; the arc rows follow from row 5.
CellMatrix result_frame(std::size_t arc_rows, const char* title, const char* total_label,
                        double total, const char* block, const std::vector<const char*>& heads) {
    CellMatrix result(5 + arc_rows, heads.size());
    result(0, 0) = title;
    result(2, 0) = total_label;
    result(2, 1) = total + 0.0;  // no negative zero from a negated total
    result(3, 0) = block;
    for (std::size_t c = 0; c < heads.size(); ++c)
        result(4, c) = heads[c];
    return result;
}

}  // namespace

CellMatrix netflow_solver(const CellMatrix& arcCapacityAndCost, const CellMatrix& nodeNetSupplies,
                          const CellMatrix& minOrMax) {
    constexpr const char* kMode = "Valid input of minOrMax is MIN or MAX";
    const CellMatrix& arcs = arcCapacityAndCost;
    if (is_omitted(arcs))
        throw "Arc's capacity constraints is misisng";
    if (arcs.ColumnsInStructure() != 5)
        throw "arcCapacityAndCost must have 5 columns: from node, to node, lower bound, upper "
              "bound, cost";
    const bool has_supplies = !is_omitted(nodeNetSupplies);
    if (has_supplies && nodeNetSupplies.ColumnsInStructure() != 2)
        throw "nodeNetSupplies must have 2 columns: node, net supply";
    const bool maximise = read_maximise(minOrMax, false, kMode, kMode);

    NodeNames names;
    FlowNetwork net = read_arcs(arcs, 5, names, true);
    const std::size_t m = arcs.RowsInStructure();
    for (std::size_t r = 0; r < m; ++r) {
        net.lower.push_back(number_at(arcs, r, 2));
        net.upper.push_back(number_at(arcs, r, 3));
        const double cost = number_at(arcs, r, 4);
        net.cost.push_back(maximise ? -cost : cost);
    }
    if (has_supplies)
        for (std::size_t r = 0; r < nodeNetSupplies.RowsInStructure(); ++r) {
            const std::string name = node_name(nodeNetSupplies(r, 0));
            if (name.empty() && nodeNetSupplies(r, 1).IsEmpty())
                continue;
            const int node = names.find(name);
            if (node == 0)
                throw "The node " + name + " in nodeNetSupplies is not in arcCapacityAndCost";
            net.deficits.emplace_back(node, -number_at(nodeNetSupplies, r, 1));
        }

    const FlowSolution solved = solve_min_cost_flow(net);
    CellMatrix result =
        result_frame(m,
                     maximise ? "Solution to the Maximum Cost Network Flow Problem"
                              : "Solution to the Minimum Cost Network Flow Problem",
                     "Total Cost", maximise ? -solved.objective : solved.objective, "Optimal Flows",
                     {"Arc", "From Node", "To Node", "Lower Bound", "Upper Bound", "Cost", "Flow"});
    for (std::size_t r = 0; r < m; ++r) {
        result(5 + r, 0) = static_cast<double>(r + 1);
        result(5 + r, 1) = arcs(r, 0);
        result(5 + r, 2) = arcs(r, 1);
        result(5 + r, 3) = net.lower[r];
        result(5 + r, 4) = net.upper[r];
        result(5 + r, 5) = number_at(arcs, r, 4);
        result(5 + r, 6) = solved.flows[r];
    }
    return result;
}

CellMatrix maxflow_solver(const CellMatrix& arcCapacity, const CellMatrix& startNode,
                          const CellMatrix& endNode) {
    if (is_omitted(arcCapacity))
        throw "Arc's capacity constraints is missing";
    if (arcCapacity.ColumnsInStructure() != 4)
        throw "arcCapacity must have 4 columns: from node, to node, lower bound, upper bound";
    check_one_cell(startNode, "startNode must be in one cell");
    check_one_cell(endNode, "endNode must be in one cell");

    NodeNames names;
    FlowNetwork net = read_arcs(arcCapacity, 4, names, false);
    const int start = named_node(startNode, names, "start", "arcCapacity");
    const int end = named_node(endNode, names, "end", "arcCapacity");
    const std::size_t m = arcCapacity.RowsInStructure();
    for (std::size_t r = 0; r < m; ++r) {
        net.lower.push_back(number_at(arcCapacity, r, 2));
        net.upper.push_back(number_at(arcCapacity, r, 3));
        net.cost.push_back(0.0);
    }
    // The flow returns from end to start at a gain of one per unit, so the
    // least cost circulation is the largest flow.
    net.tail.push_back(end);
    net.head.push_back(start);
    net.lower.push_back(0.0);
    net.upper.push_back(1e30);
    net.cost.push_back(-1.0);

    const FlowSolution solved = solve_min_cost_flow(net);
    CellMatrix result = result_frame(
        m, "Solution to the Maximum Flow Problem", "Total Flow", -solved.objective, "Optimal Flows",
        {"Arc", "From Node", "To Node", "Lower Bound", "Upper Bound", "Flow"});
    for (std::size_t r = 0; r < m; ++r) {
        result(5 + r, 0) = static_cast<double>(r + 1);
        result(5 + r, 1) = arcCapacity(r, 0);
        result(5 + r, 2) = arcCapacity(r, 1);
        result(5 + r, 3) = net.lower[r];
        result(5 + r, 4) = net.upper[r];
        result(5 + r, 5) = solved.flows[r];
    }
    return result;
}

CellMatrix shortest_path_solver(const CellMatrix& arcDistance, const CellMatrix& startNode,
                                const CellMatrix& endNode) {
    if (is_omitted(arcDistance))
        throw "Arc's capacity constraints is misisng";
    if (arcDistance.ColumnsInStructure() != 3)
        throw "arcDistance must have 3 columns: from node, to node, distance";
    check_one_cell(startNode, "startNode must be in one cell");
    check_one_cell(endNode, "endNode must be in one cell");

    NodeNames names;
    FlowNetwork net = read_arcs(arcDistance, 3, names, false);
    const int start = named_node(startNode, names, "start", "arcDistance");
    const int end = named_node(endNode, names, "end", "arcDistance");
    const std::size_t m = arcDistance.RowsInStructure();
    net.lower.assign(m, 0.0);
    net.upper.assign(m, 1.0);
    for (std::size_t r = 0; r < m; ++r)
        net.cost.push_back(number_at(arcDistance, r, 2));
    net.deficits = {{start, -1.0}, {end, 1.0}};

    const FlowSolution solved = solve_min_cost_flow(net);
    std::vector<std::size_t> path;
    for (std::size_t r = 0; r < m; ++r)
        if (std::fabs(solved.flows[r]) > kMachineEpsilon)
            path.push_back(r);
    CellMatrix result =
        result_frame(path.size(), "Solution to the Shortest Path Problem", "Total Distance",
                     solved.objective, "Optimal Path", {"Arc", "From Node", "To Node", "Distance"});
    for (std::size_t k = 0; k < path.size(); ++k) {
        const std::size_t r = path[k];
        result(5 + k, 0) = static_cast<double>(r + 1);
        result(5 + k, 1) = arcDistance(r, 0);
        result(5 + k, 2) = arcDistance(r, 1);
        result(5 + k, 3) = net.cost[r];
    }
    return result;
}

}  // namespace zentable
