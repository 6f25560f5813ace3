// The smoothing commands at the sizes users bring: the HP filter of 10^6
// points, lowess of 10^4 points at its own x (fraction 2/3, degree 1) and a
// Holt-Winters fit of type 3 on 10^4 monthly points. Each runs the whole
// command on a table of cells, as the driver calls it; the end-to-end
// figures with R and Python come from bench/smoothing_vs_peers.sh.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "timeseries/filters.hpp"
#include "timeseries/holt_winters.hpp"
#include "timeseries/lowess.hpp"

namespace {

using namespace zentable;

double uniform(std::mt19937_64& gen) {
    return (static_cast<double>(gen() >> 11) + 0.5) / 9007199254740992.0;
}

double normal(std::mt19937_64& gen) {
    return std::sqrt(-2.0 * std::log(uniform(gen))) * std::cos(6.283185307179586 * uniform(gen));
}

// A random walk with drift, a season of 12 and noise, under the header "x".
CellMatrix monthly(std::size_t n, unsigned seed) {
    std::mt19937_64 gen(seed);
    CellMatrix t(n + 1, 1);
    t(0, 0) = "x";
    double level = 100.0;
    for (std::size_t i = 0; i < n; ++i) {
        level += 0.05 + 0.2 * normal(gen);
        t(i + 1, 0) = level + 3.0 * std::sin(6.283185307179586 * (i % 12) / 12.0) + normal(gen);
    }
    return t;
}

CellMatrix scalar(double v) {
    CellMatrix t(1, 1);
    t(0, 0) = v;
    return t;
}

const CellMatrix omitted(1, 1);

void BM_HPFilter1e6(benchmark::State& state) {
    const CellMatrix x = monthly(1000000, 11);
    const CellMatrix lambda = scalar(1600);
    for (auto _ : state)
        benchmark::DoNotOptimize(HP_filter(x, lambda));
}
BENCHMARK(BM_HPFilter1e6)->Unit(benchmark::kMillisecond)->UseRealTime();

// The filter alone on the values, without the tables of cells around it.
void BM_HPTrend1e6(benchmark::State& state) {
    const CellMatrix table = monthly(1000000, 11);
    dvec x(1000000);
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = table(i + 1, 0).NumericValue();
    for (auto _ : state)
        benchmark::DoNotOptimize(hp_trend(x, 1600));
}
BENCHMARK(BM_HPTrend1e6)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_Lowess1e4(benchmark::State& state) {
    std::mt19937_64 gen(12);
    CellMatrix x(10001, 1), y(10001, 1);
    x(0, 0) = "x";
    y(0, 0) = "y";
    for (std::size_t i = 1; i <= 10000; ++i) {
        const double xi = 10.0 * uniform(gen);
        x(i, 0) = xi;
        y(i, 0) = std::sin(xi) + 0.3 * normal(gen);
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(lowess(x, y, omitted, omitted, omitted));
}
BENCHMARK(BM_Lowess1e4)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_HoltWintersType3_1e4(benchmark::State& state) {
    const CellMatrix x = monthly(10000, 13);
    const CellMatrix type = scalar(3), frequency = scalar(12), forecasts = scalar(12);
    for (auto _ : state)
        benchmark::DoNotOptimize(Holt_Winters(x, type, frequency, forecasts, omitted, omitted));
}
BENCHMARK(BM_HoltWintersType3_1e4)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
