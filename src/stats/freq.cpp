#include "stats/freq.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

#include "data/delimited_file.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kIncludeMissing = "Input includeMissing must be 0 or 1";

bool read_include_missing(const CellMatrix& includeMissing) {
    int include = 0;
    if (!is_omitted(includeMissing)) {
        read_int(includeMissing, kIncludeMissing, include);
    }
    if (include != 0 && include != 1) {
        throw kIncludeMissing;
    }
    return include == 1;
}

// Numbers each distinct level, the numbers first and then the texts, each in
// its map's order, then codes every record. `numeric` says whether numbers
// are keyed by value; a text that is not a number always keys by its text.
void number_levels(const svec& texts, bool numeric, FreqLevels& out) {
    std::map<double, int, FreqKeyLess> by_value;
    std::map<std::string, int> by_text;
    std::vector<double> value_of(texts.size());
    std::vector<char> is_value(texts.size(), 0);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].empty()) {
            continue;
        }
        if (numeric && parse_number(texts[i], value_of[i])) {
            is_value[i] = 1;
            by_value.emplace(value_of[i], 0);
        } else {
            by_text.emplace(texts[i], 0);
        }
    }
    int next = 0;
    for (auto& [value, level] : by_value) {
        level = next++;
        out.values.push_back(value);
    }
    for (auto& [label, level] : by_text) {
        level = next++;
        out.labels.push_back(label);
    }
    out.counts.assign(static_cast<std::size_t>(next), 0);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].empty()) {
            ++out.missing;
            continue;
        }
        const int level =
            is_value[i] ? by_value.find(value_of[i])->second : by_text.find(texts[i])->second;
        out.codes[i] = level;
        ++out.counts[static_cast<std::size_t>(level)];
    }
}

double fraction(int count, int total) {
    return total > 0 ? static_cast<double>(count) / total : 0.0;
}

}  // namespace

bool FreqKeyLess::operator()(double a, double b) const {
    if (std::isnan(a)) {
        return false;
    }
    return std::isnan(b) || a < b;
}

double freq_numeric_key(const std::string& text) {
    double value = 0.0;
    if (parse_number(text, value)) {
        return value;
    }
    return std::atof(text.c_str());
}

void FreqLevels::write(CellValue& cell, std::size_t i) const {
    if (i < values.size()) {
        cell = values[i];
    } else {
        cell = labels[i - values.size()];
    }
}

std::string FreqLevels::text(std::size_t i) const {
    return i < values.size() ? number_to_text(values[i]) : labels[i - values.size()];
}

FreqLevels make_freq_levels(const svec& texts) {
    FreqLevels out;
    out.codes.assign(texts.size(), FreqLevels::kMissing);
    const auto first = std::find_if(texts.begin(), texts.end(),
                                    [](const std::string& text) { return !text.empty(); });
    out.numeric = first != texts.end() && is_number(*first);
    number_levels(texts, out.numeric, out);
    return out;
}

CellMatrix freq_report(const svec& names, const std::vector<svec>& columns, bool includeMissing) {
    std::vector<FreqLevels> levels;
    levels.reserve(columns.size());
    std::size_t rows = 1;
    for (const svec& column : columns) {
        levels.push_back(make_freq_levels(column));
        rows += 2 + levels.back().size() + (includeMissing ? 1 : 0);
    }

    CellMatrix r(rows, 5);
    r(0, 0) = "Frequency tables";
    std::size_t row = 1;
    for (std::size_t v = 0; v < levels.size(); ++v) {
        const FreqLevels& lv = levels[v];
        ++row;  // the blank row before each block
        r(row, 0) = names[v];
        r(row, 1) = "Freq";
        r(row, 2) = "Percent";
        r(row, 3) = "CumFreq";
        r(row, 4) = "CumPercent";
        ++row;

        int total = 0;
        for (int count : lv.counts) {
            total += count;
        }
        if (includeMissing) {
            total += lv.missing;
        }
        int cumulative = 0;
        auto write_counts = [&](int count) {
            cumulative += count;
            r(row, 1) = count;
            r(row, 2) = fraction(count, total);
            r(row, 3) = cumulative;
            r(row, 4) = fraction(cumulative, total);
            ++row;
        };
        for (std::size_t i = 0; i < lv.size(); ++i) {
            lv.write(r(row, 0), i);
            write_counts(lv.counts[i]);
        }
        if (includeMissing) {
            r(row, 0) = "Missing";
            write_counts(lv.missing);
        }
    }
    end_report(r, "freq");
    return r;
}

CellMatrix freq(const CellMatrix& inputData, const CellMatrix& includeMissing) {
    const TextTable table = read_table_text(inputData);
    const bool include = read_include_missing(includeMissing);
    return freq_report(table.names, table.columns, include);
}

CellMatrix freq_from_file(const std::string& filename, const CellMatrix& varNames,
                          const CellMatrix& delimiter, const CellMatrix& includeMissing) {
    const svec names =
        read_file_variable_names(varNames, "Error: variable names (varNames) are missing");
    const char delim = read_delimiter(delimiter);
    const bool include = read_include_missing(includeMissing);
    return freq_report(names, read_text_columns(filename, names, delim), include);
}

}  // namespace zentable
