#pragma once

#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// naive_bayes_classifier(x, y, model, weight): a naive Bayes classifier of the
// classes of y; a column of x whose first value is text is categorical, and
// model GAUSSIAN (the default) or CATEGORICAL says how numeric columns enter.
CellMatrix naive_bayes_classifier(const CellMatrix& x, const CellMatrix& y,
                                  const std::string& model, const CellMatrix& weight);
// The same fit on the variables of a delimited file; the first record types
// each column.
CellMatrix naive_bayes_classifier_from_file(const std::string& filename, const CellMatrix& xNames,
                                            const CellMatrix& yName, const std::string& model,
                                            const CellMatrix& weightName,
                                            const CellMatrix& delimiter);

// model_score's table for a naive Bayes handle: a probability per class and
// the class predicted, per row of x.
CellMatrix naive_bayes_score(const std::string& handle, const CellMatrix& x);

}  // namespace zentable
