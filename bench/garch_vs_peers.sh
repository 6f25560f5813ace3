#!/usr/bin/env bash
# garch, the shifted lognormal fit and the simulated path, end to end and in
# process, against R on the same files; and the fits against the optima that
# R finds on the same objectives. Not run by CI. Installs Debian's
# r-base-core, r-cran-data.table, r-cran-tseries and r-cran-fgarch where they
# are missing.
#   garch: 10^5 returns drawn from omega 2e-6, alpha 0.08, beta 0.9, from the
#       default start; R: fread, then tseries' garch (quasi-Newton with an
#       analytic gradient) and fGarch's garchFit.
#   Optimum: the same objective in R (the variance path by a recursive
#       filter), maximised by optim's Nelder-Mead then BFGS and by nlminb from
#       the true parameters; the fit must come within 1e-6 |L| of it, and its
#       reported L must equal the objective at its estimates to 1e-9. Also on
#       the returns in percent from a start of omega 0.
#   stochastic_process SLN: 10^5 points of a shifted lognormal path; R's
#       optimize over the same profile -2 log-likelihood.
#   stochastic_process_simulate: a normal path of 10^6 points written as CSV;
#       R: rnorm, cumsum and data.table's fwrite.
# The in-process figures of zentable come from garch_bench.
# usage: bench/garch_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
DIR=$BUILD/bench
G=$DIR/bench_garch_1e5.csv
GP=$DIR/bench_garch_pct_1e5.csv
S=$DIR/bench_sln_1e5.csv
PY=/usr/bin/python3
mkdir -p "$DIR"

. "$(dirname "${BASH_SOURCE[0]}")/peer_timing.sh"
install_peers r-base-core r-cran-data.table r-cran-tseries r-cran-fgarch

# Seeded files with six decimals, as a user's file would hold them.
$PY - "$G" "$GP" "$S" <<'PYEOF'
import math, os, random, sys
g, gp, s = sys.argv[1:4]
if not os.path.exists(g):
    random.seed(20261125)
    h, prev = 2e-6 / 0.02, 0.0
    with open(g, "w") as f, open(gp, "w") as fp:
        f.write("r\n")
        fp.write("r\n")
        for _ in range(10**5):
            h = 2e-6 + 0.08 * prev * prev + 0.9 * h
            prev = round(math.sqrt(h) * random.gauss(0, 1), 6)
            f.write("%.6f\n" % prev)
            fp.write("%.4f\n" % (prev * 100))
if not os.path.exists(s):
    random.seed(20261126)
    x = 5.0
    with open(s, "w") as f:
        f.write("x\n")
        for _ in range(10**5):
            f.write("%.6f\n" % x)
            x = (x + 2.0) * math.exp(-0.5 * 0.01**2 + 0.01 * random.gauss(0, 1)) - 2.0
PYEOF
cat "$G" "$GP" "$S" >/dev/null  # the same warm page cache for every run
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB, load $(cut -d' ' -f1 /proc/loadavg); best of 3"

own() {  # the real time of one garch_bench case, in seconds
    "$DIR/garch_bench" --benchmark_filter="^$1/" --benchmark_repetitions=3 \
        --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null |
        awk -F, '/_median/ {print $3 / ($5 == "us" ? 1e6 : 1e3); exit}'
}
Z=$BUILD/zentable

# --- the fits against R's optima of the same objectives
value() { awk -F, -v k="$2" '$1 == k {print $2}' <<<"$1"; }
check_garch() {  # FILE START...: fit, then R's optimum and the objective at the estimates
    local out
    out=$("$Z" call garch "@$1" "${@:2}" --format csv)
    Rscript - "$1" "$(value "$out" "GARCH Log-likelihood")" "$(value "$out" Omega)" \
        "$(value "$out" Alpha)" "$(value "$out" Beta)" <<'REOF'
a <- commandArgs(TRUE)
r <- data.table::fread(a[1])$r
n <- length(r)
h0 <- (mean(r^2) - mean(r)^2) * n / (n - 1)
L <- function(p) {
    if (any(p <= 0)) return(-1.7976931348623158e+307)
    h <- c(h0, stats::filter(p[1] + p[2] * r[-n]^2, p[3], "recursive", init = h0))
    -sum(log(h) + r^2 / h)
}
scale <- h0 / 1e-4  # omega goes with the variance of the returns
nm <- optim(c(2e-6 * scale, 0.08, 0.9), function(p) -L(p), control = list(reltol = 1e-14, maxit = 20000))
bf <- optim(nm$par, function(p) -L(p), method = "BFGS", control = list(reltol = 1e-15, parscale = nm$par))
nl <- nlminb(c(2e-6 * scale, 0.08, 0.9), function(p) -L(p), lower = 1e-12, control = list(rel.tol = 1e-15))
best <- max(-bf$value, -nl$objective)
fit <- as.numeric(a[2]); at <- L(as.numeric(a[3:5]))
cat(sprintf("  optimum L %.10f (optim %.10f, nlminb %.10f); zentable %.10f, below by %.2e |L|; objective at its estimates differs by %.2e relative\n",
            best, -bf$value, -nl$objective, fit, (best - fit) / abs(best), abs(at - fit) / abs(fit)))
REOF
}
echo "garch on 10^5 returns, default start:"
check_garch "$G"
echo "garch on the same returns in percent, start omega 0:"
check_garch "$GP" 0

echo "stochastic_process SLN on 10^5 points:"
sln=$("$Z" call stochastic_process "@$S" SLN --format csv)
Rscript - "$S" "$(value "$sln" "-2Log-likelihood")" "$(value "$sln" Shift)" <<'REOF'
a <- commandArgs(TRUE)
x <- data.table::fread(a[1])$x
m2ll <- function(y) { l <- log(y); d <- diff(l); v <- mean((d - mean(d))^2)
    (log(v * 6.28318530717958) + 1) * (length(y) - 1) + 2 * sum(l[-1]) }
lo <- min(x)
o <- optimize(function(c) m2ll(x + c), c(-lo + (max(x) - lo) * 1e-8, 1e3), tol = 1e-12)
fit <- as.numeric(a[2])
cat(sprintf("  R optimize: shift %.8f, -2LL %.8f; zentable: shift %.8f, -2LL %.8f, above by %.2e relative\n",
            o$minimum, o$objective, as.numeric(a[3]), fit, (fit - o$objective) / abs(o$objective)))
REOF

# --- speed
garch=$(wall "$Z" call garch "@$G" --format csv)
r_garch=$(wall Rscript -e "suppressMessages(library(tseries)); r <- data.table::fread('$G')\$r
m <- garch(r, order = c(1, 1), trace = FALSE); print(coef(m))")
report "garch (10^5 returns, end to end)" "$garch" "Rscript fread + tseries garch" "$r_garch"
r_fgarch=$(wall Rscript -e "suppressMessages(library(fGarch)); r <- data.table::fread('$G')\$r
m <- garchFit(~ garch(1, 1), data = r, include.mean = FALSE, trace = FALSE); print(coef(m))")
report "garch (10^5 returns, end to end)" "$garch" "Rscript fread + fGarch garchFit" "$r_fgarch"
r_garch_in=$(inside Rscript -e "suppressMessages(library(tseries)); r <- data.table::fread('$G')\$r
t <- proc.time()[['elapsed']]; m <- garch(r, order = c(1, 1), trace = FALSE)
cat(proc.time()[['elapsed']] - t, '\n')")
report "garch (10^5 returns, in process)" "$(own BM_Garch1e5)" "tseries garch" "$r_garch_in"
echo "garch: one evaluation of the objective on 10^5 returns $(own BM_GarchLogLikelihood1e5) s"

sln_time=$(wall "$Z" call stochastic_process "@$S" SLN --format csv)
r_sln=$(wall Rscript -e "x <- data.table::fread('$S')\$x
m2ll <- function(y) { l <- log(y); d <- diff(l); v <- mean((d - mean(d))^2)
    (log(v * 6.28318530717958) + 1) * (length(y) - 1) + 2 * sum(l[-1]) }
lo <- min(x); o <- optimize(function(c) m2ll(x + c), c(-lo + (max(x) - lo) * 1e-8, 1e3)); print(o)")
report "stochastic_process SLN (10^5 points, end to end)" "$sln_time" "Rscript fread + optimize" "$r_sln"
r_sln_in=$(inside Rscript -e "x <- data.table::fread('$S')\$x
m2ll <- function(y) { l <- log(y); d <- diff(l); v <- mean((d - mean(d))^2)
    (log(v * 6.28318530717958) + 1) * (length(y) - 1) + 2 * sum(l[-1]) }
lo <- min(x); t <- proc.time()[['elapsed']]
o <- optimize(function(c) m2ll(x + c), c(-lo + (max(x) - lo) * 1e-8, 1e3))
cat(proc.time()[['elapsed']] - t, '\n')")
report "stochastic_process SLN (10^5 points, in process)" "$(own BM_ShiftedLognormal1e5)" "R optimize" "$r_sln_in"

sim=$(wall "$Z" call stochastic_process_simulate N 1000000 0 _ _ _ 1 --format csv)
r_sim=$(wall Rscript -e "set.seed(1); x <- cumsum(c(0, rnorm(999999)))
data.table::fwrite(data.table::data.table(Step = 0:999999, Value = x))")
report "stochastic_process_simulate (10^6 points as CSV, end to end)" "$sim" \
    "Rscript rnorm + cumsum + fwrite" "$r_sim"
echo "stochastic_process_simulate: the command in process $(own BM_SimulateNormal1e6) s, the path alone $(own BM_SimulatePath1e6) s"
