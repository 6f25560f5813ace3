#!/usr/bin/env bash
# The conditional-sum-of-squares fits against R and statsmodels. Not run by CI.
# Needs Debian's r-base-core, r-cran-deoptim and python3-statsmodels.
#
# Accuracy, on 10^4 points: the estimates of arima and sarima with their
# defaults against the optimum that R's arima(method = "CSS") finds, polished
# by Gauss-Newton on the same recursion (the MA part through stats::filter);
# SSE at that optimum; standard errors against the Gauss-Newton covariance of
# the same regression (central differences, the mean's column left out when
# the model has a mean, kept when it is pinned), rescaled to sqrt(SSE / DF):
# to 1e-6 for AR terms, whose forward differences are exact, and to 2e-4 with
# MA terms, the truncation error of a forward step of 1e-4 on these series.
# Models: AR(2) and ARMA(2,1) with a mean, ARIMA(1,1,0), and
# (0,1,1)x(0,1,1)_12 and (1,0,0)x(1,0,0)_12 seasonal models.
#
# Speed, best of 3: arima ARIMA(2,0,1) with a mean and sarima
# (0,1,1)x(0,1,1)_12 end to end from the file; statsmodels' SARIMAX (exact
# likelihood) and R's arima CSS in process; R's DEoptim running the same 50 by
# 200 search (strategy 2, F 0.8, CR 0.9) over the same objective in R.
# usage: bench/arima_vs_r.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
DIR=$BUILD/bench
PY=/usr/bin/python3
Z=$BUILD/zentable
ARMA=$DIR/bench_arma21_1e4.csv
AIR=$DIR/bench_airline_1e4.csv
SAR=$DIR/bench_sar_1e4.csv
mkdir -p "$DIR"

for p in r-base-core r-cran-deoptim python3-statsmodels; do
    dpkg -s "$p" >/dev/null 2>&1 || { echo "missing $p"; exit 1; }
done

[ -f "$ARMA" ] || $PY - "$ARMA" "$AIR" "$SAR" <<'PYEOF'
import random, sys
random.seed(20261125)
n, burn = 10**4, 200
e = [random.gauss(0, 1) for _ in range(n + burn)]
y = [0.0] * (n + burn)
for t in range(n + burn):  # ARMA(2,1) about 10: a = (0.6, -0.3), m = 0.4
    y[t] = e[t] + (0.6 * y[t-1] + 0.4 * e[t-1] if t >= 1 else 0) - (0.3 * y[t-2] if t >= 2 else 0)
with open(sys.argv[1], "w") as f:
    f.write("x\n" + "".join("%.6f\n" % (10 + v) for v in y[burn:]))
a = [random.gauss(0, 1) for _ in range(n + burn)]
x = [0.0] * (n + burn)
for t in range(n + burn):  # (1 - B)(1 - B^12) x = (1 - 0.4B)(1 - 0.6B^12) a
    w = a[t] - (0.4 * a[t-1] if t >= 1 else 0) - (0.6 * a[t-12] if t >= 12 else 0) \
        + (0.24 * a[t-13] if t >= 13 else 0)
    x[t] = w + (x[t-1] if t >= 1 else 0) + (x[t-12] if t >= 12 else 0) - (x[t-13] if t >= 13 else 0)
with open(sys.argv[2], "w") as f:
    f.write("x\n" + "".join("%.6f\n" % (100 + v) for v in x[burn:]))
s = [0.0] * (n + burn)
for t in range(n + burn):  # (1 - 0.5B)(1 - 0.7B^12)(s - 50) = a
    s[t] = a[t] + (0.5 * s[t-1] if t >= 1 else 0) + (0.7 * s[t-12] if t >= 12 else 0) \
        - (0.35 * s[t-13] if t >= 13 else 0)
with open(sys.argv[3], "w") as f:
    f.write("x\n" + "".join("%.6f\n" % (50 + v) for v in s[burn:]))
PYEOF
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB; best of 3 wall times"

. "$(dirname "${BASH_SOURCE[0]}")/peer_timing.sh"

# ---- accuracy ----------------------------------------------------------------
REF=$DIR/arima_reference.R
cat >"$REF" <<'REOF'
expand <- function(c1, c2, s, sign) {
  a <- c(1, sign * c1); b <- c(1, rep(0, s * length(c2)))
  if (length(c2)) b[s * seq_along(c2) + 1] <- sign * c2
  sign * convolve(a, rev(b), type = "open")[-1]
}
preds <- function(th, y, o) {
  k <- 1; mu <- th[1]
  a <- th[k + seq_len(o$p)]; k <- k + o$p; m <- th[k + seq_len(o$q)]; k <- k + o$q
  sa <- th[k + seq_len(o$P)]; k <- k + o$P; sm <- th[k + seq_len(o$Q)]
  A <- expand(a, sa, o$s, -1); M <- expand(m, sm, o$s, 1)
  n <- length(y); st <- o$s * o$P + o$p; idx <- (st + 1):n
  f <- rep(mu, length(idx))
  for (i in seq_along(A)) f <- f + (y[idx - i] - mu) * A[i]
  e <- if (length(M) && any(M != 0)) as.numeric(stats::filter(y[idx] - f, -M, "recursive")) else y[idx] - f
  out <- numeric(n); out[idx] <- y[idx] - e; out
}
jac <- function(th, y, o, cols, h = 1e-6)
  sapply(cols, function(k) { u <- th; l <- th; u[k] <- u[k] + h; l[k] <- l[k] - h
    (preds(u, y, o) - preds(l, y, o)) / (2 * h) })
reference <- function(x, o, has_mean) {
  y <- x
  if (o$D > 0) y <- diff(y, lag = o$s, differences = o$D)
  if (o$d > 0) y <- diff(y, differences = o$d)
  fit <- arima(x, order = c(o$p, o$d, o$q), seasonal = list(order = c(o$P, o$D, o$Q),
               period = max(o$s, 1)), include.mean = has_mean, method = "CSS")
  cf <- coef(fit)
  th <- c(if (has_mean) cf[["intercept"]] else 0, cf[setdiff(names(cf), "intercept")])
  K <- length(th); free <- if (has_mean) 1:K else 2:K
  st <- o$s * o$P + o$p; idx <- (st + 1):length(y)
  for (it in 1:50) {
    r <- (y - preds(th, y, o))[idx]; J <- jac(th, y, o, free)[idx, , drop = FALSE]
    step <- solve(crossprod(J), crossprod(J, r)); th[free] <- th[free] + step
    if (max(abs(step)) < 1e-12) break
  }
  sse <- sum((y - preds(th, y, o))[idx]^2); n <- length(x)
  df <- n - 2*o$p - o$q - o$d - (o$P + o$D) * o$s - o$P - o$Q - has_mean
  sigma <- sqrt(sse / df)
  J <- jac(th, y, o, if (has_mean) 2:K else 1:K)[idx, , drop = FALSE]
  se <- sqrt(diag(solve(crossprod(J)))) * sigma
  if (has_mean) se <- c(sigma, se) else se <- se[-1]
  cat(sprintf("%.17g", c(sse, th[if (has_mean) 1:K else 2:K], se)), "\n")
}
REOF

# zentable's SSE, estimates and standard errors from its csv table.
ours() { # FILE HASMEAN ARGS...
    local file=$1 has_mean=$2; shift 2
    "$@" --format csv | $PY -c "
import csv, sys
rows = list(csv.reader(sys.stdin))
sse = next(r[1] for r in rows if r and r[0] == 'SSE')
head = next(i for i, r in enumerate(rows) if r and r[0] == '#')
est, se = [], []
for r in rows[head + 1:]:
    if not r or not r[0]:
        break
    if r[2] != 'NA':
        est.append(r[2]); se.append(r[3])
print(sse, *est, *se)"
}
compare() { # NAME SE_TOLERANCE OURS REFERENCE
    $PY - "$@" <<'PYEOF'
import sys
name, se_tol, ours, ref = sys.argv[1], float(sys.argv[2]), sys.argv[3].split(), sys.argv[4].split()
ours, ref = [float(v) for v in ours], [float(v) for v in ref]
k = (len(ref) - 1) // 2
rel = lambda a, b: abs(a - b) / max(abs(b), 1e-300)
d_sse = rel(ours[0], ref[0])
d_est = max(rel(a, b) for a, b in zip(ours[1:1 + k], ref[1:1 + k]))
d_se = max(rel(a, b) for a, b in zip(ours[1 + k:], ref[1 + k:]))
ok = d_sse <= 1e-9 and d_est <= 1e-6 and d_se <= se_tol
print("%-34s SSE %.1e  estimates %.1e  standard errors %.1e  %s"
      % (name, d_sse, d_est, d_se, "ok" if ok else "OUTSIDE 1e-9 / 1e-6 / %g" % se_tol))
PYEOF
}
check() { # NAME SE_TOL FILE HASMEAN R_ORDERS -- ZENTABLE_ARGS...
    local name=$1 tol=$2 file=$3 has_mean=$4 orders=$5; shift 6
    local z r
    z=$(ours "$file" "$has_mean" "$Z" call "$@")
    r=$(Rscript -e "source('$REF'); x <- read.csv('$file')\$x; reference(x, $orders, $has_mean)")
    compare "$name" "$tol" "$z" "$r"
}
echo "Relative differences from the polished optimum (10^4 points):"
o() { echo "list(p=$1,d=$2,q=$3,P=$4,D=$5,Q=$6,s=$7)"; }
check "AR(2) with mean" 1e-6 "$ARMA" TRUE "$(o 2 0 0 0 0 0 0)" -- arima "@$ARMA" "" 2 0 0
check "ARMA(2,1) with mean" 2e-4 "$ARMA" TRUE "$(o 2 0 1 0 0 0 0)" -- arima "@$ARMA" "" 2 0 1
check "ARIMA(1,1,0)" 1e-6 "$ARMA" FALSE "$(o 1 1 0 0 0 0 0)" -- arima "@$ARMA" FALSE 1 1 0
check "SARIMA(0,1,1)x(0,1,1)_12" 2e-4 "$AIR" FALSE "$(o 0 1 1 0 1 1 12)" \
    -- sarima "@$AIR" FALSE 0 1 1 12 0 1 1
check "SARIMA(1,0,0)x(1,0,0)_12 with mean" 1e-6 "$SAR" TRUE "$(o 1 0 0 1 0 0 12)" \
    -- sarima "@$SAR" "" 1 0 0 12 1 0 0

# ---- speed -------------------------------------------------------------------
echo
z_arima=$(wall "$Z" call arima "@$ARMA" "" 2 0 1 --format csv)
z_sarima=$(wall "$Z" call sarima "@$AIR" FALSE 0 1 1 12 0 1 1 --format csv)
py_arima=$(inside $PY -c "
import time, pandas as pd
from statsmodels.tsa.statespace.sarimax import SARIMAX
y = pd.read_csv('$ARMA')['x'].values
t = time.time(); r = SARIMAX(y, order=(2, 0, 1), trend='c').fit(disp=False)
print('%.3f' % (time.time() - t))")
py_sarima=$(inside $PY -c "
import time, pandas as pd
from statsmodels.tsa.statespace.sarimax import SARIMAX
y = pd.read_csv('$AIR')['x'].values
t = time.time(); r = SARIMAX(y, order=(0, 1, 1), seasonal_order=(0, 1, 1, 12)).fit(disp=False)
print('%.3f' % (time.time() - t))")
r_css=$(inside Rscript -e "x <- read.csv('$ARMA')\$x
t <- proc.time()[['elapsed']]; f <- arima(x, order = c(2, 0, 1), method = 'CSS')
cat(proc.time()[['elapsed']] - t, '\n')")
r_de=$(inside Rscript -e "suppressMessages(library(DEoptim)); y <- read.csv('$ARMA')\$x
n <- length(y); idx <- 3:n
css <- function(th) { f <- th[1] + (y[idx - 1] - th[1]) * th[2] + (y[idx - 2] - th[1]) * th[3]
  e <- stats::filter(y[idx] - f, -th[4], 'recursive'); sum(e * e) }
m <- mean(y); s <- sqrt(mean((y - m)^2))
t <- proc.time()[['elapsed']]
r <- DEoptim(css, c(m - 5 * s, -10, -10, -10), c(m + 5 * s, 10, 10, 10),
             DEoptim.control(NP = 50, itermax = 200, strategy = 2, F = 0.8, CR = 0.9, trace = FALSE))
cat(proc.time()[['elapsed']] - t, '\n')")
report "arima ARIMA(2,0,1) with mean, 10^4 points, end to end" "$z_arima" "statsmodels SARIMAX" "$py_arima"
report "arima ARIMA(2,0,1) with mean, 10^4 points, end to end" "$z_arima" "R DEoptim 50x200 on the CSS" "$r_de"
per_eval=$(echo "$z_arima" | awk '{printf "%.1f", $1 / 10050 * 1e6}')
echo "R's arima(method = 'CSS') in process: $r_css s (gradient steps, far fewer evaluations);"
echo "  zentable: $per_eval us per evaluation of the recursion, 10,050 evaluations (at most)"
report "sarima (0,1,1)x(0,1,1)_12, 10^4 points, end to end" "$z_sarima" "statsmodels SARIMAX" "$py_sarima"
echo "One evaluation, the objectives against the plain loop: $DIR/arima_bench"
