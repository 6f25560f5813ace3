#!/usr/bin/env bash
# netflow_solver, maxflow_solver and shortest_path_solver against scipy and
# networkx. First the oracle: 24 small generated networks (lower bounds,
# negative costs, some that cannot be shipped), each solved for MIN, MAX, a
# max flow and a shortest path, against scipy's linprog (HiGHS) on the
# arc-node LP; every flow table must meet its bounds and the balance at each
# node and give its total back. Then the speed on 10^4 nodes and 1.1 x 10^5
# arcs: scipy HiGHS and networkx network_simplex on the min-cost flow,
# scipy.sparse.csgraph and networkx on the max flow and the shortest path.
# Not run by CI. Needs Debian's python3-scipy and python3-networkx (run by
# /usr/bin/python3).
# usage: bench/netflow_vs_peers.sh [BUILD_DIR]   (KEEP=1 keeps the scratch folder)
set -euo pipefail
BUILD=$(cd "${1:-build}" && pwd)
DIR=$(mktemp -d)
trap '[ -n "${KEEP:-}" ] || rm -rf "$DIR"' EXIT
"$BUILD/bench/netflow_bench" --write "$DIR"
echo "machine: $(nproc) cores, $(free -g | awk '/Mem/{print $2}') GiB"
cd "$DIR"
# A copy, so that a rebuild under way cannot swap the binary mid-run.
cp "$BUILD/zentable" "$DIR/zentable"
ZT="$DIR/zentable"

for k in $(seq 0 23); do
    "$ZT" call netflow_solver "@small${k}_arcs.csv" "@small${k}_supplies.csv" MIN \
        --format csv >"small${k}_min.out" 2>&1 || true
    "$ZT" call netflow_solver "@small${k}_arcs.csv" "@small${k}_supplies.csv" MAX \
        --format csv >"small${k}_max.out" 2>&1 || true
    cut -d, -f1-4 "small${k}_arcs.csv" >"small${k}_cap.csv"
    n=$(cut -d, -f1,2 "small${k}_arcs.csv" | tr , '\n' | sort -n | tail -1)
    "$ZT" call maxflow_solver "@small${k}_cap.csv" 1 "$n" --format csv >"small${k}_flow.out" 2>&1 || true
    cut -d, -f1,2,5 "small${k}_arcs.csv" >"small${k}_dist.csv"
    "$ZT" call shortest_path_solver "@small${k}_dist.csv" 1 "$n" --format csv \
        >"small${k}_path.out" 2>&1 || true
done

cat >oracle.py <<'PY'
import csv, sys
import numpy as np
from scipy.optimize import linprog
from scipy.sparse import coo_matrix

def rows(path):
    try:
        return [r for r in csv.reader(open(path)) if r]
    except FileNotFoundError:
        return []

def lp(tails, heads, low, up, cost, supply, n, sense=1.0):
    m = len(tails)
    a = coo_matrix((np.r_[np.ones(m), -np.ones(m)],
                    (np.r_[tails, heads] - 1, np.r_[np.arange(m), np.arange(m)])), shape=(n, m))
    return linprog(sense * np.asarray(cost, float), A_eq=a.tocsr(), b_eq=supply,
                   bounds=list(zip(low, up)), method="highs")

def check_table(out, tails, heads, low, up, cost, supply, total_label, flow_col, title):
    got = rows(out)
    assert got[0][0] == title, (out, got[0])
    assert got[2][0] == total_label, out
    total = float(got[2][1])
    table = got[5:]
    assert len(table) == len(tails), out
    x = np.array([float(r[flow_col]) for r in table])
    tol = 1e-9 * max(1.0, np.abs(up).max())
    assert np.all(x >= np.asarray(low) - tol) and np.all(x <= np.asarray(up) + tol), out
    bal = np.zeros(len(supply))
    np.add.at(bal, np.asarray(tails) - 1, x)
    np.subtract.at(bal, np.asarray(heads) - 1, x)
    assert np.allclose(bal, supply, atol=tol), out
    if cost is not None:
        assert abs(float(np.dot(cost, x)) - total) <= 1e-9 * max(1.0, abs(total)), out
    return total

checked = 0
for k in range(24):
    arcs = [[float(v) for v in r] for r in rows(f"small{k}_arcs.csv")]
    t = [int(r[0]) for r in arcs]; h = [int(r[1]) for r in arcs]
    lo = [r[2] for r in arcs]; up = [r[3] for r in arcs]; c = [r[4] for r in arcs]
    n = max(t + h)
    supply = np.zeros(n)
    for r in rows(f"small{k}_supplies.csv"):
        supply[int(r[0]) - 1] = float(r[1])
    for sense, name, title in ((1.0, "min", "Minimum"), (-1.0, "max", "Maximum")):
        ref = lp(t, h, lo, up, c, supply, n, sense)
        out = f"small{k}_{name}.out"
        if ref.status == 2:
            assert rows(out) == [["No solution satisfies the given constraints"]], out
        else:
            total = check_table(out, t, h, lo, up, c, supply, "Total Cost", 6,
                                f"Solution to the {title} Cost Network Flow Problem")
            assert abs(total - sense * ref.fun) <= 1e-9 * max(1.0, abs(ref.fun)), (out, total, ref.fun)
        checked += 1
    # Max flow: the arc from n back to 1 of cost -1 closes the circulation.
    ref = lp(t + [n], h + [1], lo + [0.0], up + [None], [0.0] * len(t) + [-1.0], np.zeros(n), n)
    out = f"small{k}_flow.out"
    if ref.status == 2:
        assert rows(out) == [["No solution satisfies the given constraints"]], out
    else:
        got = rows(out)
        xs = [float(r[5]) for r in got[5:]]
        total = float(got[2][1])
        bal = np.zeros(n)
        np.add.at(bal, np.asarray(t) - 1, xs)
        np.subtract.at(bal, np.asarray(h) - 1, xs)
        expect = np.zeros(n); expect[0] = total; expect[n - 1] = -total
        assert np.allclose(bal, expect, atol=1e-9), out
        assert all(l - 1e-9 <= x <= u + 1e-9 for x, l, u in zip(xs, lo, up)), out
        assert abs(total + ref.fun) <= 1e-9 * max(1.0, abs(ref.fun)), (out, total, ref.fun)
    checked += 1
    # Shortest path: bounds 0 and 1, one unit from node 1 to node n.
    s = np.zeros(n); s[0] += 1; s[n - 1] -= 1
    ref = lp(t, h, [0.0] * len(t), [1.0] * len(t), c, s, n)
    got = rows(f"small{k}_path.out")
    assert ref.status == 0, k
    total = float(got[2][1])
    path = got[5:]
    assert abs(total - ref.fun) <= 1e-9 * max(1.0, abs(ref.fun)), (k, total, ref.fun)
    assert abs(sum(float(r[3]) for r in path) - total) <= 1e-9 * max(1.0, abs(total)), k
    checked += 1
print(f"oracle: {checked} solves agree with scipy HiGHS")
PY
/usr/bin/python3 oracle.py

best() { sort -n | head -1; }
ratio() { echo "$1 $2" | awk '{printf "%.1f", $1 / $2}'; }
whole() { # best of three wall times of a whole process
    for i in 1 2 3; do
        /usr/bin/time -f "%e" "$@" 2>&1 >/dev/null | tail -1
    done | best
}

cat >peers.py <<'PY'
import sys, time
t0 = time.perf_counter()
import numpy as np
kind, tool = sys.argv[1], sys.argv[2]
a = np.loadtxt("net_arcs.csv", delimiter=",")
t, h = a[:, 0].astype(int) - 1, a[:, 1].astype(int) - 1
lo, up, c = a[:, 2], a[:, 3], a[:, 4]
n = int(max(t.max(), h.max())) + 1
sup = np.zeros(n)
s = np.loadtxt("net_supplies.csv", delimiter=",")
sup[s[:, 0].astype(int) - 1] = s[:, 1]
t1 = time.perf_counter()
if kind == "netflow" and tool == "scipy":
    from scipy.optimize import linprog
    from scipy.sparse import coo_matrix
    m = len(t)
    A = coo_matrix((np.r_[np.ones(m), -np.ones(m)], (np.r_[t, h], np.r_[np.arange(m), np.arange(m)])),
                   shape=(n, m)).tocsr()
    t1 = time.perf_counter()
    value = linprog(c, A_eq=A, b_eq=sup, bounds=np.c_[lo, up], method="highs").fun
elif kind == "netflow":
    import networkx as nx
    g = nx.MultiDiGraph()
    for i in range(n):
        g.add_node(i, demand=-int(sup[i]))
    for i in range(len(t)):
        g.add_edge(t[i], h[i], capacity=int(up[i]), weight=int(c[i]))
    t1 = time.perf_counter()
    value = nx.network_simplex(g)[0]
elif kind == "maxflow" and tool == "scipy":
    from scipy.sparse import csr_matrix
    from scipy.sparse.csgraph import maximum_flow
    g = csr_matrix((up.astype(np.int32), (t, h)), shape=(n, n))
    t1 = time.perf_counter()
    value = maximum_flow(g, 0, n - 1).flow_value
elif kind == "maxflow":
    import networkx as nx
    g = nx.DiGraph()
    for i in range(len(t)):
        if g.has_edge(t[i], h[i]):
            g[t[i]][h[i]]["capacity"] += up[i]
        else:
            g.add_edge(t[i], h[i], capacity=up[i])
    t1 = time.perf_counter()
    value = nx.maximum_flow_value(g, 0, n - 1)
elif kind == "path" and tool == "scipy":
    from scipy.sparse import csr_matrix
    from scipy.sparse.csgraph import dijkstra
    order = np.lexsort((c, h, t))  # the cheapest of parallel arcs first
    key = t[order] * n + h[order]
    first = np.r_[True, key[1:] != key[:-1]]
    keep = order[first]
    g = csr_matrix((c[keep], (t[keep], h[keep])), shape=(n, n))
    t1 = time.perf_counter()
    value = dijkstra(g, indices=0)[n - 1]
else:
    import networkx as nx
    g = nx.DiGraph()
    for i in range(len(t)):
        if not g.has_edge(t[i], h[i]) or g[t[i]][h[i]]["weight"] > c[i]:
            g.add_edge(t[i], h[i], weight=c[i])
    t1 = time.perf_counter()
    value = nx.dijkstra_path_length(g, 0, n - 1)
t2 = time.perf_counter()
print("%.17g %.3f" % (value, t2 - t1))
PY

zt_total() { "$ZT" call "$@" --format csv | awk -F, 'NR==3{print $2}'; }
report() { # kind, label, zentable call...
    local kind=$1 label=$2
    shift 2
    local mine whole_zt
    mine=$(zt_total "$@")
    whole_zt=$(whole "$ZT" call "$@" --format csv)
    echo "$label: zentable total $mine, whole call ${whole_zt} s"
    for tool in scipy networkx; do
        local line value solve whole_peer
        line=$(/usr/bin/python3 peers.py "$kind" "$tool")
        value=${line% *}
        solve=${line#* }
        whole_peer=$(whole /usr/bin/python3 peers.py "$kind" "$tool")
        awk -v a="$mine" -v b="$value" 'BEGIN{d=a-b; if (d<0) d=-d; if (d > 1e-9*(b<0?-b:b)+1e-9) {print "  totals differ"; exit 1}}'
        echo "  $tool total $value, solve ${solve} s, whole ${whole_peer} s; whole-call ratio peer/zentable $(ratio "$whole_peer" "$whole_zt")"
    done
}
report netflow "min-cost flow" netflow_solver @net_arcs.csv @net_supplies.csv
report maxflow "max flow 1 -> 10000" maxflow_solver @flow_arcs.csv 1 10000
report path "shortest path 1 -> 10000" shortest_path_solver @path_arcs.csv 1 10000
