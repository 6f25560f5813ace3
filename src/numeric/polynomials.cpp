#include "numeric/polynomials.hpp"

#include <cmath>
#include <string>

#include "numeric/matrix_cells.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

dvec read_coefficients(const CellMatrix& table, const char* message) {
    if (table.RowsInStructure() != 1 && table.ColumnsInStructure() != 1)
        throw message;
    dvec out;
    read_double_vector(table, message, out);
    return out;
}

dvec read_column(const CellMatrix& table, const char* message) {
    if (table.ColumnsInStructure() != 1)
        throw message;
    dvec out;
    read_double_vector(table, message, out);
    return out;
}

CellMatrix coefficient_rows(const dvec& c, std::size_t top, std::size_t rows_above) {
    check_result_size(static_cast<double>(c.size() + rows_above + 1), 2.0);
    CellMatrix r(rows_above + 1 + c.size(), 2);
    r(top, 0) = "Power";
    r(top, 1) = "Coefficient";
    for (std::size_t k = 0; k < c.size(); ++k) {
        r(top + 1 + k, 0) = static_cast<double>(k);
        r(top + 1 + k, 1) = c[k];
    }
    return r;
}

// "c0 + c1*x + c2*x^2", zero terms left out, numbers at 16 digits.
std::string polynomial_text(const dvec& c) {
    std::string text;
    for (std::size_t k = 0; k < c.size(); ++k) {
        if (c[k] == 0.0)
            continue;
        const double size = std::fabs(c[k]);
        if (text.empty())
            text = c[k] < 0.0 ? "-" : "";
        else
            text += c[k] < 0.0 ? " - " : " + ";
        text += number_to_text(size);
        if (k == 1)
            text += "*x";
        else if (k > 1)
            text += "*x^" + std::to_string(k);
    }
    return text.empty() ? "0" : text;
}

double read_moment(const CellMatrix& table, const char* message) {
    double value = 0.0;
    read_double_required(table, message, value);
    return value;
}

}  // namespace

cvec polynomial_roots(const dvec& coefficients) {
    std::size_t size = coefficients.size();
    while (size > 0 && std::fabs(coefficients[size - 1]) < kRankTolerance)
        --size;
    if (size == 0)
        throw "All coefficients are 0";
    if (size == 1)
        throw "Only have constant coefficient";
    const std::size_t n = size - 1;
    const double leading = coefficients[n];
    // First row -c[n-1]/c[n] ... -c[0]/c[n], ones below the diagonal.
    dmat companion(n, dvec(n, 0.0));
    for (std::size_t j = 0; j < n; ++j)
        companion[0][j] = -coefficients[n - 1 - j] / leading;
    for (std::size_t i = 1; i < n; ++i)
        companion[i][i - 1] = 1.0;
    try {
        return general_eigen(companion).values;
    } catch (const char*) {
        throw "Finding roots failed";
    }
}

dvec lagrange_coefficients(const dvec& x, const dvec& y) {
    const std::size_t n = x.size();
    dvec sum(n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        dvec term{1.0};
        double denominator = 1.0;
        for (std::size_t j = 0; j < n; ++j) {
            if (j == i)
                continue;
            term = poly_mul(term, {-x[j], 1.0});
            denominator *= x[i] - x[j];
        }
        const double factor = y[i] / denominator;
        for (std::size_t k = 0; k < n; ++k)
            sum[k] += factor * term[k];
    }
    return sum;
}

ShiftedLognormal match_shifted_lognormal(double m1, double m2, double m3) {
    const double v = m2 - m1 * m1;
    const double u = m3 - 3.0 * m1 * m2 + 2.0 * m1 * m1 * m1;
    const double b = -u * u / (v * v * v);
    // y^3 - 3 y^2 + b = 0 in closed form, with a = -3.
    const double a = -3.0;
    const double q = a * a / 9.0;
    const double r = a * a * a / 27.0 + b / 2.0;
    const double t = std::pow(std::sqrt(r * r - q * q * q) - r, 0.3333333333333333);
    double y = t - a / 3.0;
    if (std::fabs(t) > kZeroTolerance)
        y += q / t;
    ShiftedLognormal out{};
    out.sigma = std::sqrt(std::log(y - 2.0));
    out.mu = std::sqrt(v / (y - 3.0));
    out.shift = m1 - out.mu;
    return out;
}

CellMatrix poly_roots(const CellMatrix& coefs) {
    const cvec roots =
        polynomial_roots(read_coefficients(coefs, "Input coefficients must be numbers"));
    CellMatrix r(roots.size() + 2, 3);
    r(0, 0) = "Roots";
    r(1, 1) = "Real";
    r(1, 2) = "Imag";
    for (std::size_t k = 0; k < roots.size(); ++k) {
        r(k + 2, 0) = static_cast<double>(k + 1);
        r(k + 2, 1) = roots[k].real();
        r(k + 2, 2) = roots[k].imag();
    }
    return r;
}

CellMatrix poly_prod(const CellMatrix& a, const CellMatrix& b) {
    const dvec u = read_coefficients(a, "Input coefficients a must be numbers");
    const dvec v = read_coefficients(b, "Input coefficients b must be numbers");
    return coefficient_rows(poly_mul(u, v), 0, 0);
}

CellMatrix Lagrange_interpolation(const CellMatrix& x, const CellMatrix& y) {
    const dvec xs = read_column(x, "Input x must be in one column");
    const dvec ys = read_column(y, "Input y must be in one column");
    if (xs.size() != ys.size())
        throw "The size of input x must be the same as the size of input y";
    for (std::size_t i = 0; i < xs.size(); ++i)
        for (std::size_t j = i + 1; j < xs.size(); ++j)
            if (xs[i] == xs[j])
                throw "The values of input x must be distinct";
    const dvec c = lagrange_coefficients(xs, ys);
    // The title, the polynomial's text, a blank row, then its coefficients.
    CellMatrix r = coefficient_rows(c, 3, 3);
    r(0, 0) = "Lagrange Interpolation";
    r(1, 0) = "Polynomial";
    r(1, 1) = polynomial_text(c);
    return r;
}

CellMatrix three_moment_match_to_SLN(const CellMatrix& m1, const CellMatrix& m2,
                                     const CellMatrix& m3) {
    const ShiftedLognormal s =
        match_shifted_lognormal(read_moment(m1, "Input first moment m1 must be a number"),
                                read_moment(m2, "Input second moment m2 must be a number"),
                                read_moment(m3, "Input third moment m3 must be a number"));
    CellMatrix r(4, 2);
    r(0, 0) = "Parameters of a Shifted Lognormal Distribution";
    r(1, 0) = "Mu";
    r(1, 1) = s.mu;
    r(2, 0) = "Sigma";
    r(2, 1) = s.sigma;
    r(3, 0) = "Shift";
    r(3, 1) = s.shift;
    return r;
}

}  // namespace zentable
