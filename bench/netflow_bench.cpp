// The network solvers on a generated min-cost flow of 10^4 nodes and about
// 1.1 x 10^5 arcs: a ring through all nodes plus random arcs, integer
// capacities and costs, and supplies taken from a random feasible flow.
// `netflow_bench --write DIR` writes it as CSV files for
// bench/netflow_vs_peers.sh, with small networks (lower bounds, negative
// costs, some with supplies that cannot be shipped) for the oracle check.
#include <benchmark/benchmark.h>

#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "optimisation/netflow.hpp"

namespace {

using zentable::FlowNetwork;

struct Generated {
    FlowNetwork net;
    std::vector<double> supply;  // per node, outflow less inflow
};

// A ring keeps every node reachable; the feasible flow behind the supplies
// keeps the problem solvable unless `squeeze` then cuts capacities below it.
Generated generate(int nodes, int arcs, unsigned seed, bool with_lower, bool negative_costs,
                   bool squeeze) {
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> pick(1, nodes);
    std::uniform_int_distribution<int> capacity(1, 100);
    std::uniform_int_distribution<int> cost(negative_costs ? -20 : 1, 100);
    std::uniform_int_distribution<int> low(0, 3);
    Generated g;
    FlowNetwork& net = g.net;
    net.nodes = nodes;
    g.supply.assign(nodes, 0.0);
    for (int j = 0; j < arcs; ++j) {
        int from = j < nodes ? j + 1 : pick(rng);
        int to = j < nodes ? (j + 1) % nodes + 1 : pick(rng);
        while (to == from)
            to = pick(rng);
        const double lower = with_lower ? low(rng) : 0.0;
        const double upper = lower + capacity(rng);
        const double flow = std::uniform_int_distribution<int>(static_cast<int>(lower),
                                                               static_cast<int>(upper))(rng);
        net.tail.push_back(from);
        net.head.push_back(to);
        net.lower.push_back(lower);
        net.upper.push_back(squeeze && j % 7 == 0 ? lower : upper);
        net.cost.push_back(cost(rng));
        g.supply[from - 1] += flow;
        g.supply[to - 1] -= flow;
    }
    for (int i = 0; i < nodes; ++i)
        if (g.supply[i] != 0.0)
            net.deficits.emplace_back(i + 1, -g.supply[i]);
    return g;
}

Generated large() {
    return generate(10000, 110000, 20261125u, false, false, false);
}

std::ofstream open(const std::string& path) {
    std::ofstream out(path);
    if (!out)
        throw std::runtime_error("cannot write " + path);
    return out;
}

// `columns` 5 for netflow_solver, 4 for maxflow_solver, 3 for shortest_path_solver.
void write_arcs(const std::string& path, const FlowNetwork& net, int columns) {
    std::ofstream out = open(path);
    for (std::size_t j = 0; j < net.tail.size(); ++j) {
        out << net.tail[j] << ',' << net.head[j];
        if (columns == 5)
            out << ',' << net.lower[j] << ',' << net.upper[j] << ',' << net.cost[j];
        else if (columns == 4)
            out << ',' << net.lower[j] << ',' << net.upper[j];
        else
            out << ',' << net.cost[j];
        out << '\n';
    }
}

void write_supplies(const std::string& path, const Generated& g) {
    std::ofstream out = open(path);
    for (std::size_t i = 0; i < g.supply.size(); ++i)
        if (g.supply[i] != 0.0)
            out << i + 1 << ',' << g.supply[i] << '\n';
}

void write_all(const std::string& dir) {
    const Generated g = large();
    write_arcs(dir + "/net_arcs.csv", g.net, 5);
    write_supplies(dir + "/net_supplies.csv", g);
    write_arcs(dir + "/flow_arcs.csv", g.net, 4);
    write_arcs(dir + "/path_arcs.csv", g.net, 3);
    for (int k = 0; k < 24; ++k) {
        const int nodes = 5 + 7 * k;
        const Generated s =
            generate(nodes, nodes * (2 + k % 5), 1000u + k, k % 2 == 0, k % 3 == 0, k % 8 == 7);
        const std::string stem = dir + "/small" + std::to_string(k);
        write_arcs(stem + "_arcs.csv", s.net, 5);
        write_supplies(stem + "_supplies.csv", s);
    }
}

void BM_min_cost_flow_10k(benchmark::State& state) {
    const Generated g = large();
    for (auto _ : state)
        benchmark::DoNotOptimize(zentable::solve_min_cost_flow(g.net).objective);
}
BENCHMARK(BM_min_cost_flow_10k)->Unit(benchmark::kMillisecond);

void BM_max_flow_10k(benchmark::State& state) {
    Generated g = large();
    FlowNetwork& net = g.net;
    net.deficits.clear();
    for (double& c : net.cost)
        c = 0.0;
    net.tail.push_back(net.nodes);
    net.head.push_back(1);
    net.lower.push_back(0.0);
    net.upper.push_back(1e30);
    net.cost.push_back(-1.0);
    for (auto _ : state)
        benchmark::DoNotOptimize(zentable::solve_min_cost_flow(net).objective);
}
BENCHMARK(BM_max_flow_10k)->Unit(benchmark::kMillisecond);

void BM_shortest_path_10k(benchmark::State& state) {
    Generated g = large();
    FlowNetwork& net = g.net;
    net.lower.assign(net.tail.size(), 0.0);
    net.upper.assign(net.tail.size(), 1.0);
    net.deficits = {{1, -1.0}, {net.nodes, 1.0}};
    for (auto _ : state)
        benchmark::DoNotOptimize(zentable::solve_min_cost_flow(net).objective);
}
BENCHMARK(BM_shortest_path_10k)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--write") {
        write_all(argv[2]);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
