#include "numeric/matrix_cells.hpp"

#include <algorithm>

#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

void check_result_size(double rows, double columns) {
    if (columns <= static_cast<double>(kMaxResultColumns) &&
        rows * columns <= static_cast<double>(kMaxResultCells)) {
        return;
    }
    throw "The result of " + number_to_text(rows) + " rows by " + number_to_text(columns) +
        " columns is too large: a result may have at most 16384 columns and 16777216 cells";
}

std::size_t columns_of(const dmat& m) {
    return m.empty() ? 0 : m[0].size();
}

void write_matrix(CellMatrix& r, std::size_t top, std::size_t left, const dmat& m) {
    for (std::size_t i = 0; i < m.size(); ++i)
        for (std::size_t j = 0; j < m[i].size(); ++j)
            r(top + i, left + j) = m[i][j];
}

CellMatrix matrix_table(const dmat& m) {
    check_result_size(static_cast<double>(m.size()), static_cast<double>(columns_of(m)));
    CellMatrix r(m.size(), columns_of(m));
    write_matrix(r, 0, 0, m);
    return r;
}

CellMatrix labelled_blocks(const std::vector<std::string>& labels, const std::vector<dmat>& blocks,
                           const std::string& heading) {
    std::size_t rows = heading.empty() ? 0 : 1;
    std::size_t width = 1;
    for (const dmat& b : blocks) {
        rows += 1 + b.size();
        width = std::max(width, columns_of(b));
    }
    rows += blocks.empty() ? 0 : blocks.size() - 1;
    check_result_size(static_cast<double>(rows), static_cast<double>(width));
    CellMatrix r(rows, width);
    std::size_t row = 0;
    if (!heading.empty())
        r(row++, 0) = heading;
    for (std::size_t k = 0; k < blocks.size(); ++k) {
        if (k > 0)
            ++row;
        r(row++, 0) = labels[k];
        write_matrix(r, row, 0, blocks[k]);
        row += blocks[k].size();
    }
    return r;
}

cmat read_complex_matrix(const CellMatrix& real, const CellMatrix& imag, const char* same_size) {
    if (is_omitted(real))
        throw "Real part of an input complex matrix is empty";
    if (is_omitted(imag))
        throw "Imaginary part of an input complex matrix is empty";
    if (real.RowsInStructure() != imag.RowsInStructure() ||
        real.ColumnsInStructure() != imag.ColumnsInStructure())
        throw same_size;
    return to_complex(read_numeric_matrix(real), read_numeric_matrix(imag));
}

}  // namespace zentable
