"""qkr for Python: array math of the qkr library for NumPy.

Vector functions are here, as ufuncs with NumPy's names; `qkr.random` has random streams, `qkr.fft` Fourier transforms
and a backend for SciPy, `qkr.signal` convolution.

>>> import numpy as np
>>> import qkr
>>> qkr.log(np.array([1.0, 2.0, 10.0]))
array([0.        , 0.69314718, 2.30258509])

What the library promises holds here: results have the same bits on every processor, and the largest errors stand in
docs/accuracy.md. `np.errstate` says what a domain error, a singularity, an overflow or an underflow does:

>>> with np.errstate(divide="raise"):
...     qkr.log(0.0)
Traceback (most recent call last):
FloatingPointError: divide by zero encountered in log
"""

from . import _ufuncs
from ._ufuncs import *  # noqa: F403

__all__ = [name for name in dir(_ufuncs) if not name.startswith("_")]
