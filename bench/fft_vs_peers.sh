#!/usr/bin/env bash
# FFT of 2^20 real values end to end, against Python and R on the same file.
# Not run by CI. Installs Debian's python3-pandas and r-cran-data.table where
# they are missing.
#   zentable: `zentable call FFT @x.csv --format csv`, a whole process.
#   python3: pandas read_csv + numpy.fft.fft + to_csv of the real and
#       imaginary parts, a whole process; and numpy.fft.fft alone in memory.
#   R: data.table fread + fft + fwrite, a whole process.
# In process, from fft_bench: the command on a column of cells, the transform
# on plain values, and FFTW's execute alone.
# usage: bench/fft_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
DIR=$BUILD/bench
X=$DIR/bench_fft_2e20.csv
PY=/usr/bin/python3
mkdir -p "$DIR"

. "$(dirname "${BASH_SOURCE[0]}")/peer_timing.sh"
install_peers r-base-core r-cran-data.table python3-pandas python3-numpy

# One value a line and no header, so that every cell is a number.
if [ ! -f "$X" ]; then
    $PY - "$X" <<'PYEOF'
import random, sys
random.seed(20261125)
with open(sys.argv[1], "w") as f:
    for _ in range(2**20):
        f.write("%.12f\n" % random.uniform(-100, 100))
PYEOF
fi
cat "$X" >/dev/null  # the same warm page cache for every run
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB, load $(cut -d' ' -f1 /proc/loadavg); $(du -m "$X" | cut -f1) MB of text; best of 3"

own() {  # the real time of one fft_bench case, in seconds
    "$DIR/fft_bench" --benchmark_filter="^$1/" --benchmark_repetitions=3 \
        --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null |
        awk -F, '/_median/ {print $3 / 1000; exit}'
}

Z=$BUILD/zentable
z=$(wall "$Z" call FFT "@$X" --format csv)
py=$(wall $PY -c "
import sys, numpy as np, pandas as pd
x = pd.read_csv('$X', header=None)[0].values
y = np.fft.fft(x)
pd.DataFrame({'Real': y.real, 'Imag': y.imag}).to_csv(sys.stdout, index=False)")
r=$(wall Rscript -e "suppressMessages(library(data.table))
x <- fread('$X', header = FALSE)[[1]]
y <- fft(x)
fwrite(data.table(Real = Re(y), Imag = Im(y)), '')")
np_in=$(inside $PY -c "
import time, numpy as np, pandas as pd
x = pd.read_csv('$X', header=None)[0].values
t = time.perf_counter(); y = np.fft.fft(x); print(time.perf_counter() - t)")

report "FFT (2^20 real values, end to end)" "$z" "pandas read_csv + numpy fft + to_csv" "$py"
report "FFT (2^20 real values, end to end)" "$z" "R fread + fft + fwrite" "$r"
command=$(own BM_FFTCommand2e20)
report "FFT (2^20 real values, the command in process)" "$command" "numpy.fft.fft alone" "$np_in"
echo "in process: the command on cells $command s, the transform on values $(own BM_FFTValues2e20) s, FFTW execute alone $(own BM_FFTWExecute2e20) s"
echo "the driver's reading and printing: $(echo "$z $command" | awk '{printf "%.3f", $1 - $2}') s of the $z s end to end"
