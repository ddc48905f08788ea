#!/usr/bin/python3
"""Tables of the scalar functions that come with the random streams.

Logarithm: row k serves the mantissas from 1 + k/256 to 1 + (k + 1)/256. Its reciprocal r is 1 over their middle,
as a multiple of 2**-16, so that its product with the leading 21 bits of a mantissa is exact; the logarithm is
-log(r), as a multiple of 2**-42 and the rest.

Square root: the quadratics for 1 / sqrt of square_root.py, and sqrt(2) and 1 for the two parities of the exponent
field.
"""
from gmpy2 import log, mpfr, sqrt

from square_root import half, quadratics
from table_file import Table, main, multiple, to_double


def logarithm_row(r):
    head = multiple(-log(r), -42)
    return head, to_double(-log(r) - head)


reciprocals = [multiple(1 / (1 + (k + half) / 256), -16) for k in range(256)]
dwA0, dwA1, dwA2 = quadratics(half, 128, exact_at_one=True)
main("stream_scalars", [
    Table("scalar_logarithm", "double", "reciprocals", reciprocals),
    Table("scalar_logarithm", "double", "logarithms", [logarithm_row(r) for r in reciprocals]),
    Table("", "double", "dwA0", dwA0),
    Table("", "double", "dwA1", dwA1),
    Table("", "double", "dwA2", dwA2),
    Table("", "double", "dbSqrt", [to_double(sqrt(mpfr(2))), mpfr(1)]),
], room="streams")
