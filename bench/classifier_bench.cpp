// The classifiers on 10^6 records by 20 variables and 3 classes: naive Bayes
// from a file, read and fitted, and LDA and QDA on a table of cells already in
// memory (the same records), decoded and fitted; each includes its report and
// training confusion.
#include <benchmark/benchmark.h>

#include "data/delimited_file.hpp"
#include "learners/discriminant.hpp"
#include "learners/naive_bayes.hpp"
#include "numeric_file.hpp"

namespace {

using namespace zentable;

// The classes file as a table of cells, so that the fits in memory see the
// records that the file fit and R see.
struct Cells {
    CellMatrix x, y;
};

const Cells& cells_1e6_by_20() {
    static const Cells cells = [] {
        const MixedTable table = read_whole_table(bench::classes_file_1e6x20(), ',');
        const std::size_t n = table.numeric_rows.size();
        Cells c{CellMatrix(n + 1, 20), CellMatrix(n + 1, 1)};
        for (std::size_t j = 0; j < 20; ++j)
            c.x(0, j) = table.names[j];
        c.y(0, 0) = table.names[20];
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < 20; ++j)
                c.x(i + 1, j) = table.numeric_rows[i][j];
            c.y(i + 1, 0) = table.text_rows[i][0];
        }
        return c;
    }();
    return cells;
}

void BM_NaiveBayesFromFile(benchmark::State& state) {
    const std::string& file = bench::classes_file_1e6x20();
    const CellMatrix names = bench::x_names_1e6x20();
    for (auto _ : state) {
        CellMatrix report = naive_bayes_classifier_from_file(file, names, CellMatrix("y"), "",
                                                             CellMatrix(1, 1), CellMatrix(1, 1));
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_NaiveBayesFromFile)->Unit(benchmark::kMillisecond)->MinTime(5.0);

void BM_LDA(benchmark::State& state) {
    const Cells& c = cells_1e6_by_20();
    for (auto _ : state) {
        CellMatrix report = LDA(c.x, c.y, CellMatrix(1, 1));
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_LDA)->Unit(benchmark::kMillisecond)->MinTime(5.0);

void BM_QDA(benchmark::State& state) {
    const Cells& c = cells_1e6_by_20();
    for (auto _ : state) {
        CellMatrix report = QDA(c.x, c.y, CellMatrix(1, 1));
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_QDA)->Unit(benchmark::kMillisecond)->MinTime(5.0);

}  // namespace

BENCHMARK_MAIN();
