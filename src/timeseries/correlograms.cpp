#include "timeseries/correlograms.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <thread>
#include <utility>

#include "timeseries/series.hpp"

namespace zentable {

namespace {

constexpr int kDefaultMaxLag = 10;

// Lags summed in one pass over the data. Each lag keeps its own accumulator,
// so its terms are added in the order of t as in a loop of its own, and the
// data are read once for the block instead of once per lag; the independent
// accumulators also let the additions of several lags overlap.
constexpr std::size_t kLagBlock = 16;
// Products below which a second thread costs more than it saves.
constexpr double kParallelWork = 1e7;

// The terms of lags k0 .. k0 + kLagBlock - 1 for the t that all of them
// share, then each lag's remaining t in order.
void lag_block(const dvec& a, const dvec& b, std::size_t k0, double* out) {
    const std::size_t n = a.size();
    double acc[kLagBlock] = {};
    const std::size_t last = k0 + kLagBlock - 1;
    const std::size_t shared = last < n ? n - last : 0;
    const double* pa = a.data();
    const double* pb = b.data() + k0;
    for (std::size_t t = 0; t < shared; ++t) {
        const double at = pa[t];
        for (std::size_t j = 0; j < kLagBlock; ++j) {
            acc[j] += at * pb[t + j];
        }
    }
    for (std::size_t j = 0; j < kLagBlock; ++j) {
        const std::size_t k = k0 + j;
        for (std::size_t t = shared; k < n && t < n - k; ++t) {
            acc[j] += a[t] * b[t + k];
        }
        out[j] = acc[j];
    }
}

CellMatrix correlogram(const CellMatrix& x, const CellMatrix& maxLag, const std::string& mode) {
    Series series = read_series(x, series_texts("x"));
    const int lags = read_max_lag(maxLag, kDefaultMaxLag);
    const bool acf = mode == "acf";
    // The table first: a maxLag too large for memory fails before any sum.
    CellMatrix table(static_cast<std::size_t>(lags) + (acf ? 2 : 1), 2);
    const dvec r = autocorrelations(std::move(series.values), lags);
    const dvec values = acf ? r : partial_autocorrelations(r, lags);
    const int first_lag = acf ? 0 : 1;

    table(0, 0) = "Lag";
    table(0, 1) = acf ? "ACF" : "PACF";
    for (std::size_t i = 0; i < values.size(); ++i) {
        table(i + 1, 0) = static_cast<double>(first_lag + static_cast<int>(i));
        table(i + 1, 1) = values[i];
    }
    return table;
}

double sum_of_squares(const dvec& d) {
    double s = 0.0;
    for (double v : d) {
        s += v * v;
    }
    return s;
}

}  // namespace

dvec deviations(dvec x) {
    double sum = 0.0;
    for (double v : x) {
        sum += v;
    }
    const double mean = sum / static_cast<double>(x.size());
    for (double& v : x) {
        v -= mean;
    }
    return x;
}

dvec lagged_products(const dvec& a, const dvec& b, int maxLag) {
    const std::size_t lags = static_cast<std::size_t>(maxLag) + 1;
    // Lags from the length of the series on have no terms and stay 0. The
    // blocks are whole: the lags past the last wanted one are dropped.
    const std::size_t summed = std::min(lags, a.size());
    const std::size_t blocks = (summed + kLagBlock - 1) / kLagBlock;
    dvec out(std::max(lags, blocks * kLagBlock), 0.0);
    auto run_blocks = [&](std::size_t first, std::size_t last) {
        for (std::size_t block = first; block < last; ++block) {
            lag_block(a, b, block * kLagBlock, &out[block * kLagBlock]);
        }
    };
    // The blocks are independent, so a second thread takes half of them.
    const double work = static_cast<double>(a.size()) * static_cast<double>(summed);
    if (blocks > 1 && work >= kParallelWork) {
        const std::size_t half = blocks / 2;
        std::thread second(run_blocks, half, blocks);
        run_blocks(0, half);
        second.join();
    } else {
        run_blocks(0, blocks);
    }
    out.resize(lags);
    return out;
}

dvec autocorrelations(dvec x, int maxLag) {
    const dvec d = deviations(std::move(x));
    dvec c = lagged_products(d, d, maxLag);
    const double c0 = c[0];
    for (double& v : c) {
        v /= c0;
    }
    c[0] = 1.0;
    return c;
}

dvec partial_autocorrelations(const dvec& r, int maxLag) {
    const std::size_t lags = static_cast<std::size_t>(maxLag);
    dvec pacf(lags);
    dvec phi(lags + 1, 0.0), previous(lags + 1, 0.0);  // phi[k][j] at index j
    for (std::size_t k = 1; k <= lags; ++k) {
        double num = 0.0, den = 0.0;
        for (std::size_t j = 1; j < k; ++j) {
            num += previous[j] * r[k - j];
            den += previous[j] * r[j];
        }
        const double kk = (r[k] - num) / (1.0 - den);
        for (std::size_t j = 1; j < k; ++j) {
            phi[j] = previous[j] - kk * previous[k - j];
        }
        phi[k] = kk;
        pacf[k - 1] = kk;
        std::swap(phi, previous);
    }
    return pacf;
}

CellMatrix ts_acf(const CellMatrix& x, const CellMatrix& maxLag) {
    return correlogram(x, maxLag, "acf");
}

CellMatrix ts_pacf(const CellMatrix& x, const CellMatrix& maxLag) {
    return correlogram(x, maxLag, "pacf");
}

CellMatrix ts_ccf(const CellMatrix& x, const CellMatrix& y, const CellMatrix& maxLag) {
    ColumnTexts x_texts = series_texts("x");
    x_texts.no_data = "There is no input data for x";
    SeriesPair pair = read_series_pair(x, x_texts, y, series_texts("y"),
                                       "Input data of x and y must have the same length");
    const int lags = read_max_lag(maxLag, kDefaultMaxLag);
    CellMatrix table(2 * static_cast<std::size_t>(lags) + 2, 2);
    const dvec dx = deviations(std::move(pair.x.values));
    const dvec dy = deviations(std::move(pair.y.values));
    const double norm = std::sqrt(sum_of_squares(dx) * sum_of_squares(dy));
    // x leads at positive lags: at lag -k, x[t] meets y[t - k], which is the
    // product y[s] x[s + k] summed over s in the same order.
    const dvec ahead = lagged_products(dx, dy, lags);
    const dvec behind = lagged_products(dy, dx, lags);

    table(0, 0) = "Lag";
    table(0, 1) = "CCF";
    std::size_t row = 1;
    for (int k = -lags; k <= lags; ++k, ++row) {
        const double sum =
            k < 0 ? behind[static_cast<std::size_t>(-k)] : ahead[static_cast<std::size_t>(k)];
        table(row, 0) = static_cast<double>(k);
        table(row, 1) = sum / norm;
    }
    return table;
}

}  // namespace zentable
