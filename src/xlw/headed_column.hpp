#pragma once

#include <string>

#include "xlw/cell_matrix.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

// The failure texts of an argument that must be one column under a header;
// each command words them its own way.
struct ColumnTexts {
    std::string no_data;  // omitted, or a header with nothing below it
    std::string not_one_column;
    std::string header_not_string;
};

// Tests the shape and the header of such a column and returns its trimmed name.
std::string read_column_header(const CellMatrix& table, const ColumnTexts& texts);

// The column's name, then its cells as read_vector_with_header reads them: a
// cell that is not a number gives cell_to_double's value and a false bit.
NamedVector read_headed_column(const CellMatrix& table, const ColumnTexts& texts);

}  // namespace zentable
