#!/usr/bin/env bash
# The smoothing commands end to end and in process, against R and Python on
# the same files. Not run by CI. Installs Debian's r-base-core,
# python3-statsmodels and python3-pandas where they are missing.
#   HP_filter: 10^6 points, lambda 1600; a whole `zentable call` against a
#       python3 process that reads with pandas, runs statsmodels' hpfilter and
#       writes trend and cycle with to_csv; the filters alone in process.
#   lowess: 10^4 points at their own x, fraction 2/3, degree 1; R's
#       lowess(iter = 0, delta = 0) and statsmodels' lowess(it = 0, delta = 0)
#       in process.
#   Holt_Winters: type 3 on 10^4 points with frequency 12; R's HoltWinters
#       (additive) in process.
# The in-process figures of zentable come from smoothing_bench (the commands
# on tables of cells, as the driver calls them).
# usage: bench/smoothing_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
DIR=$BUILD/bench
HP=$DIR/bench_hp_1e6.csv
LO=$DIR/bench_lowess_1e4.csv
HW=$DIR/bench_monthly_1e4.csv
PY=/usr/bin/python3
mkdir -p "$DIR"

. "$(dirname "${BASH_SOURCE[0]}")/peer_timing.sh"
install_peers r-base-core python3-statsmodels python3-pandas

# Seeded series with six decimals, as a user's file would hold them.
$PY - "$HP" "$LO" "$HW" <<'PYEOF'
import math, os, random, sys
hp, lo, hw = sys.argv[1:4]
if not os.path.exists(hp):
    random.seed(20261125)
    x = 100.0
    with open(hp, "w") as f:
        f.write("x\n")
        for _ in range(10**6):
            x += 0.01 + random.gauss(0, 1)
            f.write("%.6f\n" % x)
if not os.path.exists(lo):
    random.seed(12)
    with open(lo, "w") as f:
        f.write("x,y\n")
        for _ in range(10**4):
            x = 10 * random.random()
            f.write("%.6f,%.6f\n" % (x, math.sin(x) + random.gauss(0, 0.3)))
if not os.path.exists(hw):
    random.seed(13)
    level = 100.0
    with open(hw, "w") as f:
        f.write("x\n")
        for i in range(10**4):
            level += 0.05 + random.gauss(0, 0.2)
            f.write("%.6f\n" % (level + 3 * math.sin(2 * math.pi * (i % 12) / 12) + random.gauss(0, 1)))
PYEOF
cut -d, -f1 "$LO" >"$DIR/bench_lowess_x.csv"
cut -d, -f2 "$LO" >"$DIR/bench_lowess_y.csv"
cat "$HP" "$LO" "$HW" >/dev/null  # the same warm page cache for every run
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB, load $(cut -d' ' -f1 /proc/loadavg); best of 3"

own() {  # the real time of one smoothing_bench case, in seconds
    "$DIR/smoothing_bench" --benchmark_filter="^$1/" --benchmark_repetitions=3 \
        --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null |
        awk -F, '/_median/ {print $3 / 1000; exit}'
}

Z=$BUILD/zentable
hp=$(wall "$Z" call HP_filter "@$HP" 1600 --format csv)
py_hp=$(wall $PY -c "
import sys, pandas as pd
from statsmodels.tsa.filters.hp_filter import hpfilter
x = pd.read_csv('$HP')['x']
cycle, trend = hpfilter(x, 1600)
pd.DataFrame({'Trend': trend, 'Cycle': cycle}).to_csv(sys.stdout, index=False)")
py_hp_in=$(inside $PY -c "
import time, pandas as pd
from statsmodels.tsa.filters.hp_filter import hpfilter
x = pd.read_csv('$HP')['x']
t = time.perf_counter(); cycle, trend = hpfilter(x, 1600); print(time.perf_counter() - t)")
report "HP_filter (10^6 points, end to end)" "$hp" "pandas + statsmodels hpfilter + to_csv" "$py_hp"
report "HP_filter (10^6 points, the command in process)" "$(own BM_HPFilter1e6)" \
    "statsmodels hpfilter alone" "$py_hp_in"
report "HP_filter (10^6 points, the filter alone)" "$(own BM_HPTrend1e6)" \
    "statsmodels hpfilter alone" "$py_hp_in"

r_lo=$(inside Rscript -e "d <- read.csv('$LO')
t <- proc.time()[['elapsed']]; s <- lowess(d\$x, d\$y, f = 2/3, iter = 0, delta = 0)
cat(proc.time()[['elapsed']] - t, '\n')")
py_lo=$(inside $PY -c "
import time, pandas as pd
from statsmodels.nonparametric.smoothers_lowess import lowess
d = pd.read_csv('$LO')
t = time.perf_counter(); s = lowess(d['y'].values, d['x'].values, frac=2/3, it=0, delta=0)
print(time.perf_counter() - t)")
lo_own=$(own BM_Lowess1e4)
report "lowess (10^4 points, 2/3, degree 1, in process)" "$lo_own" "R lowess" "$r_lo"
report "lowess (10^4 points, 2/3, degree 1, in process)" "$lo_own" "statsmodels lowess" "$py_lo"
echo "lowess end to end: zentable $(wall "$Z" call lowess "@$DIR/bench_lowess_x.csv" \
    "@$DIR/bench_lowess_y.csv" --format csv) s"

r_hw=$(inside Rscript -e "x <- ts(read.csv('$HW')\$x, frequency = 12)
t <- proc.time()[['elapsed']]; m <- HoltWinters(x, seasonal = 'additive')
cat(proc.time()[['elapsed']] - t, '\n')")
report "Holt_Winters (type 3, 10^4 points, frequency 12, in process)" "$(own BM_HoltWintersType3_1e4)" \
    "R HoltWinters" "$r_hw"
