// The neural network on 10^5 records by 10 inputs, one hidden layer of 10
// nodes, 100 epochs of resilient propagation under least squares: from the
// file, read, trained, evaluated and laid out; and the training alone on the
// same shape in memory.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "learners/neural_net.hpp"
#include "synthetic.hpp"

namespace {

using namespace zentable;

// Made once by make_numeric_file in the working directory, as the peers' script reads it.
const std::string& file_1e5x10() {
    static const std::string path = [] {
        const std::string p = "bench_tree_1e5x10.csv";
        if (!std::ifstream(p) &&
            std::system(("./make_numeric_file " + p + " 100000 10 20261123").c_str()) != 0)
            std::abort();
        return p;
    }();
    return path;
}

CellMatrix names_1e5x10() {
    CellMatrix names(1, 10);
    for (std::size_t j = 0; j < 10; ++j)
        names(0, j) = "x" + std::to_string(j + 1);
    return names;
}

void BM_NeuralNetFromFile(benchmark::State& state) {
    const CellMatrix names = names_1e5x10();
    for (auto _ : state) {
        CellMatrix report = neural_net_from_file(
            file_1e5x10(), names, CellMatrix("y"), "LS", CellMatrix(10.0), CellMatrix(100.0),
            CellMatrix(1, 1), CellMatrix(1, 1), CellMatrix(1, 1), CellMatrix(1, 1),
            CellMatrix(1, 1), CellMatrix(1, 1), CellMatrix(1, 1));
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_NeuralNetFromFile)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_TrainIrpropm(benchmark::State& state) {
    const bench::SyntheticRegression data = bench::make_regression_data(100000, 10);
    NetSettings settings;
    settings.layerSizes = {10, 10, 1};
    settings.epochs = 100;
    settings.variableNames.assign(10, "x");
    for (auto _ : state) {
        NetData copy{data.x, data.y, data.weight};
        dmat history;
        NeuralNetwork net = trainNeuralNet(settings, copy, nullptr, history);
        benchmark::DoNotOptimize(net);
    }
}
BENCHMARK(BM_TrainIrpropm)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
