#!/usr/bin/python3
"""Tables of 2**(j/64) (double) and 2**(j/128) (single) as pairs hi, lo.

Double: hi is cut to 38 bits (15 low bits zero) and lo is what is left, 2**(j/64) - hi, so lo >= 0 and hi + lo
carries the power to 2**-91. The kernel adds lo before hi, so the last addition alone rounds visibly.

Single: hi is the nearest single and lo the relative remainder (2**(j/128) - hi) / hi: the kernel adds lo to
the reduced argument, before the polynomial's value is multiplied by hi. The table is also kept by
columns, for look-ups in tables held in registers.
"""
from gmpy2 import exp2, mpfr

from table_file import Table, by_columns, clear_low_bits, main, to_double, to_float


def double_row(j):
    power = exp2(mpfr(j) / 64)
    hi = clear_low_bits(power, 15, 53)
    return hi, to_double(power - hi)


def single_row(j):
    power = exp2(mpfr(j) / 128)
    hi = to_float(power)
    return hi, to_float((power - hi) / hi)


single_rows = [single_row(j) for j in range(128)]
main("exponential", [
    Table("exp_double", "double", "powers", [double_row(j) for j in range(64)]),
    Table("exp_single", "float", "powers", single_rows),
    Table("exp_single", "float", "powers_columns", by_columns(single_rows, "float")),
])
