#!/usr/bin/python3
"""Moduli and multipliers of the 273 members of the Wichmann-Hill family.

A row belongs to its head, the prime m[0]. From there down the primes, the next is taken whose (m - 1) / 2 has
no factor in common with the (m - 1) / 2 already taken, until there are four: the period of a member is then the
product of the m - 1, divided by 8. The multiplier of m[j] is the largest primitive root from 127 down to 112 that
the row does not use yet.

Members 0, 1, 136 and 272 are given by their heads, and so are 2 and 271, which hold the largest and the smallest
modulus, 16776971 and 16718909. The others have as heads, in falling order, the primes between whose rows use no prime of
another row, span at most 300, and do well in the spectral test: the combined generator is one multiplicative
generator with the product of the moduli as its modulus, and the smallest of its figures S_2 to S_8 (P. L'Ecuyer,
Mathematics of Computation 68 (1999) 249) has to reach 1/2. Of the given rows, member 0 has 0.372, the least.
"""
from math import gcd, prod, sqrt

import gmpy2

from lattice import Reduced
from table_file import Table, main

MEMBERS = 273
GIVEN_HEADS = {0: 16770647, 1: 16770311, 2: 16776971, 136: 16758587, 271: 16718987, 272: 16766363}
LARGEST_SPAN = 300
SMALLEST_FIGURE = 0.5
# The squares of the largest ratios of shortest vector to determinant, in 2 to 8 dimensions.
HERMITE = {2: sqrt(4 / 3), 3: 2 ** (1 / 3), 4: sqrt(2), 5: 8 ** (1 / 5), 6: (64 / 3) ** (1 / 6), 7: 64 ** (1 / 7),
           8: 2.0}


def prime_factors(n):
    found, divisor = set(), 2
    while divisor * divisor <= n:
        while n % divisor == 0:
            found.add(divisor)
            n //= divisor
        divisor += 1
    return found | ({n} if n > 1 else set())


def row_of(head, used):
    """(multipliers, moduli), or None if a modulus has no primitive root left for it."""
    moduli, multipliers, m = [], [], head
    while len(moduli) < 4:
        if m not in used and gmpy2.is_prime(m) and all(gcd((m - 1) // 2, (k - 1) // 2) == 1 for k in moduli):
            factors = prime_factors(m - 1)
            roots = [a for a in range(127, 111, -1)
                     if a not in multipliers and all(pow(a, (m - 1) // f, m) != 1 for f in factors)]
            if not roots:
                return None
            moduli.append(m)
            multipliers.append(roots[0])
        m -= 2
    return multipliers, moduli


def spectral_figure(multipliers, moduli, enough=0.0):
    """The smallest of S_2 to S_8; as soon as one is below `enough`, the smallest so far."""
    modulus = prod(moduli)
    multiplier = sum(a * (modulus // m) * pow(modulus // m, -1, m) for a, m in zip(multipliers, moduli)) % modulus
    basis, power, smallest = [[modulus]], 1, 9.0
    for dimension in range(2, 9):  # of the dual lattice
        power = power * multiplier % modulus
        basis = [v + [0] for v in basis] + [[-power] + [0] * (dimension - 2) + [1]]
        reduced = Reduced(basis)
        basis = reduced.basis
        length = sqrt(reduced.shortest_square() / HERMITE[dimension])
        smallest = min(smallest, length / modulus ** (1 / dimension))
        if smallest < enough:
            break
    return smallest


def family():
    rows = {member: row_of(head, set()) for member, head in GIVEN_HEADS.items()}
    used = {m for _, moduli in rows.values() for m in moduli}
    head = GIVEN_HEADS[2]
    for member in (k for k in range(MEMBERS) if k not in GIVEN_HEADS):
        while member not in rows:
            head -= 2
            if head in used or not gmpy2.is_prime(head):
                continue
            row = row_of(head, used)
            if row and head - row[1][3] <= LARGEST_SPAN and spectral_figure(*row, SMALLEST_FIGURE) >= SMALLEST_FIGURE:
                rows[member] = row
                used.update(row[1])
    return [rows[k] for k in range(MEMBERS)]


if __name__ == "__main__":
    rows = family()
    main("wichmann_hill", [
        Table("wichmann_hill", "uint32_t", "moduli", [tuple(moduli) for _, moduli in rows]),
        Table("wichmann_hill", "uint8_t", "multipliers", [tuple(multipliers) for multipliers, _ in rows]),
        Table("wichmann_hill", "double", "inverse_moduli", [tuple(1 / m for m in moduli) for _, moduli in rows]),
    ], room="streams")
