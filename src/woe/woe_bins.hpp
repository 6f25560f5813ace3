#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "numeric/matrix.hpp"

namespace zentable {

// The numerics that the continuous and the categorical weight of evidence
// share: merging of neighbouring bins, the finished tables, and the
// application of a finished table to values.
//
// A bin during merging is one row: for a binary target {xMin, xMax, n1, n0},
// n1 and n0 the weight sums of y = 1 and y = 0; for a continuous target
// {xMin, xMax, n, mean of y, standard deviation of y, records, weighted sum of
// squared deviations of y about the mean}. Rows run in ascending x. The
// records and the sum of squares let a merged bin carry its records' own
// standard deviation rather than a pooled population figure.

// Columns of a finished table (12 columns, one row per bin and a closing row).
enum WoeTableColumn : std::size_t {
    kWoeXMin = 0,
    kWoeXMax = 1,
    kWoeTotal = 2,       // n1 + n0, or n
    kWoeValue = 9,       // binary target: the WOE of the bin
    kWoeInfoValue = 10,  // binary target
    kWoeKs = 11,         // binary target
    kWoeMeanY = 4,       // continuous target: the mean of y, the value of the bin
    kWoeRSquare = 11,    // continuous target, closing row
    kWoeTableColumns = 12,
};

// Chi-square between neighbours: merges the most similar pair while some pair
// is not different at pvalue, or while there are more than maxNumBins.
dmat woe_merge_ybin(dmat bins, double pvalue, int maxNumBins);
// The same with the two-sample t test on the means of y.
dmat woe_merge_ycont(dmat bins, double pvalue, int maxNumBins);

// The finished tables. `missing` is the group of records whose x is missing,
// as one bin row, or empty when there is none: it counts as a bin of its own
// in the totals, the shares, the information value and the R-square, while
// the cumulative shares, the KS and the gaps run over the ordered bins only.
// With neither bins nor a missing group, one closing row of zeros.
dmat woe_table_ybin(const dmat& bins, const dvec& missing = {});
dmat woe_table_ycont(const dmat& bins, const dvec& missing = {});

// The shares of a bin with n1 and n0 in totals t1 and t0 (each with its
// 1e-30 added), its WOE and its information value.
struct WoeShares {
    double r1 = 0, r0 = 0, woe = 0, info_value = 0;
};
WoeShares woe_shares(double n1, double n0, double t1, double t0);

// The value of a present x under a finished table: only the upper edges
// decide, the first bin is open below and the last open above. value_column
// is kWoeValue or kWoeMeanY. A table without bins gives 0.
double woe_apply_value(const dmat& table, std::size_t value_column, double x);
// A column transformed; a value that is not present gets missing_value.
dvec woe_apply_xcont(const dmat& table, std::size_t value_column, double missing_value,
                     const dvec& x, const std::vector<bool>& present);

// One equal-frequency group of the records of a variable, with the sums that
// the initial bins are made from. Groups are those of rank_groups ascending;
// the sums run over the records of a group in record order, as group_summary
// makes them, so the bins equal those of the two routines.
struct RankedGroup {
    double count = 0, weight = 0;  // records, weight sum
    double x_min = 0, x_max = 0;
    double y_sum = 0, y_squares = 0;  // sums of y * w and y * w * y
};
std::vector<RankedGroup> rank_x_groups(const dvec& x, const dvec& y, const dvec& w, int groups);
// The same with buffers kept from one variable to the next, so that a large
// table is not paid for in fresh memory per variable.
struct GroupScratch {
    std::vector<std::uint64_t> keys, spare;
};
std::vector<RankedGroup> rank_x_groups(const dvec& x, const dvec& y, const dvec& w, int groups,
                                       GroupScratch& scratch);

// The initial bins of the groups for a binary target (y coded 0 and 1) and
// for a continuous one.
dmat ybin_bins_of(const std::vector<RankedGroup>& groups);
dmat ycont_bins_of(const std::vector<RankedGroup>& groups);
// One continuous-target bin from its sums: records, weight sum, sum of w * y
// and of w * y * y.
dvec ycont_bin(double x_min, double x_max, double count, double weight, double sum, double squares);

// The standard deviation of group_summary: divisor count - 1 on the weighted
// moments, 0 for a single record.
double group_standard_deviation(double count, double weight, double sum, double squares);

}  // namespace zentable
