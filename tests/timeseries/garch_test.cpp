#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "../support/tables.hpp"
#include "timeseries/garch.hpp"
#include "timeseries/stochastic_process.hpp"

namespace zentable {
namespace {

// The objective written out again from its definition, in long double, with
// the whole variance path kept: an independent reference for the report.
long double reference_log_likelihood(const dvec& r, double omega, double alpha, double beta) {
    const std::size_t n = r.size();
    long double sum = 0, squares = 0;
    for (double x : r) {
        sum += x;
        squares += static_cast<long double>(x) * x;
    }
    std::vector<long double> h(n);
    h[0] = (squares / n - (sum / n) * (sum / n)) * n / (n - 1);
    long double L = 0;
    for (std::size_t t = 0; t < n; ++t) {
        if (t > 0)
            h[t] = omega + alpha * static_cast<long double>(r[t - 1]) * r[t - 1] + beta * h[t - 1];
        L -= std::log(h[t]) + static_cast<long double>(r[t]) * r[t] / h[t];
    }
    return L;
}

// Returns drawn from omega 1e-5, alpha 0.1, beta 0.85: the fit must report
// the objective at its own estimates, and beat the parameters that made the
// data, as a maximum of the likelihood does.
TEST(Garch, ReportsTheLikelihoodOfItsEstimatesAndBeatsTheTrueParameters) {
    std::mt19937_64 engine(36);
    std::normal_distribution<double> z;
    const double omega = 1e-5, alpha = 0.1, beta = 0.85;
    dvec r(3000);
    double h = omega / (1 - alpha - beta), previous = 0.0;
    for (double& x : r) {
        h = omega + alpha * previous * previous + beta * h;
        x = previous = std::sqrt(h) * z(engine);
    }
    CellMatrix column(r.size() + 1, 1);
    column(0, 0) = "r";
    for (std::size_t i = 0; i < r.size(); ++i)
        column(i + 1, 0) = r[i];

    const CellMatrix omitted(1, 1);
    const CellMatrix table = garch(column, omitted, omitted, omitted);
    const double L = table(1, 1).NumericValue();
    const long double recomputed = reference_log_likelihood(
        r, table(2, 1).NumericValue(), table(3, 1).NumericValue(), table(4, 1).NumericValue());
    EXPECT_NEAR(L, static_cast<double>(recomputed), 1e-9 * std::fabs(L));
    EXPECT_GT(L, static_cast<double>(reference_log_likelihood(r, omega, alpha, beta)));
}

TEST(StochasticProcess, SeedsAndTheShiftedFitAgreeWithTheirDefinitions) {
    // The timer seed moves on with every call, even within one second.
    EXPECT_NE(simulate_process(Process::normal, 3, 0.0, 0.0, 1.0, 0.0, 0),
              simulate_process(Process::normal, 3, 0.0, 0.0, 1.0, 0.0, 0));
    EXPECT_EQ(simulate_process(Process::shifted_lognormal, 50, 10.0, 0.02, 0.3, 0.0, 9),
              simulate_process(Process::lognormal, 50, 10.0, 0.02, 0.3, 0.0, 9));

    // The reported fit is the lognormal fit of the path moved by the shift.
    const dvec x = simulate_process(Process::shifted_lognormal, 200, 5.0, 0.0, 0.1, 3.0, 4);
    const ProcessFit fit = shifted_lognormal_process_fit(x);
    dvec moved = x;
    for (double& v : moved)
        v += fit.shift;
    const ProcessFit at_shift = lognormal_process_fit(moved);
    EXPECT_EQ(fit.minus_two_log_likelihood, at_shift.minus_two_log_likelihood);
    EXPECT_EQ(fit.mu, at_shift.mu);
    EXPECT_EQ(fit.sigma, at_shift.sigma);
}

}  // namespace
}  // namespace zentable
