#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <sstream>

#include "../support/tables.hpp"
#include "xlw/cell_value.hpp"

namespace zentable {
namespace {

using testing::thrown;

TEST(CellValue, ErrorCodesNeedTheirWrapper) {
    MJCellValue cell;
    EXPECT_EQ(cell.kind(), CellValue::empty);
    cell = CellValue::ErrorCode{2042};
    EXPECT_EQ(cell.kind(), 4);
    EXPECT_EQ(cell.ErrorValue(), 2042ul);
    cell = 7ul;
    EXPECT_EQ(cell.kind(), 2);
    EXPECT_EQ(cell.NumericValue(), 7.0);
    cell = 5000000000LL;
    EXPECT_EQ(cell.NumericValue(), 5e9);
    EXPECT_EQ(static_cast<unsigned long>(MJCellValue(3.9)), 3ul);
}

TEST(CellValue, WrongKindReadsFailWithTheirTextAndALogLine) {
    MJCellValue text("3");
    MJCellValue number(3.0);
    MJCellValue empty;
    std::ostringstream log;
    std::streambuf* old = std::cerr.rdbuf(log.rdbuf());
    const std::string results[] = {
        thrown([&] { (void)number.StringValue(); }),
        thrown([&] { (void)empty.WstringValue(); }),
        thrown([&] { (void)text.NumericValue(); }),
        thrown([&] { (void)static_cast<unsigned long>(text); }),
        thrown([&] { (void)number.BooleanValue(); }),
        thrown([&] { (void)number.ErrorValue(); }),
    };
    std::cerr.rdbuf(old);
    EXPECT_EQ(results[0], "exception: non string cell asked to be a string");
    EXPECT_EQ(results[1], "exception: non string cell asked to be a string");
    EXPECT_EQ(results[2], "exception: non number cell asked to be a number");
    EXPECT_EQ(results[3], "exception: non number cell asked to be a number");
    EXPECT_EQ(results[4], "exception: non boolean cell asked to be a bool");
    EXPECT_EQ(results[5], "exception: non error cell asked to be an error");

    std::istringstream lines(log.str());
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
        ++count;
        EXPECT_NE(line.find("cell_value.cpp("), std::string::npos) << line;
        EXPECT_NE(line.find("): non "), std::string::npos) << line;
    }
    EXPECT_EQ(count, 6);
}

TEST(CellValue, WideTextNarrowsByLowByteOnceAndWidensBack) {
    // U+00E9 keeps its byte; U+4E2D keeps only its low byte 0x2D ('-').
    MJCellValue wide(std::u16string(u"Ab\u00e9\u4e2d"));
    const std::string& first = wide.StringValue();
    EXPECT_EQ(first, "Ab\xe9-");
    EXPECT_EQ(&wide.StringValue(), &first);
    EXPECT_EQ(wide.WstringValue(), u"Ab\u00e9\u4e2d");
    wide = std::u16string(u"z");
    EXPECT_EQ(wide.StringValue(), "z");

    MJCellValue narrow(std::string("x\xe9"));
    EXPECT_EQ(narrow.WstringValue(), u"x\u00e9");
    narrow = std::string("y");
    EXPECT_EQ(narrow.WstringValue(), u"y");
}

TEST(CellValue, CopiesAnyKindThroughTheBase) {
    MJCellValue sources[5];
    sources[0] = "name";
    sources[1] = std::u16string(u"wide");
    sources[2] = 0.1;
    sources[3] = false;
    sources[4] = CellValue::ErrorCode{7};
    MJCellValue target(1.0);
    CellValue& base = target;
    for (const CellValue& source : sources) {
        base = source;
        EXPECT_EQ(target.kind(), source.kind());
    }
    EXPECT_EQ(target.ErrorValue(), 7ul);
    base = sources[1];
    base = static_cast<const CellValue&>(target);
    EXPECT_EQ(target.WstringValue(), u"wide");
    base = MJCellValue();
    EXPECT_TRUE(target.IsEmpty());

    MJCellValue copy(sources[1]);
    copy = std::u16string(u"other");
    EXPECT_EQ(sources[1].WstringValue(), u"wide");
}

// Copies share their text: it lives while any of them holds it, and a copy
// given a new text leaves the others alone.
TEST(CellValue, CopiesShareATextThatOutlivesTheOriginal) {
    auto original = std::make_unique<MJCellValue>("kept");
    MJCellValue copy(*original);
    MJCellValue assigned;
    static_cast<CellValue&>(assigned) = *original;
    EXPECT_EQ(&copy.StringValue(), &original->StringValue());
    original.reset();
    EXPECT_EQ(copy.StringValue(), "kept");
    EXPECT_EQ(assigned.WstringValue(), u"kept");
    copy = std::string("new");
    EXPECT_EQ(assigned.StringValue(), "kept");
}

}  // namespace
}  // namespace zentable
