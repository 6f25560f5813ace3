// The moments of a weighted regression over a table held in memory: the part
// of a fit whose cost grows with the records.
#include <benchmark/benchmark.h>

#include "regression/weighted_regression.hpp"
#include "synthetic.hpp"

namespace {

using namespace zentable;

const bench::SyntheticRegression& data_1e6_by_20() {
    static const bench::SyntheticRegression data = bench::make_regression_data(1000000, 20);
    return data;
}

void BM_WeightedMoments(benchmark::State& state) {
    const auto& data = data_1e6_by_20();
    for (auto _ : state) {
        Moments m = weighted_moments(data.x, data.y, data.weight);
        benchmark::DoNotOptimize(m);
    }
    state.counters["records"] = static_cast<double>(data.x.size());
}
BENCHMARK(BM_WeightedMoments)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The whole fit once the data are decoded: moments, sweep and statistics.
void BM_FitWeightedRegression(benchmark::State& state) {
    const auto& data = data_1e6_by_20();
    for (auto _ : state) {
        RegressionFit fit = fit_weighted_regression(data.x, data.y, data.weight, {});
        benchmark::DoNotOptimize(fit);
    }
}
BENCHMARK(BM_FitWeightedRegression)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
