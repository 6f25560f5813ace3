// Identities of the matrix commands and the routines behind them, on seeded
// random matrices, checked in long double apart from the code under test.

#include "numeric/complex_matrix.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "../support/tables.hpp"
#include "numeric/matrix_algebra.hpp"
#include "numeric/matrix_factor.hpp"

using namespace zentable;
using zentable::testing::thrown_text;

namespace {

using lcplx = std::complex<long double>;

cmat random_complex(std::size_t rows, std::size_t columns, unsigned seed, bool real) {
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    cmat a(rows, cvec(columns));
    for (cvec& row : a)
        for (cplx& z : row)
            z = cplx(uniform(engine), real ? 0.0 : uniform(engine));
    return a;
}

dmat random_real(std::size_t rows, std::size_t columns, unsigned seed) {
    return real_part(random_complex(rows, columns, seed, true));
}

cmat product(const cmat& a, const cmat& b) {
    cmat c(a.size(), cvec(b[0].size()));
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t j = 0; j < b[0].size(); ++j) {
            lcplx s = 0.0L;
            for (std::size_t k = 0; k < b.size(); ++k)
                s += lcplx(a[i][k]) * lcplx(b[k][j]);
            c[i][j] = cplx(static_cast<double>(s.real()), static_cast<double>(s.imag()));
        }
    return c;
}

cmat adjoint(const cmat& a) {
    cmat t(a[0].size(), cvec(a.size()));
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t j = 0; j < a[0].size(); ++j)
            t[j][i] = std::conj(a[i][j]);
    return t;
}

cmat eye(std::size_t n) {
    cmat e(n, cvec(n, 0.0));
    for (std::size_t i = 0; i < n; ++i)
        e[i][i] = 1.0;
    return e;
}

// The largest entry of a - b relative to the largest of b (at least 1).
double distance(const cmat& a, const cmat& b) {
    double diff = 0.0, size = 1.0;
    for (std::size_t i = 0; i < b.size(); ++i)
        for (std::size_t j = 0; j < b[i].size(); ++j) {
            diff = std::max(diff, std::abs(a[i][j] - b[i][j]));
            size = std::max(size, std::abs(b[i][j]));
        }
    return diff / size;
}

void expect_upper_triangular(const cmat& r) {
    for (std::size_t i = 1; i < r.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_EQ(r[i][j], cplx(0.0)) << i << "," << j;
}

CellMatrix cells(const dmat& m) {
    CellMatrix t(m.size(), m[0].size());
    for (std::size_t i = 0; i < m.size(); ++i)
        for (std::size_t j = 0; j < m[i].size(); ++j)
            t(i, j) = m[i][j];
    return t;
}

// The rows by columns block of a result table from (top, 0).
dmat block(const CellMatrix& t, std::size_t top, std::size_t rows, std::size_t columns) {
    dmat m(rows, dvec(columns));
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = 0; j < columns; ++j)
            m[i][j] = t(top + i, j).NumericValue();
    return m;
}

cmat c(const dmat& re, const dmat& im = dmat()) {
    return to_complex(re, im);
}

constexpr double kTight = 1e-12;

TEST(ComplexSchur, FactorsRealAndComplexMatricesUnitarily) {
    for (bool real : {true, false}) {
        const cmat a = random_complex(7, 7, real ? 11 : 12, real);
        const ComplexSchur s = complex_schur(a);
        expect_upper_triangular(s.t);
        EXPECT_LT(distance(product(adjoint(s.q), s.q), eye(7)), kTight);
        EXPECT_LT(distance(product(product(s.q, s.t), adjoint(s.q)), a), kTight);
    }
    // The command's four blocks multiply out to A for a real A.
    const dmat a = random_real(5, 5, 13);
    const CellMatrix r = matrix_Schur(cells(a));
    const cmat q = c(block(r, 2, 5, 5), block(r, 9, 5, 5));
    const cmat t = c(block(r, 16, 5, 5), block(r, 23, 5, 5));
    EXPECT_LT(distance(product(product(q, t), adjoint(q)), c(a)), kTight);
}

TEST(GeneralEigen, EveryPairSatisfiesTheEquation) {
    const std::vector<std::pair<cmat, ComplexEigen>> cases = {
        {c(random_real(8, 8, 21)), general_eigen(random_real(8, 8, 21))},
        {random_complex(6, 6, 22, false), complex_eigen(random_complex(6, 6, 22, false))}};
    for (const auto& [a, e] : cases) {
        cplx trace = 0.0, sum = 0.0;
        for (std::size_t j = 0; j < a.size(); ++j) {
            cmat v(a.size(), cvec(1));
            for (std::size_t i = 0; i < a.size(); ++i)
                v[i][0] = e.vectors[i][j];
            cmat lv = v;
            for (auto& row : lv)
                row[0] *= e.values[j];
            EXPECT_LT(distance(product(a, v), lv), kTight) << j;
            trace += a[j][j];
            sum += e.values[j];
        }
        EXPECT_LT(std::abs(trace - sum), kTight);
    }
    // The seed gives complex pairs, so the checks above reach that path.
    const ComplexEigen e = general_eigen(random_real(8, 8, 21));
    int complex_values = 0;
    for (const cplx& z : e.values)
        complex_values += z.imag() != 0.0;
    EXPECT_GT(complex_values, 0);
}

TEST(GeneralEigen, ANaNFailsWithTheCommandsTexts) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const CellMatrix a = cells({{nan, 1.0}, {1.0, 1.0}});
    const CellMatrix zero = cells({{0.0, 0.0}, {0.0, 0.0}});
    EXPECT_EQ(thrown_text([&] { matrix_eigen(a); }), "matrix_eigen failed");
    EXPECT_EQ(thrown_text([&] { matrix_complex_eigen(a, zero); }), "matrix_complex_eigen failed");
    EXPECT_EQ(thrown_text([&] { matrix_Schur(a); }), "matrix_Schur failed");
    EXPECT_EQ(thrown_text([&] { matrix_complex_Schur(a, zero); }), "matrix_Schur failed");
}

TEST(ComplexQR, FactorsIntoUnitaryAndUpperTriangular) {
    const cmat a = random_complex(6, 6, 31, false);
    const ComplexQR qr = complex_qr(a);
    expect_upper_triangular(qr.r);
    EXPECT_LT(distance(product(adjoint(qr.q), qr.q), eye(6)), kTight);
    EXPECT_LT(distance(product(qr.q, qr.r), a), kTight);
}

TEST(MatrixExponential, InverseDiagonalAndNilpotentClosedForms) {
    // Norms past theta_13 so that the squaring runs too.
    dmat a = random_real(5, 5, 41);
    for (dvec& row : a)
        for (double& x : row)
            x *= 4.0;
    const dmat minus_a = mat_scale(a, -1.0);
    EXPECT_LT(distance(product(c(matrix_exponential(a)), c(matrix_exponential(minus_a))), eye(5)),
              kTight);
    const cmat z = random_complex(4, 4, 42, false);
    cmat minus_z = z;
    for (auto& row : minus_z)
        for (cplx& x : row)
            x = -x;
    EXPECT_LT(distance(product(matrix_exponential(z), matrix_exponential(minus_z)), eye(4)),
              kTight);

    const dmat d = matrix_exponential(dmat{{-3.0, 0.0, 0.0}, {0.0, 0.5, 0.0}, {0.0, 0.0, 7.0}});
    EXPECT_LT(distance(c(d), c(dmat{{std::exp(-3.0), 0.0, 0.0},
                                    {0.0, std::exp(0.5), 0.0},
                                    {0.0, 0.0, std::exp(7.0)}})),
              kTight);
    // N strictly upper triangular: exp(N) = I + N + N^2 / 2 exactly.
    const dmat n = {{0.0, 2.0, 3.0}, {0.0, 0.0, 5.0}, {0.0, 0.0, 0.0}};
    const dmat expected = {{1.0, 2.0, 3.0 + 2.0 * 5.0 / 2.0}, {0.0, 1.0, 5.0}, {0.0, 0.0, 1.0}};
    EXPECT_LT(distance(c(matrix_exponential(n)), c(expected)), kTight);
}

TEST(Sylvester, SolutionLeavesNoResidual) {
    const cmat a = random_complex(4, 4, 51, true);
    const cmat b = random_complex(3, 3, 52, true);
    const cmat x0 = random_complex(4, 3, 53, true);
    cmat rhs = product(a, x0);
    const cmat xb = product(x0, b);
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            rhs[i][j] += xb[i][j];
    const CellMatrix x =
        matrix_Sylvester_solver(cells(real_part(a)), cells(real_part(b)), cells(real_part(rhs)));
    EXPECT_LT(distance(c(block(x, 0, 4, 3)), x0), kTight);
}

TEST(MatrixCommands, InverseSolverLUQRAndSVDIdentities) {
    const dmat a = random_real(6, 6, 61);
    const CellMatrix ca = cells(a);
    EXPECT_LT(distance(product(c(a), c(block(matrix_inv(ca), 0, 6, 6))), eye(6)), kTight);

    const dmat b = random_real(6, 2, 62);
    const dmat x = block(matrix_solver(ca, cells(b)), 0, 6, 2);
    EXPECT_LT(distance(product(c(a), c(x)), c(b)), kTight);

    const CellMatrix lu = matrix_LU(ca);  // heading, then P, L, U under labels
    const cmat p = c(block(lu, 2, 6, 6)), l = c(block(lu, 10, 6, 6)), u = c(block(lu, 18, 6, 6));
    expect_upper_triangular(u);
    expect_upper_triangular(adjoint(l));
    EXPECT_LT(distance(product(p, c(a)), product(l, u)), kTight);

    const CellMatrix qr = matrix_QR(ca);
    const cmat q = c(block(qr, 2, 6, 6)), r = c(block(qr, 10, 6, 6));
    expect_upper_triangular(r);
    EXPECT_LT(distance(product(adjoint(q), q), eye(6)), kTight);
    EXPECT_LT(distance(product(q, r), c(a)), kTight);

    const dmat tall = random_real(5, 3, 63);
    const CellMatrix svd = matrix_svd(cells(tall));
    const cmat su = c(block(svd, 2, 5, 3)), sw = c(block(svd, 9, 3, 3)),
               sv = c(block(svd, 14, 3, 3));
    EXPECT_LT(distance(product(product(su, sw), adjoint(sv)), c(tall)), kTight);
}

// The four conditions that define the Moore-Penrose inverse X of A.
void expect_penrose(const cmat& a, const cmat& x) {
    const cmat ax = product(a, x), xa = product(x, a);
    EXPECT_LT(distance(product(ax, a), a), kTight);
    EXPECT_LT(distance(product(xa, x), x), kTight);
    EXPECT_LT(distance(adjoint(ax), ax), kTight);
    EXPECT_LT(distance(adjoint(xa), xa), kTight);
}

TEST(MatrixCommands, PseudoInversesMeetThePenroseConditions) {
    // Rank 2 in a 5 by 4: the product of a 5 by 2 and a 2 by 4.
    const cmat deficient = product(random_complex(5, 2, 71, true), random_complex(2, 4, 72, true));
    for (const cmat& a : {c(random_real(4, 6, 73)), deficient}) {
        const std::size_t m = a.size(), n = a[0].size();
        expect_penrose(a, c(block(matrix_pinv(cells(real_part(a))), 0, n, m)));
    }
    const cmat z = product(random_complex(4, 2, 74, false), random_complex(2, 3, 75, false));
    for (const cmat& a : {random_complex(3, 5, 76, false), z}) {
        const std::size_t m = a.size(), n = a[0].size();
        const CellMatrix p = matrix_complex_pinv(cells(real_part(a)), cells(imag_part(a)));
        expect_penrose(a, c(block(p, 1, n, m), block(p, n + 3, n, m)));
    }
}

TEST(MatrixCommands, SweepOverEveryPivotInverts) {
    // B^T B + I is positive definite.
    const dmat b = random_real(6, 6, 81);
    dmat a = mat_mul(transpose(b), b);
    for (std::size_t i = 0; i < a.size(); ++i)
        a[i][i] += 1.0;
    const cmat swept = c(block(matrix_sweep(cells(a), CellMatrix(1, 1)), 0, 6, 6));
    EXPECT_LT(distance(product(c(a), swept), eye(6)), kTight);
}

}  // namespace
