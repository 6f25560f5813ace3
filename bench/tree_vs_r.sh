#!/usr/bin/env bash
# tree_from_file and tree_boosting_logistic_reg_from_file end to end on 10^5
# records by 10 variables, against R's rpart and gbm (reading and fitting) on
# the same files. Not run by CI. Installs Debian's r-cran-rpart and
# r-cran-gbm where they are missing.
#   tree: a regression tree of up to 32 leaves, at most 10 levels deep,
#         leaves of at least 30 records; rpart with the same depth, leaf and
#         split sizes, cp = 0.001, no cross-validation, no competitor or
#         surrogate splits (rpart cannot stop at a number of leaves).
#   boosting: 100 trees of 4 leaves at a learn rate of 0.1 on a 0/1 target,
#         every record in every round; gbm bernoulli with interaction.depth 3
#         (3 splits, 4 leaves), shrinkage 0.1, bag.fraction 1.
# usage: bench/tree_vs_r.sh [BUILD_DIR]
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/peer_timing.sh"
BUILD=${1:-build}
CONT=$BUILD/bench/bench_tree_1e5x10.csv
BIN=$BUILD/bench/bench_tree_binary_1e5x10.csv
[ -f "$CONT" ] || "$BUILD/bench/make_numeric_file" "$CONT" 100000 10 20261123
[ -f "$BIN" ] || "$BUILD/bench/make_numeric_file" "$BIN" 100000 10 20261123 binary
NAMES='{"x1","x2","x3","x4","x5","x6","x7","x8","x9","x10"}'
cat "$CONT" "$BIN" >/dev/null  # the same warm page cache for every run
best() { sort -n | head -1; }
echo "files: $(du -m "$CONT" | cut -f1) MB each, $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

install_peers r-cran-rpart r-cran-gbm

zentable_time() {
    for i in 1 2 3; do
        /usr/bin/time -f "%e" "$BUILD/zentable" call "$@" --format csv 2>&1 >/dev/null | tail -1
    done | best
}
r_time() {
    for i in 1 2 3; do Rscript -e "$1" 2>/dev/null | tail -1; done | best
}
ratio() { echo "$1 $2" | awk '{printf "%.2f", $1 / $2}'; }

tree=$(zentable_time tree_from_file "$CONT" "$NAMES" y '{"NUMTERMINALS",32;"MAXLEVEL",10}')
echo "zentable tree_from_file (32 leaves): best $tree s"
rpart=$(r_time "
suppressMessages(library(rpart))
t <- proc.time()[['elapsed']]
d <- read.csv('$CONT')
f <- rpart(y ~ ., data = d, method = 'anova',
           control = rpart.control(maxdepth = 10, minsplit = 50, minbucket = 30, cp = 0.001,
                                   xval = 0, maxcompete = 0, maxsurrogate = 0))
cat(sum(f\$frame\$var == '<leaf>'), 'leaves\n')
cat(proc.time()[['elapsed']] - t, '\n')")
echo "rpart (read.csv and fit): best $rpart s; ratio rpart / zentable $(ratio "$rpart" "$tree")"

boost=$(zentable_time tree_boosting_logistic_reg_from_file "$BIN" "$NAMES" y \
    '{"NUMTREES",100;"NUMTERMINALS",4}')
echo "zentable tree_boosting_logistic_reg_from_file (100 trees, 4 leaves): best $boost s"
gbm=$(r_time "
suppressMessages(library(gbm))
t <- proc.time()[['elapsed']]
d <- read.csv('$BIN')
f <- gbm(y ~ ., data = d, distribution = 'bernoulli', n.trees = 100, interaction.depth = 3,
         shrinkage = 0.1, bag.fraction = 1, n.minobsinnode = 30, n.cores = 1)
cat(proc.time()[['elapsed']] - t, '\n')")
echo "gbm (read.csv and fit): best $gbm s; ratio gbm / zentable $(ratio "$gbm" "$boost")"
