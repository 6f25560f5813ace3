#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "../xlw/table_builder.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable::testing {

// The text of whatever a command threw, whatever its type.
template <class F>
std::string failure_text(F&& call) {
    try {
        call();
    } catch (const std::string& s) {
        return s;
    } catch (const char* s) {
        return s;
    } catch (const std::exception& e) {
        return e.what();
    }
    return "(nothing thrown)";
}

// A one-row table of texts, as a list of names is given.
inline CellMatrix text_row(const std::vector<std::string>& texts) {
    CellMatrix t(1, texts.size());
    for (std::size_t j = 0; j < texts.size(); ++j)
        t(0, j) = texts[j];
    return t;
}

inline std::string temp_file(const std::string& name, const std::string& text) {
    const std::string path = ::testing::TempDir() + "stats_" + name;
    std::ofstream(path) << text;
    return path;
}

inline std::string file_text(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// A cell as text with its kind, so that a number never passes for a string.
inline std::string shown(const CellValue& cell) {
    if (cell.IsANumber())
        return "n:" + number_to_text(cell.NumericValue());
    if (cell.IsString())
        return "s:" + cell.StringValue();
    return cell.IsEmpty() ? "empty" : "other";
}

// The whole table, row by row, each cell shown with its kind.
inline std::vector<std::vector<std::string>> cells_of(const CellMatrix& t) {
    std::vector<std::vector<std::string>> rows(t.RowsInStructure());
    for (std::size_t i = 0; i < t.RowsInStructure(); ++i)
        for (std::size_t j = 0; j < t.ColumnsInStructure(); ++j)
            rows[i].push_back(shown(t(i, j)));
    return rows;
}

// Two tables equal cell by cell, numbers to the bit.
inline void expect_same_table(const CellMatrix& a, const CellMatrix& b) {
    ASSERT_EQ(a.RowsInStructure(), b.RowsInStructure());
    ASSERT_EQ(a.ColumnsInStructure(), b.ColumnsInStructure());
    for (std::size_t i = 0; i < a.RowsInStructure(); ++i) {
        for (std::size_t j = 0; j < a.ColumnsInStructure(); ++j) {
            const CellValue& x = a(i, j);
            const CellValue& y = b(i, j);
            if (x.IsANumber() && y.IsANumber())
                EXPECT_EQ(x.NumericValue(), y.NumericValue()) << "cell " << i << ", " << j;
            else
                EXPECT_EQ(shown(x), shown(y)) << "cell " << i << ", " << j;
        }
    }
}

inline double number_at(const CellMatrix& t, std::size_t i, std::size_t j) {
    return t(i, j).NumericValue();
}

}  // namespace zentable::testing
