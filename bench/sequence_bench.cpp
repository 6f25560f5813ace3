// Sobol_numbers of 10^6 points in 10 dimensions, as a worksheet call, as the
// bare sequence, and the cell table alone; Halton and uniform draws for
// comparison.
#include <benchmark/benchmark.h>

#include <vector>

#include "numeric/random.hpp"
#include "numeric/sequences.hpp"
#include "numeric/sobol.hpp"

namespace {

using namespace zentable;

void BM_SobolNumbersCommand(benchmark::State& state) {
    const CellMatrix numbers(static_cast<double>(state.range(0)));
    const CellMatrix dimension(static_cast<double>(state.range(1)));
    for (auto _ : state) {
        CellMatrix table = Sobol_numbers(numbers, dimension);
        benchmark::DoNotOptimize(table);
    }
}
BENCHMARK(BM_SobolNumbersCommand)
    ->Args({1000000, 10})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

// The table alone, made and filled with numbers as the command fills it: what
// the command costs beyond the sequence.
void BM_CellTableAlone(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const int d = static_cast<int>(state.range(1));
    for (auto _ : state) {
        CellMatrix table(static_cast<std::size_t>(n) + 1, d);
        for (int i = 1; i <= n; ++i)
            for (int j = 0; j < d; ++j)
                table(i, j) = i * 1e-6;
        benchmark::DoNotOptimize(table);
    }
}
BENCHMARK(BM_CellTableAlone)
    ->Args({1000000, 10})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

void BM_SobolSequence(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const int d = static_cast<int>(state.range(1));
    std::vector<double> point(d);
    for (auto _ : state) {
        Sobol sequence(d);
        double sum = 0.0;
        for (int i = 0; i < n; ++i) {
            sequence.next(point.data());
            sum += point[d - 1];
        }
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_SobolSequence)->Args({1000000, 10})->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_HaltonNumbersCommand(benchmark::State& state) {
    const CellMatrix numbers(static_cast<double>(state.range(0)));
    const CellMatrix dimension(static_cast<double>(state.range(1)));
    for (auto _ : state) {
        CellMatrix table = Halton_numbers(numbers, dimension);
        benchmark::DoNotOptimize(table);
    }
}
BENCHMARK(BM_HaltonNumbersCommand)
    ->Args({1000000, 10})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

void BM_UniformDraws(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        MersenneTwister generator(42);
        double sum = 0.0;
        for (int i = 0; i < n; ++i)
            sum += uniform_draw(generator);
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_UniformDraws)->Arg(10000000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
