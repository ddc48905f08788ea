#!/usr/bin/python3
"""Tables of the inverse functions.

directions: the half circle of angles in steps that are fine where the angle is small. Row 2k is the direction (a, c)
of slope c/a in [0, inf] and its angle hi + lo; row 2k + 1 is its mirror image (-a, c). Slopes are 0, then 2**-5 to 30
with four significant bits, then infinity, so that products with a number of 49 bits are exact. Turned back by the
direction of the nearest row, a point has the slope t with |t| at most 1/31.

The polynomials p are fitted so that u + u * z * p(z), z = u**2, is the function of u; the error is relative to u:
  arc tangent on |t| <= 1/31 for doubles and on |t| <= tan(pi/8) for floats, arc sine on |u| <= 1/2.
In double the first coefficient of the arc sine is given less 1/8, whose product with u z is exact.

short_logarithms: row k is r, about 1/(1 + k/16), and -ln r.
"""
import gmpy2
from gmpy2 import asin, atan, const_pi, log, mpfr, sqrt

from minimax import minimax
from table_file import Table, main, to_double

PI = const_pi()


def direction_rows():
    finite = [mpfr(0)] + [mpfr(2) ** (k // 8 - 5) * (1 + mpfr(k % 8) / 8) for k in range(80)]
    rows = []
    for a, c in [(mpfr(1), c) for c in finite] + [(mpfr(0), mpfr(1))]:
        for sign in (1, -1):
            angle = gmpy2.atan2(c, sign * a)
            head = to_double(angle)
            rows.append((sign * a, c, head, to_double(angle - head)))
    return rows


def odd_function(f, limit, terms, exact_part=0):
    def inner(z):
        u = sqrt(z)
        return (f(u) / u - 1) / z
    coefficients, error = minimax(inner, lambda z: z, 0, mpfr(limit) ** 2, terms)
    print(f"{f.__name__}, {terms} terms: error 2**{float(gmpy2.log2(error)):.1f}")
    coefficients[0] -= exact_part
    return [to_double(c) for c in coefficients]


def short_logarithm_row(k):
    r = to_double(1 / (1 + mpfr(k) / 16))
    return r, to_double(-log(r))


main("inverse", [
    Table("arc_tangent", "double", "directions", direction_rows()),
    Table("arc_tangent", "double", "polynomial_for_double", odd_function(atan, mpfr(1) / 31, 4)),
    Table("arc_tangent", "double", "polynomial_for_single", odd_function(atan, sqrt(mpfr(2)) - 1, 5)),
    Table("arc_sine", "double", "polynomial_for_double", odd_function(asin, mpfr(1) / 2, 14, mpfr(1) / 8)),
    Table("arc_sine", "double", "polynomial_for_single", odd_function(asin, mpfr(1) / 2, 6)),
    Table("inverse_hyperbolic", "double", "short_logarithms", [short_logarithm_row(k) for k in range(16)]),
])
