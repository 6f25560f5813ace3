#include "timeseries/nelder_mead.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

#include "commands/progress.hpp"

namespace zentable {

namespace {

constexpr double kRelativeSpread = 1e-08;
constexpr int kMaxRounds = 10000;

struct Vertex {
    dvec point;
    double value;
};

// c + t (p - c): t = -1 reflects p through c, -2 expands, 0.5 contracts.
dvec along(const dvec& c, const dvec& p, double t) {
    dvec out(c.size());
    for (std::size_t j = 0; j < c.size(); ++j)
        out[j] = c[j] + t * (p[j] - c[j]);
    return out;
}

}  // namespace

SimplexResult nelder_mead(const Objective& objective, const dvec& start) {
    const std::size_t k = start.size();
    std::vector<Vertex> simplex;
    simplex.reserve(k + 1);
    simplex.push_back({start, objective(start)});
    for (std::size_t i = 0; i < k; ++i) {
        dvec p = start;
        p[i] = p[i] == 0.0 ? 0.05 : p[i] * 1.05;
        const double value = objective(p);
        simplex.push_back({std::move(p), value});
    }

    SimplexResult result;
    for (;;) {
        // A stable sort keeps the order of equal values from round to round.
        std::stable_sort(simplex.begin(), simplex.end(),
                         [](const Vertex& a, const Vertex& b) { return a.value < b.value; });
        const double best = simplex.front().value;
        const double worst = simplex.back().value;
        if (std::fabs(best - worst) <= kRelativeSpread * (std::fabs(best) + std::fabs(worst))) {
            result.converged = true;
            break;
        }
        if (result.rounds == kMaxRounds)
            break;
        ++result.rounds;
        progress::report(progress::Unit::iterations, result.rounds, kMaxRounds);

        dvec centroid(k, 0.0);
        for (std::size_t v = 0; v < k; ++v)
            for (std::size_t j = 0; j < k; ++j)
                centroid[j] += simplex[v].point[j];
        for (double& c : centroid)
            c /= static_cast<double>(k);

        Vertex& worst_vertex = simplex.back();
        const double second_worst = simplex[k > 0 ? k - 1 : 0].value;
        Vertex reflected{along(centroid, worst_vertex.point, -1.0), 0.0};
        reflected.value = objective(reflected.point);

        if (reflected.value < best) {
            Vertex expanded{along(centroid, worst_vertex.point, -2.0), 0.0};
            expanded.value = objective(expanded.point);
            worst_vertex =
                expanded.value < reflected.value ? std::move(expanded) : std::move(reflected);
        } else if (reflected.value > second_worst) {
            const Vertex& nearer = reflected.value < worst_vertex.value ? reflected : worst_vertex;
            Vertex contracted{along(centroid, nearer.point, 0.5), 0.0};
            contracted.value = objective(contracted.point);
            if (contracted.value < nearer.value) {
                worst_vertex = std::move(contracted);
            } else {
                const dvec& low = simplex.front().point;
                for (std::size_t v = 1; v <= k; ++v) {
                    simplex[v].point = along(low, simplex[v].point, 0.5);
                    simplex[v].value = objective(simplex[v].point);
                }
            }
        } else {
            worst_vertex = std::move(reflected);
        }
    }
    result.point = simplex.front().point;
    result.value = simplex.front().value;
    return result;
}

}  // namespace zentable
