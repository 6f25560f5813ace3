#include "regression/weighted_regression.hpp"

#include <array>
#include <cmath>
#include <cstddef>

#include "numeric/incomplete_beta.hpp"
#include "numeric/symmetric_eigen.hpp"

namespace zentable {

namespace {

// A standard deviation this small would blow up a correlation; it divides as 1.
double safe_sd(double sd) {
    return sd > 1e-8 ? sd : 1.0;
}

struct OneVariableSums {
    double sum_weight, x_mean, y_mean, sxx, sxy, syy;
};

// One weighted variable, as every local line of a smoother is: the sums of
// central_moments in the same order, kept in registers. Each of the L lanes
// weighs the same records by its own weights (lane k's weight of record r at
// w[k][r - begin]); independent lanes let the additions overlap, while each
// lane's sums still add in record order.
template <std::size_t L, class X>
std::array<OneVariableSums, L> one_variable_sums(X x, const dvec& y,
                                                 const std::array<const double*, L>& w,
                                                 std::size_t begin, std::size_t end) {
    std::array<double, L> sum_w{}, sum_wx{}, sum_wy{};
    for (std::size_t r = begin; r < end; ++r) {
        const double xr = x(r), yr = y[r];
        for (std::size_t k = 0; k < L; ++k) {
            const double wr = w[k][r - begin];
            sum_w[k] += wr;
            sum_wx[k] += wr * xr;
            sum_wy[k] += wr * yr;
        }
    }
    std::array<double, L> mean, y_mean, s_xx{}, s_xy{}, s_yy{};
    for (std::size_t k = 0; k < L; ++k) {
        mean[k] = sum_wx[k] / sum_w[k];
        y_mean[k] = sum_wy[k] / sum_w[k];
    }
    for (std::size_t r = begin; r < end; ++r) {
        const double xr = x(r), yr = y[r];
        for (std::size_t k = 0; k < L; ++k) {
            const double wr = w[k][r - begin];
            const double d = xr - mean[k];
            const double dy = yr - y_mean[k];
            const double wd = wr * d;
            s_xx[k] += wd * d;
            s_xy[k] += wd * dy;
            s_yy[k] += wr * dy * dy;
        }
    }
    std::array<OneVariableSums, L> out;
    for (std::size_t k = 0; k < L; ++k)
        out[k] = {sum_w[k], mean[k], y_mean[k], s_xx[k], s_xy[k], s_yy[k]};
    return out;
}

// Standard deviations and correlations from the sums of squares and products
// about the means (sxx the upper triangle, row-major).
void finish_moments(Moments& m, const dvec& sxx, const dvec& sxy, double syy) {
    const std::size_t p = m.x_mean.size();
    m.x_sd.resize(p);
    for (std::size_t j = 0; j < p; ++j)
        m.x_sd[j] = std::sqrt(sxx[j * p + j] / m.sum_weight);
    m.y_sd = std::sqrt(syy / m.sum_weight);

    m.corr_xx.assign(p, dvec(p));
    m.corr_xy.resize(p);
    for (std::size_t i = 0; i < p; ++i) {
        for (std::size_t j = i; j < p; ++j) {
            const double c =
                sxx[i * p + j] / m.sum_weight / safe_sd(m.x_sd[i]) / safe_sd(m.x_sd[j]);
            m.corr_xx[i][j] = c;
            m.corr_xx[j][i] = c;
        }
        m.corr_xy[i] = sxy[i] / m.sum_weight / safe_sd(m.x_sd[i]) / safe_sd(m.y_sd);
    }
}

Moments line_moments(const OneVariableSums& sums) {
    Moments m;
    m.sum_weight = sums.sum_weight;
    m.x_mean = {sums.x_mean};
    m.y_mean = sums.y_mean;
    finish_moments(m, {sums.sxx}, {sums.sxy}, sums.syy);
    return m;
}

// Both passes walk the records in order, so each sum adds in record order.
// A null y skips the y sums; a null weight weighs every record 1.0, which
// gives the same sums as a weight vector of ones. Only the records from
// `begin` to `end` enter, so a moving window needs no copy of its rows.
Moments central_moments(const dmat& x, const dvec* y, const dvec* weight, std::size_t begin,
                        std::size_t end) {
    const std::size_t p = end > begin ? x[begin].size() : 0;
    Moments m;
    m.x_mean.assign(p, 0.0);
    // Upper triangle of the central cross-products, row-major in one block.
    dvec sxx(p * p, 0.0), sxy(p, 0.0);
    double syy = 0.0;

    if (p == 1 && y && weight) {
        const OneVariableSums sums = one_variable_sums<1>(
            [&x](std::size_t r) { return x[r][0]; }, *y, {weight->data() + begin}, begin, end)[0];
        m.sum_weight = sums.sum_weight;
        m.x_mean[0] = sums.x_mean;
        m.y_mean = sums.y_mean;
        sxx[0] = sums.sxx;
        sxy[0] = sums.sxy;
        syy = sums.syy;
    } else {
        double sum_wy = 0.0;
        for (std::size_t r = begin; r < end; ++r) {
            const double w = weight ? (*weight)[r] : 1.0;
            const double* row = x[r].data();
            m.sum_weight += w;
            for (std::size_t j = 0; j < p; ++j)
                m.x_mean[j] += w * row[j];
            if (y)
                sum_wy += w * (*y)[r];
        }
        for (std::size_t j = 0; j < p; ++j)
            m.x_mean[j] /= m.sum_weight;
        m.y_mean = sum_wy / m.sum_weight;

        dvec d(p);
        const double* mean = m.x_mean.data();
        for (std::size_t r = begin; r < end; ++r) {
            const double w = weight ? (*weight)[r] : 1.0;
            const double* row = x[r].data();
            for (std::size_t j = 0; j < p; ++j)
                d[j] = row[j] - mean[j];
            const double dy = y ? (*y)[r] - m.y_mean : 0.0;
            for (std::size_t i = 0; i < p; ++i) {
                const double wd = w * d[i];
                double* s = &sxx[i * p];
                for (std::size_t j = i; j < p; ++j)
                    s[j] += wd * d[j];
                sxy[i] += wd * dy;
            }
            syy += w * dy * dy;
        }
    }

    finish_moments(m, sxx, sxy, syy);
    return m;
}

}  // namespace

Moments weighted_moments(const dmat& x, const dvec& y, const dvec& weight) {
    if (x.size() != y.size() || x.size() != weight.size())
        throw "Data matrix is not conformable";
    return central_moments(x, &y, &weight, 0, x.size());
}

Moments weighted_moments(const dmat& x, const dvec& y, const dvec& weight, std::size_t begin,
                         std::size_t end) {
    if (x.size() != y.size() || x.size() != weight.size() || begin > end || end > x.size())
        throw "Data matrix is not conformable";
    return central_moments(x, &y, &weight, begin, end);
}

Moments weighted_line_moments(const dvec& x, const dvec& y, const dvec& weight, std::size_t begin,
                              std::size_t end) {
    if (x.size() != y.size() || x.size() != weight.size() || begin > end || end > x.size())
        throw "Data matrix is not conformable";
    return line_moments(one_variable_sums<1>([&x](std::size_t r) { return x[r]; }, y,
                                             {weight.data() + begin}, begin, end)[0]);
}

std::array<Moments, 4> weighted_line_moments(const dvec& x, const dvec& y,
                                             const std::array<const double*, 4>& weights,
                                             std::size_t begin, std::size_t end) {
    if (x.size() != y.size() || begin > end || end > x.size())
        throw "Data matrix is not conformable";
    const auto sums =
        one_variable_sums<4>([&x](std::size_t r) { return x[r]; }, y, weights, begin, end);
    return {line_moments(sums[0]), line_moments(sums[1]), line_moments(sums[2]),
            line_moments(sums[3])};
}

Moments unit_moments(const dmat& x) {
    return central_moments(x, nullptr, nullptr, 0, x.size());
}

dmat dependency_matrix(const dmat& x) {
    return dependency_matrix(unit_moments(x));
}

dmat dependency_matrix(const Moments& m) {
    const std::size_t p = m.x_mean.size();
    if (p == 0)
        return {};
    const EigenPairs eigen = symmetricEigen(m.corr_xx);
    const double threshold = kRankTolerance * eigen.values[0];

    dmat dep(p + 1);
    for (std::size_t c = 0; c < p; ++c) {
        if (eigen.values[c] > threshold)
            continue;
        // A constant column has no spread; it divides as 1 so that its
        // relationship reads as the column equal to its mean.
        double constant = 0.0;
        for (std::size_t i = 0; i < p; ++i) {
            const double entry = eigen.vectors[i][c] / safe_sd(m.x_sd[i]);
            dep[i].push_back(entry);
            constant -= m.x_mean[i] * entry;
        }
        dep[p].push_back(constant);
    }
    if (dep[0].empty())
        return {};

    const double t2 = kRankTolerance * max_abs(dep);
    for (dvec& row : dep)
        for (double& entry : row)
            if (std::fabs(entry) <= t2)
                entry = 0.0;
    return dep;
}

double t_two_sided_p_value(double t, double df) {
    const double a = std::fabs(t);
    const double h = 0.5 * betai(df / 2, 0.5, df / (a * a + df));
    return 2 * h;
}

StandardisedSolve regress_on_correlations(int n, const dmat& rxx, const dvec& rxy, double ryy) {
    const std::size_t p = rxy.size();
    dmat augmented(p + 1, dvec(p + 1));
    for (std::size_t i = 0; i < p; ++i) {
        for (std::size_t j = 0; j < p; ++j)
            augmented[i][j] = rxx[i][j];
        augmented[i][p] = rxy[i];
        augmented[p][i] = rxy[i];
    }
    augmented[p][p] = ryy;

    ivec pivots(p);
    for (std::size_t i = 0; i < p; ++i)
        pivots[i] = static_cast<std::int32_t>(i);
    const dmat swept = sweep(augmented, pivots);

    StandardisedSolve s;
    s.df = n - static_cast<int>(p) - 1;
    if (s.df < 2)
        s.df = 1;

    double q = swept[p][p];
    if (q < 0) {
        const double relative = q / max_abs(swept);
        if (relative >= -kRankTolerance && relative <= kRankTolerance)
            q = 0.0;
    }
    s.r_square = 1 - q;
    if (s.r_square < 0)
        s.r_square = 0;
    if (s.r_square > 1)
        s.r_square = 1;
    const double b = std::sqrt((1 - s.r_square) / s.df);

    s.beta.resize(p);
    s.se.resize(p);
    s.t.resize(p);
    s.p_values.resize(p);
    for (std::size_t i = 0; i < p; ++i) {
        s.beta[i] = swept[i][p];
        s.se[i] = std::sqrt(swept[i][i]) * b;
        if (s.se[i] == 0.0) {
            s.t[i] = 0;
            s.p_values[i] = 0;
        } else {
            s.t[i] = s.beta[i] / s.se[i];
            s.p_values[i] = t_two_sided_p_value(s.t[i], s.df);
        }
    }
    s.inv.assign(p, dvec(p));
    for (std::size_t i = 0; i < p; ++i)
        for (std::size_t j = 0; j < p; ++j)
            s.inv[i][j] = swept[i][j];
    return s;
}

RegressionFit fit_weighted_regression(const dmat& x, const dvec& y, const dvec& weight,
                                      const dvec& lambda) {
    return fit_from_moments(weighted_moments(x, y, weight), static_cast<int>(x.size()), lambda);
}

RegressionFit fit_from_moments(const Moments& m, int n, const dvec& lambda) {
    const std::size_t p = m.x_mean.size();
    dmat rxx = m.corr_xx;
    if (!lambda.empty()) {
        if (lambda.size() != p)
            throw "ridge lambda vector size does not match the size of x";
        for (std::size_t i = 0; i < p; ++i)
            rxx[i][i] += lambda[i];
    }
    const StandardisedSolve s = regress_on_correlations(n, rxx, m.corr_xy, 1.0);

    RegressionFit fit;
    fit.n = n;
    fit.sum_weight = m.sum_weight;
    fit.y_mean = m.y_mean;
    fit.y_sd = m.y_sd;
    fit.r_square = s.r_square;
    const double sy = m.y_sd;

    fit.coefs.resize(p + 1);
    fit.std_errors.resize(p + 1);
    fit.t_values = s.t;
    fit.p_values = s.p_values;
    double intercept = m.y_mean;
    for (std::size_t i = 0; i < p; ++i) {
        fit.coefs[i] = s.beta[i] * sy / m.x_sd[i];
        fit.std_errors[i] = s.se[i] * sy / m.x_sd[i];
        intercept -= m.x_mean[i] * fit.coefs[i];
    }

    double acc = 1.0;
    for (std::size_t i = 0; i < p; ++i)
        for (std::size_t j = 0; j < p; ++j)
            acc += (m.x_mean[i] / m.x_sd[i]) * (m.x_mean[j] / m.x_sd[j]) * s.inv[i][j];
    acc = (1 - s.r_square) / s.df * acc;
    const double intercept_se = std::sqrt(acc) * sy;
    const double intercept_t = (intercept_se >= -kZeroTolerance && intercept_se <= kZeroTolerance)
                                   ? 0.0
                                   : intercept / intercept_se;

    fit.coefs[p] = intercept;
    fit.std_errors[p] = intercept_se;
    fit.t_values.push_back(intercept_t);
    // Always computed: a zero error gives p value 1 here but 0 on a variable.
    fit.p_values.push_back(t_two_sided_p_value(intercept_t, s.df));
    return fit;
}

RegressionStats regression_stats(int n, int k, double sum_weight, double r_square, double y_mean,
                                 double y_sd) {
    RegressionStats st;
    st.sst = sum_weight * (y_sd * y_sd);
    st.sse = (1 - r_square) * st.sst;
    st.ssr = st.sst - st.sse;
    st.rmse = n > k ? std::sqrt(st.sse / (n - k)) : 0;
    st.coeff_var = st.rmse / y_mean;
    st.adj_r_square = n > k ? 1 - (n - 1) * (1 - r_square) / (n - k) : r_square;
    const double unexplained = 1 - r_square;
    if (k >= 2 && n > k && !(unexplained >= -kZeroTolerance && unexplained <= kZeroTolerance)) {
        st.f_value = (r_square / (1 - r_square)) * (n - k) / (k - 1);
        st.p_value = f_upper(st.f_value, k - 1, n - k);
    }
    return st;
}

}  // namespace zentable
