#!/usr/bin/env bash
# nls_solver beside its peers on one rational model of 7 parameters (the
# Thurber model) over 10^5 records made from its certified coefficients plus
# noise, x and y read from files, from the problem's far start: zentable end to
# end (read, fit, the report of all 10^5 observations), its fit alone (the
# Google benchmark), R's minpack.lm::nlsLM (MINPACK's algorithm, factor 1) and
# nls, each end to end (read, fit, write the fitted values) and its fit alone,
# and scipy's leastsq with a vectorised residual, end to end. Best of 3, wall.
# Also checks that zentable's fit is scipy's (the Fortran lmdif) to 1e-6.
# Not run by CI. Needs r-base-core, r-cran-minpack.lm and Debian's python3-scipy
# (/usr/bin/python3), installed by hand.
# usage: bench/nls_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=$(cd "${1:-build}" && pwd)
Z=$BUILD/zentable
HERE=$(cd "$(dirname "$0")" && pwd)
DIR=$(mktemp -d)
trap 'rm -rf "$DIR"' EXIT
cd "$DIR"
source "$HERE/peer_timing.sh"
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

/usr/bin/python3 - <<'PY'
import random
b = [1288.1396800, 1491.0792535, 583.23836877, 75.416644291, 0.96629502864, 0.39797285797,
     0.049727297349]
rng = random.Random(2026)
with open('x.csv', 'w') as fx, open('y.csv', 'w') as fy:
    fx.write('x\n')
    fy.write('y\n')
    for _ in range(100000):
        x = rng.uniform(-3.067, 2.2)
        f = (b[0] + b[1] * x + b[2] * x**2 + b[3] * x**3) / (1 + b[4] * x + b[5] * x**2 + b[6] * x**3)
        fx.write(repr(x) + '\n')
        fy.write(repr(f + rng.gauss(0, 13)) + '\n')
PY

FUNC='{"(b1 + b2*x + b3*x^2 + b4*x^3) / (1 + b5*x + b6*x^2 + b7*x^3)"}'
PARAMS='{"b1",1000;"b2",1000;"b3",400;"b4",40;"b5",0.7;"b6",0.3;"b7",0.03}'
zen() { "$Z" call nls_solver "$FUNC" "$PARAMS" @x.csv @y.csv --format csv; }

cat >fit.R <<'RS'
args <- commandArgs(TRUE)
suppressMessages(library(minpack.lm))
d <- data.frame(x = read.csv("x.csv")$x, y = read.csv("y.csv")$y)
model <- y ~ (b1 + b2*x + b3*x^2 + b4*x^3) / (1 + b5*x + b6*x^2 + b7*x^3)
start <- list(b1 = 1000, b2 = 1000, b3 = 400, b4 = 40, b5 = 0.7, b6 = 0.3, b7 = 0.03)
t <- system.time(fit <- if (args[1] == "nlsLM") {
    nlsLM(model, d, start, control = nls.lm.control(factor = 1, ftol = 1e-8, ptol = 1e-8,
                                                   gtol = 1e-8, maxiter = 1000, maxfev = 1000))
} else {
    nls(model, d, start, control = nls.control(maxiter = 1000))
})
write.csv(data.frame(fitted = fitted(fit)), "fitted_r.csv", row.names = FALSE)
cat(sprintf("%.17g", coef(fit)), "\n", file = stderr())
cat(t[["elapsed"]], "\n", sep = "")
RS

cat >fit.py <<'PY'
import numpy as np
from scipy.optimize import leastsq
x = np.loadtxt('x.csv', skiprows=1)
y = np.loadtxt('y.csv', skiprows=1)
def residuals(b):
    return (b[0] + b[1]*x + b[2]*x**2 + b[3]*x**3) / (1 + b[4]*x + b[5]*x**2 + b[6]*x**3) - y
b, _, info, _, ier = leastsq(residuals, [1000, 1000, 400, 40, 0.7, 0.3, 0.03], full_output=True,
                             factor=1, ftol=1e-8, xtol=1e-8, gtol=1e-8, epsfcn=1e-8, maxfev=1000)
np.savetxt('fitted_py.csv', residuals(b) + y, header='fitted', comments='')
print(' '.join(repr(v) for v in b), float(np.sum(info['fvec']**2)), info['nfev'])
PY

# --- the same fit as the Fortran lmdif's
zen 2>/dev/null | sed -n '5p;10,16p' | cut -d, -f2,3 >z.txt
/usr/bin/python3 fit.py >py.txt
/usr/bin/python3 - <<'PY'
z = [l.strip().split(',') for l in open('z.txt')]
zen = [float(z[0][0])] + [float(r[1]) for r in z[1:]]
p = open('py.txt').read().split()
ref = [float(p[7])] + [float(v) for v in p[:7]]
worst = max(abs(a / b - 1) for a, b in zip(zen, ref))
print("SSE and estimates against scipy's lmdif (%s evaluations): largest relative difference %.2g"
      % (p[8], worst))
assert worst < 1e-6
PY

# --- times
zen_whole=$(wall bash -c "$(declare -f zen); Z='$Z' FUNC='$FUNC' PARAMS='$PARAMS'; zen")
zen_fit=$("$BUILD/bench/nls_bench" --benchmark_filter=BM_FitRational --benchmark_repetitions=3 \
    --benchmark_format=csv 2>/dev/null | awk -F, '$1 ~ /_min"?$|FitRational\/100000"$/ {printf "%.3f\n", $3 / 1000}' | best)
lm_whole=$(wall Rscript fit.R nlsLM)
lm_fit=$(inside Rscript fit.R nlsLM)
nls_whole=$(wall Rscript fit.R nls)
nls_fit=$(inside Rscript fit.R nls)
py_whole=$(wall /usr/bin/python3 fit.py)
report "end to end" "$zen_whole" "nlsLM" "$lm_whole"
report "end to end" "$zen_whole" "nls" "$nls_whole"
report "end to end" "$zen_whole" "scipy leastsq" "$py_whole"
report "fit alone" "$zen_fit" "nlsLM" "$lm_fit"
report "fit alone" "$zen_fit" "nls" "$nls_fit"
