#pragma once

#include <cstddef>
#include <string>

#include "numeric/complex_matrix.hpp"
#include "numeric/matrix.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

// The largest result a matrix command makes: the host's 16384 columns and
// 2^24 cells in all. At about 32 bytes a cell, and more on the way to text,
// 2^24 cells is half a gigabyte for one call; a square result of 10^4
// variables (10^8 cells) would take over 3 GB and no sheet or reader makes
// use of it. Rows have no bound of their own beyond the cells': a sheet cuts
// a long result at 1048576 rows, but a file or a driver takes all of it, and
// a transform of 2^20 points needs two rows more than the sheet has.
constexpr std::size_t kMaxResultColumns = 16384;
constexpr std::size_t kMaxResultCells = std::size_t{1} << 24;

// Fails with a text naming the size before anything of that size is made.
void check_result_size(double rows, double columns);

// The bare table of a matrix.
CellMatrix matrix_table(const dmat& m);

// Writes m into r from (top, left) on.
void write_matrix(CellMatrix& r, std::size_t top, std::size_t left, const dmat& m);

// Blocks one under another, each under its label, a blank row between them.
CellMatrix labelled_blocks(const std::vector<std::string>& labels, const std::vector<dmat>& blocks,
                           const std::string& heading = "");

// A complex matrix from its two parts, with the complex family's messages;
// `same_size` is the text for parts of different shapes.
cmat read_complex_matrix(const CellMatrix& real, const CellMatrix& imag, const char* same_size);

std::size_t columns_of(const dmat& m);

}  // namespace zentable
