#include "regression/logistic_fit.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>

#include "commands/progress.hpp"
#include "numeric/distributions.hpp"

namespace zentable {

namespace {

constexpr int kMaxIterations = 100;
constexpr double kConvergence = 1e-8;

// Mismatched lengths are a programming fault that no command can reach;
// going on would read past the data.
[[noreturn]] void internal_fault(const char* text) {
    std::printf("%s\n", text);
    std::fflush(stdout);
    std::exit(EXIT_FAILURE);
}

bool conformable(const dmat& x, const dvec& y, const dvec& weight, std::size_t coefficients) {
    if (x.size() != y.size() || x.size() != weight.size())
        return false;
    for (const dvec& row : x)
        if (row.size() + 1 != coefficients)
            return false;
    return true;
}

// The logarithm of a probability, kept finite at 0.
double clamped_log(double p) {
    return std::log(std::fabs(p) <= kZeroTolerance ? kZeroTolerance : p);
}

}  // namespace

dvec binary_recode(dvec& y) {
    const std::set<double> distinct(y.begin(), y.end());
    if (distinct.size() != 2)
        throw "Variable have " + std::to_string(distinct.size()) + " categories. It must be binary";
    const dvec levels(distinct.begin(), distinct.end());
    if (levels[0] == 0.0 && levels[1] == 1.0)
        return levels;
    const double middle = (levels[0] + levels[1]) * 0.5;
    for (double& v : y)
        v = v >= middle ? 1.0 : 0.0;
    return levels;
}

LogLikelihood logistic_loglik(const dmat& x, const dvec& y, const dvec& weight, const dvec& coefs) {
    if (coefs.empty() || !conformable(x, y, weight, coefs.size()))
        internal_fault("data matrix is not conformable");
    const std::size_t p = coefs.size() - 1;
    LogLikelihood out;
    out.gradient.assign(p + 1, 0.0);
    out.hessian.assign(p + 1, dvec(p + 1, 0.0));
    dmat& h = out.hessian;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const dvec& row = x[i];
        double eta = coefs[p];
        for (std::size_t j = 0; j < p; ++j)
            eta += coefs[j] * row[j];
        const double prob = 1.0 / (std::exp(-eta) + 1.0);
        const double q = 1.0 - prob;
        const double w = weight[i];
        out.value += w * (y[i] * clamped_log(prob) + (1.0 - y[i]) * clamped_log(q));
        const double residual = (y[i] - prob) * w;
        const double curvature = w * prob * q;
        for (std::size_t j = 0; j < p; ++j) {
            out.gradient[j] += residual * row[j];
            for (std::size_t m = j; m < p; ++m)
                h[j][m] -= curvature * row[j] * row[m];
            h[j][p] -= curvature * row[j];
        }
        out.gradient[p] += residual;
        h[p][p] -= curvature;
    }
    for (std::size_t j = 0; j <= p; ++j)
        for (std::size_t m = 0; m < j; ++m)
            h[j][m] = h[m][j];
    return out;
}

LogLikelihood logistic_newton(const dmat& x, const dvec& y, const dvec& weight, const dvec& start,
                              dvec& coefs) {
    if (start.empty() || !conformable(x, y, weight, start.size()))
        internal_fault("data or coefficient matrix are not conformable");
    const std::size_t p = start.size() - 1;
    dmat z = x;
    const ColumnScaling scaling = standardize_columns(z, weight);

    // Zero slopes give the same point on both scales, so the start needs no
    // conversion.
    dvec b = start;
    LogLikelihood current = logistic_loglik(z, y, weight, b);
    bool converged = false;
    for (int iteration = 0; iteration < kMaxIterations && !converged; ++iteration) {
        progress::report(progress::Unit::iterations, iteration + 1, kMaxIterations);
        const double old_ll = current.value;
        const dvec direction = mat_vec(inverse(current.hessian), current.gradient);
        double step = 1.0;
        dvec candidate(p + 1);
        // Halve until the likelihood does not fall; a NaN ends the search too,
        // and a step that has shrunk to nothing returns the old point.
        do {
            for (std::size_t i = 0; i <= p; ++i)
                candidate[i] = b[i] - step * direction[i];
            current = logistic_loglik(z, y, weight, candidate);
            step *= 0.5;
        } while (old_ll > current.value);
        b = candidate;
        double s = 0.0;
        for (std::size_t i = 0; i <= p; ++i)
            s += current.gradient[i] * direction[i];
        converged = std::fabs(s) / (std::fabs(current.value) + 1e-6) < kConvergence;
    }
    if (!converged)
        throw "Not converge after ITMAX in newton";

    const dvec& m = scaling.mean;
    const dvec& sd = scaling.sd;
    coefs = b;
    for (std::size_t j = 0; j < p; ++j) {
        coefs[j] = b[j] / sd[j];
        coefs[p] -= m[j] * coefs[j];
    }
    // The chain rule of x_j = sd_j * z_j + m_j takes the curvature back to
    // the raw scale, where the standard errors are wanted.
    const dmat& h = current.hessian;
    const std::size_t last = p;
    dmat raw(p + 1, dvec(p + 1, 0.0));
    for (std::size_t i = 0; i < p; ++i) {
        for (std::size_t j = i; j < p; ++j)
            raw[i][j] = sd[i] * sd[j] * h[i][j] + m[j] * sd[i] * h[i][last] +
                        m[i] * sd[j] * h[last][j] + m[i] * m[j] * h[last][last];
        raw[i][last] = sd[i] * h[i][last] + m[i] * h[last][last];
    }
    raw[last][last] = h[last][last];
    for (std::size_t i = 0; i <= p; ++i)
        for (std::size_t j = 0; j < i; ++j)
            raw[i][j] = raw[j][i];
    current.hessian = raw;
    return current;
}

void count_target(const dvec& y, const dvec& weight, LogisticFit& fit, double& total,
                  double& events) {
    total = 0.0;
    events = 0.0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        total += weight[i];
        events += weight[i] * y[i];
        if (y[i] >= 0.5) {
            ++fit.n1;
            fit.w1 += weight[i];
        } else {
            fit.w0 += weight[i];
        }
    }
}

double intercept_only_loglik(double total, double events) {
    const double y_bar = events / total;
    return std::log(1.0 - y_bar) * (total - events) + std::log(y_bar) * events;
}

void add_wald_tests(const dmat& hessian, LogisticFit& fit) {
    const dmat covariance = inverse(hessian);
    for (std::size_t i = 0; i < fit.coefs.size(); ++i) {
        const double se = std::sqrt(-covariance[i][i]);
        const double z = fit.coefs[i] / se;
        const double wald = z * z;
        fit.std_errors.push_back(se);
        fit.wald.push_back(wald);
        fit.p_values.push_back(gammq(0.5, wald * 0.5));
    }
}

LogisticFit logistic_fit(const dmat& x, const dvec& y, const dvec& weight) {
    LogisticFit fit;
    double total = 0.0, events = 0.0;
    count_target(y, weight, fit, total, events);
    const std::size_t p = x.empty() ? 0 : x[0].size();
    dvec start(p + 1, 0.0);
    start[p] = std::log(events / (total - events));

    const LogLikelihood result = logistic_newton(x, y, weight, start, fit.coefs);
    fit.ll = result.value;
    fit.ll0 = intercept_only_loglik(total, events);
    add_wald_tests(result.hessian, fit);
    return fit;
}

dvec logistic_predict(const dmat& x, const dvec& coefs) {
    if (coefs.empty())
        internal_fault("Data matrix and coefficients not match");
    const std::size_t p = coefs.size() - 1;
    dvec out;
    out.reserve(x.size());
    for (const dvec& row : x) {
        if (row.size() != p)
            internal_fault("Data matrix and coefficients not match");
        double eta = coefs[p];
        for (std::size_t j = 0; j < p; ++j)
            eta += coefs[j] * row[j];
        out.push_back(1.0 / (std::exp(-eta) + 1.0));
    }
    return out;
}

void write_model_fit_rows(CellMatrix& r, std::size_t top, int n, int k, double ll0, double ll) {
    const double log_n = std::log(static_cast<double>(n));
    r(top, 1) = "Intercept Only";
    r(top, 2) = "Full Model";
    r(top + 1, 0) = "AIC";
    r(top + 1, 1) = 2.0 - 2.0 * ll0;
    r(top + 1, 2) = 2.0 * k - 2.0 * ll;
    r(top + 2, 0) = "SC";
    r(top + 2, 1) = log_n - 2.0 * ll0;
    r(top + 2, 2) = k * log_n - 2.0 * ll;
    r(top + 3, 0) = "-2LogL";
    r(top + 3, 1) = -2.0 * ll0;
    r(top + 3, 2) = -2.0 * ll;
    const double r_square = 1.0 - std::exp(2.0 * (ll0 - ll) / n);
    r(top + 4, 0) = "R-Square";
    r(top + 4, 2) = r_square;
    r(top + 5, 0) = "Max-rescaled R-Square";
    r(top + 5, 2) = r_square / (1.0 - std::exp(2.0 * ll0 / n));
}

}  // namespace zentable
