#pragma once

#include <string>

#include "models/evaluation.hpp"
#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// model_bin_eval(yActual, yPredicted, numBins, weight): association and gains
// of a binary target, 0 or 1, against predicted probabilities.
CellMatrix model_bin_eval(const CellMatrix& yActual, const CellMatrix& yPredicted,
                          const CellMatrix& numBins, const CellMatrix& weight);
CellMatrix model_bin_eval_from_file(const std::string& filename, const CellMatrix& yActualName,
                                    const CellMatrix& yPredictedName, const CellMatrix& numBins,
                                    const CellMatrix& weightName, const CellMatrix& delimiter);

// model_cont_eval(yActual, yPredicted, numParams, numBins, weight): analysis
// of variance and gains of a continuous target.
CellMatrix model_cont_eval(const CellMatrix& yActual, const CellMatrix& yPredicted,
                           const CellMatrix& numParams, const CellMatrix& numBins,
                           const CellMatrix& weight);
CellMatrix model_cont_eval_from_file(const std::string& filename, const CellMatrix& yActualName,
                                     const CellMatrix& yPredictedName, const CellMatrix& numParams,
                                     const CellMatrix& numBins, const CellMatrix& weightName,
                                     const CellMatrix& delimiter);

// model_eval(model, x, y, numBins, weight): scores x with a stored model and
// evaluates the scores against y as its target's kind requires.
CellMatrix model_eval(const std::string& model, const CellMatrix& x, const CellMatrix& y,
                      const CellMatrix& numBins, const CellMatrix& weight);
// The file's variables other than y and the weight are the data to score.
CellMatrix model_eval_from_file(const std::string& model, const std::string& filename,
                                const CellMatrix& yName, const CellMatrix& numBins,
                                const CellMatrix& weightName, const CellMatrix& delimiter);

// Scores x with a stored model and evaluates the scores against y with the
// given weights, without gains; y is taken as given. model_continuous_stats
// leaves out untouched unless the model has a continuous target.
void model_binary_association(const std::string& model, const svec& names, const dmat& x,
                              const dvec& y, const dvec& weights, BinaryEval& out);
void model_continuous_stats(const std::string& model, const svec& names, const dmat& x,
                            const dvec& y, const dvec& weights, ContEval& out);

// Scores x with a stored model and lays out the evaluation that suits its
// target, titled with the model's class name. A binary target is first coded
// 0 and 1 about the middle of its two levels.
void model_eval_run(const std::string& model, const svec& names, const dmat& x, const dvec& y,
                    const dvec& weights, int numBins, CellMatrix& result);

}  // namespace zentable
