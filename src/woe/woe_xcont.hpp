#pragma once

#include <climits>
#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "woe/woe_cells.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// woe_xcont_ybin(x, y, initialNumBins, pvalue, maxNumBins, minNumRecords,
// weight): equal-frequency bins of each continuous x, neighbours merged by a
// chi-square test against a binary y, with WOE and information values.
CellMatrix woe_xcont_ybin(const CellMatrix& x, const CellMatrix& y,
                          const CellMatrix& initialNumBins, const CellMatrix& pvalue,
                          const CellMatrix& maxNumBins, const CellMatrix& minNumRecords,
                          const CellMatrix& weight);
CellMatrix woe_xcont_ybin_from_file(const std::string& filename, const CellMatrix& xNames,
                                    const CellMatrix& yName, const CellMatrix& initialNumBins,
                                    const CellMatrix& pvalue, const CellMatrix& maxNumBins,
                                    const CellMatrix& minNumRecords, const CellMatrix& weightName,
                                    const CellMatrix& delimiter);

// The same against a continuous y, merging by a two-sample t test, with the
// mean of y in each bin.
CellMatrix woe_xcont_ycont(const CellMatrix& x, const CellMatrix& y,
                           const CellMatrix& initialNumBins, const CellMatrix& pvalue,
                           const CellMatrix& maxNumBins, const CellMatrix& minNumRecords,
                           const CellMatrix& weight);
CellMatrix woe_xcont_ycont_from_file(const std::string& filename, const CellMatrix& xNames,
                                     const CellMatrix& yName, const CellMatrix& initialNumBins,
                                     const CellMatrix& pvalue, const CellMatrix& maxNumBins,
                                     const CellMatrix& minNumRecords, const CellMatrix& weightName,
                                     const CellMatrix& delimiter);

// The numeric arguments, decoded in the order pvalue, initialNumBins,
// maxNumBins, minNumRecords.
struct WoeArgs {
    int initial_bins = 0;
    double pvalue = 1.0;
    int max_bins = INT_MAX;
    int min_records = 50;
};
WoeArgs read_woe_args(const CellMatrix& initialNumBins, const CellMatrix& pvalue,
                      const CellMatrix& maxNumBins, const CellMatrix& minNumRecords);

// One variable binned: the tables of the initial and of the merged bins, and
// the group of records whose x is missing (count, weight sum, sums of w * y
// and of w * y * y).
struct WoeXcontBins {
    dmat initial;
    dmat merged;
    double missing_count = 0, missing_weight = 0, missing_y = 0, missing_y_squares = 0;
};

// Per variable, over the records whose y and weight are present
// (yw_present); y is coded 0 and 1 for the binary target.
std::vector<WoeXcontBins> woe_bins_ybin(const FlaggedColumns& x, const dvec& y, const dvec& w,
                                        const bvec& yw_present, int initialNumBins, double pvalue,
                                        int maxNumBins);
std::vector<WoeXcontBins> woe_bins_ycont(const FlaggedColumns& x, const dvec& y, const dvec& w,
                                         const bvec& yw_present, int initialNumBins, double pvalue,
                                         int maxNumBins);

// Binning, filing of the model and the report; title names the last line.
CellMatrix woe_xcont_ybin_run(const WoeData& data, const WoeArgs& args, const std::string& title);
CellMatrix woe_xcont_ycont_run(const WoeData& data, const WoeArgs& args, const std::string& title);

}  // namespace zentable
