#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "xlw/cell_value.hpp"

namespace zentable {

class CellMatrix_pimpl_abstract {
  public:
    virtual const CellValue& operator()(std::size_t row, std::size_t column) const = 0;
    virtual CellValue& operator()(std::size_t row, std::size_t column) = 0;
    virtual std::size_t RowsInStructure() const = 0;
    virtual std::size_t ColumnsInStructure() const = 0;
    virtual void PushBottom(const CellMatrix_pimpl_abstract& below) = 0;
    virtual ~CellMatrix_pimpl_abstract() = default;
    virtual std::unique_ptr<CellMatrix_pimpl_abstract> clone() const = 0;
};

// Asks for huge pages under the whole 2 MiB stretches of a large buffer not
// yet touched: a buffer of millions of values otherwise takes thousands of
// page faults, which can cost more than the work done on it.
void prefer_huge_pages(void* data, std::size_t bytes);

// One block of memory that the rows of a big table are carved from, released
// whole with the table. A table of millions of cells made row by row from the
// general heap spends most of its time in page faults; one block can be backed
// by huge pages and needs no bookkeeping per row.
class CellArena {
  public:
    explicit CellArena(std::size_t bytes);
    CellArena(const CellArena&) = delete;
    CellArena& operator=(const CellArena&) = delete;
    ~CellArena();

    // Null when the block is used up: the caller then takes from the heap.
    void* take(std::size_t bytes);
    bool owns(const void* p) const {
        const auto address = reinterpret_cast<std::uintptr_t>(p);
        const auto start = reinterpret_cast<std::uintptr_t>(block_);
        return address >= start && address - start < capacity_;
    }

  private:
    unsigned char* block_;
    std::size_t capacity_;
    std::size_t used_ = 0;
};

// Takes from a table's arena while it has room, from the heap otherwise. A
// copy of a container starts over on the heap, so that no arena is shared
// between tables.
template <class T>
class ArenaAllocator {
  public:
    using value_type = T;

    ArenaAllocator() = default;
    explicit ArenaAllocator(CellArena* arena) : arena_(arena) {}
    template <class U>
    ArenaAllocator(const ArenaAllocator<U>& other) : arena_(other.arena()) {}

    T* allocate(std::size_t n) {
        if (arena_ != nullptr) {
            if (void* p = arena_->take(n * sizeof(T))) {
                return static_cast<T*>(p);
            }
        }
        return static_cast<T*>(::operator new(n * sizeof(T)));
    }
    void deallocate(T* p, std::size_t) {
        if (arena_ == nullptr || !arena_->owns(p)) {
            ::operator delete(p);
        }
    }
    ArenaAllocator select_on_container_copy_construction() const { return ArenaAllocator(); }

    CellArena* arena() const { return arena_; }
    friend bool operator==(const ArenaAllocator& a, const ArenaAllocator& b) {
        return a.arena_ == b.arena_;
    }
    friend bool operator!=(const ArenaAllocator& a, const ArenaAllocator& b) { return !(a == b); }

  private:
    CellArena* arena_ = nullptr;
};

class MJCellMatrix final : public CellMatrix_pimpl_abstract {
  public:
    using Cells = std::vector<MJCellValue, ArenaAllocator<MJCellValue>>;

    MJCellMatrix(std::size_t rows, std::size_t columns);
    // A big copy takes a block of its own; the arena stays with the original.
    MJCellMatrix(const MJCellMatrix& other);
    MJCellMatrix& operator=(const MJCellMatrix&) = delete;

    const CellValue& operator()(std::size_t row, std::size_t column) const override {
        return cells_[row * columns_ + column];
    }
    CellValue& operator()(std::size_t row, std::size_t column) override {
        return cells_[row * columns_ + column];
    }
    std::size_t RowsInStructure() const override { return rows_; }
    std::size_t ColumnsInStructure() const override { return columns_; }
    void PushBottom(const CellMatrix_pimpl_abstract& below) override;
    std::unique_ptr<CellMatrix_pimpl_abstract> clone() const override;

  private:
    // Null for a table small enough for the general heap.
    static std::unique_ptr<CellArena> arena_for(std::size_t cells);

    // Declared first so that it outlives the cells it holds.
    std::unique_ptr<CellArena> arena_;
    // Row after row in one run: a row of its own per record costs a column
    // table of a million records a million more allocations.
    Cells cells_;
    std::size_t rows_;
    std::size_t columns_;
};

// The rectangular table every command takes and gives. Copies share cells:
// a table lives for one call and is passed around by reference count.
class CellMatrix {
  public:
    CellMatrix() : CellMatrix(0, 0) {}
    CellMatrix(std::size_t rows, std::size_t columns);
    // One-cell tables, for a message or a single value.
    explicit CellMatrix(const std::string& text);
    explicit CellMatrix(const char* text) : CellMatrix(std::string(text)) {}
    explicit CellMatrix(double value);

    const CellValue& operator()(std::size_t row, std::size_t column) const {
        return (*impl_)(row, column);
    }
    CellValue& operator()(std::size_t row, std::size_t column) { return (*impl_)(row, column); }
    std::size_t RowsInStructure() const { return impl_->RowsInStructure(); }
    std::size_t ColumnsInStructure() const { return impl_->ColumnsInStructure(); }

    // Appends a table below this one; the wider of the two sets the width.
    void PushBottom(const CellMatrix& below);

    // Whether a driver pads the result to the caller's range (see the drivers).
    bool pad_to_caller = true;

  private:
    std::shared_ptr<CellMatrix_pimpl_abstract> impl_;
};

}  // namespace zentable
