#include "numeric/complex_matrix.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace zentable {

const char* const kSchurNoConvergence = "no convergence in complex Schur iterations";
const char* const kSylvesterSingular =
    "The Sylvester equation has no unique solution: A and -B share an eigenvalue";

namespace {

constexpr double kEps = std::numeric_limits<double>::epsilon();
constexpr int kRoundsPerEigenvalue = 60;

std::size_t columns_of(const cmat& a) {
    return a.empty() ? 0 : a[0].size();
}

cmat complex_identity(std::size_t n) {
    cmat out(n, cvec(n, 0.0));
    for (std::size_t i = 0; i < n; ++i)
        out[i][i] = 1.0;
    return out;
}

double frobenius(const cmat& a) {
    double sum = 0.0;
    for (const cvec& row : a)
        for (const cplx& z : row)
            sum += std::norm(z);
    return std::sqrt(sum);
}

// x / |x| for a non-zero x, else 1: the phase a reflection keeps.
cplx phase(const cplx& x) {
    const double r = std::abs(x);
    return r == 0.0 ? cplx(1.0) : x / r;
}

// The Householder reduction to upper Hessenberg form; Q collects the
// reflections, so that A = Q H Q^H.
void reduce_to_hessenberg(cmat& h, cmat& q) {
    const std::size_t n = h.size();
    for (std::size_t k = 0; k + 2 < n; ++k) {
        cvec v(n - k - 1);
        double norm2 = 0.0;
        for (std::size_t i = k + 1; i < n; ++i) {
            v[i - k - 1] = h[i][k];
            norm2 += std::norm(h[i][k]);
        }
        const double norm = std::sqrt(norm2);
        if (norm == 0.0)
            continue;
        v[0] += phase(v[0]) * norm;
        double vnorm2 = 0.0;
        for (const cplx& z : v)
            vnorm2 += std::norm(z);
        if (vnorm2 == 0.0)
            continue;
        // H <- (I - 2 v v^H / |v|^2) H (I - 2 v v^H / |v|^2)
        for (std::size_t j = 0; j < n; ++j) {
            cplx s = 0.0;
            for (std::size_t i = k + 1; i < n; ++i)
                s += std::conj(v[i - k - 1]) * h[i][j];
            s *= 2.0 / vnorm2;
            for (std::size_t i = k + 1; i < n; ++i)
                h[i][j] -= v[i - k - 1] * s;
        }
        for (cmat* m : {&h, &q}) {
            for (cvec& row : *m) {
                cplx s = 0.0;
                for (std::size_t i = k + 1; i < n; ++i)
                    s += row[i] * v[i - k - 1];
                s *= 2.0 / vnorm2;
                for (std::size_t i = k + 1; i < n; ++i)
                    row[i] -= s * std::conj(v[i - k - 1]);
            }
        }
        for (std::size_t i = k + 2; i < n; ++i)
            h[i][k] = 0.0;
    }
}

// The plane rotation [c s; -conj(s) c] with c real that takes (x, y) to (r, 0).
struct Rotation {
    double c = 1.0;
    cplx s = 0.0;
};

Rotation rotation_for(const cplx& x, const cplx& y) {
    const double ax = std::abs(x);
    const double norm = std::hypot(ax, std::abs(y));
    if (norm == 0.0)
        return {};
    if (ax == 0.0)
        return {0.0, std::conj(y) / std::abs(y)};
    return {ax / norm, (x / ax) * std::conj(y) / norm};
}

void rotate_rows(cmat& a, const Rotation& g, std::size_t k, std::size_t from) {
    for (std::size_t j = from; j < a[k].size(); ++j) {
        const cplx t1 = a[k][j];
        const cplx t2 = a[k + 1][j];
        a[k][j] = g.c * t1 + g.s * t2;
        a[k + 1][j] = -std::conj(g.s) * t1 + g.c * t2;
    }
}

// Multiplies columns k and k + 1 of rows 0 to last (exclusive) by G^H.
void rotate_columns(cmat& a, const Rotation& g, std::size_t k, std::size_t last) {
    for (std::size_t i = 0; i < last; ++i) {
        const cplx t1 = a[i][k];
        const cplx t2 = a[i][k + 1];
        a[i][k] = t1 * g.c + t2 * std::conj(g.s);
        a[i][k + 1] = -t1 * g.s + t2 * g.c;
    }
}

// The eigenvalue of the trailing 2 by 2 block [a b; c d] nearer to d.
cplx wilkinson_shift(const cplx& a, const cplx& b, const cplx& c, const cplx& d) {
    const cplx half = 0.5 * (a - d);
    const cplx root = std::sqrt(half * half + b * c);
    const cplx mu1 = d - b * c / (half + root);
    const cplx mu2 = d - b * c / (half - root);
    const bool first_finite = std::isfinite(std::abs(mu1));
    const bool second_finite = std::isfinite(std::abs(mu2));
    if (!first_finite && !second_finite)
        return d;
    if (!second_finite || (first_finite && std::abs(mu1 - d) <= std::abs(mu2 - d)))
        return mu1;
    return mu2;
}

// Single-shift QR on the Hessenberg H, applied to the whole of H so that it
// ends upper triangular, with every rotation collected in Q.
void hessenberg_qr(cmat& h, cmat& q) {
    const std::size_t n = h.size();
    if (n < 2)
        return;
    const double scale = std::max(frobenius(h), std::numeric_limits<double>::min());
    std::size_t hi = n - 1;
    int rounds = 0;
    while (hi > 0) {
        std::size_t lo = hi;
        while (lo > 0) {
            double near = std::abs(h[lo - 1][lo - 1]) + std::abs(h[lo][lo]);
            if (near == 0.0)
                near = scale;
            if (std::abs(h[lo][lo - 1]) <= kEps * near) {
                h[lo][lo - 1] = 0.0;
                break;
            }
            --lo;
        }
        if (lo == hi) {
            --hi;
            rounds = 0;
            continue;
        }
        if (++rounds > kRoundsPerEigenvalue)
            throw kSchurNoConvergence;
        cplx mu;
        if (rounds % 10 == 0) {
            // A shift off the usual one breaks the rare cycles of the plain rule.
            mu = h[hi][hi] + cplx(1.5, 0.5) * std::abs(h[hi][hi - 1]);
        } else {
            mu = wilkinson_shift(h[hi - 1][hi - 1], h[hi - 1][hi], h[hi][hi - 1], h[hi][hi]);
        }
        cplx x = h[lo][lo] - mu;
        cplx y = h[lo + 1][lo];
        for (std::size_t k = lo; k < hi; ++k) {
            if (k > lo) {
                x = h[k][k - 1];
                y = h[k + 1][k - 1];
            }
            const Rotation g = rotation_for(x, y);
            rotate_rows(h, g, k, k > lo ? k - 1 : lo);
            if (k > lo)
                h[k + 1][k - 1] = 0.0;
            rotate_columns(h, g, k, std::min(k + 3, hi + 1));
            rotate_columns(q, g, k, n);
        }
    }
    for (std::size_t i = 1; i < n; ++i)
        for (std::size_t j = 0; j < i; ++j)
            h[i][j] = 0.0;
}

// The eigenvector of T[k][k] of an upper triangular T, by back substitution
// with a tiny denominator raised to eps * |T| as in the usual practice.
cvec triangular_eigenvector(const cmat& t, std::size_t k, double small) {
    cvec y(t.size(), 0.0);
    y[k] = 1.0;
    const cplx lambda = t[k][k];
    for (std::size_t j = k; j-- > 0;) {
        cplx s = 0.0;
        for (std::size_t m = j + 1; m <= k; ++m)
            s += t[j][m] * y[m];
        cplx d = t[j][j] - lambda;
        if (std::abs(d) < small)
            d = small;
        y[j] = -s / d;
    }
    return y;
}

// Unit length, with the largest component real and positive.
void normalise(cvec& v) {
    double norm2 = 0.0;
    std::size_t largest = 0;
    for (std::size_t i = 0; i < v.size(); ++i) {
        norm2 += std::norm(v[i]);
        if (std::abs(v[i]) > std::abs(v[largest]))
            largest = i;
    }
    const cplx turn = std::conj(phase(v[largest])) / std::sqrt(norm2);
    for (cplx& z : v)
        z *= turn;
    v[largest] = std::abs(v[largest]);
}

void scale_by_power_of_two(cmat& a, int exponent) {
    for (cvec& row : a)
        for (cplx& z : row)
            z = cplx(std::ldexp(z.real(), exponent), std::ldexp(z.imag(), exponent));
}

// The iteration squares entries (in norms and shifts): it runs on a copy
// scaled by 2^-exponent, exact both ways, so that entries near the largest
// double do not overflow and tiny ones do not underflow. T stays scaled.
ComplexSchur scaled_schur(const cmat& a, int& exponent) {
    double largest = 0.0;
    for (const cvec& row : a)
        for (const cplx& z : row)
            largest = std::max({largest, std::fabs(z.real()), std::fabs(z.imag())});
    exponent = 0;
    if (largest > 0.0 && std::isfinite(largest))
        std::frexp(largest, &exponent);
    ComplexSchur out{complex_identity(a.size()), a};
    scale_by_power_of_two(out.t, -exponent);
    reduce_to_hessenberg(out.t, out.q);
    hessenberg_qr(out.t, out.q);
    return out;
}

ComplexEigen eigen_of(const cmat& a, bool real_input) {
    const std::size_t n = a.size();
    int exponent = 0;
    const ComplexSchur schur = scaled_schur(a, exponent);
    // In the scaled frame, where the largest entry is near 1.
    const double norm = std::max(frobenius(schur.t), 1.0);
    const double small = kEps * norm;
    std::vector<cvec> vectors(n);
    cvec values(n);
    for (std::size_t k = 0; k < n; ++k) {
        values[k] = schur.t[k][k];  // scaled until the end
        const cvec y = triangular_eigenvector(schur.t, k, small);
        cvec v(n, 0.0);
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0; j <= k; ++j)
                v[i] += schur.q[i][j] * y[j];
        normalise(v);
        if (real_input && std::abs(values[k].imag()) <= kRankTolerance * norm) {
            values[k] = values[k].real();
            for (cplx& z : v)
                z = z.real();
            normalise(v);
        }
        vectors[k] = std::move(v);
    }
    for (cplx& z : values)
        z = cplx(std::ldexp(z.real(), exponent), std::ldexp(z.imag(), exponent));
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t i, std::size_t j) {
        if (values[i].real() != values[j].real())
            return values[i].real() > values[j].real();
        return values[i].imag() > values[j].imag();
    });
    ComplexEigen out{cvec(n), cmat(n, cvec(n))};
    for (std::size_t j = 0; j < n; ++j) {
        out.values[j] = values[order[j]];
        for (std::size_t i = 0; i < n; ++i)
            out.vectors[i][j] = vectors[order[j]][i];
    }
    return out;
}

// The dense arithmetic that the exponential needs, for real and complex
// entries alike, so that a real matrix never passes through complex numbers.
template <class T>
using tmat = std::vector<std::vector<T>>;

template <class T>
tmat<T> multiply(const tmat<T>& a, const tmat<T>& b) {
    const std::size_t n = a.size();
    tmat<T> out(n, std::vector<T>(n, T(0.0)));
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t k = 0; k < n; ++k) {
            const T aik = a[i][k];
            for (std::size_t j = 0; j < n; ++j)
                out[i][j] += aik * b[k][j];
        }
    return out;
}

template <class T>
double norm_one(const tmat<T>& a) {
    double best = 0.0;
    for (std::size_t j = 0; j < a.size(); ++j) {
        double sum = 0.0;
        for (const auto& row : a)
            sum += std::abs(row[j]);
        best = std::max(best, sum);
    }
    return best;
}

// Solves P X = Q by Gaussian elimination with partial pivoting.
template <class T>
tmat<T> solve(tmat<T> p, tmat<T> q) {
    const std::size_t n = p.size();
    for (std::size_t c = 0; c < n; ++c) {
        std::size_t best = c;
        for (std::size_t r = c + 1; r < n; ++r)
            if (std::abs(p[r][c]) > std::abs(p[best][c]))
                best = r;
        std::swap(p[c], p[best]);
        std::swap(q[c], q[best]);
        for (std::size_t r = c + 1; r < n; ++r) {
            const T f = p[r][c] / p[c][c];
            for (std::size_t j = c; j < n; ++j)
                p[r][j] -= f * p[c][j];
            for (std::size_t j = 0; j < n; ++j)
                q[r][j] -= f * q[c][j];
        }
    }
    for (std::size_t c = n; c-- > 0;) {
        for (std::size_t j = 0; j < n; ++j) {
            T s = q[c][j];
            for (std::size_t k = c + 1; k < n; ++k)
                s -= p[c][k] * q[k][j];
            q[c][j] = s / p[c][c];
        }
    }
    return q;
}

// Higham's scaling and squaring: A / 2^s has a 1-norm within theta_13, where
// the [13/13] Pade approximant is exact to double precision.
template <class T>
tmat<T> exponential(const tmat<T>& a) {
    constexpr double kTheta13 = 5.371920351148152;
    static const double b[] = {64764752532480000.0,
                               32382376266240000.0,
                               7771770303897600.0,
                               1187353796428800.0,
                               129060195264000.0,
                               10559470521600.0,
                               670442572800.0,
                               33522128640.0,
                               1323241920.0,
                               40840800.0,
                               960960.0,
                               16380.0,
                               182.0,
                               1.0};
    const std::size_t n = a.size();
    const double norm = norm_one(a);
    int s = 0;
    if (std::isfinite(norm) && norm > kTheta13)
        s = static_cast<int>(std::ceil(std::log2(norm / kTheta13)));
    tmat<T> x = a;
    const double factor = std::ldexp(1.0, -s);
    for (auto& row : x)
        for (T& e : row)
            e *= factor;
    const tmat<T> x2 = multiply(x, x);
    const tmat<T> x4 = multiply(x2, x2);
    const tmat<T> x6 = multiply(x4, x2);
    tmat<T> inner_u(n, std::vector<T>(n)), inner_v(n, std::vector<T>(n));
    tmat<T> outer_u(n, std::vector<T>(n)), outer_v(n, std::vector<T>(n));
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j) {
            inner_u[i][j] = b[13] * x6[i][j] + b[11] * x4[i][j] + b[9] * x2[i][j];
            inner_v[i][j] = b[12] * x6[i][j] + b[10] * x4[i][j] + b[8] * x2[i][j];
            const T one = i == j ? T(1.0) : T(0.0);
            outer_u[i][j] = b[7] * x6[i][j] + b[5] * x4[i][j] + b[3] * x2[i][j] + b[1] * one;
            outer_v[i][j] = b[6] * x6[i][j] + b[4] * x4[i][j] + b[2] * x2[i][j] + b[0] * one;
        }
    tmat<T> u = multiply(x6, inner_u);
    tmat<T> v = multiply(x6, inner_v);
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j) {
            u[i][j] += outer_u[i][j];
            v[i][j] += outer_v[i][j];
        }
    u = multiply(x, u);
    tmat<T> p(n, std::vector<T>(n)), q(n, std::vector<T>(n));
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j) {
            p[i][j] = v[i][j] - u[i][j];
            q[i][j] = v[i][j] + u[i][j];
        }
    tmat<T> r = solve(std::move(p), std::move(q));
    for (int k = 0; k < s; ++k)
        r = multiply(r, r);
    return r;
}

}  // namespace

cmat to_complex(const dmat& re, const dmat& im) {
    cmat out(re.size());
    for (std::size_t i = 0; i < re.size(); ++i) {
        out[i].resize(re[i].size());
        for (std::size_t j = 0; j < re[i].size(); ++j)
            out[i][j] = cplx(re[i][j], im.empty() ? 0.0 : im[i][j]);
    }
    return out;
}

dmat real_part(const cmat& a) {
    dmat out(a.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        for (const cplx& z : a[i])
            out[i].push_back(z.real());
    return out;
}

dmat imag_part(const cmat& a) {
    dmat out(a.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        for (const cplx& z : a[i])
            out[i].push_back(z.imag());
    return out;
}

cmat cmat_mul(const cmat& a, const cmat& b) {
    const std::size_t m = a.size();
    const std::size_t n = columns_of(b);
    cmat out(m, cvec(n, 0.0));
    for (std::size_t i = 0; i < m; ++i)
        for (std::size_t k = 0; k < b.size(); ++k)
            for (std::size_t j = 0; j < n; ++j)
                out[i][j] += a[i][k] * b[k][j];
    return out;
}

cmat conj_transpose(const cmat& a) {
    const std::size_t m = a.size();
    const std::size_t n = columns_of(a);
    cmat out(n, cvec(m));
    for (std::size_t i = 0; i < m; ++i)
        for (std::size_t j = 0; j < n; ++j)
            out[j][i] = std::conj(a[i][j]);
    return out;
}

ComplexSchur complex_schur(const cmat& a) {
    int exponent = 0;
    ComplexSchur out = scaled_schur(a, exponent);
    scale_by_power_of_two(out.t, exponent);
    return out;
}

ComplexEigen complex_eigen(const cmat& a) {
    return eigen_of(a, false);
}

ComplexEigen general_eigen(const dmat& a) {
    return eigen_of(to_complex(a), true);
}

ComplexQR complex_qr(const cmat& a) {
    const std::size_t n = a.size();
    ComplexQR out{complex_identity(n), a};
    cmat& q = out.q;
    cmat& r = out.r;
    for (std::size_t k = 0; k + 1 < n; ++k) {
        cvec v(n - k);
        double norm2 = 0.0;
        for (std::size_t i = k; i < n; ++i) {
            v[i - k] = r[i][k];
            norm2 += std::norm(r[i][k]);
        }
        v[0] += phase(v[0]) * std::sqrt(norm2);
        double vnorm2 = 0.0;
        for (const cplx& z : v)
            vnorm2 += std::norm(z);
        if (vnorm2 == 0.0)
            continue;
        for (std::size_t j = 0; j < n; ++j) {
            cplx s = 0.0;
            for (std::size_t i = k; i < n; ++i)
                s += std::conj(v[i - k]) * r[i][j];
            s *= 2.0 / vnorm2;
            for (std::size_t i = k; i < n; ++i)
                r[i][j] -= v[i - k] * s;
        }
        for (cvec& row : q) {
            cplx s = 0.0;
            for (std::size_t i = k; i < n; ++i)
                s += row[i] * v[i - k];
            s *= 2.0 / vnorm2;
            for (std::size_t i = k; i < n; ++i)
                row[i] -= s * std::conj(v[i - k]);
        }
        for (std::size_t i = k + 1; i < n; ++i)
            r[i][k] = 0.0;
    }
    return out;
}

dmat matrix_exponential(const dmat& a) {
    return exponential(a);
}

cmat matrix_exponential(const cmat& a) {
    return exponential(a);
}

cmat sylvester_solve(const cmat& a, const cmat& b, const cmat& c) {
    const std::size_t m = a.size();
    const std::size_t n = b.size();
    const ComplexSchur sa = complex_schur(a);
    const ComplexSchur sb = complex_schur(b);
    // T_A Y + Y T_B = F with Y = Q_A^H X Q_B and F = Q_A^H C Q_B.
    const cmat f = cmat_mul(cmat_mul(conj_transpose(sa.q), c), sb.q);
    const double small = kEps * std::max(frobenius(a) + frobenius(b), 1.0);
    cmat y(m, cvec(n, 0.0));
    for (std::size_t k = 0; k < n; ++k) {
        cvec rhs(m);
        for (std::size_t i = 0; i < m; ++i) {
            cplx s = f[i][k];
            for (std::size_t j = 0; j < k; ++j)
                s -= sb.t[j][k] * y[i][j];
            rhs[i] = s;
        }
        for (std::size_t i = m; i-- > 0;) {
            cplx s = rhs[i];
            for (std::size_t j = i + 1; j < m; ++j)
                s -= sa.t[i][j] * y[j][k];
            const cplx d = sa.t[i][i] + sb.t[k][k];
            if (!(std::abs(d) > small))
                throw kSylvesterSingular;
            y[i][k] = s / d;
        }
    }
    return cmat_mul(cmat_mul(sa.q, y), conj_transpose(sb.q));
}

}  // namespace zentable
