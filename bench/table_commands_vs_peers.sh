#!/usr/bin/env bash
# sort_file on 10^6 records of five fields (about 32 MB) by a text key
# ascending and a numeric key descending, and merge_tables of two 10^5-row
# tables through `zentable call` with @files, each end to end, best of 3,
# against pandas, GNU sort and R's data.table on the same files; the sorted
# order is compared with data.table's. Not run by CI. Needs
# Debian's python3-pandas (run with /usr/bin/python3) and r-cran-data.table,
# installed by hand for the comparison:
#   apt-get install -y python3-pandas r-cran-data.table
# usage: bench/table_commands_vs_peers.sh [BUILD_DIR]
set -euo pipefail
BUILD=${1:-build}
DIR=$BUILD/bench/tables
mkdir -p "$DIR"
[ -f "$DIR/merge2.csv" ] || "$BUILD/bench/make_table_files" "$DIR"
cat "$DIR"/*.csv >/dev/null  # the same warm page cache for every run
. "$(dirname "${BASH_SOURCE[0]}")/peer_timing.sh"
# The whole process, best of 3, in seconds.
timed() {
    for i in 1 2 3; do
        /usr/bin/time -f "%e" -o "$DIR/process_time" "$@" >/dev/null 2>&1
        cat "$DIR/process_time"
    done | best
}
echo "$(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"

echo "== sort_file: $(($(wc -l <"$DIR/sort.csv") - 1)) records, $(du -m "$DIR/sort.csv" | cut -f1) MB; name ascending, score descending"
zentable=$(timed "$BUILD/zentable" call sort_file "$DIR/sort.csv" '{"name",1;"score",-1}' "$DIR/sorted_zentable.csv")
echo "zentable call sort_file: best $zentable s"
pandas=$(timed /usr/bin/python3 -c "
import pandas
d = pandas.read_csv('$DIR/sort.csv')
d.sort_values(['name', 'score'], ascending=[True, False], kind='stable').to_csv('$DIR/sorted_pandas.csv', index=False)")
echo "pandas read_csv + sort_values + to_csv: best $pandas s; ratio pandas / zentable $(ratio "$pandas" "$zentable")"
gnu=$(timed sh -c "(head -1 '$DIR/sort.csv'; tail -n +2 '$DIR/sort.csv' | LC_ALL=C sort -s -t, -k2,2 -k3,3gr) >'$DIR/sorted_gnu.csv'")
echo "GNU sort: best $gnu s; ratio GNU sort / zentable $(ratio "$gnu" "$zentable")"
datatable=$(timed Rscript -e "
suppressMessages(library(data.table)); setDTthreads($(nproc))
d <- fread('$DIR/sort.csv'); setorder(d, name, -score); fwrite(d, '$DIR/sorted_datatable.csv')")
echo "R data.table fread + setorder + fwrite ($(nproc) threads): best $datatable s; ratio data.table / zentable $(ratio "$datatable" "$zentable")"
# fwrite writes 5.10 as 5.1, so the orders are compared by id (both sorts are stable).
cmp -s <(cut -d, -f1 "$DIR/sorted_zentable.csv") <(cut -d, -f1 "$DIR/sorted_datatable.csv") &&
    echo "zentable's records are in data.table's order, id for id" ||
    echo "zentable's order DIFFERS from data.table's"

echo "== merge_tables: two tables of $(wc -l <"$DIR/merge1.csv") rows, 3 columns, keys from 1.5 x that"
zentable=$(timed "$BUILD/zentable" call merge_tables "@$DIR/merge1.csv" "@$DIR/merge2.csv" 1 1 '{1,2,3}' '{2,3}' --format csv)
echo "zentable call merge_tables (read, join, print): best $zentable s"
"$BUILD/bench/table_commands_bench" --benchmark_filter=MergeTables --benchmark_min_time=0.5 2>/dev/null |
    awk '/^MergeTables/{print "  the command alone, in process: " $2 " " $3}'
pandas=$(timed /usr/bin/python3 -c "
import pandas
a = pandas.read_csv('$DIR/merge1.csv', header=None)
b = pandas.read_csv('$DIR/merge2.csv', header=None).drop_duplicates(subset=0, keep='first')
a.merge(b, on=0, how='inner', sort=False).to_csv('$DIR/merged_pandas.csv', index=False, header=False)")
echo "pandas read_csv x2 + drop_duplicates + merge + to_csv: best $pandas s; ratio pandas / zentable $(ratio "$pandas" "$zentable")"
datatable=$(timed Rscript -e "
suppressMessages(library(data.table)); setDTthreads($(nproc))
a <- fread('$DIR/merge1.csv', header = FALSE); b <- unique(fread('$DIR/merge2.csv', header = FALSE), by = 'V1')
fwrite(b[a, on = 'V1', nomatch = NULL], '$DIR/merged_datatable.csv', col.names = FALSE)")
echo "R data.table fread x2 + unique + join + fwrite: best $datatable s; ratio data.table / zentable $(ratio "$datatable" "$zentable")"
