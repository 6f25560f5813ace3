#include "timeseries/adf_test.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstddef>

#include "numeric/symmetric_eigen.hpp"
#include "timeseries/mackinnon.hpp"
#include "timeseries/series.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable {

namespace {

constexpr const char* kMaxLag = "Input maxLag must be a non-negative integer";
constexpr const char* kTimeTerms = "Input timeTerms must be a string: nc, c, ct, or ctt";
constexpr const char* kTooLarge = "Input maxLag is too large for this number of datapoints";
// The text of the inverse, whose failure this is.
constexpr const char* kSingular = "matrix singular in inverse matrix";

int time_term_count(const std::string& timeTerms) {
    if (timeTerms == "nc") {
        return 0;
    }
    if (timeTerms == "c") {
        return 1;
    }
    return timeTerms == "ct" ? 2 : 3;
}

std::string read_time_terms(const CellMatrix& timeTerms) {
    std::string text = "ct";
    if (!is_omitted(timeTerms)) {
        read_string(timeTerms, kTimeTerms, text);
    }
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (text != "nc" && text != "c" && text != "ct" && text != "ctt") {
        throw kTimeTerms;
    }
    return text;
}

int default_max_lag(std::size_t n) {
    return static_cast<int>(std::floor(12.0 * std::pow(static_cast<double>(n) / 100.0, 0.25)));
}

// The regressors of one row, t from maxLag + 1 to n - 1: the level x[t - 1],
// the differences d[t - 2] down to d[t - 1 - maxLag] (d[i] = x[i + 1] - x[i]),
// then the time terms. The trend is the row's number over the number of rows:
// any origin and scale of the trend give the lagged level the same estimate
// and standard error, and this one keeps the cross-products of its square
// within a few orders of those of the data.
class AdfRows {
  public:
    AdfRows(const dvec& x, int maxLag, int terms)
        : x_(x), lags_(static_cast<std::size_t>(maxLag)), terms_(static_cast<std::size_t>(terms)) {
        d_.resize(x.size() - 1);
        for (std::size_t i = 0; i + 1 < x.size(); ++i) {
            d_[i] = x[i + 1] - x[i];
        }
        rows_ = x.size() - 1 - lags_;
    }
    std::size_t rows() const { return rows_; }
    std::size_t columns() const { return 1 + lags_ + terms_; }
    double target(std::size_t row) const { return d_[row + lags_]; }

    void fill(std::size_t row, double* z) const {
        const std::size_t t = row + lags_ + 1;
        z[0] = x_[t - 1];
        for (std::size_t j = 1; j <= lags_; ++j) {
            z[j] = d_[t - 1 - j];
        }
        double* term = z + 1 + lags_;
        const double trend = static_cast<double>(row + 1) / static_cast<double>(rows_);
        if (terms_ >= 1) {
            term[0] = 1.0;
        }
        if (terms_ >= 2) {
            term[1] = trend;
        }
        if (terms_ >= 3) {
            term[2] = trend * trend;
        }
    }

  private:
    const dvec& x_;
    dvec d_;
    std::size_t lags_;
    std::size_t terms_;
    std::size_t rows_;
};

// The upper triangle of the cross-products of [z y], each summed over the rows
// in their order; the row is added to every product at once.
dvec cross_products(const AdfRows& rows) {
    const std::size_t q = rows.columns() + 1;
    dvec s(q * q, 0.0), z(q);
    for (std::size_t r = 0; r < rows.rows(); ++r) {
        rows.fill(r, z.data());
        z[q - 1] = rows.target(r);
        for (std::size_t i = 0; i < q; ++i) {
            const double zi = z[i];
            double* si = &s[i * q];
            for (std::size_t j = i; j < q; ++j) {
                si[j] += zi * z[j];
            }
        }
    }
    return s;
}

}  // namespace

AdfFit adf_regression(const dvec& x, int maxLag, const std::string& timeTerms) {
    const long long n = static_cast<long long>(x.size());
    const long long q = 1 + maxLag + time_term_count(timeTerms);
    // At least one residual degree of freedom, so that the residual variance
    // and the standard errors exist.
    if (n - 1 - maxLag <= q) {
        throw kTooLarge;
    }
    const AdfRows rows(x, maxLag, time_term_count(timeTerms));
    const std::size_t p = rows.columns();
    const dvec s = cross_products(rows);
    const std::size_t width = p + 1;

    // The normal equations scaled to a unit diagonal, whose inverse scaled back
    // is the inverse of the cross-products: the pivots of the inverse then
    // compare columns of any units on one footing.
    dvec scale(p);
    for (std::size_t i = 0; i < p; ++i) {
        const double diagonal = s[i * width + i];
        scale[i] = diagonal > 0.0 ? 1.0 / std::sqrt(diagonal) : 1.0;
    }
    dmat scaled(p, dvec(p));
    for (std::size_t i = 0; i < p; ++i) {
        for (std::size_t j = i; j < p; ++j) {
            scaled[i][j] = scale[i] * s[i * width + j] * scale[j];
            scaled[j][i] = scaled[i][j];
        }
    }
    // Columns that are dependent in exact arithmetic (a constant series and a
    // constant term, a straight line and a trend) can leave rounding noise
    // above the inverse's fixed pivot test; on the unit diagonal the rank
    // test of the regressions finds them.
    const EigenPairs eigen = symmetricEigen(scaled);
    if (eigen.values.back() <= kRankTolerance * eigen.values.front()) {
        throw kSingular;
    }
    const dmat inv_scaled = inverse(scaled);
    dmat inv(p, dvec(p));
    for (std::size_t i = 0; i < p; ++i) {
        for (std::size_t j = 0; j < p; ++j) {
            inv[i][j] = scale[i] * inv_scaled[i][j] * scale[j];
        }
    }
    dvec xty(p);
    for (std::size_t i = 0; i < p; ++i) {
        xty[i] = s[i * width + p];
    }
    const dvec beta = mat_vec(inv, xty);

    // The residuals themselves, not y'y less the fitted sum, which cancels.
    double sse = 0.0;
    dvec z(p);
    for (std::size_t r = 0; r < rows.rows(); ++r) {
        rows.fill(r, z.data());
        double fitted = 0.0;
        for (std::size_t j = 0; j < p; ++j) {
            fitted += z[j] * beta[j];
        }
        const double e = rows.target(r) - fitted;
        sse += e * e;
    }
    AdfFit fit;
    fit.rows = static_cast<int>(rows.rows());
    const double variance = sse / static_cast<double>(fit.rows - static_cast<int>(p));
    fit.estimate = beta[0];
    fit.standard_error = std::sqrt(variance * inv[0][0]);
    fit.stat = fit.estimate / fit.standard_error;
    return fit;
}

CellMatrix ADF_test(const CellMatrix& x, const CellMatrix& maxLag, const CellMatrix& timeTerms) {
    const Series series =
        read_series(x, {"there is no input data x", "Input data x must be in one column",
                        "Header for variable name x must be a string"});
    int lags = default_max_lag(series.values.size());
    if (!is_omitted(maxLag)) {
        read_int(maxLag, kMaxLag, lags);
        if (lags < 0) {
            throw kMaxLag;
        }
    }
    const std::string terms = read_time_terms(timeTerms);

    const AdfFit fit = adf_regression(series.values, lags, terms);
    const std::array<double, 3> critical = mackinnon_criticalValue(1, terms, fit.rows);

    CellMatrix table(5, 7);
    table(0, 0) = "Augmented Dickey-Fuller Test";
    const char* const headers[] = {"Estimate", "S.E.", "Stat", "C.V.(1%)", "C.V.(5%)", "C.V.(10%)"};
    for (std::size_t j = 0; j < 6; ++j) {
        table(2, j + 1) = headers[j];
    }
    table(3, 1) = fit.estimate;
    table(3, 2) = fit.standard_error;
    table(3, 3) = fit.stat;
    table(4, 0) = "Unit-root?";
    for (std::size_t level = 0; level < 3; ++level) {
        table(3, level + 4) = critical[level];
        table(4, level + 4) = fit.stat >= critical[level] ? "Yes" : "No";
    }
    return table;
}

}  // namespace zentable
