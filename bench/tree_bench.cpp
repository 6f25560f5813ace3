// Trees on 10^5 records by 10 variables: one regression tree of up to 32
// leaves through the `tree` command and through the growth engine alone, and
// logistic boosting of 100 trees of 4 leaves through its command.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>

#include "synthetic.hpp"
#include "trees/boosting_core.hpp"
#include "trees/tree.hpp"
#include "trees/tree_boosting.hpp"
#include "trees/tree_core.hpp"

namespace {

using namespace zentable;

constexpr std::size_t kRecords = 100000;
constexpr std::size_t kVariables = 10;

const bench::SyntheticRegression& data() {
    static const bench::SyntheticRegression d = bench::make_regression_data(kRecords, kVariables);
    return d;
}

// The same records with a 0/1 target drawn from a logistic model of y.
const dvec& binary_y() {
    static const dvec y = [] {
        std::mt19937_64 gen(20261124);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        dvec out;
        for (double v : data().y)
            out.push_back(u(gen) < 1.0 / (1.0 + std::exp(-(v - 1.0))) ? 1.0 : 0.0);
        return out;
    }();
    return y;
}

CellMatrix x_cells() {
    const auto& d = data();
    CellMatrix x(kRecords + 1, kVariables);
    for (std::size_t j = 0; j < kVariables; ++j)
        x(0, j) = "x" + std::to_string(j + 1);
    for (std::size_t i = 0; i < kRecords; ++i)
        for (std::size_t j = 0; j < kVariables; ++j)
            x(i + 1, j) = d.x[i][j];
    return x;
}

CellMatrix y_cells(const dvec& y) {
    CellMatrix c(y.size() + 1, 1);
    c(0, 0) = "y";
    for (std::size_t i = 0; i < y.size(); ++i)
        c(i + 1, 0) = y[i];
    return c;
}

CellMatrix config(std::initializer_list<std::pair<const char*, double>> entries) {
    CellMatrix c(entries.size(), 2);
    std::size_t r = 0;
    for (const auto& [name, value] : entries) {
        c(r, 0) = name;
        c(r, 1) = value;
        ++r;
    }
    return c;
}

// The command: decoding of 1.1 million cells, growth, filing, evaluation and
// report. MAXLEVEL 10 lets the tree reach its 32 leaves.
void BM_TreeCommand32Leaves(benchmark::State& state) {
    const CellMatrix x = x_cells();
    const CellMatrix y = y_cells(data().y);
    const CellMatrix settings = config({{"NUMTERMINALS", 32}, {"MAXLEVEL", 10}});
    std::size_t rows = 0;
    for (auto _ : state) {
        const CellMatrix report = tree(x, y, settings, CellMatrix(1, 1));
        rows = report.RowsInStructure();
        benchmark::DoNotOptimize(rows);
    }
    state.counters["report_rows"] = static_cast<double>(rows);
}
BENCHMARK(BM_TreeCommand32Leaves)->Unit(benchmark::kMillisecond)->MinTime(3.0);

// The growth engine alone on the same data.
void BM_GrowTree32Leaves(benchmark::State& state) {
    const auto& d = data();
    const TreeTable table = make_tree_table(d.x, d.y, dvec(kRecords, 1.0));
    std::vector<int> columns;
    for (int j = 0; j < static_cast<int>(kVariables); ++j)
        columns.push_back(j);
    TreeSettings settings;
    settings.numTerminals = 32;
    settings.maxLevel = 10;
    std::size_t nodes = 0;
    for (auto _ : state) {
        const GrownTree grown = growTree(table, {}, columns, {static_cast<int>(kVariables)},
                                         static_cast<int>(kVariables) + 1, settings);
        nodes = grown.nodes.size();
        benchmark::DoNotOptimize(nodes);
    }
    state.counters["nodes"] = static_cast<double>(nodes);
}
BENCHMARK(BM_GrowTree32Leaves)->Unit(benchmark::kMillisecond)->MinTime(3.0);

// tree_boosting_logistic_reg: 100 trees of 4 leaves, the command end to end.
void BM_BoostingLogistic100Trees(benchmark::State& state) {
    const CellMatrix x = x_cells();
    const CellMatrix y = y_cells(binary_y());
    const CellMatrix settings = config({{"NUMTREES", 100}, {"NUMTERMINALS", 4}});
    for (auto _ : state) {
        const CellMatrix report = tree_boosting_logistic_reg(x, y, settings, CellMatrix(1, 1));
        benchmark::DoNotOptimize(report.RowsInStructure());
    }
}
BENCHMARK(BM_BoostingLogistic100Trees)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
