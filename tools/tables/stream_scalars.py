#!/usr/bin/python3
"""Tables of the scalar functions that come with the random streams.

Row k serves the mantissas from 1 + k/256 to 1 + (k + 1)/256. Its reciprocal r is 1 over their middle,
as a multiple of 2**-16, so that its product with the leading 21 bits of a mantissa is exact; the logarithm is
-log(r), as a multiple of 2**-42 and the rest.
"""
from gmpy2 import log, mpfr

from table_file import Table, main, multiple, to_double


def logarithm_row(r):
    head = multiple(-log(r), -42)
    return head, to_double(-log(r) - head)


reciprocals = [multiple(1 / (1 + (k + mpfr(0.5)) / 256), -16) for k in range(256)]
main("stream_scalars", [
    Table("stream_scalars", "double", "reciprocals", reciprocals),
    Table("stream_scalars", "double", "minus_logarithms", [logarithm_row(r) for r in reciprocals]),
], room="streams")
