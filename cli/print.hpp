#pragma once

#include <ostream>
#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable::cli {

enum class Format { table, csv, tsv, json };

// Significant digits of a number: kShortest is as few as read back to the
// same double; the terminal table shows what a sheet cell in General format
// shows.
constexpr int kShortest = 0;
constexpr int kTableDigits = 10;

// Text of a cell for output: numbers with `digits` significant digits (an
// integer below 1e15 always in full, with no point), TRUE/FALSE, errors as the
// sheet shows them.
std::string cell_text(const CellValue& cell, int digits = kShortest);

// `digits` is kShortest or 1 to 17; a table shows kTableDigits when it is kShortest.
void print_table(std::ostream& out, const CellMatrix& table, Format format, int digits = kShortest);

}  // namespace zentable::cli
