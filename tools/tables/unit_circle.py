#!/usr/bin/python3
"""The first octant of the unit circle in steps of 1/1024 of a turn, from which the points between are computed. Row j:
cosine and sine of 2 pi j / 1024, each as the nearest number of 26 bits, so that products of two such heads are exact, and
the rest as a double."""
from gmpy2 import const_pi, cos, mpfr, sin

from table_file import Table, main, to_double


def head_and_rest(x):
    head = mpfr(x, 26)
    return head, to_double(x - head)


angles = [2 * const_pi() * j / 1024 for j in range(129)]
main("unit_circle", [
    Table("sigfft", "double", "unit_circle", [(*head_and_rest(cos(a)), *head_and_rest(sin(a))) for a in angles]),
], room="sigfft")
