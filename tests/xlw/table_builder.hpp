#pragma once

#include <algorithm>
#include <exception>
#include <initializer_list>
#include <string>

#include "xlw/cell_matrix.hpp"

namespace zentable::testing {

// One cell of a literal table: a number, a text, a wide text, a bool, or blank.
struct Cell {
    enum Kind { number, text, wide, boolean, blank } kind = blank;
    double value = 0.0;
    std::string narrow;
    std::u16string wide_text;

    Cell() = default;
    Cell(double v) : kind(number), value(v) {}
    Cell(int v) : kind(number), value(v) {}
    Cell(const char* s) : kind(text), narrow(s) {}
    Cell(const char16_t* s) : kind(wide), wide_text(s) {}
    Cell(bool b) : kind(boolean), value(b) {}
};

inline const Cell blank{};

// Rows shorter than the widest are padded with blanks.
inline CellMatrix make_table(std::initializer_list<std::initializer_list<Cell>> rows) {
    std::size_t columns = 0;
    for (const auto& row : rows) {
        columns = std::max(columns, row.size());
    }
    CellMatrix table(rows.size(), columns);
    std::size_t i = 0;
    for (const auto& row : rows) {
        std::size_t j = 0;
        for (const Cell& c : row) {
            CellValue& cell = table(i, j++);
            if (c.kind == Cell::number) {
                cell = c.value;
            } else if (c.kind == Cell::text) {
                cell = c.narrow;
            } else if (c.kind == Cell::wide) {
                cell = c.wide_text;
            } else if (c.kind == Cell::boolean) {
                cell = c.value != 0.0;
            }
        }
        ++i;
    }
    return table;
}

// What a call threw, tagged by type: a built text (std::string), a fixed text
// (const char*) or an exception.
template <class F>
std::string thrown(F&& call) {
    try {
        call();
    } catch (const std::string& s) {
        return "string: " + s;
    } catch (const char* s) {
        return std::string("literal: ") + s;
    } catch (const std::exception& e) {
        return std::string("exception: ") + e.what();
    }
    return "nothing thrown";
}

}  // namespace zentable::testing
