#!/usr/bin/env bash
# linear_prog on a dense LP of 400 variables under 100 "<=", 100 ">=" and 100
# "=" rows, against scipy's linprog (HiGHS) and R's lpSolve; quadratic_prog on
# 150 variables under 100 rows against R's quadprog. The peers are also the
# oracle of the generated problems: objectives must agree to 1e-9 relative and
# x to 1e-7. Not run by CI. Needs Debian's python3-scipy (run by
# /usr/bin/python3), r-cran-lpsolve and r-cran-quadprog.
# usage: bench/programming_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
"$BUILD/bench/programming_bench" --write "$DIR"
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"
. "$(dirname "${BASH_SOURCE[0]}")/peer_timing.sh"
whole() {  # best of three wall times of a whole process
    for i in 1 2 3; do
        /usr/bin/time -f "%e" "$@" 2>&1 >/dev/null | tail -1
    done | best
}

# The solution of each solver as one number per line: the objective, then x.
"$BUILD/zentable" call linear_prog "@$DIR/lp400_c.csv" "@$DIR/lp400_constraints.csv" MAX \
    --format csv | awk -F, 'NR>2{print $1; if (NR==3) obj=$2} END{print obj > "/dev/stderr"}' \
    2>"$DIR/lp_obj" >"$DIR/lp_x"
cat "$DIR/lp_obj" "$DIR/lp_x" >"$DIR/lp_zentable"
"$BUILD/zentable" call quadratic_prog "@$DIR/qp150_c.csv" "@$DIR/qp150_h.csv" \
    "@$DIR/qp150_constraints.csv" MIN --format csv |
    awk -F, 'NR>2{print $1; if (NR==3) obj=$2} END{print obj > "/dev/stderr"}' \
    2>"$DIR/qp_obj" >"$DIR/qp_x"
cat "$DIR/qp_obj" "$DIR/qp_x" >"$DIR/qp_zentable"

cat >"$DIR/scipy_lp.py" <<PY
import sys, time
t0 = time.perf_counter()
import numpy as np
from scipy.optimize import linprog
c = np.loadtxt("$DIR/lp400_c.csv", delimiter=",")
rows = [l.strip().split(",") for l in open("$DIR/lp400_constraints.csv")]
A = np.array([[float(v) for v in r[:-2]] for r in rows]); op = [r[-2] for r in rows]
b = np.array([float(r[-1]) for r in rows])
le = np.array([o == "<=" for o in op]); ge = np.array([o == ">=" for o in op]); eq = ~(le | ge)
t1 = time.perf_counter()
r = linprog(-c, A_ub=np.vstack([A[le], -A[ge]]), b_ub=np.concatenate([b[le], -b[ge]]),
            A_eq=A[eq], b_eq=b[eq], bounds=(0, None), method="highs")
t2 = time.perf_counter()
with open(sys.argv[1], "w") as f:
    f.write("%.17g\n" % -r.fun)
    f.writelines("%.17g\n" % v for v in r.x)
print(t2 - t1)
PY
cat >"$DIR/lpsolve.R" <<RS
suppressMessages(library(lpSolve))
c <- scan("$DIR/lp400_c.csv", sep = ",", quiet = TRUE)
d <- read.csv("$DIR/lp400_constraints.csv", header = FALSE)
n <- length(c)
t <- proc.time()[["elapsed"]]
r <- lp("max", c, as.matrix(d[, 1:n]), d[[n + 1]], d[[n + 2]])
cat(proc.time()[["elapsed"]] - t, "\n")
writeLines(sprintf("%.17g", c(r\$objval, r\$solution)), commandArgs(TRUE)[1])
RS
cat >"$DIR/quadprog.R" <<RS
suppressMessages(library(quadprog))
c <- scan("$DIR/qp150_c.csv", sep = ",", quiet = TRUE)
H <- as.matrix(read.csv("$DIR/qp150_h.csv", header = FALSE))
d <- read.csv("$DIR/qp150_constraints.csv", header = FALSE)
n <- length(c)
A <- as.matrix(d[, 1:n]); op <- trimws(d[[n + 1]]); b <- d[[n + 2]]
sg <- ifelse(op == "<=", -1, 1)
eq <- op == "="
# quadprog: min -d'x + x'Dx/2 under t(Amat) x >= bvec, the first meq as equalities.
Amat <- rbind(A[eq, , drop = FALSE], sg[!eq] * A[!eq, , drop = FALSE], diag(n))
bvec <- c(b[eq], sg[!eq] * b[!eq], rep(0, n))
t <- proc.time()[["elapsed"]]
for (i in 1:100) r <- solve.QP(H, -c, t(Amat), bvec, meq = sum(eq))
cat((proc.time()[["elapsed"]] - t) / 100, "\n")
writeLines(sprintf("%.17g", c(r\$value, r\$solution)), commandArgs(TRUE)[1])
RS

# Objective to 1e-9 relative, x to 1e-7 (absolute below 1, relative above).
agree() {
    paste -d, "$1" "$2" | awk -F, -v who="$3" '
        NR==1 { d = $1 - $2; if (d < 0) d = -d; s = $2 < 0 ? -$2 : $2
                if (d > 1e-9 * s) bad = bad " objective(" $1 " vs " $2 ")"; next }
        { d = $1 - $2; if (d < 0) d = -d; s = $2 < 0 ? -$2 : $2; if (s < 1) s = 1
          if (d > 1e-7 * s) { nbad++; if (d > worst) worst = d } }
        END { if (bad != "" || nbad) { print who ": DISAGREE" bad, nbad + 0, "x entries, worst", worst; exit 1 }
              print who ": agrees (objective 1e-9 relative, all", NR - 1, "x entries 1e-7)" }'
}

highs=$(for i in 1 2 3; do /usr/bin/python3 "$DIR/scipy_lp.py" "$DIR/lp_scipy"; done | best)
agree "$DIR/lp_zentable" "$DIR/lp_scipy" "linear_prog vs scipy HiGHS"
lpsolve=$(for i in 1 2 3; do Rscript "$DIR/lpsolve.R" "$DIR/lp_lpsolve" 2>/dev/null; done | best)
agree "$DIR/lp_zentable" "$DIR/lp_lpsolve" "linear_prog vs R lpSolve"
quadprog=$(for i in 1 2 3; do Rscript "$DIR/quadprog.R" "$DIR/qp_quadprog" 2>/dev/null; done | best)
agree "$DIR/qp_zentable" "$DIR/qp_quadprog" "quadratic_prog vs R quadprog"

# The best of five repetitions, in seconds.
bench=$("$BUILD/bench/programming_bench" --benchmark_format=csv --benchmark_repetitions=5 \
    2>/dev/null | awk -F, '/BM_.*[0-9]"?,/ && !/_mean|_median|_stddev|_cv/ {
        gsub(/"/, "", $1); sub(/\/repeats:.*/, "", $1); t = $3 / 1000
        if (!($1 in best) || t < best[$1]) best[$1] = t }
        END { for (k in best) print k, best[k] }')
lp=$(echo "$bench" | awk '/linear_prog/{print $2}')
qp=$(echo "$bench" | awk '/quadratic_prog/{print $2}')
echo "$bench" | awk '/simplex/{print "simplex alone:", $2, "s"}'
echo "linear_prog in process: $lp s; scipy HiGHS $highs s (ratio HiGHS / zentable $(ratio "$highs" "$lp")); R lpSolve $lpsolve s (ratio $(ratio "$lpsolve" "$lp"))"
z=$(whole "$BUILD/zentable" call linear_prog "@$DIR/lp400_c.csv" "@$DIR/lp400_constraints.csv")
py=$(whole /usr/bin/python3 "$DIR/scipy_lp.py" "$DIR/lp_scipy")
r=$(whole Rscript "$DIR/lpsolve.R" "$DIR/lp_lpsolve")
echo "whole process reading the files: zentable $z s; python3 + scipy $py s (ratio $(ratio "$py" "$z")); Rscript + lpSolve $r s (ratio $(ratio "$r" "$z"))"
echo "quadratic_prog in process: $qp s; R quadprog solve.QP $quadprog s (ratio quadprog / zentable $(ratio "$quadprog" "$qp"))"
