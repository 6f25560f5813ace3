#pragma once

#include <ostream>
#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable::cli {

enum class Format { table, csv, tsv, json };

// Text of a cell for output: numbers in the shortest form that reads back to
// the same double, TRUE/FALSE, errors as the sheet shows them.
std::string cell_text(const CellValue& cell);

void print_table(std::ostream& out, const CellMatrix& table, Format format);

}  // namespace zentable::cli
