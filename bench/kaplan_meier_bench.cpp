// Kaplan_Meier in process on 10^6 records held as cells (whole days 1 to
// 3650, about a quarter censored, three text groups), as the drivers hand
// them over; and the sort of the times alone, radix against the library's.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "multivariate/kaplan_meier.hpp"

namespace {

using namespace zentable;

struct SurvivalCells {
    CellMatrix days{1000001, 1}, status{1000001, 1}, group{1000001, 1};
};

const SurvivalCells& cells() {
    static const SurvivalCells data = [] {
        SurvivalCells d;
        std::mt19937_64 gen(20261124);
        auto uniform = [&] {
            return (static_cast<double>(gen() >> 11) + 0.5) / 9007199254740992.0;
        };
        const char* const names[] = {"alpha", "beta", "gamma"};
        const double mean_days[] = {900.0, 1400.0, 2100.0};
        d.days(0, 0) = "days";
        d.status(0, 0) = "status";
        d.group(0, 0) = "group";
        const MJCellValue texts[] = {MJCellValue(names[0]), MJCellValue(names[1]),
                                     MJCellValue(names[2])};
        for (std::size_t r = 1; r <= 1000000; ++r) {
            const int g = static_cast<int>(uniform() * 3.0);
            d.days(r, 0) = std::fmin(std::ceil(-mean_days[g] * std::log(uniform())), 3650.0);
            d.status(r, 0) = uniform() < 0.25 ? 0.0 : 1.0;
            d.group(r, 0) = texts[g];
        }
        return d;
    }();
    return data;
}

void BM_KaplanMeierByGroup(benchmark::State& state) {
    const SurvivalCells& d = cells();
    for (auto _ : state) {
        CellMatrix report = Kaplan_Meier(d.days, d.status, d.group, CellMatrix(1, 1));
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_KaplanMeierByGroup)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

void BM_KaplanMeierOneGroup(benchmark::State& state) {
    const SurvivalCells& d = cells();
    for (auto _ : state) {
        CellMatrix report = Kaplan_Meier(d.days, d.status, CellMatrix(1, 1), CellMatrix(1, 1));
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_KaplanMeierOneGroup)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

dvec day_times() {
    const SurvivalCells& d = cells();
    dvec times(1000000);
    for (std::size_t r = 0; r < times.size(); ++r)
        times[r] = d.days(r + 1, 0).NumericValue();
    return times;
}

void BM_SortTimesRadix(benchmark::State& state) {
    const dvec original = day_times();
    dvec scratch(original.size());
    for (auto _ : state) {
        state.PauseTiming();
        dvec times = original;
        state.ResumeTiming();
        sort_times(times.data(), times.size(), scratch.data());
        benchmark::DoNotOptimize(times);
    }
}
BENCHMARK(BM_SortTimesRadix)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

void BM_SortTimesLibrary(benchmark::State& state) {
    const dvec original = day_times();
    for (auto _ : state) {
        state.PauseTiming();
        dvec times = original;
        state.ResumeTiming();
        std::sort(times.begin(), times.end());
        benchmark::DoNotOptimize(times);
    }
}
BENCHMARK(BM_SortTimesLibrary)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
