"""Forward selection worked independently at 50 digits with mpmath, for the
numbers of tests/calls/regression/forward_select.test.

Linear form: at each step every free column is tried by refitting weighted
least squares with an intercept from the normal equations; the column with
the largest drop in the residual sum of squares enters when
F = (RSS0 - RSS1) / (RSS1 / (n - t - 1)) has a two-sided t p value (t = sqrt F)
not above pvalue (R's add1(..., test = "F")). A column whose normal equations
are singular lies in the span of those selected and is skipped.

Logistic form: the score statistic g' (-H)^-1 g of the augmented model at the
current fit, g and H the gradient and Hessian of the weighted log-likelihood
(R's add1(glm, test = "Rao")); after each entry a Newton refit on the raw
columns from zero slopes and the intercept ln(A / (W - A)), halving each step
until the log-likelihood does not fall and stopping when |g.d| / (|LL| + 1e-6)
is below 1e-8. Newton's iterates and g.d do not change under an affine change
of the columns, so the refit walks the path of a fit on standardised columns.

Run: python3 bench/forward_select_reference.py
"""

import mpmath as mp

mp.mp.dps = 50


def t_p(t, df):
    t = mp.mpf(t)
    return mp.betainc(df / mp.mpf(2), mp.mpf(1) / 2, 0, df / (t * t + df), regularized=True)


def chi1_p(x):
    return mp.erfc(mp.sqrt(mp.mpf(x) / 2)) if x > 0 else mp.mpf(1)


def f_p(f, d1, d2):
    return mp.betainc(mp.mpf(d2) / 2, mp.mpf(d1) / 2, 0, d2 / (d2 + d1 * f), regularized=True)


def wls(cols, y, w):
    """Weighted least squares of y on the columns and an intercept (last)."""
    n = len(y)
    k = len(cols) + 1
    rows = [[mp.mpf(c[i]) for c in cols] + [mp.mpf(1)] for i in range(n)]
    xtx = mp.matrix(k, k)
    xty = mp.matrix(k, 1)
    for i in range(n):
        for a in range(k):
            xty[a] += w[i] * rows[i][a] * y[i]
            for b in range(k):
                xtx[a, b] += w[i] * rows[i][a] * rows[i][b]
    if abs(mp.det(xtx)) < mp.mpf(10) ** -30 * mp.norm(xtx) ** k:
        return None
    beta = mp.lu_solve(xtx, xty)
    rss = sum(w[i] * (y[i] - sum(rows[i][a] * beta[a] for a in range(k))) ** 2 for i in range(n))
    return beta, rss, xtx ** -1


def linear_forward(x, y, w, pvalue, steps, starts=()):
    p, n = len(x), len(y)
    y = [mp.mpf(v) for v in y]
    w = [mp.mpf(v) for v in w]
    W = sum(w)
    ybar = sum(w[i] * y[i] for i in range(n)) / W
    sst = sum(w[i] * (y[i] - ybar) ** 2 for i in range(n))
    selected, steps_out = [], []
    rss0 = sst
    limit = min(p, len(starts) + min(steps, p))
    for t in range(1, limit + 1):
        dfe = n - t - 1
        best = None
        choices = [starts[t - 1]] if t <= len(starts) else [j for j in range(p) if j not in selected]
        for j in choices:
            fit = wls([x[c] for c in selected + [j]], y, w)
            if fit is None or (best is not None and fit[1] >= best[1]):
                continue
            best = (j, fit[1])
        if best is None:
            break
        j, rss1 = best
        F = (rss0 - rss1) / (rss1 / dfe)
        pv = t_p(mp.sqrt(F), dfe)
        if t > len(starts) and (pv > pvalue or rss0 - rss1 <= 0):
            break
        selected.append(j)
        rss0 = rss1
        steps_out.append((j, 1 - rss1 / sst, F, pv))
    s = len(selected)
    beta, rss, inv = wls([x[c] for c in selected], y, w)
    df = n - s - 1
    sigma2 = rss / df
    se = [mp.sqrt(sigma2 * inv[a, a]) for a in range(s + 1)]
    # The intercept's error is the usual one divided by sqrt(n).
    se[s] = se[s] / mp.sqrt(n)
    tv = [beta[a] / se[a] for a in range(s + 1)]
    pvs = [t_p(v, df) for v in tv]
    return dict(selected=selected, steps=steps_out, beta=list(beta), se=se, t=tv, p=pvs,
                n=n, W=W, ybar=ybar, sst=sst, r2=1 - rss / sst)


def loglik(cols, y, w, b):
    n, k = len(y), len(cols) + 1
    ll = mp.mpf(0)
    g = [mp.mpf(0)] * k
    H = mp.matrix(k, k)
    for i in range(n):
        xi = [c[i] for c in cols] + [1]
        eta = sum(b[a] * xi[a] for a in range(k))
        P = 1 / (mp.exp(-eta) + 1)
        ll += w[i] * (y[i] * mp.log(P) + (1 - y[i]) * mp.log(1 - P))
        for a in range(k):
            g[a] += (y[i] - P) * w[i] * xi[a]
            for c in range(k):
                H[a, c] -= w[i] * P * (1 - P) * xi[a] * xi[c]
    return ll, g, H


def newton(cols, y, w, g0):
    k = len(cols) + 1
    b = [mp.mpf(0)] * (k - 1) + [g0]
    ll, g, H = loglik(cols, y, w, b)
    for _ in range(100):
        d = H ** -1 * mp.matrix(g)
        step = mp.mpf(1)
        while True:
            cand = [b[a] - step * d[a] for a in range(k)]
            nll, ng, nH = loglik(cols, y, w, cand)
            step /= 2
            if not ll > nll:
                break
        b, ll, g, H = cand, nll, ng, nH
        s = sum(g[a] * d[a] for a in range(k))
        if abs(s) / (abs(ll) + mp.mpf("1e-6")) < mp.mpf("1e-8"):
            return b, ll, H
    raise RuntimeError("no convergence")


def logistic_forward(x, y, w, pvalue, steps, starts=()):
    p, n = len(x), len(y)
    y = [mp.mpf(v) for v in y]
    w = [mp.mpf(v) for v in w]
    W = sum(w)
    A = sum(w[i] * y[i] for i in range(n))
    g0 = mp.log(A / (W - A))
    selected, steps_out = [], []
    b = [g0]
    ll = loglik([], y, w, b)[0]
    H = None
    limit = min(p, len(starts) + min(steps, p))
    for t in range(1, limit + 1):
        choices = [starts[t - 1]] if t <= len(starts) else [j for j in range(p) if j not in selected]
        best = None
        for j in choices:
            cols = [x[c] for c in selected] + [x[j]]
            _, g, Ha = loglik(cols, y, w, b[:-1] + [mp.mpf(0), b[-1]])
            if abs(mp.det(Ha)) < mp.mpf(10) ** -30 * mp.norm(Ha) ** len(g):
                continue  # a copy of a selected column adds nothing
            sc = -(mp.matrix(g).T * Ha ** -1 * mp.matrix(g))[0]
            if best is None or sc > best[1]:
                best = (j, sc)
        if best is None:
            break
        j, sc = best
        pv = chi1_p(sc)
        if t > len(starts) and pv > pvalue:
            break
        selected.append(j)
        steps_out.append((j, sc, pv))
        b, ll, H = newton([x[c] for c in selected], y, w, g0)
    if H is None:
        H = loglik([], y, w, b)[2]
    cov = H ** -1
    se = [mp.sqrt(-cov[a, a]) for a in range(len(b))]
    wald = [(b[a] / se[a]) ** 2 for a in range(len(b))]
    ybar = A / W
    ll0 = mp.log(1 - ybar) * (W - A) + mp.log(ybar) * A
    return dict(selected=selected, steps=steps_out, b=b, se=se, wald=wald,
                p=[chi1_p(v) for v in wald], ll=ll, ll0=ll0, n=n)


def num(v):
    # What is left of a difference of equal values at 50 digits is a zero.
    return mp.nstr(v, 17, min_fixed=-4, max_fixed=20).rstrip(".") if abs(v) > 1e-40 else "0"


def linear_table(names, r):
    """The report of linear_reg_forward_select, as call-file rows."""
    s = len(r["selected"])
    rows = ["linearRegModel->*,,,,,", ",,,,,",
            "Summary of Linear Regression Forward Selection,,,,,", ",,,,,",
            "Step,Variable Selected,Partial R-Square,R-Square,F Value,P Value"]
    prev = 0
    for i, (j, r2, F, pv) in enumerate(r["steps"]):
        rows.append(",".join([str(i + 1), names[j], num(r2 - prev), num(r2), num(F), num(pv)]))
        prev = r2
    n, k, r2, sst = r["n"], s + 1, r["r2"], r["sst"]
    sse = (1 - r2) * sst
    ssr = sst - sse
    fv = (r2 / (1 - r2)) * (n - k) / (k - 1) if k > 1 else 0
    rmse = mp.sqrt(sse / (n - k))
    rows += [",,,,,", "Analysis of Variance,,,,,", ",,,,,",
             "Number of Records,%d,,,," % n, "Number of Parameters,%d,,,," % k,
             "R-Square,%s,,,," % num(r2),
             "Adj R-Square,%s,,,," % num(1 - (n - 1) * (1 - r2) / (n - k)), ",,,,,",
             ",DF,Sum,Mean,F Value,P Value",
             "SSR,%d,%s,%s,%s,%s" % (k - 1, num(ssr), num(ssr / (k - 1)) if k > 1 else "nan",
                                     num(fv), num(f_p(fv, k - 1, n - k)) if k > 1 else "1"),
             "SSE,%d,%s,%s,," % (n - k, num(sse), num(sse / (n - k))),
             "SST,%d,%s,%s,," % (n - 1, num(sst), num(sst / (n - 1))), ",,,,,",
             "RMSE,%s,,,," % num(rmse), "Y Mean,%s,,,," % num(r["ybar"]),
             "Coeff Var,%s,,,," % num(rmse / r["ybar"]), ",,,,,",
             "Model Parameter Estimates,,,,,", ",,,,,",
             "#,Variable,Estimate,Standard Error,t Value,P Value"]
    for row, a in enumerate([s] + list(range(s))):
        name = "Intercept" if a == s else names[r["selected"][a]]
        rows.append(",".join([str(row), name, num(r["beta"][a]), num(r["se"][a]),
                              num(r["t"][a]), num(r["p"][a])]))
    return rows + [",,,,,", "End of output: linear_reg_forward_select,,,,,"]


def logistic_table(names, x, y, w, y_name, r, weighted):
    """The report of logistic_reg_forward_select, as call-file rows."""
    s = len(r["selected"])
    rows = ["logisticRegModel->*,,,,,", ",,,,,",
            "Summary of Logistic Regression Forward Selection,,,,,", ",,,,,",
            "Step,Variable Selected,Score Chi-Square,P Value,,"]
    for i, (j, sc, pv) in enumerate(r["steps"]):
        rows.append(",".join([str(i + 1), names[j], num(sc), num(pv), "", ""]))
    n, k, ll, ll0 = r["n"], s + 1, r["ll"], r["ll0"]
    n1 = sum(1 for v in y if v == 1)
    w1 = sum(w[i] for i in range(n) if y[i] == 1)
    w0 = sum(w[i] for i in range(n) if y[i] == 0)
    tw = (lambda v: "," + num(mp.mpf(v))) if weighted else (lambda v: ",")
    rows += [",,,,,", "Model Performance,,,,,", ",,,,,",
             "%s,Total Frequency%s,,," % (y_name, ",Total Weight" if weighted else ","),
             "ALL,%d%s,,," % (n, tw(w0 + w1)), "1,%d%s,,," % (n1, tw(w1)),
             "0,%d%s,,," % (n - n1, tw(w0)), "Probability Modeled is for %s,1,,,," % y_name,
             "Number of Parameters,%d,,,," % k, ",,,,,", ",Intercept Only,Full Model,,,",
             "AIC,%s,%s,,," % (num(2 - 2 * ll0), num(2 * k - 2 * ll)),
             "SC,%s,%s,,," % (num(mp.log(n) - 2 * ll0), num(k * mp.log(n) - 2 * ll)),
             "-2LogL,%s,%s,,," % (num(-2 * ll0), num(-2 * ll))]
    rs = 1 - mp.exp(2 * (ll0 - ll) / n)
    rows += ["R-Square,,%s,,," % num(rs),
             "Max-rescaled R-Square,,%s,,," % num(rs / (1 - mp.exp(2 * ll0 / n))), ",,,,,"]
    prob = []
    for i in range(n):
        eta = r["b"][s] + sum(r["b"][a] * x[r["selected"][a]][i] for a in range(s))
        prob.append(1 / (mp.exp(-eta) + 1))
    # Association counts records, not weights, over all pairs of an event and a non-event.
    conc = disc = tied = 0
    for i in range(n):
        for m in range(n):
            if y[i] == 1 and y[m] == 0:
                if prob[i] > prob[m]:
                    conc += 1
                elif prob[i] < prob[m]:
                    disc += 1
                else:
                    tied += 1
    pairs = mp.mpf(conc + disc + tied)
    gamma = num((conc - disc) / mp.mpf(conc + disc)) if conc + disc else "nan"
    rows += ["%%Concordant,%s,Somers' D,%s,," % (num(conc / pairs), num((conc - disc) / pairs)),
             "%%Discordant,%s,Gamma,%s,," % (num(disc / pairs), gamma),
             "%%Tied,%s,Tau-a,%s,," % (num(tied / pairs),
                                       num((conc - disc) / mp.mpf(n * (n - 1) / 2))),
             "#Pairs,%d,c,%s,," % (pairs, num((conc + mp.mpf(tied) / 2) / pairs)), ",,,,,",
             "Model Parameter Estimates,,,,,", ",,,,,",
             "#,Variable,Estimate,Standard Error,Wald Chi-Square,P Value"]
    for row, a in enumerate([s] + list(range(s))):
        name = "Intercept" if a == s else names[r["selected"][a]]
        rows.append(",".join([str(row), name, num(r["b"][a]), num(r["se"][a]),
                              num(r["wald"][a]), num(r["p"][a])]))
    return rows + [",,,,,", "End of output: logistic_reg_forward_select,,,,,"]


def case(call, rows):
    print(call)
    print("----")
    print("\n".join(rows))
    print()


# The data of the call file: a copy of a, two columns that carry y, one noise.
names = ["a", "b", "c", "d", "copy_a"]
a = [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12]
b = [3, 1, 4, 1, 5, 9, 2, 6, 5, 3, 5, 8]
c = [2, 7, 1, 8, 2, 8, 1, 8, 2, 8, 4, 5]
d = [0.5, -1, 0.25, 2, -0.5, 1, 0, -2, 1.5, -1.5, 0.75, -0.25]
x = [a, b, c, d, a[:]]
# y = 1 + 2 a - 1.5 b plus a disturbance 0.3, -0.2, 0.1, 0.4, -0.5, 0.2,
# -0.1, 0.3, -0.4, 0.1, 0.2, -0.3 that does not lie in the columns.
y = [-1.2, 3.3, 1.1, 7.9, 3.0, -0.3, 11.9, 8.3, 11.1, 16.6, 15.7, 12.7]
ones = [1] * 12
wts = [1, 2, 0, 1, 3, 1, 2, 1, 1, 0.5, 2, 1]

yb = [0, 1, 0, 0, 1, 1, 0, 1, 0, 0, 1, 1]
L = lambda *a: linear_table(names, linear_forward(x, *a))
G = lambda yy, ww, *a: logistic_table(names, x, yb, ww, "bad", logistic_forward(x, yb, ww, *a),
                                      ww is wts)
case("linear_reg_forward_select(x, y, 0.05, 10)", L(y, ones, 0.05, 10))
case('linear_reg_forward_select(x, y, 0.05, 10, "d")', L(y, ones, 0.05, 10, (3,)))
case("linear_reg_forward_select(x, y, 0.05, 1)", L(y, ones, 0.05, 1))
case("linear_reg_forward_select(x, y, 0.05, 10, , w)", L(y, wts, 0.05, 10))
case('linear_reg_forward_select(x, y, 1, 10, "a")', L(y, ones, 1, 10, (0,)))
case("linear_reg_forward_select(x, y, 0.0000001, 10)", L(y, ones, 1e-7, 10))
case("logistic_reg_forward_select(x, yb, 0.5, 10)", G(yb, ones, 0.5, 10))
case('logistic_reg_forward_select(x, yb, 0.5, 10, "d")', G(yb, ones, 0.5, 10, (3,)))
case("logistic_reg_forward_select(x, yb, 0.5, 10, , w)", G(yb, wts, 0.5, 10))
case('logistic_reg_forward_select(x, yb, 1, 10, "a")', G(yb, ones, 1, 10, (0,)))
case("logistic_reg_forward_select(x, yb, 0.001, 10)", G(yb, ones, 0.001, 10))
