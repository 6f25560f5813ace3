#include "timeseries/garch.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "timeseries/nelder_mead.hpp"
#include "timeseries/series.hpp"
#include "xlw/report.hpp"

namespace zentable {

namespace {

constexpr const char* kOmega = "Input omega must be a non-negative number";
constexpr const char* kAlpha = "Input alpha must be a non-negative number";
constexpr const char* kBeta = "Input beta must be a non-negative number";
// Out of range the objective stands far above any likelihood and still
// finite, so the simplex keeps comparing and walks back in.
constexpr double kOutside = 1.7976931348623158e+307;

double read_start(const CellMatrix& cell, const char* message, double value) {
    read_double(cell, message, value);
    if (!(value >= 0.0))
        throw message;
    return value;
}

double sample_variance(const dvec& r) {
    const double n = static_cast<double>(r.size());
    double sum = 0.0;
    double sum_squares = 0.0;
    for (double x : r) {
        sum += x;
        sum_squares += x * x;
    }
    const double mean = sum / n;
    return (sum_squares / n - mean * mean) * n / (n - 1.0);
}

}  // namespace

GarchLikelihood::GarchLikelihood(const dvec& returns)
    : squares_(returns.size()), start_variance_(sample_variance(returns)) {
    for (std::size_t t = 0; t < returns.size(); ++t)
        squares_[t] = returns[t] * returns[t];
}

// The terms in the order of the sum, a block at a time: the variances of the
// block first, then their logarithms in one sweep, then the block's terms.
// Blocks small enough to stay in the first-level cache let the processor
// overlap one block's sum with the next block's variances.
double GarchLikelihood::operator()(double omega, double alpha, double beta) const {
    constexpr std::size_t kBlock = 64;
    const std::size_t n = squares_.size();
    double logs[kBlock];
    double scaled[kBlock];
    double h = start_variance_;
    double L = 0.0;
    for (std::size_t first = 0; first < n; first += kBlock) {
        const std::size_t size = std::min(kBlock, n - first);
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t t = first + i;
            if (t > 0)
                h = squares_[t - 1] * alpha + omega + h * beta;
            logs[i] = h;
            scaled[i] = squares_[t] / h;
        }
        for (std::size_t k = 0; k < size; ++k)
            logs[k] = std::log(logs[k]);
        std::size_t i = 0;
        if (first == 0) {
            L = -logs[0] - scaled[0];
            i = 1;
        }
        for (; i < size; ++i)
            L -= logs[i] + scaled[i];
    }
    return L;
}

double garch_log_likelihood(const dvec& r, double omega, double alpha, double beta) {
    return GarchLikelihood(r)(omega, alpha, beta);
}

CellMatrix garch(const CellMatrix& returns, const CellMatrix& initialOmega,
                 const CellMatrix& initialAlpha, const CellMatrix& initialBeta) {
    // A cell that is not a number is a missing return and drops out.
    const dvec r = read_series(returns, {"there is no input data for returns",
                                         "Input data for returns must be in one column",
                                         "Header for variable name of returns must be a string"})
                       .values;
    const double omega = read_start(initialOmega, kOmega, 0.00001);
    const double alpha = read_start(initialAlpha, kAlpha, 0.1);
    const double beta = read_start(initialBeta, kBeta, 0.85);
    if (alpha + beta > 1.0)
        throw "alpha + beta must be less than or equal to 1";

    // The first slot is not a parameter; it moves with the simplex like any
    // other and leaves the objective alone.
    GarchLikelihood likelihood(r);
    const Objective objective = [&likelihood](const dvec& p) {
        if (!(p[1] > 0.0 && p[2] > 0.0 && p[3] > 0.0))
            return kOutside;
        return -likelihood(p[1], p[2], p[3]);
    };
    const SimplexResult fit = nelder_mead(objective, {0.0, omega, alpha, beta});
    if (!fit.converged)
        throw "Not converge in searching parameters in garch";

    CellMatrix table(5, 2);
    table(0, 0) = "Parameters of GARCH(1, 1) model from MLE";
    const char* const labels[] = {"GARCH Log-likelihood", "Omega", "Alpha", "Beta"};
    const double values[] = {-fit.value, fit.point[1], fit.point[2], fit.point[3]};
    for (std::size_t i = 0; i < 4; ++i) {
        table(i + 1, 0) = labels[i];
        table(i + 1, 1) = values[i];
    }
    end_report(table, "garch");
    return table;
}

}  // namespace zentable
