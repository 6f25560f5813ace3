#!/usr/bin/env bash
# svm_from_file, "SVC" with a radial kernel, C 1 and gamma 0.1, on 10^4 records
# by 10 variables: the command end to end against LIBSVM's own tools doing the
# same work (svm-train -b 1, then svm-predict -b 1 twice: the evaluation and
# the predictions file), on the scaled data file the command wrote. R's e1071
# (svm with probabilities, two predictions) where it is installed.
# Not run by CI. usage: bench/svm_vs_tools.sh [BUILD_DIR]
set -euo pipefail
BUILD=$(cd "${1:-build}" && pwd)
DIR=$BUILD/bench/svm
rm -rf "$DIR" && mkdir -p "$DIR/work"
cd "$DIR"
python3 - <<'PY'
import random
random.seed(7)
with open("svm_1e4x10.csv", "w") as f:
    f.write(",".join(f"x{j}" for j in range(1, 11)) + ",y\n")
    for _ in range(10000):
        x = [random.gauss(0, 1) for _ in range(10)]
        s = x[0] - 0.8 * x[1] + 0.5 * x[2] * x[3] + 0.3 * x[4] ** 2 + random.gauss(0, 1)
        f.write(",".join(f"{v:.6f}" for v in x) + f",{int(s > 0.3)}\n")
PY
NAMES='{"x1","x2","x3","x4","x5","x6","x7","x8","x9","x10"}'
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

now() { date +%s.%N; }
t0=$(now)
"$BUILD/zentable" call svm_from_file work svm_1e4x10.csv "$NAMES" y SVC RBF 1 _ _ 0.1 >/dev/null
t1=$(now)
total=$(echo "$t1 - $t0" | bc)

# The evaluation rewrites the training data file with labels 0 when it falls
# in the same second, so the tools get the first file's scaled inputs with the
# labels put back.
DATA=$(ls work/tmp_svm_data_*.txt | head -1)
paste -d' ' <(tail -n +2 svm_1e4x10.csv | awk -F, '{print ($NF > 0.5) ? 1 : -1}') \
    <(cut -d' ' -f2- "$DATA") >tools_data.txt
t0=$(now); svm-train -s 0 -t 2 -c 1 -g 0.1 -b 1 tools_data.txt tools_model.txt >/dev/null; t1=$(now)
train=$(echo "$t1 - $t0" | bc)
t0=$(now); svm-predict -b 1 tools_data.txt tools_model.txt tools_predict.txt >/dev/null; t1=$(now)
predict=$(echo "$t1 - $t0" | bc)
tools=$(echo "$train + 2 * $predict" | bc)
echo "LIBSVM tools: svm-train -b 1 $train s, svm-predict -b 1 $predict s each, total $tools s"
echo "zentable svm_from_file: $total s, ratio to the tools $(echo "scale=3; $total / $tools" | bc)"
echo "split (the same library trains and predicts): training ~$train s, two predictions" \
    "~$(echo "2 * $predict" | bc) s, scaling, file writing and evaluation" \
    "~$(echo "$total - $tools" | bc) s"

if command -v Rscript >/dev/null && Rscript -e 'library(e1071)' >/dev/null 2>&1; then
    Rscript -e '
d <- read.csv("svm_1e4x10.csv"); d$y <- factor(d$y)
t <- system.time({ m <- e1071::svm(y ~ ., d, kernel = "radial", cost = 1, gamma = 0.1,
                                   probability = TRUE)
                   p1 <- predict(m, d, probability = TRUE); p2 <- predict(m, d, probability = TRUE) })
cat("R e1071 svm, probabilities, two predictions:", t[["elapsed"]], "s\n")'
else
    echo "R e1071: not installed (apt-get install r-cran-e1071)"
fi
