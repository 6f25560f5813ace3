#include "timeseries/arima.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "numeric/distributions.hpp"
#include "numeric/random.hpp"
#include "optimisation/diff_evol.hpp"
#include "timeseries/arma_transforms.hpp"
#include "timeseries/series.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kDimension = "Dimension not matched in de_param";
constexpr const char* kHasMean = "Input hasMean must be either TRUE or FALSE";
constexpr const char* kNumForecastFit = "Input numForecast must be a non-negative integer";
constexpr const char* kAllZero = "Inputs p, q, and d cannot be all 0";
constexpr const char* kBoundColumns =
    "Input lowerAndUpperBound must be in 2 columns: lower bound and upper bound";
constexpr const char* kBoundOrder =
    "lower bound must be less than or equal to upper bound in lowerAndUpperBound";
constexpr const char* kGenerations = "Input maxNumGenerations must be a positive integer";
constexpr const char* kSeed = "Input seed must be a non-negative integer";
constexpr const char* kShowDetails = "Input showDetails must be either TRUE or FALSE";
constexpr const char* kNumForecast = "Input numForecast must be a positive integer";
constexpr const char* kNumForecastSign = "Input numForecast must be a positive integerr";
constexpr const char* kNumPoints = "Input numPoints must be a positive integer";
constexpr const char* kNumPointsSign = "Input numPoints must be a positive integerr";
constexpr const char* kMean = "Input mean must be a number";
constexpr const char* kSigma = "Input sigma must be a non-negative number";
constexpr const char* kSd = "Input sd must be a non-negative number";
constexpr const char* kShortForForecast =
    "The number of data input is less than p+d in ARIMA model";
constexpr double kJacobianStep = 0.0001;
constexpr double kLimitZ = 1.96;

std::string order_text(const std::string& name) {
    return "Input " + name + " must be a non-negative integer";
}

int read_order(const CellMatrix& cell, const std::string& name) {
    int value = 0;
    read_int(cell, order_text(name), value);
    if (value < 0) {
        throw order_text(name);
    }
    return value;
}

// The simulate commands word a negative d apart from a d that is no integer.
int read_simulated_d(const CellMatrix& cell) {
    int value = 0;
    read_int(cell, order_text("d"), value);
    if (value < 0) {
        throw order_text("d") + "r";
    }
    return value;
}

int read_positive_count(const CellMatrix& cell, const char* not_integer, const char* not_positive) {
    int value = 0;
    read_int_required(cell, not_integer, value);
    if (value <= 0) {
        throw not_positive;
    }
    return value;
}

dvec read_coefficients(const CellMatrix& cell, const std::string& name) {
    dvec out;
    read_double_vector_optional(cell, "Input " + name + " must be numbers", out);
    return out;
}

double read_sigma(const CellMatrix& cell, const char* negative_text) {
    double value = 1.0;
    read_double(cell, kSigma, value);
    if (value < 0.0) {
        throw negative_text;
    }
    return value;
}

// Polynomials as coefficient vectors from B^0 up.
using Polynomial = dvec;

Polynomial multiply(const Polynomial& a, const Polynomial& b) {
    Polynomial out(a.size() + b.size() - 1, 0.0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < b.size(); ++j) {
            out[i + j] += a[i] * b[j];
        }
    }
    return out;
}

// 1 + sign (c1 B^lag + c2 B^2lag + ...).
Polynomial lag_polynomial(const dvec& coefficients, int lag, double sign) {
    Polynomial out(coefficients.size() * static_cast<std::size_t>(lag) + 1, 0.0);
    out[0] = 1.0;
    for (std::size_t k = 0; k < coefficients.size(); ++k) {
        out[(k + 1) * static_cast<std::size_t>(lag)] += sign * coefficients[k];
    }
    return out;
}

// The coefficients of B^1 on, times sign: the AR vector of 1 - c(B) or the MA
// vector of 1 + m(B).
dvec lag_coefficients(const Polynomial& polynomial, double sign) {
    dvec out(polynomial.size() - 1);
    for (std::size_t i = 1; i < polynomial.size(); ++i) {
        out[i - 1] = sign * polynomial[i];
    }
    return out;
}

// The nonzero terms of a coefficient vector: a zero adds nothing to a sum,
// and the seasonal expansions are mostly zeros.
struct Term {
    std::size_t lag;
    double coefficient;
};

std::vector<Term> nonzero_terms(const dvec& coefficients) {
    std::vector<Term> terms;
    for (std::size_t i = 0; i < coefficients.size(); ++i) {
        if (coefficients[i] != 0.0) {
            terms.push_back({i + 1, coefficients[i]});
        }
    }
    return terms;
}

double sample_mean(const dvec& x) {
    double sum = 0.0;
    for (double v : x) {
        sum += v;
    }
    return sum / static_cast<double>(x.size());
}

double population_sd(const dvec& x) {
    const double mean = sample_mean(x);
    double sum = 0.0;
    for (double v : x) {
        sum += (v - mean) * (v - mean);
    }
    return std::sqrt(sum / static_cast<double>(x.size()));
}

// The orders of a model; the seasonal ones stay 0 in arima.
struct Orders {
    bool seasonal = false;
    int p = 0, d = 0, q = 0, s = 0, P = 0, D = 0, Q = 0;
    int parameters() const { return p + q + P + Q + 1; }
    std::size_t first_prediction() const { return static_cast<std::size_t>((P + D) * s + d + p); }
};

std::string model_title(const Orders& o, const char* separator, bool blank) {
    const std::string sep = blank ? ", " : ",";
    std::string title = std::string(o.seasonal ? "SARIMA(" : "ARIMA(") + std::to_string(o.p) + sep +
                        std::to_string(o.d) + sep + std::to_string(o.q) + ")";
    if (o.seasonal) {
        title += "x(" + std::to_string(o.P) + sep + std::to_string(o.D) + sep +
                 std::to_string(o.Q) + ")_" + std::to_string(o.s);
    }
    return title + separator;
}

svec parameter_labels(const Orders& o) {
    svec labels{"Mean"};
    for (int i = 1; i <= o.p; ++i) {
        labels.push_back("AR" + std::to_string(i));
    }
    for (int i = 1; i <= o.q; ++i) {
        labels.push_back("MA" + std::to_string(i));
    }
    for (int i = 1; i <= o.P; ++i) {
        labels.push_back("Seasonal AR" + std::to_string(i));
    }
    for (int i = 1; i <= o.Q; ++i) {
        labels.push_back("Seasonal MA" + std::to_string(i));
    }
    return labels;
}

// Rows 2 to 5 (and 6 in the seasonal head): the orders.
void write_orders(CellMatrix& table, const Orders& o) {
    table(2, 0) = o.seasonal ? "Regular ARIMA(p, d, q)" : "ARIMA(p, d, q)";
    table(2, 1) = "Order";
    const char* names[] = {"p", "d", "q"};
    const int values[] = {o.p, o.d, o.q};
    for (std::size_t i = 0; i < 3; ++i) {
        table(3 + i, 0) = names[i];
        table(3 + i, 1) = values[i];
    }
    if (o.seasonal) {
        table(2, 2) = "Seasonal ARIMA(P, D, Q)";
        table(2, 3) = "Order";
        const char* seasonal_names[] = {"P", "D", "Q"};
        const int seasonal_values[] = {o.P, o.D, o.Q};
        for (std::size_t i = 0; i < 3; ++i) {
            table(3 + i, 2) = seasonal_names[i];
            table(3 + i, 3) = seasonal_values[i];
        }
        table(6, 2) = "Seasonal Period";
        table(6, 3) = o.s;
    }
}

// The observation and forecast rows from `top` on: the header, then t, x,
// the noise and the prediction, then h and the forecast with its limits.
void write_series_rows(CellMatrix& table, std::size_t top, const Series& x,
                       const std::string& prediction_label, const ForecastPath& path,
                       std::size_t first_prediction) {
    const char* heads[] = {"t",           nullptr,      "White Noise(t)", nullptr, "Standard Error",
                           "Lower Limit", "Upper Limit"};
    for (std::size_t c = 0; c < 7; ++c) {
        if (heads[c] != nullptr) {
            table(top, c) = heads[c];
        }
    }
    table(top, 1) = x.name;
    table(top, 3) = prediction_label;
    const std::size_t n = x.values.size();
    for (std::size_t t = 0; t < n; ++t) {
        const std::size_t row = top + 1 + t;
        table(row, 0) = static_cast<double>(t + 1);
        table(row, 1) = x.values[t];
        table(row, 2) = path.noise[t];
        if (t >= first_prediction) {
            table(row, 3) = path.prediction[t];
        }
    }
    for (std::size_t h = 0; h < path.forecast.size(); ++h) {
        const std::size_t row = top + 1 + n + h;
        table(row, 0) = static_cast<double>(h + 1);
        table(row, 2) = 0.0;
        table(row, 3) = path.forecast[h];
        table(row, 4) = path.standard_error[h];
        table(row, 5) = path.lower[h];
        table(row, 6) = path.upper[h];
    }
}

// The model's AR and MA vectors of the forecast recursion on the
// undifferenced series, the differences carried inside the AR vector.
struct ForecastVectors {
    dvec c;
    dvec m;
};

ForecastVectors forecast_vectors(const Orders& o, const dvec& ar, const dvec& ma,
                                 const dvec& seasonal_ar, const dvec& seasonal_ma) {
    if (!o.seasonal) {
        return {integrated_ar(ar, o.d), ma};
    }
    return {integrated_seasonal_ar(ar, seasonal_ar, o.s, o.d, o.D),
            seasonal_ma_expansion(ma, seasonal_ma, o.s)};
}

// A parameter vector cut into its parts.
struct ModelCoefficients {
    double mean = 0.0;
    dvec ar, ma, seasonal_ar, seasonal_ma;
};

ModelCoefficients split_parameters(const Orders& o, const dvec& params) {
    ModelCoefficients out;
    out.mean = params[0];
    auto from = params.begin() + 1;
    auto take = [&from](int count) {
        dvec part(from, from + count);
        from += count;
        return part;
    };
    out.ar = take(o.p);
    out.ma = take(o.q);
    out.seasonal_ar = take(o.P);
    out.seasonal_ma = take(o.Q);
    return out;
}

// ---- The fits -------------------------------------------------------------

struct FitInput {
    Series x;
    Orders orders;
    bool has_mean = true;
    int num_forecast = 0;
    int df = 0;
    dvec lower, upper;
    int generations = 200;
    int seed = 100;
    bool show_details = false;
    dvec differenced;
};

void read_bounds(const CellMatrix& bounds, FitInput& in, const std::string& rows_text) {
    const auto k = static_cast<std::size_t>(in.orders.parameters());
    if (is_omitted(bounds)) {
        if (in.has_mean) {
            const double mean = sample_mean(in.x.values);
            const double sd = population_sd(in.x.values);
            in.lower.push_back(mean - 5.0 * sd);
            in.upper.push_back(mean + 5.0 * sd);
        } else {
            in.lower.push_back(0.0);
            in.upper.push_back(0.0);
        }
        in.lower.resize(k, -10.0);
        in.upper.resize(k, 10.0);
    } else {
        if (bounds.ColumnsInStructure() != 2) {
            throw kBoundColumns;
        }
        if (bounds.RowsInStructure() != (in.has_mean ? k : k - 1)) {
            throw rows_text;
        }
        if (!in.has_mean) {
            in.lower.push_back(0.0);
            in.upper.push_back(0.0);
        }
        const dvec lower = read_column_double(bounds, 0);
        const dvec upper = read_column_double(bounds, 1);
        in.lower.insert(in.lower.end(), lower.begin(), lower.end());
        in.upper.insert(in.upper.end(), upper.begin(), upper.end());
    }
    for (std::size_t i = 0; i < k; ++i) {
        // A NaN bound fails as well: the box would not hold a single point.
        if (!(in.lower[i] <= in.upper[i])) {
            throw kBoundOrder;
        }
    }
}

struct FitCells {
    const CellMatrix& numForecast;
    const CellMatrix& bounds;
    const CellMatrix& maxNumGenerations;
    const CellMatrix& seed;
    const CellMatrix& showDetails;
};

// Steps 2 to 6 of the estimation, after the orders have been read and the
// series differenced.
void read_fit_settings(const CellMatrix& hasMean, const FitCells& cells, FitInput& in) {
    const Orders& o = in.orders;
    read_bool(hasMean, kHasMean, in.has_mean);
    if (in.has_mean && (o.d > 0 || o.D > 0)) {
        throw o.seasonal ? "When input d > 0 or seasonalD > 0, hasMean must be FALSE"
                         : "When input d > 0, hasMean must be FALSE";
    }
    read_int(cells.numForecast, kNumForecastFit, in.num_forecast);
    if (in.num_forecast < 0) {
        throw kNumForecastFit;
    }
    if (o.p + o.q + o.d < 1) {
        throw kAllZero;
    }
    // In 64 bits: orders near the top of int would overflow the sum.
    using wide = long long;
    const auto n = static_cast<wide>(in.x.values.size());
    const wide df =
        n - 2 * wide{o.p} - o.q - o.d - (wide{o.P} + o.D) * o.s - o.P - o.Q - (in.has_mean ? 1 : 0);
    if (df < 1) {
        throw o.seasonal ? "The size of input x is less than or equal to "
                           "(2p+q+d+(P+D)*seasonalPeriod+P+Q) or "
                           "(2p+q+d+(P+D)*seasonalPeriod+P+Q+1) if having mean"
                         : "The size of input x is less than or equal to (2p+q+d) or "
                           "(2p+q+d+1) if having mean";
    }
    in.df = static_cast<int>(df);
    read_bounds(cells.bounds, in,
                o.seasonal ? "The number of rows in input lowerAndUpperBound must be the same as "
                             "the number of model parameters (p+q+seasonalP+seasonalQ) or "
                             "(p+q+seasonalP+seasonalQ+1) if hasMean is true"
                           : "The number of rows in input lowerAndUpperBound must be the same as "
                             "the number of model parameters p+q or p+q+1 if hasMean is true");
    read_int(cells.maxNumGenerations, kGenerations, in.generations);
    if (in.generations <= 0) {
        throw kGenerations;
    }
    read_int(cells.seed, kSeed, in.seed);
    if (in.seed < 0) {
        throw kSeed;
    }
    read_bool(cells.showDetails, kShowDetails, in.show_details);
}

struct Estimate {
    std::string label;
    double value = 0.0;
    double standard_error = 0.0;
    double t_value = 0.0;
    double p_value = 0.0;
};

// Gauss-Newton standard errors from the forward-difference Jacobian of the
// predictions. With a mean its column is left out and its diagonal set to 1,
// so its error reads Sigma; without one the pinned mean's column stays in.
template <class Objective>
std::vector<Estimate> standard_errors(const Objective& objective, const dvec& params, bool has_mean,
                                      double sigma, int df, const svec& labels) {
    const std::size_t k = params.size();
    const dvec base = objective.predictions(params);
    const std::size_t n = base.size();
    dmat jacobian(k, dvec(n, 0.0));  // one row per parameter
    for (std::size_t i = has_mean ? 1 : 0; i < k; ++i) {
        dvec moved = params;
        moved[i] += kJacobianStep;
        const dvec shifted = objective.predictions(moved);
        for (std::size_t t = 0; t < n; ++t) {
            jacobian[i][t] = (shifted[t] - base[t]) / kJacobianStep;
        }
    }
    dmat a(k, dvec(k, 0.0));
    for (std::size_t i = 0; i < k; ++i) {
        for (std::size_t j = i; j < k; ++j) {
            double sum = 0.0;
            for (std::size_t t = 0; t < n; ++t) {
                sum += jacobian[i][t] * jacobian[j][t];
            }
            a[i][j] = sum;
            a[j][i] = sum;
        }
    }
    if (has_mean) {
        a[0][0] = 1.0;
    }
    const dmat inv = inverse(a);
    std::vector<Estimate> out(k);
    for (std::size_t i = 0; i < k; ++i) {
        Estimate& e = out[i];
        e.label = labels[i];
        e.value = params[i];
        e.standard_error = std::sqrt(inv[i][i]) * sigma;
        if (e.standard_error != 0.0) {
            e.t_value = e.value / e.standard_error;
            e.p_value = 2.0 * (1.0 - t_cdf(std::fabs(e.t_value), df));
        }
    }
    return out;
}

// The trail of the engine below the report.
void write_details(CellMatrix& table, std::size_t top, const DiffEvolRun& run, const svec& labels) {
    table(top, 0) = "Parameter Estimation Details in Differential Evolution Solver";
    table(top + 2, 0) = "Optimal Solution";
    table(top + 2, 1) = "SSE";
    table(top + 3, 0) = "Value";
    table(top + 3, 1) = run.last_cost();
    table(top + 5, 0) = "Generation";
    table(top + 5, 1) = "SSE";
    for (std::size_t j = 0; j < labels.size(); ++j) {
        table(top + 2, j + 2) = labels[j];
        table(top + 3, j + 2) = run.last_best()[j];
        table(top + 5, j + 2) = labels[j];
    }
    for (std::size_t g = 0; g < run.generations(); ++g) {
        table(top + 6 + g, 0) = static_cast<double>(g + 1);
        table(top + 6 + g, 1) = run.bestvalit[g];
        for (std::size_t j = 0; j < labels.size(); ++j) {
            table(top + 6 + g, j + 2) = run.bestmemit[g][j];
        }
    }
}

template <class Objective>
CellMatrix fit_and_report(const FitInput& in, const Objective& objective) {
    const Orders& o = in.orders;
    const DiffEvolRun run = run_diff_evol(objective, in.lower, in.upper, in.generations, in.seed);
    const dvec& params = run.last_best();
    const double sse = run.last_cost();
    const double sigma = std::sqrt(sse / in.df);
    const svec labels = parameter_labels(o);
    const std::vector<Estimate> estimates =
        standard_errors(objective, params, in.has_mean, sigma, in.df, labels);

    const ModelCoefficients coefficients = split_parameters(o, params);
    const ForecastVectors vectors = forecast_vectors(
        o, coefficients.ar, coefficients.ma, coefficients.seasonal_ar, coefficients.seasonal_ma);
    const ForecastPath path =
        forecast_core(in.x.values, in.num_forecast, coefficients.mean, vectors.c, vectors.m, sigma);

    const std::size_t n = in.x.values.size();
    const std::size_t k = params.size();
    const std::size_t shift = o.seasonal ? 2 : 0;
    const std::size_t forecasts = static_cast<std::size_t>(in.num_forecast);
    const std::size_t base_rows = n + k + forecasts + 19 + shift;
    const std::size_t rows = base_rows + (in.show_details ? run.generations() + 7 : 0);
    const std::size_t columns = in.show_details ? std::max<std::size_t>(7, k + 2) : 7;
    CellMatrix table(rows, columns);
    table(0, 0) = model_title(o, " Model", true);
    write_orders(table, o);
    const char* fit_labels[] = {"SSE", "Sigma", "DF"};
    const double fit_values[] = {sse, sigma, static_cast<double>(in.df)};
    for (std::size_t i = 0; i < 3; ++i) {
        table(6 + shift + i, 0) = fit_labels[i];
        table(6 + shift + i, 1) = fit_values[i];
    }
    table(10 + shift, 0) = "Model Parameter Estimates";
    const char* heads[] = {"#", "Variable", "Estimate", "Standard Error", "t value", "P Value"};
    for (std::size_t c = 0; c < 6; ++c) {
        table(12 + shift, c) = heads[c];
    }
    for (std::size_t i = 0; i < k; ++i) {
        const std::size_t row = 13 + shift + i;
        const Estimate& e = estimates[i];
        table(row, 0) = static_cast<double>(i + 1);
        table(row, 1) = e.label;
        if (i == 0 && !in.has_mean) {
            for (std::size_t c = 2; c < 6; ++c) {
                table(row, c) = "NA";
            }
            continue;
        }
        table(row, 2) = e.value;
        table(row, 3) = e.standard_error;
        table(row, 4) = e.t_value;
        table(row, 5) = e.p_value;
    }
    const std::size_t series_top = 13 + shift + k + 1;
    table(series_top, 0) = "Time Series Estimation";
    write_series_rows(table, series_top + 2, in.x, in.x.name + " Predicted", path,
                      o.first_prediction());
    if (in.show_details) {
        write_details(table, base_rows - 1, run, labels);
    }
    return table;
}

// ---- The forecast and simulate commands ------------------------------------

struct GivenModel {
    Orders orders;
    double mean = 0.0;
    dvec ar, ma, seasonal_ar, seasonal_ma;
    double sigma = 1.0;
};

CellMatrix forecast_report(const Series& x, int num_forecast, const GivenModel& model) {
    const Orders& o = model.orders;
    // The length of the AR vector, known before it is built: a long season
    // would otherwise be expanded only to be refused.
    const long long ar_length =
        o.p + static_cast<long long>(o.s) * o.P + o.d + static_cast<long long>(o.s) * o.D;
    if (static_cast<long long>(x.values.size()) < ar_length) {
        throw kShortForForecast;
    }
    const ForecastVectors vectors =
        forecast_vectors(o, model.ar, model.ma, model.seasonal_ar, model.seasonal_ma);
    const ForecastPath path =
        forecast_core(x.values, num_forecast, model.mean, vectors.c, vectors.m, model.sigma);
    const std::size_t head = o.seasonal ? 8 : 7;
    const std::size_t n = x.values.size();
    CellMatrix table(head + 5 + n + static_cast<std::size_t>(num_forecast), 7);
    table(0, 0) = model_title(o, " Model Forecast", true);
    write_orders(table, o);
    table(head, 0) = "Time Series Forecast";
    write_series_rows(table, head + 2, x, "Forecast", path, vectors.c.size());
    return table;
}

CellMatrix path_table(const dvec& path, const std::string& title) {
    CellMatrix table(path.size() + 1, 2);
    table(0, 0) = "#";
    table(0, 1) = title;
    for (std::size_t i = 0; i < path.size(); ++i) {
        table(i + 1, 0) = static_cast<double>(i + 1);
        table(i + 1, 1) = path[i];
    }
    return table;
}

unsigned long read_simulation_seed(const CellMatrix& seed) {
    int value = 0;
    read_int(seed, kSeed, value);
    if (value < 0) {
        throw kSeed;
    }
    return static_cast<unsigned long>(value);
}

}  // namespace

// ---- The recursion and its objectives --------------------------------------

double css_recursion(const dvec& y, double mean, const dvec& ar, const dvec& ma, std::size_t start,
                     dvec& prediction, dvec& noise) {
    const std::size_t n = y.size();
    start = std::min(start, n);
    // The AR part does not depend on the noise, so it is summed for every t
    // ahead of the MA chain, in the same order of terms; the chain, whose
    // each step waits for the last noise, then carries only the MA terms.
    dvec& f = prediction;
    f.resize(n);
    std::fill(f.begin(), f.begin() + static_cast<long>(start), 0.0);
    std::fill(f.begin() + static_cast<long>(start), f.end(), mean);
    for (const Term& term : nonzero_terms(ar)) {
        for (std::size_t t = start; t < n; ++t) {
            f[t] += (y[t - term.lag] - mean) * term.coefficient;
        }
    }
    const std::vector<Term> ma_terms = nonzero_terms(ma);
    // The newest noise stays in a register: read back from memory it would
    // add a store-to-load delay to every step of the chain. Older noise is
    // long stored by the time it is read.
    const bool has_lag_one = !ma_terms.empty() && ma_terms.front().lag == 1;
    const double lag_one = has_lag_one ? ma_terms.front().coefficient : 0.0;
    const std::size_t older = has_lag_one ? 1 : 0;
    dvec& e = noise;
    e.resize(n);
    std::fill(e.begin(), e.begin() + static_cast<long>(start), 0.0);
    double last = 0.0;
    double sse = 0.0;
    for (std::size_t t = start; t < n; ++t) {
        double value = f[t];
        if (has_lag_one && t >= 1) {
            value += lag_one * last;
        }
        for (std::size_t k = older; k < ma_terms.size() && ma_terms[k].lag <= t; ++k) {
            value += ma_terms[k].coefficient * e[t - ma_terms[k].lag];
        }
        f[t] = value;
        last = y[t] - value;
        e[t] = last;
        sse += last * last;
    }
    return sse;
}

namespace {

// An MA polynomial outside the unit circle makes the noise grow without
// bound; on a long series it overflows, and infinite noise of opposite signs
// meeting in one sum gives NaN. Such a sum of squares is infinite, not
// undefined: as NaN it could never lose a comparison, and as the first
// member's cost it would stop the search before its first generation.
double overflow_as_infinity(double sse) {
    return std::isnan(sse) ? std::numeric_limits<double>::infinity() : sse;
}

}  // namespace

GenericFunction3::GenericFunction3(int p_, int q_, dvec series_)
    : p(p_), q(q_), series(std::move(series_)), n(static_cast<int>(series.size())) {}

void GenericFunction3::check(const dvec& params) const {
    if (params.size() != static_cast<std::size_t>(dimension())) {
        throw kDimension;
    }
}

double GenericFunction3::operator()(dvec params) const {
    check(params);
    const dvec ar(params.begin() + 1, params.begin() + 1 + p);
    const dvec ma(params.begin() + 1 + p, params.end());
    return overflow_as_infinity(
        css_recursion(series, params[0], ar, ma, static_cast<std::size_t>(p), work_f_, work_e_));
}

dvec GenericFunction3::predictions(const dvec& params) const {
    check(params);
    const dvec ar(params.begin() + 1, params.begin() + 1 + p);
    const dvec ma(params.begin() + 1 + p, params.end());
    dvec f, e;
    css_recursion(series, params[0], ar, ma, static_cast<std::size_t>(p), f, e);
    return f;
}

GenericFunctionForSARIMA::GenericFunctionForSARIMA(int p_, int q_, int s_, int P_, int Q_,
                                                   dvec series_)
    : p(p_),
      q(q_),
      s(s_),
      P(P_),
      Q(Q_),
      n(static_cast<int>(series_.size())),
      series(std::move(series_)) {}

void GenericFunctionForSARIMA::expand(const dvec& params, dvec& ar, dvec& ma) const {
    if (params.size() != static_cast<std::size_t>(dimension())) {
        throw kDimension;
    }
    auto from = params.begin() + 1;
    const dvec a(from, from + p);
    const dvec m(from + p, from + p + q);
    const dvec sa(from + p + q, from + p + q + P);
    const dvec sm(from + p + q + P, params.end());
    ar = seasonal_ar_expansion(a, sa, s);
    ma = seasonal_ma_expansion(m, sm, s);
}

double GenericFunctionForSARIMA::operator()(dvec params) const {
    dvec ar, ma;
    expand(params, ar, ma);
    return overflow_as_infinity(css_recursion(
        series, params[0], ar, ma, static_cast<std::size_t>(s * P + p), work_f_, work_e_));
}

dvec GenericFunctionForSARIMA::predictions(const dvec& params) const {
    dvec ar, ma;
    expand(params, ar, ma);
    dvec f, e;
    css_recursion(series, params[0], ar, ma, static_cast<std::size_t>(s * P + p), f, e);
    return f;
}

dvec seasonal_ar_expansion(const dvec& ar, const dvec& seasonal_ar, int period) {
    return lag_coefficients(
        multiply(lag_polynomial(ar, 1, -1.0), lag_polynomial(seasonal_ar, period, -1.0)), -1.0);
}

dvec seasonal_ma_expansion(const dvec& ma, const dvec& seasonal_ma, int period) {
    return lag_coefficients(
        multiply(lag_polynomial(ma, 1, 1.0), lag_polynomial(seasonal_ma, period, 1.0)), 1.0);
}

dvec integrated_ar(const dvec& ar, int d) {
    dvec c = ar;
    for (int pass = 0; pass < d; ++pass) {
        if (c.empty()) {
            c.push_back(1.0);
            continue;
        }
        dvec next(c.size() + 1);
        next[0] = c[0] + 1.0;
        for (std::size_t k = 1; k < c.size(); ++k) {
            next[k] = c[k] - c[k - 1];
        }
        next[c.size()] = -c.back();
        c = std::move(next);
    }
    return c;
}

dvec integrated_seasonal_ar(const dvec& ar, const dvec& seasonal_ar, int period, int d,
                            int seasonal_d) {
    Polynomial product =
        multiply(lag_polynomial(ar, 1, -1.0), lag_polynomial(seasonal_ar, period, -1.0));
    for (int pass = 0; pass < d; ++pass) {
        product = multiply(product, {1.0, -1.0});
    }
    for (int pass = 0; pass < seasonal_d; ++pass) {
        product = multiply(product, lag_polynomial({1.0}, period, -1.0));
    }
    return lag_coefficients(product, -1.0);
}

dvec difference(dvec x, int lag, int times) {
    const auto step = static_cast<std::size_t>(lag);
    for (int pass = 0; pass < times; ++pass) {
        if (x.size() <= step) {
            x.clear();
            break;
        }
        for (std::size_t t = 0; t + step < x.size(); ++t) {
            x[t] = x[t + step] - x[t];
        }
        x.resize(x.size() - step);
    }
    return x;
}

ForecastPath forecast_core(const dvec& x, int numForecast, double mean, const dvec& c,
                           const dvec& m, double sigma) {
    const std::size_t n = x.size();
    if (n < c.size()) {
        throw kShortForForecast;
    }
    ForecastPath out;
    css_recursion(x, mean, c, m, c.size(), out.prediction, out.noise);

    const auto count = static_cast<std::size_t>(numForecast);
    dvec extended = x;
    dvec noise = out.noise;
    extended.resize(n + count, 0.0);
    noise.resize(n + count, 0.0);
    const dvec psi = ma_weights(c, m, std::max(numForecast - 1, 0));
    double psi_squares = 0.0;
    for (std::size_t h = 0; h < count; ++h) {
        const std::size_t t = n + h;
        double value = mean;
        for (std::size_t i = 1; i <= c.size(); ++i) {
            value += (extended[t - i] - mean) * c[i - 1];
        }
        for (std::size_t j = 1; j <= std::min(m.size(), t); ++j) {
            value += m[j - 1] * noise[t - j];
        }
        extended[t] = value;
        if (h > 0) {
            psi_squares += psi[h] * psi[h];
        }
        const double se = sigma * std::sqrt(1.0 + psi_squares);
        out.forecast.push_back(value);
        out.standard_error.push_back(se);
        out.lower.push_back(value - kLimitZ * se);
        out.upper.push_back(value + kLimitZ * se);
    }
    return out;
}

dvec simulate_path(int numPoints, double mean, const dvec& c, const dvec& m, double sigma,
                   unsigned long seed) {
    const std::size_t warm_up = std::max(c.size(), m.size());
    const std::size_t total = static_cast<std::size_t>(numPoints) + warm_up;
    MersenneTwister generator(seed);
    dvec e(total);
    for (double& value : e) {
        value = sigma * normal_draw(generator);
    }
    dvec y(total, 0.0);
    for (std::size_t t = 0; t < total; ++t) {
        double value = e[t];
        for (std::size_t i = 1; i <= std::min(c.size(), t); ++i) {
            value += c[i - 1] * y[t - i];
        }
        for (std::size_t j = 1; j <= std::min(m.size(), t); ++j) {
            value += m[j - 1] * e[t - j];
        }
        y[t] = value;
    }
    dvec out(static_cast<std::size_t>(numPoints));
    for (std::size_t t = warm_up; t < total; ++t) {
        out[t - warm_up] = y[t] + mean;
    }
    return out;
}

// ---- Commands ---------------------------------------------------------------

CellMatrix arima(const CellMatrix& x, const CellMatrix& hasMean, const CellMatrix& p,
                 const CellMatrix& d, const CellMatrix& q, const CellMatrix& numForecast,
                 const CellMatrix& lowerAndUpperBound, const CellMatrix& maxNumGenerations,
                 const CellMatrix& seed, const CellMatrix& showDetails) {
    FitInput in;
    in.x = read_series(x, series_texts("x"));
    Orders& o = in.orders;
    o.p = read_order(p, "p");
    o.d = read_order(d, "d");
    o.q = read_order(q, "q");
    in.differenced = difference(in.x.values, 1, o.d);
    read_fit_settings(hasMean,
                      {numForecast, lowerAndUpperBound, maxNumGenerations, seed, showDetails}, in);
    const GenericFunction3 objective(o.p, o.q, in.differenced);
    return fit_and_report(in, objective);
}

CellMatrix sarima(const CellMatrix& x, const CellMatrix& hasMean, const CellMatrix& p,
                  const CellMatrix& d, const CellMatrix& q, const CellMatrix& seasonalPeriod,
                  const CellMatrix& seasonalP, const CellMatrix& seasonalD,
                  const CellMatrix& seasonalQ, const CellMatrix& numForecast,
                  const CellMatrix& lowerAndUpperBound, const CellMatrix& maxNumGenerations,
                  const CellMatrix& seed, const CellMatrix& showDetails) {
    FitInput in;
    in.x = read_series(x, series_texts("x"));
    Orders& o = in.orders;
    o.seasonal = true;
    o.p = read_order(p, "p");
    o.d = read_order(d, "d");
    o.q = read_order(q, "q");
    o.s = read_order(seasonalPeriod, "seasonalPeriod");
    o.P = read_order(seasonalP, "seasonalP");
    o.D = read_order(seasonalD, "seasonalD");
    o.Q = read_order(seasonalQ, "seasonalQ");
    in.differenced = difference(difference(in.x.values, o.s, o.D), 1, o.d);
    read_fit_settings(hasMean,
                      {numForecast, lowerAndUpperBound, maxNumGenerations, seed, showDetails}, in);
    const GenericFunctionForSARIMA objective(o.p, o.q, o.s, o.P, o.Q, in.differenced);
    return fit_and_report(in, objective);
}

namespace {

ColumnTexts forecast_texts() {
    return {"There is no input data for x", "Input data for x must be in one column",
            "Header for variable name of x must be a string"};
}

}  // namespace

CellMatrix arima_forecast(const CellMatrix& x, const CellMatrix& numForecast,
                          const CellMatrix& mean, const CellMatrix& ar, const CellMatrix& d,
                          const CellMatrix& ma, const CellMatrix& sigma) {
    const Series series = read_series(x, forecast_texts());
    const int count = read_positive_count(numForecast, kNumForecast, kNumForecastSign);
    GivenModel model;
    read_double(mean, kMean, model.mean);
    model.ar = read_coefficients(ar, "AR");
    model.orders.d = read_order(d, "d");
    model.ma = read_coefficients(ma, "MA");
    model.sigma = read_sigma(sigma, kSigma);
    model.orders.p = static_cast<int>(model.ar.size());
    model.orders.q = static_cast<int>(model.ma.size());
    return forecast_report(series, count, model);
}

CellMatrix sarima_forecast(const CellMatrix& x, const CellMatrix& numForecast,
                           const CellMatrix& mean, const CellMatrix& ar, const CellMatrix& d,
                           const CellMatrix& ma, const CellMatrix& seasonalPeriod,
                           const CellMatrix& seasonalAR, const CellMatrix& seasonalD,
                           const CellMatrix& seasonalMA, const CellMatrix& sigma) {
    const Series series = read_series(x, forecast_texts());
    const int count = read_positive_count(numForecast, kNumForecast, kNumForecastSign);
    GivenModel model;
    Orders& o = model.orders;
    o.seasonal = true;
    read_double(mean, kMean, model.mean);
    model.ar = read_coefficients(ar, "AR");
    o.d = read_order(d, "d");
    model.ma = read_coefficients(ma, "MA");
    o.s = read_order(seasonalPeriod, "seasonalPeriod");
    model.seasonal_ar = read_coefficients(seasonalAR, "seasonalAR");
    o.D = read_order(seasonalD, "seasonalD");
    model.seasonal_ma = read_coefficients(seasonalMA, "seasonalMA");
    model.sigma = read_sigma(sigma, kSd);
    o.p = static_cast<int>(model.ar.size());
    o.q = static_cast<int>(model.ma.size());
    o.P = static_cast<int>(model.seasonal_ar.size());
    o.Q = static_cast<int>(model.seasonal_ma.size());
    return forecast_report(series, count, model);
}

CellMatrix arima_simulate(const CellMatrix& numPoints, const CellMatrix& mean, const CellMatrix& ar,
                          const CellMatrix& d, const CellMatrix& ma, const CellMatrix& sigma,
                          const CellMatrix& seed) {
    const int points = read_positive_count(numPoints, kNumPoints, kNumPointsSign);
    // The absent mean is 0.1 although the help text says 0: kept as the
    // sheets that rely on it expect.
    double mean_value = 0.1;
    read_double(mean, kMean, mean_value);
    const dvec a = read_coefficients(ar, "ar");
    const int order_d = read_simulated_d(d);
    const dvec m = read_coefficients(ma, "ma");
    const double sd = read_sigma(sigma, kSigma);
    const unsigned long seed_value = read_simulation_seed(seed);
    Orders o;
    o.p = static_cast<int>(a.size());
    o.d = order_d;
    o.q = static_cast<int>(m.size());
    const dvec path =
        simulate_path(points, mean_value, integrated_ar(a, order_d), m, sd, seed_value);
    return path_table(path, model_title(o, "", false));
}

CellMatrix sarima_simulate(const CellMatrix& numPoints, const CellMatrix& mean,
                           const CellMatrix& ar, const CellMatrix& d, const CellMatrix& ma,
                           const CellMatrix& seasonalPeriod, const CellMatrix& seasonalAR,
                           const CellMatrix& seasonalD, const CellMatrix& seasonalMA,
                           const CellMatrix& sigma, const CellMatrix& seed) {
    const int points = read_positive_count(numPoints, kNumPoints, kNumPointsSign);
    double mean_value = 0.0;
    read_double(mean, kMean, mean_value);
    GivenModel model;
    Orders& o = model.orders;
    o.seasonal = true;
    model.ar = read_coefficients(ar, "AR");
    o.d = read_simulated_d(d);
    model.ma = read_coefficients(ma, "MA");
    o.s = read_order(seasonalPeriod, "seasonalPeriod");
    model.seasonal_ar = read_coefficients(seasonalAR, "seasonalAR");
    o.D = read_order(seasonalD, "seasonalD");
    model.seasonal_ma = read_coefficients(seasonalMA, "seasonalMA");
    const double sd = read_sigma(sigma, kSigma);
    const unsigned long seed_value = read_simulation_seed(seed);
    o.p = static_cast<int>(model.ar.size());
    o.q = static_cast<int>(model.ma.size());
    o.P = static_cast<int>(model.seasonal_ar.size());
    o.Q = static_cast<int>(model.seasonal_ma.size());
    const ForecastVectors vectors =
        forecast_vectors(o, model.ar, model.ma, model.seasonal_ar, model.seasonal_ma);
    const dvec path = simulate_path(points, mean_value, vectors.c, vectors.m, sd, seed_value);
    return path_table(path, model_title(o, "", false));
}

}  // namespace zentable
