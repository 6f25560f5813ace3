#include "optimisation/diff_evol.hpp"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string>
#include <utility>

#include "optimisation/expression_function.hpp"
#include "optimisation/function_eval.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

const char* const kDiffEvolNoGeneration =
    "The function is not a number at the first member of the initial population, so no "
    "generation could run";

const dvec& DiffEvolRun::last_best() const {
    if (bestmemit.empty()) {
        throw kDiffEvolNoGeneration;
    }
    return bestmemit.back();
}

double DiffEvolRun::last_cost() const {
    if (bestvalit.empty()) {
        throw kDiffEvolNoGeneration;
    }
    return bestvalit.back();
}

void draw_urn(int i, int NP, std::vector<int>& work, std::array<int, 5>& urn,
              MersenneTwister& rng) {
    std::iota(work.begin(), work.end(), 0);
    int k = NP;
    int pick = i;
    for (int& slot : urn) {
        const auto p = static_cast<std::size_t>(pick);
        slot = work[p];
        work[p] = work[static_cast<std::size_t>(k - 1)];
        --k;
        pick = static_cast<int>(uniform_draw(rng) * k);
    }
}

void throw_wrong_member_size(std::size_t member, int D) {
    throw "Size of member " + std::to_string(member) + " is not equal to D " + std::to_string(D) +
        " in initial population";
}

void throw_population_too_small() {
    throw "The population must have at least 5 members";
}

namespace {

constexpr const char* kBoundsShape =
    "Input lowerAndUpperBound must be in 3 columns: name, lower bound, upper bound";
constexpr const char* kBoundsOrder =
    "lower bound must be less than or equal to upper bound in lowerAndUpperBound";
constexpr const char* kMaxGenerations = "Input maxNumGenerations must be a positive integer";
constexpr const char* kSeed = "Input seed must be a non-negative integer";
constexpr const char* kUnequalCounts =
    "The numbers of observations in input data X, Y, and weight must be the same";
constexpr const char* kTableName = "lowerAndUpperBound";

struct Bounds {
    svec names;
    dvec lower;
    dvec upper;
};

Bounds read_bounds(const CellMatrix& table) {
    if (is_omitted(table) || table.ColumnsInStructure() != 3) {
        throw kBoundsShape;
    }
    Bounds b;
    for (std::size_t i = 0; i < table.RowsInStructure(); ++i) {
        b.names.push_back(cell_to_text(table(i, 0)));
        b.lower.push_back(cell_to_double(table(i, 1)));
        b.upper.push_back(cell_to_double(table(i, 2)));
    }
    // Written so that a NaN bound fails as well: the box must be a box.
    for (std::size_t i = 0; i < b.lower.size(); ++i) {
        if (!(b.lower[i] <= b.upper[i])) {
            throw kBoundsOrder;
        }
    }
    return b;
}

struct RunLimits {
    int maxNumGenerations = 200;
    int seed = 100;
};

RunLimits read_limits(const CellMatrix& maxNumGenerations, const CellMatrix& seed) {
    RunLimits limits;
    if (!is_omitted(maxNumGenerations)) {
        read_int(maxNumGenerations, kMaxGenerations, limits.maxNumGenerations);
    }
    if (limits.maxNumGenerations < 1) {
        throw kMaxGenerations;
    }
    if (!is_omitted(seed)) {
        read_int(seed, kSeed, limits.seed);
    }
    if (limits.seed < 0) {
        throw kSeed;
    }
    return limits;
}

// The records of the run, left of any data block: the reported solution, then
// one row per generation.
void lay_out_records(CellMatrix& r, const char* title, const char* costLabel, const Bounds& b,
                     const DiffEvolRun& run) {
    const double reportedCost = run.last_cost();
    const dvec& reported = run.last_best();
    r(0, 0) = title;
    r(2, 0) = "Optimal Solution";
    r(3, 0) = "Value";
    r(5, 0) = "Generation";
    r(2, 1) = costLabel;
    r(5, 1) = costLabel;
    r(3, 1) = reportedCost;
    for (std::size_t j = 0; j < b.names.size(); ++j) {
        r(2, j + 2) = b.names[j];
        r(5, j + 2) = b.names[j];
        r(3, j + 2) = reported[j];
    }
    for (std::size_t g = 0; g < run.generations(); ++g) {
        r(6 + g, 0) = static_cast<double>(g + 1);
        r(6 + g, 1) = run.bestvalit[g];
        for (std::size_t j = 0; j < b.names.size(); ++j) {
            r(6 + g, j + 2) = run.bestmemit[g][j];
        }
    }
}

// The data of the two data commands, records complete in every column only.
struct SolverData {
    svec x_names;
    dmat x;
    std::string y_name;
    dvec y;
    bool has_weight = false;
    std::string weight_name;
    dvec weight;
};

SolverData read_nls_data(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight) {
    XYW d = read_fit_data(x, y, weight);
    return {std::move(d.x_names), std::move(d.x),           std::move(d.y_name), std::move(d.y),
            d.has_weight,         std::move(d.weight_name), std::move(d.weight)};
}

SolverData read_min_data(const CellMatrix& x, const CellMatrix& weight) {
    require_fit_x(x);
    NamedTable xs = read_table_with_headers(x);
    SolverData d;
    d.x_names = std::move(xs.names);
    d.has_weight = !is_omitted(weight);
    NamedVector ws;
    if (d.has_weight) {
        ws = read_vector_with_header(weight);
        if (ws.values.size() != xs.data.size()) {
            throw kUnequalCounts;
        }
        d.weight_name = ws.name;
    }
    for (std::size_t i = 0; i < xs.data.size(); ++i) {
        if (xs.valid[i] && (!d.has_weight || ws.valid[i])) {
            d.x.push_back(std::move(xs.data[i]));
            d.weight.push_back(d.has_weight ? ws.values[i] : 1.0);
        }
    }
    check_fit_weights(d.weight);
    return d;
}

// The data block from column `first`: "#", the x columns, the weight, then
// the fitted expression, under y for the least-squares fit.
void lay_out_data(CellMatrix& r, std::size_t first, const SolverData& d, const dvec& fitted,
                  bool withY) {
    std::size_t c = first;
    r(5, c) = "#";
    for (std::size_t i = 0; i < d.x.size(); ++i) {
        r(6 + i, c) = static_cast<double>(i + 1);
    }
    for (std::size_t j = 0; j < d.x_names.size(); ++j) {
        ++c;
        r(5, c) = d.x_names[j];
        for (std::size_t i = 0; i < d.x.size(); ++i) {
            r(6 + i, c) = d.x[i][j];
        }
    }
    auto column = [&](const std::string& head, const dvec& values) {
        ++c;
        r(5, c) = head;
        for (std::size_t i = 0; i < values.size(); ++i) {
            r(6 + i, c) = values[i];
        }
    };
    if (d.has_weight) {
        column(d.weight_name, d.weight);
    }
    if (withY) {
        column(d.y_name, d.y);
        column(d.y_name + " Predicted", fitted);
    } else {
        column("func(x)", fitted);
    }
}

}  // namespace

CellMatrix diff_evol_solver(const CellMatrix& func, const CellMatrix& lowerAndUpperBound,
                            const CellMatrix& maxNumGenerations, const CellMatrix& seed) {
    const std::string text = read_expression(func);
    const Bounds b = read_bounds(lowerAndUpperBound);
    const RunLimits limits = read_limits(maxNumGenerations, seed);
    const GenericFunction f(text, kTableName, b.names, true);

    const DiffEvolRun run =
        run_diff_evol(f, b.lower, b.upper, limits.maxNumGenerations, limits.seed);
    CellMatrix r(run.generations() + 6, b.names.size() + 2);
    lay_out_records(r, "Differential Evolution Solver", "f(x)", b, run);
    return r;
}

CellMatrix diff_evol_nls_solver(const CellMatrix& func, const CellMatrix& lowerAndUpperBound,
                                const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight,
                                const CellMatrix& maxNumGenerations, const CellMatrix& seed) {
    const std::string text = read_expression(func);
    const Bounds b = read_bounds(lowerAndUpperBound);
    SolverData d = read_nls_data(x, y, weight);
    const RunLimits limits = read_limits(maxNumGenerations, seed);
    // The names list the parameters, then the x headers, so that the text may use both.
    const GenericFunction2 f(text, kTableName, b.names, d.x_names, d.x, d.y, d.weight, true);

    const DiffEvolRun run =
        run_diff_evol(f, b.lower, b.upper, limits.maxNumGenerations, limits.seed);
    const dvec fitted = f.predict(run.last_best());
    const std::size_t D = b.names.size();
    const std::size_t width = 1 + d.x_names.size() + (d.has_weight ? 1 : 0) + 2;
    CellMatrix r(std::max(run.generations(), d.x.size()) + 6, D + 2 + width);
    lay_out_records(r, "Differential Evolution Nonlinear Least Squares Solver", "SSE", b, run);
    lay_out_data(r, D + 2, d, fitted, true);
    return r;
}

CellMatrix diff_evol_min_solver(const CellMatrix& func, const CellMatrix& lowerAndUpperBound,
                                const CellMatrix& x, const CellMatrix& weight,
                                const CellMatrix& maxNumGenerations, const CellMatrix& seed) {
    const std::string text = read_expression(func);
    const Bounds b = read_bounds(lowerAndUpperBound);
    SolverData d = read_min_data(x, weight);
    const RunLimits limits = read_limits(maxNumGenerations, seed);
    const GenericFunction_Sum f(text, kTableName, b.names, d.x_names, d.x, d.weight, true);

    const DiffEvolRun run =
        run_diff_evol(f, b.lower, b.upper, limits.maxNumGenerations, limits.seed);
    const dvec fitted = f.predict(run.last_best());
    const std::size_t D = b.names.size();
    const std::size_t width = 1 + d.x_names.size() + (d.has_weight ? 1 : 0) + 1;
    CellMatrix r(std::max(run.generations(), d.x.size()) + 6, D + 2 + width);
    lay_out_records(r, "Differential Evolution Minimization Solver", "Sum", b, run);
    lay_out_data(r, D + 2, d, fitted, false);
    return r;
}

}  // namespace zentable
