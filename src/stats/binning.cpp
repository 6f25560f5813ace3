#include "stats/binning.hpp"

#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "numeric/distributions.hpp"
#include "stats/means.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kBadNumBins = "Input numBins must be a positive integer";
constexpr const char* kBadBounds = "Input upper must be larger than input lower";

// The numbers of a named column or row; cells that are not numbers drop out.
NamedVector read_valid_values(const CellMatrix& inputData) {
    NamedVector column = read_vector_with_header(inputData);
    dvec kept;
    kept.reserve(column.values.size());
    for (std::size_t i = 0; i < column.values.size(); ++i)
        if (column.valid[i])
            kept.push_back(column.values[i]);
    column.values = std::move(kept);
    column.valid.assign(column.values.size(), true);
    return column;
}

}  // namespace

CellMatrix binning(const CellMatrix& inputData, double lower, double upper, double numBins) {
    const dvec values = read_valid_values(inputData).values;
    if (!(numBins >= 1.0 && numBins <= std::numeric_limits<int>::max()) ||
        numBins != std::trunc(numBins))
        throw kBadNumBins;
    if (!(upper > lower))
        throw kBadBounds;

    const int bins = static_cast<int>(numBins);
    const double width = (upper - lower) / bins;
    std::vector<long long> counts(static_cast<std::size_t>(bins), 0);
    for (double x : values) {
        // Compared as a double first, so that far values cannot overflow the index.
        const double at = std::trunc((x - lower) / width);
        const int bin = at <= 0.0 ? 0 : at >= bins - 1 ? bins - 1 : static_cast<int>(at);
        ++counts[static_cast<std::size_t>(bin)];
    }

    CellMatrix table(static_cast<std::size_t>(bins) + 1, 6);
    const char* const headers[] = {"Bin", "Min", "Max", "Mid", "Freq", "Percent"};
    for (std::size_t j = 0; j < 6; ++j)
        table(0, j) = std::string(headers[j]);
    const double total = static_cast<double>(values.size());
    for (int i = 1; i <= bins; ++i) {
        const auto row = static_cast<std::size_t>(i);
        const double low = lower + (i - 1) * width;
        const double high = lower + i * width;
        const double freq = static_cast<double>(counts[row - 1]);
        table(row, 0) = static_cast<double>(i);
        table(row, 1) = low;
        table(row, 2) = high;
        table(row, 3) = (low + high) / 2.0;
        table(row, 4) = freq;
        table(row, 5) = values.empty() ? 0.0 : freq / total;
    }
    return table;
}

CellMatrix QQ_plot(const CellMatrix& inputData) {
    NamedVector column = read_valid_values(inputData);
    dvec& sorted = column.values;
    numeric_sort(sorted);
    const std::size_t n = sorted.size();
    CellMatrix table(n + 1, 4);
    table(0, 0) = std::string("#");
    table(0, 1) = std::string("Prob level");
    table(0, 2) = std::string("Q");
    table(0, 3) = column.name;
    for (std::size_t i = 1; i <= n; ++i) {
        const double level = (static_cast<double>(i) - 0.5) / static_cast<double>(n);
        table(i, 0) = static_cast<double>(i);
        table(i, 1) = level;
        table(i, 2) = normal_quantile(level);
        table(i, 3) = sorted[i - 1];
    }
    return table;
}

}  // namespace zentable
