// FFT of 2^20 real values, as bench/fft_vs_peers.sh times it end to end:
// the whole command on a column of cells as the driver calls it, the
// transform on plain values (copy in, plan, execute, refill the mirrored
// half), and FFTW's execute alone, to show where the command's time goes.
#include <benchmark/benchmark.h>

#include <fftw3.h>

#include <random>

#include "numeric/fft.hpp"

namespace {

using namespace zentable;

constexpr std::size_t kCount = std::size_t{1} << 20;

std::vector<double> values() {
    std::mt19937_64 gen(20261125);
    std::uniform_real_distribution<double> uniform(-100.0, 100.0);
    std::vector<double> x(kCount);
    for (double& v : x)
        v = uniform(gen);
    return x;
}

void BM_FFTCommand2e20(benchmark::State& state) {
    const std::vector<double> x = values();
    CellMatrix column(kCount, 1);
    for (std::size_t i = 0; i < kCount; ++i)
        column(i, 0) = x[i];
    const CellMatrix omitted(1, 1);
    for (auto _ : state)
        benchmark::DoNotOptimize(FFT(column, omitted));
}
BENCHMARK(BM_FFTCommand2e20)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_FFTValues2e20(benchmark::State& state) {
    const std::vector<double> x = values();
    for (auto _ : state)
        benchmark::DoNotOptimize(fft_1d_real(x, false));
}
BENCHMARK(BM_FFTValues2e20)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_FFTWExecute2e20(benchmark::State& state) {
    const std::vector<double> x = values();
    double* in = static_cast<double*>(fftw_malloc(sizeof(double) * kCount));
    auto* out = static_cast<fftw_complex*>(fftw_malloc(sizeof(fftw_complex) * (kCount / 2 + 1)));
    fftw_plan plan = fftw_plan_dft_r2c_1d(static_cast<int>(kCount), in, out, FFTW_ESTIMATE);
    std::copy(x.begin(), x.end(), in);
    for (auto _ : state) {
        fftw_execute(plan);
        benchmark::DoNotOptimize(out[1][0]);
    }
    fftw_destroy_plan(plan);
    fftw_free(out);
    fftw_free(in);
}
BENCHMARK(BM_FFTWExecute2e20)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
