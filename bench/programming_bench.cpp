// The dense programming problems of the comparison with the peers: an LP of
// 400 variables under 100 "<=", 100 ">=" and 100 "=" rows, and a QP of 150
// variables under 100 rows, both made feasible by a known point and bounded
// by "<=" rows of positive coefficients. `programming_bench --write DIR`
// writes them as CSV files for bench/programming_vs_peers.sh.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <stdexcept>
#include <string>

#include "optimisation/lcp.hpp"
#include "optimisation/linear_prog.hpp"

namespace {

using zentable::CellMatrix;
using zentable::dmat;
using zentable::dvec;

struct Problem {
    dvec c;
    dmat h;  // empty for an LP
    dmat a;
    std::vector<std::string> relation;
    dvec b;
};

Problem make_problem(int n, int per_kind, bool quadratic, unsigned seed) {
    std::mt19937_64 generator(seed);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    Problem p;
    dvec x0(n);
    for (double& v : x0)
        v = uniform(generator);
    p.c.resize(n);
    for (double& v : p.c)
        v = quadratic ? 2.0 * uniform(generator) - 1.0 : uniform(generator);
    const char* kinds[] = {"<=", ">=", "="};
    for (int kind = 0; kind < 3; ++kind)
        for (int r = 0; r < per_kind; ++r) {
            dvec row(n);
            double ax = 0.0;
            for (int j = 0; j < n; ++j) {
                row[j] = kind == 2 ? 2.0 * uniform(generator) - 1.0 : uniform(generator);
                ax += row[j] * x0[j];
            }
            const double slack = uniform(generator) * n / 10.0;
            p.b.push_back(kind == 0 ? ax + slack : kind == 1 ? ax - slack : ax);
            p.a.push_back(row);
            p.relation.push_back(kinds[kind]);
        }
    if (quadratic) {
        dmat root(n, dvec(n));
        for (auto& row : root)
            for (double& v : row)
                v = uniform(generator) - 0.5;
        p.h.assign(n, dvec(n, 0.0));
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) {
                for (int k = 0; k < n; ++k)
                    p.h[i][j] += root[k][i] * root[k][j];
                p.h[i][j] += i == j ? 1.0 : 0.0;
            }
    }
    return p;
}

Problem lp_problem() {
    return make_problem(400, 100, false, 20261125);
}
// 34 "<=", 33 ">=" and 33 "=" rows would not split evenly; 100 rows of three
// kinds are kept as 33 each plus one more "<=" row.
Problem qp_problem() {
    Problem p = make_problem(150, 33, true, 20261126);
    Problem extra = make_problem(150, 1, false, 7);
    p.a.insert(p.a.begin(), extra.a[0]);
    p.relation.insert(p.relation.begin(), "<=");
    // The extra row holds at the QP's own feasible point only if its bound is
    // generous: every coefficient is below 1 and the point's entries too.
    p.b.insert(p.b.begin(), 150.0);
    return p;
}

CellMatrix vector_cells(const dvec& v) {
    CellMatrix out(1, v.size());
    for (std::size_t j = 0; j < v.size(); ++j)
        out(0, j) = v[j];
    return out;
}

CellMatrix matrix_cells(const dmat& m) {
    CellMatrix out(m.size(), m.size());
    for (std::size_t i = 0; i < m.size(); ++i)
        for (std::size_t j = 0; j < m.size(); ++j)
            out(i, j) = m[i][j];
    return out;
}

CellMatrix constraint_cells(const Problem& p) {
    const std::size_t n = p.c.size();
    CellMatrix out(p.a.size(), n + 2);
    for (std::size_t i = 0; i < p.a.size(); ++i) {
        for (std::size_t j = 0; j < n; ++j)
            out(i, j) = p.a[i][j];
        out(i, n) = p.relation[i];
        out(i, n + 1) = p.b[i];
    }
    return out;
}

void write_rows(const std::string& path, const dmat& rows, const std::vector<std::string>* relation,
                const dvec* b) {
    FILE* f = std::fopen(path.c_str(), "w");
    if (!f)
        throw std::runtime_error("cannot write " + path);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows[i].size(); ++j)
            std::fprintf(f, j ? ",%.17g" : "%.17g", rows[i][j]);
        if (relation)
            std::fprintf(f, ",%s,%.17g", (*relation)[i].c_str(), (*b)[i]);
        std::fprintf(f, "\n");
    }
    std::fclose(f);
}

void write_problem(const std::string& stem, const Problem& p) {
    write_rows(stem + "_c.csv", {p.c}, nullptr, nullptr);
    write_rows(stem + "_constraints.csv", p.a, &p.relation, &p.b);
    if (!p.h.empty())
        write_rows(stem + "_h.csv", p.h, nullptr, nullptr);
}

void BM_simplex_400x300(benchmark::State& state) {
    Problem p = lp_problem();
    // The command turns rows of negative right-hand side round; here by hand.
    for (std::size_t i = 0; i < p.b.size(); ++i)
        if (p.b[i] < 0.0) {
            for (double& v : p.a[i])
                v = -v;
            p.b[i] = -p.b[i];
        }
    long pivots = 0;
    for (auto _ : state) {
        const auto r = zentable::simplex_maximise(p.c, p.a, p.b, 100, 100, 100);
        pivots = r.pivots;
        benchmark::DoNotOptimize(r.objective);
    }
    state.counters["pivots"] = static_cast<double>(pivots);
}
BENCHMARK(BM_simplex_400x300)->Unit(benchmark::kMillisecond);

void BM_linear_prog_400x300(benchmark::State& state) {
    const Problem p = lp_problem();
    const CellMatrix c = vector_cells(p.c);
    const CellMatrix constraints = constraint_cells(p);
    const CellMatrix mode("MAX");
    for (auto _ : state)
        benchmark::DoNotOptimize(zentable::linear_prog(c, constraints, mode));
}
BENCHMARK(BM_linear_prog_400x300)->Unit(benchmark::kMillisecond);

void BM_quadratic_prog_150x100(benchmark::State& state) {
    const Problem p = qp_problem();
    const CellMatrix c = vector_cells(p.c);
    const CellMatrix h = matrix_cells(p.h);
    const CellMatrix constraints = constraint_cells(p);
    const CellMatrix mode("MIN");
    for (auto _ : state)
        benchmark::DoNotOptimize(zentable::quadratic_prog(c, h, constraints, mode));
}
BENCHMARK(BM_quadratic_prog_150x100)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--write") {
        const std::string dir = argv[2];
        write_problem(dir + "/lp400", lp_problem());
        write_problem(dir + "/qp150", qp_problem());
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
