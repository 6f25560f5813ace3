#pragma once

#include <gtest/gtest.h>

#include <string>

#include "xlw/cell_conversions.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable::testing {

// One line per row, cells joined by '|': texts in quotes, numbers bare, so
// that a count written as text cannot pass.
inline std::string render(const CellMatrix& t) {
    std::string out;
    for (std::size_t i = 0; i < t.RowsInStructure(); ++i) {
        for (std::size_t j = 0; j < t.ColumnsInStructure(); ++j) {
            const CellValue& c = t(i, j);
            if (j)
                out += '|';
            if (c.IsString())
                out += "'" + c.StringValue() + "'";
            else if (c.IsANumber())
                out += number_to_text(c.NumericValue());
        }
        out += '\n';
    }
    return out;
}

// A report rendered without its two closing rows, which must be a blank row
// and "End of output: " with the command's name.
inline std::string render_report(const CellMatrix& t, const std::string& command) {
    const std::size_t rows = t.RowsInStructure();
    EXPECT_GE(rows, 2u);
    if (rows < 2)
        return render(t);
    for (std::size_t j = 0; j < t.ColumnsInStructure(); ++j) {
        EXPECT_TRUE(t(rows - 2, j).IsEmpty()) << "row above the closing line, column " << j;
        if (j) {
            EXPECT_TRUE(t(rows - 1, j).IsEmpty()) << "closing line, column " << j;
        }
    }
    EXPECT_EQ(t(rows - 1, 0).IsString() ? t(rows - 1, 0).StringValue() : "",
              "End of output: " + command);
    CellMatrix body(rows - 2, t.ColumnsInStructure());
    for (std::size_t i = 0; i + 2 < rows; ++i)
        for (std::size_t j = 0; j < t.ColumnsInStructure(); ++j)
            body(i, j) = t(i, j);
    return render(body);
}

}  // namespace zentable::testing
