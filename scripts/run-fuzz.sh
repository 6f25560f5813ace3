#!/usr/bin/env bash
# Runs every libFuzzer target of a sanitised build for a number of seconds
# each, starting from its seed corpus in tests/fuzz/corpus/. New inputs go to
# a work folder in the build tree, never into the repository; a crash, a hang
# or a leak leaves its input in <build>/fuzz/artifacts and fails the run.
set -euo pipefail
build=${1:?usage: run-fuzz.sh BUILD_DIR SECONDS}
seconds=${2:-60}
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$build" && pwd)  # a target may change its working folder
work="$build/fuzz"
mkdir -p "$work/artifacts"

status=0
for source in "$root"/tests/fuzz/*_fuzz.cpp; do
  name=$(basename "$source" .cpp)
  surface=${name%_fuzz}
  target="$build/tests/fuzz/$name"
  if [ ! -x "$target" ]; then
    echo "run-fuzz: $target is not built (the sanitised tree needs clang)" >&2
    exit 2
  fi
  mkdir -p "$work/corpus/$surface"
  log="$work/$surface.log"
  echo "== $surface: $seconds s"
  if ! "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 \
       -print_final_stats=1 -artifact_prefix="$work/artifacts/$surface-" \
       "$work/corpus/$surface" "$root/tests/fuzz/corpus/$surface" >"$log" 2>&1; then
    echo "run-fuzz: $surface failed; its input is in $work/artifacts, the log in $log" >&2
    tail -n 40 "$log" >&2
    status=1
  fi
  grep -E '^stat::(number_of_executed_units|peak_rss_mb)|^#[0-9]+ +DONE' "$log" || true
done
exit $status
