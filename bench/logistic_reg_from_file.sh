#!/usr/bin/env bash
# logistic_reg_from_file end to end on 10^6 records by 20 variables with a
# 0/1 target, and statsmodels' Logit (reading and fitting) on the same file.
# Not run by CI. Needs Debian's python3-statsmodels for the comparison:
#   apt-get install python3-statsmodels
# usage: bench/logistic_reg_from_file.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
FILE=$BUILD/bench/bench_binary_1e6x20.csv
[ -f "$FILE" ] || "$BUILD/bench/make_numeric_file" "$FILE" 1000000 20 20261123 binary
NAMES='{"x1","x2","x3","x4","x5","x6","x7","x8","x9","x10","x11","x12","x13","x14","x15","x16","x17","x18","x19","x20"}'
cat "$FILE" >/dev/null  # the same warm page cache for every run
best() { sort -n | head -1; }
echo "file: $(du -m "$FILE" | cut -f1) MB, $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

zentable=$(for i in 1 2 3; do
    /usr/bin/time -f "%e" "$BUILD/zentable" call logistic_reg_from_file "$FILE" "$NAMES" y \
        --format csv 2>&1 >/dev/null | tail -1
done | best)
echo "zentable logistic_reg_from_file: best $zentable s"

if /usr/bin/python3 -c 'import statsmodels' 2>/dev/null; then
    statsmodels=$(for i in 1 2 3; do
        /usr/bin/python3 -c "
import time, pandas, statsmodels.api as sm
t = time.perf_counter()
d = pandas.read_csv('$FILE')
sm.Logit(d['y'], sm.add_constant(d.drop(columns='y'))).fit(disp=0)
print(time.perf_counter() - t)"
    done | best)
    echo "statsmodels Logit (read_csv and fit): best $statsmodels s;" \
        "ratio $(echo "$statsmodels $zentable" | awk '{printf "%.2f", $1 / $2}')"
else
    echo "statsmodels: python3-statsmodels is not installed"
fi
