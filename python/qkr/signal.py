"""Convolution and correlation, with the names and arguments of `scipy.signal`.

>>> import qkr.signal
>>> qkr.signal.convolve([1.0, 2.0, 3.0], [0.0, 1.0, 0.5])
array([0. , 1. , 2.5, 4. , 1.5])

Arrays of one to seven dimensions, real or complex, in single precision (which stays single) or double. Results of
integers are exact.

Notes
-----
The C functions: the tasks of qkr/convcorr.h (`__vxsNewTask` and its companions).
"""

import math as _math

import numpy as _np

from . import _signal, fft as _fft

__all__ = ["convolve", "correlate", "fftconvolve", "oaconvolve"]

# From how many elements of the smaller operand on transforms are the faster: one dimension, two, three and more. Those
# of one dimension sum directly by themselves below 32.
_BORDERS = {"d": (80, 49, 64), "f": (80, 64, 64)}
_SHORT = 32


def _check(in1, in2, mode):
    if in1.ndim != in2.ndim:
        raise ValueError("in1 and in2 should have the same dimensionality")
    if mode not in ("full", "same", "valid"):
        raise ValueError("acceptable mode flags are 'valid', 'same', or 'full'")
    if in1.size == 0 or in2.size == 0:
        raise ValueError("an operand is empty")


def _part(in1, in2, mode, axes):
    """Where the wanted results begin, and how many they are, along `axes`."""
    n1, n2 = ([a.shape[k] for k in axes] for a in (in1, in2))
    if mode == "full":
        return [0] * len(axes), [a + b - 1 for a, b in zip(n1, n2)]
    if mode == "same":
        return [(b - 1) // 2 for b in n2], n1
    if not (all(a >= b for a, b in zip(n1, n2)) or all(b >= a for a, b in zip(n1, n2))):
        raise ValueError("for 'valid' mode, one must be at least as large as the other in every dimension")
    return [min(a, b) - 1 for a, b in zip(n1, n2)], [abs(a - b) + 1 for a, b in zip(n1, n2)]


def _real(x, y, axes, start, shape, by_transform):
    """The convolution of real arrays of one type, float32 or float64."""
    # A task takes strides of one dimension as they are.
    x, y = (a if a.ndim == 1 and a.flags.aligned else _np.ascontiguousarray(a) for a in (x, y))
    z = _np.empty(shape, x.dtype)
    _signal.convolve(x, y, z, axes, start, by_transform)
    return z


def _complex(x, y, axes, start, shape, by_transform):
    """The same of arrays one or both of which are complex."""
    small, large = sorted(_math.prod(a.shape[k] for k in axes) for a in (x, y))
    if by_transform and x.dtype == y.dtype and large < 4 * small:
        lengths = [_fft.next_fast_len(x.shape[k] + y.shape[k] - 1) for k in axes]
        product = _fft.fftn(x, lengths, axes) * _fft.fftn(y, lengths, axes)
        part = [slice(None)] * x.ndim
        for k, first in zip(axes, start):
            part[k] = slice(first, first + shape[k])
        return _fft.ifftn(product, axes=axes, overwrite_x=True)[tuple(part)].copy()

    def parts(a):
        return (a.real, a.imag) if a.dtype.kind == "c" else (a, None)

    def product(a, b):
        return None if a is None or b is None else _real(a, b, axes, start, shape, by_transform)

    (a, b), (c, d) = parts(x), parts(y)
    z = _np.empty(shape, _np.result_type(x, y))
    z.real = product(a, c)
    if b is not None and d is not None:
        z.real -= product(b, d)
    terms = [term for term in (product(a, d), product(b, c)) if term is not None]
    z.imag = terms[0] if len(terms) == 1 else terms[0] + terms[1]
    return z


def _floating(x, y, axes, start, shape, by_transform):
    kind = x.dtype.kind + y.dtype.kind
    return (_real if kind == "ff" else _complex)(x, y, axes, start, shape, by_transform)


def _is_large(x, y, axes, single):
    """Whether transforms are the faster way."""
    small = min(_math.prod(a.shape[k] for k in axes) for a in (x, y))
    if len(axes) == 1 and small < _SHORT:
        return x.dtype.kind + y.dtype.kind == "ff"
    return small > _BORDERS["f" if single else "d"][min(len(axes), 3) - 1]


def _whole(x, y, axes, start, shape, method):
    """The convolution of integers, exact but for what does not fit into 64 bits: that wraps around."""
    small = min(_math.prod(a.shape[k] for k in axes) for a in (x, y))
    largest = _math.prod(max(int(a.max()), -int(a.min())) for a in (x, y))
    if largest * small < 2**53:
        x, y = x.astype(float), y.astype(float)
        # The error of transforms is at most 1e-15 of the product of norms: below a quarter, rounding removes it.
        by_transform = method == "fft" or (
            method == "auto" and _is_large(x, y, axes, False)
            and _np.linalg.norm(x.ravel()) * _np.linalg.norm(y.ravel()) < 0.25e15)
        z = _real(x, y, axes, start, shape, by_transform)
        return (_np.rint(z, out=z) if by_transform else z).astype(_np.int64)
    if small >= 2**20:
        raise ValueError("integers too large for exact sums of so many products")
    # In digits of 16 bits, whose sums of products are exact in double precision.
    digits = [[(a.astype(_np.int64).view(_np.uint64) >> _np.uint64(16 * k) & _np.uint64(0xFFFF)).astype(float)
               for k in range(4)] for a in (x, y)]
    z = _np.zeros(shape, _np.uint64)
    for i in range(4):
        for j in range(4 - i):
            term = _real(digits[0][i], digits[1][j], axes, start, shape, False)
            z += term.astype(_np.uint64) << _np.uint64(16 * (i + j))
    return z.view(_np.int64)


def _convolve(in1, in2, mode, method, axes):
    start, lengths = _part(in1, in2, mode, axes)
    shape = list(_np.broadcast_shapes(*([1 if k in axes else n for k, n in enumerate(a.shape)] for a in (in1, in2))))
    for k, n in zip(axes, lengths):
        shape[k] = n
    dtype = _np.result_type(in1, in2)
    start = tuple(start)
    if dtype.kind in "bui":
        in1, in2 = (a.astype(_np.uint8) if a.dtype.kind == "b" else a for a in (in1, in2))
        return _whole(in1, in2, axes, start, shape, method).astype(dtype)
    if dtype.char not in "efdFD":
        raise TypeError(f"no convolution of {dtype}")
    single = dtype.char in "efF"
    real = _np.float32 if single else _np.float64
    in1, in2 = (a.astype(_np.result_type(real, _np.complex64) if a.dtype.kind == "c" else real, copy=False)
                for a in (in1, in2))
    by_transform = method == "fft" or (method == "auto" and _is_large(in1, in2, axes, single))
    return _floating(in1, in2, axes, start, shape, by_transform).astype(dtype, copy=False)


def convolve(in1, in2, mode="full", method="auto"):
    """The convolution of two arrays: z[k] = sum of in1[j] in2[k - j].

    Parameters
    ----------
    in1, in2 : array_like
        Arrays of as many dimensions as each other.
    mode : {"full", "same", "valid"}
        All results; as many as `in1` has elements, from the middle; or those for which no element was missing.
    method : {"auto", "direct", "fft"}
        "direct" sums in a fixed order, and keeps infinities and NaNs to the results that they belong to; "fft" goes by
        transforms, whose errors are relative to the largest results around. "auto" takes what is faster; with
        integers, what is exact.

    Returns
    -------
    ndarray
        Of the type that NumPy gives to a product of the two.
    """
    in1, in2 = _np.asarray(in1), _np.asarray(in2)
    if in1.ndim == in2.ndim == 0:
        return in1 * in2
    _check(in1, in2, mode)
    if method not in ("auto", "direct", "fft"):
        raise ValueError("acceptable method flags are 'auto', 'direct', or 'fft'")
    return _convolve(in1, in2, mode, method, tuple(range(in1.ndim)))


def correlate(in1, in2, mode="full", method="auto"):
    """The correlation of two arrays: z[k] = sum of in1[j] conj(in2[j - k + n - 1]), n being the length of `in2`.

    Arguments are those of `convolve`.

    >>> correlate([0.0, 1.0, 2.0, 0.0], [1.0, 2.0], mode="valid")
    array([2., 5., 2.])
    """
    in1, in2 = _np.asarray(in1), _np.asarray(in2)
    if in1.ndim == in2.ndim == 0:
        return in1 * in2.conj()
    return convolve(in1, _np.conjugate(in2[(slice(None, None, -1),) * in2.ndim]), mode, method)


def oaconvolve(in1, in2, mode="full", axes=None):
    """The convolution along some axes by transforms, block by block where one operand is much longer.

    Parameters
    ----------
    in1, in2 : array_like
        Arrays of as many dimensions as each other. Along axes that are not convolved they are of one length, or of
        length 1, which is repeated.
    mode : {"full", "same", "valid"}
        As of `convolve`.
    axes : int or sequence of ints, optional
        The axes to convolve; all, if not given.

    Returns
    -------
    ndarray
        Of the type that NumPy gives to a product of the two; float64 of integers. Errors are relative to the largest
        results around.
    """
    in1, in2 = _np.asarray(in1), _np.asarray(in2)
    if in1.ndim == in2.ndim == 0:
        return in1 * in2
    if in1.ndim == in2.ndim and (in1.size == 0 or in2.size == 0):
        return _np.array([])
    _check(in1, in2, mode)
    if axes is not None and _np.size(axes) == 0:
        raise ValueError("when provided, axes cannot be empty")
    given, _ = _fft._axes_and_lengths(in1, None, axes)
    # Along an axis where one operand has length 1 a product with repetition does; the task wants one axis at least.
    axes = [k for k in given if in1.shape[k] != 1 != in2.shape[k]] or list(given[:1])
    others = [k for k in range(in1.ndim) if k not in axes]
    if any(in1.shape[k] != in2.shape[k] and 1 not in (in1.shape[k], in2.shape[k]) for k in others):
        raise ValueError(f"incompatible shapes for in1 and in2: {in1.shape} and {in2.shape}")
    if _np.result_type(in1, in2).kind in "bui":
        in1, in2 = in1.astype(float), in2.astype(float)
    result = _convolve(in1, in2, mode, "fft", tuple(sorted(axes)))
    if mode == "same":  # also along an axis where `in1` is repeated
        first = [(n - m) // 2 for n, m in zip(result.shape, in1.shape)]
        result = result[tuple(slice(i, i + m) for i, m in zip(first, in1.shape))]
    return result


fftconvolve = oaconvolve
