#include "optimisation/lcp.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include "optimisation/constraints.hpp"
#include "optimisation/row_update.hpp"
#include "xlw/decoders.hpp"

namespace zentable {

namespace {

constexpr double kTolerance = 1e-08;

std::size_t complement(std::size_t variable, std::size_t n) {
    return variable < n ? variable + n : variable - n;
}

// Row r divided by its entry in column e, then taken out of every other row.
void lemke_pivot(dmat& t, std::size_t r, std::size_t e) {
    dvec& prow = t[r];
    const double p = prow[e];
    for (double& v : prow)
        v /= p;
    for (std::size_t i = 0; i < t.size(); ++i) {
        if (i == r)
            continue;
        dvec& row = t[i];
        const double f = row[e];
        if (f == 0.0)
            continue;
        subtract_multiple(row.data(), prow.data(), f, static_cast<long>(row.size()));
    }
}

// The row of the smallest ratio of right-hand side to a positive entry of
// column e, the first of equals; t.size() when no entry is positive.
std::size_t ratio_row(const dmat& t, std::size_t e, std::size_t rhs) {
    std::size_t best = t.size();
    double smallest = 1e30;
    for (std::size_t i = 0; i < t.size(); ++i)
        if (t[i][e] > kTolerance) {
            const double ratio = t[i][rhs] / t[i][e];
            if (ratio < smallest) {
                smallest = ratio;
                best = i;
            }
        }
    return best;
}

double quadratic_value(const dvec& c, const dmat& h, const dvec& x) {
    double linear = 0.0;
    double quadratic = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        linear += c[i] * x[i];
        double hx = 0.0;
        for (std::size_t j = 0; j < x.size(); ++j)
            hx += h[i][j] * x[j];
        quadratic += x[i] * hx;
    }
    return linear + 0.5 * quadratic;
}

}  // namespace

LcpResult lemke(const dmat& m, const dvec& q) {
    const std::size_t n = q.size();
    LcpResult result;
    if (n == 0 || *std::min_element(q.begin(), q.end()) >= 0.0) {
        result.solved = true;
        result.z.assign(n, 0.0);
        return result;
    }
    const std::size_t artificial = 2 * n;
    const std::size_t rhs = 2 * n + 1;
    dmat t(n, dvec(2 * n + 2, 0.0));
    for (std::size_t i = 0; i < n; ++i) {
        t[i][i] = 1.0;
        for (std::size_t j = 0; j < n; ++j)
            t[i][n + j] = -m[i][j];
        t[i][artificial] = -1.0;
        t[i][rhs] = q[i];
    }
    std::vector<std::size_t> basis(n);
    for (std::size_t i = 0; i < n; ++i)
        basis[i] = i;
    std::size_t entering = artificial;
    std::size_t row = static_cast<std::size_t>(std::min_element(q.begin(), q.end()) - q.begin());
    std::size_t skipped = n;  // the row of an artificial left basic at zero
    for (;;) {
        lemke_pivot(t, row, entering);
        const std::size_t leaving = basis[row];
        basis[row] = entering;
        if (leaving == artificial)
            break;
        const auto still = std::find(basis.begin(), basis.end(), artificial);
        if (still != basis.end() && std::fabs(t[still - basis.begin()][rhs]) < kTolerance) {
            skipped = static_cast<std::size_t>(still - basis.begin());
            break;
        }
        entering = complement(leaving, n);
        row = ratio_row(t, entering, rhs);
        if (row == n)
            return result;  // a ray: no solution
    }
    dvec values(2 * n + 1, 0.0);
    for (std::size_t i = 0; i < n; ++i)
        if (i != skipped)
            values[basis[i]] = t[i][rhs];
    result.solved = true;
    result.z.assign(values.begin() + static_cast<long>(n),
                    values.begin() + static_cast<long>(2 * n));
    return result;
}

CellMatrix lcp(const CellMatrix& m, const CellMatrix& q) {
    const dmat matrix = read_square_matrix(m, "Input matrix m must be a square matrix");
    constexpr const char* kSize =
        "the rows of the vector q must be the same as the rows of the matrix m";
    if (q.ColumnsInStructure() != 1 || q.RowsInStructure() != matrix.size())
        throw kSize;
    dvec vector;
    read_double_vector(q, "Data matrix not conformable in LP", vector);
    const LcpResult solved = lemke(matrix, vector);
    if (!solved.solved)
        return CellMatrix("No solution");
    CellMatrix result(solved.z.size() + 1, 1);
    result(0, 0) = "Solution found";
    for (std::size_t i = 0; i < solved.z.size(); ++i)
        result(i + 1, 0) = solved.z[i];
    return result;
}

CellMatrix quadratic_prog(const CellMatrix& c, const CellMatrix& H, const CellMatrix& constraints,
                          const CellMatrix& minOrMax) {
    dvec linear = read_objective(c);
    const std::size_t n = linear.size();
    dmat h = read_square_matrix(H, "Input matrix H must be a square matrix");
    if (h.size() != n)
        throw "Input matrix H with " + std::to_string(h.size()) +
            " rows and columns is not consistent with input c with " + std::to_string(n) +
            " values";
    const LinearConstraints rows = read_constraints(constraints, n);
    const bool maximise = read_maximise(minOrMax, false, "Valid input of minOrMax are MIN or MAX",
                                        "Valid input of minOrMax are MAX or MIN");
    if (maximise) {
        for (double& v : linear)
            v = -v;
        for (dvec& row : h)
            for (double& v : row)
                v = -v;
    }
    // Every row as A x >= b: a "<=" row negated, an "=" row as itself and
    // negated, one after the other.
    dmat a;
    dvec b;
    const auto add = [&](const dvec& row, double rhs, double sign) {
        dvec signed_row(row);
        for (double& v : signed_row)
            v *= sign;
        a.push_back(std::move(signed_row));
        b.push_back(sign * rhs);
    };
    const std::size_t first_eq = static_cast<std::size_t>(rows.le_count + rows.ge_count);
    for (std::size_t i = 0; i < rows.a.size(); ++i) {
        const bool le = i < static_cast<std::size_t>(rows.le_count);
        add(rows.a[i], rows.b[i], le ? -1.0 : 1.0);
        if (i >= first_eq)
            add(rows.a[i], rows.b[i], -1.0);
    }
    const std::size_t p = a.size();
    dmat m(n + p, dvec(n + p, 0.0));
    dvec q(n + p, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j)
            m[i][j] = h[i][j];
        for (std::size_t k = 0; k < p; ++k)
            m[i][n + k] = -a[k][i];
        q[i] = linear[i];
    }
    for (std::size_t k = 0; k < p; ++k) {
        for (std::size_t j = 0; j < n; ++j)
            m[n + k][j] = a[k][j];
        q[n + k] = -b[k];
    }
    const LcpResult solved = lemke(m, q);
    if (!solved.solved)
        return CellMatrix("No solution satisfies the given constraints");
    const dvec x(solved.z.begin(), solved.z.begin() + static_cast<long>(n));
    const double value = quadratic_value(linear, h, x);
    return solution_table(x, maximise ? -value : value);
}

}  // namespace zentable
