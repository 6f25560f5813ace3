#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "optimisation/diff_evol.hpp"

namespace zentable {
namespace {

constexpr double kLowest = std::numeric_limits<double>::lowest();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kPi = std::acos(-1.0);

double rosenbrock(dvec x) {
    double s = 0;
    for (std::size_t i = 0; i + 1 < x.size(); ++i) {
        s += 100 * std::pow(x[i + 1] - x[i] * x[i], 2) + std::pow(1 - x[i], 2);
    }
    return s;
}

double rastrigin(dvec x) {
    double s = 10.0 * static_cast<double>(x.size());
    for (double v : x) {
        s += v * v - 10 * std::cos(2 * kPi * v);
    }
    return s;
}

// Six local minima, two of them global at -1.0316284534898770 (a published value).
double six_hump_camel(dvec v) {
    const double x = v[0], y = v[1];
    return (4 - 2.1 * x * x + x * x * x * x / 3) * x * x + x * y + (-4 + 4 * y * y) * y * y;
}

struct Settings {
    double F = 0.8, CR = 0.9;
    bool alwaysAccept = false;
    int traceEvery = 0, strategy = 2, NP = 50, maxGen = 200;
    Population initial;
    bool recheck = false;
    int seed = 100;
};

template <class Objective>
DiffEvolRun run_with(const Settings& s, const dvec& lower, const dvec& upper, Objective f) {
    DiffEvolRun run;
    std::vector<Population> stored;
    diff_evol(kLowest, s.F, s.CR, s.alwaysAccept, lower, upper, f, s.traceEvery, s.strategy,
              static_cast<int>(lower.size()), s.NP, s.maxGen, s.initial, s.maxGen + 1, 1, s.recheck,
              true, 0.1, s.seed, run.finalPopulation, stored, run.bestmemit, run.bestvalit,
              run.nfeval);
    return run;
}

void expect_never_rises(const dvec& trail) {
    for (std::size_t g = 1; g < trail.size(); ++g) {
        ASSERT_LE(trail[g], trail[g - 1]) << "generation " << g + 1;
    }
}

TEST(DiffEvol, FirstRecordIsTheBestOfAPopulationDrawnFromTheSeed) {
    // The standard library's MT19937 seeds with the same init_genrand, so it
    // predicts the first population: member by member, coordinate by coordinate.
    const dvec lower{-5, 0, 2}, upper{5, 1, 2.5};
    std::mt19937 mt(4321);
    auto u = [&mt] { return (static_cast<double>(mt()) + 0.5) * 2.3283064365386963e-10; };
    dvec best;
    double bestC = 0;
    for (int i = 0; i < 50; ++i) {
        dvec m(3);
        for (std::size_t j = 0; j < 3; ++j) {
            m[j] = lower[j] + u() * (upper[j] - lower[j]);
        }
        const double c = rosenbrock(m);
        if (i == 0 || bestC >= c) {
            best = m;
            bestC = c;
        }
    }
    Settings s;
    s.maxGen = 1;
    s.seed = 4321;
    const DiffEvolRun run = run_with(s, lower, upper, rosenbrock);
    ASSERT_EQ(run.bestvalit.size(), 1u);
    EXPECT_EQ(run.bestvalit[0], bestC);
    EXPECT_EQ(run.bestmemit[0], best);
    EXPECT_EQ(run.nfeval, 100);  // the first population, then the one generation
}

TEST(DiffEvol, FindsKnownMinimaAndItsRecordsNeverRise) {
    const DiffEvolRun r4 = run_diff_evol(rosenbrock, dvec(4, -2.0), dvec(4, 2.0), 200, 100);
    EXPECT_EQ(r4.nfeval, 10050);
    EXPECT_LT(r4.last_cost(), 1e-8);
    for (double v : r4.last_best()) {
        EXPECT_NEAR(v, 1.0, 1e-4);
    }
    expect_never_rises(r4.bestvalit);

    const DiffEvolRun ras = run_diff_evol(rastrigin, dvec(3, -5.12), dvec(3, 5.12), 1000, 100);
    EXPECT_LT(ras.last_cost(), 1e-6);
    for (double v : ras.last_best()) {
        EXPECT_NEAR(v, 0.0, 1e-4);
    }
    expect_never_rises(ras.bestvalit);

    const DiffEvolRun camel = run_diff_evol(six_hump_camel, {-3, -2}, {3, 2}, 200, 100);
    EXPECT_NEAR(camel.last_cost(), -1.0316284534898770, 1e-12);
    EXPECT_NEAR(std::fabs(camel.last_best()[0]), 0.08984201368301331, 1e-6);
    expect_never_rises(camel.bestvalit);

    // One variable: the crossover run stops after its one coordinate.
    const DiffEvolRun one = run_diff_evol(rastrigin, {-5.12}, {5.12}, 100, 100);
    EXPECT_LT(one.last_cost(), 1e-12);
}

TEST(DiffEvol, EveryStrategyConverges) {
    auto sphere = [](dvec x) { return x[0] * x[0] + x[1] * x[1] + (x[2] - 1) * (x[2] - 1); };
    for (int strategy = 1; strategy <= 7; ++strategy) {
        Settings s;
        s.strategy = strategy;
        s.maxGen = 300;
        const DiffEvolRun run = run_with(s, dvec(3, -10.0), dvec(3, 10.0), sphere);
        EXPECT_LT(run.last_cost(), 1e-8) << "strategy " << strategy;
        expect_never_rises(run.bestvalit);
    }
}

TEST(DiffEvol, ASeedRepeatsItsRunAndSeedZeroDoesNot) {
    auto run = [](int seed) {
        return run_diff_evol(rosenbrock, dvec(2, -2.0), dvec(2, 2.0), 20, seed);
    };
    EXPECT_EQ(run(7).bestmemit, run(7).bestmemit);
    EXPECT_NE(run(7).bestmemit, run(8).bestmemit);
    EXPECT_NE(run(0).bestmemit, run(0).bestmemit);
}

TEST(DiffEvol, EqualBoundsPinTheVariableExactly) {
    // 0.3 has no exact binary form: any arithmetic on it would show.
    const DiffEvolRun run = run_diff_evol(rosenbrock, {-2.0, 0.3, -2.0}, {2.0, 0.3, 2.0}, 50, 100);
    for (const dvec& m : run.bestmemit) {
        ASSERT_EQ(m[1], 0.3);
    }
    for (const dvec& m : run.finalPopulation) {
        ASSERT_EQ(m[1], 0.3);
    }
}

TEST(DiffEvol, ANaNCostNeitherReplacesATargetNorIsReplaced) {
    // NaN to the right of 0.5; every member starts left of it but member 7.
    auto f = [](dvec x) { return x[0] > 0.5 ? kNaN : (x[0] + 0.2) * (x[0] + 0.2) + x[1] * x[1]; };
    Settings s;
    s.maxGen = 40;
    for (int i = 0; i < 50; ++i) {
        s.initial.push_back({-1.0 + 0.03 * i, 0.5 - 0.02 * i});
    }
    s.initial[7] = {0.9, 0.1};
    const DiffEvolRun run = run_with(s, {-1, -1}, {1, 1}, f);
    for (std::size_t i = 0; i < 50; ++i) {
        if (i == 7) {
            EXPECT_EQ(run.finalPopulation[i], s.initial[7]);
        } else {
            EXPECT_LE(run.finalPopulation[i][0], 0.5) << "member " << i;
        }
    }
    EXPECT_NEAR(run.last_best()[0], -0.2, 1e-3);

    // Accepting every candidate still moves the best only on improvements.
    s.alwaysAccept = true;
    const DiffEvolRun always = run_with(s, {-1, -1}, {1, 1}, f);
    expect_never_rises(always.bestvalit);
    EXPECT_FALSE(std::isnan(always.last_cost()));
}

TEST(DiffEvol, AFirstMemberCostingNaNLeavesNoRecordAndAWrongSizedMemberFails) {
    Settings s;
    s.initial = {{0.9, 0.0}};
    auto f = [](dvec x) { return x[0] > 0.5 ? kNaN : x[0]; };
    const DiffEvolRun run = run_with(s, {-1, -1}, {1, 1}, f);
    EXPECT_TRUE(run.bestvalit.empty());
    EXPECT_EQ(run.nfeval, 50);
    try {
        run.last_best();
        ADD_FAILURE() << "no failure";
    } catch (const char* text) {
        EXPECT_STREQ(text, kDiffEvolNoGeneration);
    }

    s.initial = {{0.0, 0.0, 0.0}, {0.0, 0.0}, {1.0}};
    try {
        run_with(s, {-1, -1, -1}, {1, 1, 1}, f);
        ADD_FAILURE() << "no failure";
    } catch (const std::string& text) {
        EXPECT_EQ(text, "Size of member 2 is not equal to D 3 in initial population");
    }
}

TEST(DiffEvol, TracesTheBestEverySoManyGenerationsAndRechecksAWinner) {
    Settings s;
    s.maxGen = 4;
    s.traceEvery = 2;
    testing::internal::CaptureStdout();
    const DiffEvolRun run = run_with(s, {-1, -1}, {1, 1}, rosenbrock);
    const std::string out = testing::internal::GetCapturedStdout();
    ASSERT_EQ(out.find("Iteration: 2 bestvalit: "), 0u) << out;
    const std::size_t second = out.find("\nIteration: 4 bestvalit: ");
    ASSERT_NE(second, std::string::npos) << out;
    // "%12.6f" per coordinate: two fields of 12 characters after the label.
    const std::size_t label = out.find("bestmemit:", second);
    EXPECT_EQ(out.size() - (label + 10), 2u * 12 + 1) << out;
    EXPECT_EQ(out.back(), '\n');

    // In a box of one point the winner survives every generation, so from the
    // second on it is evaluated once more.
    s.traceEvery = 0;
    s.maxGen = 60;
    s.recheck = true;
    const DiffEvolRun rechecked = run_with(s, {0, 0}, {0, 0}, rosenbrock);
    EXPECT_EQ(rechecked.nfeval, 50 + 50 * 60 + 59);
    EXPECT_DOUBLE_EQ(rechecked.last_cost(), 1.0);  // the average of ones, to rounding
}

}  // namespace
}  // namespace zentable
