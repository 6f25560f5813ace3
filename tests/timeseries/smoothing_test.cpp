#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "../support/tables.hpp"
#include "regression/weighted_regression.hpp"
#include "timeseries/holt_winters.hpp"
#include "timeseries/lowess.hpp"
#include "timeseries/nelder_mead.hpp"

namespace zentable {
namespace {

using testing::column;
using testing::thrown_text;

const CellMatrix omitted(1, 1);

CellMatrix number(double v) {
    CellMatrix t(1, 1);
    t(0, 0) = v;
    return t;
}

// A valley with its floor at (1, -2) and unequal walls; one start at 0
// takes the 0.05 step. A surface that is infinite everywhere never closes.
TEST(NelderMead, FindsAKnownMinimumAndSaysWhenItStopsUnclosed) {
    const Objective bowl = [](const dvec& p) {
        return 3.0 + (p[0] - 1) * (p[0] - 1) + 10 * (p[1] + 2) * (p[1] + 2);
    };
    const SimplexResult r = nelder_mead(bowl, {0.0, 0.5});
    EXPECT_TRUE(r.converged);
    EXPECT_NEAR(r.point[0], 1.0, 1e-3);
    EXPECT_NEAR(r.point[1], -2.0, 1e-3);
    EXPECT_NEAR(r.value, 3.0, 1e-7);

    const SimplexResult flat_out = nelder_mead([](const dvec&) { return HUGE_VAL; }, {0.3, 0.1});
    EXPECT_FALSE(flat_out.converged);
    EXPECT_EQ(flat_out.rounds, 10000);
}

dvec column_values(const CellMatrix& t, std::size_t column, std::size_t from, std::size_t to) {
    dvec out;
    for (std::size_t i = from; i < to; ++i)
        out.push_back(t(i, column).NumericValue());
    return out;
}

// R's HoltWinters(x, beta = FALSE, gamma = FALSE) optimum on these 20 points:
// alpha 0.12319154556225628, SSE 218.13640745910297 (R 4.2.2, Debian's
// r-base-core). The simplex stops on values within 1e-08 of each other, so
// the fit may sit that far above the optimum, and alpha about 1e-3 from it.
TEST(HoltWinters, TypeOneFitMatchesROptimum) {
    const dvec x{12.1, 9.8, 14.3, 7.6,  13.5, 11.2, 15.9, 8.4,  14.8, 12.0,
                 17.1, 9.9, 15.6, 13.4, 18.2, 10.7, 17.0, 14.1, 19.8, 11.5};
    const CellMatrix r =
        Holt_Winters(column("x", x), number(1), number(1), number(0), omitted, omitted);
    EXPECT_EQ(r(0, 0).StringValue(), "Estimated parameters of Holt_Winters model");
    EXPECT_EQ(r(1, 0).StringValue(), "Alpha");
    EXPECT_EQ(r(2, 0).StringValue(), "MSE");
    const double sse = r(2, 1).NumericValue() * 19;
    EXPECT_LE(sse, 218.13640745910297 * (1 + 1e-8));
    EXPECT_NEAR(r(1, 1).NumericValue(), 0.12319154556225628, 1e-3);
}

// A linear trend with an additive season of four and a little noise of
// period three; the next two seasons follow the noiseless truth to within
// twice the noise.
TEST(HoltWinters, TypeThreeFitForecastsAKnownSeason) {
    const double season[] = {3, -1, -4, 2};
    auto truth = [&](int t) { return 20 + 0.5 * t + season[t % 4]; };
    dvec x;
    for (int t = 0; t < 24; ++t)
        x.push_back(truth(t) + (t % 3 == 0 ? 0.3 : -0.2));
    const CellMatrix r =
        Holt_Winters(column("x", x), number(3), number(4), number(8), omitted, omitted);
    EXPECT_EQ(r(3, 0).StringValue(), "Gamma");
    const std::size_t first_forecast = 7 + 24;
    const dvec forecasts = column_values(r, 1, first_forecast, first_forecast + 8);
    for (int h = 0; h < 8; ++h)
        EXPECT_NEAR(forecasts[static_cast<std::size_t>(h)], truth(24 + h), 0.6) << "step " << h;
}

TEST(HoltWinters, SmoothingRefusesAnUnknownType) {
    HoltWintersStart start;
    start.type = 4;
    EXPECT_EQ(thrown_text([&] {
                  holt_winters_smooth({1, 2}, {true, true}, {0.5}, start, 0);
              }),
              "type must be 1, 2, or 3 in Holt_Winters()");
}

// The one-variable sums kept in registers against the general loops over
// several variables, whose first variable adds the same terms in the same
// order: equal bit for bit, on a window inside the records.
TEST(Lowess, LineMomentsEqualTheGeneralLoops) {
    dvec x, z, y, w;
    for (int i = 0; i < 50; ++i) {
        x.push_back(std::fmod(i * 3.7, 11.0) - 4.0);
        z.push_back(std::cos(i * 0.9));
        y.push_back(std::sin(i * 1.3) * 5.0 + 0.1 * i);
        w.push_back(i % 7 == 0 ? 0.0 : 0.5 + std::fmod(i * 0.37, 1.0));
    }
    dmat one, two;
    for (std::size_t i = 0; i < x.size(); ++i) {
        one.push_back({x[i]});
        two.push_back({x[i], z[i]});
    }
    const Moments line = weighted_line_moments(x, y, w, 7, 41);
    const Moments rows = weighted_moments(one, y, w, 7, 41);
    const Moments general = weighted_moments(two, y, w, 7, 41);
    for (const Moments* m : {&rows, &general}) {
        const double pairs[][2] = {{line.sum_weight, m->sum_weight},
                                   {line.x_mean[0], m->x_mean[0]},
                                   {line.y_mean, m->y_mean},
                                   {line.x_sd[0], m->x_sd[0]},
                                   {line.y_sd, m->y_sd},
                                   {line.corr_xy[0], m->corr_xy[0]}};
        for (const auto& pair : pairs)
            EXPECT_EQ(std::memcmp(&pair[0], &pair[1], sizeof(double)), 0)
                << pair[0] << " against " << pair[1];
    }
}

// The window's moments are taken in place; copying its rows and calling the
// weighted regression on them must give the same value bit for bit.
TEST(Lowess, InPlaceWindowEqualsTheRegressionOnCopiedRows) {
    dvec x, y;
    for (int i = 0; i < 40; ++i) {
        x.push_back(std::fmod(i * 7.31, 13.0));
        y.push_back(std::sin(x.back()) + 0.01 * i);
    }
    const dvec at{0.2, 3.3, 6.5, 12.9, x[5]};
    for (int degree : {1, 2}) {
        const dvec fast = lowess_smooth(x, y, at, 0.4, degree);
        dvec xs = x, ys = y;
        // Sorted as the smoother sorts, ties by input order (there are none).
        std::vector<std::size_t> order(x.size());
        for (std::size_t i = 0; i < order.size(); ++i)
            order[i] = i;
        std::stable_sort(order.begin(), order.end(),
                         [&](std::size_t a, std::size_t b) { return x[a] < x[b]; });
        for (std::size_t i = 0; i < order.size(); ++i) {
            xs[i] = x[order[i]];
            ys[i] = y[order[i]];
        }
        const std::size_t q = 16;  // ceil(0.4 * 40)
        for (std::size_t k = 0; k < at.size(); ++k) {
            const double x0 = at[k];
            std::size_t lo = 0, hi = xs.size();
            while (hi - lo > q)
                std::fabs(xs[lo] - x0) > std::fabs(xs[hi - 1] - x0) ? ++lo : --hi;
            const double h = std::max(std::fabs(xs[lo] - x0), std::fabs(xs[hi - 1] - x0));
            dmat rows;
            dvec wy, w;
            for (std::size_t i = lo; i < hi; ++i) {
                dvec row;
                double power = 1.0;
                for (int d = 0; d < degree; ++d)
                    row.push_back(power *= xs[i]);
                rows.push_back(row);
                wy.push_back(ys[i]);
                const double u = std::fabs(xs[i] - x0) / h;
                const double v = 1 - u * u * u;
                w.push_back(u >= 1 ? 0.0 : v * v * v);
            }
            const RegressionFit fit = fit_weighted_regression(rows, wy, w, {});
            double value = fit.coefs[static_cast<std::size_t>(degree)];
            double power = 1.0;
            for (int d = 0; d < degree; ++d)
                value += fit.coefs[static_cast<std::size_t>(d)] * (power *= x0);
            EXPECT_EQ(std::memcmp(&value, &fast[k], sizeof value), 0)
                << "degree " << degree << " at " << x0 << ": " << fast[k] << " against " << value;
        }
    }
}

}  // namespace
}  // namespace zentable
