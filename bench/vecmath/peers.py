#!/usr/bin/python3
"""Adds NumPy's complex ufuncs to a run of bench_vecmath: peers.py RUN.json

They call the C library's functions, whose errors they are given here. Results go to an array that exists; the times
include what Python takes to call a ufunc, about half a microsecond.
"""
import numpy

from python_peers import add, cases, fastest, run_to_edit

# With half the sides of the rectangle that inputs are drawn from, as in complex.cpp.
UFUNCS = {"Exp": (numpy.exp, 80, 100), "Ln": (numpy.log, 10, 10), "Log10": (numpy.log10, 10, 10),
          "Sqrt": (numpy.sqrt, 10, 10), "Cosh": (numpy.cosh, 20, 20), "Sinh": (numpy.sinh, 20, 20),
          "Tanh": (numpy.tanh, 20, 20), "Cos": (numpy.cos, 20, 20), "Sin": (numpy.sin, 20, 20),
          "Tan": (numpy.tan, 20, 20), "Acos": (numpy.arccos, 3, 3), "Acosh": (numpy.arccosh, 3, 3),
          "Asin": (numpy.arcsin, 3, 3), "Asinh": (numpy.arcsinh, 3, 3), "Atan": (numpy.arctan, 3, 3),
          "Atanh": (numpy.arctanh, 3, 3), "Pow": (numpy.power, 3, 3)}
TYPES = {"z": numpy.complex128, "c": numpy.complex64}


def main():
    generator = numpy.random.default_rng(1)

    def draw(n, width, height, dtype):
        return (generator.uniform(-width, width, n) + 1j * generator.uniform(-height, height, n)).astype(dtype)

    with run_to_edit() as run:
        errors = {tuple(b["run_name"].split("/")[:3:2]): b.get("ulp", 0) for b in run["benchmarks"]
                  if b["run_name"].endswith("/libm")}
        for (name, n), index in cases(run).items():
            if name[0] not in TYPES or name[1:] not in UFUNCS:
                continue
            ufunc, width, height = UFUNCS[name[1:]]
            operands = [draw(int(n), width, height, TYPES[name[0]])]
            if ufunc.nin == 2:
                operands.append(draw(int(n), 3, 3, TYPES[name[0]]))
            out = numpy.empty_like(operands[0])
            with numpy.errstate(all="ignore"):
                seconds = fastest(lambda: ufunc(*operands, out=out))
            add(run, name, n, "numpy", index, seconds, int(n), ulp=errors.get((name, n), 0))


if __name__ == "__main__":
    main()
