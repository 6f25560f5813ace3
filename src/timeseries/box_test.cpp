#include "timeseries/box_test.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string>

#include "numeric/distributions.hpp"
#include "timeseries/correlograms.hpp"
#include "timeseries/series.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr const char* kNumParams = "Input numParams must be a non-negative integer";
constexpr const char* kMethod = "Input method must be a string";

// True for Box-Ljung, false for Box-Pierce.
bool read_ljung(const CellMatrix& method) {
    std::string text = "BOX_LJUNG";
    if (!is_omitted(method)) {
        read_string(method, kMethod, text);
    }
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    for (const char* name : {"BOX-LJUNG", "BOX_LJUNG", "LJUNG-BOX", "LJUNG_BOX", "LJUNG"}) {
        if (text == name) {
            return true;
        }
    }
    for (const char* name : {"BOX-PIERCE", "BOX_PIERCE", "PIERCE-BOX", "PIERCE_BOX", "PIERCE"}) {
        if (text == name) {
            return false;
        }
    }
    throw "Input method must be either BOX_LJUNG or BOX_PIERCE";
}

}  // namespace

CellMatrix Box_white_noise_test(const CellMatrix& x, const CellMatrix& maxLag,
                                const CellMatrix& method, const CellMatrix& numParams) {
    const Series series = read_series(x, series_texts("x"));
    const int lags = read_max_lag(maxLag, 1);
    const std::size_t count = series.values.size();
    if (static_cast<std::size_t>(lags) >= count) {
        throw "Input maxLag must be less than the number of the data points";
    }
    int params = 0;
    if (!is_omitted(numParams)) {
        read_int(numParams, kNumParams, params);
    }
    if (params < 0) {
        throw kNumParams;
    }
    if (lags <= params) {
        throw "Input maxLag must be larger than numParams";
    }
    const bool ljung = read_ljung(method);

    const dvec r = autocorrelations(series.values, lags);
    const double n = static_cast<double>(count);
    double sum = 0.0;
    for (int k = 1; k <= lags; ++k) {
        const double r2 = r[static_cast<std::size_t>(k)] * r[static_cast<std::size_t>(k)];
        sum += ljung ? r2 / (n - k) : r2;
    }
    const double statistic = ljung ? n * (n + 2.0) * sum : n * sum;
    const int df = lags - params;
    // A constant series has no autocorrelations; its NaN is kept away from
    // the series and the continued fraction, which end the process on it.
    const double p_value = std::isnan(statistic) ? statistic : chi_square_upper(statistic, df);

    CellMatrix table(2, 4);
    table(0, 0) = ljung ? "Box-Ljung test" : "Box-Pierce test";
    table(0, 1) = "Chi-Square";
    table(0, 2) = "DF";
    table(0, 3) = "P-Value";
    table(1, 1) = statistic;
    table(1, 2) = df;
    table(1, 3) = p_value;
    return table;
}

}  // namespace zentable
