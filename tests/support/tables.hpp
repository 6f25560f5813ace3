#pragma once

#include <algorithm>
#include <cmath>
#include <exception>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

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

// The text a call threw, built or fixed alike; an exception keeps its tag.
inline std::string thrown_text(const std::function<void()>& f) {
    const std::string t = thrown(f);
    for (const char* tag : {"string: ", "literal: "})
        if (t.rfind(tag, 0) == 0)
            return t.substr(std::string(tag).size());
    return t == "nothing thrown" ? "(nothing thrown)" : t;
}

// Variables in columns under their names in the first row.
inline CellMatrix table_with_header(const std::vector<std::string>& names,
                                    const std::vector<std::vector<double>>& rows) {
    CellMatrix t(rows.size() + 1, names.size());
    for (std::size_t j = 0; j < names.size(); ++j)
        t(0, j) = names[j];
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t j = 0; j < names.size(); ++j)
            t(i + 1, j) = rows[i][j];
    return t;
}

// A column under its name; NAN stands for an empty cell.
inline CellMatrix column(const std::string& name, const std::vector<double>& values) {
    CellMatrix t(values.size() + 1, 1);
    t(0, 0) = name;
    for (std::size_t i = 0; i < values.size(); ++i)
        if (!std::isnan(values[i]))
            t(i + 1, 0) = values[i];
    return t;
}

// Solves A z = b by Gaussian elimination in long double, independently of the
// library's sweep and inverse.
inline std::vector<long double> solve(std::vector<std::vector<long double>> a,
                                      std::vector<long double> b) {
    const std::size_t n = b.size();
    for (std::size_t c = 0; c < n; ++c) {
        std::size_t best = c;
        for (std::size_t r = c + 1; r < n; ++r)
            if (std::fabs(a[r][c]) > std::fabs(a[best][c]))
                best = r;
        std::swap(a[c], a[best]);
        std::swap(b[c], b[best]);
        for (std::size_t r = c + 1; r < n; ++r) {
            const long double f = a[r][c] / a[c][c];
            for (std::size_t j = c; j < n; ++j)
                a[r][j] -= f * a[c][j];
            b[r] -= f * b[c];
        }
    }
    std::vector<long double> z(n);
    for (std::size_t i = n; i-- > 0;) {
        long double s = b[i];
        for (std::size_t j = i + 1; j < n; ++j)
            s -= a[i][j] * z[j];
        z[i] = s / a[i][i];
    }
    return z;
}

}  // namespace zentable::testing
