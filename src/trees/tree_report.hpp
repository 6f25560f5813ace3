#pragma once

#include <string>

#include "models/evaluation.hpp"
#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// The blocks that the tree and the boosting reports share, written by
// position into a table that already has its size.

// Rows 2 to 17: the analysis of variance of a continuous target on the
// training data; nv is the number of variables the model uses.
void write_anova_block(CellMatrix& r, const ContEval& eval, int nv);

// What rows 2 to 20 of a binary target's report show.
struct BinaryPerformance {
    std::string y_name;
    dvec levels;  // the two levels as given, ascending
    int n = 0, n1 = 0;
    double w = 0.0, w1 = 0.0;
    int candidates = 0;  // all x variables offered
    int nv = 0;          // variables the model uses
    double ll0 = 0.0, ll1 = 0.0;
};

// Rows 2 to 20: counts by level, fit statistics and the association of the
// scores with the target.
void write_binary_block(CellMatrix& r, const BinaryPerformance& p, const BinaryEval& eval);

// The counts of a 0/1 target: records and weight above 0.5.
void count_events(const dvec& coded, const dvec& weight, BinaryPerformance& p);

// From row `row` on: "#", "Variable", "Relative Importance", then one row per
// importance row.
void write_importance(CellMatrix& r, std::size_t row, const dmat& importance, const svec& names);

// The variable index an importance row holds.
std::size_t importance_variable(const dvec& importance_row);

}  // namespace zentable
