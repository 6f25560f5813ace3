#!/usr/bin/env bash
# Forward selection from a file, timed beside the plain fit in the same run:
# linear_reg_forward_select_from_file against linear_reg_from_file on 10^6
# records by 20 variables (all 20 enter at pvalue 1), and
# logistic_reg_forward_select_from_file on the first 10^5 records with y > 0 as
# the target. With R installed (Debian's r-base-core, by hand, never in CI) the
# add1 F-test loop and the add1 Rao-score loop with glm run on the same data.
# usage: bench/forward_select_from_file.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
FILE=$BUILD/bench/bench_numeric_1e6x20.csv
SMALL=$BUILD/bench/bench_binary_1e5x20_ypos.csv
[ -f "$FILE" ] || "$BUILD/bench/make_numeric_file" "$FILE" 1000000 20
# y is the last column; the target is y > 0.
[ -f "$SMALL" ] || head -n 100001 "$FILE" |
    awk -F, -v OFS=, 'NR == 1 {print; next} {$NF = ($NF > 0) ? 1 : 0; print}' >"$SMALL"
NAMES='{"x1","x2","x3","x4","x5","x6","x7","x8","x9","x10","x11","x12","x13","x14","x15","x16","x17","x18","x19","x20"}'
cat "$FILE" "$SMALL" >/dev/null  # the same warm page cache for every run
best() { sort -n | head -1; }
timed() { for i in 1 2 3; do /usr/bin/time -f "%e" "$@" --format csv 2>&1 >/dev/null | tail -1; done | best; }
echo "file: $(du -m "$FILE" | cut -f1) MB, $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

plain=$(timed "$BUILD/zentable" call linear_reg_from_file "$FILE" "$NAMES" y)
select=$(timed "$BUILD/zentable" call linear_reg_forward_select_from_file "$FILE" "$NAMES" y 1 20)
echo "linear_reg_from_file: best $plain s; linear_reg_forward_select_from_file: best $select s;" \
    "ratio $(echo "$select $plain" | awk '{printf "%.3f", $1 / $2}')"
entered=$("$BUILD/zentable" call linear_reg_forward_select_from_file "$FILE" "$NAMES" y 1 20 \
    --format csv | awk -F, '$1 == "Number of Parameters" {print $2 - 1}')
echo "  variables entered: $entered"

logit=$(timed "$BUILD/zentable" call logistic_reg_forward_select_from_file "$SMALL" "$NAMES" y 1 20)
echo "logistic_reg_forward_select_from_file, 10^5 records: best $logit s"

if command -v Rscript >/dev/null; then
    Rscript - "$FILE" "$SMALL" "$plain" "$logit" <<'REOF'
args <- commandArgs(TRUE)
forward <- function(d, fit, test) {
  vars <- setdiff(names(d), "y"); chosen <- character(0)
  while (length(vars)) {
    f <- fit(if (length(chosen)) reformulate(chosen, "y") else y ~ 1)
    a <- add1(f, vars, test = test)[-1, ]
    j <- which.max(a[[if (test == "F") "F value" else "Rao score"]])
    chosen <- c(chosen, rownames(a)[j]); vars <- setdiff(vars, rownames(a)[j])
  }
  chosen
}
d <- read.csv(args[1])
t <- system.time(forward(d, function(f) lm(f, d), "F"))[["elapsed"]]
cat(sprintf("R add1 F-test loop, 10^6 records after read.csv: %.1f s; ratio to zentable's plain fit %.1f\n",
            t, t / as.numeric(args[3])))
s <- read.csv(args[2])
t <- system.time(forward(s, function(f) glm(f, binomial, s), "Rao"))[["elapsed"]]
cat(sprintf("R add1 Rao-score loop with glm, 10^5 records after read.csv: %.1f s; ratio %.1f\n",
            t, t / as.numeric(args[4])))
REOF
else
    echo "R: r-base-core is not installed"
fi
