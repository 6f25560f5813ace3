#!/usr/bin/env python3
"""A second, plain-Python account of the neural network's resilient-propagation
training and its report, written from the rules alone, for the expected tables
of tests/calls/learners/neural_net.test. Prints one case's table as the call
file's CSV: `neural_net_reference.py ls` or `neural_net_reference.py ml`."""

import math
import sys

import mpmath


def lcg(seed):
    state = seed % 2**32

    def draw():
        nonlocal state
        state = (state * 214013 + 2531011) % 2**32
        return (state >> 16) & 0x7FFF

    return draw


def squash(net):
    if net < -10:
        return -1.0
    if net > 10:
        return 1.0
    return -1.0 + 2.0 / (1.0 + math.exp(-net))


def forward(weights, a):
    net = 0.0
    acts = [list(a)]
    for m in weights:
        nxt = []
        for row in m:
            net = row[-1] + sum(row[i] * acts[-1][i] for i in range(len(acts[-1])))
            nxt.append(squash(net))
        acts.append(nxt)
    return net, acts


def moments(values, w):
    total = sum(w)
    m = sum(wi * v for v, wi in zip(values, w)) / total
    s = math.sqrt(sum(wi * v * v for v, wi in zip(values, w)) / total - m * m)
    return m, s


def train(x, y, w, xt, yt, wt, sizes, epochs, seed, ls):
    p = len(x[0])
    xm, xs = [], []
    for j in range(p):
        m, s = moments([r[j] for r in x], w)
        xm.append(m)
        xs.append(s if s >= 1e-8 else 1.0)
    scale = lambda rows: [[(r[j] - xm[j]) / xs[j] for j in range(p)] for r in rows]
    X, XT = scale(x), scale(xt)
    if ls:
        ym, ys = moments(y, w)
        T = [(v - ym) / ys for v in y]
        TT = [(v - ym) / ys for v in yt]
    else:
        ym, ys = 0.0, 0.0
        T = [1.0 if v >= 0.5 else -1.0 for v in y]
        TT = [1.0 if v >= 0.5 else -1.0 for v in yt]
    draw = lcg(seed)
    W = [[[((draw() + 1.0) / 32769.0 - 0.5) * 0.01 for _ in range(sizes[l] + 1)]
          for _ in range(sizes[l + 1])] for l in range(len(sizes) - 1)]
    step = [[[0.1] * len(r) for r in m] for m in W]
    prev = [[[0.0] * len(r) for r in m] for m in W]

    def out(row):
        net, acts = forward(W, row)
        return (net if ls else acts[-1][0]), acts

    def mse(rows, targets, weights):
        return sum(wi * (t - out(r)[0]) ** 2 for r, t, wi in zip(rows, targets, weights)) / sum(weights)

    best, best_w, history = -1.0, None, []
    for _ in range(epochs):
        grad = [[[0.0] * len(r) for r in m] for m in W]
        for r, t in zip(X, T):
            o, acts = out(r)
            deltas = [None] * len(sizes)
            deltas[-1] = [2 * (t - o) if ls else 0.5 * (t - o)]
            for l in range(len(sizes) - 2, 0, -1):
                deltas[l] = [sum(W[l][j][i] * deltas[l + 1][j] for j in range(sizes[l + 1]))
                             * (1 - acts[l][i]) * (1 + acts[l][i]) * 0.5 for i in range(sizes[l])]
            for l, m in enumerate(W):
                for j in range(len(m)):
                    for i in range(sizes[l]):
                        grad[l][j][i] += -acts[l][i] * deltas[l + 1][j]
                    grad[l][j][-1] += -deltas[l + 1][j]
        for l, m in enumerate(W):
            for j, row in enumerate(m):
                for c in range(len(row)):
                    g, h, s = grad[l][j][c], prev[l][j][c], max(step[l][j][c], 0.0001)
                    if g * h >= 0:
                        s = min(1.2 * s, 50.0)
                        if g > 0:
                            row[c] = max(row[c] - s, -1500.0)
                        elif g < 0:
                            row[c] = min(row[c] + s, 1500.0)
                    else:
                        s, g = max(0.5 * s, 0.0), 0.0
                    prev[l][j][c], step[l][j][c] = g, s
        e_train = mse(X, T, w)
        e_test = mse(XT, TT, wt)
        if best < 0 or best >= e_train:
            best = e_train
            best_w = [[list(r) for r in m] for m in W]
            history.append((e_train, e_test))
    for row in best_w[0]:
        for i in range(p):
            row[i] /= xs[i]
        row[-1] -= sum(row[i] * xm[i] for i in range(p))
    if ls:
        row = best_w[-1][0]
        for c in range(len(row)):
            row[c] *= ys
        row[-1] += ym
    return best_w, history


def score(weights, row, ls):
    net, acts = forward(weights, row)
    return net if ls else (acts[-1][0] + 1) * 0.5


def cont_eval(y, pred, w, k):
    n = len(y)
    total = sum(w)
    ybar = sum(a * b for a, b in zip(w, y)) / total
    pbar = sum(a * b for a, b in zip(w, pred)) / total
    sst = sum(wi * (v - ybar) ** 2 for v, wi in zip(y, w))
    ssr = sum(wi * (v - ybar) ** 2 for v, wi in zip(pred, w))
    sse = sum(wi * (a - b) ** 2 for a, b, wi in zip(y, pred, w))
    r2 = 1 - sse / sst
    rmse = math.sqrt(sse / (n - k))
    f = r2 / (1 - r2) * (n - k) / (k - 1)
    pv = 1.0
    if f > 0:
        pv = float(mpmath.betainc((n - k) / 2, (k - 1) / 2, 0, (n - k) / (f * (k - 1) + n - k),
                                  regularized=True))
    return dict(n=n, r2=r2, adj=1 - (n - 1) * (1 - r2) / (n - k), rmse=rmse, ybar=ybar,
                pbar=pbar, cv=rmse / ybar, sst=sst, ssr=ssr, sse=sse, f=f, pv=pv)


def table(rows, width):
    for r in rows:
        cells = [("" if c is None else (repr(c) if isinstance(c, float) else str(c))) for c in r]
        print(",".join(cells + [""] * (width - len(cells))))


def network_rows(sizes, names, weights, history):
    rows = [["Neural network structure"], ["Layer", "Nodes"], ["Input layer", sizes[0]]]
    hidden = len(sizes) - 2
    rows += [["Hidden layer %d" % h, sizes[h]] for h in range(1, hidden + 1)]
    rows += [["Output layer", 1], []]
    for k, m in enumerate(weights):
        if k == 0:
            title = "Weights from input layer to hidden layer 1"
        elif k == hidden:
            title = "Weights from hidden layer %d to output layer" % k
        else:
            title = "Weights from hidden layer %d to hidden layer %d" % (k, k + 1)
        rows += [[title], ["Variable", "Node"] + list(range(1, len(m) + 1))]
        for i in range(sizes[k]):
            label = names[i] if k == 0 else "Hidden layer %d" % k
            rows.append([label, i + 1] + [m[j][i] for j in range(len(m))])
        rows += [["Intercept", "Intercept"] + [m[j][-1] for j in range(len(m))], []]
    rows.append(["Epoch", "MSE Training", "MSE Testing"])
    rows += [[e + 1, a, b] for e, (a, b) in enumerate(history)]
    rows += [[], ["End of output: neural network"]]
    return rows


def ls_case():
    names = ["a", "b"]
    x = [[0, 1], [1, 3], [2, 2], [3, 5], [4, 4], [5, 6]]
    y = [1, 2, 2, 5, 4, 7]
    w = [1, 2, 1, 3, 1, 2]
    xt = [[1, 1], [2, 4], [4, 3], [5, 5]]
    yt = [1, 3, 4, 6]
    wt = [1, 1, 1, 1]
    sizes = [2, 2, 1]
    weights, history = train(x, y, w, xt, yt, wt, sizes, 3, 9, True)
    k = len(names) + 1
    tr = cont_eval(y, [score(weights, r, True) for r in x], w, k)
    te = cont_eval(yt, [score(weights, r, True) for r in xt], wt, k)
    rows = [["neuralNetModel->*"], [], ["Analysis of Variance"], [], [None, "Training", "Testing"],
            ["Number of records", tr["n"], te["n"]], ["Number of variables", 2, 2],
            ["R-Sqaure", tr["r2"], te["r2"]], ["Adj R-Square", tr["adj"], te["adj"]], [],
            ["RMSE", tr["rmse"], te["rmse"]], ["Y-actual Mean", tr["ybar"], te["ybar"]],
            ["Y-predicted Mean", tr["pbar"], te["pbar"]], ["Coeff Var", tr["cv"], te["cv"]], [],
            [None, "DF", "Sum", "Mean", "F Value", "P Value"],
            ["SSR", k - 1, tr["ssr"], tr["ssr"] / (k - 1), tr["f"], tr["pv"]],
            ["SSE", tr["n"] - k, tr["sse"], tr["sse"] / (tr["n"] - k)],
            ["SST", tr["n"] - 1, tr["sst"], tr["sst"] / (tr["n"] - 1)], []]
    rows += network_rows(sizes, names, weights, history)
    table(rows, 6)
    print("# scores: " + " ".join(repr(score(weights, r, True)) for r in x))


def ml_case():
    names = ["u", "v"]
    x = [[1, 5], [2, 3], [3, 4], [4, 1], [5, 2], [6, 0], [2, 2], [5, 4]]
    y = [7, 7, 7, 9, 9, 9, 9, 7]
    w = [1, 2, 1, 1, 2, 1, 1, 1]
    coded = [1.0 if v >= 8 else 0.0 for v in y]
    sizes = [2, 4, 2, 1]
    weights, history = train(x, coded, w, x, coded, w, sizes, 2, 3, False)
    p = [score(weights, r, False) for r in x]
    n, total = len(y), sum(w)
    n1 = int(sum(coded))
    w1 = sum(wi for wi, c in zip(w, coded) if c)
    ll0 = math.log(1 - w1 / total) * (total - w1) + math.log(w1 / total) * w1
    ll = sum(wi * (c * math.log(q) + (1 - c) * math.log(1 - q)) for wi, c, q in zip(w, coded, p))
    k = len(names) + 1
    con = dis = tie = 0
    for i in range(n):
        for j in range(n):
            if coded[i] == 1 and coded[j] == 0:
                con += p[i] > p[j]
                dis += p[i] < p[j]
                tie += p[i] == p[j]
    n0 = n - n1
    pairs = n0 * n1
    r2 = 1 - math.exp(2 * (ll0 - ll) / n)
    rows = [["neuralNetModel->*"], [], ["Model Performance"], [],
            ["y", "Freq", "Percent", "Weight", "Weight Percent"], ["ALL", n, 1, total, 1],
            [9, n1, n1 / n, w1, w1 / total], [7, n0, n0 / n, total - w1, (total - w1) / total],
            ["Number of Variables", 2], [], [None, "Intercept Only", "Full Model"],
            ["AIC", 2 - 2 * ll0, 2 * k - 2 * ll],
            ["SC", math.log(n) - 2 * ll0, k * math.log(n) - 2 * ll],
            ["-2LogL", -2 * ll0, -2 * ll], ["R-Square", None, r2],
            ["Max-rescaled R-Square", None, r2 / (1 - math.exp(2 * ll0 / n))], [],
            ["%Concordant", con / pairs, "Somers' D", (con - dis) / n0 / n1],
            ["%Discordant", dis / pairs, "Gamma", (con - dis) / (con + dis)],
            ["%Tied", tie / pairs, "Tau-a", 2 * (con - dis) / n / (n - 1)],
            ["#Pairs", pairs, "c", (0.5 * tie + con) / n0 / n1], []]
    rows += network_rows(sizes, names, weights, history)
    table(rows, 6)
    print("# scores: " + " ".join(repr(q) for q in p))


if __name__ == "__main__":
    {"ls": ls_case, "ml": ml_case}[sys.argv[1]]()
