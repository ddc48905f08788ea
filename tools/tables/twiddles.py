#!/usr/bin/python3
"""The first quarter of a sine wave of 4096 points, sin(2 pi i / 4096), from which the plans of short transforms draw all
their twiddles."""
from gmpy2 import const_pi, sin

from table_file import Table, main, to_double

main("twiddles", [
    Table("sigfft", "double", "quarter_wave", [to_double(sin(2 * const_pi() * i / 4096)) for i in range(1024)]),
], room="sigfft")
