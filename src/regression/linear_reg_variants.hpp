#pragma once

#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// linear_reg on the x, y and weight variables of a delimited file, read by name.
CellMatrix linear_reg_from_file(const std::string& filename, const CellMatrix& xNames,
                                const CellMatrix& yName, const CellMatrix& weightName,
                                const CellMatrix& lambda, const CellMatrix& delimiter);

// linear_reg on the records whose y is not zero.
CellMatrix linear_reg_nz(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight,
                         const CellMatrix& lambda);

// linear_reg of a moving envelope of the non-zero y, its window mean plus
// numStdev standard deviations, on the x of each window's last record.
CellMatrix linear_reg_envelope(const CellMatrix& x, const CellMatrix& y,
                               const CellMatrix& numPoints, const CellMatrix& numStdev,
                               const CellMatrix& weight, const CellMatrix& lambda);

// The envelope fit on a file's first column (x) and second (y), written to
// outfilename with the fitted line and numForecast points beyond the last x.
CellMatrix linear_reg_envelope_from_file(const std::string& infilename, const CellMatrix& numPoints,
                                         const CellMatrix& numStdev, const CellMatrix& stepSize,
                                         const CellMatrix& numForecast,
                                         const std::string& outfilename,
                                         const CellMatrix& delimiter, const CellMatrix& digits);

// A "yhat" column: each record of inputData scored with a table of variable
// names and coefficients, "Intercept" naming the constant.
CellMatrix linear_reg_score_from_coefs(const CellMatrix& coefs, const CellMatrix& inputData);

}  // namespace zentable
