#!/usr/bin/env bash
# What the progress line costs: logistic_reg_from_file on 10^6 records by 20
# variables (file reading and Newton steps both report), on a pseudo-terminal
# with the line drawn from the start, against the same call with --quiet.
# Not run by CI; needs script(1) from util-linux.
# usage: bench/progress_cost.sh [BUILD_DIR]
set -euo pipefail
BUILD=$(cd "${1:-build}" && pwd)
source "$(dirname "$0")/peer_timing.sh"
FILE=$BUILD/bench/bench_binary_1e6x20.csv
[ -f "$FILE" ] || "$BUILD/bench/make_numeric_file" "$FILE" 1000000 20 20261123 binary
NAMES='{"x1","x2","x3","x4","x5","x6","x7","x8","x9","x10","x11","x12","x13","x14","x15","x16","x17","x18","x19","x20"}'
cat "$FILE" >/dev/null  # the same warm page cache for every run
echo "file: $(du -m "$FILE" | cut -f1) MB, $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

on_terminal() { # seconds of one call on a pseudo-terminal; OPTIONS in $1
    local start end
    start=$(date +%s.%N)
    ZENTABLE_PROGRESS_AFTER=0 script -qec "'$BUILD/zentable' call logistic_reg_from_file '$FILE' '$NAMES' y $1 >/dev/null" /dev/null >/dev/null
    end=$(date +%s.%N)
    echo "$start $end" | awk '{printf "%.3f\n", $2 - $1}'
}
# Interleaved, so that a slow spell of the machine falls on both.
for i in 1 2 3 4 5; do
    echo "shown $(on_terminal '')"
    echo "quiet $(on_terminal --quiet)"
done >"$BUILD/progress_cost.times"
shown=$(awk '$1 == "shown" {print $2}' "$BUILD/progress_cost.times" | best)
quiet=$(awk '$1 == "quiet" {print $2}' "$BUILD/progress_cost.times" | best)
echo "progress line shown: best $shown s; --quiet: best $quiet s; ratio shown / quiet $(ratio "$shown" "$quiet")"
