#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The polynomials under the logarithms and the sine of the row kernels, by the exchange algorithm (Remez 1934).

Prints each polynomial's coefficients, lowest power first, and the largest relative error that it leaves in the function's result.
"""
from decimal import Decimal as D, getcontext

getcontext().prec = 60
LN2 = D(2).ln()


def solve(rows):
    """Gauss elimination of rows [a ... | b]."""
    n = len(rows)
    for i in range(n):
        pivot = max(range(i, n), key=lambda k: abs(rows[k][i]))
        rows[i], rows[pivot] = rows[pivot], rows[i]
        for k in range(n):
            if k != i:
                factor = rows[k][i] / rows[i][i]
                rows[k] = [a - factor * b for a, b in zip(rows[k], rows[i])]
    return [rows[i][n] / rows[i][i] for i in range(n)]


def minimax(f, weight, a, b, degree, rounds=12, grid=1501):
    """-> (coefficients p, largest |weight (f - p)|) on [a, b]."""
    xs = [a + (b - a) * i / grid for i in range(grid + 1)]
    fs, ws = [f(x) for x in xs], [weight(x) for x in xs]
    n = degree + 2
    at = [1 + (grid - 2) * i // (n - 1) for i in range(n)]
    for _ in range(rounds):
        # weight (f - p) = +-e at the reference points, with alternating signs
        c = solve([[xs[k] ** j for j in range(n - 1)] + [(-1) ** i / ws[k], fs[k]] for i, k in enumerate(at)])[:-1]
        error = [w * (y - sum(cj * x ** j for j, cj in enumerate(c))) for x, y, w in zip(xs, fs, ws)]
        runs, start = [], 0  # the largest error of each run of one sign
        for i in range(1, grid + 2):
            if i > grid or error[i] * error[start] < 0:
                runs.append(max(range(start, i), key=lambda k: abs(error[k])))
                start = i
        while len(runs) > n:
            runs.remove(runs[0] if abs(error[runs[0]]) < abs(error[runs[-1]]) else runs[-1])
        if len(runs) < n or runs == at:
            break
        at = runs
    return c, max(abs(e) for e in error)


def log_tail(w):
    """(ln((1 + z) / (1 - z)) - 2 z) / z^3 with w = z^2."""
    term, total, k = D(1), D(0), 3
    while term > D(10) ** -55:
        total, term, k = total + 2 * term / k, term * w, k + 2
    return total


def sine_series(w, first):
    """(-1)^k w^(k - first) / (2 k + 1)! for k from `first` on, with w = x^2."""
    term, total, k = D(1), D(0), 1
    for k in range(1, first + 1):
        term = -term / (2 * k * (2 * k + 1))
    k = first
    while abs(term) > D(10) ** -55:
        total, k = total + term, k + 1
        term = -term * w / (2 * k * (2 * k + 1))
    return total


def main():
    x_max = D("1.5708")  # a little more than a right angle
    w_max = ((D(2).sqrt() - 1) / (D(2).sqrt() + 1)) ** 2
    for name, result in (
        ("log, single", minimax(log_tail, lambda w: w / 2, w_max / 10**6, w_max, 2)),
        ("log, double", minimax(log_tail, lambda w: w / 2, w_max / 10**6, w_max, 4)),
        ("log of noise", minimax(log_tail, lambda w: w / 2, w_max / 10**6, w_max, 6)),
        ("sine", minimax(lambda w: sine_series(w, 1), lambda w: w / sine_series(w, 0), x_max**2 / 10**6, x_max**2, 7)),
    ):
        c, e = result
        print(f"{name}, degree {len(c) - 1}: error 2^{e.ln() / LN2:.2f}")
        for cj in c:
            print(f"  {float(cj)!r}  {float(cj).hex()}")


if __name__ == "__main__":
    main()
