// univariate_from_file on 10^6 records by 20 variables, and its two costly
// steps alone: reading the columns and sorting them.
// The file is made once by make_numeric_file into the working directory.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "data/delimited_file.hpp"
#include "numeric_file.hpp"
#include "stats/means.hpp"

namespace {

using namespace zentable;

const std::string& data_file() {
    return bench::numeric_file_1e6x20();
}

svec variable_names() {
    svec names;
    for (int j = 1; j <= 20; ++j)
        names.push_back("x" + std::to_string(j));
    return names;
}

CellMatrix names_cell() {
    return bench::x_names_1e6x20();
}

// The columns as read, kept for the sorting benchmarks.
const std::vector<dvec>& columns_read() {
    static const std::vector<dvec> columns =
        read_numeric_columns(data_file(), variable_names(), ',').values;
    return columns;
}

void BM_UnivariateFromFile(benchmark::State& state) {
    const std::string& path = data_file();
    const CellMatrix names = names_cell();
    for (auto _ : state) {
        CellMatrix report = univariate_from_file(path, names, CellMatrix(1, 1));
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_UnivariateFromFile)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

void BM_ReadNumericColumns(benchmark::State& state) {
    const std::string& path = data_file();
    const svec names = variable_names();
    for (auto _ : state) {
        NumericColumns columns = read_numeric_columns(path, names, ',');
        benchmark::DoNotOptimize(columns);
        state.counters["records"] = static_cast<double>(columns.records);
    }
}
BENCHMARK(BM_ReadNumericColumns)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// What univariate does: the columns sorted in two threads.
void BM_SortColumns(benchmark::State& state) {
    const std::vector<dvec>& original = columns_read();
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<dvec> columns = original;
        state.ResumeTiming();
        sort_columns(columns);
        benchmark::DoNotOptimize(columns);
    }
}
BENCHMARK(BM_SortColumns)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// The same sort in one thread, to show what the second thread saves.
void BM_SortColumnsOneThread(benchmark::State& state) {
    const std::vector<dvec>& original = columns_read();
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<dvec> columns = original;
        state.ResumeTiming();
        for (dvec& column : columns)
            numeric_sort(column);
        benchmark::DoNotOptimize(columns);
    }
}
BENCHMARK(BM_SortColumnsOneThread)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
