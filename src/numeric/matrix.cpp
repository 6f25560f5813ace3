#include "numeric/matrix.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zentable {

namespace {

// A dmat made here is rectangular, so the first row speaks for all of them.
std::size_t columns(const dmat& a) {
    return a.empty() ? 0 : a[0].size();
}

bool same_shape(const dmat& a, const dmat& b) {
    return a.size() == b.size() && columns(a) == columns(b);
}

bool is_one_by_one(const dmat& a) {
    return a.size() == 1 && a[0].size() == 1;
}

bool is_square(const dmat& a) {
    return a.size() == columns(a);
}

// The product of a by b, with the inner dimension taken from the rows of b.
// The k-outer loop keeps the rows contiguous and still adds each element's
// terms in increasing k, so the digits are those of the plain triple loop.
dmat multiply(const dmat& a, const dmat& b) {
    const std::size_t inner = b.size();
    const std::size_t n = columns(b);
    dmat c(a.size(), dvec(n, 0.0));
    for (std::size_t i = 0; i < a.size(); ++i) {
        const dvec& ai = a[i];
        dvec& ci = c[i];
        for (std::size_t k = 0; k < inner; ++k) {
            const double aik = ai[k];
            const dvec& bk = b[k];
            for (std::size_t j = 0; j < n; ++j)
                ci[j] += aik * bk[j];
        }
    }
    return c;
}

}  // namespace

dmat identity(int n) {
    dmat r(static_cast<std::size_t>(n), dvec(static_cast<std::size_t>(n), 0.0));
    for (int i = 0; i < n; ++i)
        r[i][i] = 1.0;
    return r;
}

dmat transpose(const dmat& a) {
    // No rows means no column count either; callers rely on this failing.
    const std::size_t n = a.at(0).size();
    const std::size_t m = a.size();
    dmat t(n, dvec(m));
    for (std::size_t i = 0; i < m; ++i) {
        for (std::size_t j = 0; j < n; ++j)
            t[j][i] = a[i][j];
    }
    return t;
}

dmat mat_sub(const dmat& a, const dmat& b) {
    if (!same_shape(a, b))
        throw "Not conformable matrix subtraction";
    dmat r(a);
    for (std::size_t i = 0; i < r.size(); ++i) {
        for (std::size_t j = 0; j < r[i].size(); ++j)
            r[i][j] -= b[i][j];
    }
    return r;
}

dmat mat_add(const dmat& a, const dmat& b) {
    dmat r(a);
    for (std::size_t i = 0; i < r.size(); ++i) {
        for (std::size_t j = 0; j < r[i].size(); ++j)
            r[i][j] += b[i][j];
    }
    return r;
}

dmat mat_mul(const dmat& a, const dmat& b) {
    if (columns(a) != b.size())
        throw "Not conformable matrix multiplication";
    return multiply(a, b);
}

dmat mat_mul_unchecked(const dmat& a, const dmat& b) {
    return multiply(a, b);
}

dmat mat_scale(const dmat& a, double s) {
    dmat r(a);
    for (dvec& row : r) {
        for (double& x : row)
            x *= s;
    }
    return r;
}

dmat mat_div(const dmat& a, double s) {
    dmat r(a);
    for (dvec& row : r) {
        for (double& x : row)
            x /= s;
    }
    return r;
}

dmat elementwise_mul(const dmat& a, const dmat& b) {
    if (same_shape(a, b)) {
        dmat r(a);
        for (std::size_t i = 0; i < r.size(); ++i) {
            for (std::size_t j = 0; j < r[i].size(); ++j)
                r[i][j] *= b[i][j];
        }
        return r;
    }
    if (is_one_by_one(a))
        return mat_scale(b, a[0][0]);
    if (is_one_by_one(b))
        return mat_scale(a, b[0][0]);
    throw "Not conformable elementwise multiplication";
}

dmat direct_product(const dmat& a, const dmat& b) {
    const std::size_t ra = a.size(), ca = columns(a);
    const std::size_t rb = b.size(), cb = columns(b);
    dmat r(ra * rb, dvec(ca * cb));
    for (std::size_t i = 0; i < ra; ++i) {
        for (std::size_t j = 0; j < ca; ++j) {
            for (std::size_t k = 0; k < rb; ++k) {
                for (std::size_t l = 0; l < cb; ++l)
                    r[i * rb + k][j * cb + l] = a[i][j] * b[k][l];
            }
        }
    }
    return r;
}

dvec diag(const dmat& a) {
    if (!is_square(a))
        throw "matrix is not square in diag()";
    dvec d(a.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        d[i] = a[i][i];
    return d;
}

dmat diag(const dvec& v) {
    dmat r(v.size(), dvec(v.size(), 0.0));
    for (std::size_t i = 0; i < v.size(); ++i)
        r[i][i] = v[i];
    return r;
}

dvec vecdiag(const dmat& a) {
    if (!is_square(a))
        throw "matrix is not square in vecdiag()";
    dvec d(a.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        d[i] = a[i][i];
    return d;
}

double trace(const dmat& a) {
    if (!is_square(a))
        throw "matrix is not square in trace()";
    double s = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        s += a[i][i];
    return s;
}

dvec mat_vec(const dmat& a, const dvec& v) {
    dvec r(a.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        double s = 0.0;
        for (std::size_t j = 0; j < a[i].size(); ++j)
            s += a[i][j] * v[j];
        r[i] = s;
    }
    return r;
}

dvec vec_mat(const dvec& v, const dmat& a) {
    dvec r(columns(a), 0.0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double vi = v[i];
        for (std::size_t j = 0; j < r.size(); ++j)
            r[j] += vi * a[i][j];
    }
    return r;
}

double dot(const dvec& u, const dvec& v) {
    double s = 0.0;
    for (std::size_t i = 0; i < u.size(); ++i)
        s += u[i] * v[i];
    return s;
}

dvec vec_add(const dvec& u, const dvec& v) {
    dvec r(u);
    for (std::size_t i = 0; i < r.size(); ++i)
        r[i] += v[i];
    return r;
}

dvec vec_sub(const dvec& u, const dvec& v) {
    dvec r(u);
    for (std::size_t i = 0; i < r.size(); ++i)
        r[i] -= v[i];
    return r;
}

dvec vec_scale(const dvec& u, double s) {
    dvec r(u);
    for (double& x : r)
        x *= s;
    return r;
}

dvec poly_mul(const dvec& u, const dvec& v) {
    // An empty factor has no degree; the product of nothing is nothing.
    if (u.empty() || v.empty())
        return dvec();
    dvec r(u.size() + v.size() - 1, 0.0);
    for (std::size_t i = 0; i < u.size(); ++i) {
        for (std::size_t j = 0; j < v.size(); ++j)
            r[i + j] += u[i] * v[j];
    }
    return r;
}

bool is_zero(double x) {
    // Written as two "not greater" tests on purpose: a NaN counts as zero.
    return !(-kZeroTolerance > x) && !(x > kZeroTolerance);
}

double max_abs(const dmat& a) {
    double m = 0.0;
    for (const dvec& row : a) {
        for (double x : row) {
            if (std::fabs(x) > m)
                m = std::fabs(x);
        }
    }
    return m;
}

double max_abs(const dvec& v) {
    double m = 0.0;
    for (double x : v) {
        if (std::fabs(x) > m)
            m = std::fabs(x);
    }
    return m;
}

dmat inverse(const dmat& a) {
    const std::size_t n = a.size();
    const std::size_t w = 2 * n;
    // [A | I] in one block, row-major, width 2n.
    dvec work(n * w, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        double* row = &work[i * w];
        const std::size_t given = std::min(n, a[i].size());
        for (std::size_t j = 0; j < given; ++j)
            row[j] = a[i][j];
        row[n + i] = 1.0;
    }

    for (std::size_t c = 0; c < n; ++c) {
        std::size_t best_row = c;
        double best = 0.0;
        for (std::size_t r = c; r < n; ++r) {
            const double v = std::fabs(work[r * w + c]);
            if (v > best) {
                best = v;
                best_row = r;
            }
        }
        if (!(best > kZeroTolerance))
            throw "matrix singular in inverse matrix";

        double* pivot_row = &work[c * w];
        if (best_row != c) {
            double* other = &work[best_row * w];
            for (std::size_t j = c; j < w; ++j)
                std::swap(pivot_row[j], other[j]);
        }
        const double pivot = pivot_row[c];
        for (std::size_t j = c; j < w; ++j)
            pivot_row[j] /= pivot;
        for (std::size_t r = 0; r < n; ++r) {
            if (r == c)
                continue;
            double* row = &work[r * w];
            const double f = row[c];
            for (std::size_t j = c; j < w; ++j)
                row[j] -= f * pivot_row[j];
        }
    }

    dmat inv(n, dvec(n));
    for (std::size_t i = 0; i < n; ++i) {
        const double* row = &work[i * w + n];
        std::copy(row, row + n, inv[i].begin());
    }
    return inv;
}

dmat sweep(const dmat& a, const ivec& pivots) {
    if (pivots.empty())
        return a;
    const std::size_t m = a.size();
    const std::size_t n = columns(a);
    const long q = static_cast<long>(std::min(m, n));
    // A negative index is as far outside the matrix as one past its end.
    for (std::int32_t p : pivots) {
        if (p >= q || p < 0)
            throw "pivot is beyond matrix indexes in matrix sweep function";
    }

    const std::size_t w = 2 * n;
    dvec work(m * w, 0.0);
    for (std::size_t i = 0; i < m; ++i) {
        const std::size_t given = std::min(n, a[i].size());
        std::copy(a[i].begin(), a[i].begin() + static_cast<std::ptrdiff_t>(given), &work[i * w]);
        if (static_cast<long>(i) < q)
            work[i * w + n + i] = 1.0;
    }

    std::vector<bool> swept(n, false);
    for (std::int32_t pi : pivots) {
        const std::size_t p = static_cast<std::size_t>(pi);
        swept[p] = true;
        double* prow = &work[p * w];
        const double d = prow[p];
        // A plain less-than: a NaN pivot is let through and spreads.
        if (std::fabs(d) < 1e-10)
            throw "Pivot singular in matrix sweep function. Matrix is singular.";
        for (std::size_t j = 0; j < w; ++j)
            prow[j] /= d;
        for (std::size_t r = 0; r < m; ++r) {
            if (r == p)
                continue;
            double* row = &work[r * w];
            const double f = row[p];
            for (std::size_t j = 0; j < w; ++j)
                row[j] -= f * prow[j];
        }
    }

    dmat result(m, dvec(n));
    for (std::size_t i = 0; i < m; ++i) {
        const double* row = &work[i * w];
        for (std::size_t j = 0; j < n; ++j)
            result[i][j] = swept[j] ? row[n + j] : row[j];
    }
    return result;
}

// sqrt(a^2 + b^2) without overflow or destructive underflow on the way.
double pythag(double a, double b) {
    const double absa = std::fabs(a);
    const double absb = std::fabs(b);
    if (absa > absb) {
        const double t = absb / absa;
        return absa * std::sqrt(1.0 + t * t);
    }
    if (absb == 0.0)
        return 0.0;
    const double t = absa / absb;
    return absb * std::sqrt(1.0 + t * t);
}

}  // namespace zentable
