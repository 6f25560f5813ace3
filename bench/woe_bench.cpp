// Weight of evidence binning of a delimited file: 10^6 records by 20
// continuous variables against a binary target, 20 initial bins.
// The file is made once by make_numeric_file into the working directory.
#include <benchmark/benchmark.h>

#include <string>

#include "data/delimited_file.hpp"
#include "numeric_file.hpp"
#include "woe/woe_cells.hpp"
#include "woe/woe_xcont.hpp"

namespace {

using namespace zentable;

const CellMatrix kOmitted(1, 1);

// Reading, binning, merging and the report: what the command does.
void BM_WoeXcontYbinFromFile(benchmark::State& state) {
    const std::string& path = bench::binary_file_1e6x20();
    const CellMatrix names = bench::x_names_1e6x20();
    for (auto _ : state) {
        CellMatrix report =
            woe_xcont_ybin_from_file(path, names, CellMatrix("y"), CellMatrix(20.0), kOmitted,
                                     kOmitted, kOmitted, kOmitted, kOmitted);
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_WoeXcontYbinFromFile)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// The reading alone: the 20 x, y and their per-field flags.
void BM_WoeReadFile(benchmark::State& state) {
    const std::string& path = bench::binary_file_1e6x20();
    const CellMatrix names = bench::x_names_1e6x20();
    for (auto _ : state) {
        WoeData data = read_woe_data(path, names, CellMatrix("y"), kOmitted, ',');
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(BM_WoeReadFile)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// The binning alone, on data already read.
void BM_WoeBinsYbin(benchmark::State& state) {
    const WoeData data = read_woe_data(bench::binary_file_1e6x20(), bench::x_names_1e6x20(),
                                       CellMatrix("y"), kOmitted, ',');
    bvec usable(data.y.size(), true);
    for (auto _ : state) {
        auto bins = woe_bins_ybin(data.x, data.y, data.w, usable, 20, 1.0, 2147483647);
        benchmark::DoNotOptimize(bins);
    }
}
BENCHMARK(BM_WoeBinsYbin)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
