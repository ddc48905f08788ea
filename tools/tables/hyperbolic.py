#!/usr/bin/python3
"""Tables of the hyperbolic functions, pairs hi, lo of the nearest double and the nearest double to what is left.

Halves: e**a / 2 and e**-a / 2 at a = j ln2/64, from which the kernels add up cosh(a) and sinh(a).
Tangents: tanh(j/16), up to the first node past which tanh rounds to 1.
"""
from gmpy2 import exp2, mpfr, tanh

from table_file import Table, main, to_double


def pair(x):
    hi = to_double(x)
    return hi, to_double(x - hi)


def halves_row(j):
    power = exp2(mpfr(j) / 64)
    return pair(power / 2) + pair(1 / (2 * power))


main("hyperbolic", [
    Table("hyperbolic_double", "double", "halves", [halves_row(j) for j in range(64)]),
    Table("hyperbolic_double", "double", "tangents", [pair(tanh(mpfr(j) / 16)) for j in range(16 * 20 + 1)]),
])
