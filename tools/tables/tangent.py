#!/usr/bin/python3
"""Table of the tangent around the nodes j * pi/32, j of 0 to 31, less its pole in the middle, at j = 16.

Row j stands for F(r) = tan(a + r) + 1/(a + r - pi/2) with a = j * pi/32 and |r| <= pi/64; row 0 for the tangent
itself, as there its smallest arguments need it whole. The pole gone, the next one is at least 16 steps away, so a
short polynomial will do:

  F(r) = T + T_lo + r * (slope + D + A2 * r + ... + A9 * r**8)

interpolated at Chebyshev's nodes. `slope` is a power of two next to F'(0), so that slope * r is exact, and T_lo a
float, as no more of it can matter. In row 0 the polynomial is odd and starts with r; the zeros of its row are signed
so that the kernel's sum keeps the sign of a zero.

Three groups of four columns, each group over all rows: T, T_lo, slope, D; A2 to A5; A6 to A9. They are also kept
by columns, for look-ups in tables held in registers.
"""
from gmpy2 import const_pi, mpfr, tan

from table_file import Table, by_columns, interpolate, main, to_double, to_float

PI = const_pi()
HALF_STEP = PI / 64


def row_of_zero():
    cubic_and_up = interpolate(lambda z: tan(z**0.5) / z**1.5 - 1 / z, 0, HALF_STEP**2, 3)
    odd = [to_double(c) for c in cubic_and_up]
    return [mpfr("-0"), mpfr("-0"), mpfr(1), mpfr(0)] + [c for a in odd for c in (mpfr(0), a)]


def row(j):
    if j == 0:
        return row_of_zero()

    def less_pole(r):
        s = r + (j - 16) * PI / 32
        return tan(s + PI / 2) + 1 / s

    c = [x if abs(x) > mpfr(2) ** -100 else mpfr(0) for x in interpolate(less_pole, -HALF_STEP, HALF_STEP, 9)]
    slope = mpfr(0.5)
    head = to_double(c[0])
    return [head, to_float(c[0] - head), slope, to_double(c[1] - slope)] + [to_double(x) for x in c[2:]]


rows = [row(j) for j in range(32)]
main("tangent", [
    Table("circular", "double", "tangent_rows", [tuple(r[k:k + 4]) for k in (0, 4, 8) for r in rows]),
    Table("circular", "double", "tangent_columns", by_columns(rows, "double")),
])
