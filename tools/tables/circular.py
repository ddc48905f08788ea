#!/usr/bin/python3
"""Tables of the circular functions and of their argument reduction.

sine_rows, node a: the sine there as T1 + T2, its derivative as T3 + T0. T3 is the power of two nearest to the
derivative, so that T3 * r is exact; T2 is a float, as no more of it can matter. The cosine needs no table of its
own: its rows are those a quarter turn further on.

The columns, for look-ups in tables held in registers, hold half a turn only: the other half is the negative. Those of
the finer grid hold the quarter around 0 and that around pi/2: sine and cosine of the angle less the nearest multiple
of pi/2, up to their signs.

four_over_pi_chunks: the bits of 4/pi in chunks of 25, scaled by 2**200, so that a product with half of a 53-bit number
is exact. The first chunk is 0.
"""
import gmpy2
from gmpy2 import const_pi, cos, mpfr, sin

from table_file import Table, by_columns, main, multiple, to_double, to_float

gmpy2.get_context().precision = 1600  # 4/pi to the last chunk
PI = const_pi()


def nearest_power_of_two(x):
    if abs(x) < mpfr(2) ** -100:
        return mpfr(0)
    power = mpfr(2) ** gmpy2.floor(gmpy2.log2(abs(x)))
    power = power if abs(x) < 1.5 * power else 2 * power
    return power if x > 0 else -power


def exact_zero(x):
    return mpfr(0) if abs(x) < mpfr(2) ** -100 else x


def sine_rows(count):
    rows = []
    for j in range(count):
        node = 2 * PI * j / count
        value, slope = exact_zero(sin(node)), exact_zero(cos(node))
        head, t3 = to_double(value), nearest_power_of_two(slope)
        rows.append((to_double(slope - t3), head, to_float(value - head), t3))
    return rows


def some_columns(rows, first, count):
    half = len(rows) // 2
    assert all(a == -b for x, y in zip(rows, rows[half:]) for a, b in zip(x, y)), "not negative half a turn on"
    return by_columns([rows[(first + j) % len(rows)] for j in range(count)], "double")


def chunks_of_four_over_pi(count):
    rest, chunks = 4 / PI, [mpfr(0)]
    for k in range(count - 1):
        chunk = multiple(rest, -24 - 25 * k, gmpy2.trunc)
        chunks.append(chunk * mpfr(2) ** 200)
        rest -= chunk
    return chunks


rows, fine_rows = sine_rows(64), sine_rows(128)
main("circular", [
    Table("circular", "double", "sine_rows", rows),
    Table("circular", "double", "fine_sine_rows", fine_rows),
    Table("circular", "double", "sine_columns", some_columns(rows, 0, 32)),
    Table("circular", "double", "fine_sine_columns", some_columns(fine_rows, -16, 32)),
    Table("circular", "double", "fine_cosine_columns", some_columns(fine_rows, 16, 32)),
    Table("circular", "double", "four_over_pi_chunks", chunks_of_four_over_pi(52)),
])
