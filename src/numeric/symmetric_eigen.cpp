#include "numeric/symmetric_eigen.hpp"

#include <cmath>
#include <functional>
#include <map>

namespace zentable {

namespace {

// Householder reduction of the symmetric z to tridiagonal form. On return d
// holds the diagonal, e the subdiagonal in e[1..n-1] (e[0] is 0), and z the
// orthogonal matrix that carries the tridiagonal form back to the original.
// Only the lower triangle of z is read.
void householder_tridiagonal(dmat& z, dvec& d, dvec& e) {
    const int n = static_cast<int>(z.size());
    for (int i = n - 1; i > 0; --i) {
        const int l = i - 1;
        double h = 0.0;
        if (l > 0) {
            // Scaling the row first keeps the sum of squares from over- or
            // underflowing; a zero row needs no reflection at all.
            double scale = 0.0;
            for (int k = 0; k < i; ++k)
                scale += std::fabs(z[i][k]);
            if (scale == 0.0) {
                e[i] = z[i][l];
            } else {
                for (int k = 0; k < i; ++k) {
                    z[i][k] /= scale;
                    h += z[i][k] * z[i][k];
                }
                double f = z[i][l];
                // The sign is chosen against f so that f - g does not cancel.
                double g = f >= 0.0 ? -std::sqrt(h) : std::sqrt(h);
                e[i] = scale * g;
                h -= f * g;
                z[i][l] = f - g;
                f = 0.0;
                for (int j = 0; j < i; ++j) {
                    // The upper triangle stores u / h for the accumulation below.
                    z[j][i] = z[i][j] / h;
                    g = 0.0;
                    for (int k = 0; k <= j; ++k)
                        g += z[j][k] * z[i][k];
                    for (int k = j + 1; k < i; ++k)
                        g += z[k][j] * z[i][k];
                    e[j] = g / h;
                    f += e[j] * z[i][j];
                }
                const double hh = f / (h + h);
                for (int j = 0; j < i; ++j) {
                    f = z[i][j];
                    g = e[j] - hh * f;
                    e[j] = g;
                    for (int k = 0; k <= j; ++k)
                        z[j][k] -= (f * e[k] + g * z[i][k]);
                }
            }
        } else {
            e[i] = z[i][l];
        }
        d[i] = h;
    }
    if (n > 0) {
        d[0] = 0.0;
        e[0] = 0.0;
    }
    // Build the product of the reflections, from the smallest one outwards.
    for (int i = 0; i < n; ++i) {
        if (d[i] != 0.0) {
            for (int j = 0; j < i; ++j) {
                double g = 0.0;
                for (int k = 0; k < i; ++k)
                    g += z[i][k] * z[k][j];
                for (int k = 0; k < i; ++k)
                    z[k][j] -= g * z[k][i];
            }
        }
        d[i] = z[i][i];
        z[i][i] = 1.0;
        for (int j = 0; j < i; ++j) {
            z[j][i] = 0.0;
            z[i][j] = 0.0;
        }
    }
}

// QL with implicit shifts on the tridiagonal (d, e), rotating the columns of z
// along. On return d holds the eigenvalues and column j of z the eigenvector
// of d[j], in no particular order.
void implicit_ql(dvec& d, dvec& e, dmat& z) {
    const int n = static_cast<int>(d.size());
    if (n == 0)
        return;
    for (int i = 1; i < n; ++i)
        e[i - 1] = e[i];
    e[n - 1] = 0.0;

    for (int l = 0; l < n; ++l) {
        int iter = 0;
        int m;
        do {
            // Look for a negligible subdiagonal element to split the matrix.
            for (m = l; m < n - 1; ++m) {
                const double dd = std::fabs(d[m]) + std::fabs(d[m + 1]);
                if (std::fabs(e[m]) + dd == dd)
                    break;
            }
            if (m != l) {
                if (iter++ == 30)
                    throw "Too many iterations in tqli";
                // Wilkinson-style shift from the leading 2 by 2 block.
                double g = (d[l + 1] - d[l]) / (2.0 * e[l]);
                double r = pythag(g, 1.0);
                g = d[m] - d[l] + e[l] / (g + (g >= 0.0 ? std::fabs(r) : -std::fabs(r)));
                double s = 1.0;
                double c = 1.0;
                double p = 0.0;
                int i;
                for (i = m - 1; i >= l; --i) {
                    double f = s * e[i];
                    const double b = c * e[i];
                    r = pythag(f, g);
                    e[i + 1] = r;
                    if (r == 0.0) {
                        // Underflow: deflate here and start the sweep again.
                        d[i + 1] -= p;
                        e[m] = 0.0;
                        break;
                    }
                    s = f / r;
                    c = g / r;
                    g = d[i + 1] - p;
                    r = (d[i] - g) * s + 2.0 * c * b;
                    p = s * r;
                    d[i + 1] = g + p;
                    g = c * r - b;
                    for (int k = 0; k < n; ++k) {
                        f = z[k][i + 1];
                        z[k][i + 1] = s * z[k][i] + c * f;
                        z[k][i] = c * z[k][i] - s * f;
                    }
                }
                if (r == 0.0 && i >= l)
                    continue;
                d[l] -= p;
                e[l] = g;
                e[m] = 0.0;
            }
        } while (m != l);
    }
}

}  // namespace

EigenPairs symmetricEigen(const dmat& a) {
    const std::size_t n = a.size();
    for (std::size_t i = 0; i < n; ++i) {
        if (a[i].size() != n)
            throw "The matrix must be symmetric";
    }
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (a[i][j] != a[j][i])
                throw "The matrix must be symmetric";
        }
    }

    dmat z(a);
    dvec d(n, 0.0);
    dvec e(n, 0.0);
    householder_tridiagonal(z, d, e);
    implicit_ql(d, e, z);

    // A multimap keeps equal eigenvalues in the order the iteration left them.
    std::multimap<double, std::size_t, std::greater<double>> order;
    for (std::size_t j = 0; j < n; ++j)
        order.emplace(d[j], j);

    EigenPairs result;
    result.values.reserve(n);
    result.vectors.assign(n, dvec(n));
    std::size_t col = 0;
    for (const auto& [value, j] : order) {
        result.values.push_back(value);
        for (std::size_t i = 0; i < n; ++i)
            result.vectors[i][col] = z[i][j];
        ++col;
    }
    return result;
}

}  // namespace zentable
