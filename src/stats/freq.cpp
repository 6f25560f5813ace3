#include "stats/freq.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <type_traits>

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

// Numbers each distinct key in the map's order, then codes every record.
template <class Key, class Less, class KeyOf>
void number_levels(const svec& texts, KeyOf key_of, FreqLevels& out) {
    std::map<Key, int, Less> index;
    for (const std::string& text : texts) {
        if (!text.empty()) {
            index.emplace(key_of(text), 0);
        }
    }
    int next = 0;
    for (auto& [key, level] : index) {
        level = next++;
        if constexpr (std::is_same_v<Key, double>) {
            out.values.push_back(key);
        } else {
            out.labels.push_back(key);
        }
    }
    out.counts.assign(index.size(), 0);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].empty()) {
            ++out.missing;
            continue;
        }
        const int level = index.find(key_of(texts[i]))->second;
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
    if (numeric) {
        cell = values[i];
    } else {
        cell = labels[i];
    }
}

FreqLevels make_freq_levels(const svec& texts) {
    FreqLevels out;
    out.codes.assign(texts.size(), FreqLevels::kMissing);
    const auto first = std::find_if(texts.begin(), texts.end(),
                                    [](const std::string& text) { return !text.empty(); });
    out.numeric = first != texts.end() && is_number(*first);
    if (out.numeric) {
        number_levels<double, FreqKeyLess>(texts, freq_numeric_key, out);
    } else {
        number_levels<std::string, std::less<std::string>>(
            texts, [](const std::string& text) { return text; }, out);
    }
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
