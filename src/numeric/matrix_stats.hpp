#pragma once

#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// Covariances (divisor n) and correlations of the columns of data, labelled
// by the variables' names: those of a header row, else X1, X2, ... Under a
// header row a record with a cell that is not a number is left out.
CellMatrix matrix_cov(const CellMatrix& inputData);
CellMatrix matrix_corr(const CellMatrix& inputData);
CellMatrix matrix_cov_from_file(const std::string& filename, const CellMatrix& varNames,
                                const CellMatrix& delimiter);
CellMatrix matrix_corr_from_file(const std::string& filename, const CellMatrix& varNames,
                                 const CellMatrix& delimiter);
CellMatrix matrix_corr_from_cov(const CellMatrix& matrix);
CellMatrix matrix_cov_from_corr(const CellMatrix& matrix, const CellMatrix& stdevs);
CellMatrix matrix_stdev_from_cov(const CellMatrix& matrix);
// Minkowski distances between the rows of data.
CellMatrix matrix_distance(const CellMatrix& inputData, const CellMatrix& p);
// One table of counts over all cells: numbers by value, then texts.
CellMatrix matrix_freq(const CellMatrix& matrix, const CellMatrix& includeMissing);

}  // namespace zentable
