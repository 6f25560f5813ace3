#include "regression/logistic_reg.hpp"

#include <cmath>

#include "data/delimited_file.hpp"
#include "models/evaluation.hpp"
#include "models/model_eval.hpp"
#include "regression/logistic_fit.hpp"
#include "regression/logistic_reg_model.hpp"
#include "regression/weighted_regression.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kCommand = "logistic_reg";
constexpr const char* kBadCoefs =
    "coefs must hold variable names in the first column and coefficients in the second";

}  // namespace

CellMatrix logistic_reg(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight) {
    const XYW data = read_xyw(x, y, weight);
    return logistic_reg_run(data.x, data.y, data.weight, data.x_names, data.y_name,
                            data.has_weight);
}

CellMatrix logistic_reg_from_file(const std::string& filename, const CellMatrix& xNames,
                                  const CellMatrix& yName, const CellMatrix& weightName,
                                  const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const XYW data = read_xyw_from_file(filename, xNames, yName, weightName, separator);
    return logistic_reg_run(data.x, data.y, data.weight, data.x_names, data.y_name,
                            data.has_weight);
}

CellMatrix logistic_reg_run(const dmat& x, const dvec& y, const dvec& weight,
                            const std::vector<std::string>& names, const std::string& y_name,
                            bool has_weight) {
    if (!dependency_matrix(x).empty())
        return CellMatrix(std::string(kCommand) +
                          ": input data matrix is not full rank. Some variables are linear "
                          "combinations of other variables. Run matrix_corr() and "
                          "matrix_sym_eign() to find linear relationships");
    dvec coded = y;
    const dvec levels = binary_recode(coded);
    const LogisticFit fit = logistic_fit(x, coded, weight);

    const std::size_t p = names.size();
    const int n = static_cast<int>(x.size());
    const int k = static_cast<int>(p) + 1;
    CellMatrix r(p + 29, 6);
    // Filed only now, so that a failed fit leaves the store as it was.
    const handle_c<logisticRegModel> model(new logisticRegModel(names, fit.coefs, levels));
    const std::string handle = logisticRegModelHandle_to_string(model);
    // The coded target, as the scores are: a target coded 1 and 2 evaluated
    // raw would count its pairs against the wrong levels.
    BinaryEval eval;
    model_binary_association(handle, names, x, coded, weight, eval);

    r(0, 0) = handle;
    r(2, 0) = "Model Performance";
    r(4, 0) = y_name;
    r(4, 1) = "Freq";
    r(4, 2) = "Percent";
    r(5, 0) = "ALL";
    r(5, 1) = n;
    r(5, 2) = 1;
    r(6, 0) = levels[1];
    r(6, 1) = fit.n1;
    r(6, 2) = static_cast<double>(fit.n1) / n;
    r(7, 0) = levels[0];
    r(7, 1) = n - fit.n1;
    r(7, 2) = static_cast<double>(n - fit.n1) / n;
    if (has_weight) {
        const double total = fit.w0 + fit.w1;
        r(4, 3) = "Weight";
        r(4, 4) = "Weight Percent";
        r(5, 3) = total;
        r(5, 4) = 1;
        r(6, 3) = fit.w1;
        r(6, 4) = fit.w1 / total;
        r(7, 3) = fit.w0;
        r(7, 4) = fit.w0 / total;
    }
    r(8, 0) = "Probability Modeled is for " + y_name;
    r(8, 1) = levels[1];
    r(9, 0) = "Number of Parameters";
    r(9, 1) = k;
    write_model_fit_rows(r, 11, n, k, fit.ll0, fit.ll);
    write_association_rows(r, 18, eval);

    r(23, 0) = "Model Parameter Estimates";
    const char* headers[] = {"#",      "Variable", "Estimate", "Standard Error", "Wald Chi-Square",
                             "P Value"};
    for (int c = 0; c < 6; ++c)
        r(25, c) = headers[c];
    // The intercept is last in the vectors and first in the table.
    for (std::size_t row = 0; row <= p; ++row) {
        const std::size_t v = row == 0 ? p : row - 1;
        r(26 + row, 0) = static_cast<int>(row);
        r(26 + row, 1) = row == 0 ? std::string("Intercept") : names[v];
        r(26 + row, 2) = fit.coefs[v];
        r(26 + row, 3) = fit.std_errors[v];
        r(26 + row, 4) = fit.wald[v];
        r(26 + row, 5) = fit.p_values[v];
    }
    r(p + 28, 0) = std::string("End of output: ") + kCommand;
    return r;
}

CellMatrix logistic_reg_score_from_coefs(const CellMatrix& coefs, const CellMatrix& inputData) {
    if (coefs.ColumnsInStructure() < 2)
        throw kBadCoefs;
    const NamedTable data = read_table_numeric_headers_first_row(inputData);
    const std::size_t p = data.names.size();
    dvec b(p + 1, 0.0);
    for (std::size_t r = 0; r < coefs.RowsInStructure(); ++r) {
        const CellValue& coefficient = coefs(r, 1);
        if (r == 0 && coefficient.IsString())
            continue;  // a header row
        if (!coefficient.IsANumber())
            throw kBadCoefs;
        const std::string name = trim(cell_to_text(coefs(r, 0)), 0);
        if (name == "Intercept") {
            b[p] = coefficient.NumericValue();
            continue;
        }
        std::size_t c = 0;
        while (c < p && data.names[c] != name)
            ++c;
        if (c == p)
            throw "The variable in coefficients, " + name + ", cannot be found in data matrix";
        b[c] = coefficient.NumericValue();
    }
    const dvec probabilities = logistic_predict(data.data, b);
    CellMatrix result(probabilities.size() + 1, 1);
    result(0, 0) = "yhat";
    for (std::size_t i = 0; i < probabilities.size(); ++i)
        result(i + 1, 0) = probabilities[i];
    return result;
}

}  // namespace zentable
