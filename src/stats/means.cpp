#include "stats/means.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <thread>
#include <utility>

#include "data/delimited_file.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr const char* kNamesMissing = "Error: variable names (varNames) are missing";
constexpr const char* kEmptyTable = "Input data table is empty";

// Below this many values in all a second thread costs more than it saves.
constexpr std::size_t kParallelValues = 1 << 16;

const char* const kMeansColumns[] = {"Variable", "Nmiss", "Freq", "Sum",
                                     "Avg",      "Stdev", "Min",  "Max"};

struct PercentileColumn {
    const char* label;
    double p;
};
const PercentileColumn kPercentileColumns[] = {
    {"1%", 0.01},  {"2.5%", 0.025}, {"5%", 0.05},  {"10%", 0.1},     {"25%", 0.25}, {"50%", 0.5},
    {"75%", 0.75}, {"90%", 0.9},    {"95%", 0.95}, {"97.5%", 0.975}, {"99%", 0.99}};
const char* const kExtremeColumns[] = {"Min",  "Min2", "Min3", "Min4", "Min5",
                                       "Max1", "Max2", "Max3", "Max4", "Max"};

// Sum, mean and the sum of squared deviations from it, each added in record
// order from 0.0, so that a file and a table of the same data agree to the bit.
struct ColumnSums {
    double sum = 0.0;
    double avg = 0.0;
    double squares = 0.0;
};

ColumnSums moments_of(const dvec& values) {
    ColumnSums m;
    if (values.empty())
        return m;
    for (double v : values)
        m.sum += v;
    m.avg = m.sum / static_cast<double>(values.size());
    for (double v : values)
        m.squares += (v - m.avg) * (v - m.avg);
    return m;
}

void write_header(CellMatrix& table, std::size_t& column, const char* const* labels,
                  std::size_t count) {
    for (std::size_t k = 0; k < count; ++k)
        table(0, column++) = std::string(labels[k]);
}

}  // namespace

void numeric_sort(dvec& values) {
    std::sort(values.begin(), values.end());
}

void sort_columns(std::vector<dvec>& columns) {
    std::size_t total = 0;
    for (const dvec& c : columns)
        total += c.size();
    std::size_t split = columns.size();
    if (total >= kParallelValues && columns.size() > 1) {
        // Whole columns up to about half of the values go to a second thread.
        std::size_t seen = 0;
        split = 0;
        while (split < columns.size() && 2 * seen < total)
            seen += columns[split++].size();
    }
    auto sort_range = [&columns](std::size_t begin, std::size_t end) {
        for (std::size_t j = begin; j < end; ++j)
            numeric_sort(columns[j]);
    };
    if (split == columns.size()) {
        sort_range(0, columns.size());
        return;
    }
    std::thread first(sort_range, std::size_t{0}, split);
    sort_range(split, columns.size());
    first.join();
}

double sorted_percentile(const dvec& sorted, double p) {
    const double at = std::trunc(p * static_cast<double>(sorted.size()));
    const double last = static_cast<double>(sorted.size() - 1);
    return sorted[static_cast<std::size_t>(std::clamp(at, 0.0, last))];
}

DescribedColumns read_described_columns(const CellMatrix& inputData) {
    NamedColumns columns = read_columns_dropping_non_numbers(inputData);
    const auto records = static_cast<long long>(inputData.RowsInStructure() - 1);
    DescribedColumns out;
    out.names = std::move(columns.names);
    out.values = std::move(columns.columns);
    for (const dvec& v : out.values)
        out.missing.push_back(records - static_cast<long long>(v.size()));
    return out;
}

DescribedColumns read_described_columns(const std::string& filename, const CellMatrix& varNames,
                                        const CellMatrix& delimiter) {
    DescribedColumns out;
    out.names = read_file_variable_names(varNames, kNamesMissing);
    const char separator = read_delimiter(delimiter);
    NumericColumns columns = read_numeric_columns(filename, out.names, separator);
    // A head line alone is the file's form of a table with no data rows.
    if (columns.records == 0)
        throw kEmptyTable;
    out.values = std::move(columns.values);
    for (const dvec& v : out.values)
        out.missing.push_back(columns.records - static_cast<long long>(v.size()));
    return out;
}

CellMatrix report_means(const DescribedColumns& data) {
    const std::size_t variables = data.names.size();
    CellMatrix table(variables + 1, std::size(kMeansColumns));
    std::size_t column = 0;
    write_header(table, column, kMeansColumns, std::size(kMeansColumns));
    for (std::size_t j = 0; j < variables; ++j) {
        const dvec& values = data.values[j];
        const std::size_t row = j + 1;
        table(row, 0) = data.names[j];
        table(row, 1) = static_cast<double>(data.missing[j]);
        table(row, 2) = static_cast<double>(values.size());
        const ColumnSums m = moments_of(values);
        const double n = static_cast<double>(values.size());
        const bool any = !values.empty();
        const auto [low, high] = std::minmax_element(values.begin(), values.end());
        table(row, 3) = m.sum;
        table(row, 4) = m.avg;
        table(row, 5) = any ? std::sqrt(m.squares / n) : 0.0;
        table(row, 6) = any ? *low : 0.0;
        table(row, 7) = any ? *high : 0.0;
    }
    return table;
}

CellMatrix report_univariate(DescribedColumns& data) {
    const std::size_t variables = data.names.size();
    // The sums run in record order, before the sort reorders the values.
    std::vector<ColumnSums> moments;
    moments.reserve(variables);
    for (const dvec& values : data.values)
        moments.push_back(moments_of(values));
    sort_columns(data.values);

    const std::size_t width = 6 + std::size(kPercentileColumns) + std::size(kExtremeColumns);
    CellMatrix table(variables + 1, width);
    std::size_t column = 0;
    write_header(table, column, kMeansColumns, 6);
    for (const PercentileColumn& c : kPercentileColumns)
        table(0, column++) = std::string(c.label);
    write_header(table, column, kExtremeColumns, std::size(kExtremeColumns));

    for (std::size_t j = 0; j < variables; ++j) {
        const dvec& sorted = data.values[j];
        const ColumnSums& m = moments[j];
        const std::size_t row = j + 1;
        const double n = static_cast<double>(sorted.size());
        table(row, 0) = data.names[j];
        table(row, 1) = static_cast<double>(data.missing[j]);
        table(row, 2) = n;
        table(row, 3) = m.sum;
        table(row, 4) = m.avg;
        table(row, 5) = sorted.size() < 2 ? 0.0 : std::sqrt(m.squares / n) * std::sqrt(n / (n - 1));
        column = 6;
        for (const PercentileColumn& c : kPercentileColumns)
            table(row, column++) = sorted.empty() ? 0.0 : sorted_percentile(sorted, c.p);
        // Five from each end; a short list repeats its end values.
        const auto last = static_cast<std::ptrdiff_t>(sorted.size()) - 1;
        for (std::ptrdiff_t k = 0; k < 5; ++k)
            table(row, column++) = sorted.empty() ? 0.0 : sorted[std::min(k, last)];
        for (std::ptrdiff_t k = 4; k >= 0; --k)
            table(row, column++) =
                sorted.empty() ? 0.0 : sorted[std::max(last - k, std::ptrdiff_t{0})];
    }
    return table;
}

CellMatrix means(const CellMatrix& inputData) {
    return report_means(read_described_columns(inputData));
}

CellMatrix means_from_file(const std::string& filename, const CellMatrix& varNames,
                           const CellMatrix& delimiter) {
    return report_means(read_described_columns(filename, varNames, delimiter));
}

CellMatrix univariate(const CellMatrix& inputData) {
    DescribedColumns data = read_described_columns(inputData);
    return report_univariate(data);
}

CellMatrix univariate_from_file(const std::string& filename, const CellMatrix& varNames,
                                const CellMatrix& delimiter) {
    DescribedColumns data = read_described_columns(filename, varNames, delimiter);
    return report_univariate(data);
}

}  // namespace zentable
