#!/usr/bin/python3
"""The package for Python beside NumPy, SciPy and numba: run.py OUTDIR [--quick] [--filter REGEX] writes
python_ufuncs.json, python_random.json and python_fft.json, in the form of Google Benchmark's runs, for report.py.

All contenders of a row run in turn, on the same arrays, round after round; the shortest round counts. Times include
what Python takes for the call. Ufuncs write to an array that exists; the others make their results.

With the times of real ufuncs goes each contender's largest error in ulp against MPFR, on the operands of 1000 elements.
Complex ones, random numbers and transforms go without.
"""
import argparse
import collections
import functools
import json
import math
import os
import pathlib
import re
import time

import gmpy2
import numpy as np
import scipy.fft
import scipy.special

import qkr
import qkr.fft
import qkr.random

try:
    import numba
except ImportError:
    numba = None

ROUNDS = 7
SECONDS = 0.001  # of a round, at least
LEVEL = os.environ.get("QKR_LEVEL", "widest")
AIM = 1.0
TYPES = {"double": np.float64, "single": np.float32, "complex": np.complex128}

Case = collections.namedtuple("Case", "name size contenders errors", defaults=({},))

# Of those that MPFR has by another name.
EXACT = {"reciprocal": lambda x: 1 / x, "arcsin": gmpy2.asin, "arccos": gmpy2.acos, "arctan": gmpy2.atan,
         "arcsinh": gmpy2.asinh, "arccosh": gmpy2.acosh, "arctanh": gmpy2.atanh, "power": lambda x, y: x**y,
         "arctan2": gmpy2.atan2, "divide": lambda x, y: x / y}


def errors_in_ulp(name, contenders, operands):
    """The largest error of each, in units of the last place of the right result."""
    function = EXACT.get(name) or getattr(gmpy2, name)
    with gmpy2.local_context(gmpy2.get_context(), precision=150):
        exact = [function(*map(gmpy2.mpfr, values)) for values in zip(*(x.tolist() for x in operands))]
        unit = np.spacing(np.abs(np.array(exact, float)).astype(operands[0].dtype)).tolist()
        return {who: float(max(abs(gmpy2.mpfr(y) - right) / ulp
                               for y, right, ulp in zip(f(*operands).tolist(), exact, unit)))
                for who, f in contenders.items()}


def ufunc_cases(sizes, wanted):
    ranges = collections.defaultdict(lambda: (0.05, 0.95), exp=(-10, 10), log=(0.1, 100), log10=(0.1, 100), sin=(-10, 10),
                                     cos=(-10, 10), tan=(-10, 10), arccosh=(1, 10), sinh=(-5, 5), cosh=(-5, 5),
                                     tanh=(-5, 5), power=(0.5, 4), hypot=(0.1, 10), floor=(-100, 100))
    math_calls = {"exp": math.exp, "log": math.log, "sin": math.sin, "tanh": math.tanh, "erf": math.erf,
                  "arctan2": math.atan2}
    names = ["exp", "log", "log10", "sqrt", "cbrt", "reciprocal", "sin", "cos", "tan", "arcsin", "arccos", "arctan",
             "sinh", "cosh", "tanh", "arcsinh", "arccosh", "arctanh", "erf", "erfc", "floor", "rint", "power",
             "hypot", "arctan2", "divide"]
    rows = [(name, kind) for kind in ("double", "single") for name in names]
    rows += [(name, "complex") for name in ("exp", "log", "sqrt", "sin", "tanh")]
    for name, kind in rows:
        if not wanted(f"{name} {kind}"):
            continue
        ours, theirs = getattr(qkr, name), getattr(np, name, None) or getattr(scipy.special, name)
        contenders = {"qkr": ours, "numpy" if hasattr(np, name) else "scipy": theirs}
        if numba and name in math_calls and kind != "complex":
            call = math_calls[name]
            scalar = (lambda x: call(x)) if ours.nin == 1 else (lambda x, y: call(x, y))
            element = getattr(numba, np.dtype(TYPES[kind]).name)
            contenders["numba"] = numba.vectorize([element(*[element] * ours.nin)])(scalar)

        def operands_of(n):
            generator = np.random.default_rng(n)
            operands = [generator.uniform(*ranges[name], n).astype(TYPES[kind]) for _ in range(ours.nin)]
            if kind == "complex":
                operands[0] += 1j * generator.uniform(0.1, 1, n)
            return operands

        errors = {} if kind == "complex" else errors_in_ulp(name, contenders, operands_of(1000))
        for n in sizes:
            operands = operands_of(n)
            out = np.empty_like(operands[0])
            yield Case(f"{name} {kind}", n, {who: (f, (*operands, out)) for who, f in contenders.items()}, errors)


def random_cases(sizes, wanted):
    ours, theirs = qkr.random.MT19937(1), np.random.default_rng(1)
    laws = {"random": (), "standard_normal": (), "exponential": (2.0,), "gamma": (2.5,), "beta": (2.0, 3.0),
            "lognormal": (), "integers": (0, 1000), "binomial": (20, 0.3), "poisson": (12.5,), "geometric": (0.3,)}
    in_numba = {}
    if numba:
        in_numba = {"random": numba.njit(lambda n: np.random.random(n)),
                    "standard_normal": numba.njit(lambda n: np.random.standard_normal(n))}
        for f in in_numba.values():
            f(1)
    for name, arguments in laws.items():
        if not wanted(name):
            continue
        for n in sizes:
            # By name: the two do not have `size` in the same place.
            contenders = {"qkr": (functools.partial(getattr(ours, name), *arguments, size=n), ()),
                          "numpy": (functools.partial(getattr(theirs, name), *arguments, size=n), ())}
            if name in in_numba:
                contenders["numba"] = (in_numba[name], (n,))
            yield Case(name, n, contenders)


def fft_cases(sizes, wanted):
    for name in ("fft", "ifft", "rfft", "irfft"):
        for kind in ("double", "single"):
            if not wanted(f"{name} {kind}"):
                continue
            for n in sizes:
                x = np.random.default_rng(n).standard_normal(n).astype(TYPES[kind])
                if name in ("fft", "ifft"):
                    x = x + 1j * x[::-1]
                elif name == "irfft":
                    x = scipy.fft.rfft(x)
                arguments = (x, n)
                yield Case(f"{name} {kind}", n, {
                    "qkr": (getattr(qkr.fft, name), arguments), "numpy": (getattr(np.fft, name), arguments),
                    "scipy": (getattr(scipy.fft, name), arguments)})


def measure(case):
    """Seconds of a call of each contender."""
    number, best = {}, {}
    for who, (f, arguments) in case.contenders.items():
        if case.size < 10**6:
            f(*arguments)  # caches, tables, types
        start = time.perf_counter()
        f(*arguments)
        number[who] = max(1, math.ceil(SECONDS / (time.perf_counter() - start)))
        best[who] = math.inf
    for _ in range(ROUNDS if case.size < 10**7 else 2):
        for who, (f, arguments) in case.contenders.items():
            calls = range(number[who])
            start = time.perf_counter()
            for _ in calls:
                f(*arguments)
            best[who] = min(best[who], (time.perf_counter() - start) / number[who])
    return best


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("out", type=pathlib.Path)
    parser.add_argument("--quick", action="store_true", help="two sizes instead of seven")
    parser.add_argument("--filter", default="", help="of names like 'exp double' or 'rfft single'")
    options = parser.parse_args()
    sizes = [10, 1000] if options.quick else [10**k for k in range(1, 8)]
    lengths = [64, 1000] if options.quick else [16, 64, 100, 1000, 1021, 1024, 16384, 30000, 65536, 10**6]
    wanted = re.compile(options.filter).search
    groups = {"ufuncs": ufunc_cases(sizes, wanted), "random": random_cases(sizes, wanted),
              "fft": fft_cases(lengths, wanted)}
    for group, cases in groups.items():
        benchmarks, families = [], {}
        for case in cases:
            family = families.setdefault(case.name, len(families))
            with np.errstate(all="ignore"):
                timings = measure(case)
            for who, seconds in timings.items():
                benchmarks.append({
                    "run_name": f"{case.name}/{LEVEL}/{case.size}/{who}", "family_index": family,
                    "run_type": "iteration", "cpu_time": 1e9 * seconds, "time_unit": "ns", "elements": case.size,
                    "aim": AIM, **({"ulp": case.errors[who]} if who in case.errors else {})})
            (options.out / f"python_{group}.json").write_text(json.dumps({"benchmarks": benchmarks}))


if __name__ == "__main__":
    main()
