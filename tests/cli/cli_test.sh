#!/usr/bin/env bash
# The user's road through the zentable binary: calls, scripts, output forms,
# and every kind of bad input, each with its exact output and exit status.
# usage: cli_test.sh ZENTABLE EXAMPLES_DIR
set -u
Z=$1
EXAMPLES=$2
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cd "$WORK"

passed=0
failed=0

# check NAME EXPECTED_STATUS EXPECTED_STDOUT EXPECTED_STDERR -- COMMAND...
check() {
    local name=$1 status=$2 out=$3 err=$4
    shift 5
    local actual_out actual_err actual_status
    actual_out=$("$@" 2>"$WORK/stderr")
    actual_status=$?
    actual_err=$(cat "$WORK/stderr")
    if [[ $actual_status == "$status" && $actual_out == "$out" && $actual_err == "$err" ]]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "FAILED: $name"
        echo "  status: expected $status, got $actual_status"
        [[ $actual_out == "$out" ]] || printf '  stdout: expected\n%s\n  got\n%s\n' "$out" "$actual_out"
        [[ $actual_err == "$err" ]] || printf '  stderr: expected\n%s\n  got\n%s\n' "$err" "$actual_err"
    fi
}

# check_match NAME EXPECTED_STATUS STDOUT_REGEX -- COMMAND...  (stderr must be empty)
check_match() {
    local name=$1 status=$2 pattern=$3
    shift 4
    local actual_out actual_status
    actual_out=$("$@" 2>"$WORK/stderr")
    actual_status=$?
    if [[ $actual_status == "$status" && $actual_out =~ $pattern && ! -s $WORK/stderr ]]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "FAILED: $name (status $actual_status)"
        printf '  stdout:\n%s\n  stderr:\n%s\n' "$actual_out" "$(cat "$WORK/stderr")"
    fi
}

USAGE='usage: zentable list [PATTERN] [--built] | help [NAME|call|run|syntax] | call NAME [ARG...]
       | run SCRIPT|- | completion bash | --version
       options: --format table|csv|tsv|json  --digits N  --range RxC  --plot FILE|-
                --size WxH  --quiet  --help  (-- ends the options)'

printf 'x1,x2\n1,5\n2,3\n3,8\n4,1\n5,2\n6,9\n' >x.csv
printf 'y\n1\n3\n2\n5\n4\n6\n' >y.csv

# --- the catalogue
check_match "version" 0 '^Zentable 2\.00 is built on [A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}$' \
    -- "$Z" call version
list=$("$Z" list)
check "list counts the functions" 0 "208 functions; those marked - are not available in this build." "" \
    -- bash -c "\"$Z\" list | tail -1"
check "list shows the first and last" 0 "2" "" \
    -- bash -c "\"$Z\" list | grep -cE '^(version|Cornish_Fisher_expansion) '"
check_match "help shows the arguments in order" 0 \
    $'^linear_reg\\(x, y, weight, lambda\\)\n.*\n  x +table +.*\n  y +table +.*\n  weight +table +.*Optional:.*Default:.*\n  lambda +table +.*Optional:.*Default:' \
    -- "$Z" help linear_reg

# --- one call, by position and by name, in each output form
csv=$("$Z" call linear_reg @x.csv @y.csv --format csv)
check "csv report: 26 rows, handle first" 0 "26 linearRegModel" "" \
    -- bash -c "\"$Z\" call linear_reg @x.csv @y.csv --format csv | awk -F, 'NR==1{split(\$1,h,\"->\")} {n++} END {print n, h[1]}'"
check "by name gives the same estimates" 0 "$(echo "$csv" | sed -n '21,25p')" "" \
    -- bash -c "\"$Z\" call linear_reg y=@y.csv x=@x.csv --format csv | sed -n '21,25p'"
check "tsv" 0 $'SSR\t2' "" \
    -- bash -c "\"$Z\" call linear_reg @x.csv @y.csv --format tsv | sed -n '11p' | cut -f1-2"
check "json: empty cells are null" 0 '[["linearRegModel->N",null,null,null,null,null' "" \
    -- bash -c "\"$Z\" call linear_reg @x.csv @y.csv --format json | sed 's/->[0-9]*/->N/' | cut -d']' -f1"
check "--range shows what an array formula over R by C shows" 0 \
    '[["linearRegModel->N",""],["",""],["Analysis of Variance",""],["",""],["Number of Records",6]]' "" \
    -- bash -c "\"$Z\" call linear_reg @x.csv @y.csv --format json --range 5x2 | sed 's/->[0-9]*/->N/'"
check "--range pads a small result with empty strings" 0 \
    '[["Zentable 2.00 is built on X","",""],["","",""]]' "" \
    -- bash -c "\"$Z\" call version --range 2x3 --format json | sed 's/built on [^\"]*/built on X/'"
check "a negative number is an argument, not an option" 1 "" \
    "The ridge constants lambda for ridge regression must be non-negative" \
    -- "$Z" call linear_reg @x.csv @y.csv _ -1
check "-- ends the options" 1 "" "Input data table is empty" \
    -- "$Z" call linear_reg @x.csv @y.csv -- --format
check "a failure prints its text and exits 1" 1 "" \
    "The numbers of observations in input data X, Y, and weight must be the same" \
    -- "$Z" call linear_reg @x.csv '{"y";1;2}'
check "a parser's diagnostic is a failure" 1 "" "ERR242 - Premature end of expression[1]" \
    -- "$Z" call integral '{"x +"}' 0 1
check "a non-finite integral is a text in the result, not a failure" 0 \
    "Error: variable values are out of the domain boundary in integral" "" \
    -- "$Z" call integral '{"sqrt(x)"}' -1 1
check "an optimiser's end criterion is a line on stderr; stdout is the table alone" 0 \
    "16 rows of 4 fields, Nonlinear Least Squares Solver" " Criteria :StationaryFunctionValue" \
    -- bash -c "\"$Z\" call nls_solver '{\"a + b*x\"}' '{\"a\",0;\"b\",0}' '{\"x\";0;1}' '{\"y\";1;3}' \
                --format csv | awk -F, '{ n[NF]++ } NR == 1 { t = \$1 }
                                        END { for (f in n) printf \"%d rows of %d fields, %s\", n[f], f, t }'"
check "an optimiser's own failure is a failure" 1 "" "less functions (1) than available variables (2)" \
    -- "$Z" call nls_solver '{"a*x+b"}' '{"a",1;"b",1}' '{"x";1}' '{"y";1}'

check "a result beyond the size bound fails before it is made" 1 "" \
    "The result of 5000 rows by 5000 columns is too large: a result may have at most 16384 columns and 16777216 cells" \
    -- "$Z" call matrix_I 5000
check "a matrix product of the wrong shapes fails" 1 "" "Not conformable matrix multiplication" \
    -- "$Z" call matrix_prod '{1,2,3;4,5,6}' '{1,2,3;4,5,6}'

# --- the timer seeds once per process, so two timer calls share one script
printf 'a = matrix_random(3, 2)\nb = matrix_random(3, 2)\nprint a\nprint b\n' >timer.zt
check "matrix_random: a seed repeats its numbers, the timer does not" 0 $'same\ndiffer' "" \
    -- bash -c "[[ \$(\"$Z\" call matrix_random 3 2 _ _ _ _ 7) == \$(\"$Z\" call matrix_random 3 2 _ _ _ _ 7) ]] && echo same
                \"$Z\" run timer.zt --format csv | awk 'NF {t[n++] = \$0} END {if (t[0] t[1] t[2] != t[3] t[4] t[5]) print \"differ\"}'"

# --- bad input to the driver itself: one line, a non-zero status
check "unknown function" 2 "" "zentable: unknown function nope (zentable list shows them all)" \
    -- "$Z" call nope
check "too many arguments" 2 "" "zentable: linear_reg takes 4 arguments: linear_reg(x, y, weight, lambda)" \
    -- "$Z" call linear_reg 1 2 3 4 5
check "bad command line" 2 "" "zentable: cannot read the command line
$USAGE" -- "$Z" frobnicate
check "unknown option" 2 "" "zentable: unknown option --colour
$USAGE" -- "$Z" list --colour
check "bad range option" 2 "" "zentable: --range wants rows by columns, such as 3x2: 3by2" \
    -- "$Z" call version --range 3by2

# --- scripts: one model store for the whole script
cat >fit.zt <<'ZT'
# a fit, then its handle passed on
fit = linear_reg(@x.csv, @y.csv)
print fit!A21:C22
handle = fit!A1
data = @x.csv
linear_reg(data!A1:A7, y=@y.csv, lambda={0.5})
ZT
check_match "script: ranges, names and a call in one process" 0 \
    $'^#  Variable   Estimate\n0  Intercept +[-0-9.e]+\n\nlinearRegModel->[0-9]+\n' \
    -- "$Z" run fit.zt
# The handle of a fit passed to a later line finds its model: the same process.
printf 'x,y\n1,3\n2,5\n4,9\n' >line.csv
cat >score.zt <<'ZT'
data = @line.csv
fit = linear_reg(data!A1:A4, data!B1:B4)
model_score(fit!A1, {"x";10;"ten"})
ZT
check "script: a fit's handle scores data on a later line" 0 $'Y Predicted\n         21\n.' "" \
    -- "$Z" run score.zt
printf 'model_score(linearRegModel->1, {"x";1})\n' >stale.zt
check "a handle from another process is gone" 1 "" \
    'stale.zt:1: Error: could not find "linearRegModel->1" for linearRegModel; please rebuild the model.' \
    -- "$Z" run stale.zt
printf '# fails on line 3\n\nfit = linear_reg(@x.csv, {"y";1})\nprint fit\n' >fails.zt
check "a script stops at its first failing line" 1 "" \
    "fails.zt:3: The numbers of observations in input data X, Y, and weight must be the same" \
    -- "$Z" run fails.zt
printf 'fit = linear_reg(@x.csv\n' >unparsed.zt
check "a line that does not parse" 2 "" "unparsed.zt:1: cannot read this line: fit = linear_reg(@x.csv" \
    -- "$Z" run unparsed.zt
check "a missing script" 2 "" "zentable: cannot open script none.zt" -- "$Z" run none.zt

# --- hostile input: a result or one line of complaint, within seconds, never a signal
{ printf 'x1,y\n'; head -c 50000000 /dev/zero | tr '\0' '7'; printf ',1\n2,3\n'; } >long.csv
check "a 50 MB field is no number: x1 keeps one record" 0 $'x1,1,1,2,2\ny,0,2,4,2' "" \
    -- bash -c "\"$Z\" call univariate_from_file long.csv x1 --format csv | sed -n 2p | cut -d, -f1-5
                \"$Z\" call univariate_from_file long.csv y --format csv | sed -n 2p | cut -d, -f1-5"
head -c 10000000 /dev/zero | tr '\0' '\n' >empty.csv
check "10^7 empty lines: no variables in the file" 1 "" \
    "Error: cannot find the variable (x1) in data file" -- "$Z" call univariate_from_file empty.csv x1
check "10^7 empty lines as cells: an empty table" 1 "" "Input data table is empty" \
    -- "$Z" call freq @empty.csv
printf 'x1,y\n1,\xff\xfe\n\x00\x01,2\n3,4\n5,\xc3\x28\n6,7\n' >odd.csv
check "a NUL ends its line, invalid UTF-8 is text" 1 "" \
    "Error: data line 2 has 1 fields, which is less than expected in odd.csv" \
    -- "$Z" call univariate_from_file odd.csv y
check_match "odd bytes as cells still count" 0 'x1 +Freq' -- "$Z" call freq @odd.csv
{ seq -s, -f 'v%.0f' 0 99999; seq -s, 0 99999 | tr -d '\n'; echo; seq -s, 100000 199999; } >wide.csv
check "a head of 10^5 names finds its last" 0 "v99999,0,2,299998,149999" "" \
    -- bash -c "\"$Z\" call univariate_from_file wide.csv v99999 --format csv | sed -n 2p | cut -d, -f1-5"
printf 'model_score(fit!A1, @x.csv)\nfit = linear_reg(@x.csv, @y.csv)\n' >early.zt
check "a script that uses a result before making it" 2 "" "early.zt:1: no earlier result is named fit" \
    -- "$Z" run early.zt
check "a directory as a file" 1 "" "Error: cannot find the variable (x1) in data file" \
    -- "$Z" call univariate_from_file . x1

# --- numbers for people: 10 digits in a table, the shortest exact digits elsewhere
# y = 1, 2, 4 on x = 1, 2, 3: slope 3/2 and intercept -2/3 by hand; the fit's
# double for the slope is one unit in the last place below 1.5.
LINE="\"$Z\" call linear_reg '{\"x\";1;2;3}' '{\"y\";1;2;4}'"
check "a table shows 10 significant digits" 0 $'Intercept -0.6666666667\nx 1.5' "" \
    -- bash -c "$LINE | awk 'NR == 22 || NR == 23 {print \$2, \$3}'"
check "csv keeps the shortest exact digits; --digits rounds every format" 0 \
    $'1.4999999999999998\n1.5\n1.5\n[1,"x",1.5,0.289' "" \
    -- bash -c "$LINE --format csv | sed -n 23p | cut -d, -f3
                $LINE --format csv --digits 3 | sed -n 23p | cut -d, -f3
                $LINE --format tsv --digits 3 | sed -n 23p | cut -f3
                $LINE --format json --digits 3 | grep -o '\[1,\"x\",[^,]*,[^,]*'"
check "an integer prints with no point" 0 "Number of Records,3" "" \
    -- bash -c "\"$Z\" call linear_reg '{\"x\";1;2;3}' '{\"y\";1;2;4}' --format csv --digits 2 | sed -n 5p | cut -d, -f1-2"
check "bad digits" 2 "" "zentable: --digits wants a count of significant digits from 1 to 17: 18" \
    -- "$Z" call version --digits 18

# --- pipes: a table and a script from standard input
check "@- reads a table from a pipe, twice the same" 0 $'Set Union Elements:\nx\n1\n3' "" \
    -- bash -c "printf 'x\n3\n1\n' | \"$Z\" call set_union @- @- --format csv"
check "run - reads the script from a pipe; JSON Lines" 0 \
    $'[["Prime Numbers",null],[1,2]]\n[["Prime Numbers",null],[1,2],[2,3]]' "" \
    -- bash -c "printf 'p = prime_numbers(1)\nprint p\nprime_numbers(2)\n' | \"$Z\" run - --format json"
check "JSON Lines: each line parses on its own" 0 $'2\n3' "" \
    -- bash -c "printf 'prime_numbers(1)\nprime_numbers(2)\n' | \"$Z\" run - --format json |
                python3 -c 'import json, sys; [print(len(json.loads(l))) for l in sys.stdin]'"
check "a script from standard input leaves no table for @-" 2 "" \
    "stdin:1: @- cannot read standard input: the script is read from it" \
    -- bash -c "printf 'freq(@-)\n' | \"$Z\" run -"

# --- progress: a line on a terminal's standard error, never on standard output or in a pipe
# script(1) gives the call a terminal and copies what it shows to its own standard output.
ZENTABLE_PROGRESS_AFTER=0 script -qc "\"$Z\" call tree_boosting_ls_reg @x.csv @y.csv >tty.out" /dev/null >tty.screen </dev/null
check "progress shows on a terminal, then clears" 0 "yes" "" \
    -- bash -c "grep -qaE \$'\r(reading: 0.0 MB of 0.0 MB|tree [0-9]+ of 100)\x1b\\[K' tty.screen &&
                [[ \$(tail -c 4 tty.screen) == \$'\r\x1b[K' ]] && echo yes"
check "progress: never on standard output, not with --quiet, not in a pipe" 0 "0 0 0" "" \
    -- bash -c "ZENTABLE_PROGRESS_AFTER=0 script -qc \"'$Z' call tree_boosting_ls_reg @x.csv @y.csv --quiet >/dev/null\" /dev/null >q.screen </dev/null
                ZENTABLE_PROGRESS_AFTER=0 \"$Z\" call tree_boosting_ls_reg @x.csv @y.csv 2>pipe.err >/dev/null
                echo \$(tr -cd '\r' <tty.out | wc -c) \$(wc -c <q.screen) \$(wc -c <pipe.err)"

# --- charts through gnuplot: a PNG of the asked size for each kind, a text chart on the terminal
printf 'y,p\n1,0.9\n0,0.8\n1,0.7\n0,0.4\n1,0.35\n0,0.1\n' >scores.csv
check "gains, lift and ROC of an evaluation as PNG" 0 "PNG image data, 900 x 300" "" \
    -- bash -c "\"$Z\" call model_bin_eval_from_file scores.csv y p 3 --plot eval.png --size 900x300 >/dev/null &&
                file -b eval.png | cut -d, -f1-2"
# Worked by hand: 6 records in 3 groups of 2 by score, Y = 1,1 | 0,1 | 0,0, so
# W = 6 and B = 3. Gains: (cumF/W, cumB/B) = (1/3, 2/3), (2/3, 1), (1, 1);
# lift: group mean over 1/2 = 2, 1, 0; ROC: ((cumF - cumB)/3, cumB/3) =
# (0, 2/3), (1/3, 1), (1, 1); both curves from (0, 0).
printf 'y,p\n1,0.9\n1,0.8\n0,0.7\n1,0.4\n0,0.35\n0,0.1\n' >ranked.csv
check "the points of the gains chart, the lift and the ROC curve" 0 \
    $'Gains chart\n0 0\n0.333 0.667\n0.667 1\n1 1\nLift per group\n1 2\n2 1\n3 0\nROC curve\n0 0\n0 0.667\n0.333 1\n1 1' "" \
    -- bash -c "\"$Z\" call model_bin_eval_from_file ranked.csv y p 3 --plot points.dat >/dev/null &&
                awk '/^# panel: / {sub(/^# panel: /, \"\"); print; next} /^ *[-0-9]/ {printf \"%.3g %.3g\\n\", \$1, \$2}' points.dat"
check "a QQ plot as PNG" 0 "PNG image data, 640 x 480" "" \
    -- bash -c "\"$Z\" call QQ_plot @y.csv --plot qq.png --size 640x480 >/dev/null && file -b qq.png | cut -d, -f1-2"
check "WOE per bin as PNG" 0 "PNG image data, 800 x 600" "" \
    -- bash -c "printf 'x,y\n1,0\n2,0\n3,1\n4,0\n5,1\n6,1\n7,0\n8,1\n' >woe.csv
                \"$Z\" call woe_xcont_ybin_from_file woe.csv x y 2 1 --plot woe.png >/dev/null && file -b woe.png | cut -d, -f1-2"
check "SVG and PDF by the extension" 0 $'SVG Scalable Vector Graphics image\nPDF document' "" \
    -- bash -c "\"$Z\" call QQ_plot @y.csv --plot qq.svg >/dev/null && file -b qq.svg | cut -d, -f1
                \"$Z\" call QQ_plot @y.csv --plot qq.pdf >/dev/null && file -b qq.pdf | cut -d, -f1"
check_match "--plot - draws a text chart after the table" 0 $'^#  Prob level .*\n.*Normal QQ plot.*Standard normal quantile' \
    -- "$Z" call QQ_plot @y.csv --plot -
check "a function that draws nothing" 1 "Prime Numbers" "zentable: prime_numbers draws no chart" \
    -- bash -c "\"$Z\" call prime_numbers 1 --plot p.png | head -1; exit \${PIPESTATUS[0]}"
check "without gnuplot the table prints, then a clear text" 1 "#  Prob level  Q              Prime Numbers" \
    "zentable: cannot draw the chart: the gnuplot program is not installed (Debian's package gnuplot-nox)" \
    -- bash -c "PATH=/nonexistent \"$Z\" call QQ_plot '{\"Prime Numbers\";1;2}' --plot q.png | head -1; exit \${PIPESTATUS[0]}"
check "a chart file of no known kind" 2 "" \
    "zentable: --plot wants a file ending in .png, .svg, .pdf or .dat, or - for a text chart: q.gif" \
    -- "$Z" call QQ_plot @y.csv --plot q.gif
check "the chart's scratch files go when it is drawn" 0 "" "" \
    -- bash -c "mkdir -p tmp && TMPDIR=\$PWD/tmp \"$Z\" call QQ_plot @y.csv --plot - >/dev/null && ls -A tmp"

# --- completion, conventions, help
# bash completes a word to the longest start its candidates share.
check "completion loads in bash and completes a function name" 0 "linear_reg" "" \
    -- bash -c "source <(\"$Z\" completion bash)
                COMP_WORDS=(zentable call linear_r); COMP_CWORD=2; _zentable
                printf '%s\n' \"\${COMPREPLY[@]}\" | sed -e '1{h;d}' -e 'G;s/^\(.*\).*\n\1.*/\1/;h;\$!d'"
check "completion of argument names" 0 "weight=" "" \
    -- bash -c "source <(\"$Z\" completion bash)
                COMP_WORDS=(zentable --format csv call linear_reg @x.csv we); COMP_CWORD=6; _zentable; echo \"\${COMPREPLY[*]}\""
check "--version and -V" 0 $'zentable 2.00\nzentable 2.00' "" -- bash -c "\"$Z\" --version; \"$Z\" -V"
check "-h is --help" 0 "$USAGE" "" -- "$Z" -h
check_match "help syntax" 0 $'^Arguments, on the command line and in scripts:\n.*single-quote every \\{\\.\\.\\.\\} and every handle.*\nScript lines:' \
    -- "$Z" help syntax
check_match "help call and help run" 0 $'^zentable call NAME.*\nzentable run SCRIPT' \
    -- bash -c "\"$Z\" help call; \"$Z\" help run"
check "the driver names a required argument" 2 "" "zentable: linear_reg: argument y is required" \
    -- "$Z" call linear_reg @x.csv
check "in a script too" 2 "" "stdin:1: linear_reg: argument y is required" \
    -- bash -c "echo 'linear_reg(@x.csv, _)' | \"$Z\" run -"
check "did you mean, for a function" 2 "" "zentable: unknown function linear_regression; did you mean linear_reg?" \
    -- "$Z" call linear_regression @x.csv @y.csv
check "did you mean, for an argument" 2 "" "zentable: linear_reg has no argument named wieght; did you mean weight?" \
    -- "$Z" call linear_reg @x.csv @y.csv wieght=1
check "one argument" 2 "" "zentable: means takes 1 argument: means(inputData)" -- "$Z" call means 1 2
check "list filters by name; --built leaves out what is not built" 0 $'linear_reg\nlinear_reg_from_file\nlogistic_reg\nlogistic_reg_from_file\n0' "" \
    -- bash -c "\"$Z\" list reg --built | grep -E '^(linear|logistic)_reg(_from_file)? ' | cut -d' ' -f1
                \"$Z\" list reg --built | awk '/^[a-zA-Z_]+ +- / {n++} END {print n+0}'"
check_match "list PATTERN counts what it shows" 0 $'\n[0-9]+ of 208 functions\\.$' -- "$Z" list REG

# --- the demo on the shipped example data; how its fits ended is the one thing
# it may say on stderr
# The demo keeps its support vector files in ../build/svm_demo, as from examples/.
mkdir -p tree/examples tree/build/svm_demo && cd tree/examples
cp "$EXAMPLES"/*.csv "$EXAMPLES/demo.zt" "$EXAMPLES/gains.zt" .
check_match "demo" 0 $'^Zentable 2\\.00 is built on .*\nlinearRegModel->[0-9]+\n.*Number of Records +2866\n.*End of output: linear_reg' \
    -- bash -c "set -o pipefail; { \"$Z\" run demo.zt 2>&1 1>&3 | sed '/^ Criteria :/d' >&2; } 3>&1"

check "the README's gains chart" 0 "PNG image data, 1200 x 400" "" \
    -- bash -c "\"$Z\" run gains.zt --plot gains.png --size 1200x400 >/dev/null && file -b gains.png | cut -d, -f1-2"

echo "$passed passed, $failed failed"
[[ $failed == 0 ]]
