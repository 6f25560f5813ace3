#include "models/model_eval.hpp"

#include <utility>

#include "data/delimited_file.hpp"
#include "models/scoring.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr const char* kBinaryTitle = "Binary Target Model";
constexpr const char* kContinuousTitle = "Continuous Target Model";
constexpr const char* kUnequalPredicted =
    "The numbers of observations of y_actual and y_predicted must be the same";
constexpr const char* kUnequalWeight =
    "The numbers of observations of y_actual must be the same as weight";
constexpr const char* kGroups = "Groups must be a positive integer";
constexpr const char* kGroupsSmall = "groups must be a positive integer";
constexpr const char* kNumParams = "num_vars must be larger than or equal to 2";
constexpr const char* kNumBins = "numBins must be a positive integer";
constexpr const char* kNoRecords = "Number of non-missing records in input data is 0";
constexpr const char* kPredictedMissing =
    "Error: predicted variable name (y_predicted_name) is missing";
constexpr const char* kPredictedTooMany =
    "Error: only one predicted variable name (y_predicted_name) is allowed";
constexpr const char* kPredictedNotText =
    "Error: predicted variable name (y_predicted_name) is not a string";

// One number cell, truncated toward zero, of at least `least`.
int read_at_least(const CellMatrix& table, const char* message, int least) {
    int value = 0;
    read_int_required(table, message, value);
    if (value < least)
        throw message;
    return value;
}

// The records complete in actual, predicted and weight, in table order.
dmat records_from_cells(const CellMatrix& yActual, const CellMatrix& yPredicted,
                        const CellMatrix& weight) {
    const NamedVector actual = read_vector_with_header(yActual);
    const NamedVector predicted = read_vector_with_header(yPredicted);
    const std::size_t n = actual.values.size();
    if (predicted.values.size() != n)
        throw kUnequalPredicted;
    NamedVector weights;
    if (is_omitted(weight)) {
        weights.values.assign(n, 1.0);
        weights.valid.assign(n, true);
    } else {
        weights = read_vector_with_header(weight);
        if (weights.values.size() != n)
            throw kUnequalWeight;
    }
    dmat records;
    records.reserve(n);
    for (std::size_t i = 0; i < n; ++i)
        if (actual.valid[i] && predicted.valid[i] && weights.valid[i])
            records.push_back({actual.values[i], predicted.values[i], weights.values[i]});
    return records;
}

// The same records from a file: the predicted variable travels as the one x
// of the file reader, which drops a record with any field that is not a number.
dmat records_from_file(const std::string& filename, const CellMatrix& yActualName,
                       const CellMatrix& yPredictedName, const CellMatrix& weightName,
                       char delimiter) {
    if (is_omitted(yPredictedName))
        throw std::string(kPredictedMissing);
    if (yPredictedName.RowsInStructure() * yPredictedName.ColumnsInStructure() != 1)
        throw std::string(kPredictedTooMany);
    if (!yPredictedName(0, 0).IsString())
        throw std::string(kPredictedNotText);
    const XYW data =
        read_xyw_from_file(filename, yPredictedName, yActualName, weightName, delimiter);
    dmat records;
    records.reserve(data.y.size());
    for (std::size_t i = 0; i < data.y.size(); ++i)
        records.push_back({data.y[i], data.x[i][0], data.weight[i]});
    return records;
}

dmat records_of(const dvec& y, const dvec& predictions, const dvec& weights) {
    dmat records;
    records.reserve(y.size());
    for (std::size_t i = 0; i < y.size(); ++i)
        records.push_back({y[i], predictions[i], weights[i]});
    return records;
}

// The text of a one-cell name argument, or "" when it is not one.
std::string name_in(const CellMatrix& table) {
    if (table.RowsInStructure() != 1 || table.ColumnsInStructure() != 1 || !table(0, 0).IsString())
        return "";
    return trim(table(0, 0).StringValue(), 0);
}

}  // namespace

CellMatrix model_bin_eval(const CellMatrix& yActual, const CellMatrix& yPredicted,
                          const CellMatrix& numBins, const CellMatrix& weight) {
    const dmat records = records_from_cells(yActual, yPredicted, weight);
    const int bins = read_at_least(numBins, kGroups, 1);
    CellMatrix result;
    binary_eval_table(records, bins, kBinaryTitle, "model_bin_eval", result);
    return result;
}

CellMatrix model_bin_eval_from_file(const std::string& filename, const CellMatrix& yActualName,
                                    const CellMatrix& yPredictedName, const CellMatrix& numBins,
                                    const CellMatrix& weightName, const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const int bins = read_at_least(numBins, kGroups, 1);
    const dmat records =
        records_from_file(filename, yActualName, yPredictedName, weightName, separator);
    CellMatrix result;
    binary_eval_table(records, bins, kBinaryTitle, "model_bin_eval_from_file", result);
    return result;
}

CellMatrix model_cont_eval(const CellMatrix& yActual, const CellMatrix& yPredicted,
                           const CellMatrix& numParams, const CellMatrix& numBins,
                           const CellMatrix& weight) {
    const dmat records = records_from_cells(yActual, yPredicted, weight);
    const int k = read_at_least(numParams, kNumParams, 2);
    const int bins = read_at_least(numBins, kGroupsSmall, 1);
    CellMatrix result;
    cont_eval_table(records, k, bins, kContinuousTitle, "model_cont_eval", result);
    return result;
}

CellMatrix model_cont_eval_from_file(const std::string& filename, const CellMatrix& yActualName,
                                     const CellMatrix& yPredictedName, const CellMatrix& numParams,
                                     const CellMatrix& numBins, const CellMatrix& weightName,
                                     const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const int k = read_at_least(numParams, kNumParams, 2);
    const int bins = read_at_least(numBins, kGroups, 1);
    const dmat records =
        records_from_file(filename, yActualName, yPredictedName, weightName, separator);
    CellMatrix result;
    // Unlike the binary twin, this report closes with the sheet command's name:
    // reports already in use end that way.
    cont_eval_table(records, k, bins, kContinuousTitle, "model_cont_eval", result);
    return result;
}

CellMatrix model_eval(const std::string& model, const CellMatrix& x, const CellMatrix& y,
                      const CellMatrix& numBins, const CellMatrix& weight) {
    const XYW data = read_xyw(x, y, weight);
    if (data.y.empty())
        throw kNoRecords;
    const int bins = read_at_least(numBins, kNumBins, 1);
    CellMatrix result;
    model_eval_run(model, data.x_names, data.x, data.y, data.weight, bins, result);
    return result;
}

CellMatrix model_eval_from_file(const std::string& model, const std::string& filename,
                                const CellMatrix& yName, const CellMatrix& numBins,
                                const CellMatrix& weightName, const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const int bins = read_at_least(numBins, kNumBins, 1);
    // Every other variable of the file is offered to the model, as a table x
    // would be; the reader checks the y and weight arguments themselves.
    const std::string y_name = name_in(yName);
    const std::string weight_name = is_omitted(weightName) ? "" : name_in(weightName);
    svec x_names;
    for (const std::string& name : read_head(filename, separator))
        if (name != y_name && name != weight_name)
            x_names.push_back(name);
    CellMatrix x_table(x_names.empty() ? 0 : 1, x_names.size());
    for (std::size_t j = 0; j < x_names.size(); ++j)
        x_table(0, j) = x_names[j];
    const XYW data = read_xyw_from_file(filename, x_table, yName, weightName, separator);
    if (data.y.empty())
        throw kNoRecords;
    CellMatrix result;
    model_eval_run(model, data.x_names, data.x, data.y, data.weight, bins, result);
    return result;
}

void model_binary_association(const std::string& model, const svec& names, const dmat& x,
                              const dvec& y, const dvec& weights, BinaryEval& out) {
    const ModelScores scores = score_by_model(model, names, x);
    binary_eval_core(records_of(y, scores.predictions, weights), 0, out);
}

void model_continuous_stats(const std::string& model, const svec& names, const dmat& x,
                            const dvec& y, const dvec& weights, ContEval& out) {
    const ModelScores scores = score_by_model(model, names, x);
    if (scores.type == "CONT")
        cont_eval_core(records_of(y, scores.predictions, weights), scores.parameter_count, 0, out);
}

void model_eval_run(const std::string& model, const svec& names, const dmat& x, const dvec& y,
                    const dvec& weights, int numBins, CellMatrix& result) {
    const ModelScores scores = score_by_model(model, names, x);
    dmat records = records_of(y, scores.predictions, weights);
    if (scores.type == "BIN") {
        const double middle = (scores.levels[0] + scores.levels[1]) * 0.5;
        for (dvec& r : records)
            r[0] = r[0] >= middle ? 1.0 : 0.0;
        binary_eval_table(records, numBins, scores.class_name, "model_eval", result);
    } else {
        cont_eval_table(records, scores.parameter_count, numBins, scores.class_name, "model_eval",
                        result);
    }
}

}  // namespace zentable
