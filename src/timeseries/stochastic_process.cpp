#include "timeseries/stochastic_process.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <string>

#include "numeric/random.hpp"
#include "timeseries/nelder_mead.hpp"
#include "timeseries/series.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kNotPositive = "The input values for lognormal process must be positive";
// Where the shift leaves a value at or below 0 the objective stands far
// above any likelihood and still finite, so the simplex walks back in.
constexpr double kOutside = 1.7976931348623158e+307;

// The fit of a path's steps once its values (or their logarithms) are known.
ProcessFit fit_steps(const double* x, std::size_t n) {
    ProcessFit fit;
    if (n < 2)
        return fit;
    const double steps = static_cast<double>(n - 1);
    fit.mu = (x[n - 1] - x[0]) / steps;
    double sum = 0.0;
    for (std::size_t t = 1; t < n; ++t) {
        const double d = x[t] - x[t - 1] - fit.mu;
        sum += d * d;
    }
    const double v = sum / steps;
    fit.sigma = std::sqrt(v);
    fit.minus_two_log_likelihood = (std::log(v * 6.28318530717958) + 1.0) * steps;
    return fit;
}

// The lognormal fit from the logarithms of the path: the density of x[t]
// given x[t - 1] carries the Jacobian 1 / x[t] beside the normal density of
// the log step.
ProcessFit fit_logarithms(const dvec& logs) {
    ProcessFit fit = fit_steps(logs.data(), logs.size());
    double sum = 0.0;
    for (std::size_t t = 1; t < logs.size(); ++t)
        sum += logs[t];
    fit.mu = fit.mu + fit.sigma * fit.sigma * 0.5;
    fit.minus_two_log_likelihood = fit.minus_two_log_likelihood + 2.0 * sum;
    return fit;
}

Process read_process(const CellMatrix& process, const char* message) {
    std::string name;
    read_text(process, message, name);
    name = trim(name);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (name == "N" || name == "NORMAL")
        return Process::normal;
    if (name == "LN" || name == "LOGNORMAL")
        return Process::lognormal;
    if (name == "SLN" || name == "SHIFTEDLOGNORMAL")
        return Process::shifted_lognormal;
    throw message;
}

double read_number(const CellMatrix& cell, const char* message, double value) {
    read_double(cell, message, value);
    return value;
}

}  // namespace

ProcessFit normal_process_fit(const dvec& x) {
    return fit_steps(x.data(), x.size());
}

ProcessFit lognormal_process_fit(const dvec& x) {
    for (double v : x)
        if (!(v > 0.0))
            throw kNotPositive;
    dvec logs(x.size());
    for (std::size_t t = 0; t < x.size(); ++t)
        logs[t] = std::log(x[t]);
    return fit_logarithms(logs);
}

ProcessFit shifted_lognormal_process_fit(const dvec& x) {
    const auto [low, high] = std::minmax_element(x.begin(), x.end());
    const double lo = *low;
    const double range = *high - lo;
    dvec logs(x.size());
    const Objective objective = [&](const dvec& c) {
        if (!(c[0] + lo > range * 1e-08))
            return kOutside;
        for (std::size_t t = 0; t < x.size(); ++t)
            logs[t] = x[t] + c[0];
        for (double& v : logs)
            v = std::log(v);
        return fit_logarithms(logs).minus_two_log_likelihood;
    };
    const SimplexResult best = nelder_mead(objective, {range * 0.05 - lo});
    if (!best.converged)
        throw "Not converge in searching parameters in shifted lognormal process";

    const double shift = best.point[0];
    dvec shifted(x.size());
    for (std::size_t t = 0; t < x.size(); ++t)
        shifted[t] = x[t] + shift;
    ProcessFit fit = lognormal_process_fit(shifted);
    fit.shift = shift;
    return fit;
}

dvec simulate_process(Process process, int numPoints, double initialValue, double mu, double sigma,
                      double shift, unsigned long seed) {
    MersenneTwister generator(seed);
    dvec x(static_cast<std::size_t>(numPoints));
    x[0] = initialValue;
    const double a = mu - 0.5 * sigma * sigma;
    for (std::size_t t = 0; t + 1 < x.size(); ++t) {
        const double e = sigma * normal_draw(generator);
        switch (process) {
            case Process::normal:
                x[t + 1] = x[t] + mu + e;
                break;
            case Process::lognormal:
                x[t + 1] = x[t] * std::exp(a + e);
                break;
            case Process::shifted_lognormal:
                x[t + 1] = (x[t] + shift) * std::exp(a + e) - shift;
                break;
        }
    }
    return x;
}

CellMatrix stochastic_process(const CellMatrix& x, const CellMatrix& process) {
    // A cell that is not a number is a missing point and drops out.
    const dvec path = read_series(x, {"there is no input data for returns",
                                      "Input data for returns must be in one column",
                                      "Header for variable name must be a string"})
                          .values;
    const Process kind =
        read_process(process, "Valid process is NORMAL, LOGNORMAL, or SHIFTEDLOGNORMAL");

    ProcessFit fit;
    const char* title = nullptr;
    switch (kind) {
        case Process::normal:
            fit = normal_process_fit(path);
            title = "Parameters of a Normal Process";
            break;
        case Process::lognormal:
            fit = lognormal_process_fit(path);
            title = "Parameters of a Lognormal Process";
            break;
        case Process::shifted_lognormal:
            fit = shifted_lognormal_process_fit(path);
            title = "Parameters of a Shifted Lognormal Process";
            break;
    }

    const std::size_t rows = kind == Process::shifted_lognormal ? 4 : 3;
    CellMatrix table(rows + 1, 2);
    table(0, 0) = title;
    const char* const labels[] = {"-2Log-likelihood", "Mu", "Sigma", "Shift"};
    const double values[] = {fit.minus_two_log_likelihood, fit.mu, fit.sigma, fit.shift};
    for (std::size_t i = 0; i < rows; ++i) {
        table(i + 1, 0) = labels[i];
        table(i + 1, 1) = values[i];
    }
    end_report(table, "stochastic_process");
    return table;
}

CellMatrix stochastic_process_simulate(const CellMatrix& process, const CellMatrix& numPoints,
                                       const CellMatrix& initialValue, const CellMatrix& mu,
                                       const CellMatrix& sigma, const CellMatrix& shift,
                                       const CellMatrix& seed) {
    const Process kind = read_process(
        process, "Valid process is N (NORMAL), LN (LOGNORMAL), or SLN (SHIFTEDLOGNORMAL)");
    int points = 0;
    read_int_required(numPoints, "Input numPoints must be a positive integer", points);
    if (points < 1)
        throw "Input numPoints must be a positive integerr";
    double initial = 0.0;
    read_double_required(initialValue, "Input initialValue must be a number", initial);
    const double drift = read_number(mu, "Input mu must be a number", 0.0);
    const char* kSigma = "Input sigma must be a non-negative number";
    const double volatility = read_number(sigma, kSigma, 1.0);
    if (!(volatility >= 0.0))
        throw kSigma;
    const double offset = read_number(shift, "Input shift must be a number", 0.0);
    if (kind == Process::shifted_lognormal && !(initial + offset > 0.0))
        throw "The initial value after shifting must be positive for SLN";
    const char* kSeed = "Input seed must be a non-negative integer";
    int seed_value = 0;
    read_int(seed, kSeed, seed_value);
    if (seed_value < 0)
        throw kSeed;

    const dvec path = simulate_process(kind, points, initial, drift, volatility, offset,
                                       static_cast<unsigned long>(seed_value));
    CellMatrix table(path.size() + 1, 2);
    table(0, 0) = "Step";
    table(0, 1) = "Value";
    for (std::size_t t = 0; t < path.size(); ++t) {
        table(t + 1, 0) = static_cast<double>(t);
        table(t + 1, 1) = path[t];
    }
    return table;
}

}  // namespace zentable
