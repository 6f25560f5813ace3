#pragma once

#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "xlw/cell_matrix.hpp"

namespace zentable::testing {

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

// The text a call threw, as a built or a fixed text.
inline std::string thrown_text(const std::function<void()>& f) {
    try {
        f();
    } catch (const std::string& s) {
        return s;
    } catch (const char* s) {
        return s;
    }
    return "(nothing thrown)";
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
