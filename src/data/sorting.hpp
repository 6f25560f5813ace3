#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "xlw/cell_matrix.hpp"

namespace zentable {

// The rows of a table under its header, permuted by key columns.
CellMatrix data_sort(const CellMatrix& inputData, const CellMatrix& keys);

// The records of a file sorted by key variables, written under its head line.
CellMatrix sort_file(const std::string& filename, const CellMatrix& keys,
                     const std::string& outfilename, const CellMatrix& delimiter);

// One sort key over all rows. Its kind comes from the first row: a numeric
// key compares the atof values of the texts, a categorical one the texts
// in byte order.
struct SortKey {
    bool numeric = false;
    bool descending = false;
    std::vector<double> values;           // numeric keys
    std::vector<std::string_view> texts;  // categorical keys
};

// The row order that sorts by the keys in turn; rows that tie on every key
// keep their order.
std::vector<std::size_t> sorted_rows(const std::vector<SortKey>& keys, std::size_t rows);

// atof of a field, by a faster parse where the two agree.
double atof_value(std::string_view text);

}  // namespace zentable
