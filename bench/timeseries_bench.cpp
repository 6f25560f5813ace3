// The correlograms and tests of one series at the sizes users bring: the
// autocorrelations and partial autocorrelations of 10^6 points to lag 100,
// Kendall's S of 10^6 points, and the augmented Dickey-Fuller regression of
// 10^5 points with its default 67 lags. The end-to-end figures, with the
// peers in R and Python, come from bench/timeseries_vs_peers.sh.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "timeseries/adf_test.hpp"
#include "timeseries/correlograms.hpp"
#include "timeseries/mann_kendall.hpp"

namespace {

using namespace zentable;

// An AR(1) series with phi 0.5, seeded; raw draws mapped by hand, as the
// standard fixes the engine but not the distributions.
dvec ar1_series(std::size_t n, unsigned seed) {
    std::mt19937_64 gen(seed);
    auto uniform = [&] { return (static_cast<double>(gen() >> 11) + 0.5) / 9007199254740992.0; };
    dvec x(n);
    double previous = 0.0;
    for (double& v : x) {
        const double noise =
            std::sqrt(-2.0 * std::log(uniform())) * std::cos(6.283185307179586 * uniform());
        previous = 0.5 * previous + noise;
        v = previous;
    }
    return x;
}

const dvec& million() {
    static const dvec x = ar1_series(1000000, 20261124u);
    return x;
}

// The sums one lag at a time, as a loop of its own would run them.
dvec plain_autocovariances(const dvec& x, int maxLag) {
    const dvec d = deviations(x);
    dvec c(static_cast<std::size_t>(maxLag) + 1);
    for (std::size_t k = 0; k < c.size(); ++k) {
        double s = 0.0;
        for (std::size_t t = 0; t + k < d.size(); ++t)
            s += d[t + k] * d[t];
        c[k] = s;
    }
    return c;
}

void BM_Autocorrelations1e6Lag100(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(autocorrelations(million(), 100));
}
BENCHMARK(BM_Autocorrelations1e6Lag100)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PartialAutocorrelations1e6Lag100(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(partial_autocorrelations(autocorrelations(million(), 100), 100));
}
BENCHMARK(BM_PartialAutocorrelations1e6Lag100)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PlainLoopAutocovariances1e6Lag100(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(plain_autocovariances(million(), 100));
}
BENCHMARK(BM_PlainLoopAutocovariances1e6Lag100)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_KendallCount1e6(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(kendall_count(million()));
}
BENCHMARK(BM_KendallCount1e6)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_AdfRegression1e5Lag67(benchmark::State& state) {
    static const dvec walk = [] {
        dvec steps = ar1_series(100000, 7u);
        for (std::size_t i = 1; i < steps.size(); ++i)
            steps[i] += steps[i - 1];
        return steps;
    }();
    for (auto _ : state)
        benchmark::DoNotOptimize(adf_regression(walk, 67, "ct"));
}
BENCHMARK(BM_AdfRegression1e5Lag67)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
