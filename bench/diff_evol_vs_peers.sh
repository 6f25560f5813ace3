#!/usr/bin/env bash
# Differential evolution beside its peers, the same search in each: strategy
# local-to-best (DEoptim's 2, scipy's currenttobest1bin), F 0.8, CR 0.9, about 50
# members, 200 generations. Two problems: Rosenbrock in 4 variables, and the
# weighted-sum-of-squares fit of exp(-b1 x) / (b2 + b3 x) to 54 records made
# from known coefficients (the records of bench/diff_evol_bench.cpp). Times are
# each program's own in-process time, best of 3. Also the peak memory of a
# whole run at 200, 2,000 and 20,000 generations, which should grow by the
# records and the table of the result only. Not run by CI. Needs r-base-core,
# r-cran-deoptim and Debian's python3-scipy (/usr/bin/python3).
# usage: bench/diff_evol_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=$(cd "${1:-build}" && pwd)
Z=$BUILD/zentable
DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
. "$(dirname "$0")/peer_timing.sh"
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

# --- zentable: the best of 3 repetitions of each benchmark, wall time
"$BUILD/bench/diff_evol_bench" --benchmark_repetitions=3 --benchmark_format=csv 2>/dev/null |
    awk -F, '$1 ~ /^"(solver_rosenbrock4|nls_solver_rational54|engine_rosenbrock4)"$/ {
        gsub(/"/, "", $1); t = $3 / 1000; if (!($1 in m) || t < m[$1]) m[$1] = t }
        END {for (k in m) printf "%s %.6f\n", k, m[k]}' >"$DIR/z"
cat "$DIR/z"
zt() { awk -v k="$1" '$1 == k {print $2}' "$DIR/z"; }

# --- R's DEoptim: C engine, R objective
cat >"$DIR/de.R" <<'RS'
suppressMessages(library(DEoptim))
ctl <- DEoptim.control(strategy = 2, NP = 50, itermax = 200, F = 0.8, CR = 0.9, trace = FALSE)
rosen <- function(v) sum(100 * (v[2:4] - v[1:3]^2)^2 + (1 - v[1:3])^2)
i <- 1:54; x <- 0.5 + 0.11 * i
y <- exp(-0.17 * x) / (0.006 + 0.012 * x) * (1 + 0.02 * sin(i))
sse <- function(b) sum((y - exp(-b[1] * x) / (b[2] + b[3] * x))^2)
best <- function(f) min(replicate(3, system.time(f())[["elapsed"]]))
r1 <- NULL; r2 <- NULL
t1 <- best(function() r1 <<- DEoptim(rosen, rep(-2, 4), rep(2, 4), ctl))
t2 <- best(function() r2 <<- DEoptim(sse, c(0, 0, 0), c(1, 0.1, 0.1), ctl))
cat(sprintf("DEoptim rosenbrock best %.3g, rational SSE %.10g\n", r1$optim$bestval, r2$optim$bestval))
cat(sprintf("rosenbrock %.6f\nrational %.6f\n", t1, t2))
RS
Rscript "$DIR/de.R" | tee "$DIR/r"
rt() { awk -v k="$1" '$1 == k {print $2}' "$DIR/r"; }

# --- scipy's differential_evolution: popsize times D members
cat >"$DIR/de.py" <<'PY'
import math, time
import numpy as np
from scipy.optimize import differential_evolution as de
def rosen(v):
    return sum(100 * (v[i + 1] - v[i] ** 2) ** 2 + (1 - v[i]) ** 2 for i in range(3))
i = np.arange(1, 55); x = 0.5 + 0.11 * i
y = np.exp(-0.17 * x) / (0.006 + 0.012 * x) * (1 + 0.02 * np.sin(i))
def sse(b):
    return float(np.sum((y - np.exp(-b[0] * x) / (b[1] + b[2] * x)) ** 2))
def best(run):
    times = []
    for _ in range(3):
        t0 = time.perf_counter(); r = run(); times.append(time.perf_counter() - t0)
    return min(times), r
common = dict(strategy="currenttobest1bin", mutation=0.8, recombination=0.9, maxiter=200,
              tol=0, atol=0, polish=False, seed=100)
t1, r1 = best(lambda: de(rosen, [(-2, 2)] * 4, popsize=13, **common))
t2, r2 = best(lambda: de(sse, [(0, 1), (0, 0.1), (0, 0.1)], popsize=17, **common))
print("scipy rosenbrock best %.3g, rational SSE %.10g" % (r1.fun, r2.fun))
print("rosenbrock %.6f\nrational %.6f" % (t1, t2))
PY
/usr/bin/python3 "$DIR/de.py" | tee "$DIR/p"
pt() { awk -v k="$1" '$1 == k {print $2}' "$DIR/p"; }

# zentable's SSE on the same records, for the quality of the search
"$Z" call diff_evol_nls_solver '{"exp(-b1*x) / (b2 + b3*x)"}' '{"b1",0,1;"b2",0,0.1;"b3",0,0.1}' \
    "{$(awk 'BEGIN {printf "\"x\""; for (i = 1; i <= 54; i++) printf ";%.17g", 0.5 + 0.11 * i}')}" \
    "{$(awk 'BEGIN {printf "\"y\""; for (i = 1; i <= 54; i++) {x = 0.5 + 0.11 * i
        printf ";%.17g", exp(-0.17 * x) / (0.006 + 0.012 * x) * (1 + 0.02 * sin(i))}}')}" \
    --format csv | awk -F, 'NR == 4 {printf "zentable rational SSE %.10g\n", $2}'

report "rosenbrock, 4 variables" "$(zt solver_rosenbrock4)" DEoptim "$(rt rosenbrock)"
report "rosenbrock, 4 variables" "$(zt solver_rosenbrock4)" scipy "$(pt rosenbrock)"
report "rational model, 54 records" "$(zt nls_solver_rational54)" DEoptim "$(rt rational)"
report "rational model, 54 records" "$(zt nls_solver_rational54)" scipy "$(pt rational)"
echo "engine alone on a compiled Rosenbrock: $(zt engine_rosenbrock4) s"

# --- peak memory of a whole process against the number of generations
for g in 200 2000 20000; do
    kb=$(/usr/bin/time -f "%M" "$Z" call diff_evol_solver '{"(x1-1)^2 + (x2-2)^2 + x3^2 + x4^2"}' \
        '{"x1",-2,2;"x2",-2,2;"x3",-2,2;"x4",-2,2}' "$g" --format csv 2>&1 >/dev/null | tail -1)
    echo "peak memory at $g generations: $kb KiB"
done
