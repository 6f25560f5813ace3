#include "xlw/cell_value.hpp"

#include <cmath>
#include <iostream>
#include <limits>
#include <typeinfo>
#include <utility>

#include "xlw/xlf_exception.hpp"

namespace zentable {

namespace {

// The text goes to the sheet; the position goes only to the debugger's output,
// so that a wrong-kind read can be traced to the cell access that made it.
[[noreturn]] void wrong_kind(const char* file, int line, const char* text) {
    std::cerr << file << "(" << line << "): " << text << std::endl;
    throw XlfGeneralException(text);
}

#define ZENTABLE_WRONG_KIND(text) wrong_kind(__FILE__, __LINE__, text)

constexpr const char* kNotString = "non string cell asked to be a string";
constexpr const char* kNotNumber = "non number cell asked to be a number";
constexpr const char* kNotBoolean = "non boolean cell asked to be a bool";
constexpr const char* kNotError = "non error cell asked to be an error";

// Byte by byte, as the host's own narrowing does: characters beyond one byte
// keep their low byte rather than failing.
std::string narrow(const std::u16string& wide) {
    std::string out;
    out.reserve(wide.size());
    for (char16_t c : wide) {
        out.push_back(static_cast<char>(c & 0xFF));
    }
    return out;
}

// Bytes read as Latin-1, so that narrowing the result gives the bytes back.
std::u16string widen(const std::string& text) {
    std::u16string out;
    out.reserve(text.size());
    for (char c : text) {
        out.push_back(static_cast<char16_t>(static_cast<unsigned char>(c)));
    }
    return out;
}

}  // namespace

CellValue& CellValue::operator=(const CellValue& other) {
    if (this == &other) {
        return *this;
    }
    // Between cells of the one implementation the text is shared, not copied.
    if (typeid(*this) == typeid(MJCellValue) && typeid(other) == typeid(MJCellValue)) {
        static_cast<MJCellValue&>(*this) = static_cast<const MJCellValue&>(other);
        return *this;
    }
    switch (other.kind()) {
        case narrow_string:
            return *this = other.StringValue();
        case wide_string:
            return *this = other.WstringValue();
        case number:
            return *this = other.NumericValue();
        case boolean:
            return *this = other.BooleanValue();
        case error:
            return *this = ErrorCode{other.ErrorValue()};
        case empty:
            break;
    }
    clear();
    return *this;
}

MJCellValue::MJCellValue(const MJCellValue& other)
    : CellValue(), number_(other.number_), text_(other.text_), kind_(other.kind_) {}

MJCellValue& MJCellValue::operator=(const MJCellValue& other) {
    if (this != &other) {
        MJCellValue copy(other);
        *this = std::move(copy);
    }
    return *this;
}

MJCellValue& MJCellValue::operator=(MJCellValue&& other) noexcept {
    if (this != &other) {
        number_ = other.number_;
        text_ = std::move(other.text_);
        kind_ = other.kind_;
        other.clear();
    }
    return *this;
}

const std::string& MJCellValue::StringValue() const {
    if (kind_ != narrow_string && kind_ != wide_string) {
        ZENTABLE_WRONG_KIND(kNotString);
    }
    Text& text = *text_;
    if (!text.has_narrow) {
        text.narrow = narrow(text.wide);
        text.has_narrow = true;
    }
    return text.narrow;
}

const std::u16string& MJCellValue::WstringValue() const {
    if (kind_ != narrow_string && kind_ != wide_string) {
        ZENTABLE_WRONG_KIND(kNotString);
    }
    Text& text = *text_;
    if (!text.has_wide) {
        text.wide = widen(text.narrow);
        text.has_wide = true;
    }
    return text.wide;
}

double MJCellValue::NumericValue() const {
    if (kind_ != number) {
        ZENTABLE_WRONG_KIND(kNotNumber);
    }
    return number_;
}

bool MJCellValue::BooleanValue() const {
    if (kind_ != boolean) {
        ZENTABLE_WRONG_KIND(kNotBoolean);
    }
    return number_ != 0.0;
}

unsigned long MJCellValue::ErrorValue() const {
    if (kind_ != error) {
        ZENTABLE_WRONG_KIND(kNotError);
    }
    return static_cast<unsigned long>(number_);
}

MJCellValue::operator unsigned long() const {
    const double value = std::trunc(NumericValue());
    // Out of range casts are undefined; give them a fixed answer instead.
    if (!(value >= 0.0)) {
        if (value >= static_cast<double>(std::numeric_limits<long long>::min())) {
            // A negative count wraps, as a two's complement machine does.
            return static_cast<unsigned long>(static_cast<long long>(value));
        }
        return 0;
    }
    if (value >= static_cast<double>(std::numeric_limits<unsigned long>::max())) {
        return std::numeric_limits<unsigned long>::max();
    }
    return static_cast<unsigned long>(value);
}

CellValue& MJCellValue::operator=(ErrorCode e) {
    text_.reset();
    number_ = static_cast<double>(e.code);
    kind_ = error;
    return *this;
}

CellValue& MJCellValue::operator=(bool b) {
    text_.reset();
    number_ = b ? 1.0 : 0.0;
    kind_ = boolean;
    return *this;
}

CellValue& MJCellValue::operator=(const std::u16string& s) {
    // s may be this cell's own text: copy it before the old text goes.
    auto text = std::make_unique<Text>();
    text->wide = s;
    text->has_wide = true;
    text_ = SharedText(text.release());
    number_ = 0.0;
    kind_ = wide_string;
    return *this;
}

CellValue& MJCellValue::operator=(const std::string& s) {
    auto text = std::make_unique<Text>();
    text->narrow = s;
    text->has_narrow = true;
    text_ = SharedText(text.release());
    number_ = 0.0;
    kind_ = narrow_string;
    return *this;
}

}  // namespace zentable
