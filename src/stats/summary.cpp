#include "stats/summary.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <map>
#include <optional>

#include "data/delimited_file.hpp"
#include "stats/freq.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kNway = "Input nway must be 1 or 0";
constexpr const char* kOutputShape = "Error: output must be in one row or one column";
constexpr const char* kOutputNames = "Error: output must be Sum, Avg, Stdev, Min, Max";
constexpr const char* kRecordCounts =
    "The numbers of records in classVars, x, and weight must be the same";
constexpr const char* kXNumeric = "Input x must be numeric variables";
constexpr const char* kEmptyTable = "Input data table is empty";
// Beyond this many class variables the 2^K subsets of nway 0 are no report.
constexpr std::size_t kMaxClassesForSubsets = 30;

const std::vector<SummaryStatistic> kAllStatistics = {SummaryStatistic::sum, SummaryStatistic::avg,
                                                      SummaryStatistic::stdev,
                                                      SummaryStatistic::min, SummaryStatistic::max};

const char* label_of(SummaryStatistic s) {
    switch (s) {
        case SummaryStatistic::sum:
            return "Sum";
        case SummaryStatistic::avg:
            return "Avg";
        case SummaryStatistic::stdev:
            return "Stdev";
        case SummaryStatistic::min:
            return "Min";
        case SummaryStatistic::max:
            return "Max";
    }
    return "";
}

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

bool read_nway_all(const CellMatrix& nway) {
    int value = 1;
    if (!is_omitted(nway)) {
        read_int(nway, kNway, value);
    }
    if (value != 0 && value != 1) {
        throw kNway;
    }
    return value == 1;
}

std::vector<SummaryStatistic> read_statistics(const CellMatrix& output) {
    if (is_omitted(output)) {
        return kAllStatistics;
    }
    const std::size_t rows = output.RowsInStructure(), columns = output.ColumnsInStructure();
    if (rows != 1 && columns != 1) {
        throw kOutputShape;
    }
    std::vector<SummaryStatistic> out;
    for (std::size_t i = 0; i < rows * columns; ++i) {
        const CellValue& cell = rows == 1 ? output(0, i) : output(i, 0);
        if (cell.IsEmpty()) {
            continue;  // a range drawn wider than the list
        }
        if (!cell.IsString()) {
            throw kOutputNames;
        }
        const std::string name = upper(trim(cell.StringValue(), 0));
        const auto it =
            std::find_if(kAllStatistics.begin(), kAllStatistics.end(),
                         [&](SummaryStatistic s) { return upper(label_of(s)) == name; });
        if (it == kAllStatistics.end()) {
            throw kOutputNames;
        }
        out.push_back(*it);
    }
    return out.empty() ? kAllStatistics : out;
}

// The levels of one class variable: by value for a numeric column, by text otherwise.
struct ClassLevels {
    bool numeric = false;
    dvec values;
    svec labels;
    std::vector<int> codes;  // per record

    void write(CellValue& cell, int level) const {
        if (numeric) {
            cell = values[static_cast<std::size_t>(level)];
        } else {
            cell = labels[static_cast<std::size_t>(level)];
        }
    }
};

template <class Key, class Less, class Value>
void code_levels(int records, Value value_of, std::vector<Key>& keys, std::vector<int>& codes) {
    std::map<Key, int, Less> index;
    for (int r = 0; r < records; ++r) {
        index.emplace(value_of(r), 0);
    }
    int next = 0;
    for (auto& [key, level] : index) {
        level = next++;
        keys.push_back(key);
    }
    codes.reserve(static_cast<std::size_t>(records));
    for (int r = 0; r < records; ++r) {
        codes.push_back(index.find(value_of(r))->second);
    }
}

ClassLevels class_levels(const MixedTable& classes, std::size_t j) {
    ClassLevels out;
    out.numeric = classes.column_types[j] == 'N';
    const auto at = static_cast<std::size_t>(classes.column_index[j]);
    if (out.numeric) {
        code_levels<double, FreqKeyLess>(
            classes.row_count,
            [&](int r) { return classes.numeric_rows[static_cast<std::size_t>(r)][at]; },
            out.values, out.codes);
    } else {
        code_levels<std::string, std::less<std::string>>(
            classes.row_count,
            [&](int r) { return classes.text_rows[static_cast<std::size_t>(r)][at]; }, out.labels,
            out.codes);
    }
    return out;
}

// Type t names the class variables of a group: the first variable is the
// highest of K bits, so the types count up from the whole data (0) to all
// variables together (2^K - 1).
bool in_type(unsigned long type, std::size_t j, std::size_t k) {
    return (type >> (k - 1 - j)) & 1UL;
}

struct Group {
    unsigned long type = 0;
    std::vector<int> key;  // a level per class variable, -1 where not in the type
    std::vector<std::size_t> records;
};

// A statistic of variable p over the group's records where it is present
// (not NaN); empty where it has none, except the sum, which is 0.
std::optional<double> statistic(SummaryStatistic s, const std::vector<std::size_t>& records,
                                const dmat& x, std::size_t p, const dvec& weight) {
    double sum_weight = 0.0, sum = 0.0, low = 0.0, high = 0.0, n = 0.0;
    for (std::size_t r : records) {
        const double value = x[r][p];
        if (std::isnan(value)) {
            continue;
        }
        if (n == 0.0) {
            low = high = value;
        }
        n += 1.0;
        sum_weight += weight[r];
        sum += weight[r] * value;
        low = std::min(low, value);
        high = std::max(high, value);
    }
    if (n == 0.0) {
        return s == SummaryStatistic::sum ? std::optional<double>(0.0) : std::nullopt;
    }
    const double avg = sum_weight != 0.0 ? sum / sum_weight : 0.0;
    switch (s) {
        case SummaryStatistic::sum:
            return sum;
        case SummaryStatistic::avg:
            return avg;
        case SummaryStatistic::min:
            return low;
        case SummaryStatistic::max:
            return high;
        case SummaryStatistic::stdev:
            break;
    }
    if (n < 2.0 || sum_weight == 0.0) {
        return 0.0;
    }
    double squares = 0.0;
    for (std::size_t r : records) {
        if (std::isnan(x[r][p])) {
            continue;
        }
        const double d = x[r][p] - avg;
        squares += weight[r] * d * d;
    }
    // The weighted variance about the mean, corrected by the record count as
    // for one unweighted sample, so unit weights give the sample deviation.
    const double variance = squares / sum_weight * n / (n - 1.0);
    return std::sqrt(std::max(variance, 0.0));
}

// The analysis variables as numbers, a field or cell that is not a number
// being missing (NaN), as in the other descriptive commands; a variable
// without a single number is no analysis variable.
MixedTable numeric_analysis(svec names, std::vector<dvec> columns) {
    MixedTable out;
    out.names = std::move(names);
    const std::size_t p = columns.size();
    const std::size_t rows = p == 0 ? 0 : columns[0].size();
    out.row_count = static_cast<int>(rows);
    for (std::size_t j = 0; j < p; ++j) {
        if (std::all_of(columns[j].begin(), columns[j].end(),
                        [](double v) { return std::isnan(v); })) {
            throw kXNumeric;
        }
        out.column_types.push_back('N');
        out.column_index.push_back(static_cast<int>(j));
    }
    out.numeric_rows.assign(rows, dvec(p));
    out.text_rows.assign(rows, svec());
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < p; ++j) {
            out.numeric_rows[i][j] = columns[j][i];
        }
    }
    return out;
}

MixedTable analysis_from_fields(const std::vector<svec>& fields, std::size_t first,
                                const svec& names, char delimiter) {
    std::vector<dvec> columns(names.size(), dvec(fields.size()));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        for (std::size_t j = 0; j < names.size(); ++j) {
            if (!parse_file_number(fields[i][first + j], delimiter, columns[j][i])) {
                columns[j][i] = std::numeric_limits<double>::quiet_NaN();
            }
        }
    }
    return numeric_analysis(names, std::move(columns));
}

// A MixedTable over some fields of each record, each column typed by its first record.
MixedTable mixed_from_fields(const std::vector<svec>& fields, std::size_t first,
                             const svec& names) {
    MixedTable out;
    out.names = names;
    out.row_count = static_cast<int>(fields.size());
    int numeric = 0, categorical = 0;
    for (std::size_t j = 0; j < names.size(); ++j) {
        const bool number = is_number(fields[0][first + j]);
        out.column_types.push_back(number ? 'N' : 'C');
        out.column_index.push_back(number ? numeric++ : categorical++);
    }
    for (const svec& record : fields) {
        dvec numbers(static_cast<std::size_t>(numeric));
        svec texts(static_cast<std::size_t>(categorical));
        for (std::size_t j = 0; j < names.size(); ++j) {
            const std::string& field = record[first + j];
            const auto at = static_cast<std::size_t>(out.column_index[j]);
            if (out.column_types[j] == 'N') {
                numbers[at] = freq_numeric_key(field);
            } else {
                texts[at] = field;
            }
        }
        out.numeric_rows.push_back(std::move(numbers));
        out.text_rows.push_back(std::move(texts));
    }
    return out;
}

}  // namespace

CellMatrix summary_report(const MixedTable& classes, const MixedTable& x, const dvec& weight,
                          bool nway_all, const std::vector<SummaryStatistic>& statistics) {
    const std::size_t k = classes.names.size();
    if (!nway_all && k > kMaxClassesForSubsets) {
        throw std::string("Input classVars must have at most 30 variables when nway is 0");
    }
    std::vector<ClassLevels> levels;
    levels.reserve(k);
    for (std::size_t j = 0; j < k; ++j) {
        levels.push_back(class_levels(classes, j));
    }

    // nway 1 has the one type of all variables, which need not fit the bits.
    const unsigned long last_type = nway_all ? 0 : (1UL << k) - 1;
    std::vector<Group> groups;
    for (unsigned long type = 0; type <= last_type; ++type) {
        std::map<std::vector<int>, std::vector<std::size_t>> found;
        for (std::size_t r = 0; r < static_cast<std::size_t>(classes.row_count); ++r) {
            std::vector<int> key(k, -1);
            for (std::size_t j = 0; j < k; ++j) {
                if (nway_all || in_type(type, j, k)) {
                    key[j] = levels[j].codes[r];
                }
            }
            found[key].push_back(r);
        }
        for (auto& [key, records] : found) {
            groups.push_back(Group{type, key, std::move(records)});
        }
    }
    const double all_type = std::ldexp(1.0, static_cast<int>(k)) - 1.0;

    const std::size_t first_stat = k + 3;
    const std::size_t p = x.names.size();
    CellMatrix t(3 + groups.size(), first_stat + p * statistics.size());
    t(0, 0) = "Summary";
    for (std::size_t j = 0; j < k; ++j) {
        t(2, j) = classes.names[j];
    }
    t(2, k) = "Type";
    t(2, k + 1) = "Freq";
    t(2, k + 2) = "Sumwgt";
    for (std::size_t v = 0; v < p; ++v) {
        for (std::size_t s = 0; s < statistics.size(); ++s) {
            t(2, first_stat + v * statistics.size() + s) =
                x.names[v] + "_" + label_of(statistics[s]);
        }
    }

    std::size_t row = 3;
    for (const Group& g : groups) {
        if (!nway_all && g.type == 0) {
            t(row, 0) = "All";
        }
        for (std::size_t j = 0; j < k; ++j) {
            if (g.key[j] >= 0) {
                levels[j].write(t(row, j), g.key[j]);
            }
        }
        double sum_weight = 0.0;
        for (std::size_t r : g.records) {
            sum_weight += weight[r];
        }
        t(row, k) = nway_all ? all_type : static_cast<double>(g.type);
        t(row, k + 1) = static_cast<double>(g.records.size());
        t(row, k + 2) = sum_weight;
        for (std::size_t v = 0; v < p; ++v) {
            for (std::size_t s = 0; s < statistics.size(); ++s) {
                const std::optional<double> value =
                    statistic(statistics[s], g.records, x.numeric_rows, v, weight);
                if (value) {
                    t(row, first_stat + v * statistics.size() + s) = *value;
                }
            }
        }
        ++row;
    }
    end_report(t, "summary");
    return t;
}

CellMatrix summary(const CellMatrix& classVars, const CellMatrix& x, const CellMatrix& weight,
                   const CellMatrix& nway, const CellMatrix& output) {
    const MixedTable classes = read_mixed_table(classVars);
    NamedColumns columns = read_columns_missing_as_nan(x);
    const MixedTable analysis =
        numeric_analysis(std::move(columns.names), std::move(columns.columns));
    dvec weights(static_cast<std::size_t>(classes.row_count), 1.0);
    if (!is_omitted(weight)) {
        std::string name;
        read_named_vector(weight, name, weights);
    }
    const bool nway_all = read_nway_all(nway);
    const std::vector<SummaryStatistic> statistics = read_statistics(output);
    if (analysis.row_count != classes.row_count ||
        weights.size() != static_cast<std::size_t>(classes.row_count)) {
        throw kRecordCounts;
    }
    return summary_report(classes, analysis, weights, nway_all, statistics);
}

CellMatrix summary_from_file(const std::string& filename, const CellMatrix& classVarNames,
                             const CellMatrix& xNames, const CellMatrix& weightName,
                             const CellMatrix& nway, const CellMatrix& delimiter) {
    const svec class_names = read_file_variable_names(
        classVarNames, "Error: class variable names (classVarNames) are missing");
    const svec x_names =
        read_file_variable_names(xNames, "Error: analysis variable names (xNames) are missing");
    const bool has_weight = !is_omitted(weightName);
    std::string weight_name;
    if (has_weight) {
        if (weightName.RowsInStructure() * weightName.ColumnsInStructure() != 1) {
            throw std::string("Error: only one weight variable name (w_name) is allowed");
        }
        if (!weightName(0, 0).IsString()) {
            throw std::string("Error: weight variable name (w_name) is not a string");
        }
        weight_name = trim(weightName(0, 0).StringValue(), 0);
    }
    const bool nway_all = read_nway_all(nway);
    const char delim = read_delimiter(delimiter);

    svec wanted = class_names;
    wanted.insert(wanted.end(), x_names.begin(), x_names.end());
    if (has_weight) {
        wanted.push_back(weight_name);
    }
    const std::vector<svec> fields = read_field_table(filename, wanted, delim);
    if (fields.empty()) {
        throw kEmptyTable;
    }
    const MixedTable classes = mixed_from_fields(fields, 0, class_names);
    const MixedTable analysis = analysis_from_fields(fields, class_names.size(), x_names, delim);
    dvec weights(fields.size(), 1.0);
    if (has_weight) {
        for (std::size_t r = 0; r < fields.size(); ++r) {
            weights[r] = freq_numeric_key(fields[r].back());
        }
    }
    return summary_report(classes, analysis, weights, nway_all, kAllStatistics);
}

}  // namespace zentable
