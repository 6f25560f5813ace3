#include "numeric/decompositions.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "numeric/one_based.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

namespace {

constexpr int kMaxSvdRounds = 40;
// A pivot of LU that is exactly zero is replaced by this, so that the
// decomposition itself goes through and the caller judges singularity.
constexpr double kTinyPivot = 1.0e-20;

// |a| with the sign of b.
double with_sign(double a, double b) {
    return b >= 0.0 ? std::fabs(a) : -std::fabs(a);
}

// Golub-Reinsch on an m by n matrix with m >= n. On entry u holds A; on return
// it holds the left singular vectors, w the singular values (unordered, not
// negative) and v the right singular vectors.
void golub_reinsch(dmat& u, dvec& w, dmat& v) {
    const int m = static_cast<int>(u.size());
    const int n = static_cast<int>(w.size());
    dvector rv1(0, n - 1);  // the super-diagonal of the bidiagonal form
    double g = 0.0;
    double scale = 0.0;
    double anorm = 0.0;
    int l = 0;

    // Householder reduction to bidiagonal form: a reflection from the left
    // clears column i below the diagonal, one from the right clears row i
    // beyond the super-diagonal. Each is scaled first so that the sum of
    // squares neither overflows nor underflows.
    for (int i = 0; i < n; ++i) {
        l = i + 1;
        rv1[i] = scale * g;
        g = 0.0;
        scale = 0.0;
        double s = 0.0;
        for (int k = i; k < m; ++k)
            scale += std::fabs(u[k][i]);
        if (scale != 0.0) {
            for (int k = i; k < m; ++k) {
                u[k][i] /= scale;
                s += u[k][i] * u[k][i];
            }
            double f = u[i][i];
            // The sign against f keeps f - g from cancelling.
            g = -with_sign(std::sqrt(s), f);
            const double h = f * g - s;
            u[i][i] = f - g;
            for (int j = l; j < n; ++j) {
                s = 0.0;
                for (int k = i; k < m; ++k)
                    s += u[k][i] * u[k][j];
                f = s / h;
                for (int k = i; k < m; ++k)
                    u[k][j] += f * u[k][i];
            }
            for (int k = i; k < m; ++k)
                u[k][i] *= scale;
        }
        w[i] = scale * g;

        g = 0.0;
        scale = 0.0;
        s = 0.0;
        if (i != n - 1) {
            for (int k = l; k < n; ++k)
                scale += std::fabs(u[i][k]);
            if (scale != 0.0) {
                for (int k = l; k < n; ++k) {
                    u[i][k] /= scale;
                    s += u[i][k] * u[i][k];
                }
                const double f = u[i][l];
                g = -with_sign(std::sqrt(s), f);
                const double h = f * g - s;
                u[i][l] = f - g;
                for (int k = l; k < n; ++k)
                    rv1[k] = u[i][k] / h;
                for (int j = l; j < m; ++j) {
                    s = 0.0;
                    for (int k = l; k < n; ++k)
                        s += u[j][k] * u[i][k];
                    for (int k = l; k < n; ++k)
                        u[j][k] += s * rv1[k];
                }
                for (int k = l; k < n; ++k)
                    u[i][k] *= scale;
            }
        }
        anorm = std::max(anorm, std::fabs(w[i]) + std::fabs(rv1[i]));
    }

    // Accumulate the right-hand reflections into V, last first.
    for (int i = n - 1; i >= 0; --i) {
        if (i < n - 1) {
            if (g != 0.0) {
                // Two divisions rather than one product, to avoid underflow.
                for (int j = l; j < n; ++j)
                    v[j][i] = (u[i][j] / u[i][l]) / g;
                for (int j = l; j < n; ++j) {
                    double s = 0.0;
                    for (int k = l; k < n; ++k)
                        s += u[i][k] * v[k][j];
                    for (int k = l; k < n; ++k)
                        v[k][j] += s * v[k][i];
                }
            }
            for (int j = l; j < n; ++j) {
                v[i][j] = 0.0;
                v[j][i] = 0.0;
            }
        }
        v[i][i] = 1.0;
        g = rv1[i];
        l = i;
    }

    // Accumulate the left-hand reflections into U, in place.
    for (int i = n - 1; i >= 0; --i) {
        l = i + 1;
        g = w[i];
        for (int j = l; j < n; ++j)
            u[i][j] = 0.0;
        if (g != 0.0) {
            g = 1.0 / g;
            for (int j = l; j < n; ++j) {
                double s = 0.0;
                for (int k = l; k < m; ++k)
                    s += u[k][i] * u[k][j];
                const double f = (s / u[i][i]) * g;
                for (int k = i; k < m; ++k)
                    u[k][j] += f * u[k][i];
            }
            for (int j = i; j < m; ++j)
                u[j][i] *= g;
        } else {
            for (int j = i; j < m; ++j)
                u[j][i] = 0.0;
        }
        u[i][i] += 1.0;
    }

    // Diagonalise the bidiagonal form by implicitly shifted QR, from the
    // last singular value up. A value counts as zero against the scale of the
    // matrix, so that the test does not depend on how large A is.
    const double negligible = kZeroTolerance * anorm;
    for (int k = n - 1; k >= 0; --k) {
        for (int round = 1; round <= kMaxSvdRounds; ++round) {
            // Find the top l of the unreduced block that ends at k; rv1[0] is
            // always zero, so the search stops at 0 at the latest.
            bool cancel = true;
            int nm = 0;
            for (l = k; l >= 0; --l) {
                nm = l - 1;
                if (std::fabs(rv1[l]) <= negligible) {
                    cancel = false;
                    break;
                }
                if (std::fabs(w[nm]) <= negligible)
                    break;
            }
            if (cancel) {
                // w[nm] is zero: chase rv1[l] out of the block by rotations
                // from the left.
                double c = 0.0;
                double s = 1.0;
                for (int i = l; i <= k; ++i) {
                    const double f = s * rv1[i];
                    rv1[i] = c * rv1[i];
                    if (std::fabs(f) <= negligible)
                        break;
                    g = w[i];
                    double h = pythag(f, g);
                    w[i] = h;
                    h = 1.0 / h;
                    c = g * h;
                    s = -f * h;
                    for (int j = 0; j < m; ++j) {
                        const double y = u[j][nm];
                        const double z = u[j][i];
                        u[j][nm] = y * c + z * s;
                        u[j][i] = z * c - y * s;
                    }
                }
            }
            double z = w[k];
            if (l == k) {
                // Converged; a singular value is never negative.
                if (z < 0.0) {
                    w[k] = -z;
                    for (int j = 0; j < n; ++j)
                        v[j][k] = -v[j][k];
                }
                break;
            }
            if (round == kMaxSvdRounds)
                throw std::string("no convergence in ") + std::to_string(kMaxSvdRounds) +
                    " svd iterations";

            // Shift from the bottom 2 by 2 minor, then one QR sweep over l..k.
            double x = w[l];
            nm = k - 1;
            double y = w[nm];
            g = rv1[nm];
            double h = rv1[k];
            double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2.0 * h * y);
            g = pythag(f, 1.0);
            f = ((x - z) * (x + z) + h * ((y / (f + with_sign(g, f))) - h)) / x;
            double c = 1.0;
            double s = 1.0;
            for (int j = l; j <= nm; ++j) {
                const int i = j + 1;
                g = rv1[i];
                y = w[i];
                h = s * g;
                g = c * g;
                z = pythag(f, h);
                rv1[j] = z;
                c = f / z;
                s = h / z;
                f = x * c + g * s;
                g = g * c - x * s;
                h = y * s;
                y *= c;
                for (int jj = 0; jj < n; ++jj) {
                    const double vx = v[jj][j];
                    const double vz = v[jj][i];
                    v[jj][j] = vx * c + vz * s;
                    v[jj][i] = vz * c - vx * s;
                }
                z = pythag(f, h);
                w[j] = z;
                // The rotation may be arbitrary when z is zero.
                if (z != 0.0) {
                    z = 1.0 / z;
                    c = f * z;
                    s = h * z;
                }
                f = c * g + s * y;
                x = c * y - s * g;
                for (int jj = 0; jj < m; ++jj) {
                    const double uy = u[jj][j];
                    const double uz = u[jj][i];
                    u[jj][j] = uy * c + uz * s;
                    u[jj][i] = uz * c - uy * s;
                }
            }
            rv1[l] = 0.0;
            rv1[k] = f;
            w[k] = x;
        }
    }
}

// Row i of P A is row perm[i] of A.
dmat permutation_matrix(const ivec& perm) {
    const int n = static_cast<int>(perm.size());
    dmat p(n, dvec(n, 0.0));
    for (int i = 0; i < n; ++i)
        p[i][perm[i]] = 1.0;
    return p;
}

// Crout's LU in place, rows exchanged as it goes; returns the row taken as
// pivot at each step, and the sign of the exchanges in `sign`.
ivec crout(dmat& a, int& sign) {
    const int n = static_cast<int>(a.size());
    // The scale of each row, for the implicit pivoting: a row is judged by
    // its candidate relative to its own largest entry.
    dvector row_scale(0, n - 1);
    for (int i = 0; i < n; ++i) {
        double big = 0.0;
        for (int j = 0; j < n; ++j)
            big = std::max(big, std::fabs(a[i][j]));
        if (big == 0.0)
            throw "Singular matrix in routine ludcmp";
        row_scale[i] = 1.0 / big;
    }
    ivector index(0, n - 1);
    sign = 1;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < j; ++i) {
            double sum = a[i][j];
            for (int k = 0; k < i; ++k)
                sum -= a[i][k] * a[k][j];
            a[i][j] = sum;
        }
        double big = 0.0;
        int pivot_row = j;
        for (int i = j; i < n; ++i) {
            double sum = a[i][j];
            for (int k = 0; k < j; ++k)
                sum -= a[i][k] * a[k][j];
            a[i][j] = sum;
            const double merit = row_scale[i] * std::fabs(sum);
            if (merit > big) {
                big = merit;
                pivot_row = i;
            }
        }
        if (pivot_row != j) {
            std::swap(a[pivot_row], a[j]);
            sign = -sign;
            row_scale[pivot_row] = row_scale[j];
        }
        index[j] = pivot_row;
        if (a[j][j] == 0.0)
            a[j][j] = kTinyPivot;
        if (j != n - 1) {
            const double inverse_pivot = 1.0 / a[j][j];
            for (int i = j + 1; i < n; ++i)
                a[i][j] *= inverse_pivot;
        }
    }
    ivec exchanges(n);
    for (int j = 0; j < n; ++j)
        exchanges[j] = index[j];
    return exchanges;
}

bool has_zero_row(const dmat& a) {
    return std::any_of(a.begin(), a.end(), [](const dvec& row) {
        return std::all_of(row.begin(), row.end(), [](double x) { return x == 0.0; });
    });
}

}  // namespace

SVD svdDecomp(const dmat& a) {
    const int m = static_cast<int>(a.size());
    const int n = m == 0 ? 0 : static_cast<int>(a[0].size());
    if (m < n) {
        // A-transpose = U' W V'-transpose gives A = V' W U'-transpose.
        SVD t = svdDecomp(transpose(a));
        return SVD{std::move(t.v), std::move(t.w), std::move(t.u)};
    }
    dmat u = a;
    dvec w(n, 0.0);
    dmat v(n, dvec(n, 0.0));
    if (n > 0)
        golub_reinsch(u, w, v);

    // Largest first; a multimap keeps equal values in the order they came.
    std::multimap<double, int, std::greater<double>> order;
    for (int j = 0; j < n; ++j)
        order.emplace(w[j], j);
    SVD out{dmat(m, dvec(n)), dvec(n), dmat(n, dvec(n))};
    int column = 0;
    for (const auto& [value, j] : order) {
        out.w[column] = value;
        for (int i = 0; i < m; ++i)
            out.u[i][column] = u[i][j];
        for (int i = 0; i < n; ++i)
            out.v[i][column] = v[i][j];
        ++column;
    }
    return out;
}

dmat cholesky(const dmat& a) {
    const int n = static_cast<int>(a.size());
    for (int i = 0; i < n; ++i)
        for (int j = i + 1; j < n; ++j) {
            const double difference = a[i][j] - a[j][i];
            if (difference > kZeroTolerance || difference < -kZeroTolerance)
                throw "Cholesky decomposition failed: input matrix is not symmetric";
        }
    constexpr const char* kNotSemiDefinite =
        "Cholesky decomposition failed: input matrix is not positive semi-definite";
    dmat l(n, dvec(n, 0.0));
    for (int j = 0; j < n; ++j) {
        for (int i = j; i < n; ++i) {
            double sum = 0.0;
            for (int k = 0; k < j; ++k)
                sum += l[i][k] * l[j][k];
            const double s = a[i][j] - sum;
            const bool negligible = s >= -kRankTolerance && s <= kRankTolerance;
            if (i == j) {
                if (s < -kRankTolerance)
                    throw kNotSemiDefinite;
                l[j][j] = negligible ? 0.0 : std::sqrt(s);
            } else if (l[j][j] == 0.0) {
                // A zero pivot: the variable depends on the earlier ones, and
                // the rest of its column must be zero too.
                if (!negligible)
                    throw kNotSemiDefinite;
                l[i][j] = 0.0;
            } else {
                l[i][j] = s / l[j][j];
            }
        }
    }
    return l;
}

LU lu_decompose(const dmat& a) {
    const int n = static_cast<int>(a.size());
    dmat work = a;
    LU out;
    const ivec exchanges = crout(work, out.sign);

    out.permutation.resize(n);
    for (int i = 0; i < n; ++i)
        out.permutation[i] = i;
    for (int j = 0; j < n; ++j)
        std::swap(out.permutation[j], out.permutation[exchanges[j]]);
    out.p = permutation_matrix(out.permutation);

    out.l.assign(n, dvec(n, 0.0));
    out.u.assign(n, dvec(n, 0.0));
    const double tolerance = kRankTolerance * max_abs(a);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < i; ++j)
            out.l[i][j] = work[i][j];
        out.l[i][i] = 1.0;
        for (int j = i; j < n; ++j)
            out.u[i][j] = work[i][j];
        if (std::fabs(work[i][i]) <= tolerance)
            out.singular = true;
    }
    return out;
}

QR qr_decompose(const dmat& a) {
    const int m = static_cast<int>(a.size());
    const int n = m == 0 ? 0 : static_cast<int>(a[0].size());
    QR out{identity(m), a};
    dmat& q = out.q;
    dmat& r = out.r;
    dvec v(m);
    for (int k = 0; k < std::min(m - 1, n); ++k) {
        double norm = 0.0;
        for (int i = k; i < m; ++i)
            norm = pythag(norm, r[i][k]);
        if (norm == 0.0)
            continue;
        // Reflect column k onto -sign(r_kk) |x| e_k; the sign avoids cancelling.
        const double alpha = -with_sign(norm, r[k][k]);
        for (int i = k; i < m; ++i)
            v[i] = r[i][k];
        v[k] -= alpha;
        double vv = 0.0;
        for (int i = k; i < m; ++i)
            vv += v[i] * v[i];
        // R <- H R and Q <- Q H, with H = I - 2 v v' / v'v.
        for (int j = k; j < n; ++j) {
            double s = 0.0;
            for (int i = k; i < m; ++i)
                s += v[i] * r[i][j];
            const double f = 2.0 * s / vv;
            for (int i = k; i < m; ++i)
                r[i][j] -= f * v[i];
        }
        for (int i = 0; i < m; ++i) {
            double s = 0.0;
            for (int j = k; j < m; ++j)
                s += q[i][j] * v[j];
            const double f = 2.0 * s / vv;
            for (int j = k; j < m; ++j)
                q[i][j] -= f * v[j];
        }
        r[k][k] = alpha;
        for (int i = k + 1; i < m; ++i)
            r[i][k] = 0.0;
    }
    return out;
}

dmat pseudo_inverse(const dmat& a) {
    const int m = static_cast<int>(a.size());
    const int n = m == 0 ? 0 : static_cast<int>(a[0].size());
    const SVD svd = svdDecomp(a);
    const int k = static_cast<int>(svd.w.size());
    const double cutoff = (k > 0 ? svd.w[0] : 0.0) * std::max(m, n) * kZeroTolerance;
    dvec inverse_w(k, 0.0);
    for (int j = 0; j < k; ++j)
        if (svd.w[j] > cutoff)
            inverse_w[j] = 1.0 / svd.w[j];
    dmat out(n, dvec(m, 0.0));
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < m; ++j) {
            double sum = 0.0;
            for (int c = 0; c < k; ++c)
                sum += svd.v[i][c] * inverse_w[c] * svd.u[j][c];
            out[i][j] = sum;
        }
    return out;
}

double determinant(const dmat& a) {
    if (has_zero_row(a))
        return 0.0;
    dmat work = a;
    int sign = 1;
    crout(work, sign);
    const double tolerance = kRankTolerance * max_abs(a);
    double det = sign;
    for (std::size_t i = 0; i < work.size(); ++i) {
        if (std::fabs(work[i][i]) <= tolerance)
            return 0.0;
        det *= work[i][i];
    }
    return det;
}

dvec tridiagonalMatrixSolver(const dvec& lower, const dvec& diagonal, const dvec& upper,
                             const dvec& rhs) {
    const std::size_t n = diagonal.size();
    if (lower.size() + 1 != n || upper.size() + 1 != n)
        throw "The numbers of off-diagonal elements must be compatible with diagonal elements in "
              "tridiagonalMatrixSolver";
    if (diagonal[0] == 0.0)
        throw "tridiagonalMatrixSolver failed: rewrite equations";
    dvec x(n);
    dvec gamma(n);
    double pivot = diagonal[0];
    x[0] = rhs[0] / pivot;
    for (std::size_t j = 1; j < n; ++j) {
        gamma[j] = upper[j - 1] / pivot;
        pivot = diagonal[j] - lower[j - 1] * gamma[j];
        if (pivot == 0.0)
            throw "tridiagonalMatrixSolver failed";
        x[j] = (rhs[j] - lower[j - 1] * x[j - 1]) / pivot;
    }
    for (std::size_t j = n - 1; j > 0; --j)
        x[j - 1] -= gamma[j] * x[j];
    return x;
}

dvec huge_page_vector(std::size_t n, double value) {
    dvec v;
    v.reserve(n);
    prefer_huge_pages(v.data(), n * sizeof(double));
    v.assign(n, value);
    return v;
}

dvec pentagonalMatrixSolver(const dvec& lower2, const dvec& lower1, const dvec& diagonal,
                            const dvec& upper1, const dvec& upper2, const dvec& rhs) {
    const int n = static_cast<int>(diagonal.size());
    if (n < 3)
        throw "The dimension of a pentagonal must be larger than or equal to 3";
    if (static_cast<int>(lower1.size()) != n - 1 || static_cast<int>(upper1.size()) != n - 1 ||
        static_cast<int>(lower2.size()) != n - 2 || static_cast<int>(upper2.size()) != n - 2)
        throw "The numbers of off-diagonal elements must be compatible with diagonal elements in "
              "pentagonalMatrixSolver";
    // Row i keeps its entries at columns i - 2 to i + 2 in band[i][0..4].
    // Without pivoting nothing fills in outside the band.
    std::vector<std::array<double, 5>> band;
    band.reserve(static_cast<std::size_t>(n));
    prefer_huge_pages(band.data(), static_cast<std::size_t>(n) * sizeof band[0]);
    band.resize(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        band[i] = {i >= 2 ? lower2[i - 2] : 0.0, i >= 1 ? lower1[i - 1] : 0.0, diagonal[i],
                   i < n - 1 ? upper1[i] : 0.0, i < n - 2 ? upper2[i] : 0.0};
    }
    dvec b = huge_page_vector(rhs.size(), 0.0);
    std::copy(rhs.begin(), rhs.end(), b.begin());
    for (int k = 0; k < n - 1; ++k) {
        const double pivot = band[k][2];
        for (int i = k + 1; i <= std::min(k + 2, n - 1); ++i) {
            // Entry (i, k) sits at offset k - i + 2 in row i.
            const int offset = k - i + 2;
            const double f = band[i][offset] / pivot;
            band[i][offset] = 0.0;
            for (int j = k + 1; j <= std::min(k + 2, n - 1); ++j)
                band[i][j - i + 2] -= f * band[k][j - k + 2];
            b[i] -= f * b[k];
        }
    }
    dvec x = huge_page_vector(static_cast<std::size_t>(n), 0.0);
    for (int i = n - 1; i >= 0; --i) {
        double s = b[i];
        for (int j = i + 1; j <= std::min(i + 2, n - 1); ++j)
            s -= band[i][j - i + 2] * x[j];
        x[i] = s / band[i][2];
    }
    return x;
}

}  // namespace zentable
