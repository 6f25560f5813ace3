// The binary evaluation of a million scored records: the concordance counts
// alone, and with a gains chart of ten bins.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include "models/evaluation.hpp"

namespace {

using namespace zentable;

// Records of actual 0 or 1, a probability that tracks it, and a weight. With
// `decimals` above 0 the scores are rounded, as stored scores often are, so
// that long runs of ties form.
dmat make_scored_records(std::size_t records, int decimals, unsigned seed = 20261123) {
    std::mt19937_64 gen(seed);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    const double scale = decimals > 0 ? std::pow(10.0, decimals) : 0.0;
    dmat out;
    out.reserve(records);
    for (std::size_t r = 0; r < records; ++r) {
        double p = u(gen);
        if (scale > 0)
            p = std::round(p * scale) / scale;
        const double y = u(gen) < p ? 1.0 : 0.0;
        out.push_back({y, p, 0.5 + u(gen)});
    }
    return out;
}

const dmat& distinct_scores() {
    static const dmat data = make_scored_records(1000000, 0);
    return data;
}

const dmat& tied_scores() {
    static const dmat data = make_scored_records(1000000, 3);
    return data;
}

void BM_ConcordanceDistinctScores(benchmark::State& state) {
    const dmat& data = distinct_scores();
    for (auto _ : state) {
        BinaryEval eval;
        binary_eval_core(data, 0, eval);
        benchmark::DoNotOptimize(eval);
    }
    state.counters["records"] = static_cast<double>(data.size());
}
BENCHMARK(BM_ConcordanceDistinctScores)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_ConcordanceTiedScores(benchmark::State& state) {
    const dmat& data = tied_scores();
    for (auto _ : state) {
        BinaryEval eval;
        binary_eval_core(data, 0, eval);
        benchmark::DoNotOptimize(eval);
    }
}
BENCHMARK(BM_ConcordanceTiedScores)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The whole record of model_bin_eval: counts, ten bins and Hosmer-Lemeshow.
void BM_BinaryEvalWithGains(benchmark::State& state) {
    const dmat& data = distinct_scores();
    for (auto _ : state) {
        BinaryEval eval;
        binary_eval_core(data, 10, eval);
        benchmark::DoNotOptimize(eval);
    }
}
BENCHMARK(BM_BinaryEvalWithGains)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
