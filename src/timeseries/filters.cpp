#include "timeseries/filters.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <string>
#include <vector>

#include "numeric/decompositions.hpp"
#include "timeseries/series.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr const char* kLambda = "Input lambda must be a non-negative number";
constexpr const char* kN = "Input n must be a positive integer";
constexpr const char* kLag = "Input lag must be a positive integer";
constexpr const char* kOrder = "Input order must be a positive integer";
constexpr const char* kNumPoints = "Input numPoints must be a positive integer larger than 1";
constexpr const char* kNumStdDev = "Input numStdDev must be a positve number";

CellMatrix one_column(const std::string& head, const dvec& values) {
    CellMatrix r(values.size() + 1, 1);
    r(0, 0) = head;
    for (std::size_t i = 0; i < values.size(); ++i)
        r(i + 1, 0) = values[i];
    return r;
}

int read_positive(const CellMatrix& table, const char* message, int value) {
    read_int(table, message, value);
    if (value < 1)
        throw message;
    return value;
}

// The numbers of a line without a header, in a row or a column.
dvec read_bare_line(const CellMatrix& table) {
    if (is_omitted(table))
        throw "there is no input data for x";
    const std::size_t rows = table.RowsInStructure();
    const std::size_t columns = table.ColumnsInStructure();
    if (rows != 1 && columns != 1)
        throw "Input data for x must be in one row or one column";
    dvec out;
    for (std::size_t i = 0; i < rows * columns; ++i) {
        const CellValue& cell = rows == 1 ? table(0, i) : table(i, 0);
        if (cell.IsANumber())
            out.push_back(cell.NumericValue());
    }
    if (out.empty())
        throw "there is no input data for x";
    return out;
}

}  // namespace

dvec hp_trend(const dvec& x, double lambda) {
    const std::size_t n = x.size();
    // Fewer than three points have no second difference to penalise.
    if (n < 3)
        return x;
    // K'K counts each second-difference row (1, -2, 1) where it covers a
    // point: 1, 5, 6, ..., 6, 5, 1 on the diagonal (1, 4, 1 for three points),
    // -2, -4, ..., -4, -2 beside it, and 1 two away.
    const std::size_t last_row = n - 3;
    auto diagonal_count = [&](std::size_t i) {
        int c = 0;
        for (std::size_t r = i >= 2 ? i - 2 : 0; r <= std::min(i, last_row); ++r)
            c += r + 1 == i ? 4 : 1;
        return c;
    };
    auto off_count = [&](std::size_t i) { return (i >= 1 ? 1 : 0) + (i <= last_row ? 1 : 0); };
    dvec diagonal = huge_page_vector(n, 0.0);
    dvec off1 = huge_page_vector(n - 1, 0.0);
    const dvec off2 = huge_page_vector(n - 2, lambda);
    for (std::size_t i = 0; i < n; ++i)
        diagonal[i] = 1 + lambda * diagonal_count(i);
    for (std::size_t i = 0; i + 1 < n; ++i)
        off1[i] = lambda * (-2 * off_count(i));
    dvec trend;
    try {
        trend = pentagonalMatrixSolver(off2, off1, diagonal, off1, off2, x);
    } catch (...) {
        throw "HP_filter failed";
    }
    for (double t : trend)
        if (!std::isfinite(t))
            throw "HP_filter failed";
    return trend;
}

CellMatrix HP_filter(const CellMatrix& x, const CellMatrix& lambda) {
    const Series s =
        read_series(x, {"there is no input data for x", "Input data for x must be in one column",
                        "Header for variable name must be a string"});
    double l = 0.0;
    read_double_required(lambda, kLambda, l);
    if (!(l >= 0.0) || std::isinf(l))
        throw kLambda;
    const dvec trend = hp_trend(s.values, l);
    CellMatrix r(trend.size() + 1, 2);
    r(0, 0) = "Trend";
    r(0, 1) = "Cycle";
    for (std::size_t i = 0; i < trend.size(); ++i) {
        r(i + 1, 0) = trend[i];
        r(i + 1, 1) = s.values[i] - trend[i];
    }
    return r;
}

CellMatrix ts_sma(const CellMatrix& x, const CellMatrix& n) {
    const Series s = read_series(x, series_texts("x"));
    int width = 0;
    read_int_required(n, kN, width);
    if (width < 1)
        throw kN;
    const std::size_t w = static_cast<std::size_t>(width);
    dvec means;
    for (std::size_t t = w - 1; t < s.values.size(); ++t) {
        double sum = 0.0;
        for (std::size_t i = t + 1 - w; i <= t; ++i)
            sum += s.values[i];
        means.push_back(sum / width);
    }
    return one_column("Average(" + std::to_string(width) + ")", means);
}

CellMatrix ts_diff(const CellMatrix& x, const CellMatrix& lag, const CellMatrix& order) {
    const Series s = read_series(x, series_texts("x"));
    const int l = read_positive(lag, kLag, 1);
    const int k = read_positive(order, kOrder, 1);
    dvec v = s.values;
    const std::size_t step = static_cast<std::size_t>(l);
    for (int round = 0; round < k && !v.empty(); ++round) {
        if (v.size() <= step) {
            v.clear();
            break;
        }
        dvec next(v.size() - step);
        for (std::size_t t = step; t < v.size(); ++t)
            next[t - step] = v[t] - v[t - step];
        v = std::move(next);
    }
    return one_column("diff(" + std::to_string(l) + "," + std::to_string(k) + ")", v);
}

NaturalSpline natural_spline(const dvec& x_knots, const dvec& y_knots) {
    std::vector<std::size_t> order(x_knots.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return x_knots[a] < x_knots[b]; });
    NaturalSpline s;
    for (std::size_t i : order) {
        s.x.push_back(x_knots[i]);
        s.y.push_back(y_knots[i]);
    }
    const std::size_t n = s.x.size();
    s.c.assign(n, 0.0);
    if (n < 2) {
        s.b.assign(n, 0.0);
        s.d.assign(n, 0.0);
        return s;
    }
    dvec h(n - 1);
    for (std::size_t i = 0; i + 1 < n; ++i)
        h[i] = s.x[i + 1] - s.x[i];
    if (n > 2) {
        const std::size_t m = n - 2;  // the inner knots; the ends stay 0
        dvec lower(m - 1), diagonal(m), upper(m - 1), rhs(m);
        for (std::size_t i = 1; i + 1 < n; ++i) {
            const std::size_t row = i - 1;
            diagonal[row] = 2 * (h[i - 1] + h[i]);
            if (row > 0)
                lower[row - 1] = h[i - 1];
            if (row + 1 < m)
                upper[row] = h[i];
            rhs[row] = 3 * (s.y[i + 1] - s.y[i]) / h[i] - 3 * (s.y[i] - s.y[i - 1]) / h[i - 1];
        }
        const dvec inner = tridiagonalMatrixSolver(lower, diagonal, upper, rhs);
        std::copy(inner.begin(), inner.end(), s.c.begin() + 1);
    }
    s.b.assign(n - 1, 0.0);
    s.d.assign(n - 1, 0.0);
    for (std::size_t i = 0; i + 1 < n; ++i) {
        s.b[i] = (s.y[i + 1] - s.y[i]) / h[i] - (s.c[i + 1] + 2 * s.c[i]) * h[i] / 3;
        s.d[i] = (s.c[i + 1] - s.c[i]) / (3 * h[i]);
    }
    return s;
}

double NaturalSpline::operator()(double t) const {
    if (x.size() < 2)
        return y[0];
    // Outside the knots the end interval's cubic goes on.
    const std::size_t above =
        static_cast<std::size_t>(std::upper_bound(x.begin(), x.end(), t) - x.begin());
    const std::size_t i = std::min(above == 0 ? 0 : above - 1, x.size() - 2);
    const double u = t - x[i];
    return y[i] + u * (b[i] + u * (c[i] + u * d[i]));
}

CellMatrix natural_cubic_spline(const CellMatrix& xKnots, const CellMatrix& yKnots,
                                const CellMatrix& x) {
    const SeriesPair knots =
        read_series_pair(xKnots, series_texts("xKnots"), yKnots, series_texts("yKnots"),
                         "The sizes of xKnots and yKnots must be equal");
    const Series at = read_series(x, series_texts("x"));
    const NaturalSpline spline = natural_spline(knots.x.values, knots.y.values);
    CellMatrix r(at.values.size() + 1, 2);
    r(0, 0) = at.name;
    r(0, 1) = "Splined Value";
    for (std::size_t i = 0; i < at.values.size(); ++i) {
        r(i + 1, 0) = at.values[i];
        r(i + 1, 1) = spline(at.values[i]);
    }
    return r;
}

CellMatrix detect_outlier(const CellMatrix& x, const CellMatrix& numPoints,
                          const CellMatrix& numStdDev) {
    const dvec v = read_bare_line(x);
    int window = 0;
    read_int_required(numPoints, kNumPoints, window);
    if (window <= 1)
        throw kNumPoints;
    double limit = 0.0;
    read_double_required(numStdDev, kNumStdDev, limit);
    if (!(limit > 0.0))
        throw kNumStdDev;

    const std::size_t w = static_cast<std::size_t>(window);
    CellMatrix r(v.size() + 1, 4);
    r(0, 0) = "x";
    r(0, 1) = "Mean";
    r(0, 2) = "Std Dev";
    r(0, 3) = "Outlier";
    for (std::size_t t = 0; t < v.size(); ++t) {
        r(t + 1, 0) = v[t];
        if (t < w)
            continue;
        // The sample deviation from the two-pass sums, as the univariate report takes it.
        double sum = 0.0;
        for (std::size_t i = t - w; i < t; ++i)
            sum += v[i];
        const double mean = sum / window;
        double squares = 0.0;
        for (std::size_t i = t - w; i < t; ++i)
            squares += (v[i] - mean) * (v[i] - mean);
        const double sd = std::sqrt(squares / (window - 1));
        r(t + 1, 1) = mean;
        r(t + 1, 2) = sd;
        r(t + 1, 3) = std::fabs(v[t] - mean) > limit * sd;
    }
    return r;
}

}  // namespace zentable
