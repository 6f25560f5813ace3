#!/usr/bin/python3
"""Differential evolution runs predicted from their seed, outside the library.

An MT19937 that is not the library's (numpy's, seeded the legacy way, which is
init_genrand) draws u = (x + 0.5) 2^-32 member by member, coordinate by
coordinate; the best member, a tie going to the later one, is what a run of
one generation reports. A few whole generations of the local-to-best strategy
follow the draws in their stated order: the dither, then per target the five
urn draws, the start coordinate, the crossover draws and the repairs. Prints
the expected rows of the call-file cases. Needs Debian's python3-numpy: run
with /usr/bin/python3.
"""
import math

import numpy as np


def first_population(seed, lower, upper, cost, np_size=50):
    bits = np.random.MT19937()
    bits._legacy_seeding(seed)
    raw = iter(bits.random_raw(np_size * len(lower)))
    best, best_cost = None, None
    for i in range(np_size):
        member = [lo + (int(next(raw)) + 0.5) * 2.3283064365386963e-10 * (hi - lo)
                  for lo, hi in zip(lower, upper)]
        c = cost(member)
        if i == 0 or best_cost >= c:
            best, best_cost = member, c
    return best, best_cost


class Draws:
    def __init__(self, seed):
        self.bits = np.random.MT19937()
        self.bits._legacy_seeding(seed)

    def __call__(self):
        return (int(self.bits.random_raw()) + 0.5) * 2.3283064365386963e-10


def local_to_best(seed, lower, upper, cost, generations, np_size=50, F=0.8, CR=0.9):
    """The records of each generation: (best cost, best member) before it runs."""
    u = Draws(seed)
    D = len(lower)
    old, old_c = [], []
    for i in range(np_size):
        old.append([lo + u() * (hi - lo) for lo, hi in zip(lower, upper)])
        old_c.append(cost(old[-1]))
        if i == 0 or best_c >= old_c[-1]:
            best, best_c = list(old[-1]), old_c[-1]
    records = []
    for g in range(generations):
        records.append((best_c, list(best)))
        best_it = list(best)
        u()  # the dither, drawn whatever the strategy
        new, new_c = [], []
        for i in range(np_size):
            tmp = list(old[i])
            work, k, pick, urn = list(range(np_size)), np_size, i, []
            for _ in range(5):
                urn.append(work[pick])
                work[pick] = work[k - 1]
                k -= 1
                pick = int(u() * k)
            p2, p3 = old[urn[2]], old[urn[3]]
            j, n = int(u() * D), 0
            while True:
                tmp[j] = tmp[j] + F * (best_it[j] - tmp[j]) + F * (p2[j] - p3[j])
                j = (j + 1) % D
                if not u() < CR:
                    break
                n += 1
                if n == D:
                    break
            for m in range(D):
                if tmp[m] < lower[m]:
                    tmp[m] = lower[m] + u() * (upper[m] - lower[m])
                if tmp[m] > upper[m]:
                    tmp[m] = upper[m] - u() * (upper[m] - lower[m])
            c = cost(tmp)
            if old_c[i] >= c:
                new.append(tmp)
                new_c.append(c)
                if c <= best_c:
                    best, best_c = list(tmp), c
            else:
                new.append(old[i])
                new_c.append(old_c[i])
        old, old_c = new, new_c
    return records


def show(label, values):
    print(label + ": " + ",".join(repr(v) for v in values))


# diff_evol_solver, the default seed 100
best, c = first_population(100, [-2, -1], [2, 3],
                           lambda m: (m[0] - 1) ** 2 + 100 * (m[1] - m[0] ** 2) ** 2)
show("solver", [c] + best)

# diff_evol_nls_solver, seed 7: a exp(b t) to three weighted records
t, v, w = [0, 1, 2], [1, 2.5, 7], [1, 2, 0.5]
model = lambda m, ti: m[0] * math.exp(m[1] * ti)


def sse(m):
    s = 0.0
    for ti, vi, wi in zip(t, v, w):
        s += wi * (vi - model(m, ti)) ** 2
    return s


best, c = first_population(7, [0, -1], [5, 1], sse)
show("nls", [c] + best)
show("nls predicted", [model(best, ti) for ti in t])

# diff_evol_min_solver, seed 3: the sum of (v - m)^2
vs = [1, 4, 6, 9]


def total(m):
    s = 0.0
    for vi in vs:
        s += (vi - m[0]) ** 2
    return s


best, c = first_population(3, [0], [10], total)
show("min", [c] + best)
show("min func", [(vi - best[0]) ** 2 for vi in vs])

# diff_evol_solver, seed 11, eight generations in a narrow box that mutants often leave
records = local_to_best(11, [-0.5, 0.5], [0.5, 2], lambda m: (m[0] - 1) ** 2 + 100 * (m[1] - m[0] ** 2) ** 2, 8)
for g, (c, m) in enumerate(records):
    show("generation %d" % (g + 1), [c] + m)
