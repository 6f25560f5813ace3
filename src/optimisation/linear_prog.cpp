#include "optimisation/linear_prog.hpp"

#include <cmath>

#include "optimisation/constraints.hpp"
#include "optimisation/row_update.hpp"

namespace zentable {

namespace {

constexpr double kEps = 1e-06;

// The tableau in one block, rows 1 to m + 2 and columns 1 to n + 1 as the
// method numbers them; each row is contiguous so that a pivot's row update
// is one plain loop.
class Tableau {
  public:
    Tableau(std::size_t rows, std::size_t columns)
        : columns_(columns), cells_(rows * columns, 0.0) {}
    double* row(long i) { return cells_.data() + (i - 1) * columns_ - 1; }
    double& operator()(long i, long k) { return row(i)[k]; }
    long columns() const { return static_cast<long>(columns_); }

  private:
    std::size_t columns_;
    dvec cells_;
};

// The column among `allowed` whose entry in row `r` is largest (by size when
// `by_size`), the first of equals; `best` is 0 when none is allowed.
void largest_entry(Tableau& t, long r, const std::vector<long>& allowed, bool by_size, long& kp,
                   double& best) {
    if (allowed.empty()) {
        best = 0.0;
        return;
    }
    const double* row = t.row(r);
    kp = allowed[0];
    best = row[kp + 1];
    for (std::size_t k = 1; k < allowed.size(); ++k) {
        const double v = row[allowed[k] + 1];
        const double test = by_size ? std::fabs(v) - std::fabs(best) : v - best;
        if (test > 0.0) {
            best = v;
            kp = allowed[k];
        }
    }
}

// The leaving row for entering column kp among constraints 1 to m, or 0 when
// no entry is negative enough. Ties go column by column, which is what keeps
// degenerate problems from cycling.
long ratio_row(Tableau& t, long m, long n, long kp) {
    long ip = 0;
    double q1 = 0.0;
    for (long i = 1; i <= m; ++i) {
        const double* row = t.row(i + 1);
        if (!(row[kp + 1] < -kEps))
            continue;
        const double q = -row[1] / row[kp + 1];
        if (ip == 0 || q < q1) {
            ip = i;
            q1 = q;
        } else if (q == q1) {
            const double* best = t.row(ip + 1);
            double qp = 0.0;
            double q0 = 0.0;
            for (long k = 1; k <= n; ++k) {
                qp = -best[k + 1] / best[kp + 1];
                q0 = -row[k + 1] / row[kp + 1];
                if (q0 != qp)
                    break;
            }
            if (q0 < qp)
                ip = i;
        }
    }
    return ip;
}

// Exchanges constraint ip with column kp over tableau rows 1 to last.
void pivot(Tableau& t, long last, long ip, long kp) {
    const long columns = t.columns();
    double* prow = t.row(ip + 1);
    const double p = prow[kp + 1];
    for (long ii = 1; ii <= last; ++ii) {
        if (ii == ip + 1)
            continue;
        double* row = t.row(ii);
        const double f = row[kp + 1] / p;
        if (f == 0.0) {
            row[kp + 1] = f;
            continue;
        }
        // The pivot column takes part in the loop only to keep it plain; its
        // value is set after.
        subtract_multiple(row + 1, prow + 1, f, columns);
        row[kp + 1] = f;
    }
    for (long kk = 1; kk <= columns; ++kk)
        prow[kk] = -(prow[kk] / p);
    prow[kp + 1] = 1.0 / p;
}

}  // namespace

LinearProgramResult simplex_maximise(const dvec& c, const dmat& a, const dvec& b, int le, int ge,
                                     int eq) {
    const long n = static_cast<long>(c.size());
    const long m = static_cast<long>(a.size());
    const long m1 = le;
    const long m2 = ge;
    if (m != m1 + m2 + eq || static_cast<long>(b.size()) != m)
        throw "Bad input constraint counts in simplx";
    Tableau t(m + 2, n + 1);
    for (long k = 1; k <= n; ++k)
        t(1, k + 1) = c[k - 1];
    for (long i = 1; i <= m; ++i) {
        double* row = t.row(i + 1);
        row[1] = b[i - 1];
        for (long k = 1; k <= n; ++k)
            row[k + 1] = -a[i - 1][k - 1];
    }
    std::vector<long> allowed(n);
    std::vector<long> izrov(n + 1);
    std::vector<long> iposv(m + 1);
    for (long k = 1; k <= n; ++k)
        allowed[k - 1] = izrov[k] = k;
    for (long i = 1; i <= m; ++i) {
        if (t(i + 1, 1) < 0.0)
            throw "Bad input tableau in simplx";
        iposv[i] = n + i;
    }
    LinearProgramResult result;
    long kp = 0;
    double bmax = 0.0;
    if (m2 + eq != 0) {
        std::vector<bool> not_freed(m2 + 1, true);
        for (long k = 1; k <= n + 1; ++k) {
            double sum = 0.0;
            for (long i = m1 + 1; i <= m; ++i)
                sum += t(i + 1, k);
            t(m + 2, k) = -sum;
        }
        for (;;) {
            largest_entry(t, m + 2, allowed, false, kp, bmax);
            long ip = 0;
            if (bmax <= kEps && t(m + 2, 1) < -kEps) {
                return result;  // infeasible
            } else if (bmax <= kEps && t(m + 2, 1) <= kEps) {
                for (long r = m1 + m2 + 1; r <= m && ip == 0; ++r)
                    if (iposv[r] == r + n) {
                        largest_entry(t, r + 1, allowed, true, kp, bmax);
                        if (std::fabs(bmax) > kEps)
                            ip = r;
                    }
                if (ip == 0) {
                    // ">=" rows still marked carry their artificial's sign.
                    for (long i = m1 + 1; i <= m1 + m2; ++i)
                        if (not_freed[i - m1])
                            for (long k = 1; k <= n + 1; ++k)
                                t(i + 1, k) = -t(i + 1, k);
                    break;
                }
            } else {
                ip = ratio_row(t, m, n, kp);
                if (ip == 0)
                    return result;  // the auxiliary objective is unbounded
            }
            pivot(t, m + 2, ip, kp);
            ++result.pivots;
            if (iposv[ip] >= n + m1 + m2 + 1) {
                // An artificial variable that leaves may not come back.
                for (std::size_t k = 0; k < allowed.size(); ++k)
                    if (allowed[k] == kp) {
                        allowed.erase(allowed.begin() + static_cast<long>(k));
                        break;
                    }
            } else {
                const long kh = iposv[ip] - m1 - n;
                if (kh >= 1 && kh <= m2 && not_freed[kh]) {
                    not_freed[kh] = false;
                    t(m + 2, kp + 1) += 1.0;
                    for (long i = 1; i <= m + 2; ++i)
                        t(i, kp + 1) = -t(i, kp + 1);
                }
            }
            std::swap(izrov[kp], iposv[ip]);
        }
    }
    for (;;) {
        largest_entry(t, 1, allowed, false, kp, bmax);
        if (bmax <= kEps)
            break;
        const long ip = ratio_row(t, m, n, kp);
        if (ip == 0) {
            result.status = SimplexStatus::unbounded;
            return result;
        }
        pivot(t, m + 1, ip, kp);
        ++result.pivots;
        std::swap(izrov[kp], iposv[ip]);
    }
    result.status = SimplexStatus::optimal;
    result.x.assign(n, 0.0);
    for (long i = 1; i <= m; ++i)
        if (iposv[i] <= n)
            result.x[iposv[i] - 1] = t(i + 1, 1);
    result.objective = t(1, 1);
    return result;
}

CellMatrix linear_prog(const CellMatrix& c, const CellMatrix& constraints,
                       const CellMatrix& maxOrMin) {
    constexpr const char* kMode = "Valid input of maxOrMin are MAX or MIN";
    dvec objective = read_objective(c);
    const LinearConstraints rows = read_constraints(constraints, objective.size());
    const bool maximise = read_maximise(maxOrMin, true, kMode, kMode);
    if (!maximise)
        for (double& v : objective)
            v = -v;
    const LinearProgramResult solved =
        simplex_maximise(objective, rows.a, rows.b, rows.le_count, rows.ge_count, rows.eq_count);
    if (solved.status == SimplexStatus::unbounded)
        return CellMatrix("Objective function is unbounded");
    if (solved.status == SimplexStatus::infeasible)
        return CellMatrix("No solution satisfies the given constraints");
    return solution_table(solved.x, maximise ? solved.objective : -solved.objective);
}

}  // namespace zentable
