#!/usr/bin/python3
"""Adds SciPy's convolve, oaconvolve and correlate to a run of bench_convcorr: peers.py RUN.json

convolve chooses between the sum and the transform by itself. Times include what Python takes to call a function,
about ten microseconds.
"""
import json
import math
import pathlib
import re
import sys
import timeit

import numpy
import scipy.signal

SECONDS = 0.002  # that a repetition takes at least
FUNCTIONS = {"convolve": lambda x, h: scipy.signal.convolve(x, h),
             "oaconvolve": lambda x, h: scipy.signal.oaconvolve(x, h),
             "correlate": lambda x, h: scipy.signal.correlate(x, h)}


def fastest(call):
    once = timeit.timeit(call, number=1)
    number = max(1, math.ceil(SECONDS / once))
    return min(timeit.repeat(call, number=number, repeat=9 if once < 0.1 else 2)) / number


def main():
    path = pathlib.Path(sys.argv[1])
    run = json.loads(path.read_text())
    cases = {tuple(b["run_name"].split("/")[:3:2]): b["family_index"] for b in run["benchmarks"]}
    known = {}
    for (name, n), index in cases.items():
        form = re.fullmatch(r"([sd])(?:Direct|Fft)(\d)D(\d+)", name)
        dims, kernel = int(form[2]), int(form[3])
        for contender, function in FUNCTIONS.items():
            key = (form[1], dims, kernel, n, contender)
            if key not in known:
                precision = numpy.float64 if form[1] == "d" else numpy.float32
                generator = numpy.random.default_rng(1)
                x, h = (generator.uniform(-1, 1, (int(length),) * dims).astype(precision) for length in (n, kernel))
                known[key] = fastest(lambda: function(x, h))
            run["benchmarks"].append({
                "run_name": f"{name}/any/{n}/{contender}", "family_index": index, "run_type": "iteration",
                "cpu_time": 1e9 * known[key], "time_unit": "ns", "reference": 1,
                "elements": (int(n) + kernel - 1) ** dims})
    path.write_text(json.dumps(run))


if __name__ == "__main__":
    main()
