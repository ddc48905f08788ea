#!/usr/bin/python3
"""Adds pocketfft, as SciPy calls it with as many workers, to a run of bench_dft: peers.py RUN.json

Its times include what Python takes to call a function, about two microseconds, and a new array for the result.
"""
import re

import numpy
import scipy.fft

from python_peers import add, fastest, run_to_edit

NAME = re.compile(r"([ds])(Complex|Real)(?:(\d)D|(Batch|Columns)(\d+))(Team)?")


def call_of(match, lengths):
    """One call for the shape of a benchmark; `lengths` are those of an array in C, with its batch."""
    element, form, dimensions, layout, _, team = match.groups()
    real = form == "Real"
    kind = {("d", False): numpy.complex128, ("s", False): numpy.complex64,
            ("d", True): numpy.float64, ("s", True): numpy.float32}[element, real]
    x = numpy.zeros(lengths, kind)
    axes = tuple(range(len(lengths))) if dimensions else (0,) if layout == "Columns" else (1,)
    transform = scipy.fft.rfftn if real else scipy.fft.fftn
    return lambda: transform(x, axes=axes, workers=2 if team else 1)


def main():
    with run_to_edit() as run:
        shapes = {}
        for b in run["benchmarks"]:
            name, _, points = b["run_name"].split("/")[:3]
            match = NAME.fullmatch(name)
            if match and "lengths" in b.get("label", ""):
                shapes[name, points] = (match, b["label"], b["family_index"])
        for (name, points), (match, label, index) in shapes.items():
            lengths = tuple(map(int, label.split()[1].split("x")))
            add(run, name, points, "pocketfft", index, fastest(call_of(match, lengths)), int(points),
                clock="real_time", wall=1)


if __name__ == "__main__":
    main()
