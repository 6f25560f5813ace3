#pragma once

#include <functional>

#include "numeric/matrix.hpp"

namespace zentable {

// The simplex minimiser that the smoothing and process fits share. It works
// on function values alone, so the objective may be a sum over a series with
// gaps, and a value far above the rest keeps the simplex inside a region.
struct SimplexResult {
    dvec point;
    double value = 0.0;
    int rounds = 0;
    bool converged = false;  // false when the round limit stopped it
};

using Objective = std::function<double(const dvec&)>;

SimplexResult nelder_mead(const Objective& objective, const dvec& start);

}  // namespace zentable
