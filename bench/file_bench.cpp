// Reading x, y and weight from a delimited file, and the whole fit from a
// file, on 10^6 records by 20 variables (about 200 MB of text).
// The file is made once by make_numeric_file into the working directory.
#include <benchmark/benchmark.h>

#include <string>

#include "data/delimited_file.hpp"
#include "models/scoring.hpp"
#include "numeric_file.hpp"
#include "regression/linear_reg.hpp"
#include "regression/linear_reg_variants.hpp"

namespace {

using namespace zentable;

const std::string& data_file() {
    return bench::numeric_file_1e6x20();
}

CellMatrix x_names() {
    return bench::x_names_1e6x20();
}

void BM_ReadXywFromFile(benchmark::State& state) {
    const std::string& path = data_file();
    const CellMatrix names = x_names();
    for (auto _ : state) {
        XYW data = read_xyw_from_file(path, names, CellMatrix("y"), CellMatrix(1, 1), ',');
        benchmark::DoNotOptimize(data);
        state.counters["records"] = static_cast<double>(data.x.size());
    }
}
BENCHMARK(BM_ReadXywFromFile)->Unit(benchmark::kMillisecond)->Iterations(3);

// Read, rank test, moments, solve and report: what linear_reg_from_file does.
void BM_FitFromFile(benchmark::State& state) {
    const std::string& path = data_file();
    const CellMatrix names = x_names();
    for (auto _ : state) {
        const XYW d = read_xyw_from_file(path, names, CellMatrix("y"), CellMatrix(1, 1), ',');
        CellMatrix report = run_linear_reg(d.x_names, d.x, d.y, d.weight, {}, "linear_reg");
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_FitFromFile)->Unit(benchmark::kMillisecond)->Iterations(3);

// Scoring a linear model over the whole file: read, predict, write a copy
// with the score appended.
void BM_ModelScoreFromFile(benchmark::State& state) {
    const std::string& path = data_file();
    const std::string model =
        linear_reg_from_file(path, x_names(), CellMatrix("y"), CellMatrix(1, 1), CellMatrix(1, 1),
                             CellMatrix(1, 1))(0, 0)
            .StringValue();
    for (auto _ : state) {
        CellMatrix message = model_score_from_file(model, path, CellMatrix("yhat"),
                                                   path + ".scored", CellMatrix(1, 1));
        benchmark::DoNotOptimize(message);
    }
}
BENCHMARK(BM_ModelScoreFromFile)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
