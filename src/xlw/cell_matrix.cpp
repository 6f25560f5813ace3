#include "xlw/cell_matrix.hpp"

#include <algorithm>
#include <cstdint>
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

void prefer_huge_pages(void* data, std::size_t bytes) {
#if defined(MADV_HUGEPAGE)
    const auto start = reinterpret_cast<std::uintptr_t>(data);
    const std::uintptr_t first = (start + kHugePage - 1) / kHugePage * kHugePage;
    const std::uintptr_t last = (start + bytes) / kHugePage * kHugePage;
    if (last > first) {
        // Only a hint: without huge pages the buffer works the same, more slowly.
        madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
    }
#else
    (void)data;
    (void)bytes;
#endif
}

CellArena::CellArena(std::size_t bytes)
    : capacity_((bytes + kHugePage - 1) / kHugePage * kHugePage) {
    block_ = static_cast<unsigned char*>(std::aligned_alloc(kHugePage, capacity_));
    if (block_ == nullptr) {
        throw std::bad_alloc();
    }
    prefer_huge_pages(block_, capacity_);
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

std::unique_ptr<CellArena> MJCellMatrix::arena_for(std::size_t cells) {
    const std::size_t bytes = aligned_size(cells * sizeof(MJCellValue));
    if (bytes < kArenaThreshold) {
        return nullptr;
    }
    return std::make_unique<CellArena>(bytes);
}

MJCellMatrix::MJCellMatrix(std::size_t rows, std::size_t columns)
    : arena_(arena_for(rows * columns)),
      cells_(rows * columns, ArenaAllocator<MJCellValue>(arena_.get())),
      rows_(rows),
      columns_(columns) {}

MJCellMatrix::MJCellMatrix(const MJCellMatrix& other)
    : arena_(arena_for(other.cells_.size())),
      cells_(other.cells_, ArenaAllocator<MJCellValue>(arena_.get())),
      rows_(other.rows_),
      columns_(other.columns_) {}

void MJCellMatrix::PushBottom(const CellMatrix_pimpl_abstract& below) {
    if (&below == this) {
        const MJCellMatrix copy(*this);
        PushBottom(copy);
        return;
    }
    const std::size_t below_rows = below.RowsInStructure();
    const std::size_t below_columns = below.ColumnsInStructure();
    const std::size_t columns = std::max(columns_, below_columns);
    Cells joined(cells_.get_allocator());
    joined.reserve((rows_ + below_rows) * columns);
    for (std::size_t i = 0; i < rows_; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            joined.emplace_back();
            if (j < columns_) {
                joined.back() = std::move(cells_[i * columns_ + j]);
            }
        }
    }
    for (std::size_t i = 0; i < below_rows; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            joined.emplace_back();
            if (j < below_columns) {
                joined.back() = below(i, j);
            }
        }
    }
    cells_.swap(joined);
    rows_ += below_rows;
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
    // A new table of the joined size, so that other copies of this table keep
    // the cells they had and no cell is copied twice.
    const std::size_t rows = RowsInStructure(), below_rows = below.RowsInStructure();
    const std::size_t columns = ColumnsInStructure(), below_columns = below.ColumnsInStructure();
    auto joined =
        std::make_shared<MJCellMatrix>(rows + below_rows, std::max(columns, below_columns));
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            (*joined)(i, j) = (*this)(i, j);
        }
    }
    for (std::size_t i = 0; i < below_rows; ++i) {
        for (std::size_t j = 0; j < below_columns; ++j) {
            (*joined)(rows + i, j) = below(i, j);
        }
    }
    impl_ = std::move(joined);
}

}  // namespace zentable
