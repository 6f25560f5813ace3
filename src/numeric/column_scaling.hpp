#pragma once

#include <cstdint>

#include "numeric/matrix.hpp"

namespace zentable {

// The weighted standardisation that the logistic fits, the neural network and
// the support vector machine share: each column's weighted mean and its
// population scale (divisor W), a scale below 1e-8 taken as 1 so that a
// constant column is centred, not blown up.
struct ColumnScaling {
    dvec mean;  // weighted, per column
    dvec sd;    // divisor W; 1 for a column that is constant
    double sum_weight = 0.0;
    std::int32_t n = 0;
};

// Centres and scales the columns of x in place by their weighted moments.
// Fails with "Data matrix is not conformable" when x and weight differ in length.
ColumnScaling standardize_columns(dmat& x, const dvec& weight);
// The same centring and scaling by figures found on other data: test rows
// take the training figures.
void scale_columns(dmat& x, const ColumnScaling& scaling);

// A continuous target's weighted mean and population scale (divisor
// sum_weight). No guard: a constant target gives a scale of 0.
struct TargetScale {
    double mean = 0.0;
    double sd = 0.0;
};
TargetScale target_scale(const dvec& y, const dvec& weight, double sum_weight);

}  // namespace zentable
