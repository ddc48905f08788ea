#!/usr/bin/python3
"""Tables of the kernels in two doubles: a row holds values as pairs hi, lo that carry them to 2**-106.

powers: 2**(j/64). sines: sine and cosine of pi j/256. arc_tangents: that of j/256.

logarithms: c, about 1/m for the mantissas m whose upper eight bits are i, with m halved from row 106 on, and -ln(c) as
hi, lo. c is a multiple of 2**-9, so that the head of c m - 1 is exact; around 1 it is 1. hi is a multiple of 2**-40:
its sum with a multiple of a ln 2 that is cut likewise is exact.

two_over_pi: the bits of 2/pi in words of 64, as many as the largest extended number needs.
"""
import gmpy2
from gmpy2 import atan, const_pi, cos, exp2, log, mpfr, sin

from table_file import Table, main, multiple, to_double

gmpy2.get_context().precision = 17000  # 2/pi to the last word
PI = const_pi()
WORDS = 262


def in_two(x):
    hi = to_double(x)
    return hi, to_double(x - hi)


def exact_zero(x):
    return mpfr(0) if abs(x) < mpfr(2) ** -100 else x


def logarithm_row(i):
    m = (1 + (mpfr(i) + 0.5) / 256) / (2 if i >= 106 else 1)
    c = mpfr(1) if i in (0, 255) else multiple(1 / m, -9)
    value = -log(c)
    hi = multiple(value, -40)
    return c, hi, to_double(value - hi), mpfr(0)


def words_of_two_over_pi():
    bits = int(gmpy2.floor(2 / PI * mpfr(2) ** (64 * WORDS)))
    return [f"{bits >> 64 * (WORDS - 1 - i) & (1 << 64) - 1:#x}u" for i in range(WORDS)]


angles = [PI * j / 256 for j in range(512)]
words = words_of_two_over_pi()
with gmpy2.local_context(precision=400):
    main("extended", [
        Table("extended", "double", "powers", [in_two(exp2(mpfr(j) / 64)) for j in range(64)]),
        Table("extended", "double", "sines",
              [(*in_two(exact_zero(sin(angle))), *in_two(exact_zero(cos(angle)))) for angle in angles]),
        Table("extended", "double", "logarithms", [logarithm_row(i) for i in range(256)]),
        Table("extended", "double", "arc_tangents", [in_two(atan(mpfr(j) / 256)) for j in range(257)]),
        Table("extended", "uint64_t", "two_over_pi", words),
    ])
