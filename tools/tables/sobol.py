#!/usr/bin/python3
"""Primitive polynomials and initial values of Sobol's sequence, dimensions 2 to 40.

The choice of polynomials and values is that of P. Bratley and B. L. Fox, Algorithm 659, ACM Transactions on
Mathematical Software 14 (1988) 88, after I. M. Sobol and Y. L. Levitan, 1976. Polynomials over GF(2): bit i is the
coefficient of x^i.

A row holds as many published values as its polynomial's degree. It goes on by its own recurrence up to eight values,
so that a user's polynomial of higher degree also finds values that are odd and below 2^i.
"""
from table_file import Table, main

DIMENSIONS = [  # polynomial, initial values
    (3, [1]),
    (7, [1, 1]),
    (11, [1, 3, 7]),
    (13, [1, 1, 5]),
    (19, [1, 3, 1, 1]),
    (25, [1, 1, 3, 7]),
    (37, [1, 3, 3, 9, 9]),
    (59, [1, 3, 7, 13, 3]),
    (47, [1, 1, 5, 11, 27]),
    (61, [1, 3, 5, 1, 15]),
    (55, [1, 1, 7, 3, 29]),
    (41, [1, 3, 7, 7, 21]),
    (67, [1, 1, 1, 9, 23, 37]),
    (97, [1, 3, 3, 5, 19, 33]),
    (91, [1, 1, 3, 13, 11, 7]),
    (109, [1, 1, 7, 13, 25, 5]),
    (103, [1, 3, 5, 11, 7, 11]),
    (115, [1, 1, 1, 3, 13, 39]),
    (131, [1, 3, 1, 15, 17, 63, 13]),
    (193, [1, 1, 5, 5, 1, 27, 33]),
    (137, [1, 3, 3, 3, 25, 17, 115]),
    (145, [1, 1, 3, 15, 29, 15, 41]),
    (143, [1, 3, 1, 7, 3, 23, 79]),
    (241, [1, 3, 7, 9, 31, 29, 17]),
    (157, [1, 1, 5, 13, 11, 3, 29]),
    (185, [1, 3, 1, 9, 5, 21, 119]),
    (167, [1, 1, 3, 1, 23, 13, 75]),
    (229, [1, 3, 3, 11, 27, 31, 73]),
    (171, [1, 1, 7, 7, 19, 25, 105]),
    (213, [1, 3, 5, 5, 21, 9, 7]),
    (191, [1, 1, 1, 15, 5, 49, 59]),
    (253, [1, 1, 1, 1, 1, 33, 65]),
    (203, [1, 3, 5, 15, 17, 19, 21]),
    (211, [1, 1, 7, 11, 13, 29, 3]),
    (239, [1, 3, 7, 5, 7, 11, 113]),
    (247, [1, 1, 5, 3, 15, 19, 61]),
    (285, [1, 3, 1, 1, 9, 27, 89, 7]),
    (369, [1, 1, 3, 7, 31, 15, 45, 23]),
    (299, [1, 3, 3, 9, 9, 25, 107, 39]),
]
ROW = 8


def degree(polynomial):
    return polynomial.bit_length() - 1


def full_row(polynomial, values):
    e = degree(polynomial)
    assert len(values) == e and all(m % 2 == 1 and m < 2 << i for i, m in enumerate(values))
    m = list(values)
    for k in range(e, ROW):
        m.append(m[k - e])
        for i in range(e):
            if polynomial >> i & 1:
                m[k] ^= m[k - e + i] << (e - i)
    return tuple(m)


main("sobol", [
    Table("sobol", "uint32_t", "polynomials", [p for p, _ in DIMENSIONS] + [0]),
    Table("sobol", "int32_t", "degrees", [degree(p) for p, _ in DIMENSIONS] + [0]),
    Table("sobol", "uint32_t", "initial_values", [full_row(*row) for row in DIMENSIONS]),
], room="streams")
