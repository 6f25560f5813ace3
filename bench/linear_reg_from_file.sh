#!/usr/bin/env bash
# linear_reg_from_file end to end on 10^6 records by 20 variables (about 200 MB
# of text), its peak memory, and pandas.read_csv alone on the same file.
# Not run by CI. Needs Debian's python3-pandas for the comparison:
#   apt-get install python3-pandas
# usage: bench/linear_reg_from_file.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
FILE=$BUILD/bench/bench_numeric_1e6x20.csv
[ -f "$FILE" ] || "$BUILD/bench/make_numeric_file" "$FILE" 1000000 20
NAMES='{"x1","x2","x3","x4","x5","x6","x7","x8","x9","x10","x11","x12","x13","x14","x15","x16","x17","x18","x19","x20"}'
cat "$FILE" >/dev/null  # the same warm page cache for every run

best() { sort -n | head -1; }
echo "file: $(du -m "$FILE" | cut -f1) MB, $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

for i in 1 2 3; do
    /usr/bin/time -f "%e %M" "$BUILD/zentable" call linear_reg_from_file "$FILE" "$NAMES" y \
        --format csv 2>&1 >/dev/null | tail -1
done >"$BUILD/bench/zentable_times.txt"
echo "zentable linear_reg_from_file: best $(awk '{print $1}' "$BUILD/bench/zentable_times.txt" | best) s," \
    "peak $(awk '{print int($2/1024)}' "$BUILD/bench/zentable_times.txt" | best) MB" \
    "(kept numbers: 10^6 x 21 doubles = 168 MB)"

if /usr/bin/python3 -c 'import pandas' 2>/dev/null; then
    for i in 1 2 3; do
        /usr/bin/python3 -c "
import time, pandas
t = time.perf_counter(); pandas.read_csv('$FILE'); print(time.perf_counter() - t)"
    done | best | awk '{print "pandas.read_csv alone: best " $1 " s"}'
else
    echo "pandas.read_csv: python3-pandas is not installed"
fi
