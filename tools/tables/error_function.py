#!/usr/bin/python3
"""Tables of short polynomials for the error function, its complement and its inverse.

Row j of every table belongs to the node x0 = y - 1, where y is number j of the numbers from 1 on that have `bits`
bits behind the leading one; its polynomial in d = x - x0 interpolates at the Chebyshev points of the x whose y = x + 1
rounds to that of the row.

erf_double:          T.hi, T.lo, c1, ..., c6 with erf(x0 + d) = T / 2**64 + d * 9/8 + d * (c1 + c2 * d + ... + c6 * d**5).
erfc_double:         g, w0, ..., w6 with exp(x**2) * erfc(x) = g * (1 + w0 + w1 * d + ... + w6 * d**6) and g of 15
                     bits, so that its product with the 38 bits of an entry of exp_double is exact.
erf_inverse_double:  g, c0, ..., c6 with erfinv(x) / x = g + (c0 + c1 * d + ... + c6 * d**6) at w0 + d, where
                     w = -ln(1 - x**2), and g of 26 bits.
The tables of singles hold c0, ..., c3 of plain cubic polynomials of the same three functions, in double.
"""
import gmpy2
from gmpy2 import erf, erfc, exp, expm1, mpfr, sqrt

from table_file import Table, interpolate, main, to_double

pi = gmpy2.const_pi()
SCALE = 2**64


def rows(row, bits, last):
    """row(x0, low, high) for every node up to `last`; low and high bound d."""
    result = []
    for j in range(32 << bits):
        octave, step = divmod(j, 1 << bits)
        spacing = mpfr(2) ** (octave - bits)
        x0 = mpfr(2) ** octave + step * spacing - 1
        low = 0 if j == 0 else -spacing / (2 if step else 4)
        result.append(row(x0, low, spacing / 2))
        if x0 >= last:
            return result


def scaled_erfc(x):
    return exp(x * x) * erfc(x)


def inverse_factor(w):
    """erfinv(x) / x for w = -ln(1 - x**2), by Newton's iteration from below, where it converges steadily."""
    if not w:
        return sqrt(pi) / 2
    x = sqrt(-expm1(-w))
    z, step = x / 2, mpfr(1)
    while abs(step) > z * mpfr(2) ** -150:
        step = (x - erf(z)) * exp(z * z) * sqrt(pi) / 2
        z += step
    return z / x


def leading(x, bits):
    unit = mpfr(2) ** (gmpy2.get_exp(x) - bits)
    return gmpy2.rint_round(x / unit) * unit


def erf_row(x0, low, high):
    value = erf(x0)
    hi = to_double(value)
    slope = interpolate(lambda d: (erf(x0 + d) - value - d * 9 / 8) / d, low, high, 5)
    return tuple(to_double(c) for c in [SCALE * hi, SCALE * (value - hi), *slope])


def erfc_row(x0, low, high):
    g = leading(scaled_erfc(x0), 15)
    return tuple(to_double(c) for c in [g, *interpolate(lambda d: scaled_erfc(x0 + d) / g - 1, low, high, 6)])


def inverse_row(w0, low, high):
    g = leading(inverse_factor(w0), 26)
    return tuple(to_double(c) for c in [g, *interpolate(lambda d: inverse_factor(w0 + d) - g, low, high, 6)])


def cubic_row(f):
    return lambda x0, low, high: tuple(to_double(c) for c in interpolate(lambda d: f(x0 + d), low, high, 3))


def odd_cubic_row(x0, low, high):
    """Of erf; in row 0 without constant, as small results keep their relative accuracy."""
    if x0:
        return cubic_row(erf)(x0, low, high)
    return to_double(mpfr(0)), *(to_double(c) for c in interpolate(lambda d: erf(d) / d, low, high, 2))


main("error_function", [
    Table("erf_double", "double", "rows", rows(erf_row, 7, 6)),
    Table("erfc_double", "double", "rows", rows(erfc_row, 7, 27.25)),
    Table("erf_inverse_double", "double", "rows", rows(inverse_row, 6, 36.75)),
    Table("erf_single", "double", "rows", rows(odd_cubic_row, 6, 4)),
    Table("erfc_single", "double", "rows", rows(cubic_row(scaled_erfc), 6, 10.25)),
    Table("erf_inverse_single", "double", "rows", rows(cubic_row(inverse_factor), 6, 16.75)),
])
