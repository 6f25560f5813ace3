// Differential evolution as the commands run it: 200 generations of 50 members,
// expression and engine together, from the cells in to the table out; and the
// engine alone on a compiled objective, the ceiling.
// bench/diff_evol_vs_peers.sh sets these beside R's DEoptim and scipy.

#include <benchmark/benchmark.h>

#include <cmath>

#include "optimisation/diff_evol.hpp"

namespace {

using namespace zentable;

const char* const kRosenbrock4 =
    "100*(x2 - x1^2)^2 + (1 - x1)^2 + 100*(x3 - x2^2)^2 + (1 - x2)^2 + "
    "100*(x4 - x3^2)^2 + (1 - x3)^2";

CellMatrix column_of(const char* text) {
    CellMatrix c(1, 1);
    c(0, 0) = text;
    return c;
}

CellMatrix box(const std::vector<const char*>& names, double lower, double upper) {
    CellMatrix b(names.size(), 3);
    for (std::size_t i = 0; i < names.size(); ++i) {
        b(i, 0) = names[i];
        b(i, 1) = lower;
        b(i, 2) = upper;
    }
    return b;
}

void solver_rosenbrock4(benchmark::State& state) {
    const CellMatrix func = column_of(kRosenbrock4);
    const CellMatrix bounds = box({"x1", "x2", "x3", "x4"}, -2, 2);
    const CellMatrix omitted;
    for (auto _ : state) {
        benchmark::DoNotOptimize(diff_evol_solver(func, bounds, omitted, omitted));
    }
    state.SetLabel("10,050 evaluations");
}
BENCHMARK(solver_rosenbrock4)->Unit(benchmark::kMillisecond);

// 54 records of exp(-b1 x) / (b2 + b3 x), made from known coefficients with a
// fixed ripple as noise; bench/diff_evol_vs_peers.sh writes the same records.
void rational_data(CellMatrix& x, CellMatrix& y) {
    x = CellMatrix(55, 1);
    y = CellMatrix(55, 1);
    x(0, 0) = "x";
    y(0, 0) = "y";
    for (int i = 1; i <= 54; ++i) {
        const double xi = 0.5 + 0.11 * i;
        const double yi = std::exp(-0.17 * xi) / (0.006 + 0.012 * xi) * (1 + 0.02 * std::sin(i));
        x(static_cast<std::size_t>(i), 0) = xi;
        y(static_cast<std::size_t>(i), 0) = yi;
    }
}

void nls_solver_rational54(benchmark::State& state) {
    const CellMatrix func = column_of("exp(-b1*x) / (b2 + b3*x)");
    CellMatrix bounds(3, 3);
    const double box[3][2] = {{0, 1}, {0, 0.1}, {0, 0.1}};
    const char* names[3] = {"b1", "b2", "b3"};
    for (std::size_t i = 0; i < 3; ++i) {
        bounds(i, 0) = names[i];
        bounds(i, 1) = box[i][0];
        bounds(i, 2) = box[i][1];
    }
    CellMatrix x, y;
    rational_data(x, y);
    const CellMatrix omitted;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            diff_evol_nls_solver(func, bounds, x, y, omitted, omitted, omitted));
    }
    state.SetLabel("54 records, 10,050 evaluations");
}
BENCHMARK(nls_solver_rational54)->Unit(benchmark::kMillisecond);

// The engine with a compiled objective: what the expression layer adds is the
// difference to solver_rosenbrock4.
void engine_rosenbrock4(benchmark::State& state) {
    auto rosenbrock = [](dvec v) {
        double s = 0;
        for (std::size_t i = 0; i + 1 < v.size(); ++i) {
            const double a = v[i + 1] - v[i] * v[i], b = 1 - v[i];
            s += 100 * a * a + b * b;
        }
        return s;
    };
    for (auto _ : state) {
        benchmark::DoNotOptimize(run_diff_evol(rosenbrock, dvec(4, -2.0), dvec(4, 2.0), 200, 100));
    }
}
BENCHMARK(engine_rosenbrock4)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
