#!/usr/bin/env bash
# A compiled expression and the integral command beside their peers: bare ExprTk
# (value() with its variables set directly: the ceiling), a Python function and
# an R closure called per point as scipy's and R's optimisers call them, and
# from the shell R's integrate and scipy's quad. Also checks the six added
# probability functions against R's pnorm, qnorm, pt, qt, pchisq and qchisq.
# Per-evaluation figures are thread CPU times, which other work on a shared
# machine disturbs less than wall times; whole processes are timed by the wall.
# Not run by CI. Needs r-base-core and Debian's python3-scipy (/usr/bin/python3).
# usage: bench/expression_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=$(cd "${1:-build}" && pwd)
Z=$BUILD/zentable
DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"
best() { sort -g | head -1; }
ratio() { echo "$1 $2" | awk '{printf "%.2f", $1 / $2}'; }
whole() {  # a whole process, best of five: "wall CPU" in seconds, CPU = user + system
    /usr/bin/python3 - "$@" <<'PY'
import resource, subprocess, sys, time
walls, cpus = [], []
for _ in range(5):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    t0 = time.perf_counter()
    subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL, check=True)
    walls.append(time.perf_counter() - t0)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    cpus.append(after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime)
print("%.4f %.4f" % (min(walls), min(cpus)))
PY
}
TEXT='z1 := x*x + y*y; z2 := x*x - y*y; sin(z1) + cos(z2)'

# --- the six added functions against R, at the same doubles
cat >"$DIR/r_values.R" <<'RS'
options(digits = 17)
v <- c(pnorm(1.5), pnorm(-3), qnorm(0.975), qnorm(1e-10), pt(2.1, 5), pt(-0.7, 2.5),
       qt(0.95, 10), pchisq(3.5, 4), pchisq(3.5, 4, ncp = 2), qchisq(0.9, 4),
       qchisq(0.9, 4, ncp = 2))
cat(sprintf("%.17g", v), sep = "\n")
RS
Rscript "$DIR/r_values.R" >"$DIR/r"
"$Z" call function_eval '{"prob_normal(1.5)+0*x"}' '{"x";0}' --format csv | tail -1 >"$DIR/z"
for e in 'prob_normal(-3)' 'prob_normal_inv(0.975)' 'prob_normal_inv(1e-10)' 'prob_t(2.1, 5)' \
    'prob_t(-0.7, 2.5)' 'prob_t_inv(0.95, 10)' 'probchi(3.5, 4)' 'probchi(3.5, 4, 2)' \
    'cinv(0.9, 4)' 'cinv(0.9, 4, 2)'; do
    "$Z" call function_eval "{\"$e+0*x\"}" '{"x";0}' --format csv | tail -1 >>"$DIR/z"
done
# cdfs to 1e-13 relative, quantiles (lines 3, 4, 7, 10, 11) to 1e-12
paste "$DIR/r" "$DIR/z" | awk '{d = $1 - $2; if (d < 0) d = -d; r = d / ($1 < 0 ? -$1 : $1)
    tol = (NR == 3 || NR == 4 || NR == 7 || NR >= 10) ? 1e-12 : 1e-13
    if (r > tol) {bad = 1; print "differs from R at line " NR ": " $1 " " $2 " rel " r}
    if (r > worst) worst = r}
    END {printf "added functions against R: largest relative difference %.2g\n", worst; exit bad}'

# --- one evaluation: zentable's call operator, bare ExprTk, Python, R
"$BUILD/bench/expression_bench" --benchmark_filter='call_operator|construct|integral_command' \
    --benchmark_repetitions=3 --benchmark_format=csv 2>/dev/null |
    awk -F, '$1 ~ /"(call_operator|construct|integral_command)"/ {gsub(/"/, "", $1); print $1, $4}' |
    sort -k1,1 -k2g | awk '!seen[$1]++' >"$DIR/ours"
ours_ns=$(awk '$1 == "call_operator" {print $2}' "$DIR/ours")
construct_us=$(awk '$1 == "construct" {print $2}' "$DIR/ours")
integral_us=$(awk '$1 == "integral_command" {print $2}' "$DIR/ours")

cat >"$DIR/bare.cpp" <<'CPP'
#include <cstdio>
#include <exprtk.hpp>
#include <ctime>
struct clock_type {
    static double now() {
        timespec t;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return t.tv_sec + 1e-9 * t.tv_nsec;
    }
};
double since(double t0) { return clock_type::now() - t0; }
int main() {
    double x = 0.25, y = 0.5, z1 = 0, z2 = 0;
    exprtk::symbol_table<double> symbols;
    symbols.add_variable("x", x); symbols.add_variable("y", y);
    symbols.add_variable("z1", z1); symbols.add_variable("z2", z2);
    symbols.add_constants();
    exprtk::expression<double> expression;
    expression.register_symbol_table(symbols);
    const int parsers = 2000;
    double parse_s = 1e9, compile_s = 1e9, value_s = 1e9;
    for (int round = 0; round < 3; ++round) {
        auto t0 = clock_type::now();
        for (int i = 0; i < parsers; ++i) { exprtk::parser<double> p; asm volatile("" ::"g"(&p)); }
        parse_s = std::min(parse_s, since(t0) / parsers);
        exprtk::parser<double> parser;
        t0 = clock_type::now();
        for (int i = 0; i < parsers; ++i) parser.compile(TEXT, expression);
        compile_s = std::min(compile_s, since(t0) / parsers);
        const int n = 20000000;
        double sum = 0;
        t0 = clock_type::now();
        for (int i = 0; i < n; ++i) { x += 1e-9; sum += expression.value(); }
        value_s = std::min(value_s, since(t0) / n);
        asm volatile("" ::"g"(sum));
    }
    std::printf("%.3f %.2f %.2f\n", value_s * 1e9, parse_s * 1e6, compile_s * 1e6);
}
CPP
echo "compiling bare ExprTk at -O2 (about a minute)..."
g++ -std=c++17 -O2 -DTEXT="\"$TEXT\"" -I"$BUILD/_deps/exprtk/include" "$DIR/bare.cpp" -o "$DIR/bare"
read -r bare_ns parser_us compile_us < <("$DIR/bare")

python_ns=$(/usr/bin/python3 - <<'PY'
import math, time, timeit, numpy as np
def f(v):
    x, y = v
    z1 = x * x + y * y
    z2 = x * x - y * y
    return math.sin(z1) + math.cos(z2)
v = np.array([0.25, 0.5])
n = 1000000
print(min(timeit.repeat(lambda: f(v), number=n, repeat=3, timer=time.thread_time)) / n * 1e9)
PY
)
r_ns=$(Rscript -e 'f <- function(v) { z1 <- v[1]^2 + v[2]^2; z2 <- v[1]^2 - v[2]^2; sin(z1) + cos(z2) }
v <- c(0.25, 0.5); n <- 1e6
t <- min(sapply(1:3, function(i) system.time(for (k in 1:n) f(v))[["user.self"]]))
cat(t / n * 1e9)')

echo "one evaluation of: $TEXT"
printf '  zentable GenericFunction   %8.1f ns\n' "$ours_ns"
printf '  bare ExprTk value()        %8.1f ns  (zentable / bare: %s)\n' "$bare_ns" "$(ratio "$ours_ns" "$bare_ns")"
printf '  Python function per point  %8.1f ns  (Python / zentable: %s)\n' "$python_ns" "$(ratio "$python_ns" "$ours_ns")"
printf '  R closure                  %8.1f ns  (R / zentable: %s)\n' "$r_ns" "$(ratio "$r_ns" "$ours_ns")"
echo "building it: GenericFunction whole ${construct_us} us; bare ExprTk parser constructed ${parser_us} us, text compiled ${compile_us} us"

# --- the integral from the shell
read -r ours_s ours_cpu < <(whole "$Z" call integral '{"exp(-x*x)"}' 0 2)
read -r r_s r_cpu < <(whole Rscript -e 'integrate(function(x) exp(-x*x), 0, 2)')
read -r py_s py_cpu < <(whole /usr/bin/python3 -c 'from scipy.integrate import quad; import math; print(quad(lambda x: math.exp(-x*x), 0, 2))')
read -r bare_s bare_cpu < <(whole "$Z" call version)
echo "integral of exp(-x*x) on [0, 2], whole process, best of 5 (wall, CPU):"
echo "  zentable call integral  ${ours_s} s, ${ours_cpu} s (call version alone: ${bare_s} s, ${bare_cpu} s; the command in-process: ${integral_us} us)"
echo "  Rscript integrate       ${r_s} s, ${r_cpu} s  (R / zentable wall: $(ratio "$r_s" "$ours_s"))"
echo "  python3 scipy quad      ${py_s} s, ${py_cpu} s  (Python / zentable wall: $(ratio "$py_s" "$ours_s"))"
