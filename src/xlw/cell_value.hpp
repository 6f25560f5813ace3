#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <utility>

namespace zentable {

// A cell of a table: one of six kinds. The virtual operations stay in the
// order the host binding expects of a cell.
class CellValue {
  public:
    enum Kind : unsigned char {
        narrow_string = 0,
        wide_string = 1,
        number = 2,
        boolean = 3,
        error = 4,
        empty = 5,
    };

    virtual bool IsAString() const = 0;
    virtual bool IsAWstring() const = 0;
    virtual bool IsString() const = 0;
    virtual bool IsANumber() const = 0;
    virtual bool IsBoolean() const = 0;
    virtual bool IsEmpty() const = 0;
    virtual bool IsError() const = 0;

    virtual const std::string& StringValue() const = 0;
    virtual const std::u16string& WstringValue() const = 0;
    virtual double NumericValue() const = 0;
    virtual bool BooleanValue() const = 0;
    virtual unsigned long ErrorValue() const = 0;

    virtual operator std::string() const = 0;
    virtual operator std::u16string() const = 0;
    virtual operator bool() const = 0;
    virtual operator double() const = 0;
    virtual operator unsigned long() const = 0;

    virtual void clear() = 0;
    virtual ~CellValue() = default;

    // Assignment replaces kind and payload. An unsigned long error code needs
    // the explicit ErrorCode wrapper: a plain unsigned long makes a number.
    struct ErrorCode {
        unsigned long code;
    };
    virtual CellValue& operator=(ErrorCode e) = 0;
    virtual CellValue& operator=(int i) = 0;
    virtual CellValue& operator=(bool b) = 0;
    virtual CellValue& operator=(unsigned long u) = 0;
    virtual CellValue& operator=(double d) = 0;
    virtual CellValue& operator=(const std::u16string& s) = 0;
    virtual CellValue& operator=(const std::string& s) = 0;

    CellValue& operator=(const char* s) { return *this = std::string(s); }
    // Other integer widths would be ambiguous among the overloads above; all of
    // them make a number.
    CellValue& operator=(unsigned int u) { return *this = static_cast<unsigned long>(u); }
    CellValue& operator=(long i) { return *this = static_cast<double>(i); }
    CellValue& operator=(long long i) { return *this = static_cast<double>(i); }
    CellValue& operator=(unsigned long long u) { return *this = static_cast<double>(u); }
    // Copies whatever the other cell holds, whatever its implementation.
    CellValue& operator=(const CellValue& other);

    virtual Kind kind() const = 0;
};

class MJCellValue final : public CellValue {
  public:
    MJCellValue() = default;
    MJCellValue(const MJCellValue& other);
    MJCellValue(MJCellValue&& other) noexcept
        : CellValue(), number_(other.number_), text_(std::move(other.text_)), kind_(other.kind_) {
        other.clear();
    }
    explicit MJCellValue(const std::string& s) { *this = s; }
    explicit MJCellValue(const char* s) { *this = std::string(s); }
    explicit MJCellValue(const std::u16string& s) { *this = s; }
    explicit MJCellValue(double d) : number_(d), kind_(number) {}
    explicit MJCellValue(int i) : number_(static_cast<double>(i)), kind_(number) {}
    explicit MJCellValue(bool b) : number_(b ? 1.0 : 0.0), kind_(boolean) {}
    MJCellValue& operator=(const MJCellValue& other);
    MJCellValue& operator=(MJCellValue&& other) noexcept;
    ~MJCellValue() override = default;

    bool IsAString() const override { return kind_ == narrow_string; }
    bool IsAWstring() const override { return kind_ == wide_string; }
    bool IsString() const override { return kind_ == narrow_string || kind_ == wide_string; }
    bool IsANumber() const override { return kind_ == number; }
    bool IsBoolean() const override { return kind_ == boolean; }
    bool IsEmpty() const override { return kind_ == empty; }
    bool IsError() const override { return kind_ == error; }

    const std::string& StringValue() const override;
    const std::u16string& WstringValue() const override;
    double NumericValue() const override;
    bool BooleanValue() const override;
    unsigned long ErrorValue() const override;

    operator std::string() const override { return StringValue(); }
    operator std::u16string() const override { return WstringValue(); }
    operator bool() const override { return BooleanValue(); }
    operator double() const override { return NumericValue(); }
    operator unsigned long() const override;

    void clear() override {
        text_.reset();
        number_ = 0.0;
        kind_ = empty;
    }

    using CellValue::operator=;
    CellValue& operator=(ErrorCode e) override;
    CellValue& operator=(int i) override { return *this = static_cast<double>(i); }
    CellValue& operator=(bool b) override;
    CellValue& operator=(unsigned long u) override { return *this = static_cast<double>(u); }
    CellValue& operator=(double d) override {
        text_.reset();
        number_ = d;
        kind_ = number;
        return *this;
    }
    CellValue& operator=(const std::u16string& s) override;
    CellValue& operator=(const std::string& s) override;

    Kind kind() const override { return kind_; }

  private:
    // The texts live apart from the cell, so that the number cells that make
    // up most big tables stay small and never allocate. A text never changes
    // once made, but for its cached copies, so the copies of a cell share it:
    // a column of a million cells that repeat a few words holds a few texts.
    // A first read fills a cache, so the copies of a cell, like the cells of
    // one table, are read by one thread at a time.
    struct Text {
        // Narrow text; for a wide cell, its narrowed copy, made on first read.
        std::string narrow;
        // Wide text; for a narrow cell, its widened copy, made on first read.
        std::u16string wide;
        bool has_narrow = false;
        bool has_wide = false;
        std::atomic<int> owners{1};
    };

    class SharedText {
      public:
        SharedText() = default;
        explicit SharedText(Text* text) : text_(text) {}
        SharedText(const SharedText& other) : text_(other.text_) {
            if (text_ != nullptr)
                text_->owners.fetch_add(1, std::memory_order_relaxed);
        }
        SharedText(SharedText&& other) noexcept : text_(other.text_) { other.text_ = nullptr; }
        SharedText& operator=(SharedText other) noexcept {
            std::swap(text_, other.text_);
            return *this;
        }
        ~SharedText() { reset(); }

        void reset() {
            if (text_ != nullptr && text_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1)
                delete text_;
            text_ = nullptr;
        }
        explicit operator bool() const { return text_ != nullptr; }
        Text& operator*() const { return *text_; }

      private:
        Text* text_ = nullptr;
    };

    double number_ = 0.0;  // number, boolean (0 or 1) or error code
    // Set for string cells only. The cached copies are written on a const read.
    SharedText text_;
    Kind kind_ = empty;
};

}  // namespace zentable
