#pragma once

#include <string>
#include <vector>

#include "models/handle.hpp"
#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// A support vector machine whose trained form lives in the library's model
// file: the object keeps the path and the scaling around it, so the file
// must outlive the object.
class svmModel : public base_c {
  public:
    std::string svmType;  // "SVC" or "SVR"
    std::string directory;
    std::string modelFile;
    svec variableNames;
    dvec xMean, xStd;
    dvec levels;  // "SVC": the two target values as given, ascending
    double yMean = 0.0, yStd = 1.0;
    std::vector<svec> modelHeader;  // the model file's lines before its "SV" line
};

// "BIN" writes the label as a truncated integer, "CONT" with 16 significant
// digits; the inputs always with 16, zeros included.
void writeSvmDataFile(const std::string& path, const std::string& kind, const dvec& labels,
                      const dmat& x);

// The file names of one moment: d + "/tmp_svm_<what>_" + local time + ".txt".
std::string svmFileName(const std::string& directory, const std::string& what,
                        const std::string& stamp);

// The probability of label 1 ("SVC") or the unscaled prediction ("SVR") of
// each row of a table whose columns are `names`, through the model file.
dvec scoreSvm(const svmModel& model, const svec& names, const dmat& rows);

CellMatrix svm(const CellMatrix& directory, const CellMatrix& x, const CellMatrix& y,
               const CellMatrix& svmType, const CellMatrix& kernelType, const CellMatrix& C,
               const CellMatrix& epsilon, const CellMatrix& degree, const CellMatrix& gamma,
               const CellMatrix& coef0, const CellMatrix& seed, const CellMatrix& doScaling);
CellMatrix svm_from_file(const CellMatrix& directory, const std::string& filename,
                         const CellMatrix& xNames, const CellMatrix& yName,
                         const CellMatrix& svmType, const CellMatrix& kernelType,
                         const CellMatrix& C, const CellMatrix& epsilon, const CellMatrix& degree,
                         const CellMatrix& gamma, const CellMatrix& coef0, const CellMatrix& seed,
                         const CellMatrix& doScaling, const CellMatrix& delimiter);

}  // namespace zentable
