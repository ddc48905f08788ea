#!/usr/bin/python3
"""Adds scipy.signal.oaconvolve to a run of bench_sigfft_convolution: peers.py RUN.json

Its times include what Python takes to call a function, about ten microseconds.
"""
import re

import numpy
import scipy.signal

from python_peers import add, cases, fastest, run_to_edit


def main():
    with run_to_edit() as run:
        for (name, n), index in cases(run).items():
            form = re.fullmatch(r"[sd](?:Filter(\d+)|Equal)", name)
            if not form:
                continue
            precision = numpy.float64 if name[0] == "d" else numpy.float32
            x, h = (numpy.ones(int(count), precision) for count in (n, form[1] or n))
            add(run, name, n, "oaconvolve", index, fastest(lambda: scipy.signal.oaconvolve(x, h)), len(x) + len(h) - 1)


if __name__ == "__main__":
    main()
