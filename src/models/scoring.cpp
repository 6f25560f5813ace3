#include "models/scoring.hpp"

#include <algorithm>

#include "data/delimited_file.hpp"
#include "learners/discriminant.hpp"
#include "learners/naive_bayes.hpp"
#include "learners/neural_net.hpp"
#include "learners/svm.hpp"
#include "models/model_store.hpp"
#include "regression/linear_reg_model.hpp"
#include "regression/logistic_fit.hpp"
#include "regression/logistic_reg_model.hpp"
#include "trees/boosting_core.hpp"
#include "trees/boosting_model.hpp"
#include "trees/tree_model.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

// Classes that other families will teach to score; until then a handle of
// theirs fails in plain words, never with made-up numbers.
const char* const kNotYetScored[] = {"plsRegModel", "polyRegModel"};

bool one_of(const std::string& name, const char* const* first, const char* const* last) {
    return std::find(first, last, name) != last;
}

[[noreturn]] void not_scored_yet(const std::string& class_name) {
    throw class_name + " models cannot be scored in this build";
}

std::size_t column_of(const svec& names, const std::string& variable) {
    const auto it = std::find(names.begin(), names.end(), variable);
    if (it == names.end())
        throw "The variable (" + variable + ") in model cannot be found in data matrix";
    return static_cast<std::size_t>(it - names.begin());
}

// One coefficient per data column, zero for the columns the model does not
// name, and the intercept last.
dvec align_coefficients(const svec& model_names, const dvec& coefs, const svec& data_names) {
    dvec aligned(data_names.size() + 1, 0.0);
    aligned.back() = coefs.back();
    for (std::size_t i = 0; i < model_names.size(); ++i)
        aligned[column_of(data_names, model_names[i])] = coefs[i];
    return aligned;
}

dvec linear_predictor(const dvec& aligned, const dmat& data) {
    const std::size_t p = aligned.size() - 1;
    dvec out;
    out.reserve(data.size());
    for (const dvec& row : data) {
        double sum = 0.0;
        for (std::size_t j = 0; j < p; ++j)
            sum += aligned[j] * row[j];
        out.push_back(aligned[p] + sum);
    }
    return out;
}

// The table x of model_score: all rows kept, each flagged valid when all of
// its cells are numbers.
NamedTable read_scoring_table(const CellMatrix& x) {
    return read_table_with_headers(x);
}

CellMatrix score_column(const ModelScores& scores, const bvec& valid) {
    CellMatrix result(scores.predictions.size() + 1, 1);
    result(0, 0) = "Y Predicted";
    for (std::size_t i = 0; i < scores.predictions.size(); ++i) {
        if (valid[i])
            result(i + 1, 0) = scores.predictions[i];
        else
            result(i + 1, 0) = ".";
    }
    return result;
}

}  // namespace

ModelScores score_by_model(const std::string& model, const svec& names, const dmat& data) {
    const std::string key = trim(model, 0);
    ModelScores scores;
    scores.class_name = model_class_of(key);
    if (scores.class_name == "linearRegModel") {
        const handle_c<linearRegModel> fit = string_to_handle<linearRegModel>(key);
        scores.type = "CONT";
        scores.parameter_count = static_cast<int>(fit->names.size()) + 1;
        scores.predictions =
            linear_predictor(align_coefficients(fit->names, fit->coefs, names), data);
        return scores;
    }
    if (scores.class_name == "logisticRegModel") {
        const handle_c<logisticRegModel> fit = string_to_handle<logisticRegModel>(key);
        scores.type = "BIN";
        scores.levels = fit->levels;
        scores.predictions =
            logistic_predict(data, align_coefficients(fit->names, fit->coefs, names));
        return scores;
    }
    if (scores.class_name == "logisticRegBoostingTreeModel") {
        const handle_c<logisticRegBoostingTreeModel> fit =
            string_to_handle<logisticRegBoostingTreeModel>(key);
        scores.type = "BIN";
        scores.levels = fit->levels;
        scores.predictions =
            scoreLogisticBoosting(fit->names, fit->trees, fit->rates, fit->initial, names, data);
        return scores;
    }
    if (scores.class_name == "lsRegBoostingTreeModel") {
        const handle_c<lsRegBoostingTreeModel> fit = string_to_handle<lsRegBoostingTreeModel>(key);
        scores.type = "CONT";
        scores.parameter_count = static_cast<int>(splitVariablesOfTree(fit->trees).size()) + 1;
        scores.predictions =
            scoreLsBoosting(fit->names, fit->trees, fit->rates, fit->initial, names, data);
        return scores;
    }
    if (scores.class_name == "regressionTreeModel") {
        const handle_c<regressionTreeModel> fit = string_to_handle<regressionTreeModel>(key);
        scores.type = "CONT";
        scores.parameter_count = static_cast<int>(splitVariablesOfTree(fit->nodes).size()) + 1;
        scores.predictions = scoreTree(fit->names, fit->nodes, names, data);
        return scores;
    }
    if (scores.class_name == "classificationTreeModel") {
        const handle_c<classificationTreeModel> fit =
            string_to_handle<classificationTreeModel>(key);
        scores.type = "BIN";
        scores.levels = fit->levels;
        scores.predictions = scoreTree(fit->names, fit->nodes, names, data);
        return scores;
    }
    if (scores.class_name == "neuralNetModel") {
        const handle_c<neuralNetModel> fit = string_to_handle<neuralNetModel>(key);
        const NeuralNetwork& net = fit->net;
        if (net.objective == "ML") {
            scores.type = "BIN";
            scores.levels = fit->levels;
        } else {
            scores.type = "CONT";
            scores.parameter_count = static_cast<int>(net.variableNames.size()) + 1;
        }
        scores.predictions = scoreNeuralNet(net, names, data);
        return scores;
    }
    if (scores.class_name == "svmModel") {
        const handle_c<svmModel> fit = string_to_handle<svmModel>(key);
        if (fit->svmType == "SVC") {
            scores.type = "BIN";
            scores.levels = fit->levels;
        } else {
            scores.type = "CONT";
            scores.parameter_count = static_cast<int>(fit->variableNames.size()) + 1;
        }
        scores.predictions = scoreSvm(*fit, names, data);
        return scores;
    }
    if (one_of(scores.class_name, std::begin(kNotYetScored), std::end(kNotYetScored)))
        not_scored_yet(scores.class_name);
    throw "Invalid model";
}

CellMatrix model_score(const std::string& model, const CellMatrix& x) {
    const std::string class_name = model_class_of(model);
    // The classifiers give a column per class, so they bypass the one-column
    // dispatch; score_by_model has no branch for them.
    if (class_name == "naiveBayesClassificationModel")
        return naive_bayes_score(model, x);
    if (class_name == "ldaModel" || class_name == "qdaModel")
        return discriminant_score(model, x);
    const NamedTable table = read_scoring_table(x);
    return score_column(score_by_model(model, table.names, table.data), table.valid);
}

CellMatrix model_score_from_file(const std::string& model, const std::string& infilename,
                                 const CellMatrix& scoreName, const std::string& outfilename,
                                 const CellMatrix& delimiter) {
    if (infilename == outfilename)
        throw "input file and output file must be different";
    const char separator = read_delimiter(delimiter);
    std::string score_name = "score";
    read_text(scoreName, "Input scoreName must be a name in one cell", score_name);
    score_name = trim(score_name, 0);

    const svec head = read_head(infilename, separator);
    const NamedTable table = read_numeric_table(infilename, head, separator);
    const ModelScores scores = score_by_model(model, head, table.data);
    append_scores(infilename, outfilename, scores.predictions, table.valid, score_name, separator);
    return CellMatrix("The score " + score_name + " has been appended in the file " + outfilename);
}

namespace {

std::vector<svec> do_model_score_node(const std::string& model, const svec& names,
                                      const dmat& data) {
    if (model_class_of(model) != "logisticRegBoostingTreeModel")
        throw "do_model_score_node only works for logisticRegBoostingTreeModel";
    const handle_c<logisticRegBoostingTreeModel> fit =
        string_to_handle<logisticRegBoostingTreeModel>(trim(model, 0));
    return scoreBoostingNodes(fit->names, fit->trees, names, data);
}

}  // namespace

CellMatrix model_score_node(const std::string& model, const CellMatrix& x) {
    if (model_class_of(model) != "logisticRegBoostingTreeModel")
        throw "model_score_node works only for logisticRegBoostingTreeModel";
    const NamedTable table = read_scoring_table(x);
    const std::vector<svec> nodes = do_model_score_node(model, table.names, table.data);
    CellMatrix result(table.data.size() + 1, std::max<std::size_t>(nodes.size(), 1));
    result(0, 0) = "Y Predicted";
    for (std::size_t i = 0; i < table.data.size(); ++i) {
        if (!table.valid[i]) {
            result(i + 1, 0) = ".";
            continue;
        }
        for (std::size_t t = 0; t < nodes.size(); ++t)
            result(i + 1, t) = nodes[t][i];
    }
    return result;
}

}  // namespace zentable
