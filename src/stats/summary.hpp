#pragma once

#include <string>
#include <vector>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// summary(classVars, x, weight, nway, output): weighted statistics of x in
// the groups that the class variables make.
CellMatrix summary(const CellMatrix& classVars, const CellMatrix& x, const CellMatrix& weight,
                   const CellMatrix& nway, const CellMatrix& output);

// The same for variables of a delimited file, read by name, with all five statistics.
CellMatrix summary_from_file(const std::string& filename, const CellMatrix& classVarNames,
                             const CellMatrix& xNames, const CellMatrix& weightName,
                             const CellMatrix& nway, const CellMatrix& delimiter);

enum class SummaryStatistic { sum, avg, stdev, min, max };

// The report over decoded tables; both forms end here. Every column of x
// must be numeric.
CellMatrix summary_report(const MixedTable& classes, const MixedTable& x, const dvec& weight,
                          bool nway_all, const std::vector<SummaryStatistic>& statistics);

}  // namespace zentable
