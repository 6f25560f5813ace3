#include "numeric/matrix_reshape.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string>

#include "numeric/matrix_cells.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

// true for ROW, false for COL (the default).
bool read_by_row(const CellMatrix& byRowOrCol) {
    constexpr const char* kMessage = "Input byRowOrCol must be ROW or COL";
    std::string order = "COL";
    read_text(byRowOrCol, kMessage, order);
    order = trim(order);
    std::transform(order.begin(), order.end(), order.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (order != "ROW" && order != "COL")
        throw kMessage;
    return order == "ROW";
}

double read_positive_count(const CellMatrix& table, const char* message) {
    double n = 0.0;
    read_double_required(table, message, n);
    if (!(n >= 1.0) || std::floor(n) != n)
        throw message;
    return n;
}

// The text of x as a fraction, or false when no denominator up to the search's
// end makes it exact.
bool as_fraction(double x, std::string& text) {
    const bool negative = x < 0.0;
    const double a = std::fabs(x);
    const double whole = std::floor(a);
    const double f = a - whole;
    if (f <= kZeroTolerance)
        return false;
    double c = 200.0;
    for (double d = 2.0; c <= 100000000.0; d += 1.0, c += 100.0) {
        const double t = f * d;
        const double n = std::round(t);
        if (std::fabs(t - n) <= 0.5 * kZeroTolerance * std::max(1.0, c)) {
            text = (negative ? "-" : "") + number_to_text(d * whole + n) + "/" + number_to_text(d);
            return true;
        }
    }
    return false;
}

}  // namespace

CellMatrix matrix_from_vector(const CellMatrix& vector, const CellMatrix& numRows,
                              const CellMatrix& numCols, const CellMatrix& byRowOrCol) {
    if (is_omitted(vector))
        throw "Input vector is empty";
    if (vector.RowsInStructure() != 1 && vector.ColumnsInStructure() != 1)
        throw "Input vector must be in one row or one column";
    const double rows = read_positive_count(numRows, "Input numRows must be a positive integer");
    const double columns = read_positive_count(numCols, "Input numCols must be a positive integer");
    const bool by_row = read_by_row(byRowOrCol);
    check_result_size(rows, columns);
    dvec v;
    for (const dvec& row : read_numeric_matrix(vector))
        v.insert(v.end(), row.begin(), row.end());
    const std::size_t m = static_cast<std::size_t>(rows);
    const std::size_t n = static_cast<std::size_t>(columns);
    // Cells beyond the vector's end stay empty.
    CellMatrix r(m, n);
    for (std::size_t k = 0; k < v.size() && k < m * n; ++k) {
        if (by_row)
            r(k / n, k % n) = v[k];
        else
            r(k % m, k / m) = v[k];
    }
    return r;
}

CellMatrix matrix_to_vector(const CellMatrix& matrix, const CellMatrix& byRowOrCol) {
    if (is_omitted(matrix))
        throw "Input matrix is empty";
    const bool by_row = read_by_row(byRowOrCol);
    const std::size_t m = matrix.RowsInStructure();
    const std::size_t n = matrix.ColumnsInStructure();
    check_result_size(static_cast<double>(m) * static_cast<double>(n), 1.0);
    const dmat a = read_numeric_matrix(matrix);
    CellMatrix r(m * n, 1);
    for (std::size_t k = 0; k < m * n; ++k)
        r(k, 0) = by_row ? a[k / n][k % n] : a[k % m][k / m];
    return r;
}

CellMatrix matrix_decimal_to_fraction(const CellMatrix& matrix) {
    if (is_omitted(matrix))
        throw "Input matrix is empty";
    const dmat a = read_numeric_matrix(matrix);
    CellMatrix r(a.size(), columns_of(a));
    std::string text;
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t j = 0; j < a[i].size(); ++j) {
            if (as_fraction(a[i][j], text))
                r(i, j) = text;
            else
                r(i, j) = a[i][j];
        }
    return r;
}

}  // namespace zentable
