#!/usr/bin/env bash
# Kaplan_Meier end to end on 10^6 records (whole days 1 to 3650, about a
# quarter censored, three text groups) read from three one-column CSV files,
# against R's survfit and statsmodels' SurvfuncRight on the same files, best
# of 3 each; then the largest differences between zentable's and R's counts,
# survival probabilities and standard errors. Not run by CI. Needs Debian's
# r-cran-survival, r-cran-data.table and python3-statsmodels (run with
# /usr/bin/python3), installed by hand for the comparison:
#   apt-get install -y r-cran-survival r-cran-data.table python3-statsmodels
# usage: bench/kaplan_meier_vs_r.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
DIR=$BUILD/bench/survival
mkdir -p "$DIR"
[ -f "$DIR/group.csv" ] || "$BUILD/bench/make_survival_files" "$DIR" 1000000
cat "$DIR"/days.csv "$DIR"/status.csv "$DIR"/group.csv >/dev/null  # the same warm page cache for every run
. "$(dirname "${BASH_SOURCE[0]}")/peer_timing.sh"
echo "10^6 records in three files; $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

zentable=$(for i in 1 2 3; do
    /usr/bin/time -f "%e" "$BUILD/zentable" call Kaplan_Meier "@$DIR/days.csv" "@$DIR/status.csv" \
        "@$DIR/group.csv" --format csv 2>&1 >"$DIR/zentable.csv" | tail -1
done | best)
echo "zentable call Kaplan_Meier (read, walk, write the table): best $zentable s"

# Each peer prints its time in process last; the whole process is timed outside.
peer() {
    local name=$1
    shift
    for i in 1 2 3; do
        /usr/bin/time -f "%e" -o "$DIR/process_time" "$@" >"$DIR/peer_out" 2>/dev/null
        echo "$(cat "$DIR/process_time") $(tail -1 "$DIR/peer_out")"
    done | sort -n | head -1 >"$DIR/peer_best"
    read -r whole inside <"$DIR/peer_best"
    echo "$name: best $whole s whole ($inside s in process); ratio $name / zentable $(ratio "$whole" "$zentable")"
}

peer "R survfit" Rscript -e "
suppressMessages({library(survival); library(data.table)})
d <- data.frame(days = fread('$DIR/days.csv')\$days, status = fread('$DIR/status.csv')\$status,
                group = fread('$DIR/group.csv')\$group)
t <- proc.time()[['elapsed']]
s <- summary(survfit(Surv(days, status) ~ group, data = d), censored = TRUE)
inside <- proc.time()[['elapsed']] - t
fwrite(data.table(group = sub('group=', '', as.character(s\$strata)), time = s\$time, n = s\$n.risk,
                  d = s\$n.event, c = s\$n.censor, S = s\$surv, se = s\$std.err),
       '$DIR/r.csv')
cat(inside, '\n')"

peer "statsmodels SurvfuncRight" /usr/bin/python3 -c "
import time, pandas
from statsmodels.duration.survfunc import SurvfuncRight
d = pandas.concat([pandas.read_csv('$DIR/' + f + '.csv') for f in ('days', 'status', 'group')], axis=1)
inside = 0.0
for name, g in d.groupby('group'):
    t = time.perf_counter()
    SurvfuncRight(g['days'].to_numpy(), g['status'].to_numpy())
    inside = max(inside, time.perf_counter() - t)
print(inside)"
echo "  (statsmodels in process: the slowest of its three groups)"

# zentable's rows against R's: the blocks of each group, matched by time.
/usr/bin/python3 - "$DIR/zentable.csv" "$DIR/r.csv" <<'PY'
import csv, math, sys
ours, group = {}, None
for row in csv.reader(open(sys.argv[1])):
    if row and row[0].startswith('Kaplan-Meier Survival Function for group = '):
        group = row[0].rsplit(' = ', 1)[1]
    elif row and row[0].startswith('Kaplan-Meier Survival Function for Plotting'):
        group = None
    elif group and row and row[1] not in ('', '#At Risk'):
        ours[(group, float(row[0]))] = [float(v) for v in row[1:6]]
worst_count = worst_s = worst_se = 0.0
rows = 0
for r in csv.DictReader(open(sys.argv[2])):
    n, d, c, s, se = ours[(r['group'], float(r['time']))]
    rows += 1
    worst_count = max(worst_count, abs(n - float(r['n'])), abs(d - float(r['d'])), abs(c - float(r['c'])))
    worst_s = max(worst_s, abs(s - float(r['S'])))
    r_se = float(r['se']) if r['se'] not in ('', 'NA', 'NaN') else 0.0
    if math.isnan(r_se):
        r_se = 0.0
    worst_se = max(worst_se, abs(se - r_se) / max(r_se, 1e-300) if r_se else abs(se))
print(f"against R on {rows} rows (of {len(ours)}): counts differ by at most {worst_count:g}; "
      f"S by {worst_s:.2g}; standard errors by {worst_se:.2g} relative")
PY
