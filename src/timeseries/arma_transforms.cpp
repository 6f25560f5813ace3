#include "timeseries/arma_transforms.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>

#include "timeseries/series.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr const char* kAr = "Input ar must be numbers";
constexpr const char* kMa = "Input ma must be numbers";
constexpr const char* kSigma = "Input sigma must be a positive number";

// A coefficient of lag k from 1, 0 beyond the vector.
double at_lag(const dvec& coefficients, std::size_t k) {
    return k <= coefficients.size() ? coefficients[k - 1] : 0.0;
}

struct Arma {
    dvec ar;
    dvec ma;
};

Arma read_arma(const CellMatrix& ar, const CellMatrix& ma) {
    Arma out;
    read_double_vector_optional(ar, kAr, out.ar);
    read_double_vector_optional(ma, kMa, out.ma);
    return out;
}

double read_positive_sigma(const CellMatrix& sigma) {
    double value = 1.0;
    read_double(sigma, kSigma, value);
    if (!(value > 0.0)) {
        throw kSigma;
    }
    return value;
}

CellMatrix weights_table(const dvec& weights, const std::string& form) {
    const std::size_t lags = weights.size() - 1;
    CellMatrix table(lags + 1, 2);
    table(0, 0) = "Lag";
    table(0, 1) = form + "(" + std::to_string(lags) + ")";
    for (std::size_t i = 1; i <= lags; ++i) {
        table(i, 0) = static_cast<double>(i);
        table(i, 1) = weights[i];
    }
    return table;
}

}  // namespace

dvec ma_weights(const dvec& ar, const dvec& ma, int lag) {
    dvec psi(static_cast<std::size_t>(lag) + 1, 0.0);
    psi[0] = 1.0;
    for (std::size_t i = 1; i < psi.size(); ++i) {
        double value = at_lag(ma, i);
        for (std::size_t k = 0; k < i; ++k) {
            value += at_lag(ar, i - k) * psi[k];
        }
        psi[i] = value;
    }
    return psi;
}

dvec ar_weights(const dvec& ar, const dvec& ma, int lag) {
    dvec pi(static_cast<std::size_t>(lag) + 1, 0.0);
    pi[0] = -1.0;
    for (std::size_t i = 1; i < pi.size(); ++i) {
        double value = at_lag(ar, i);
        for (std::size_t k = 0; k < i; ++k) {
            value -= at_lag(ma, i - k) * pi[k];
        }
        pi[i] = value;
    }
    return pi;
}

dvec arma_autocovariances(const dvec& ar, const dvec& ma, double sigma, int maxLag) {
    const std::size_t p = ar.size();
    const std::size_t q = ma.size();
    const dvec psi = ma_weights(ar, ma, static_cast<int>(q));
    const double variance = sigma * sigma;
    auto r = [&](std::size_t k) {
        if (k > q) {
            return 0.0;
        }
        double sum = 0.0;
        for (std::size_t j = k; j <= q; ++j) {
            sum += (j == 0 ? 1.0 : ma[j - 1]) * psi[j - k];
        }
        return variance * sum;
    };

    dmat system(p + 1, dvec(p + 1, 0.0));
    dvec right(p + 1);
    for (std::size_t k = 0; k <= p; ++k) {
        system[k][k] = 1.0;
        right[k] = r(k);
    }
    for (std::size_t k = 0; k <= p; ++k) {
        for (std::size_t j = 1; j <= p; ++j) {
            const std::size_t lag = k > j ? k - j : j - k;
            system[k][lag] -= ar[j - 1];
        }
    }
    const dvec head = mat_vec(inverse(system), right);

    const std::size_t last = std::max(p + 1, static_cast<std::size_t>(maxLag));
    dvec gamma(last + 1, 0.0);
    std::copy(head.begin(), head.end(), gamma.begin());
    for (std::size_t k = p + 1; k <= static_cast<std::size_t>(maxLag); ++k) {
        double value = r(k);
        for (std::size_t j = 1; j <= p; ++j) {
            value += ar[j - 1] * gamma[k > j ? k - j : j - k];
        }
        gamma[k] = value;
    }
    return gamma;
}

dmat arma_state_covariance(const dvec& ar, const dvec& ma, double sigma) {
    const std::size_t p = ar.size();
    const std::size_t r = std::max(p, ma.size() + 1);
    dmat f(r, dvec(r, 0.0));
    for (std::size_t i = 0; i < p; ++i) {
        f[i][0] = ar[i];
    }
    for (std::size_t i = 0; i + 1 < r; ++i) {
        f[i][i + 1] = 1.0;
    }
    dvec g(r, 0.0);
    g[0] = 1.0;
    std::copy(ma.begin(), ma.end(), g.begin() + 1);

    // S = F S F' + sigma^2 G G' as one linear system in the entries of S,
    // taken row after row.
    const std::size_t r2 = r * r;
    dmat system(r2, dvec(r2, 0.0));
    dvec right(r2);
    const double variance = sigma * sigma;
    for (std::size_t i = 0; i < r; ++i) {
        for (std::size_t j = 0; j < r; ++j) {
            const std::size_t row = i * r + j;
            for (std::size_t k = 0; k < r; ++k) {
                for (std::size_t l = 0; l < r; ++l) {
                    system[row][k * r + l] = (row == k * r + l ? 1.0 : 0.0) - f[i][k] * f[j][l];
                }
            }
            right[row] = variance * (g[i] * g[j]);
        }
    }
    const dvec entries = mat_vec(inverse(system), right);
    dmat s(r, dvec(r));
    for (std::size_t i = 0; i < r; ++i) {
        for (std::size_t j = 0; j < r; ++j) {
            s[i][j] = entries[i * r + j];
        }
    }
    return s;
}

CellMatrix arma_to_ma(const CellMatrix& ar, const CellMatrix& ma, const CellMatrix& maxLag) {
    const Arma arma = read_arma(ar, ma);
    const int lag = read_max_lag(maxLag, 10);
    return weights_table(ma_weights(arma.ar, arma.ma, lag), "MA");
}

CellMatrix arma_to_ar(const CellMatrix& ar, const CellMatrix& ma, const CellMatrix& maxLag) {
    const Arma arma = read_arma(ar, ma);
    const int lag = read_max_lag(maxLag, 10);
    return weights_table(ar_weights(arma.ar, arma.ma, lag), "AR");
}

CellMatrix acf_of_arma(const CellMatrix& ar, const CellMatrix& ma, const CellMatrix& sigma,
                       const CellMatrix& maxLag) {
    const Arma arma = read_arma(ar, ma);
    const double sd = read_positive_sigma(sigma);
    const int lag = read_max_lag(maxLag, 10);
    const dvec gamma = arma_autocovariances(arma.ar, arma.ma, sd, lag);
    CellMatrix table(gamma.size() + 1, 2);
    table(0, 0) = "Lag";
    table(0, 1) = "ACF";
    for (std::size_t k = 0; k < gamma.size(); ++k) {
        table(k + 1, 0) = static_cast<double>(k);
        table(k + 1, 1) = gamma[k];
    }
    return table;
}

CellMatrix ddacf_of_arma(const CellMatrix& ar, const CellMatrix& ma, const CellMatrix& sigma) {
    const Arma arma = read_arma(ar, ma);
    const double sd = read_positive_sigma(sigma);
    const dmat s = arma_state_covariance(arma.ar, arma.ma, sd);
    CellMatrix table(s.size(), s.size());
    for (std::size_t i = 0; i < s.size(); ++i) {
        for (std::size_t j = 0; j < s.size(); ++j) {
            table(i, j) = s[i][j];
        }
    }
    return table;
}

}  // namespace zentable
