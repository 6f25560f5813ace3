#pragma once

#include <string>

#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// What a stored model says about a data table, row by row.
struct ModelScores {
    dvec predictions;            // one per data row, in row order
    std::string class_name;      // e.g. "linearRegModel"
    std::string type = "CONT";   // "BIN" for a binary target, "CONT" otherwise
    dvec levels;                 // the two target values, ascending; "BIN" only
    int parameter_count = 0;     // "CONT" models: parameters, for the evaluation's k
};

// The one dispatch from a model string (a handle, or a PMML file's path) and
// a data table, whose columns are matched to the model's variables by name.
ModelScores score_by_model(const std::string& model, const svec& names, const dmat& data);

// model_score(model, x): one column "Y Predicted", "." for a row with a cell
// that is not a number.
CellMatrix model_score(const std::string& model, const CellMatrix& x);
// model_score_from_file(model, infilename, scoreName, outfilename, delimiter):
// a copy of the file with the score appended.
CellMatrix model_score_from_file(const std::string& model, const std::string& infilename,
                                 const CellMatrix& scoreName, const std::string& outfilename,
                                 const CellMatrix& delimiter);
// model_score_node(model, x): the node strings of a boosted tree model.
CellMatrix model_score_node(const std::string& model, const CellMatrix& x);

}  // namespace zentable
