// A compiled expression as the solvers call it, and the integral command whole.
// bench/expression_vs_peers.sh sets these beside R, Python and the shell peers.

#include <benchmark/benchmark.h>

#include "optimisation/expression_function.hpp"
#include "optimisation/function_eval.hpp"

namespace {

const char* const kText = "z1 := x*x + y*y; z2 := x*x - y*y; sin(z1) + cos(z2)";

void call_operator(benchmark::State& state) {
    const zentable::GenericFunction f(kText, "x", {"x", "y"}, true);
    double x = 0.25;
    for (auto _ : state) {
        // A new vector per call, as a solver hands over its trial point.
        benchmark::DoNotOptimize(f({x, 0.5}));
        x += 1e-9;
    }
}
BENCHMARK(call_operator);

// Scan, symbol table, parser and compile: the cost paid once per command.
void construct(benchmark::State& state) {
    for (auto _ : state) {
        const zentable::GenericFunction f(kText, "x", {"x", "y"}, true);
        benchmark::DoNotOptimize(&f);
    }
    state.SetLabel("GenericFunction constructed and compiled");
}
BENCHMARK(construct)->Unit(benchmark::kMicrosecond);

void scan(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(zentable::scan_expression(kText));
    }
}
BENCHMARK(scan)->Unit(benchmark::kMicrosecond);

void integral_command(benchmark::State& state) {
    const zentable::CellMatrix func(std::string("exp(-x*x)"));
    const zentable::CellMatrix from(0.0);
    const zentable::CellMatrix to(2.0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(zentable::integral(func, from, to));
    }
}
BENCHMARK(integral_command)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
