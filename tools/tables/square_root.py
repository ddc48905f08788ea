#!/usr/bin/python3
"""Quadratics A2 * m**2 + A1 * m + A0 for the scalar square roots, one for each of equal parts of [1, 2].

Double: 1 / sqrt(m) in 128 parts, to 2**-27.7; the kernel's Newton step squares that. Single: sqrt(m) itself
in 64 parts, to 2**-27.0, which is rounded to single once.

Each is the minimax polynomial of the relative error e(m) = p(m) * m**s - 1, with s = 1/2 for 1 / sqrt and s =
-1/2 for sqrt, by Remez's exchange. e'(m) = 0 is a quadratic equation, so the exchange needs no search: its
references are the two ends and the two roots. The coefficients are then rounded, which costs less than
2**-50.

The first row of 1 / sqrt is bound to p(1) = 1, without rounding in its evaluation, so that the square roots
of powers of four are exact; its error is 2**-27.4.
"""
from gmpy2 import mpfr, sqrt

from table_file import Table, main, multiple


def solve(matrix, right):
    """Gaussian elimination; the first column is never zero in the systems solved here."""
    if not matrix:
        return []
    pivot, rest = matrix[0], matrix[1:]
    ratios = [row[0] / pivot[0] for row in rest]
    tail = solve([[a - ratio * b for a, b in zip(row[1:], pivot[1:])] for row, ratio in zip(rest, ratios)],
                 [value - ratio * right[0] for value, ratio in zip(right[1:], ratios)])
    return [(right[0] - sum(a * x for a, x in zip(pivot[1:], tail))) / pivot[0], *tail]


def minimax_quadratic(s, low, high, exact_at_low):
    """[A0, A1, A2] and the largest relative error on [low, high]."""
    references = [low, (3 * low + high) / 4, (low + 3 * high) / 4, high]
    signs = [0 if exact_at_low else 1, -1, 1, -1]
    for _ in range(8):  # converges quadratically; three rounds already give 30 digits
        *coefficients, error = solve([[1, m, m * m, sign * m ** -s] for m, sign in zip(references, signs)],
                                     [m ** -s for m in references])
        c, b, a = [(degree + s) * coefficient for degree, coefficient in enumerate(coefficients)]
        middle, spread = -b / (2 * a), sqrt(b * b - 4 * a * c) / (2 * abs(a))
        references = [low, middle - spread, middle + spread, high]
    return coefficients, abs(error)


def quadratics(s, parts, exact_at_one=False):
    """The columns A0, A1, A2, of multiples of 2**-52: sums of them round to nothing at m = 1."""
    rows = []
    for k in range(parts):
        exact = exact_at_one and k == 0
        coefficients, error = minimax_quadratic(s, 1 + mpfr(k) / parts, 1 + mpfr(k + 1) / parts, exact)
        a0, a1, a2 = [multiple(coefficient, -52) for coefficient in coefficients]
        rows.append((1 - a1 - a2 if exact else a0, a1, a2))
    return list(zip(*rows))


half = mpfr(1) / 2


def tables(namespace, columns):
    return [Table(namespace, "double", f"A{k}", columns[k]) for k in (2, 1, 0)]


main("square_root", tables("sqrt_double", quadratics(half, 128, exact_at_one=True))
     + tables("sqrt_single", quadratics(-half, 64)))
