// Reading x, y and weight from a delimited file, and the whole fit from a
// file, on 10^6 records by 20 variables (about 200 MB of text).
// The file is made once by make_numeric_file into the working directory.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "data/delimited_file.hpp"
#include "models/scoring.hpp"
#include "regression/linear_reg.hpp"
#include "regression/linear_reg_variants.hpp"

namespace {

using namespace zentable;

const std::string& data_file() {
    static const std::string path = [] {
        const char* given = std::getenv("ZENTABLE_BENCH_FILE");
        const std::string p = given ? given : "bench_numeric_1e6x20.csv";
        if (!std::ifstream(p)) {
            const std::string command = "./make_numeric_file " + p + " 1000000 20";
            if (std::system(command.c_str()) != 0)
                std::abort();
        }
        return p;
    }();
    return path;
}

CellMatrix x_names() {
    CellMatrix names(1, 20);
    for (int j = 0; j < 20; ++j)
        names(0, j) = "x" + std::to_string(j + 1);
    return names;
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
