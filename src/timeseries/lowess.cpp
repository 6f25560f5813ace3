#include "timeseries/lowess.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <vector>

#include "regression/weighted_regression.hpp"
#include "timeseries/series.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr const char* kDegree =
    "Input d for degree of local polynomials must be 0 or a positive integer";
constexpr const char* kFraction = "Input fraction must be a number between 0 and 1";

// Points sorted by x, ties in input order, with the powers of x that the
// local polynomial regresses on.
struct SortedPoints {
    dvec x, y;
    dmat powers;  // x, x^2, ..., x^degree per point, for degrees above 1
};

SortedPoints sort_points(const dvec& x, const dvec& y, int degree) {
    std::vector<std::size_t> order(x.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return x[a] < x[b]; });
    SortedPoints s;
    s.x.reserve(x.size());
    s.y.reserve(x.size());
    for (std::size_t i : order) {
        s.x.push_back(x[i]);
        s.y.push_back(y[i]);
    }
    if (degree > 1) {
        s.powers.assign(x.size(), dvec(static_cast<std::size_t>(degree)));
        for (std::size_t i = 0; i < x.size(); ++i) {
            double power = 1.0;
            for (int k = 0; k < degree; ++k)
                s.powers[i][static_cast<std::size_t>(k)] = power *= s.x[i];
        }
    }
    return s;
}

struct Window {
    std::size_t begin, end;
    double h;
};

// Narrows all points down to q by dropping the farther end, the right end on
// a tie.
Window nearest(const dvec& xs, double x0, std::size_t q) {
    std::size_t begin = 0, end = xs.size();
    while (end - begin > q) {
        if (std::fabs(xs[begin] - x0) > std::fabs(xs[end - 1] - x0))
            ++begin;
        else
            --end;
    }
    return {begin, end, std::max(std::fabs(xs[begin] - x0), std::fabs(xs[end - 1] - x0))};
}

double weighted_mean(const SortedPoints& s, const dvec& w, const Window& win) {
    double sum_w = 0.0, sum_wy = 0.0;
    for (std::size_t i = win.begin; i < win.end; ++i) {
        sum_w += w[i];
        sum_wy += w[i] * s.y[i];
    }
    return sum_wy / sum_w;
}

double tricube_weight(double x, double x0, double h) {
    const double d = std::fabs(x - x0);
    const double u = d / h;
    const double v = 1.0 - u * u * u;
    return d >= h ? 0.0 : v * v * v;
}

// The fitted polynomial at x0 from the window's moments; weight on one x
// alone leaves no slope to fit, but the level is still known.
double local_value(const SortedPoints& s, const dvec& w, const Window& win, const Moments& m,
                   int degree, double x0) {
    if (m.x_sd[0] == 0.0)
        return weighted_mean(s, w, win);
    const RegressionFit fit = fit_from_moments(m, static_cast<int>(win.end - win.begin), dvec{});
    double value = fit.coefs[static_cast<std::size_t>(degree)];
    double power = 1.0;
    for (int k = 0; k < degree; ++k)
        value += fit.coefs[static_cast<std::size_t>(k)] * (power *= x0);
    return value;
}

// Values far from overflow: a weight of 0 times a deviation stays 0.
bool moderate(const dvec& v) {
    for (double a : v)
        if (!(std::fabs(a) <= 1e150))
            return false;
    return true;
}

// Local lines at four neighbouring x0 at a time over the span of their
// windows, each lane weighing 0 outside its own window; the same numbers as
// one window at a time, in a fraction of the time.
void smooth_lines_in_lanes(const SortedPoints& s, const dvec& at, std::size_t q, dvec& out) {
    std::vector<std::size_t> order(at.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return at[a] < at[b]; });
    constexpr std::size_t kLanes = 4;
    std::array<dvec, kLanes> lane_weights;
    dvec window_weights(s.x.size(), 0.0);
    for (std::size_t g = 0; g < order.size(); g += kLanes) {
        const std::size_t used = std::min(kLanes, order.size() - g);
        std::array<Window, kLanes> win{};
        std::size_t begin = s.x.size(), end = 0;
        for (std::size_t k = 0; k < used; ++k) {
            win[k] = nearest(s.x, at[order[g + k]], q);
            begin = std::min(begin, win[k].begin);
            end = std::max(end, win[k].end);
        }
        std::array<const double*, kLanes> weights{};
        for (std::size_t k = 0; k < kLanes; ++k) {
            dvec& lw = lane_weights[k];
            lw.assign(end - begin, 0.0);
            if (k < used) {
                const double x0 = at[order[g + k]];
                for (std::size_t i = win[k].begin; i < win[k].end; ++i)
                    lw[i - begin] = tricube_weight(s.x[i], x0, win[k].h);
            }
            weights[k] = lw.data();
        }
        const std::array<Moments, kLanes> m = weighted_line_moments(s.x, s.y, weights, begin, end);
        for (std::size_t k = 0; k < used; ++k) {
            const double x0 = at[order[g + k]];
            if (m[k].x_sd[0] == 0.0) {
                for (std::size_t i = win[k].begin; i < win[k].end; ++i)
                    window_weights[i] = lane_weights[k][i - begin];
            }
            out[order[g + k]] = local_value(s, window_weights, win[k], m[k], 1, x0);
        }
    }
}

}  // namespace

dvec lowess_smooth(const dvec& x, const dvec& y, const dvec& at, double fraction, int degree) {
    const SortedPoints s = sort_points(x, y, degree);
    const std::size_t n = s.x.size();
    const std::size_t q = std::max<std::size_t>(
        static_cast<std::size_t>(std::ceil(fraction * static_cast<double>(n))), 1);
    dvec out(at.size());
    if (degree == 1 && moderate(s.x) && moderate(s.y)) {
        smooth_lines_in_lanes(s, at, q, out);
        return out;
    }
    dvec w(n, 0.0);
    for (std::size_t j = 0; j < at.size(); ++j) {
        const double x0 = at[j];
        const Window win = nearest(s.x, x0, q);
        for (std::size_t i = win.begin; i < win.end; ++i)
            w[i] = tricube_weight(s.x[i], x0, win.h);
        if (degree == 0) {
            out[j] = weighted_mean(s, w, win);
            continue;
        }
        const Moments m = degree == 1 ? weighted_line_moments(s.x, s.y, w, win.begin, win.end)
                                      : weighted_moments(s.powers, s.y, w, win.begin, win.end);
        out[j] = local_value(s, w, win, m, degree, x0);
    }
    return out;
}

CellMatrix lowess(const CellMatrix& x, const CellMatrix& y, const CellMatrix& xForSmoothing,
                  const CellMatrix& fraction, const CellMatrix& degree) {
    const SeriesPair pair = read_series_pair(x, series_texts("x"), y, series_texts("y"),
                                             "The sizes of x and y must be equal");
    dvec at = pair.x.values;
    if (!is_omitted(xForSmoothing))
        at = read_series(xForSmoothing, series_texts("xForSmoothing")).values;
    double share = 0.6666666666666666;
    read_double(fraction, kFraction, share);
    if (!(share > 0.0 && share <= 1.0))
        throw kFraction;
    int d = 1;
    read_int(degree, kDegree, d);
    if (d < 0)
        throw kDegree;

    const dvec smoothed = lowess_smooth(pair.x.values, pair.y.values, at, share, d);
    CellMatrix r(at.size() + 1, 2);
    r(0, 0) = pair.x.name;
    r(0, 1) = pair.y.name + " Smoothed";
    for (std::size_t i = 0; i < at.size(); ++i) {
        r(i + 1, 0) = at[i];
        r(i + 1, 1) = smoothed[i];
    }
    return r;
}

}  // namespace zentable
