#!/usr/bin/python3
"""Tables of short reciprocals and their logarithms for Ln and Log10.

A kernel writes a mantissa y in [1, 2) as yh + yl, finds the row k whose centre m = 1 + k/size is nearest, and
needs z = y * r - 1 (or - C in Log10, where the reciprocal column holds r * C) without losing a bit. So r is
short enough for yh * r to be exact, and T = -log(r) is taken of that short r, as a pair hi, lo. hi ends early
enough that the head s = (yh * r - 1) + (n * log2hi + T.hi) is exact for every exponent n; what is cut off
sits in T.lo.

  kernel         yh bits  r or r*C                  product  T.hi                 head s
  Ln double      21       multiple of 2**-23        44 bits  28 low bits zero     multiple of 2**-43, < 2**10
  Log10 double   22       multiple of 2**-23        44 bits  multiple of 2**-43   multiple of 2**-44, < 2**9
  Ln single      10       multiple of 2**-8         18 bits  multiple of 2**-14   multiple of 2**-17, < 2**7
  Log10 single   9        7 significant bits        16 bits  15 low bits zero     multiple of 2**-18, < 2**6

In Log10 the rows with r = 1 and r = 1/2 have r * C = 111/256 and 111/512, seven bits, so that z is exact even
without the split. In Log10 single every row has seven bits, and with |z| < 2**-7 (2**-8 below r * C = 1/4) z
is exact in all rows.

Where a kernel raises n by one from mantissa 1.5 upwards, T drops by log(2) at the row of 1.5 and n = 0 covers
0.75 <= x < 1.5, which leaves no cancellation around 1. The two others need no jump: their T.hi are multiples
of one power of two, so that -log2hi + T.hi is exact.

The single-precision tables are also kept by columns, for look-ups in tables held in registers.
"""
import gmpy2
from gmpy2 import log, log10, mpfr

from table_file import Table, by_columns, clear_low_bits, main, multiple, to_double, to_float

C = mpfr(111) / 256  # a short log10(e)


def minus_log(r, logarithm, raised):
    """-log(r), less log(2) where n has been raised by one."""
    return logarithm(1 / (2 * r if raised else r))


def ln_double_row(k):
    r = multiple(1 / (1 + mpfr(k) / 512), -23)
    t = minus_log(r, log, raised=k >= 256)
    hi = clear_low_bits(t, 28, 53)
    return r, r, hi, to_double(t - hi)


def log10_double_row(k):
    scaled = multiple(C / (1 + mpfr(k) / 512), -23)
    t = minus_log(scaled / C, log10, raised=False)
    hi = multiple(t, -43)
    return scaled, scaled, hi, to_double(t - hi)


def ln_single_row(k):
    r = multiple(1 / (1 + mpfr(k) / 64), -8)
    t = minus_log(r, log, raised=False)
    hi = multiple(t, -14, gmpy2.trunc)
    return hi, to_float(t - hi), r, mpfr(0)


def log10_single_row(k):
    scaled = mpfr(C / (1 + mpfr(k) / 128), 7)
    t = minus_log(scaled / C, log10, raised=k >= 64)
    hi = clear_low_bits(t, 15, 24)
    return scaled, scaled, hi, to_float(t - hi)


ln_single_rows = [ln_single_row(k) for k in range(65)]
log10_single_rows = [log10_single_row(k) for k in range(129)]
main("logarithm", [
    Table("ln_double", "double", "rows", [ln_double_row(k) for k in range(513)], declared=520),
    Table("log10_double", "double", "rows", [log10_double_row(k) for k in range(513)], declared=520),
    Table("ln_single", "float", "rows", ln_single_rows),
    Table("ln_single", "float", "columns", by_columns(ln_single_rows, "float")),
    Table("log10_single", "float", "rows", log10_single_rows),
    Table("log10_single", "float", "columns", by_columns(log10_single_rows, "float")),
])
