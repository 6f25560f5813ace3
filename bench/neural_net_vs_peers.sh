#!/usr/bin/env bash
# The neural network against R's nnet and scikit-learn. Not run by CI.
# Installs Debian's r-cran-nnet and python3-sklearn where they are missing.
#
# Fit: smooth targets of three inputs, 400 weighted records, 4 hidden nodes,
#   1000 epochs of resilient propagation, seeds 1, 2 and 3; nnet fits the same
#   network (linear output, no decay) by BFGS to convergence from 10 random
#   starts, and the best start counts. Compared: the training R-square (with
#   the record weights). The same on a binary target with a logistic output
#   (nnet's entropy fit), compared by c.
# Speed: neural_net_from_file on 10^5 records by 10 inputs, 10 hidden nodes,
#   100 epochs, "LS", against nnet (size 10, 100 iterations) and
#   MLPRegressor (10 hidden, full batch, 100 epochs), each reading the file.
# usage: bench/neural_net_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
HERE=$(cd "$(dirname "$0")" && pwd)
source "$HERE/peer_timing.sh"
PY=/usr/bin/python3

install_peers r-cran-nnet python3-sklearn
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT

# Two targets of 400 records, a, b, c uniform on [-2, 2], weights 1 to 3:
# "odd", f = sin(2 a) + a b + tanh(c), and "even", f = sin(2 a) + a b - c^2 / 2,
# whose c term has no slope at the tiny initial weights. y is f plus noise; the
# binary y is drawn from the logistic of 2 f.
$PY - "$WORK" <<'PYTHON'
import math, random, sys
for kind in ("odd", "even"):
    random.seed(20261125)
    with open("%s/smooth_%s.csv" % (sys.argv[1], kind), "w") as s, \
         open("%s/binary_%s.csv" % (sys.argv[1], kind), "w") as b:
        s.write("a,b,c,y,w\n")
        b.write("a,b,c,y,w\n")
        for _ in range(400):
            a, bb, c = (random.uniform(-2, 2) for _ in range(3))
            f = math.sin(2 * a) + a * bb + (math.tanh(c) if kind == "odd" else -c * c / 2)
            w = random.randint(1, 3)
            s.write("%r,%r,%r,%r,%d\n" % (a, bb, c, f + random.gauss(0, 0.1), w))
            event = 1 if random.random() < 1 / (1 + math.exp(-2 * f)) else 0
            b.write("%r,%r,%r,%d,%d\n" % (a, bb, c, event, w))
PYTHON

field() { # FILE LABEL COLUMN: a cell of the report's row whose first cell is LABEL
    awk -F, -v l="$2" -v c="$3" '$1 == l { print $c; exit }' "$1"
}
best_of_seeds() { # MODEL FILE LABEL COLUMN
    for seed in 1 2 3; do
        "$BUILD/zentable" call neural_net_from_file "$2" '{"a","b","c"}' y "$1" 4 1000 "$seed" w \
            --format csv >"$WORK/report.csv"
        echo "  $1 seed $seed: $(field "$WORK/report.csv" "$3" "$4")" >&2
        field "$WORK/report.csv" "$3" "$4"
    done | sort -g | tail -1
}

for kind in odd even; do
    echo "target $kind:"
    r2=$(best_of_seeds LS "$WORK/smooth_$kind.csv" R-Sqaure 2)
    c=$(best_of_seeds ML "$WORK/binary_$kind.csv" '#Pairs' 4)
    read -r nnet_r2 nnet_c < <(Rscript -e "
suppressMessages(library(nnet))
sm <- read.csv('$WORK/smooth_$kind.csv'); bi <- read.csv('$WORK/binary_$kind.csv')
best <- function(fit) { set.seed(1); fits <- lapply(1:10, function(i) fit()); fits[[which.min(sapply(fits, function(f) f\$value))]] }
m <- best(function() nnet(y ~ a + b + c, data = sm, weights = w, size = 4, linout = TRUE,
                          maxit = 100000, abstol = 1e-12, reltol = 1e-14, trace = FALSE))
ybar <- sum(sm\$w * sm\$y) / sum(sm\$w)
r2 <- 1 - sum(sm\$w * (sm\$y - fitted(m))^2) / sum(sm\$w * (sm\$y - ybar)^2)
m <- best(function() nnet(y ~ a + b + c, data = bi, weights = w, size = 4, entropy = TRUE,
                          maxit = 100000, abstol = 1e-12, reltol = 1e-14, trace = FALSE))
p <- fitted(m)[, 1]; r <- rank(p); n1 <- sum(bi\$y); n0 <- nrow(bi) - n1
cat(r2, (sum(r[bi\$y == 1]) - n1 * (n1 + 1) / 2) / (n1 * n0), '\n')" 2>/dev/null | tail -1)
    echo "  training R-square: zentable best of seeds 1-3 $r2, nnet $nnet_r2," \
        "relative gap $(echo "$r2 $nnet_r2" | awk '{printf "%.4f", ($2 - $1) / $2}')"
    echo "  training c: zentable best of seeds 1-3 $c, nnet $nnet_c," \
        "gap $(echo "$c $nnet_c" | awk '{printf "%.4f", $2 - $1}')"
done

FILE=$BUILD/bench/bench_tree_1e5x10.csv
[ -f "$FILE" ] || "$BUILD/bench/make_numeric_file" "$FILE" 100000 10 20261123
NAMES='{"x1","x2","x3","x4","x5","x6","x7","x8","x9","x10"}'
cat "$FILE" >/dev/null  # the same warm page cache for every run
zen=$(wall "$BUILD/zentable" call neural_net_from_file "$FILE" "$NAMES" y LS 10 100 --format csv)
nnet=$(inside Rscript -e "
suppressMessages(library(nnet))
t <- proc.time()[['elapsed']]
d <- read.csv('$FILE')
set.seed(1)
f <- nnet(y ~ ., data = d, size = 10, linout = TRUE, maxit = 100, MaxNWts = 1000, trace = FALSE)
cat(proc.time()[['elapsed']] - t, '\n')")
mlp=$(inside $PY -c "
import time, warnings, numpy as np
from sklearn.neural_network import MLPRegressor
t = time.time()
d = np.loadtxt('$FILE', delimiter=',', skiprows=1)
warnings.simplefilter('ignore')
MLPRegressor(hidden_layer_sizes=(10,), batch_size=len(d), max_iter=100, shuffle=False,
             tol=0.0, n_iter_no_change=1000, random_state=1).fit(d[:, :10], d[:, 10])
print(time.time() - t)")
report "neural_net_from_file 10^5 x 10, 10 hidden, 100 epochs" "$zen" nnet "$nnet"
report "neural_net_from_file 10^5 x 10, 10 hidden, 100 epochs" "$zen" MLPRegressor "$mlp"
