#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// woe_xcat_ybin(x, y, pvalue, maxNumBins, weight): the categories of each x,
// ordered by the rate of a binary y, merged by a chi-square test between
// neighbours, with WOE and information values. The weight is accepted and
// has no effect: counts are of records.
CellMatrix woe_xcat_ybin(const CellMatrix& x, const CellMatrix& y, const CellMatrix& pvalue,
                         const CellMatrix& maxNumBins, const CellMatrix& weight);
CellMatrix woe_xcat_ybin_from_file(const std::string& filename, const CellMatrix& xNames,
                                   const CellMatrix& yName, const CellMatrix& pvalue,
                                   const CellMatrix& maxNumBins, const CellMatrix& weightName,
                                   const CellMatrix& delimiter);

// The same against a continuous y, ordered by and merged on the mean of y.
CellMatrix woe_xcat_ycont(const CellMatrix& x, const CellMatrix& y, const CellMatrix& pvalue,
                          const CellMatrix& maxNumBins, const CellMatrix& weight);
CellMatrix woe_xcat_ycont_from_file(const std::string& filename, const CellMatrix& xNames,
                                    const CellMatrix& yName, const CellMatrix& pvalue,
                                    const CellMatrix& maxNumBins, const CellMatrix& weightName,
                                    const CellMatrix& delimiter);

// One variable grouped: the tables of the initial bins (one per category, in
// order of target rate) and of the merged bins, and the labels of each merged
// bin in that order.
struct WoeXcatBins {
    dmat initial;
    dmat merged;
    std::vector<svec> groups;
};

// Per variable over all records; y is coded 0 and 1 for the binary target.
std::vector<WoeXcatBins> woe_bins_xcat_ybin(const std::vector<svec>& x, const dvec& y,
                                            double pvalue, int maxNumBins);
std::vector<WoeXcatBins> woe_bins_xcat_ycont(const std::vector<svec>& x, const dvec& y,
                                             double pvalue, int maxNumBins);

}  // namespace zentable
