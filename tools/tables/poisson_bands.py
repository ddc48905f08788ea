#!/usr/bin/python3
"""Coefficients of the quantile polynomials of Poisson numbers with a mean for each.

Band b serves the means from 2**(b - 4) to 2**(b - 3), the last one all from 2**13 on; m is the mean's mantissa
less 1. With g a normal number and s = sqrt(mean) + T2 + T3 m, the number is the whole part of

    r(g) = mean + T0 + T1 m + 1 + s g (A(m) + B(m) g + C(m) g**2 + D(m) g**3),

A, B, C, D being polynomials of degree 3. The wanted r is the continuous quantile: r(g) = k where the normal
distribution function of g is the probability of k - 1 or less. Band 0 is given. Bands 1 to 16 have T2 = T3 = 0; the
other coefficients, in which r is linear, are those of least squares over 16 of Chebyshev's means and at most 120
numbers k with both tails above 1e-8, each deviation weighted by the density of g over s: about the error of the
cumulative probability. Where 0 is a number of note, weak further
points with k between 0 and 1, where the probability is continued by the incomplete gamma function, hold r below 1. Band 17
is the expansion for large means: -2/3 + g s (1 + g / (6 s) - g**2 / (72 s**2)), with the middle value of
the two powers of 1/s that a polynomial in m cannot follow.

--deviations prints, for each band, the largest total-variation distance between the laws of the numbers and Poisson's
at 40 means.
"""
import math
import sys
from statistics import NormalDist

import gmpy2
from gmpy2 import mpfr

from table_file import Table, main, to_double

NORMAL = NormalDist()
EXPONENTIAL = [0.9999999978976929, 1.000000235204182, 0.49999555884885266, 0.16669916415448055, 0.7071067811865476]
BAND_0 = [-0.7784668838132114, 0.029461530258082718, -0.06517070906207373, 0.0036449873888969348, 1.6205362989562542,
          -0.46699528871421164, 0.23304269836518293, -0.07922767895873659, 0.5930275870746857, -0.34760651856416375,
          0.28535078668918984, -0.09676892212962193, -0.01824465021393026, 0.017711836753638327,
          -0.026868714436064506, 0.008095052737288775, 0.0006098103914128319, -0.0012341802068427158,
          0.0022642616243167724, -0.0006192578274675482]
TAIL = 1e-8
LIMITS = [2e-4, 6e-5, 6e-5, 3e-4, 3e-4, 3e-4, 3e-4, 1e-4, 4e-5] + [2e-5] * 8 + [6e-4]  # distances that the header promises
WEAK = 0.01


def masses(mean):
    """(k, mass) where the mass counts, by the recurrence from the mode."""
    mode = int(mean)
    at_mode = math.exp(mode * math.log(mean) - mean - math.lgamma(mode + 1)) if mode else math.exp(-mean)
    reach = int(8.5 * math.sqrt(mean)) + 24
    up, down = [at_mode], []
    for k in range(mode + 1, mode + reach):
        up.append(up[-1] * mean / k)
    mass = at_mode
    for k in range(mode, max(0, mode - reach), -1):
        mass *= k / mean
        down.append(mass)
    return mode - len(down), down[::-1] + up


def points(mean):
    """(g, k) with the normal probability of g that of k - 1 or less."""
    first, mass = masses(mean)
    total, found, below = math.fsum(mass), [], 0.0
    above = [0.0]
    for p in reversed(mass):
        above.append(above[-1] + p)
    above.reverse()
    for i, p in enumerate(mass[:-1]):
        below += p
        rest = above[i + 1]
        if below > TAIL * total and rest > TAIL * total:
            g = NORMAL.inv_cdf(below / total) if below < rest else -NORMAL.inv_cdf(rest / total)
            found.append((g, first + i + 1))
    return found


def upper_gamma(k, mean):
    """The probability of k - 1 or less, continued to k from 0 to 1: the regularised upper incomplete gamma function."""
    term = math.exp(k * math.log(mean) - mean - math.lgamma(k + 1))
    total, n = term, k
    while term > 1e-18 * total:
        n += 1
        term *= mean / n
        total += term
    return max(1 - total, 1e-12)


def terms(mean, m, g):
    s = math.sqrt(mean)
    powers = [1.0, m, m * m, m ** 3]
    return [1.0, m] + [s * g ** degree * power for degree in (1, 2, 3, 4) for power in powers]


def solve(rows):
    """Least squares by the normal equations, in 240 bits."""
    size = len(rows[0][0])
    a = [[mpfr(0)] * (size + 1) for _ in range(size)]
    for row, value, weight in rows:
        x = [mpfr(t * weight) for t in row] + [mpfr(value * weight)]
        for i in range(size):
            for j in range(i, size + 1):
                a[i][j] += x[i] * x[j]
    for i in range(size):
        for j in range(i):
            a[i][j] = a[j][i]
    for i in range(size):
        for k in range(i + 1, size):
            factor = a[k][i] / a[i][i]
            for j in range(i, size + 1):
                a[k][j] -= factor * a[i][j]
    x = [mpfr(0)] * size
    for i in reversed(range(size)):
        x[i] = (a[i][size] - sum(a[i][j] * x[j] for j in range(i + 1, size))) / a[i][i]
    return x


def fit(band):
    rows = []
    for node in range(16):
        m = 0.5 + 0.5 * math.cos(math.pi * (2 * node + 1) / 32)
        mean = (1 + m) * 2.0 ** (band - 4)
        found = points(mean)
        for g, k in found[::len(found) // 120 + 1]:
            rows.append((terms(mean, m, g), k - mean - 1, NORMAL.pdf(g) / math.sqrt(mean)))
        if found[0][1] == 1:  # 0 is a number of note: r has to stay below 1
            for k in (0.03, 0.1, 0.2, 0.4, 0.6, 0.8):
                g = NORMAL.inv_cdf(upper_gamma(k, mean))
                rows.append((terms(mean, m, g), k - mean - 1, WEAK * NORMAL.pdf(g) / math.sqrt(mean)))
    x = solve(rows)
    x = x[:2] + [mpfr(0), mpfr(0)] + x[2:]
    a, b, c, d = x[4:8], x[8:12], x[12:16], x[16:20]
    return [to_double(t) for t in x[:4] + a + b + c + d]


def last_band():
    """1/s lies from 2**-6.5 down; the numbers need the first power at its upper end only."""
    return [to_double(mpfr(t)) for t in
            [-2 / 3, 0, 0, 0, 1, 0, 0, 0, 0.5 / 6 / 2 ** 6.5, 0, 0, 0, -0.5 / 72 / 2 ** 13, 0, 0, 0, 0, 0, 0, 0]]


def quantile_of(band, mean):
    t = [float(x) for x in bands[band]]
    m = mean / 2.0 ** math.floor(math.log2(mean)) - 1
    s = math.sqrt(mean) + t[2] + t[3] * m
    a, b, c, d = (s * sum(t[4 + 4 * i + j] * m ** j for j in range(4)) for i in range(4))
    base = mean + t[0] + m * t[1] + 1
    return lambda g: base + g * (a + (b + (c + d * g) * g) * g)


def distance(band, mean):
    """Half the sum of the absolute differences of the masses. The polynomial may turn, far out, so that all
    intervals of g are looked at, and halved where the number changes inside."""
    first, mass = masses(mean)
    law, r = dict(enumerate(mass, first)), quantile_of(band, mean)

    def take(g, h, at_g, at_h):
        low, high = max(0, math.floor(at_g)), max(0, math.floor(at_h))
        if low == high or h - g < 1e-8:
            law[low] = law.get(low, 0.0) - abs(NORMAL.cdf(-g) - NORMAL.cdf(-h) if g > 0 else NORMAL.cdf(h) - NORMAL.cdf(g))
        else:
            middle = (g + h) / 2
            at_middle = r(middle)
            take(g, middle, at_g, at_middle)
            take(middle, h, at_middle, at_h)

    grid = [i / 64 for i in range(-7 * 64, 7 * 64 + 1)]
    values = [r(g) for g in grid]
    for i in range(len(grid) - 1):
        take(grid[i], grid[i + 1], values[i], values[i + 1])
    return 0.5 * sum(abs(p) for p in law.values())


bands = [BAND_0] + [fit(band) for band in range(1, 17)] + [last_band()]
if "--deviations" in sys.argv:
    for b in [int(x) for x in sys.argv[2:]] or range(18):
        means = [(1 + (i + 0.5) / 16) * 2.0 ** (b - 4) for i in range(16)]
        if b == 17:
            means = [2.0 ** (e + 0.5) for e in range(13, 19)]
        largest, at = max((distance(b, mean), mean) for mean in means)
        print(f"band {b}: {largest:.2g} at {at:g}", flush=True)
    sys.exit()
for b, limit in enumerate(LIMITS):
    for position in (0.02, 0.45, 0.9):
        assert distance(b, (1 + position) * 2.0 ** (b - 4)) < limit, b
main("poisson_bands", [
    Table("", "double", "_vxsdPoissonTab",
          [mpfr(x) for x in EXPONENTIAL] + [mpfr(x) for band in bands for x in band] + [mpfr(0)])
], room="distributions")
