"""Discrete Fourier transforms, with the names and arguments of `scipy.fft`.

>>> import numpy as np
>>> import qkr.fft
>>> x = np.sin(2 * np.pi * 5 * np.arange(100) / 100)
>>> int(np.argmax(abs(qkr.fft.rfft(x))))
5

The module is also a backend for SciPy, whose functions then call these; what is not here (cosine and sine transforms)
SciPy does itself:

>>> import scipy.fft
>>> with scipy.fft.set_backend(qkr.fft):
...     y = scipy.fft.fft2(np.ones((4, 4)))

Single precision stays single precision. Transforms of any axes work without transposing, those of real signals cost
about half. A cache holds what is set up for the lengths used last; `cache_info` tells about it.

Notes
-----
The C functions: those of qkr/dft.h (`qkr_dft_def_compute_forward_z` and its companions).
"""

import math as _math
import operator as _operator
import os as _os
import sys as _sys
from typing import NamedTuple as _NamedTuple

import numpy as _np
from numpy.fft import fftfreq, fftshift, ifftshift, rfftfreq

from . import _fft

__all__ = [
    "cache_clear", "cache_info", "cache_limit", "fft", "fft2", "fftfreq", "fftn", "fftshift", "hfft", "hfft2", "hfftn",
    "ifft", "ifft2", "ifftn", "ifftshift", "ihfft", "ihfft2", "ihfftn", "irfft", "irfft2", "irfftn", "next_fast_len",
    "rfft", "rfft2", "rfftfreq", "rfftn",
]

_run = _fft.run
_quick = _fft.quick  # of a dense array along its last axis: a call costs less than half
_FFT, _IFFT, _RFFT, _IRFFT = range(4)
_as_floats = {c: c for c in "fdFD"} | {"e": "f"} | {c: "d" for c in "?bBhHiIlLqQO"}
_to_complex = {"f": "F", "d": "D", "F": "F", "D": "D"}
_to_real = {"F": "f", "D": "d"}


def _floats(x):
    """An array of one of the four types that the library has, in the machine's order of bytes."""
    x = _np.asarray(x)
    dtype = x.dtype
    char = dtype.char
    if char in "dDfF" and dtype.isnative:
        return x
    if char not in _as_floats:
        raise TypeError(f"no transforms of {dtype}: float32 and float64, complex64 and complex128")
    return x.astype(_as_floats[char])


def _workers(workers):
    if workers is None:
        return 0
    workers = _operator.index(workers)
    cpus = _os.cpu_count() or 1
    if workers == 0 or workers < -cpus:
        raise ValueError(f"workers is a number of threads, or negative, down to {-cpus}, to count from above")
    return workers if workers > 0 else workers + 1 + cpus


def _together(x, s, workers):
    """How many axes are transformed at a time: three, as in a descriptor, or one, which leaves the workers more to
    share; the bits are the same where the last axis, which carries the scale, is not a single point."""
    few = x.size < workers * _math.prod(s)
    return 1 if workers > 1 and few and x.size >= 1 << 19 and s[-1] > 1 else 3


def _scales(norm, points):
    """Of forward and backward transforms."""
    if norm is None or norm == "backward":
        return 1.0, 1.0 / points
    if norm == "ortho":
        return (_math.sqrt(1.0 / points),) * 2
    if norm == "forward":
        return 1.0 / points, 1.0
    raise ValueError(f'Invalid norm value {norm!r}, should be "backward", "ortho" or "forward"')


def _axes_and_lengths(x, s, axes):
    ndim = x.ndim
    if axes is not None:
        axes = tuple(_operator.index(a) for a in (axes if _np.iterable(axes) else (axes,)))
        if any(a >= ndim or a < -ndim for a in axes):
            raise ValueError("axes exceeds dimensionality of input")
        axes = tuple(a % ndim for a in axes)
        if len(set(axes)) != len(axes):
            raise ValueError("all axes must be unique")
    if s is None:
        axes = tuple(range(ndim)) if axes is None else axes
        s = tuple(x.shape[a] for a in axes)
    else:
        s = tuple(_operator.index(n) for n in (s if _np.iterable(s) else (s,)))
        if axes is None:
            if len(s) > ndim:
                raise ValueError("shape requires more axes than are present")
            axes = tuple(range(ndim - len(s), ndim))
        elif len(s) != len(axes):
            raise ValueError("when given, axes and shape arguments have to be of the same length")
        s = tuple(x.shape[a] if n == -1 else n for n, a in zip(s, axes))
    if any(n < 1 for n in s):
        raise ValueError(f"invalid number of data points ({s}) specified")
    return axes, s


def _resize(x, axes, s):
    """`x` cut, or filled up with zeros, to lengths `s` of `axes`; whether that is a new array."""
    if all(x.shape[a] == n for a, n in zip(axes, s)):
        return x, False
    shape = list(x.shape)
    part = [slice(None)] * x.ndim
    for a, n in zip(axes, s):
        part[a] = slice(0, min(n, shape[a]))
        shape[a] = n
    if all(n <= x.shape[a] for a, n in zip(axes, s)):
        return x[tuple(part)], False
    resized = _np.zeros(shape, x.dtype)
    resized[tuple(part)] = x[tuple(part)]
    return resized, True


def _check(plan):
    if plan is not None:
        raise NotImplementedError("plans of others are not used")


def _complex(x, axes, s, norm, overwrite_x, workers, forward):
    """A complex spectrum, or signal, of lengths `s`."""
    points = _math.prod(s)
    forward_scale, backward_scale = _scales(norm, points)
    workers = _workers(workers)
    x, own = _resize(x, axes, s)
    if not axes:
        return x.copy()
    if x.dtype.kind == "f" and axes[-1] == x.ndim - 1 and len(axes) <= 3:
        # The halves of a real signal's spectrum mirror one another. Backward, both are conjugates.
        out = _np.empty(x.shape, _to_complex[x.dtype.char])
        if x.size:
            scale = forward_scale if forward else backward_scale
            _run(_np.ascontiguousarray(x), out, axes, True, scale, scale, workers, _together(x, s, workers))
            _fft.complete(out, axes)
        return out if forward else _np.conjugate(out, out=out)
    keep = (own or overwrite_x) and x.dtype.kind == "c" and x.flags.carray
    out = x if keep else _np.array(x, dtype=_to_complex[x.dtype.char], order="C")
    if out.size:
        _run(out, out, axes, forward, forward_scale, backward_scale, workers, _together(x, s, workers))
    return out


def _half(x, axes, s, norm, workers, forward):
    """The half spectrum of a real signal of lengths `s`; its conjugate, if not forward."""
    if x.dtype.kind == "c":
        raise TypeError("x must be a real sequence")
    forward_scale, backward_scale = _scales(norm, _math.prod(s))
    workers = _workers(workers)
    x, _ = _resize(x, axes, s)
    x = _np.ascontiguousarray(x)
    shape = list(x.shape)
    shape[axes[-1]] = shape[axes[-1]] // 2 + 1
    out = _np.empty(shape, _to_complex[x.dtype.char])
    if out.size:
        scale = forward_scale if forward else backward_scale
        _run(x, out, axes, True, scale, scale, workers, _together(x, s, workers))
    return out if forward else _np.conjugate(out, out=out)


def _real(x, axes, s, norm, overwrite_x, workers, forward):
    """The real signal of lengths `s` from its half spectrum; from the conjugate, if forward."""
    forward_scale, backward_scale = _scales(norm, _math.prod(s))
    workers = _workers(workers)
    half = (*s[:-1], s[-1] // 2 + 1)
    x, own = _resize(x, axes, half)
    if forward:
        x, own = _np.conjugate(x), True
    scale = forward_scale if forward else backward_scale
    if x.dtype.kind != "c" or not x.flags.carray:
        x, own = _np.array(x, dtype=_to_complex[x.dtype.char], order="C"), True
    together = _together(x, s, workers)
    outer, axes = axes[:-together], axes[-together:]
    if outer:
        x = x if own or overwrite_x else x.copy()
        if x.size:
            outer = outer[::-1] if together == 1 else outer  # in the order of a descriptor
            _run(x, x, outer, False, 1.0, 1.0, workers, together)
    shape = list(x.shape)
    shape[axes[-1]] = s[-1]
    out = _np.empty(shape, _to_real[x.dtype.char])
    if out.size:
        _run(x, out, axes, False, scale, scale, workers, together)
    return out


# What scipy.fft has: one-dimensional transforms along an axis, and those of two and more.

def _axis(x, axis):
    axis = _operator.index(axis)
    if not -x.ndim <= axis < x.ndim:
        raise _np.AxisError(axis, x.ndim)
    return axis % x.ndim


def _length(n, default):
    if n is None:
        n = default
    n = _operator.index(n)
    if n < 1:
        raise ValueError(f"invalid number of data points ({n}) specified")
    return n


def fft(x, n=None, axis=-1, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The spectrum of a signal along an axis: X[k] = sum of x[j] exp(-2 pi i j k / n).

    Parameters
    ----------
    x : array_like
        The signal, real or complex.
    n : int, optional
        Length of the transform: `x` is cut, or filled up with zeros.
    axis : int
        The axis to transform.
    norm : {"backward", "ortho", "forward"}, optional
        Who divides by n: the inverse (as None), both by its square root, or the forward transform.
    overwrite_x : bool
        Whether the memory of `x` may be used.
    workers : int, optional
        Threads that share the transforms of an array of more dimensions. Negative numbers count from the number of
        processors. By default one; if the environment variable OMP_NUM_THREADS is set, those of the OpenMP runtime.
    plan : None
        Not used.

    Returns
    -------
    ndarray
        complex64 for single precision, else complex128.
    """
    if axis == -1 and norm is None and workers is None and plan is None and not overwrite_x:
        result = _quick(x, n, _FFT)
        if result is not None:
            return result
    _check(plan)
    x = _floats(x)
    axis = _axis(x, axis)
    return _complex(x, (axis,), (_length(n, x.shape[axis]),), norm, overwrite_x, workers, True)


def ifft(x, n=None, axis=-1, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The inverse of `fft`, with the same arguments."""
    if axis == -1 and norm is None and workers is None and plan is None and not overwrite_x:
        result = _quick(x, n, _IFFT)
        if result is not None:
            return result
    _check(plan)
    x = _floats(x)
    axis = _axis(x, axis)
    return _complex(x, (axis,), (_length(n, x.shape[axis]),), norm, overwrite_x, workers, False)


def rfft(x, n=None, axis=-1, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The first half of the spectrum of a real signal, n // 2 + 1 numbers; arguments of `fft`."""
    if axis == -1 and norm is None and workers is None and plan is None and not overwrite_x:
        result = _quick(x, n, _RFFT)
        if result is not None:
            return result
    _check(plan)
    x = _floats(x)
    axis = _axis(x, axis)
    return _half(x, (axis,), (_length(n, x.shape[axis]),), norm, workers, True)


def irfft(x, n=None, axis=-1, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The inverse of `rfft`: a real signal of length n, unless given 2 (m - 1) for m numbers of `x`."""
    if axis == -1 and norm is None and workers is None and plan is None and not overwrite_x:
        result = _quick(x, n, _IRFFT)
        if result is not None:
            return result
    _check(plan)
    x = _floats(x)
    axis = _axis(x, axis)
    return _real(x, (axis,), (_length(n, 2 * (x.shape[axis] - 1)),), norm, overwrite_x, workers, False)


def hfft(x, n=None, axis=-1, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The real spectrum of a signal that is its own mirrored conjugate, of which `x` is the first half."""
    _check(plan)
    x = _floats(x)
    axis = _axis(x, axis)
    return _real(x, (axis,), (_length(n, 2 * (x.shape[axis] - 1)),), norm, overwrite_x, workers, True)


def ihfft(x, n=None, axis=-1, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The inverse of `hfft`."""
    _check(plan)
    x = _floats(x)
    axis = _axis(x, axis)
    return _half(x, (axis,), (_length(n, x.shape[axis]),), norm, workers, False)


def fftn(x, s=None, axes=None, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The spectrum of a signal of several dimensions.

    Parameters
    ----------
    x : array_like
        The signal, real or complex.
    s : sequence of ints, optional
        Lengths of the transforms of `axes`, or of the last axes.
    axes : sequence of ints, optional
        The axes to transform: all, or as many of the last as `s` has lengths.
    norm, overwrite_x, workers, plan
        As of `fft`.
    """
    _check(plan)
    x = _floats(x)
    axes, s = _axes_and_lengths(x, s, axes)
    return _complex(x, axes, s, norm, overwrite_x, workers, True)


def ifftn(x, s=None, axes=None, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The inverse of `fftn`, with the same arguments."""
    _check(plan)
    x = _floats(x)
    axes, s = _axes_and_lengths(x, s, axes)
    return _complex(x, axes, s, norm, overwrite_x, workers, False)


def _half_axes(x, s, axes, of_spectrum):
    given = s is not None
    axes, s = _axes_and_lengths(x, s, axes)
    if not axes:
        raise ValueError("at least 1 axis must be transformed")
    if of_spectrum and not given:
        s = (*s[:-1], _length(None, 2 * (s[-1] - 1)))
    return axes, s


def rfftn(x, s=None, axes=None, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The half spectrum of a real signal, halved along the last of `axes`; arguments of `fftn`."""
    _check(plan)
    x = _floats(x)
    axes, s = _half_axes(x, s, axes, False)
    return _half(x, axes, s, norm, workers, True)


def irfftn(x, s=None, axes=None, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The inverse of `rfftn`: a real signal of lengths `s`, the last one unless given 2 (m - 1)."""
    _check(plan)
    x = _floats(x)
    axes, s = _half_axes(x, s, axes, True)
    return _real(x, axes, s, norm, overwrite_x, workers, False)


def hfftn(x, s=None, axes=None, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The real spectrum of a signal that is its own mirrored conjugate, of which `x` is a half."""
    _check(plan)
    x = _floats(x)
    axes, s = _half_axes(x, s, axes, True)
    return _real(x, axes, s, norm, overwrite_x, workers, True)


def ihfftn(x, s=None, axes=None, norm=None, overwrite_x=False, workers=None, *, plan=None):
    """The inverse of `hfftn`."""
    _check(plan)
    x = _floats(x)
    axes, s = _half_axes(x, s, axes, False)
    return _half(x, axes, s, norm, workers, False)


def fft2(x, s=None, axes=(-2, -1), norm=None, overwrite_x=False, workers=None, *, plan=None):
    """`fftn` of two axes."""
    return fftn(x, s, axes, norm, overwrite_x, workers, plan=plan)


def ifft2(x, s=None, axes=(-2, -1), norm=None, overwrite_x=False, workers=None, *, plan=None):
    """`ifftn` of two axes."""
    return ifftn(x, s, axes, norm, overwrite_x, workers, plan=plan)


def rfft2(x, s=None, axes=(-2, -1), norm=None, overwrite_x=False, workers=None, *, plan=None):
    """`rfftn` of two axes."""
    return rfftn(x, s, axes, norm, overwrite_x, workers, plan=plan)


def irfft2(x, s=None, axes=(-2, -1), norm=None, overwrite_x=False, workers=None, *, plan=None):
    """`irfftn` of two axes."""
    return irfftn(x, s, axes, norm, overwrite_x, workers, plan=plan)


def hfft2(x, s=None, axes=(-2, -1), norm=None, overwrite_x=False, workers=None, *, plan=None):
    """`hfftn` of two axes."""
    return hfftn(x, s, axes, norm, overwrite_x, workers, plan=plan)


def ihfft2(x, s=None, axes=(-2, -1), norm=None, overwrite_x=False, workers=None, *, plan=None):
    """`ihfftn` of two axes."""
    return ihfftn(x, s, axes, norm, overwrite_x, workers, plan=plan)


def next_fast_len(target, real=False):
    """The smallest length from `target` on that is a product of 2, 3, 5 and 7: the good lengths of the library.

    >>> next_fast_len(1021)
    1024
    """
    target = _operator.index(target)
    if target < 1:
        raise ValueError("target is to be positive")
    best = 1 << (target - 1).bit_length()
    for seven in _powers(7, best):
        for five in _powers(5, best // seven):
            for three in _powers(3, best // (seven * five)):
                odd = seven * five * three
                best = min(best, odd << max(0, -(-target // odd) - 1).bit_length())
    return best


def _powers(base, limit):
    power = 1
    while power <= limit:
        yield power
        power *= base


# The cache

class CacheInfo(_NamedTuple):
    """What `cache_info` tells: how many transforms are set up, of how many points together, and the bounds of both."""

    transforms: int
    most_transforms: int
    points: int
    most_points: int


def cache_info():
    """What the cache holds: transforms that are set up, and the sum of their numbers of points; and its bounds."""
    return CacheInfo(*_fft.cache_state())


def cache_limit(transforms, points):
    """Sets the bounds of the cache, 64 and 2**23 at first; what was used longest ago is dropped first."""
    if transforms < 0 or points < 0:
        raise ValueError("bounds are not negative")
    _fft.limit_cache(transforms, points)


def cache_clear():
    """Empties the cache."""
    _, transforms, _, points = _fft.cache_state()
    _fft.limit_cache(0, 0)
    _fft.limit_cache(transforms, points)


# The backend for SciPy

__ua_domain__ = "numpy.scipy.fft"
_served = {f.__name__: f for f in (
    fft, ifft, rfft, irfft, hfft, ihfft, fft2, ifft2, rfft2, irfft2, hfft2, ihfft2,
    fftn, ifftn, rfftn, irfftn, hfftn, ihfftn)}


def __ua_function__(method, args, kwargs):
    function = _served.get(method.__name__)
    if function is None or not args:
        return NotImplemented
    x = args[0]
    if getattr(x, "dtype", None) is not None and x.dtype.char not in _as_floats:
        return NotImplemented  # of long doubles, SciPy keeps the precision
    if len(args) < 6 and kwargs.get("workers") is None:
        kwargs = {**kwargs, "workers": _sys.modules["scipy.fft"].get_workers()}  # as scipy.fft.set_workers() has set
    return function(*args, **kwargs)
