#pragma once

// Differential evolution: one engine, generic over its objective.
//
// How a caller supplies its objective: any callable that takes the D
// coordinates as a dvec by value and returns the cost as a double, e.g. a
// GenericFunction, a lambda, or a struct with `double operator()(dvec) const`.
// The engine takes it by forwarding reference and never copies it, so an
// objective that keeps state (bound expression values, a work buffer) may do so
// through a non-const call operator. The engine is a template so that each
// objective's call inlines; its code is the same for every instantiation.
//
// Most callers want run_diff_evol: the fixed settings every command uses, the
// records of each generation, and last_best() for the reported solution.
// diff_evol takes every setting, in the order of its contract.
//
// Failures are thrown as texts (std::string or a char pointer), which the
// command frame reports as they stand.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "numeric/matrix.hpp"
#include "numeric/random.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// A population: one dvec of D coordinates per member.
using Population = dmat;

// What run_diff_evol hands back. The records are taken as each generation
// starts, so the improvement of the last generation is not among them; what
// the commands report is the last record, not the final population's best.
struct DiffEvolRun {
    Population bestmemit;  // the best member known before each generation
    dvec bestvalit;        // its cost
    Population finalPopulation;
    int nfeval = 0;

    // The number of generation records (G in the layouts).
    std::size_t generations() const { return bestvalit.size(); }
    // The reported solution and its cost: the last records. A run whose
    // first member costs NaN runs no generation and has no record; these
    // then throw kDiffEvolNoGeneration rather than read past the end.
    const dvec& last_best() const;
    double last_cost() const;
};

extern const char* const kDiffEvolNoGeneration;

// Draws urn[0..4] for target i: urn[0] is i, the rest distinct members. Each
// of the five passes draws a number, the fifth one unused: the draws are part
// of the run's reproducibility.
void draw_urn(int i, int NP, std::vector<int>& work, std::array<int, 5>& urn, MersenneTwister& rng);

[[noreturn]] void throw_wrong_member_size(std::size_t member, int D);
[[noreturn]] void throw_population_too_small();

// The whole engine. Parameter order and meaning are those of its contract;
// every command passes VTR = lowest double, F 0.8, CR 0.9, alwaysAccept
// false, traceEvery 0, strategy 2, NP 50, initialPopulation empty, storeFrom
// maxNumGenerations + 1, storeEvery 1, recheckWinner false, averageWinner
// true, p 0.1. Comparisons are written so that a NaN cost never wins: a
// NaN-costed candidate never replaces a target and a NaN-costed target is
// never replaced.
template <typename Objective>
void diff_evol(double VTR, double F, double CR, bool alwaysAccept, const dvec& lower,
               const dvec& upper, Objective&& objective, int traceEvery, int strategy, int D,
               int NP, int maxNumGenerations, const Population& initialPopulation, int storeFrom,
               int storeEvery, bool recheckWinner, bool averageWinner, double p, int seed,
               Population& finalPopulation, std::vector<Population>& storedPopulations,
               Population& bestmemit, dvec& bestvalit, int& nfeval) {
    if (NP < 5) {
        throw_population_too_small();
    }
    const auto size_D = static_cast<std::size_t>(D);
    const auto size_NP = static_cast<std::size_t>(NP);
    for (std::size_t i = 0; i < initialPopulation.size() && i < size_NP; ++i) {
        if (initialPopulation[i].size() != size_D) {
            throw_wrong_member_size(i + 1, D);
        }
    }

    nfeval = 0;
    MersenneTwister rng(static_cast<unsigned long>(seed));
    int pNP = static_cast<int>(p * NP);
    if (pNP < 2) {
        pNP = 2;
    }
    std::vector<int> sortIndex;
    if (strategy == 6) {
        sortIndex.resize(size_NP);
        std::iota(sortIndex.begin(), sortIndex.end(), 0);
    }

    Population old(size_NP, dvec(size_D));
    dvec oldC(size_NP);
    dvec best(size_D);
    double bestC = 0.0;
    for (std::size_t i = 0; i < size_NP; ++i) {
        if (i < initialPopulation.size()) {
            old[i] = initialPopulation[i];
        } else {
            for (std::size_t j = 0; j < size_D; ++j) {
                old[i][j] = lower[j] + uniform_draw(rng) * (upper[j] - lower[j]);
            }
        }
        oldC[i] = objective(old[i]);
        ++nfeval;
        if (i == 0 || bestC >= oldC[i]) {
            best = old[i];
            bestC = oldC[i];
        }
    }

    // Every target of a generation writes its slot of `next`, so swapping the
    // two populations at the end of a generation is the same as copying.
    Population next(size_NP, dvec(size_D));
    dvec nextC(size_NP);
    dvec tmp(size_D);
    dvec bestit = best;
    std::array<int, 5> urn{};
    std::vector<int> work(size_NP);
    int g = 0;
    int xav = 1;
    while (g < maxNumGenerations && VTR < bestC) {
        if (g % storeEvery == 0 && g >= storeFrom) {
            storedPopulations.push_back(old);
        }
        bestmemit.push_back(best);
        bestvalit.push_back(bestC);
        bestit = best;
        ++g;
        const double oneMinusF = 1.0 - F;
        const double dither = F + uniform_draw(rng) * oneMinusF;

        for (int i = 0; i < NP; ++i) {
            const auto si = static_cast<std::size_t>(i);
            tmp = old[si];
            draw_urn(i, NP, work, urn, rng);
            const dvec& P1 = old[static_cast<std::size_t>(urn[1])];
            const dvec& P2 = old[static_cast<std::size_t>(urn[2])];
            const dvec& P3 = old[static_cast<std::size_t>(urn[3])];

            std::size_t b = 0;
            if (strategy == 6) {
                b = static_cast<std::size_t>(
                    sortIndex[static_cast<std::size_t>(uniform_draw(rng) * pNP)]);
            }
            auto j = static_cast<std::size_t>(uniform_draw(rng) * D);
            const bool eitherOr = strategy < 1 || strategy > 6;
            double either = 0.0;
            if (eitherOr) {
                either = uniform_draw(rng);
            }
            int k = 0;
            do {
                switch (strategy) {
                    case 1:
                        tmp[j] = P1[j] + F * (P2[j] - P3[j]);
                        break;
                    case 2:
                        tmp[j] = tmp[j] + F * (bestit[j] - tmp[j]) + F * (P2[j] - P3[j]);
                        break;
                    case 3: {
                        const double jitter = 0.0001 * uniform_draw(rng) + F;
                        tmp[j] = bestit[j] + jitter * (P1[j] - P2[j]);
                        break;
                    }
                    case 4: {
                        const double weight = F + uniform_draw(rng) * oneMinusF;
                        tmp[j] = P1[j] + weight * (P2[j] - P3[j]);
                        break;
                    }
                    case 5:
                        tmp[j] = P1[j] + dither * (P2[j] - P3[j]);
                        break;
                    case 6:
                        tmp[j] = old[si][j] + F * (old[b][j] - old[si][j]) + F * (P1[j] - P2[j]);
                        break;
                    default:
                        if (either < 0.5) {
                            tmp[j] = P1[j] + F * (P2[j] - P3[j]);
                        } else {
                            const double K = 0.5 * (F + 1.0);
                            tmp[j] = P1[j] + K * (P3[j] + P2[j] - 2.0 * P1[j]);
                        }
                        break;
                }
                j = (j + 1) % size_D;
            } while (uniform_draw(rng) < CR && ++k < D);

            // Thrown back to a fresh place in the box, not clipped: a clipped
            // coordinate would pile the population up on the bound.
            for (std::size_t m = 0; m < size_D; ++m) {
                if (tmp[m] < lower[m]) {
                    tmp[m] = lower[m] + uniform_draw(rng) * (upper[m] - lower[m]);
                }
                if (tmp[m] > upper[m]) {
                    tmp[m] = upper[m] - uniform_draw(rng) * (upper[m] - lower[m]);
                }
            }

            const double c = objective(tmp);
            ++nfeval;
            if (oldC[si] >= c || alwaysAccept) {
                next[si] = tmp;
                nextC[si] = c;
                if (c <= bestC) {
                    best = tmp;
                    bestC = c;
                }
            } else {
                next[si] = old[si];
                nextC[si] = oldC[si];
            }
        }
        std::swap(old, next);
        std::swap(oldC, nextC);

        if (recheckWinner) {
            if (best == bestit && g > 1) {
                ++xav;
                const double t = objective(best);
                ++nfeval;
                if (averageWinner) {
                    bestC = (xav - 2) * bestvalit[static_cast<std::size_t>(g - 1)] / xav +
                            bestC / xav + t / xav;
                } else {
                    bestC = t;
                }
            } else {
                xav = 1;
            }
        }
        bestit = best;
        if (traceEvery > 0 && g % traceEvery == 0) {
            std::printf("Iteration: %d bestvalit: %f bestmemit:", g, bestC);
            for (double v : best) {
                std::printf("%12.6f", v);
            }
            std::printf("\n");
        }
    }
    finalPopulation = old;
}

// A storeFrom that no generation reaches.
inline int store_none_from(int maxNumGenerations) {
    return maxNumGenerations < std::numeric_limits<int>::max() ? maxNumGenerations + 1
                                                               : maxNumGenerations;
}

// The engine with the settings every command passes; D is lower's size.
template <typename Objective>
DiffEvolRun run_diff_evol(Objective&& objective, const dvec& lower, const dvec& upper,
                          int maxNumGenerations, int seed) {
    DiffEvolRun run;
    std::vector<Population> storedPopulations;
    diff_evol(std::numeric_limits<double>::lowest(), 0.8, 0.9, false, lower, upper,
              std::forward<Objective>(objective), 0, 2, static_cast<int>(lower.size()), 50,
              maxNumGenerations, Population{}, store_none_from(maxNumGenerations), 1, false, true,
              0.1, seed, run.finalPopulation, storedPopulations, run.bestmemit, run.bestvalit,
              run.nfeval);
    return run;
}

// The commands: a table of the record of each generation, under the reported
// solution; the two data commands add the data and the fitted expression.
CellMatrix diff_evol_solver(const CellMatrix& func, const CellMatrix& lowerAndUpperBound,
                            const CellMatrix& maxNumGenerations, const CellMatrix& seed);
CellMatrix diff_evol_nls_solver(const CellMatrix& func, const CellMatrix& lowerAndUpperBound,
                                const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight,
                                const CellMatrix& maxNumGenerations, const CellMatrix& seed);
CellMatrix diff_evol_min_solver(const CellMatrix& func, const CellMatrix& lowerAndUpperBound,
                                const CellMatrix& x, const CellMatrix& weight,
                                const CellMatrix& maxNumGenerations, const CellMatrix& seed);

}  // namespace zentable
