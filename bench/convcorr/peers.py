#!/usr/bin/python3
"""Adds SciPy's convolve, oaconvolve and correlate to a run of bench_convcorr: peers.py RUN.json

convolve chooses between the sum and the transform by itself. Times include what Python takes to call a function,
about ten microseconds.
"""
import re

import numpy
import scipy.signal

from python_peers import add, cases, fastest, run_to_edit

FUNCTIONS = {"convolve": lambda x, h: scipy.signal.convolve(x, h),
             "oaconvolve": lambda x, h: scipy.signal.oaconvolve(x, h),
             "correlate": lambda x, h: scipy.signal.correlate(x, h)}


def main():
    with run_to_edit() as run:
        known = {}
        for (name, n), index in cases(run).items():
            form = re.fullmatch(r"([sd])(?:Direct|Fft)(\d)D(\d+)", name)
            dims, kernel = int(form[2]), int(form[3])
            for contender, function in FUNCTIONS.items():
                key = (form[1], dims, kernel, n, contender)
                if key not in known:
                    precision = numpy.float64 if form[1] == "d" else numpy.float32
                    generator = numpy.random.default_rng(1)
                    x, h = (generator.uniform(-1, 1, (int(length),) * dims).astype(precision)
                            for length in (n, kernel))
                    known[key] = fastest(lambda: function(x, h))
                add(run, name, n, contender, index, known[key], (int(n) + kernel - 1) ** dims, reference=1)


if __name__ == "__main__":
    main()
