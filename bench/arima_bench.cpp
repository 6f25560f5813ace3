// The conditional-sum-of-squares fits on 10^4 points: arima of an ARMA(2,1)
// with its mean and sarima (0,1,1)x(0,1,1)_12, each the whole command with
// its defaults (10,050 evaluations of the recursion) on a table of cells;
// then one evaluation of each objective beside the plain loop that sums in
// the same order with every coefficient taken, which the objectives replace.
// The end-to-end figures with R and statsmodels come from bench/arima_vs_r.sh.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

#include "timeseries/arima.hpp"

namespace {

using namespace zentable;

constexpr std::size_t kPoints = 10000;

// ARMA(2,1) about 10: a = (0.6, -0.3), m = 0.4.
dvec arma_series(unsigned seed) {
    std::mt19937_64 gen(seed);
    std::normal_distribution<double> normal;
    dvec y(kPoints + 100), e(kPoints + 100);
    for (std::size_t t = 0; t < y.size(); ++t) {
        e[t] = normal(gen);
        y[t] = e[t] + (t >= 1 ? 0.6 * y[t - 1] + 0.4 * e[t - 1] : 0.0) -
               (t >= 2 ? 0.3 * y[t - 2] : 0.0);
    }
    dvec out(y.begin() + 100, y.end());
    for (double& v : out)
        v += 10.0;
    return out;
}

// (1 - B)(1 - B^12) x = (1 - 0.4B)(1 - 0.6B^12) a.
dvec airline_series(unsigned seed) {
    std::mt19937_64 gen(seed);
    std::normal_distribution<double> normal;
    const std::size_t n = kPoints + 100;
    dvec a(n), x(n, 0.0);
    for (std::size_t t = 0; t < n; ++t) {
        a[t] = normal(gen);
        double w = a[t];
        if (t >= 1)
            w -= 0.4 * a[t - 1];
        if (t >= 12)
            w -= 0.6 * a[t - 12];
        if (t >= 13)
            w += 0.24 * a[t - 13];
        x[t] = w + (t >= 1 ? x[t - 1] : 0.0) + (t >= 12 ? x[t - 12] : 0.0) -
               (t >= 13 ? x[t - 13] : 0.0);
    }
    dvec out(x.begin() + 100, x.end());
    for (double& v : out)
        v += 100.0;
    return out;
}

CellMatrix column(const dvec& values) {
    CellMatrix t(values.size() + 1, 1);
    t(0, 0) = "x";
    for (std::size_t i = 0; i < values.size(); ++i)
        t(i + 1, 0) = values[i];
    return t;
}

CellMatrix scalar(double v) {
    CellMatrix t(1, 1);
    t(0, 0) = v;
    return t;
}

CellMatrix flag(bool v) {
    CellMatrix t(1, 1);
    t(0, 0) = v;
    return t;
}

const CellMatrix omitted(1, 1);

void BM_ArimaFit1e4(benchmark::State& state) {
    const CellMatrix x = column(arma_series(7));
    for (auto _ : state)
        benchmark::DoNotOptimize(arima(x, omitted, scalar(2), scalar(0), scalar(1), omitted,
                                       omitted, omitted, omitted, omitted));
}
BENCHMARK(BM_ArimaFit1e4)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_SarimaFit1e4(benchmark::State& state) {
    const CellMatrix x = column(airline_series(8));
    for (auto _ : state)
        benchmark::DoNotOptimize(sarima(x, flag(false), scalar(0), scalar(1), scalar(1), scalar(12),
                                        scalar(0), scalar(1), scalar(1), omitted, omitted, omitted,
                                        omitted, omitted));
}
BENCHMARK(BM_SarimaFit1e4)->Unit(benchmark::kMillisecond)->UseRealTime();

// The recursion as written, for the comparison.
double plain_css(const dvec& y, double mean, const dvec& a, const dvec& m, std::size_t start) {
    dvec e(y.size(), 0.0);
    double sse = 0.0;
    for (std::size_t t = start; t < y.size(); ++t) {
        double value = mean;
        for (std::size_t i = 1; i <= a.size(); ++i)
            value += (y[t - i] - mean) * a[i - 1];
        for (std::size_t j = 1; j <= std::min(m.size(), t); ++j)
            value += m[j - 1] * e[t - j];
        e[t] = y[t] - value;
        sse += (y[t] - value) * (y[t] - value);
    }
    return sse;
}

void BM_ArmaObjective(benchmark::State& state) {
    const GenericFunction3 objective(2, 1, arma_series(7));
    const dvec params{10.0, 0.6, -0.3, 0.4};
    for (auto _ : state)
        benchmark::DoNotOptimize(objective(params));
}
BENCHMARK(BM_ArmaObjective)->Unit(benchmark::kMicrosecond);

void BM_ArmaPlainLoop(benchmark::State& state) {
    const dvec y = arma_series(7);
    for (auto _ : state)
        benchmark::DoNotOptimize(plain_css(y, 10.0, {0.6, -0.3}, {0.4}, 2));
}
BENCHMARK(BM_ArmaPlainLoop)->Unit(benchmark::kMicrosecond);

void BM_AirlineObjective(benchmark::State& state) {
    const dvec x = airline_series(8);
    const dvec y = difference(difference(x, 12, 1), 1, 1);
    const GenericFunctionForSARIMA objective(0, 1, 12, 0, 1, y);
    const dvec params{0.0, -0.4, -0.6};
    for (auto _ : state)
        benchmark::DoNotOptimize(objective(params));
}
BENCHMARK(BM_AirlineObjective)->Unit(benchmark::kMicrosecond);

void BM_AirlinePlainLoop(benchmark::State& state) {
    const dvec x = airline_series(8);
    const dvec y = difference(difference(x, 12, 1), 1, 1);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            plain_css(y, 0.0, {}, seasonal_ma_expansion({-0.4}, {-0.6}, 12), 0));
}
BENCHMARK(BM_AirlinePlainLoop)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
