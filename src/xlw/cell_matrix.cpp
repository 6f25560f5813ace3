#include "xlw/cell_matrix.hpp"

#include <algorithm>
#include <cstdlib>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace zentable {

namespace {

constexpr std::size_t kArenaAlignment = alignof(std::max_align_t);
constexpr std::size_t kHugePage = std::size_t{2} << 20;
// Below this the general heap is as quick and wastes nothing.
constexpr std::size_t kArenaThreshold = std::size_t{4} << 20;

std::size_t aligned_size(std::size_t bytes) {
    return (bytes + kArenaAlignment - 1) / kArenaAlignment * kArenaAlignment;
}

}  // namespace

CellArena::CellArena(std::size_t bytes)
    : capacity_((bytes + kHugePage - 1) / kHugePage * kHugePage) {
    block_ = static_cast<unsigned char*>(std::aligned_alloc(kHugePage, capacity_));
    if (block_ == nullptr) {
        throw std::bad_alloc();
    }
#if defined(MADV_HUGEPAGE)
    // Only a hint: without huge pages the block works the same, more slowly.
    madvise(block_, capacity_, MADV_HUGEPAGE);
#endif
}

CellArena::~CellArena() {
    std::free(block_);
}

void* CellArena::take(std::size_t bytes) {
    const std::size_t size = aligned_size(bytes);
    if (size > capacity_ - used_) {
        return nullptr;
    }
    void* p = block_ + used_;
    used_ += size;
    return p;
}

std::unique_ptr<CellArena> MJCellMatrix::arena_for(std::size_t rows, std::size_t columns) {
    const std::size_t bytes =
        aligned_size(rows * sizeof(Row)) + rows * aligned_size(columns * sizeof(MJCellValue));
    if (bytes < kArenaThreshold) {
        return nullptr;
    }
    return std::make_unique<CellArena>(bytes);
}

MJCellMatrix::MJCellMatrix(std::size_t rows, std::size_t columns)
    : arena_(arena_for(rows, columns)),
      cells_(ArenaAllocator<Row>(arena_.get())),
      rows_(rows),
      columns_(columns) {
    cells_.reserve(rows);
    // Each row made empty in place: copying a prototype row costs a cell copy
    // per cell, which shows on tables of millions of cells.
    for (std::size_t i = 0; i < rows; ++i) {
        cells_.emplace_back(columns, ArenaAllocator<MJCellValue>(arena_.get()));
    }
}

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
        Row row(columns);
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
