#!/usr/bin/python3
"""Compares the convolutions of libqkr.so with SciPy's on random lengths, for as long as it is let:

    tools/accuracy/convolution.py LIBQKR.so [--seconds 10] [--seed N]

Lengths are spread evenly over their logarithms, and often put next to the borders between methods. The error is that
of a result divided by the product of the norms of the sequences, in units of the precision's epsilon: SciPy's own
sums are taken in double precision for single ones, and by long double for double ones up to 2^22 products.
"""
import argparse
import ctypes
import random
import sys
import time

import numpy
import scipy.signal

BOUND = 4  # epsilons times the norms; transforms stay below 1
BORDERS = (1, 2, 31, 32, 33, 74, 75, 76, 96, 149, 150, 151, 1024, 1025, 4095, 4096, 4097, 8192)


def random_length(longest):
    if random.random() < 0.3:
        return random.choice([b for b in BORDERS if b <= longest])
    return int(longest ** random.random())


def exact(x, h):
    if x.dtype == numpy.float32:
        return scipy.signal.convolve(x.astype(float), h.astype(float))
    method = "direct" if len(x) * len(h) < 2 ** 22 else "fft"
    wide = numpy.longdouble if method == "direct" else float
    return scipy.signal.convolve(x.astype(wide), h.astype(wide), method=method)


def convolve(function, x, h, *scale):
    result = numpy.full(len(x) + len(h) - 1, 77, x.dtype)
    status = function(x.ctypes.data_as(ctypes.c_void_p), len(x), h.ctypes.data_as(ctypes.c_void_p), len(h),
                      result.ctypes.data_as(ctypes.c_void_p), *scale)
    if status:
        sys.exit(f"status {status}: {len(x)} and {len(h)} samples")
    return result


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("library")
    parser.add_argument("--seconds", type=float, default=10)
    parser.add_argument("--seed", type=int, default=random.randrange(10 ** 9))
    arguments = parser.parse_args()
    library = ctypes.CDLL(arguments.library)
    random.seed(arguments.seed)
    generator = numpy.random.default_rng(arguments.seed)
    kinds = [(library.zprsConv_32f, numpy.float32), (library.zprsConv_64f, numpy.float64)]

    worst, compared, end = {"float32": (0, 0, 0), "float64": (0, 0, 0)}, 0, time.monotonic() + arguments.seconds
    while time.monotonic() < end:
        a, b = random_length(200000), random_length(20000)
        for function, precision in kinds:
            x, h = (generator.standard_normal(n).astype(precision) for n in (a, b))
            unit = numpy.finfo(precision).eps * float(numpy.linalg.norm(x)) * float(numpy.linalg.norm(h))
            error = float(abs(convolve(function, x, h) - exact(x, h)).max()) / unit
            worst[precision.__name__] = max(worst[precision.__name__], (error, a, b))
            if not error < BOUND:
                sys.exit(f"seed {arguments.seed}: {precision.__name__}, {a} and {b} samples: error {error:.3g}")
        x, h = (generator.integers(-limit, limit, n, dtype=numpy.int16) for limit, n in ((50, a), (9, b)))
        sums = numpy.rint(scipy.signal.convolve(x.astype(float), h.astype(float))).clip(-32768, 32767)
        if not numpy.array_equal(convolve(library.zprsConv_16s_Sfs, x, h, 0), sums):
            sys.exit(f"seed {arguments.seed}: integers, {a} and {b} samples differ")
        compared += 1
    print(f"{compared} pairs of lengths, seed {arguments.seed}")
    for name, (error, a, b) in worst.items():
        print(f"{name}: largest error {error:.2f} epsilons times the norms, {a} and {b} samples")


if __name__ == "__main__":
    main()
