#include <gtest/gtest.h>

#include "../support/tables.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {
namespace {

using testing::blank;
using testing::make_table;

TEST(CellMatrix, CopiesShareCellsAndOneCellTablesHoldTheirValue) {
    CellMatrix a(2, 3);
    EXPECT_TRUE(a.pad_to_caller);
    EXPECT_TRUE(a(1, 2).IsEmpty());
    a.pad_to_caller = false;
    CellMatrix b = a;
    b(0, 1) = "shared";
    EXPECT_EQ(a(0, 1).StringValue(), "shared");
    EXPECT_FALSE(b.pad_to_caller);

    CellMatrix message("No data");
    EXPECT_EQ(message.RowsInStructure() * message.ColumnsInStructure(), 1u);
    EXPECT_EQ(message(0, 0).StringValue(), "No data");
    EXPECT_EQ(CellMatrix(2.5)(0, 0).NumericValue(), 2.5);
}

TEST(CellMatrix, PushBottomWidensAndLeavesOtherCopiesAlone) {
    CellMatrix top = make_table({{"title"}, {1.0}});
    CellMatrix before = top;
    CellMatrix below = make_table({{2.0, "b", true}});
    top.PushBottom(below);
    ASSERT_EQ(top.RowsInStructure(), 3u);
    ASSERT_EQ(top.ColumnsInStructure(), 3u);
    EXPECT_EQ(top(0, 0).StringValue(), "title");
    EXPECT_TRUE(top(0, 2).IsEmpty() && top(1, 1).IsEmpty());
    EXPECT_EQ(top(2, 1).StringValue(), "b");
    EXPECT_TRUE(top(2, 2).BooleanValue());
    EXPECT_EQ(before.RowsInStructure(), 2u);
    EXPECT_EQ(before.ColumnsInStructure(), 1u);
    below(0, 1) = 9.0;
    EXPECT_EQ(top(2, 1).StringValue(), "b");

    // A narrower table below keeps the width; a table pushed under itself doubles.
    CellMatrix wide = make_table({{1.0, 2.0}});
    wide.PushBottom(make_table({{3.0}}));
    wide.PushBottom(wide);
    ASSERT_EQ(wide.RowsInStructure(), 4u);
    EXPECT_TRUE(wide(3, 1).IsEmpty());
    EXPECT_EQ(wide(2, 1).NumericValue(), 2.0);
}

TEST(CellMatrix, BigTablesHoldEveryKindAndSurviveJoining) {
    // Big enough to be laid out in one block rather than row by row.
    const std::size_t rows = 500;
    const std::size_t columns = 400;
    CellMatrix big(rows, columns);
    EXPECT_TRUE(big(rows - 1, columns - 1).IsEmpty());
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = 0; j < columns; ++j)
            big(i, j) = static_cast<double>(i * columns + j);
    big(0, 0) = "corner";
    big(rows - 1, columns - 1) = std::u16string(u"w\u00e9");
    big(3, 4) = true;
    big(5, 6) = CellValue::ErrorCode{7};
    big(7, 8).clear();

    CellMatrix joined = big;
    joined.PushBottom(make_table({{"tail", 1.5}}));
    ASSERT_EQ(joined.RowsInStructure(), rows + 1);
    ASSERT_EQ(big.RowsInStructure(), rows);
    // The joined table holds copies: changing the original leaves it alone.
    big(1, 1) = "changed";
    for (const CellMatrix* table : {&big, &joined}) {
        const CellMatrix& t = *table;
        EXPECT_EQ(t(0, 0).StringValue(), "corner");
        EXPECT_EQ(t(rows - 1, columns - 1).StringValue(), "w\xe9");
        EXPECT_TRUE(t(3, 4).BooleanValue());
        EXPECT_EQ(t(5, 6).ErrorValue(), 7ul);
        EXPECT_TRUE(t(7, 8).IsEmpty());
        EXPECT_EQ(t(rows - 2, columns - 3).NumericValue(),
                  static_cast<double>((rows - 2) * columns + columns - 3));
    }
    EXPECT_EQ(big(1, 1).StringValue(), "changed");
    EXPECT_EQ(joined(1, 1).NumericValue(), static_cast<double>(columns + 1));
    EXPECT_EQ(joined(rows, 0).StringValue(), "tail");
    EXPECT_TRUE(joined(rows, 2).IsEmpty());
}

TEST(CellConversions, DoubleAndTextOfEachKind) {
    CellMatrix t = make_table({{4.25, "3.5abc", "abc", u"-2.5e1", true, blank}});
    const double numbers[] = {4.25, 3.5, 0.0, -25.0, 1.0, 0.0};
    const char* texts[] = {"4.25", "3.5abc", "abc", "-2.5e1", "TRUE", ""};
    for (std::size_t j = 0; j < 6; ++j) {
        EXPECT_EQ(cell_to_double(t(0, j)), numbers[j]) << j;
        EXPECT_EQ(cell_to_text(t(0, j)), texts[j]) << j;
    }
    MJCellValue error;
    error = CellValue::ErrorCode{2007};
    EXPECT_EQ(cell_to_double(error), 0.0);
    EXPECT_EQ(cell_to_text(error), "");

    EXPECT_EQ(number_to_text(0.1), "0.1");
    EXPECT_EQ(number_to_text(0.1 + 0.2), "0.3");
    EXPECT_EQ(number_to_text(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(number_to_text(1e20), "1e+20");
    EXPECT_EQ(number_to_text(123456789012345678.0), "1.234567890123457e+17");
    EXPECT_EQ(number_to_text(2.5e-7), "2.5e-07");
    EXPECT_EQ(number_to_text(1234567.0), "1234567");
}

TEST(CellConversions, TrimAndOmittedTables) {
    const std::string text = " \t\na b\r\n \t";
    EXPECT_EQ(trim(text, 0), "a b\r");
    EXPECT_EQ(trim(text, -1), "a b\r\n \t");
    EXPECT_EQ(trim(text, 1), " \t\na b\r");
    for (int mode : {0, -1, 1}) {
        EXPECT_EQ(trim(" \t\n ", mode), "");
    }

    EXPECT_TRUE(is_omitted(CellMatrix(0, 0)));
    EXPECT_TRUE(is_omitted(CellMatrix(3, 0)));
    EXPECT_TRUE(is_omitted(CellMatrix(1, 1)));
    EXPECT_FALSE(is_omitted(CellMatrix(0.0)));
    EXPECT_FALSE(is_omitted(CellMatrix(1, 2)));
}

}  // namespace
}  // namespace zentable
