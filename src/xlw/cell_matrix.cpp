#include "xlw/cell_matrix.hpp"

#include <algorithm>

namespace zentable {

MJCellMatrix::MJCellMatrix(std::size_t rows, std::size_t columns)
    : cells_(rows, std::vector<MJCellValue>(columns)), rows_(rows), columns_(columns) {}

void MJCellMatrix::PushBottom(const CellMatrix_pimpl_abstract& below) {
    const std::size_t below_rows = below.RowsInStructure();
    const std::size_t below_columns = below.ColumnsInStructure();
    const std::size_t columns = std::max(columns_, below_columns);
    // Read the other table's size before growing: it may be this very table.
    const std::size_t old_rows = rows_;
    if (columns > columns_) {
        for (auto& row : cells_) {
            row.resize(columns);
        }
    }
    cells_.reserve(old_rows + below_rows);
    for (std::size_t i = 0; i < below_rows; ++i) {
        std::vector<MJCellValue> row(columns);
        for (std::size_t j = 0; j < below_columns; ++j) {
            row[j] = below(i, j);
        }
        cells_.push_back(std::move(row));
    }
    rows_ = old_rows + below_rows;
    columns_ = columns;
}

std::unique_ptr<CellMatrix_pimpl_abstract> MJCellMatrix::clone() const {
    return std::make_unique<MJCellMatrix>(*this);
}

CellMatrix::CellMatrix(std::size_t rows, std::size_t columns)
    : impl_(std::make_shared<MJCellMatrix>(rows, columns)) {}

CellMatrix::CellMatrix(const std::string& text) : CellMatrix(1, 1) {
    (*this)(0, 0) = text;
}

CellMatrix::CellMatrix(double value) : CellMatrix(1, 1) {
    (*this)(0, 0) = value;
}

void CellMatrix::PushBottom(const CellMatrix& below) {
    // Other copies of this table keep the cells they had.
    std::shared_ptr<CellMatrix_pimpl_abstract> joined = impl_->clone();
    joined->PushBottom(*below.impl_);
    impl_ = std::move(joined);
}

}  // namespace zentable
