"""Convolution and correlation beside SciPy's."""

import numpy as np
import pytest
import scipy.signal
from hypothesis import assume, given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp

import qkr.signal

MODES = st.sampled_from(["full", "same", "valid"])
FLOATS = "fdFD"
INTEGERS = ["b", "B", "h", "H", "i", "I", "l", "L"]


def array(rng, shape, char):
    if np.dtype(char).kind in "ui":
        return rng.integers(-100 if np.dtype(char).kind == "i" else 0, 100, shape).astype(char)
    x = rng.standard_normal(shape)
    return (x + 1j * rng.standard_normal(shape) if char in "FD" else x).astype(char)


@st.composite
def operands(draw, chars, most=3):
    dims = draw(st.integers(1, most))
    longest = {1: 200, 2: 20, 3: 7, 4: 4}[dims]
    rng = np.random.default_rng(draw(st.integers(0, 99)))
    both = []
    for _ in range(2):
        x = array(rng, draw(hnp.array_shapes(min_dims=dims, max_dims=dims, max_side=longest)),
                  draw(st.sampled_from(chars)))
        both.append(draw(st.sampled_from([x, x.T.copy().T, x[::-1], x[..., ::-1], x[..., ::2]])))
    return both


def both_ways(name, x, y, *options):
    """Results of both, or the exception of both. SciPy would transform operands of mixed types in single precision."""
    common = np.result_type(x, y)
    results = []
    for module, a, b in ((scipy.signal, x.astype(common), y.astype(common)), (qkr.signal, x, y)):
        try:
            results.append(getattr(module, name)(a, b, *options))
        except ValueError as error:
            results.append(type(error))
    return results


def assert_close(ours, theirs, x, y):
    if isinstance(theirs, type) or isinstance(ours, type):
        assert ours is theirs
        return
    assert ours.shape == theirs.shape and ours.dtype == theirs.dtype
    scale = np.linalg.norm(x.ravel().astype("D")) * np.linalg.norm(y.ravel().astype("D"))
    bound = 2e-6 if theirs.dtype.char in "fF" else 1e-14
    assert np.abs(ours.astype("D") - theirs.astype("D")).max() <= bound * scale


@settings(max_examples=300, deadline=None)
@given(operands(FLOATS, most=4), MODES, st.sampled_from(["auto", "direct", "fft"]), st.booleans())
def test_floating_point(arrays, mode, method, correlation):
    x, y = arrays
    name = "correlate" if correlation else "convolve"
    theirs, ours = both_ways(name, x, y, mode, method)
    assert_close(ours, theirs, x, y)


@settings(max_examples=200, deadline=None)
@given(operands(INTEGERS), MODES, st.sampled_from(["auto", "direct"]))
def test_integers_are_exact(arrays, mode, method):
    x, y = arrays
    assume(np.result_type(x, y).kind in "ui")
    theirs, ours = both_ways("convolve", x, y, mode, "direct")
    if isinstance(theirs, type):
        assert ours is theirs
    else:
        assert np.array_equal(ours, theirs) and ours.dtype == theirs.dtype


def test_large_integers_wrap_around_and_floats_beside_integers():
    rng = np.random.default_rng(1)
    for dtype in (np.int64, np.uint64):
        info = np.iinfo(dtype)
        x, y = (rng.integers(info.min, info.max, n, dtype) for n in (50, 7))
        assert np.array_equal(qkr.signal.convolve(x, y), np.convolve(x, y))
    x = rng.integers(-2**30, 2**30, 3000)
    assert np.array_equal(qkr.signal.convolve(x, x[:1000]), np.convolve(x, x[:1000]))
    assert qkr.signal.convolve(x, np.ones(3, np.float32)).dtype == np.float64
    assert qkr.signal.convolve(np.ones(3, np.float16), np.ones(3, np.float16)).dtype == np.float16
    assert qkr.signal.convolve([True, False, True], [True, True]).tolist() == [True] * 4


@settings(max_examples=200, deadline=None)
@given(st.data())
def test_oaconvolve_along_axes(data):
    dims = data.draw(st.integers(1, 4))
    axes = data.draw(st.lists(st.integers(0, dims - 1), min_size=1, max_size=dims, unique=True))
    x_shape, y_shape = [], []
    for k in range(dims):
        if k in axes:
            x_shape.append(data.draw(st.integers(1, 40 if len(axes) == 1 else 9)))
            y_shape.append(data.draw(st.integers(1, 12)))
        else:
            n = data.draw(st.integers(1, 4))
            x_shape.append(data.draw(st.sampled_from([1, n])))
            y_shape.append(data.draw(st.sampled_from([1, n])))
    rng = np.random.default_rng(2)
    x, y = (array(rng, s, data.draw(st.sampled_from(FLOATS))) for s in (x_shape, y_shape))
    assume(x.shape != y.shape)  # SciPy's fftconvolve would be in question
    theirs, ours = both_ways("oaconvolve", x, y, data.draw(MODES), axes)
    assert_close(ours, theirs, x, y)


def test_a_product_along_an_axis_of_length_one():
    x, y = np.array([[1.0, 2.0]]), np.array([[3.0, 4.0], [5.0, 6.0]])
    for mode in ("full", "same", "valid"):
        theirs, ours = both_ways("oaconvolve", x, y, mode, [0])
        assert np.array_equal(ours, theirs)


def test_long_signals():
    rng = np.random.default_rng(3)
    for char in FLOATS:
        x, y = array(rng, 100000, char), array(rng, 301, char)
        assert_close(qkr.signal.oaconvolve(x, y, "same"), scipy.signal.oaconvolve(x, y, "same"), x, y)
        picture, kernel = array(rng, (200, 300), char), array(rng, (15, 20), char)
        assert_close(qkr.signal.convolve(picture, kernel), scipy.signal.convolve(picture, kernel), picture, kernel)


def test_infinities_stay_where_they_belong():
    x = np.ones(500)
    x[100] = np.inf
    z = qkr.signal.convolve(x, np.ones(20), method="direct")
    assert np.array_equal(np.flatnonzero(np.isinf(z)), np.arange(100, 120)) and not np.isnan(z).any()


@pytest.mark.parametrize("call, error", [
    (lambda: qkr.signal.convolve(np.ones(3), np.ones((3, 3))), ValueError),
    (lambda: qkr.signal.convolve(np.ones(3), []), ValueError),
    (lambda: qkr.signal.convolve(np.ones(3), np.ones(3), "other"), ValueError),
    (lambda: qkr.signal.convolve(np.ones(3), np.ones(3), method="other"), ValueError),
    (lambda: qkr.signal.convolve(np.ones((3, 2)), np.ones((2, 3)), "valid"), ValueError),
    (lambda: qkr.signal.convolve(np.ones((1,) * 8), np.ones((1,) * 8)), ValueError),
    (lambda: qkr.signal.convolve(np.ones(3, np.longdouble), np.ones(3)), TypeError),
    (lambda: qkr.signal.convolve(["a"], [1]), TypeError),
    (lambda: qkr.signal.oaconvolve(np.ones((2, 9)), np.ones((3, 4)), axes=1), ValueError),
    (lambda: qkr.signal.oaconvolve(np.ones((2, 9)), np.ones((2, 4)), axes=[]), ValueError),
    (lambda: qkr.signal.oaconvolve(np.ones((2, 9)), np.ones((2, 4)), axes=2), ValueError),
    (lambda: qkr.signal.oaconvolve(np.ones((2, 9)), np.ones((2, 4)), axes=(1, 1)), ValueError),
])
def test_bad_arguments(call, error):
    with pytest.raises(error):
        call()


def test_numbers():
    assert qkr.signal.convolve(2.0, 3) == 6 and qkr.signal.correlate(2.0, 3j) == -6j
    assert qkr.signal.oaconvolve([], [1.0]).size == 0
    assert qkr.signal.oaconvolve([1, 2], [3, 4, 5]).tolist() == [3.0, 10.0, 13.0, 10.0]
