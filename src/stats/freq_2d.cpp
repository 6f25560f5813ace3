#include "stats/freq_2d.hpp"

#include <algorithm>
#include <cctype>
#include <vector>

#include "data/delimited_file.hpp"
#include "stats/freq.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/headed_column.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kStatisticLabels[4] = {"Freq", "Percent", "RowPct", "ColPct"};

// One column under a header, as its trimmed texts.
svec read_one_column(const CellMatrix& table, const std::string& which, std::string& name) {
    name = read_column_header(table, {"there is no input data for " + which,
                                      "Input data for " + which + " must be in one column",
                                      "Header for variable name " + which + " must be a string"});
    const std::size_t rows = table.RowsInStructure();
    svec values;
    values.reserve(rows - 1);
    for (std::size_t i = 1; i < rows; ++i) {
        values.push_back(trim(cell_to_text(table(i, 0)), 0));
    }
    return values;
}

bool read_list_form(const CellMatrix& format) {
    std::string text = "TABLE";
    if (!is_omitted(format)) {
        read_string(format, "Input format must be in one cell", text);
    }
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (text != "TABLE" && text != "LIST") {
        throw "Valid format is TABLE or LIST";
    }
    return text == "LIST";
}

// Letters not given show nothing: "Y" alone asks for the counts only.
Freq2dStatistics read_statistics(const CellMatrix& output) {
    std::string text = "YYYY";
    if (!is_omitted(output)) {
        read_string(output, "Control output must be in one cell", text);
    }
    if (text.size() > 4) {
        throw "The length of the control output string must be less than or equal to 4";
    }
    Freq2dStatistics shown{};
    for (std::size_t s = 0; s < text.size(); ++s) {
        shown[s] = std::toupper(static_cast<unsigned char>(text[s])) == 'Y';
    }
    return shown;
}

std::string read_file_name(const CellMatrix& name, const std::string& argument) {
    const std::string message = "Input " + argument + " must be a variable name in one cell";
    std::string text;
    if (is_omitted(name)) {
        throw message;
    }
    read_string(name, message, text);
    return trim(text, 0);
}

// The levels of one variable with missing records as a last level of their own.
struct Axis {
    FreqLevels levels;
    std::size_t size = 0;

    explicit Axis(const svec& texts) : levels(make_freq_levels(texts)) {
        size = levels.size() + (levels.missing > 0 ? 1 : 0);
    }
    std::size_t index(std::size_t record) const {
        const int code = levels.codes[record];
        return code == FreqLevels::kMissing ? levels.size() : static_cast<std::size_t>(code);
    }
    void write(CellValue& cell, std::size_t i) const {
        if (i < levels.size()) {
            levels.write(cell, i);
        } else {
            cell = "Missing";
        }
    }
};

double ratio(int count, int total) {
    return total > 0 ? static_cast<double>(count) / total : 0.0;
}

}  // namespace

CellMatrix freq_2d_report(const std::string& name1, const svec& x1, const std::string& name2,
                          const svec& x2, bool list_form, const Freq2dStatistics& shown) {
    const Axis rows_axis(x1), columns_axis(x2);
    const std::size_t nr = rows_axis.size, nc = columns_axis.size;
    // The last row and column hold the margins, so that every cell, the
    // margins included, takes its fractions the same way.
    std::vector<std::vector<int>> counts(nr + 1, std::vector<int>(nc + 1, 0));
    for (std::size_t i = 0; i < x1.size(); ++i) {
        const std::size_t a = rows_axis.index(i), b = columns_axis.index(i);
        ++counts[a][b];
        ++counts[a][nc];
        ++counts[nr][b];
        ++counts[nr][nc];
    }
    const int total = counts[nr][nc];
    const std::string title = "Frequency table of " + name1 + " by " + name2;

    if (list_form) {
        std::size_t pairs = 0;
        for (std::size_t a = 0; a < nr; ++a) {
            pairs += static_cast<std::size_t>(
                std::count_if(counts[a].begin(), counts[a].begin() + static_cast<long>(nc),
                              [](int c) { return c > 0; }));
        }
        CellMatrix r(3 + pairs, 6);
        r(0, 0) = title;
        r(2, 0) = name1;
        r(2, 1) = name2;
        r(2, 2) = "Freq";
        r(2, 3) = "Percent";
        r(2, 4) = "CumFreq";
        r(2, 5) = "CumPercent";
        std::size_t row = 3;
        int cumulative = 0;
        for (std::size_t a = 0; a < nr; ++a) {
            for (std::size_t b = 0; b < nc; ++b) {
                const int count = counts[a][b];
                if (count == 0) {
                    continue;
                }
                cumulative += count;
                rows_axis.write(r(row, 0), a);
                columns_axis.write(r(row, 1), b);
                r(row, 2) = count;
                r(row, 3) = ratio(count, total);
                r(row, 4) = cumulative;
                r(row, 5) = ratio(cumulative, total);
                ++row;
            }
        }
        end_report(r, "freq_2d");
        return r;
    }

    std::vector<std::size_t> stats;
    for (std::size_t s = 0; s < shown.size(); ++s) {
        if (shown[s]) {
            stats.push_back(s);
        }
    }
    // With nothing shown each value still keeps its one labelled row.
    const std::size_t height = std::max<std::size_t>(stats.size(), 1);
    CellMatrix r(4 + (nr + 1) * height, nc + 3);
    r(0, 0) = title;
    r(2, 2) = name2;
    r(3, 0) = name1;
    for (std::size_t b = 0; b < nc; ++b) {
        columns_axis.write(r(3, 2 + b), b);
    }
    r(3, 2 + nc) = "Total";
    for (std::size_t a = 0; a <= nr; ++a) {
        const std::size_t base = 4 + a * height;
        if (a < nr) {
            rows_axis.write(r(base, 0), a);
        } else {
            r(base, 0) = "Total";
        }
        for (std::size_t k = 0; k < stats.size(); ++k) {
            const std::size_t row = base + k;
            r(row, 1) = kStatisticLabels[stats[k]];
            for (std::size_t b = 0; b <= nc; ++b) {
                const int count = counts[a][b];
                double value = count;
                switch (stats[k]) {
                    case 1:
                        value = ratio(count, total);
                        break;
                    case 2:
                        value = ratio(count, counts[a][nc]);
                        break;
                    case 3:
                        value = ratio(count, counts[nr][b]);
                        break;
                    default:
                        break;
                }
                r(row, 2 + b) = value;
            }
        }
    }
    end_report(r, "freq_2d");
    return r;
}

CellMatrix freq_2d(const CellMatrix& x1, const CellMatrix& x2, const CellMatrix& format,
                   const CellMatrix& output) {
    std::string name1, name2;
    const svec values1 = read_one_column(x1, "x1", name1);
    const svec values2 = read_one_column(x2, "x2", name2);
    if (values1.size() != values2.size()) {
        throw "Input data x1 and x2 must have the same size";
    }
    const bool list_form = read_list_form(format);
    const Freq2dStatistics shown = read_statistics(output);
    return freq_2d_report(name1, values1, name2, values2, list_form, shown);
}

CellMatrix freq_2d_from_file(const std::string& filename, const CellMatrix& x1Name,
                             const CellMatrix& x2Name, const CellMatrix& format,
                             const CellMatrix& output, const CellMatrix& delimiter) {
    const std::string name1 = read_file_name(x1Name, "x1Name");
    const std::string name2 = read_file_name(x2Name, "x2Name");
    const bool list_form = read_list_form(format);
    const Freq2dStatistics shown = read_statistics(output);
    const char delim = read_delimiter(delimiter);
    const std::vector<svec> columns = read_text_columns(filename, {name1, name2}, delim);
    if (columns[0].empty()) {
        throw "there is no input data for x1";
    }
    return freq_2d_report(name1, columns[0], name2, columns[1], list_form, shown);
}

}  // namespace zentable
