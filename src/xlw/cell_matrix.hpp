#pragma once

#include <cstddef>
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

class MJCellMatrix final : public CellMatrix_pimpl_abstract {
  public:
    MJCellMatrix(std::size_t rows, std::size_t columns);

    const CellValue& operator()(std::size_t row, std::size_t column) const override {
        return cells_[row][column];
    }
    CellValue& operator()(std::size_t row, std::size_t column) override {
        return cells_[row][column];
    }
    std::size_t RowsInStructure() const override { return rows_; }
    std::size_t ColumnsInStructure() const override { return columns_; }
    void PushBottom(const CellMatrix_pimpl_abstract& below) override;
    std::unique_ptr<CellMatrix_pimpl_abstract> clone() const override;

  private:
    std::vector<std::vector<MJCellValue>> cells_;
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
