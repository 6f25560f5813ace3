#!/usr/bin/env bash
# The correlograms and tests of one series end to end, against R and Python on
# the same files. Not run by CI. Installs Debian's r-base-core,
# r-cran-data.table, r-cran-tseries, python3-statsmodels and python3-scipy
# where they are missing.
#   ts_acf, ts_pacf: 10^6 points of an AR(1), maxLag 100; R reads with fread
#       and runs acf and pacf; Python reads with pandas, statsmodels' acf by
#       FFT and its levinson_durbin on those autocorrelations (its pacf
#       "ldb" takes the direct sums, minutes at this size).
#   Mann_Kendall_trend_test: 10^6 points; scipy's kendalltau (R's cor.test
#       grows as n^2 and is timed at 10^4 points).
#   ADF_test: 10^5 points of a random walk, the default maxLag (67) and "ct";
#       tseries' adf.test(k = 67) and statsmodels' adfuller(maxlag = 67,
#       regression = "ct", autolag = None).
# Then the own chi-square layer of the Box test, replayed in Python, against
# the exact distribution function at the cases of the Box test's call file.
# usage: bench/timeseries_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
DIR=$BUILD/bench
AR=$DIR/bench_ar1_1e6.csv
WALK=$DIR/bench_walk_1e5.csv
PY=/usr/bin/python3
mkdir -p "$DIR"

. "$(dirname "${BASH_SOURCE[0]}")/peer_timing.sh"
install_peers r-base-core r-cran-data.table r-cran-tseries python3-statsmodels python3-scipy python3-pandas

# Seeded series written with two decimals, as a user's file would hold them.
[ -f "$AR" ] || $PY - "$AR" <<'PYEOF'
import random, sys
random.seed(20261124)
x = 0.0
with open(sys.argv[1], "w") as f:
    f.write("x\n")
    for _ in range(10**6):
        x = 0.5 * x + random.gauss(0, 1)
        f.write("%.6f\n" % x)
PYEOF
[ -f "$WALK" ] || $PY - "$WALK" <<'PYEOF'
import random, sys
random.seed(7)
x = 100.0
with open(sys.argv[1], "w") as f:
    f.write("walk\n")
    for _ in range(10**5):
        x += 0.01 + random.gauss(0, 1)
        f.write("%.6f\n" % x)
PYEOF
cat "$AR" "$WALK" >/dev/null  # the same warm page cache for every run
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB; best of 3 wall times"


Z=$BUILD/zentable
acf=$(wall "$Z" call ts_acf "@$AR" 100 --format csv)
pacf=$(wall "$Z" call ts_pacf "@$AR" 100 --format csv)
mk=$(wall "$Z" call Mann_Kendall_trend_test "@$AR" --format csv)
adf=$(wall "$Z" call ADF_test "@$WALK" --format csv)

r_acf=$(wall Rscript -e "suppressMessages(library(data.table)); x <- fread('$AR')\$x
a <- acf(x, lag.max = 100, plot = FALSE); p <- pacf(x, lag.max = 100, plot = FALSE)")
r_acf_in=$(inside Rscript -e "x <- data.table::fread('$AR')\$x
t <- proc.time()[['elapsed']]; a <- acf(x, lag.max = 100, plot = FALSE)
cat(proc.time()[['elapsed']] - t, '\n')")
py_acf=$(wall $PY -c "
import pandas as pd
from statsmodels.tsa.stattools import acf, levinson_durbin
x = pd.read_csv('$AR')['x'].values
a = acf(x, nlags=100, fft=True); p = levinson_durbin(a, nlags=100, isacov=True)[2]")
report "ts_acf (10^6 points, lag 100, end to end)" "$acf" "Rscript fread + acf + pacf" "$r_acf"
report "ts_pacf (10^6 points, lag 100, end to end)" "$pacf" "pandas + statsmodels acf + pacf" "$py_acf"
echo "R's acf alone in process: $r_acf_in s (the correlogram alone: $DIR/timeseries_bench)"

py_mk=$(wall $PY -c "
import pandas as pd
from scipy.stats import kendalltau
x = pd.read_csv('$AR')['x'].values
t = kendalltau(range(len(x)), x)")
r_mk=$(inside Rscript -e "x <- data.table::fread('$AR')\$x[1:10000]
t <- proc.time()[['elapsed']]
r <- cor.test(seq_along(x), x, method = 'kendall', exact = FALSE, continuity = TRUE)
cat(proc.time()[['elapsed']] - t, '\n')")
report "Mann_Kendall_trend_test (10^6 points, end to end)" "$mk" "pandas + scipy kendalltau" "$py_mk"
echo "R's cor.test (Kendall) of the first 10^4 points alone, in process: $r_mk s"

r_adf=$(wall Rscript -e "suppressMessages(library(tseries)); x <- data.table::fread('$WALK')\$walk
r <- adf.test(x, k = 67)")
py_adf=$(wall $PY -c "
import pandas as pd
from statsmodels.tsa.stattools import adfuller
x = pd.read_csv('$WALK')['walk'].values
r = adfuller(x, maxlag=67, regression='ct', autolag=None)")
report "ADF_test (10^5 points, 67 lags, ct, end to end)" "$adf" "Rscript tseries adf.test" "$r_adf"
report "ADF_test (10^5 points, 67 lags, ct, end to end)" "$adf" "pandas + statsmodels adfuller" "$py_adf"

echo
echo "The own chi-square layer (series and continued fraction stopping at 3e-07)"
echo "against the exact upper tail, at the Box test call file's cases:"
$PY - <<'PYEOF'
import math
from scipy.stats import chi2

COF = [76.18009172947146, -86.50532032941678, 24.01409824083091, -1.231739572450155,
       0.001208650973866179, -5.395239384953e-06]

def gammln(xx):
    x = y = xx
    tmp = x + 5.5
    tmp -= (x + 0.5) * math.log(tmp)
    ser = 1.000000000190015
    for c in COF:
        y += 1
        ser += c / y
    return -tmp + math.log(2.5066282746310007 * ser / x)

def gser(a, x):
    gln = gammln(a)
    if x == 0:
        return 0.0
    ap, total = a, 1.0 / a
    delta = total
    for _ in range(100):
        ap += 1
        delta *= x / ap
        total += delta
        if abs(delta) < abs(total) * 3e-7:
            return total * math.exp(-x + a * math.log(x) - gln)
    raise RuntimeError("gser")

def gcf(a, x):
    gln = gammln(a)
    b = x + 1.0 - a
    c = 1.0 / 1e-30
    d = 1.0 / b
    h = d
    for i in range(1, 101):
        an = -i * (i - a)
        b += 2.0
        d = an * d + b
        if abs(d) < 1e-30:
            d = 1e-30
        c = b + an / c
        if abs(c) < 1e-30:
            c = 1e-30
        d = 1.0 / d
        delta = d * c
        h *= delta
        if abs(delta - 1.0) < 3e-7:
            return math.exp(-x + a * math.log(x) - gln) * h
    raise RuntimeError("gcf")

def own_p(x, df):
    a = df / 2.0
    cdf = gser(a, x / 2.0) if x / 2.0 < a + 1.0 else 1.0 - gcf(a, x / 2.0)
    return 1.0 - cdf

cases = [("Box-Ljung, lag 1", 4.1215267582896136, 1), ("Box-Ljung, lag 12 less 2", 10.082757060523301, 10),
         ("Box-Ljung, lag 160 less 1", 122.98659157746077, 159), ("Box-Pierce, lag 5", 5.7117407403021465, 5),
         ("Box-Pierce, lag 12 less 2", 9.7928708722743742, 10), ("by hand, Box-Ljung", 1.58, 2),
         ("by hand, Box-Pierce", 0.61, 2)]
for name, stat, df in cases:
    exact = chi2.sf(stat, df)
    own = own_p(stat, df)
    print("  %-26s DF %3d  exact %.12g  own layer %.12g  relative difference %.1e"
          % (name, df, exact, own, abs(own - exact) / exact))
PYEOF
