// The table commands in process: sort_file on a seeded file and merge_tables
// on two seeded tables, without the driver's reading and printing.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <string>

#include "data/sorting.hpp"
#include "data/table_commands.hpp"

namespace zentable {
namespace {

// Five fields as bench/make_table_files writes them: a text key of 20000
// values and a number with two decimals.
std::string sort_file_of(long records) {
    const std::string path = "/tmp/zentable_sort_bench_" + std::to_string(records) + ".csv";
    std::FILE* out = std::fopen(path.c_str(), "w");
    std::mt19937_64 gen(20261125u);
    auto below = [&](unsigned long n) { return static_cast<unsigned long>(gen() % n); };
    static const char* const regions[] = {"North", "South", "East", "West"};
    std::fprintf(out, "id,name,score,region,amount\n");
    for (long r = 1; r <= records; ++r) {
        std::fprintf(out, "%ld,c%05lu,%lu.%02lu,%s,%lu\n", r, below(20000), below(1000), below(100),
                     regions[below(4)], below(100000));
    }
    std::fclose(out);
    return path;
}

void SortFile(benchmark::State& state) {
    const std::string input = sort_file_of(state.range(0));
    CellMatrix keys(2, 2);
    keys(0, 0) = "name";
    keys(0, 1) = 1.0;
    keys(1, 0) = "score";
    keys(1, 1) = -1.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(sort_file(input, keys, input + ".sorted", CellMatrix(1, 1)));
    }
    std::remove(input.c_str());
    std::remove((input + ".sorted").c_str());
}
BENCHMARK(SortFile)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

CellMatrix merge_table(std::mt19937_64& gen, std::size_t rows) {
    CellMatrix table(rows, 3);
    for (std::size_t i = 0; i < rows; ++i) {
        table(i, 0) = static_cast<double>(gen() % (rows * 3 / 2));
        table(i, 1) = static_cast<double>(gen() % 1000);
        table(i, 2) = static_cast<double>(gen() % 100000) / 10.0;
    }
    return table;
}

void MergeTables(benchmark::State& state) {
    std::mt19937_64 gen(20261125u);
    const auto rows = static_cast<std::size_t>(state.range(0));
    const CellMatrix table1 = merge_table(gen, rows);
    const CellMatrix table2 = merge_table(gen, rows);
    CellMatrix out1(1, 3), out2(1, 2);
    for (int j = 0; j < 3; ++j) {
        out1(0, static_cast<std::size_t>(j)) = j + 1.0;
    }
    out2(0, 0) = 2.0;
    out2(0, 1) = 3.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            merge_tables(table1, table2, CellMatrix(1.0), CellMatrix(1.0), out1, out2));
    }
}
BENCHMARK(MergeTables)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zentable

BENCHMARK_MAIN();
