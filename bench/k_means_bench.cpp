// k_means_from_file end to end on 10^5 records by 10 variables drawn around 8
// centers, 8 clusters, seed 36; and Lloyd's iteration alone on the same
// records in memory, with the number of rounds it took.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "data/delimited_file.hpp"
#include "multivariate/k_means.hpp"

namespace {

using namespace zentable;

const std::string& cluster_file() {
    static const std::string path = [] {
        const char* given = std::getenv("ZENTABLE_BENCH_CLUSTER_FILE");
        const std::string p = given ? given : "bench_cluster_1e5x10.csv";
        if (!std::ifstream(p)) {
            const std::string command = "./make_cluster_file " + p + " 100000 10 8";
            if (std::system(command.c_str()) != 0)
                std::abort();
        }
        return p;
    }();
    return path;
}

svec names() {
    svec n;
    for (int j = 1; j <= 10; ++j)
        n.push_back("x" + std::to_string(j));
    return n;
}

void BM_KMeansFromFile(benchmark::State& state) {
    CellMatrix varNames(1, 10);
    const svec n = names();
    for (std::size_t j = 0; j < n.size(); ++j)
        varNames(0, j) = n[j];
    for (auto _ : state) {
        CellMatrix r = k_means_from_file(cluster_file(), varNames, CellMatrix(8.0),
                                         CellMatrix(36.0), CellMatrix(1, 1), CellMatrix(1, 1));
        benchmark::DoNotOptimize(r);
    }
}
BENCHMARK(BM_KMeansFromFile)->Unit(benchmark::kMillisecond);

void BM_LloydInMemory(benchmark::State& state) {
    const NamedTable table = read_numeric_table(cluster_file(), names(), ',');
    const ivec start = initial_assignment(table.data.size(), 8, 36);
    long long rounds = 0;
    for (auto _ : state) {
        const Clustering c = lloyd(table.data, 8, start);
        rounds = c.rounds;
        benchmark::DoNotOptimize(c.within);
    }
    state.counters["rounds"] = static_cast<double>(rounds);
}
BENCHMARK(BM_LloydInMemory)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
