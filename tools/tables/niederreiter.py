#!/usr/bin/python3
"""The irreducible polynomials over GF(2) in numerical order, for Niederreiter's sequence in base 2.

Bit i is the coefficient of x^i. They are sieved up to 3047, which makes 318; two zeros follow.
"""
from table_file import Table, main

LAST = 3047


def multiples(polynomial, last):
    """The products with polynomials of degree 1 and above, up to `last`."""
    for factor in range(2, last + 1):
        product = 0
        for i in range(factor.bit_length()):
            if factor >> i & 1:
                product ^= polynomial << i
        if product <= last:
            yield product
        elif product.bit_length() > last.bit_length():
            return


irreducible, composite = [], set()
for candidate in range(2, LAST + 1):
    if candidate not in composite:
        irreducible.append(candidate)
        composite.update(multiples(candidate, LAST))
assert len(irreducible) == 318 and irreducible[-1] == LAST

irreducible += [0, 0]
main("niederreiter", [
    Table("niederreiter", "uint32_t", "polynomials", irreducible),
    Table("niederreiter", "int32_t", "degrees", [max(p.bit_length() - 1, 0) for p in irreducible]),
], room="streams")
