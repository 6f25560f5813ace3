#include "timeseries/holt_winters.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>

#include "timeseries/nelder_mead.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/headed_column.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kForce = "Input force must be 0 or 1";
constexpr const char* kExclude = "Input excludeList must be numbers";
constexpr const char* kTooFew = "The number of valid input x must be more than 1";
constexpr const char* kType = "Input type must be 1, 2, or 3";
constexpr const char* kFrequency = "Input frequency must be a positive integer";
constexpr const char* kForecastNotInteger = "Input numForecast must be a non-negative integer";
constexpr const char* kForecastNegative = "Input numForecast must be a non-negative integerr";
constexpr const char* kShortSeason =
    "Input x must have more than a complete season for Holt-Winters model with trend and "
    "seasonality";
constexpr const char* kAllInvalid =
    "Input x is all invalid in Holt-Winters model with trend and seasonality";
constexpr const char* kParamsMissing = "Input params is missing";
constexpr const char* kParamsCount = "Number of input params must be 1, 2, or 3";
constexpr const char* kInitialTrend = "Input initialTrend must be a number";
constexpr const char* kSeasonalIndices = "Input initialSeasonalIndices must be numbers";
constexpr const char* kInternalType = "type must be 1, 2, or 3 in Holt_Winters()";
// Outside the unit cube the objective stands far above any sum of squares,
// and still finite, so the simplex keeps comparing and walks back in.
constexpr double kOutside = 1.7976931348623158e+307;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Series {
    std::string name;
    const CellMatrix* cells = nullptr;  // the argument, for the echo of x
    dvec values;
    std::vector<bool> valid;
    std::size_t valid_count = 0;
};

Series read_x(const CellMatrix& x) {
    const ColumnTexts texts{"There is no input data for x",
                            "Input data for x must be in one column",
                            "Header for variable name of x must be a string"};
    const NamedVector column = read_headed_column(x, texts);
    return {column.name, &x, column.values, column.valid, 0};
}

// A value on the exclusion list is missing, as an empty cell is.
void apply_exclusions(const CellMatrix& excludeList, Series& series) {
    dvec excluded;
    read_double_vector_optional(excludeList, kExclude, excluded);
    for (std::size_t t = 0; t < series.values.size(); ++t) {
        if (series.valid[t] &&
            std::find(excluded.begin(), excluded.end(), series.values[t]) != excluded.end())
            series.valid[t] = false;
    }
    series.valid_count =
        static_cast<std::size_t>(std::count(series.valid.begin(), series.valid.end(), true));
    if (series.valid_count < 2)
        throw kTooFew;
}

int read_num_forecast(const CellMatrix& numForecast, int default_count) {
    double value = default_count;
    read_double(numForecast, kForecastNotInteger, value);
    if (value != std::floor(value) || !(std::fabs(value) < 2147483648.0))
        throw kForecastNotInteger;
    if (value < 0)
        throw kForecastNegative;
    return static_cast<int>(value);
}

std::size_t position(std::ptrdiff_t t, int f) {
    return static_cast<std::size_t>(((t % f) + f) % f);
}

// The initial trend: the mean over the first season of the per-step rises to
// the same position one season on, where both points are valid.
bool initial_trend(const Series& s, int f, double& trend) {
    double sum = 0.0;
    int count = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(f) && i + f < s.values.size(); ++i) {
        if (s.valid[i] && s.valid[i + f]) {
            sum += (s.values[i + f] - s.values[i]) / f;
            ++count;
        }
    }
    trend = count ? sum / count : 0.0;
    return count > 0;
}

// Each complete season is centred on its own mean; a position's index is the
// mean of its centred values over the seasons.
dvec initial_seasonal_indices(const Series& s, int f) {
    const std::size_t seasons = s.values.size() / static_cast<std::size_t>(f);
    dvec sum(static_cast<std::size_t>(f), 0.0);
    std::vector<int> count(static_cast<std::size_t>(f), 0);
    for (std::size_t k = 0; k < seasons; ++k) {
        const std::size_t first = k * static_cast<std::size_t>(f);
        double season_sum = 0.0;
        int season_count = 0;
        for (std::size_t j = 0; j < static_cast<std::size_t>(f); ++j) {
            if (s.valid[first + j]) {
                season_sum += s.values[first + j];
                ++season_count;
            }
        }
        if (season_count == 0)
            continue;
        const double mean = season_sum / season_count;
        for (std::size_t j = 0; j < static_cast<std::size_t>(f); ++j) {
            if (s.valid[first + j]) {
                sum[j] += s.values[first + j] - mean;
                ++count[j];
            }
        }
    }
    for (std::size_t j = 0; j < sum.size(); ++j) {
        if (count[j] == 0)
            throw kAllInvalid;
        sum[j] /= count[j];
    }
    return sum;
}

bool inside_unit_cube(const dvec& params) {
    for (double p : params)
        if (!(p >= 0.0 && p <= 1.0))
            return false;
    return true;
}

struct Fit {
    dvec params;
    HoltWintersStart start;
    bool stable = false;
};

Fit fit_type(const Series& s, int type, int f) {
    Fit fit;
    fit.start.type = type;
    fit.start.frequency = type == 3 ? f : 1;
    if (type == 2)
        initial_trend(s, 1, fit.start.trend);
    if (type == 3) {
        if (!initial_trend(s, f, fit.start.trend))
            throw kAllInvalid;
        fit.start.seasonal = initial_seasonal_indices(s, f);
    }
    dvec start{0.3, 0.1, 0.1};
    start.resize(static_cast<std::size_t>(type));
    const Objective objective = [&](const dvec& params) {
        if (!inside_unit_cube(params))
            return kOutside;
        const double mse = holt_winters_smooth(s.values, s.valid, params, fit.start, 0).mse();
        // The simplex sorts by value, and a NaN has no place in an order.
        return std::isnan(mse) ? std::numeric_limits<double>::infinity() : mse;
    };
    const SimplexResult best = nelder_mead(objective, start);
    fit.params = best.point;
    // Stable: the simplex closed on a finite error inside the cube.
    fit.stable = best.converged && std::isfinite(best.value) && best.value < kOutside;
    return fit;
}

CellMatrix lay_out(const Series& s, const dvec& params, const HoltWintersPath& path,
                   const char* title, const std::string& command) {
    const int type = static_cast<int>(params.size());
    const std::size_t n = s.values.size();
    const std::size_t forecasts = path.forecasts.size();
    const std::size_t columns = static_cast<std::size_t>(type) + 2;
    const std::size_t top = static_cast<std::size_t>(type) + 3;  // the table's header row
    CellMatrix r(top + 1 + n + forecasts, std::max<std::size_t>(columns, 2));

    r(0, 0) = title;
    const char* const names[] = {"Alpha", "Beta", "Gamma"};
    for (int i = 0; i < type; ++i) {
        r(1 + i, 0) = names[i];
        r(1 + i, 1) = params[static_cast<std::size_t>(i)];
    }
    r(1 + type, 0) = "MSE";
    r(1 + type, 1) = path.mse();

    const char* const heads[] = {"Forecast", "Level", "Trend", "Seasonality"};
    r(top, 0) = s.name;
    for (std::size_t c = 1; c < columns; ++c)
        r(top, c) = heads[c - 1];
    auto put = [&](std::size_t row, std::size_t column, double value) {
        if (!std::isnan(value))
            r(row, column) = value;
    };
    for (std::size_t t = 0; t < n; ++t) {
        const std::size_t row = top + 1 + t;
        const CellValue& cell = (*s.cells)(t + 1, 0);
        if (cell.IsANumber())
            r(row, 0) = cell.NumericValue();
        put(row, 1, path.prediction[t]);
        put(row, 2, path.level[t]);
        if (type >= 2)
            put(row, 3, path.trend[t]);
        if (type == 3)
            put(row, 4, path.season[t]);
    }
    for (std::size_t h = 0; h < forecasts; ++h)
        r(top + 1 + n + h, 1) = path.forecasts[h];
    end_report(r, command);
    return r;
}

}  // namespace

HoltWintersPath holt_winters_smooth(const dvec& x, const std::vector<bool>& valid,
                                    const dvec& params, const HoltWintersStart& start,
                                    int numForecast) {
    const int type = start.type;
    if (type < 1 || type > 3)
        throw kInternalType;
    const std::size_t n = x.size();
    const std::ptrdiff_t f = type == 3 ? start.frequency : 1;
    const double alpha = params[0];
    const double beta = type >= 2 ? params[1] : 0.0;
    const double gamma = type == 3 ? params[2] : 0.0;

    HoltWintersPath p;
    p.prediction.assign(n, kNaN);
    p.level.assign(n, kNaN);
    p.trend.assign(n, kNaN);
    p.season.assign(n, kNaN);
    // Seasonal values from f - 1 steps before the first point on; s(t) is at t + f.
    dvec season(n + static_cast<std::size_t>(f), kNaN);
    auto s = [&](std::ptrdiff_t t) -> double& { return season[static_cast<std::size_t>(t + f)]; };

    // Points before the first valid one have nothing to smooth from.
    const std::ptrdiff_t first = std::find(valid.begin(), valid.end(), true) - valid.begin();
    if (static_cast<std::size_t>(first) == n)
        return p;
    for (std::ptrdiff_t t = first - f + 1; t <= first; ++t)
        s(t) = type == 3 ? start.seasonal[position(t, static_cast<int>(f))] : 0.0;

    double level = x[static_cast<std::size_t>(first)];
    double trend = type >= 2 ? start.trend : 0.0;
    double previous_x = level;  // the observation, or its prediction where missing
    p.level[first] = level;
    if (type >= 2)
        p.trend[first] = trend;
    p.season[first] = s(first);

    for (std::ptrdiff_t t = first + 1; t < static_cast<std::ptrdiff_t>(n); ++t) {
        const std::size_t i = static_cast<std::size_t>(t);
        double prediction;
        if (type == 1) {
            level = alpha * previous_x + (1 - alpha) * level;
            prediction = level;
        } else {
            prediction = level + trend + s(t - f);
        }
        const double xt = valid[i] ? x[i] : prediction;
        if (valid[i]) {
            const double e = xt - prediction;
            p.sse += e * e;
            ++p.terms;
        }
        if (type >= 2) {
            const double previous_level = level;
            level = alpha * (xt - s(t - f)) + (1 - alpha) * (level + trend);
            trend = beta * (level - previous_level) + (1 - beta) * trend;
            s(t) = type == 3 ? gamma * (xt - level) + (1 - gamma) * s(t - f) : 0.0;
        }
        previous_x = xt;
        p.prediction[i] = prediction;
        p.level[i] = level;
        if (type >= 2)
            p.trend[i] = trend;
        if (type == 3)
            p.season[i] = s(t);
    }

    p.forecasts.resize(static_cast<std::size_t>(numForecast));
    const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(n) - 1;
    // Type 1 forecasts from the level that the last point updates.
    const double next_level = type == 1 ? alpha * previous_x + (1 - alpha) * level : level;
    for (std::ptrdiff_t h = 1; h <= numForecast; ++h) {
        const std::ptrdiff_t back = f * ((h + f - 1) / f);
        const double seasonal = type == 3 ? s(last + h - back) : 0.0;
        p.forecasts[static_cast<std::size_t>(h - 1)] =
            next_level + static_cast<double>(h) * trend + seasonal;
    }
    return p;
}

CellMatrix Holt_Winters(const CellMatrix& x, const CellMatrix& type, const CellMatrix& frequency,
                        const CellMatrix& numForecast, const CellMatrix& excludeList,
                        const CellMatrix& force) {
    int force_value = 0;
    read_int(force, kForce, force_value);
    if (force_value != 0 && force_value != 1)
        throw kForce;
    Series s = read_x(x);
    apply_exclusions(excludeList, s);
    int model = 1;
    read_int(type, kType, model);
    if (model < 1 || model > 3)
        throw kType;
    int f = 1;
    read_int(frequency, kFrequency, f);
    if (f < 1)
        throw kFrequency;
    const int forecasts = read_num_forecast(numForecast, 10);
    if (model == 3) {
        if (f < 2)
            throw kFrequency;
        if (s.values.size() < 2 * static_cast<std::size_t>(f))
            throw kShortSeason;
    }

    Fit fit = fit_type(s, model, f);
    while (!fit.stable && force_value == 1 && model > 1)
        fit = fit_type(s, --model, f);
    if (!fit.stable)
        throw "Cannot find a stable solution in Holt_Winters model type " + std::to_string(model);

    const HoltWintersPath path =
        holt_winters_smooth(s.values, s.valid, fit.params, fit.start, forecasts);
    return lay_out(s, fit.params, path, "Estimated parameters of Holt_Winters model",
                   "Holt_Winters");
}

CellMatrix Holt_Winters_forecast(const CellMatrix& x, const CellMatrix& params,
                                 const CellMatrix& initialTrend,
                                 const CellMatrix& initialSeasonalIndices,
                                 const CellMatrix& numForecast, const CellMatrix& excludeList) {
    Series s = read_x(x);
    if (is_omitted(params))
        throw kParamsMissing;
    dvec p;
    read_double_vector_optional(params, kParamsCount, p);
    if (p.empty() || p.size() > 3)
        throw kParamsCount;
    HoltWintersStart start;
    start.type = static_cast<int>(p.size());
    read_double(initialTrend, kInitialTrend, start.trend);
    read_double_vector_optional(initialSeasonalIndices, kSeasonalIndices, start.seasonal);
    if (start.type == 3 && start.seasonal.empty())
        throw kSeasonalIndices;
    start.frequency = start.type == 3 ? static_cast<int>(start.seasonal.size()) : 1;
    const int forecasts = read_num_forecast(numForecast, 0);
    apply_exclusions(excludeList, s);

    const HoltWintersPath path = holt_winters_smooth(s.values, s.valid, p, start, forecasts);
    return lay_out(s, p, path, "Parameters of Holt_Winters model", "Holt_Winters_forecast");
}

}  // namespace zentable
