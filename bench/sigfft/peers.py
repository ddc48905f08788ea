#!/usr/bin/python3
"""Adds pocketfft, as SciPy calls it, to a run of bench_sigfft or bench_sigfft_dft: peers.py RUN.json

Its times include what Python takes to call a function, about two microseconds.
"""
import numpy
import scipy.fft

from python_peers import add, cases, fastest, run_to_edit

FORMS = {"Complex": (scipy.fft.fft, numpy.complex128, numpy.complex64),
         "Real": (scipy.fft.rfft, numpy.float64, numpy.float32)}
FORMS |= {"Any" + form: transform for form, transform in FORMS.items()}


def main():
    with run_to_edit() as run:
        for (name, n), index in cases(run).items():
            transform, double, single = FORMS.get(name[1:], (None, None, None))
            if transform:
                x = numpy.zeros(int(n), double if name[0] == "d" else single)
                add(run, name, n, "pocketfft", index, fastest(lambda: transform(x)), int(n))


if __name__ == "__main__":
    main()
