#!/usr/bin/python3
"""Lagged recurrences with small coefficients for the two components of MRG32K3A.

A component z[n] = a1 z[n-1] + a2 z[n-2] + a3 z[n-3] mod m also obeys

    z[n] = c[0] z[n - l[0]] + ... + c[t-1] z[n - l[t-1]] mod m

for every choice of lags l, whenever x^-l[0] c[0] + ... = 1 holds modulo the characteristic polynomial. These
are three linear congruences in c, whose solutions form a lattice of determinant m^3; its reduction finds
coefficients of about m^(3 / (t + 1)). Sums are exact in double precision with residues between -m/2 and m/2,
if the coefficients' magnitudes sum to less than 2^22. That takes five lags: with four the best sums, of lags
that are multiples of 8 up to 112, are 2^20.6 for the first component but 2^22.2 for the second. No lag may be
shorter than the two vectors of numbers that are made at a time, eight doubles each, by much: the next ones
would have to wait for them.

Prints the coefficients; --check looks for them in the generator's source.
"""
import sys
from pathlib import Path

from lattice import Reduced

COMPONENTS = [(4294967087, (0, 1403580, -810728)), (4294944443, (527612, 0, -1370589))]
LAGS = (24, 32, 40, 48, 56)
SOURCE = Path(__file__).resolve().parents[2] / "streams" / "generators" / "mrg32k3a.cpp"


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def sequences(modulus, multipliers, length):
    """The solutions that begin with each unit vector, as `length` triples."""
    rows = [(1, 0, 0), (0, 1, 0), (0, 0, 1)]
    a1, a2, a3 = multipliers
    while len(rows) < length:
        rows.append(tuple((a1 * z1 + a2 * z2 + a3 * z3) % modulus
                          for z3, z2, z1 in zip(*rows[-3:])))
    return rows


def inverse(matrix, modulus):
    """Gauss and Jordan's elimination modulo a prime."""
    size = len(matrix)
    rows = [list(row) + [int(i == j) for j in range(size)] for i, row in enumerate(matrix)]
    for i in range(size):
        pivot = next(k for k in range(i, size) if rows[k][i] % modulus)
        rows[i], rows[pivot] = rows[pivot], rows[i]
        scale = pow(rows[i][i], -1, modulus)
        rows[i] = [x * scale % modulus for x in rows[i]]
        for k in range(size):
            if k != i:
                rows[k] = [(x - rows[k][i] * y) % modulus for x, y in zip(rows[k], rows[i])]
    return [row[size:] for row in rows]


def coefficients(modulus, multipliers, lags):
    """The smallest found, or None."""
    longest = max(lags)
    rows = sequences(modulus, multipliers, longest + 1)
    columns = [rows[longest - lag] for lag in lags] + [tuple(-x for x in rows[longest])]
    # Three coefficients follow from the others and from the factor of the left-hand side.
    solve = inverse(list(zip(*columns[:3])), modulus)
    size = len(lags) + 1
    basis = [[modulus * (i == j) for j in range(size)] for i in range(3)]
    for free in range(3, size):
        head = [-dot(row, columns[free]) % modulus for row in solve]
        basis.append(head + [int(j == free) for j in range(3, size)])
    weight = 1 << 19  # of the left-hand side: its factor has to come out as 1 or -1
    basis = Reduced([row[:-1] + [row[-1] * weight] for row in basis]).basis
    found = [[x * row[-1] // weight for x in row[:-1]] for row in basis if abs(row[-1]) == weight]
    return min(found, key=lambda c: sum(map(abs, c)), default=None)


def main():
    for modulus, multipliers in COMPONENTS:
        best = coefficients(modulus, multipliers, LAGS)
        assert sum(map(abs, best)) * (modulus / 2 + 2) + modulus / 2 < 2 ** 53
        text = f"{{{', '.join(map(str, best))}}}"
        if "--check" not in sys.argv:
            print(text)
        elif text not in " ".join(SOURCE.read_text().split()):
            sys.exit(f"{SOURCE.name} lacks {text}")


main()
