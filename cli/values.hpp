#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "xlw/cell_matrix.hpp"

namespace zentable::cli {

// Tables kept by name in a script.
using Results = std::map<std::string, CellMatrix>;

// The cell a single word stands for: a number when it reads in full as a
// decimal number, TRUE/FALSE, a quoted "text", or else the word as text.
MJCellValue scalar_cell(const std::string& word);

// True when the word reads in full as a decimal number.
bool is_decimal_number(std::string_view word);

// Letters, digits and underscores, not starting with a digit.
bool is_identifier(const std::string& word);

// {1,2;3,4}: columns by comma, rows by semicolon.
CellMatrix parse_array_constant(const std::string& text);

// A delimited file read as cells: numbers, TRUE/FALSE, empty cells, text;
// "-" is standard input.
CellMatrix read_cells_file(const std::string& path);

// Standard input is read once in a run: a script read from it (run -) leaves
// no table for @-, and every @- of a run reads the same table.
void claim_standard_input_for_script();

// One argument in any of its forms; `results` (may be null) resolves the
// names of earlier results and their A1 ranges.
CellMatrix parse_value(const std::string& word, const Results* results);

// A1 or A2:C9 in the sheet's notation, zero-based; false when the text is
// not one, or its corners are out of order.
struct CellRange {
    std::size_t first_row = 0, first_column = 0, last_row = 0, last_column = 0;
};
bool parse_a1_range(const std::string& text, CellRange& range);

// name!A1 or name!A2:C9, cut from a kept table.
CellMatrix range_of(const std::string& name, const std::string& range, const CellMatrix& table);

}  // namespace zentable::cli
