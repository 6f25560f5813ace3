// GARCH(1, 1) and the stochastic processes at the sizes the peers are timed
// at: garch on 10^5 returns from the default start, one evaluation of its
// objective, the shifted lognormal fit of 10^5 points and a normal path of
// 10^6 points. The commands run on tables of cells, as the driver calls them;
// the end-to-end figures with R come from bench/garch_vs_peers.sh.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "timeseries/garch.hpp"
#include "timeseries/stochastic_process.hpp"

namespace {

using namespace zentable;

// Returns whose variance follows omega 2e-6, alpha 0.08, beta 0.9.
dvec garch_returns(std::size_t n) {
    std::mt19937_64 gen(5);
    std::normal_distribution<double> z;
    dvec r(n);
    double h = 2e-6 / 0.02, previous = 0.0;
    for (double& x : r) {
        h = 2e-6 + 0.08 * previous * previous + 0.9 * h;
        x = previous = std::sqrt(h) * z(gen);
    }
    return r;
}

CellMatrix headed(const dvec& values) {
    CellMatrix t(values.size() + 1, 1);
    t(0, 0) = "x";
    for (std::size_t i = 0; i < values.size(); ++i)
        t(i + 1, 0) = values[i];
    return t;
}

CellMatrix cell(const char* text) {
    return CellMatrix(text);
}

CellMatrix cell(double value) {
    return CellMatrix(value);
}

const CellMatrix omitted(1, 1);

void BM_GarchLogLikelihood1e5(benchmark::State& state) {
    const GarchLikelihood likelihood(garch_returns(100000));
    for (auto _ : state)
        benchmark::DoNotOptimize(likelihood(2e-6, 0.08, 0.9));
}
BENCHMARK(BM_GarchLogLikelihood1e5)->Unit(benchmark::kMicrosecond)->UseRealTime();

void BM_Garch1e5(benchmark::State& state) {
    const CellMatrix r = headed(garch_returns(100000));
    for (auto _ : state)
        benchmark::DoNotOptimize(garch(r, omitted, omitted, omitted));
}
BENCHMARK(BM_Garch1e5)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_ShiftedLognormal1e5(benchmark::State& state) {
    const dvec x = simulate_process(Process::shifted_lognormal, 100000, 5.0, 0.0, 0.01, 2.0, 3);
    const CellMatrix table = headed(x);
    const CellMatrix process = cell("SLN");
    for (auto _ : state)
        benchmark::DoNotOptimize(stochastic_process(table, process));
}
BENCHMARK(BM_ShiftedLognormal1e5)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_SimulateNormal1e6(benchmark::State& state) {
    const CellMatrix process = cell("N"), points = cell(1e6), initial = cell(0.0), seed = cell(1.0);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            stochastic_process_simulate(process, points, initial, omitted, omitted, omitted, seed));
}
BENCHMARK(BM_SimulateNormal1e6)->Unit(benchmark::kMillisecond)->UseRealTime();

// The path alone, without its table of cells.
void BM_SimulatePath1e6(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(simulate_process(Process::normal, 1000000, 0.0, 0.0, 1.0, 0.0, 1));
}
BENCHMARK(BM_SimulatePath1e6)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
