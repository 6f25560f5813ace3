#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// The routines under the evaluation commands, which the regressions, the
// weight-of-evidence binning and the learners reuse. A record matrix holds one
// row per record: actual value, predicted value, weight.

// Association of a binary target with a score, and its gains chart.
struct BinaryEval {
    double n = 0, n0 = 0, n1 = 0;
    double pairs = 0;                                 // n1 * n0
    double concordant = 0, discordant = 0, tied = 0;  // fractions of pairs
    double somers_d = 0, gamma = 0, tau_a = 0, c = 0;
    double hl_chi_square = 0, hl_p_value = 1;  // Hosmer-Lemeshow, from the gains
    double log_likelihood = 0;
    double ks = 0;
    dmat gains;  // 13 columns; a closing total row when there are bins
};

// Fit of a continuous target, and its gains chart.
struct ContEval {
    int n = 0, k = 0;
    double w = 0, y_mean = 0, p_mean = 0;
    double sst = 0, ssr = 0, sse = 0;
    double rmse = 0, coeff_var = 0, r_square = 0, adj_r_square = 0;
    double f_value = 0, p_value = 1;
    dmat gains;  // 9 columns; a closing total row when there are bins
};

// Percentile groups of a key: a copy of the rows, in their order, with the
// group code (0 to groups - 1) in a new last column. Equal keys share the
// group of their average rank, so a run of ties is never split and a code may
// be absent. key_column counts from 1; direction above 0 ranks ascending,
// else descending (code 0 then holds the largest keys).
dmat rank_groups(const dmat& data, int key_column, int groups, int direction);

// Weighted statistics of the analysis columns within the groups that the
// class columns make; columns count from 1. Each row of out: the class values
// (NaN for a class column that the row's group leaves out), the type code, the
// count, the weight sum, then per analysis column its weighted sum, minimum,
// maximum, weighted mean and weighted standard deviation. With all_ways off
// there is a block for every subset of the class columns, by ascending type
// code (the bits of the subset, the first class column the highest), so one
// class column gives the total first; with it on, only the full combinations.
// Within a block, groups come by ascending class values.
void group_summary(const dmat& data, const ivec& class_columns, const ivec& analysis_columns,
                   int weight_column, bool all_ways, dmat& out);

// Pair counts over one sort of the scores; the gains chart when numBins > 0.
void binary_eval_core(const dmat& records, int numBins, BinaryEval& out);
// Analysis of variance for a model of k parameters; the gains when numBins > 0.
void cont_eval_core(const dmat& records, int k, int numBins, ContEval& out);

// The reports: the title heads the table and the name closes it.
void binary_eval_table(const dmat& records, int numBins, const std::string& title,
                       const std::string& name, CellMatrix& result);
void cont_eval_table(const dmat& records, int k, int numBins, const std::string& title,
                     const std::string& name, CellMatrix& result);
// Rows 9 to 17 of the continuous report: the variance table, RMSE, the means
// and the coefficient of variation; the tree reports show the same rows.
void write_cont_eval_rows(CellMatrix& r, const ContEval& eval);

// The four rows of association measures of a binary model, from row `top`.
void write_association_rows(CellMatrix& r, std::size_t top, const BinaryEval& eval);

}  // namespace zentable
