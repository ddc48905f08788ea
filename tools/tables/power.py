#!/usr/bin/python3
"""Tables and polynomials of Pow in single precision, which works in double: log2(x) to 2**-46 of itself, and 2**p.

Logarithm: the floats from 0.695 to 1.39 in 32 intervals of equal width in their bit patterns, the one around 1 from
1 - 1/128 to 1 + 1/64. `reciprocal` is about 1/c for the middle c of the interval, a multiple of 2**-28, so that its
product with a float is exact, and `minus_log` is -log2 of it; around 1 they are 1 and 0. log_polynomial is
log2(1 + z)/z for |z| up to 1/64, interpolated at Chebyshev's nodes.

Power: `powers` holds 2**(j/32); power_polynomial is (2**r - 1)/r for |r| up to 1/64.
"""
from gmpy2 import const_log2, exp2, expm1, log1p, log2, mpfr

from table_file import Table, interpolate, main, multiple, to_double

FIRST, WIDTH, ONE = 0x3F320000, 0x40000, 0x3F800000


def value(pattern):
    below_one = pattern < ONE
    return (1 + mpfr(pattern - ONE + (0x800000 if below_one else 0)) / 2**23) / (2 if below_one else 1)


def reciprocal(j):
    low, high = value(FIRST + j * WIDTH), value(FIRST + (j + 1) * WIDTH)
    return mpfr(1) if low < 1 < high else multiple(2 / (low + high), -28)


def coefficients(f, degree):
    limit = mpfr(1) / 64
    return [to_double(c) for c in interpolate(f, -limit, limit, degree)]


reciprocals = [reciprocal(j) for j in range(32)]
main("power", [
    Table("pow_single", "double", "reciprocal", reciprocals),
    Table("pow_single", "double", "minus_log", [to_double(log2(1 / r)) for r in reciprocals]),
    Table("pow_single", "double", "powers", [to_double(exp2(mpfr(j) / 32)) for j in range(32)]),
    Table("pow_single", "double", "log_polynomial", coefficients(lambda z: log1p(z) / const_log2() / z, 6)),
    Table("pow_single", "double", "power_polynomial", coefficients(lambda r: expm1(r * const_log2()) / r, 4)),
])
