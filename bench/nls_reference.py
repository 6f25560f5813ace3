#!/usr/bin/python3
"""Independent values for the least-squares fits of tests/calls/optimisation/nls_solver.test.

MINPACK's lmdif in its Fortran original, through scipy.optimize.leastsq, with
the settings of the fit: factor 1, ftol = xtol = gtol = epsfcn = 1e-8, maxfev
1000. Standard errors by the rule of the report: J is the m by n array that
lmdif leaves in fjac (scipy hands it back transposed), taken as it stands,
and se = sqrt(diag(inv(J'J))) * RMSE. Published problems with certified values
and starts: Misra1a, DanWood and MGH09 of the NIST StRD nonlinear suite.

Prints the expected tables, as CSV rows, for a person to put in the call file,
and the distance of each estimate from its certified value.
Run with Debian's Python: /usr/bin/python3 bench/nls_reference.py
"""
import numpy as np
from scipy.optimize import leastsq

SETTINGS = dict(full_output=True, factor=1, ftol=1e-8, xtol=1e-8, gtol=1e-8, epsfcn=1e-8,
                maxfev=1000)

PROBLEMS = {
    'Misra1a': dict(
        f=lambda b, x: b[0] * (1 - np.exp(-b[1] * x)),
        x=[77.6, 114.9, 141.1, 190.8, 239.9, 289.0, 332.8, 378.4, 434.8, 477.3, 536.8, 593.1,
           689.1, 760.0],
        y=[10.07, 14.73, 17.94, 23.93, 29.61, 35.18, 40.02, 44.82, 50.76, 55.05, 61.01, 66.40,
           75.47, 81.78],
        starts=[[500, 1e-4], [250, 5e-4]],
        certified=[2.3894212918E+02, 5.5015643181E-04],
        certified_se=[2.7070075241E+00, 7.2668688436E-06]),
    'DanWood': dict(
        f=lambda b, x: b[0] * x ** b[1],
        x=[1.309, 1.471, 1.490, 1.565, 1.611, 1.680],
        y=[2.138, 3.421, 3.597, 4.340, 4.882, 5.660],
        starts=[[1, 5], [0.7, 4]],
        certified=[7.6886226176E-01, 3.8604055871E+00],
        certified_se=[1.8281973860E-02, 5.1726610913E-02]),
    'MGH09': dict(
        f=lambda b, x: b[0] * (x ** 2 + x * b[1]) / (x ** 2 + x * b[2] + b[3]),
        x=[4, 2, 1, 0.5, 0.25, 0.167, 0.125, 0.1, 0.0833, 0.0714, 0.0625],
        y=[1.957E-01, 1.947E-01, 1.735E-01, 1.600E-01, 8.440E-02, 6.270E-02, 4.560E-02,
           3.420E-02, 3.230E-02, 2.350E-02, 2.460E-02],
        starts=[[25, 39, 41.5, 39], [0.25, 0.39, 0.415, 0.39]],
        certified=[1.9280693458E-01, 1.9128232873E-01, 1.2305650693E-01, 1.3606233068E-01],
        certified_se=[1.1435312227E-02, 1.9633220911E-01, 8.0842031232E-02, 9.0025542308E-02]),
}


def fit(f, x, y, start, weight=None, box=None):
    """lmdif on sqrt(w) (f - y); outside the box, the residuals of the start."""
    x = np.asarray(x, float)
    y = np.asarray(y, float)
    root_w = np.sqrt(np.ones_like(y) if weight is None else np.asarray(weight, float))
    start = np.asarray(start, float)

    def raw(b):
        return root_w * (f(b, x) - y)
    at_start = raw(start)

    def residuals(b):
        if box is not None and (np.any(b < box[0]) or np.any(b > box[1])):
            return at_start
        return raw(b)
    b, _, info, _, ier = leastsq(residuals, start, **SETTINGS)
    sse = float(np.sum(raw(b) ** 2))
    m, n = len(y), len(b)
    rmse = np.sqrt(sse / (m - n)) if m > n else float('inf')
    J = info['fjac'].T
    se = np.sqrt(np.diag(np.linalg.inv(J.T @ J))) * rmse
    return dict(b=b, sse=sse, rmse=rmse, se=se, pred=f(b, x), ier=ier, nfev=info['nfev'])


def criterion(r):
    if r['nfev'] >= 1000:
        return 'MaxIterations'
    return 'None' if r['ier'] == 6 else 'StationaryFunctionValue'


def summary(r, names, n):
    rows = [f'Number of Records,{n},,', f'Number of Parameters,{len(names)},,',
            f'SSE,{r["sse"]!r},,', f'RMSE,{r["rmse"]!r},,', ',,,', 'Parameter Estimates,,,',
            '#,Variable,Estimate,Standard Error']
    rows += [f'{i + 1},{nm},{b!r},{s!r}' for i, (nm, b, s) in enumerate(zip(names, r['b'], r['se']))]
    return rows


def main():
    for name, p in PROBLEMS.items():
        names = [f'b{i + 1}' for i in range(len(p['certified']))]
        for start in p['starts']:
            r = fit(p['f'], p['x'], p['y'], start)
            digits = [-np.log10(abs(b / c - 1)) for b, c in zip(r['b'], p['certified'])]
            print(f'# {name} from {start}: {criterion(r)}, {r["nfev"]} evaluations; '
                  f'digits of the certified values reached: {np.round(digits, 1)}; '
                  f'standard errors over the certified ones: '
                  f'{np.round(r["se"] / p["certified_se"], 4)}')
            print('\n'.join(summary(r, names, len(p['y']))))
            print()

    # DanWood from its second start, laid out whole, beside a column z that the
    # expression leaves alone.
    p = PROBLEMS['DanWood']
    r = fit(p['f'], p['x'], p['y'], [0.7, 4])
    print('# DanWood, whole table')
    for i, (x, y, f) in enumerate(zip(p['x'], p['y'], r['pred'])):
        print(f'{i + 1},{x!r},{i + 1},{y!r},{f!r}')
    print()

    # Weights 1, 2, 3, 1, 2, 3 against rows repeated as often.
    w = [1, 2, 3, 1, 2, 3]
    rep_x = np.repeat(p['x'], w)
    rep_y = np.repeat(p['y'], w)
    r = fit(p['f'], rep_x, rep_y, [0.7, 4])
    print(f"# DanWood with rows repeated {w}: estimates {list(map(repr, r['b']))}, SSE {r['sse']!r}")
    rw = fit(p['f'], p['x'], p['y'], [0.7, 4], weight=w)
    print(f'#   the weighted fit itself: {rw["b"]!r} {rw["sse"]!r} se {rw["se"]!r} rmse {rw["rmse"]!r}')

    # A box that binds: b2 at most 3.8 from (0.7, 3.5).
    box = (np.array([0.5, 3.0]), np.array([1.0, 3.8]))
    r = fit(p['f'], p['x'], p['y'], [0.7, 3.5], box=box)
    print(f'# DanWood in the box b1 in [0.5, 1], b2 in [3, 3.8] from (0.7, 3.5): {criterion(r)}')
    print('\n'.join(summary(r, ['b1', 'b2'], 6)))
    print()

    # The evaluation limit: a / (1 + b x) on a spike has its optimum at b = infinity.
    r = fit(lambda b, x: b[0] / (1 + b[1] * x), [0, 1, 2, 3], [1, 0, 0, 0], [1, 1])
    print(f'# spike: {criterion(r)}, {r["nfev"]} evaluations')
    print('\n'.join(summary(r, ['a', 'b'], 4)))


if __name__ == '__main__':
    main()
