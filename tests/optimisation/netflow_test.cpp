#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>

#include "optimisation/mcf_simplex.hpp"
#include "optimisation/netflow.hpp"

namespace zentable {
namespace {

// The 5-node network of the call file, worked by hand there: least cost 22.
const char* const kFiveNodes =
    "p min 5 7\n"
    "n 1 5\n"
    "n 4 -2\n"
    "n 5 -3\n"
    "a 1 2 0 4 1\n"
    "a 1 3 0 3 4\n"
    "a 2 3 0 2 1\n"
    "a 2 4 0 3 3\n"
    "a 3 4 0 4 1\n"
    "a 3 5 0 3 2\n"
    "a 4 5 0 2 2\n";

std::string load_failure(const std::string& text) {
    std::istringstream in(text);
    MCFSimplex solver;
    try {
        solver.LoadDMX(in);
    } catch (const MCFClass::MCFException& e) {
        return e.what();
    }
    return "";
}

TEST(MCFSimplex, ReadsDmxSolvesItAndWritesItBack) {
    std::istringstream in(std::string("c five nodes\n\n") + kFiveNodes);
    MCFSimplex solver;
    solver.LoadDMX(in);
    std::ostringstream out;
    solver.WriteMCF(out, MCFClass::kDMX);
    EXPECT_EQ(out.str(), kFiveNodes);

    solver.SolveMCF();
    ASSERT_EQ(solver.MCFGetStatus(), MCFClass::kOK);
    EXPECT_EQ(solver.MCFGetFO(), 22.0);
    std::vector<double> flows;
    std::vector<int> arcs;
    solver.MCFGetX(flows, arcs);
    EXPECT_EQ(flows, (std::vector<double>{4, 1, 2, 2, 3}));
    EXPECT_EQ(arcs, (std::vector<int>{0, 1, 2, 3, 5}));
}

TEST(MCFSimplex, EveryDmxTextHasItsMalformedStream) {
    const std::pair<const char*, const char*> cases[] = {
        {"c only a comment\n", "error reading the input stream"},
        {"p max 2 1\n", "format error in the input stream"},
        {"p min x 1\n", "error reading number of nodes"},
        {"p min 2\n", "error reading number of arcs"},
        {"p min 2 0\nn x 1\n", "error reading node name"},
        {"p min 2 0\nn 3 1\n", "invalid node name"},
        {"p min 2 0\nn 1\n", "error reading deficit"},
        {"p min 2 1\na 1 2 0 1 1\na 2 1 0 1 1\n", "too many arc descriptors"},
        {"p min 2 1\na x 2 0 1 1\n", "error reading start node"},
        {"p min 2 1\na 0 2 0 1 1\n", "invalid start node"},
        {"p min 2 1\na 1\n", "error reading end node"},
        {"p min 2 1\na 1 5 0 1 1\n", "invalid end node"},
        {"p min 2 1\na 1 1 0 1 1\n", "self-loops not permitted"},
        {"p min 2 1\na 1 2 x 1 1\n", "error reading lower bound"},
        {"p min 2 1\na 1 2 0\n", "error reading upper bound"},
        {"p min 2 1\na 1 2 0 1\n", "error reading arc cost"},
        {"p min 2 1\na 1 2 0 1 1 q\n", "error reading arc quadratic cost"},
        {"p min 2 1\na 1 2 0 1 1 -1\n", "negative arc quadratic cost"},
        {"p min 2 1\na 1 2 2 1 1\n", "lower bound > upper bound"},
        {"p min 2 1\nx 1 2\n", "invalid code"},
        {"p min 2 2\na 1 2 0 1 1\n", "too few arc descriptors"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(load_failure(c.first), std::string("LoadDMX: ") + c.second) << c.first;
}

TEST(MCFSimplex, WritesMpsAndRefusesOtherFormatsAndParameters) {
    std::istringstream in("p min 2 2\nn 1 3\nn 2 -3\na 1 2 1 1e30 2\na 2 1 0 4 5\n");
    MCFSimplex solver;
    solver.LoadDMX(in);
    std::ostringstream out;
    solver.WriteMCF(out, MCFClass::kMPS);
    EXPECT_EQ(out.str(),
              "NAME      MCF\nROWS\n N  obj\n E  c1\n E  c2\nCOLUMNS\n"
              "    x0  obj  2\n    x0  c1  -1\n    x0  c2  1\n"
              "    x1  obj  5\n    x1  c2  -1\n    x1  c1  1\n"
              "RHS\n    rhs  c1  -3\n    rhs  c2  3\n"
              "BOUNDS\n LO BND  x0  1\n PL BND  x0\n UP BND  x1  4\nENDATA\n");
    std::ostringstream ignored;
    try {
        solver.WriteMCF(ignored, 7);
        ADD_FAILURE();
    } catch (const MCFClass::MCFException& e) {
        EXPECT_STREQ(e.what(), "Error: unknown format 7");
    }
    try {
        solver.SetPar(42, 1.0);
        ADD_FAILURE();
    } catch (const MCFClass::MCFException& e) {
        EXPECT_STREQ(e.what(), "Error in netflow_solver: unknown parameter");
    }
}

TEST(MCFSimplex, LoadChecksNodeNumbers) {
    const auto failure = [](int node, int tail, int head) {
        MCFSimplex solver;
        try {
            solver.LoadNet(2, {{node, 0.0}}, {tail}, {head}, {}, {1.0}, {1.0});
        } catch (const MCFClass::MCFException& e) {
            return std::string(e.what());
        }
        return std::string();
    };
    EXPECT_EQ(failure(3, 1, 2), "Invalid node name");
    EXPECT_EQ(failure(1, 0, 2), "Invalid from node");
    EXPECT_EQ(failure(1, 1, 3), "Invalid to node");
    EXPECT_EQ(failure(1, 1, 2), "");
}

// A random network with a known feasible flow behind its supplies.
FlowNetwork random_network(unsigned seed, int nodes, int arcs) {
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> pick(1, nodes);
    FlowNetwork net;
    net.nodes = nodes;
    std::vector<double> supply(nodes, 0.0);
    for (int j = 0; j < arcs; ++j) {
        const int from = j < nodes ? j + 1 : pick(rng);
        int to = j < nodes ? (j + 1) % nodes + 1 : pick(rng);
        while (to == from)
            to = pick(rng);
        const double lower = std::uniform_int_distribution<int>(-2, 2)(rng);
        const double upper = lower + std::uniform_int_distribution<int>(0, 20)(rng);
        const double flow =
            lower + std::uniform_int_distribution<int>(0, static_cast<int>(upper - lower))(rng);
        net.tail.push_back(from);
        net.head.push_back(to);
        net.lower.push_back(lower);
        net.upper.push_back(upper);
        net.cost.push_back(std::uniform_int_distribution<int>(-10, 40)(rng) / 4.0);
        supply[from - 1] += flow;
        supply[to - 1] -= flow;
    }
    for (int i = 0; i < nodes; ++i)
        net.deficits.emplace_back(i + 1, -supply[i]);
    return net;
}

double least_cost(const FlowNetwork& net, int rule, int candidates, int hot) {
    MCFSimplex solver;
    solver.LoadNet(net.nodes, net.deficits, net.tail, net.head, net.lower, net.upper, net.cost);
    solver.SetPar(MCFSimplex::kAlgPricing, rule);
    solver.SetPar(MCFSimplex::kNumCandList, candidates);
    solver.SetPar(MCFSimplex::kHotListSize, hot);
    solver.SolveMCF();
    EXPECT_EQ(solver.MCFGetStatus(), MCFClass::kOK);
    return solver.MCFGetFO();
}

// The pricing rules walk different bases to the same optimum; with costs in
// quarters every total is exact, so they must agree to the last bit. The
// driver's checks pass on each (it throws otherwise).
TEST(MCFSimplex, PricingRulesAgreeOnTheOptimum) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        const FlowNetwork net = random_network(seed, 20 + 5 * seed, 120 + 40 * seed);
        const double reference = solve_min_cost_flow(net).objective;
        EXPECT_EQ(least_cost(net, 0, 0, 0), reference) << seed;
        EXPECT_EQ(least_cost(net, 1, 0, 0), reference) << seed;
        EXPECT_EQ(least_cost(net, 2, 3, 1), reference) << seed;
        EXPECT_EQ(least_cost(net, 2, 1000, 50), reference) << seed;
    }
}

TEST(MCFSimplex, LimitsAndClosedArcs) {
    // 5 units from 1 to 3: 1 -> 3 costs 10, 1 -> 2 -> 3 costs 2.
    const std::vector<int> tail = {1, 1, 2};
    const std::vector<int> head = {3, 2, 3};
    MCFSimplex solver;
    solver.LoadNet(3, {{1, -5.0}, {3, 5.0}}, tail, head, {}, {9, 9, 9}, {10, 1, 1});
    solver.SetPar(MCFClass::kMaxIter, 1);
    solver.SolveMCF();
    EXPECT_EQ(solver.MCFGetStatus(), MCFClass::kStopped);

    solver.SetPar(MCFClass::kMaxIter, 0);
    solver.CloseArc(1);
    solver.SolveMCF();
    ASSERT_EQ(solver.MCFGetStatus(), MCFClass::kOK);
    EXPECT_TRUE(solver.IsClosedArc(1));
    EXPECT_EQ(solver.MCFGetX(), (std::vector<double>{5, 0, 0}));
    EXPECT_EQ(solver.MCFGetFO(), 50.0);
}

}  // namespace
}  // namespace zentable
