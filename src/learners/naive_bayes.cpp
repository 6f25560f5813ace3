#include "learners/naive_bayes.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <memory>
#include <unordered_map>
#include <utility>

#include "data/delimited_file.hpp"
#include "learners/class_labels.hpp"
#include "models/model_store.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// A fitted naive Bayes classifier. Each variable is either continuous, with a
// normal density per class, or categorical, with add-one smoothed frequencies
// per class; `slot` is its index among the variables of its kind.
class naiveBayesClassificationModel : public base_c {
  public:
    struct Frequencies {
        Levels levels;
        std::unordered_map<std::string, int> index;
        dmat counts;         // [class][level], weighted
        dmat probabilities;  // [class][level], (count + 1) / (W_k + levels)
        dvec unseen;         // [class]: 1 / (W_k + levels)
        dmat log_probabilities;
        dvec log_unseen;
    };

    std::string kind;
    svec names;
    std::vector<char> categorical;
    std::vector<std::size_t> slot;
    Levels classes;
    dvec priors;
    dmat means, sds;  // [class][continuous variable]
    dmat inverse_sds;
    dvec log_constants;  // log prior - the sum of log(sd sqrt(2 pi))
    std::vector<Frequencies> tables;

    // The log of prior times each variable's density or frequency; a level
    // of -1 is a value not seen in training. The normal densities of a class
    // enter as one sum of squares under one exponential.
    dvec log_products(const double* numbers, const int* levels) const {
        dvec out(classes.size());
        for (std::size_t k = 0; k < out.size(); ++k) {
            double log_p = log_constants[k];
            double squares = 0.0;
            for (std::size_t v = 0; v < names.size(); ++v) {
                const std::size_t s = slot[v];
                if (categorical[v]) {
                    const Frequencies& t = tables[s];
                    log_p += levels[s] < 0 ? t.log_unseen[k] : t.log_probabilities[k][levels[s]];
                } else {
                    const double z = (numbers[s] - means[k][s]) * inverse_sds[k][s];
                    squares += z * z;
                }
            }
            out[k] = log_p - 0.5 * squares;
        }
        return out;
    }

    // The posteriors, or zeros and no class when every class's product is 0
    // in double precision: the record lies where no class has any weight.
    ClassProbabilities classify(const double* numbers, const int* levels) const {
        const dvec logs = log_products(numbers, levels);
        for (double l : logs)
            if (std::exp(l) > 0.0)
                return normalise_log_products(logs);
        ClassProbabilities none;
        none.probabilities.assign(logs.size(), 0.0);
        return none;
    }
};

namespace {

constexpr const char* kCommand = "naive_bayes_classifier";
constexpr const char* kBadModel = "Input model must be GAUSSIAN or CATEGORICAL";

// Every record as read, with what makes it usable.
struct NbRecords {
    svec names;
    std::vector<char> categorical;
    dmat numbers;             // per record: the continuous variables in order
    std::vector<svec> texts;  // per categorical variable: each record's value key
    svec labels;
    dvec weight;
    bvec usable;
    std::string y_name;
    bool has_weight = false;
};

std::string read_kind(const std::string& model) {
    std::string kind = trim(model, 0);
    if (kind.empty())
        return "GAUSSIAN";
    std::transform(kind.begin(), kind.end(), kind.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (kind != "GAUSSIAN" && kind != "CATEGORICAL")
        throw kBadModel;
    return kind;
}

std::vector<std::size_t> slots_of(const std::vector<char>& categorical) {
    std::vector<std::size_t> slot;
    std::size_t numeric = 0, coded = 0;
    for (char c : categorical)
        slot.push_back(c ? coded++ : numeric++);
    return slot;
}

NbRecords read_cells(const CellMatrix& x, const CellMatrix& y, const CellMatrix& weight,
                     bool all_categorical) {
    const std::size_t rows = x.RowsInStructure(), columns = x.ColumnsInStructure();
    if (rows == 0 || columns == 0)
        throw "Input data table is empty";
    NbRecords out;
    for (std::size_t j = 0; j < columns; ++j) {
        if (!x(0, j).IsString())
            throw "Headers for variable names must be strings";
        out.names.push_back(trim(x(0, j).StringValue(), 0));
    }
    if (rows < 2)
        throw "Input data table is empty";
    for (std::size_t j = 0; j < columns; ++j)
        out.categorical.push_back(all_categorical || x(1, j).IsString());
    const std::vector<std::size_t> slot = slots_of(out.categorical);
    const auto coded = static_cast<std::size_t>(
        std::count(out.categorical.begin(), out.categorical.end(), char(1)));

    const std::size_t n = rows - 1;
    LabelsAndWeights lw = read_labels_and_weights(y, weight, n);
    out.y_name = lw.y_name;
    out.labels = std::move(lw.labels);
    out.weight = std::move(lw.weight);
    out.usable = std::move(lw.usable);
    out.has_weight = lw.has_weight;
    out.numbers.assign(n, dvec(columns - coded));
    out.texts.assign(coded, svec(n));
    std::vector<ValueKeys> keys(coded);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            const CellValue& cell = x(i + 1, j);
            if (out.categorical[j]) {
                out.texts[slot[j]][i] = keys[slot[j]](cell);
                if (out.texts[slot[j]][i].empty())
                    out.usable[i] = false;
            } else if (cell.IsANumber()) {
                out.numbers[i][slot[j]] = cell.NumericValue();
            } else {
                out.usable[i] = false;
            }
        }
    }
    return out;
}

NbRecords read_file(const std::string& filename, const CellMatrix& xNames, const CellMatrix& yName,
                    const CellMatrix& weightName, char separator, bool all_categorical) {
    NbRecords out;
    out.names =
        read_file_variable_names(xNames, "Error: independent variable names (x_names) are missing");
    if (is_omitted(yName))
        throw std::string("Error: dependent variable name (y_name) is missing");
    read_text(yName, "Error: only one dependent variable name (y_name) is allowed", out.y_name);
    out.y_name = trim(out.y_name, 0);
    out.has_weight = !is_omitted(weightName);
    std::string weight_name;
    if (out.has_weight) {
        read_text(weightName, "Error: only one weight variable name (w_name) is allowed",
                  weight_name);
        weight_name = trim(weight_name, 0);
    }

    const svec head = read_head(filename, separator);
    for (const std::string& name : out.names)
        find_variable(head, name);
    find_variable(head, out.y_name);
    if (out.has_weight)
        find_variable(head, weight_name);

    // The first record types the columns, as a table's first data row does.
    const std::vector<svec> first = read_field_table(filename, out.names, separator, 1);
    if (first.empty())
        throw "Error: no data records in file " + filename;
    svec numeric_names, text_names{out.y_name};
    for (std::size_t j = 0; j < out.names.size(); ++j) {
        out.categorical.push_back(all_categorical || !is_number(trim(first[0][j], 0)));
        (out.categorical[j] ? text_names : numeric_names).push_back(out.names[j]);
    }
    if (out.has_weight)
        numeric_names.push_back(weight_name);

    // One pass over the file for the numbers and the texts.
    ClassAndNumbers records = read_two_name_lists(filename, text_names, numeric_names, separator);
    const std::size_t n = records.x.size();
    std::vector<ValueKeys> keys(text_names.size());
    out.labels = std::move(records.classes[0]);
    for (std::string& label : out.labels)
        label = keys[0](label);
    for (std::size_t v = 1; v < text_names.size(); ++v) {
        svec& column = records.classes[v];
        for (std::string& value : column)
            value = keys[v](value);
        out.texts.push_back(std::move(column));
    }
    out.numbers = std::move(records.x);
    out.usable = std::move(records.valid);
    out.weight.assign(n, 1.0);
    for (std::size_t i = 0; i < n; ++i) {
        if (out.has_weight) {
            out.weight[i] = out.numbers[i].back();
            out.numbers[i].pop_back();
        }
        bool usable = out.usable[i] && !out.labels[i].empty() && out.weight[i] > 0.0;
        for (const svec& column : out.texts)
            usable = usable && !column[i].empty();
        out.usable[i] = usable;
    }
    return out;
}

// Weighted moments of the continuous variables in one class, updated a record
// at a time (West's method), so that the file is read once; the range finds a
// variable that is constant within the class.
struct Moments {
    double weight = 0.0;
    dvec mean, m2, low, high;

    explicit Moments(std::size_t variables)
        : mean(variables, 0.0), m2(variables, 0.0), low(variables), high(variables) {}

    void add(const dvec& x, double w) {
        if (weight == 0.0) {
            low = x;
            high = x;
        }
        const double before = weight;
        weight += w;
        const double share = w / weight;
        for (std::size_t v = 0; v < x.size(); ++v) {
            low[v] = std::min(low[v], x[v]);
            high[v] = std::max(high[v], x[v]);
            const double delta = x[v] - mean[v];
            const double r = delta * share;
            mean[v] += r;
            m2[v] += before * delta * r;
        }
    }
};

struct Fit {
    handle_c<naiveBayesClassificationModel> model;
    ClassCounts counts;
    std::vector<int> actual, predicted;  // of the usable records
    dvec weight;
};

Fit fit(const NbRecords& data, const std::string& kind) {
    const std::size_t n = data.labels.size();
    const std::size_t coded = data.texts.size();
    const std::size_t numeric = data.names.size() - coded;

    // Codes by first appearance now; the sorted order is known only at the end.
    LevelCoder class_coder;
    std::vector<LevelCoder> level_coders(coded);
    std::vector<int> class_code;
    std::vector<std::vector<int>> level_code(coded);
    std::vector<Moments> moments;                                 // [class]
    std::vector<std::vector<std::vector<double>>> counts(coded);  // [variable][class][level]
    std::vector<long long> records;
    dvec weights;
    for (std::size_t i = 0; i < n; ++i) {
        if (!data.usable[i])
            continue;
        const int k = class_coder.code(data.labels[i]);
        const double w = data.weight[i];
        if (static_cast<std::size_t>(k) == moments.size()) {
            moments.emplace_back(numeric);
            records.push_back(0);
            weights.push_back(0.0);
        }
        class_code.push_back(k);
        ++records[k];
        weights[k] += w;
        moments[k].add(data.numbers[i], w);
        for (std::size_t v = 0; v < coded; ++v) {
            const int level = level_coders[v].code(data.texts[v][i]);
            level_code[v].push_back(level);
            auto& by_class = counts[v];
            if (by_class.size() <= static_cast<std::size_t>(k))
                by_class.resize(k + 1);
            if (by_class[k].size() <= static_cast<std::size_t>(level))
                by_class[k].resize(level + 1, 0.0);
            by_class[k][level] += w;
        }
    }

    Fit out;
    std::vector<int> class_place;
    out.counts.classes = class_coder.sorted(class_place);
    const std::size_t k_count = out.counts.classes.size();
    out.counts.records.assign(k_count, 0);
    out.counts.weights.assign(k_count, 0.0);
    for (std::size_t k = 0; k < k_count; ++k) {
        out.counts.records[class_place[k]] = records[k];
        out.counts.weights[class_place[k]] = weights[k];
    }
    for (double w : out.counts.weights)
        out.counts.total_weight += w;
    check_classes(out.counts);

    auto model = std::make_unique<naiveBayesClassificationModel>();
    model->kind = kind;
    model->names = data.names;
    model->categorical = data.categorical;
    model->slot = slots_of(data.categorical);
    model->classes = out.counts.classes;
    model->priors = out.counts.priors();
    model->means.assign(k_count, dvec(numeric));
    model->sds.assign(k_count, dvec(numeric));
    for (std::size_t first = 0; first < k_count; ++first) {
        const std::size_t k = class_place[first];
        for (std::size_t v = 0; v < numeric; ++v) {
            const Moments& m = moments[first];
            if (m.low[v] == m.high[v]) {
                std::size_t name = 0;
                while (data.categorical[name] || model->slot[name] != v)
                    ++name;
                throw "The variable " + data.names[name] + " is constant within class " +
                    model->classes.texts[k];
            }
            model->means[k][v] = m.mean[v];
            model->sds[k][v] = std::sqrt(m.m2[v] / (m.weight - 1.0));
        }
    }
    constexpr double kLogSqrt2Pi = 0.9189385332046728;
    model->inverse_sds.assign(k_count, dvec(numeric));
    for (std::size_t k = 0; k < k_count; ++k) {
        double log_constant = std::log(model->priors[k]);
        for (std::size_t v = 0; v < numeric; ++v) {
            model->inverse_sds[k][v] = 1.0 / model->sds[k][v];
            log_constant -= std::log(model->sds[k][v]) + kLogSqrt2Pi;
        }
        model->log_constants.push_back(log_constant);
    }
    std::vector<std::vector<int>> level_place(coded);
    for (std::size_t v = 0; v < coded; ++v) {
        naiveBayesClassificationModel::Frequencies t;
        t.levels = level_coders[v].sorted(level_place[v]);
        const std::size_t levels = t.levels.size();
        for (std::size_t l = 0; l < levels; ++l)
            t.index.emplace(t.levels.texts[l], static_cast<int>(l));
        t.counts.assign(k_count, dvec(levels, 0.0));
        for (std::size_t first = 0; first < counts[v].size(); ++first)
            for (std::size_t l = 0; l < counts[v][first].size(); ++l)
                t.counts[class_place[first]][level_place[v][l]] = counts[v][first][l];
        t.probabilities.assign(k_count, dvec(levels));
        for (std::size_t k = 0; k < k_count; ++k) {
            const double denominator = out.counts.weights[k] + static_cast<double>(levels);
            for (std::size_t l = 0; l < levels; ++l)
                t.probabilities[k][l] = (t.counts[k][l] + 1.0) / denominator;
            t.unseen.push_back(1.0 / denominator);
        }
        t.log_probabilities = t.probabilities;
        for (dvec& row : t.log_probabilities)
            for (double& v : row)
                v = std::log(v);
        for (double v : t.unseen)
            t.log_unseen.push_back(std::log(v));
        model->tables.push_back(std::move(t));
    }

    // The training records scored as a handle would score them.
    std::vector<int> levels(coded);
    std::size_t used = 0;
    for (std::size_t i = 0; i < n; ++i) {
        if (!data.usable[i])
            continue;
        for (std::size_t v = 0; v < coded; ++v)
            levels[v] = level_place[v][level_code[v][used]];
        const double* numbers = data.numbers[i].data();
        out.actual.push_back(class_place[class_code[used]]);
        out.predicted.push_back(model->classify(numbers, levels.data()).predicted);
        out.weight.push_back(data.weight[i]);
        ++used;
    }
    out.model = handle_c<naiveBayesClassificationModel>(model.release());
    return out;
}

CellMatrix continuous_block(const naiveBayesClassificationModel& m) {
    const std::size_t k_count = m.classes.size();
    std::size_t numeric = 0;
    for (char c : m.categorical)
        numeric += c ? 0 : 1;
    CellMatrix r(numeric * k_count + 4, 4);
    r(0, 0) = "Continuous Variables";
    const char* const heads[] = {"Variable", "Class", "Mean", "Standard Deviation"};
    for (std::size_t c = 0; c < 4; ++c)
        r(2, c) = heads[c];
    std::size_t row = 3;
    for (std::size_t v = 0; v < m.names.size(); ++v) {
        if (m.categorical[v])
            continue;
        for (std::size_t k = 0; k < k_count; ++k, ++row) {
            if (k == 0)
                r(row, 0) = m.names[v];
            m.classes.write(r(row, 1), k);
            r(row, 2) = m.means[k][m.slot[v]];
            r(row, 3) = m.sds[k][m.slot[v]];
        }
    }
    return r;
}

CellMatrix frequency_block(const naiveBayesClassificationModel& m, std::size_t v) {
    const naiveBayesClassificationModel::Frequencies& t = m.tables[m.slot[v]];
    const std::size_t k_count = m.classes.size(), levels = t.levels.size();
    CellMatrix r(2 * k_count + 8, levels + 1);
    r(0, 0) = "Frequencies of " + m.names[v];
    r(k_count + 4, 0) = "Smoothed Probabilities of " + m.names[v];
    for (std::size_t top : {std::size_t(2), k_count + 6}) {
        r(top, 0) = "Class \\ " + m.names[v];
        for (std::size_t l = 0; l < levels; ++l)
            t.levels.write(r(top, l + 1), l);
        for (std::size_t k = 0; k < k_count; ++k) {
            m.classes.write(r(top + 1 + k, 0), k);
            const dmat& values = top == 2 ? t.counts : t.probabilities;
            for (std::size_t l = 0; l < levels; ++l)
                r(top + 1 + k, l + 1) = values[k][l];
        }
    }
    return r;
}

CellMatrix report(const NbRecords& data, const Fit& f) {
    const naiveBayesClassificationModel& m =
        *static_cast<const naiveBayesClassificationModel*>(f.model.getBody());
    CellMatrix r = handle_block(naiveBayesClassificationModelHandle_to_string(f.model));
    r.PushBottom(record_block(
        "Naive Bayes, " + m.kind, data.y_name, static_cast<long long>(data.labels.size()),
        static_cast<long long>(f.actual.size()), data.has_weight, f.counts.total_weight));
    r.PushBottom(class_block(f.counts));
    if (std::count(m.categorical.begin(), m.categorical.end(), char(0)) > 0)
        r.PushBottom(continuous_block(m));
    for (std::size_t v = 0; v < m.names.size(); ++v)
        if (m.categorical[v])
            r.PushBottom(frequency_block(m, v));
    r.PushBottom(confusion_block(m.classes, f.actual, f.predicted, f.weight, true));
    r.PushBottom(CellMatrix(std::string("End of output: ") + kCommand));
    return r;
}

}  // namespace

CellMatrix naive_bayes_classifier(const CellMatrix& x, const CellMatrix& y,
                                  const std::string& model, const CellMatrix& weight) {
    const std::string kind = read_kind(model);
    const NbRecords data = read_cells(x, y, weight, kind == "CATEGORICAL");
    return report(data, fit(data, kind));
}

CellMatrix naive_bayes_classifier_from_file(const std::string& filename, const CellMatrix& xNames,
                                            const CellMatrix& yName, const std::string& model,
                                            const CellMatrix& weightName,
                                            const CellMatrix& delimiter) {
    const char separator = read_delimiter(delimiter);
    const std::string kind = read_kind(model);
    const NbRecords data =
        read_file(filename, xNames, yName, weightName, separator, kind == "CATEGORICAL");
    return report(data, fit(data, kind));
}

CellMatrix naive_bayes_score(const std::string& handle, const CellMatrix& x) {
    const handle_c<naiveBayesClassificationModel> fit =
        string_to_handle<naiveBayesClassificationModel>(trim(handle, 0));
    const naiveBayesClassificationModel& m =
        *static_cast<const naiveBayesClassificationModel*>(fit.getBody());
    const std::vector<std::size_t> columns = scoring_columns(
        x, m.names, "The variable used in classifier: ", ": cannot be found in input data");
    dvec numbers(m.means.empty() ? 0 : m.means[0].size());
    std::vector<int> levels(m.tables.size());
    return class_score_table(
        m.classes, x.RowsInStructure() - 1, [&](std::size_t i, ClassProbabilities& out) {
            for (std::size_t v = 0; v < m.names.size(); ++v) {
                const CellValue& cell = x(i + 1, columns[v]);
                const std::size_t s = m.slot[v];
                if (m.categorical[v]) {
                    const std::string key = value_key(cell);
                    if (key.empty())
                        return false;
                    const auto found = m.tables[s].index.find(key);
                    levels[s] = found == m.tables[s].index.end() ? -1 : found->second;
                } else if (cell.IsANumber()) {
                    numbers[s] = cell.NumericValue();
                } else {
                    return false;
                }
            }
            out = m.classify(numbers.data(), levels.data());
            return true;
        });
}

}  // namespace zentable
