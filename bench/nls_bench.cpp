// The least-squares fit alone, without decoding or layout: a rational model of
// 7 parameters (the Thurber model) on 10^5 records made from known
// coefficients plus noise, from the problem's published far start.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <vector>

#include "optimisation/expression_function.hpp"
#include "optimisation/nls_solver.hpp"

namespace {

using zentable::dvec;
using zentable::LeastSquaresProblem;

LeastSquaresProblem thurber_like(std::size_t n) {
    const dvec b = {1288.1396800,  1491.0792535,  583.23836877,  75.416644291,
                    0.96629502864, 0.39797285797, 0.049727297349};
    std::mt19937_64 rng(2026);
    std::uniform_real_distribution<double> uniform(-3.067, 2.2);
    std::normal_distribution<double> noise(0.0, 13.0);
    LeastSquaresProblem p;
    p.text = "(b1 + b2*x + b3*x^2 + b4*x^3) / (1 + b5*x + b6*x^2 + b7*x^3)";
    p.parameter_names = {"b1", "b2", "b3", "b4", "b5", "b6", "b7"};
    p.initial = {1000, 1000, 400, 40, 0.7, 0.3, 0.03};
    p.column_names = {"x"};
    for (std::size_t i = 0; i < n; ++i) {
        const double x = uniform(rng);
        const double f = (b[0] + b[1] * x + b[2] * x * x + b[3] * x * x * x) /
                         (1 + b[4] * x + b[5] * x * x + b[6] * x * x * x);
        p.rows.push_back({x});
        p.y.push_back(f + noise(rng));
    }
    p.weight.assign(n, 1.0);
    return p;
}

void BM_FitRational(benchmark::State& state) {
    const LeastSquaresProblem p = thurber_like(static_cast<std::size_t>(state.range(0)));
    int evaluations = 0;
    for (auto _ : state) {
        const zentable::LeastSquaresFit fit = zentable::fit_least_squares(p);
        evaluations = fit.evaluations;
        benchmark::DoNotOptimize(fit.sse);
    }
    state.counters["evaluations"] = evaluations;
    state.SetItemsProcessed(state.iterations() * state.range(0) * evaluations);
}
BENCHMARK(BM_FitRational)->Arg(100000)->Unit(benchmark::kMillisecond);

// One pass of the compiled expression over the rows, as the optimiser makes
// k + 1 of them an iteration: the time per row is the floor of the fit.
void BM_ResidualPass(benchmark::State& state) {
    const LeastSquaresProblem p = thurber_like(static_cast<std::size_t>(state.range(0)));
    const zentable::ParametricFunction f(p.text, p.parameter_names, p.column_names);
    std::vector<dvec> columns(1);
    for (const dvec& row : p.rows) {
        columns[0].push_back(row[0]);
    }
    dvec out(p.y.size());
    for (auto _ : state) {
        f.weighted_residuals(p.initial.data(), columns, p.y, p.weight, 0, p.y.size(), out.data());
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ResidualPass)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
