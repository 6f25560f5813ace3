#include "stats/ranks.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <vector>

#include "data/delimited_file.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kMissing = "Error: input data is missing";
constexpr const char* kNotOneColumn = "Error: input data must be in one column";
constexpr const char* kBadNumBins = "Input numBins must be a positive integer";
constexpr const char* kBadOrder = "Input order must be 1 or -1";
constexpr const char* kBadVarName = "Input varName must be a string in one cell";
constexpr const char* kBadRankVarName = "Input rankVarName must be a string in one cell";
constexpr const char* kSameFile = "Input file and output file must be different";

int read_num_bins(const CellMatrix& numBins) {
    int bins = 0;
    read_int_required(numBins, kBadNumBins, bins);
    if (bins <= 0)
        throw kBadNumBins;
    return bins;
}

int read_order(const CellMatrix& order) {
    int direction = 1;
    read_int(order, kBadOrder, direction);
    if (direction != 1 && direction != -1)
        throw kBadOrder;
    return direction;
}

std::string read_one_name(const CellMatrix& table, const char* message) {
    if (table.RowsInStructure() != 1 || table.ColumnsInStructure() != 1 || !table(0, 0).IsString())
        throw message;
    return trim(table(0, 0).StringValue(), 0);
}

// The ranks of the records whose bit is set, placed at their records; the
// others hold NaN.
dvec ranks_of_valid(const NamedTable& data, int bins, int direction) {
    dvec values;
    values.reserve(data.data.size());
    for (std::size_t i = 0; i < data.data.size(); ++i)
        if (data.valid[i])
            values.push_back(data.data[i][0]);
    const dvec ranked = rank_values(values, bins, direction);
    dvec out(data.data.size(), std::numeric_limits<double>::quiet_NaN());
    std::size_t next = 0;
    for (std::size_t i = 0; i < data.data.size(); ++i)
        if (data.valid[i])
            out[i] = ranked[next++];
    return out;
}

}  // namespace

dvec rank_values(const dvec& values, int numBins, int order) {
    const std::size_t n = values.size();
    std::vector<std::size_t> position(n);
    std::iota(position.begin(), position.end(), std::size_t{0});
    std::stable_sort(position.begin(), position.end(), [&](std::size_t a, std::size_t b) {
        return order == 1 ? values[a] < values[b] : values[a] > values[b];
    });
    dvec out(n);
    const double slots = static_cast<double>(n) + 1.0;
    for (std::size_t i = 0; i < n;) {
        std::size_t j = i + 1;
        while (j < n && values[position[j]] == values[position[i]])
            ++j;
        // Sorted positions i to j - 1, counted from 1, share their mean.
        const double mean_position = static_cast<double>(i + j - 1) / 2.0 + 1.0;
        const double rank = std::trunc(mean_position * numBins / slots) + 1.0;
        for (std::size_t k = i; k < j; ++k)
            out[position[k]] = rank;
        i = j;
    }
    return out;
}

CellMatrix ranks(const CellMatrix& inputData, const CellMatrix& numBins, const CellMatrix& order) {
    if (is_omitted(inputData))
        throw kMissing;
    if (inputData.ColumnsInStructure() > 1)
        throw kNotOneColumn;
    const NamedTable data = read_table_with_headers(inputData);
    const int bins = read_num_bins(numBins);
    const int direction = read_order(order);

    const dvec ranked = ranks_of_valid(data, bins, direction);
    CellMatrix table(ranked.size() + 1, 1);
    table(0, 0) = data.names[0];
    for (std::size_t i = 0; i < ranked.size(); ++i) {
        if (data.valid[i])
            table(i + 1, 0) = ranked[i];
        else
            table(i + 1, 0) = std::string(".");
    }
    return table;
}

CellMatrix ranks_from_file(const CellMatrix& varName, const std::string& filename,
                           const CellMatrix& rankVarName, const std::string& outfilename,
                           const CellMatrix& numBins, const CellMatrix& order,
                           const CellMatrix& delimiter) {
    const std::string name = read_one_name(varName, kBadVarName);
    const std::string rank_name = read_one_name(rankVarName, kBadRankVarName);
    const int bins = read_num_bins(numBins);
    const int direction = read_order(order);
    const char separator = read_delimiter(delimiter);
    // The copy is written while the input is read line by line.
    if (filename == outfilename)
        throw kSameFile;

    const NamedTable data = read_numeric_table(filename, {name}, separator);
    append_vector(filename, outfilename, ranks_of_valid(data, bins, direction), rank_name,
                  separator);
    return CellMatrix("The ranks " + rank_name + " have been appended in the file " + outfilename);
}

}  // namespace zentable
