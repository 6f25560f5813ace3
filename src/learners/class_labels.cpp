#include "learners/class_labels.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "data/delimited_file.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr const char* kUnequalCounts =
    "The numbers of observations in input data X, Y, and weight must be the same";

}  // namespace

std::string value_key(const std::string& field) {
    std::string text = trim(field, 0);
    double value = 0.0;
    if (!text.empty() && parse_number(text, value))
        return number_to_text(value);
    return text;
}

std::string value_key(const CellValue& cell) {
    if (cell.IsANumber())
        return number_to_text(cell.NumericValue());
    return value_key(cell_to_text(cell));
}

const std::string& ValueKeys::operator()(const CellValue& cell) {
    if (cell.IsANumber()) {
        const double value = cell.NumericValue();
        const auto found = numbers_.find(value);
        if (found != numbers_.end())
            return found->second;
        return numbers_.emplace(value, number_to_text(value)).first->second;
    }
    return (*this)(cell_to_text(cell));
}

const std::string& ValueKeys::operator()(const std::string& field) {
    const auto found = texts_.find(field);
    if (found != texts_.end())
        return found->second;
    return texts_.emplace(field, value_key(field)).first->second;
}

void Levels::write(CellValue& cell, std::size_t k) const {
    if (numeric)
        cell = values[k];
    else
        cell = texts[k];
}

int LevelCoder::code(const std::string& text) {
    const auto found = index_.find(text);
    if (found != index_.end())
        return found->second;
    const int code = static_cast<int>(texts_.size());
    index_.emplace(text, code);
    texts_.push_back(text);
    return code;
}

Levels LevelCoder::sorted(std::vector<int>& place) const {
    const std::size_t n = texts_.size();
    Levels out;
    out.numeric = true;
    dvec values(n);
    for (std::size_t i = 0; i < n && out.numeric; ++i)
        out.numeric = parse_number(texts_[i], values[i]);
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), 0);
    if (out.numeric)
        std::sort(order.begin(), order.end(),
                  [&](std::size_t a, std::size_t b) { return values[a] < values[b]; });
    else
        std::sort(order.begin(), order.end(),
                  [&](std::size_t a, std::size_t b) { return texts_[a] < texts_[b]; });
    place.assign(n, 0);
    for (std::size_t k = 0; k < n; ++k) {
        place[order[k]] = static_cast<int>(k);
        out.texts.push_back(texts_[order[k]]);
        if (out.numeric)
            out.values.push_back(values[order[k]]);
    }
    return out;
}

LabelsAndWeights read_labels_and_weights(const CellMatrix& y, const CellMatrix& weight,
                                         std::size_t records) {
    const NamedLine line(y);
    LabelsAndWeights out;
    out.y_name = line.name();
    if (line.size() != records)
        throw kUnequalCounts;
    out.labels.reserve(records);
    ValueKeys keys;
    for (std::size_t i = 0; i < records; ++i)
        out.labels.push_back(keys(line[i]));
    out.has_weight = !is_omitted(weight);
    if (out.has_weight) {
        NamedVector w = read_vector_with_header(weight);
        if (w.values.size() != records)
            throw kUnequalCounts;
        out.weight = std::move(w.values);
        out.usable = std::move(w.valid);
    } else {
        out.weight.assign(records, 1.0);
        out.usable.assign(records, true);
    }
    for (std::size_t i = 0; i < records; ++i)
        out.usable[i] = out.usable[i] && !out.labels[i].empty() && out.weight[i] > 0.0;
    return out;
}

dvec ClassCounts::priors() const {
    dvec out;
    for (double w : weights)
        out.push_back(w / total_weight);
    return out;
}

void check_classes(const ClassCounts& counts) {
    if (counts.classes.size() < 2)
        throw "y must hold at least two classes among the records used";
    for (std::size_t k = 0; k < counts.classes.size(); ++k)
        if (counts.weights[k] <= 1.0)
            throw "The class " + counts.classes.texts[k] +
                " has a single record (a weight sum of 1 or less): no variance can be estimated "
                "within it";
}

ClassProbabilities normalise_log_products(const dvec& log_products) {
    ClassProbabilities out;
    out.predicted = 0;
    for (std::size_t k = 1; k < log_products.size(); ++k)
        if (log_products[k] > log_products[out.predicted])
            out.predicted = static_cast<int>(k);
    const double top = log_products[out.predicted];
    out.probabilities.resize(log_products.size());
    double sum = 0.0;
    for (std::size_t k = 0; k < log_products.size(); ++k)
        sum += out.probabilities[k] = std::exp(log_products[k] - top);
    for (double& p : out.probabilities)
        p /= sum;
    return out;
}

CellMatrix class_score_table(const Levels& classes, std::size_t rows,
                             const std::function<bool(std::size_t, ClassProbabilities&)>& score) {
    const std::size_t k_count = classes.size();
    CellMatrix table(rows + 1, k_count + 1);
    for (std::size_t k = 0; k < k_count; ++k)
        table(0, k) = "Prob_" + classes.texts[k];
    table(0, k_count) = "Class Predicted";
    ClassProbabilities scored;
    for (std::size_t i = 0; i < rows; ++i) {
        if (!score(i, scored)) {
            for (std::size_t k = 0; k <= k_count; ++k)
                table(i + 1, k) = ".";
            continue;
        }
        for (std::size_t k = 0; k < k_count; ++k)
            table(i + 1, k) = scored.probabilities[k];
        if (scored.predicted >= 0)
            classes.write(table(i + 1, k_count), static_cast<std::size_t>(scored.predicted));
    }
    return table;
}

std::vector<std::size_t> scoring_columns(const CellMatrix& x, const svec& wanted,
                                         const std::string& before, const std::string& after) {
    if (x.RowsInStructure() < 2)
        throw "there is no input data for x";
    svec names;
    for (std::size_t j = 0; j < x.ColumnsInStructure(); ++j)
        names.push_back(trim(cell_to_text(x(0, j)), 0));
    std::vector<std::size_t> columns;
    for (const std::string& name : wanted) {
        const auto it = std::find(names.begin(), names.end(), name);
        if (it == names.end())
            throw before + name + after;
        columns.push_back(static_cast<std::size_t>(it - names.begin()));
    }
    return columns;
}

CellMatrix handle_block(const std::string& handle) {
    CellMatrix r(2, 1);
    r(0, 0) = handle;
    return r;
}

CellMatrix record_block(const std::string& method, const std::string& y_name, long long read,
                        long long used, bool has_weight, double weight_sum) {
    CellMatrix r(has_weight ? 9 : 8, 2);
    r(0, 0) = "Model Information";
    r(2, 0) = "Method";
    r(2, 1) = method;
    r(3, 0) = "Response Variable";
    r(3, 1) = y_name;
    r(4, 0) = "Number of Records Read";
    r(4, 1) = read;
    r(5, 0) = "Number of Records Used";
    r(5, 1) = used;
    r(6, 0) = "Number of Records Dropped";
    r(6, 1) = read - used;
    if (has_weight) {
        r(7, 0) = "Sum of Weights Used";
        r(7, 1) = weight_sum;
    }
    return r;
}

CellMatrix class_block(const ClassCounts& counts) {
    const std::size_t k_count = counts.classes.size();
    CellMatrix r(k_count + 4, 4);
    r(0, 0) = "Class Information";
    const char* const heads[] = {"Class", "Frequency", "Weight", "Prior"};
    for (std::size_t c = 0; c < 4; ++c)
        r(2, c) = heads[c];
    const dvec priors = counts.priors();
    for (std::size_t k = 0; k < k_count; ++k) {
        counts.classes.write(r(3 + k, 0), k);
        r(3 + k, 1) = counts.records[k];
        r(3 + k, 2) = counts.weights[k];
        r(3 + k, 3) = priors[k];
    }
    return r;
}

CellMatrix confusion_block(const Levels& classes, const std::vector<int>& actual,
                           const std::vector<int>& predicted, const dvec& weight,
                           bool unclassified) {
    const std::size_t k_count = classes.size();
    const std::size_t columns = k_count + (unclassified ? 1 : 0);
    dmat counts(k_count, dvec(columns, 0.0));
    double right = 0.0, total = 0.0;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        const std::size_t column =
            predicted[i] < 0 ? k_count : static_cast<std::size_t>(predicted[i]);
        if (column < columns)
            counts[actual[i]][column] += weight[i];
        if (predicted[i] == actual[i])
            right += weight[i];
        total += weight[i];
    }
    CellMatrix r(k_count + 6, columns + 1);
    r(0, 0) = "Training Confusion Matrix";
    r(2, 0) = "Actual \\ Predicted";
    for (std::size_t k = 0; k < k_count; ++k) {
        classes.write(r(2, k + 1), k);
        classes.write(r(3 + k, 0), k);
        for (std::size_t c = 0; c < columns; ++c)
            r(3 + k, c + 1) = counts[k][c];
    }
    if (unclassified)
        r(2, columns) = "Unclassified";
    r(4 + k_count, 0) = "Accuracy";
    r(4 + k_count, 1) = right / total;
    return r;
}

}  // namespace zentable
