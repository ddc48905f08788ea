"""Vector functions as ufuncs: values, errors, memory layouts and threads, beside NumPy and SciPy."""

import ctypes
import re
from pathlib import Path

import numpy as np
import pytest
import scipy.special
from hypothesis import given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp

import qkr
from qkr import _ufuncs

ALL = {name: f for name, f in vars(_ufuncs).items() if isinstance(f, np.ufunc)}
# What NumPy does not have under the same name.
OTHER = {
    "erf": scipy.special.erf, "erfc": scipy.special.erfc, "erfinv": scipy.special.erfinv,
    "invsqrt": lambda x: 1 / np.sqrt(x), "invcbrt": lambda x: 1 / np.cbrt(x),
    "nearbyint": np.rint, "round_half_away": lambda x: np.copysign(np.floor(np.abs(x) + 0.5), x),
    "sincos": lambda x: (np.sin(x), np.cos(x)),
}
REFERENCE = {name: OTHER.get(name) or getattr(np, name) for name in ALL}
ERROR = {"f": 3e-7, "d": 1e-15, "F": 1e-6, "D": 1e-14}
VARIANTS = [(name, types) for name, f in ALL.items() for types in f.types]


def arguments(name, types, n=1000):
    rng = np.random.default_rng(n)
    low = 1.0 if name == "arccosh" else 0.05
    for char in types.split("->")[0]:
        x = rng.uniform(low, low + 0.9, n)
        yield (x + 1j * rng.uniform(0.1, 1, n) if char in "FD" else x).astype(char)


def as_tuple(result):
    return result if isinstance(result, tuple) else (result,)


def check(name, ours, theirs):
    for a, b in zip(as_tuple(ours), as_tuple(theirs), strict=True):
        np.testing.assert_allclose(a, b.astype(a.dtype), rtol=ERROR[a.dtype.char] * 20, err_msg=name)


@pytest.mark.parametrize("name, types", VARIANTS)
def test_values_and_types(name, types):
    x = list(arguments(name, types))
    with np.errstate(all="raise", under="ignore"):
        ours = ALL[name](*x)
    assert [r.dtype.char for r in as_tuple(ours)] == list(types.split("->")[1])
    wide = [a.astype("D" if a.dtype.kind == "c" else "d") for a in x]
    check(name, ours, REFERENCE[name](*wide))


def test_every_vector_function_of_the_headers_is_there():
    headers = Path(__file__).resolve().parents[2] / "include" / "qkr"
    declared = set()
    for header in ("vecmath.h", "vecmath_inverse.h", "vecmath_exact.h", "vecmath_complex.h"):
        declared |= set(re.findall(r"\b(_vxm[sdcz][A-Z]\w*?(?:_HA)?)\(int32_t n,", (headers / header).read_text()))
    declared = {name for name in declared if not re.search(r"_(21|50)$|[Pp]ack", name)}
    docs = " ".join(f.__doc__ for f in ALL.values())
    missing = {name for name in declared if name not in docs and name.replace("Powx", "Pow") not in docs}
    assert len(declared) > 80 and not missing


def laid_out(x, layout):
    """An equal array in another layout."""
    if layout == "dense":
        return x.copy()
    if layout == "reversed":
        return x[::-1].copy()[::-1]
    if layout == "swapped":
        return x.byteswap().newbyteorder()
    if layout == "unaligned":
        raw = np.empty(x.nbytes + 1, np.uint8)[1:].view(x.dtype)
        raw[...] = x
        return raw
    wide = np.zeros((x.size, 3), x.dtype)
    wide[:, 1] = x
    return wide[:, 1]


LAYOUTS = ["dense", "strided", "reversed", "swapped", "unaligned"]


@settings(max_examples=300, deadline=None)
@given(st.sampled_from(VARIANTS), st.sampled_from([1, 2, 7, 255, 256, 511, 1025, 3000]), st.data())
def test_layouts_give_the_same_bits(variant, n, data):
    name, types = variant
    f = ALL[name]
    x = list(arguments(name, types, n))
    expected = as_tuple(f(*x))
    places = [laid_out(r, data.draw(st.sampled_from(LAYOUTS))) for r in expected]
    for place in places:
        place[...] = 0
    f(*(laid_out(a, data.draw(st.sampled_from(LAYOUTS))) for a in x), *places)
    for got, want in zip(places, expected):
        assert np.array_equal(got, want)


@given(hnp.mutually_broadcastable_shapes(num_shapes=2, max_dims=4, max_side=5), st.sampled_from("fd"))
def test_broadcasting(shapes, char):
    rng = np.random.default_rng(0)
    a, b = (rng.uniform(0.1, 2, shape).astype(char) for shape in shapes.input_shapes)
    for f in (qkr.power, qkr.hypot, qkr.arctan2):
        result = f(a, b)
        assert result.shape == shapes.result_shape
        full = [x.copy() for x in np.broadcast_arrays(a, b)]
        assert np.array_equal(result, f(*full))


@pytest.mark.parametrize("n", [1, 10, 600, 5000])
def test_one_number_for_all(n):
    x = np.linspace(0.5, 2, n)
    for number in (2.5, np.float64(-0.5), np.array(3.0)):
        assert np.array_equal(qkr.power(x, number), qkr.power(x, np.full(n, number)))
        assert np.array_equal(qkr.power(x[::-1], number), qkr.power(x, np.full(n, number))[::-1])
        assert np.array_equal(qkr.hypot(number, x), qkr.hypot(np.full(n, number), x))
    assert np.array_equal(qkr.power(2.0, x), qkr.power(np.full(n, 2.0), x))
    out = np.empty(n)
    qkr.exp(np.float64(1.0), out=out)
    assert (out == qkr.exp(1.0)).all()


def test_where_leaves_the_others_alone():
    x = np.linspace(-1, 1, 3000)
    out = np.full_like(x, 7.0)
    with np.errstate(all="raise"):
        qkr.log(x, out=out, where=x > 0)
    assert (out[x <= 0] == 7).all() and np.array_equal(out[x > 0], qkr.log(x[x > 0]))


def test_reduce_accumulate_outer_at():
    x = np.random.default_rng(1).uniform(1, 2, 2000)
    check("hypot", qkr.hypot.reduce(x), np.hypot.reduce(x))
    check("hypot", qkr.hypot.accumulate(x), np.hypot.accumulate(x))
    check("hypot", qkr.hypot.reduce(x.reshape(20, 100), axis=0), np.hypot.reduce(x.reshape(20, 100), axis=0))
    check("power", qkr.power.outer(x[:30], x[:40]), np.power.outer(x[:30], x[:40]))
    assert qkr.hypot.reduce([]) == 0
    y = x.copy()
    qkr.sqrt.at(y, [0, 0, 1])
    check("sqrt", y[:3], np.array([x[0] ** 0.25, x[1] ** 0.5, x[2]]))


@settings(max_examples=200, deadline=None)
@given(st.integers(1, 1500), st.integers(-1600, 1600), st.sampled_from([1, 2, 3, -1, -2]), st.booleans())
def test_overlapping_memory(n, shift, step, same_step):
    memory = np.random.default_rng(2).uniform(1, 2, 8000)
    source = memory[2000 + shift:][: n * abs(step): abs(step)][:: 1 if step > 0 else -1]
    target = memory[2000:][: n * abs(step): abs(step)][:: 1 if step > 0 or not same_step else -1]
    expected = qkr.exp(source.copy())
    qkr.exp(source, out=target)
    assert np.array_equal(target, expected)


def test_interleaved_columns_are_no_overlap():
    a = np.random.default_rng(3).uniform(1, 2, (3000, 2))
    expected = qkr.exp(a[:, 0].copy())
    qkr.exp(a[:, 0], out=a[:, 1])
    assert np.array_equal(a[:, 1], expected)


@pytest.mark.parametrize("n", [1, 8, 600, 20000])
def test_results_in_place(n):
    for name, types in VARIANTS:
        x = list(arguments(name, types, n))
        expected = as_tuple(ALL[name](*x))[0]
        if len(as_tuple(ALL[name](*x))) == 1:
            assert np.array_equal(ALL[name](*x, out=x[0]), expected), name


# Errors

ERRORS = [
    (qkr.log, (0.0,), "divide"), (qkr.log, (-1.0,), "invalid"), (qkr.exp, (1000.0,), "over"),
    (qkr.exp, (-1000.0,), "under"), (qkr.sqrt, (-1.0,), "invalid"), (qkr.divide, (1.0, 0.0), "divide"),
    (qkr.divide, (0.0, 0.0), "invalid"), (qkr.divide, (1e300, 1e-300), "over"), (qkr.reciprocal, (0.0,), "divide"),
    (qkr.power, (0.0, -1.0), "divide"), (qkr.power, (-1.0, 0.5), "invalid"), (qkr.power, (10.0, 400.0), "over"),
    (qkr.hypot, (1.7e308, 1.7e308), "over"), (qkr.sincos, (np.inf,), "invalid"), (qkr.erfinv, (1.0,), "divide"),
    (qkr.log, (0j,), "divide"), (qkr.exp, (1000 + 1j,), "over"), (qkr.arctanh, (1 + 0j,), "divide"),
]
MESSAGE = {"divide": "divide by zero", "invalid": "invalid value", "over": "overflow", "under": "underflow"}


@pytest.mark.parametrize("f, bad, kind", ERRORS)
@pytest.mark.parametrize("n", [1, 3, 700, 30000])
@pytest.mark.parametrize("layout", ["dense", "strided"])
def test_errstate_is_answered(f, bad, kind, n, layout):
    char = "D" if isinstance(bad[0], complex) else "d"
    x = [np.full(n, 0.5, char) for _ in bad]
    if char == "D":
        x[0] += 0.25j
    for a, value in zip(x, bad):
        a[n // 2] = value
    x = [laid_out(a, layout) for a in x]
    ignored = {k: "ignore" for k in MESSAGE}
    with np.errstate(**{**ignored, kind: "raise"}):
        with pytest.raises(FloatingPointError, match=MESSAGE[kind]):
            f(*x)
    with np.errstate(**{**{k: "raise" for k in MESSAGE}, kind: "ignore"}):
        f(*x)
    with np.errstate(**{**ignored, kind: "warn"}):
        with pytest.warns(RuntimeWarning, match=f"{MESSAGE[kind]} encountered in {f.__name__}"):
            f(*x)


def test_several_errors_are_all_told():
    told = []
    x = np.array([0.0, -1.0, 1.0])
    with np.errstate(all="call", call=lambda kind, flag: told.append(kind)):
        qkr.log(x)
        qkr.log(x, out=x)
        qkr.exp([1000.0, -1000.0])
    assert told == ["divide by zero", "invalid value"] * 2 + ["overflow", "underflow"]


@pytest.mark.parametrize("name, types", VARIANTS)
def test_nan_and_ordinary_numbers_raise_nothing(name, types):
    x = list(arguments(name, types, 100))
    for a in x:
        a[::7] = np.nan
    with np.errstate(all="raise"):
        ALL[name](*x)


def test_the_threads_own_policy_stays():
    library = ctypes.CDLL("libqkr.so.0")
    get_mode, set_mode = (library.__getattr__(name) for name in ("_vxmGetMode", "_vxmSetMode"))
    set_status, get_callback = (library.__getattr__(name) for name in ("_vxmSetErrStatus", "_vxmGetErrorCallBack"))
    get_callback.restype = ctypes.c_void_p
    before = get_mode()
    try:
        set_mode(0x100)  # ignore
        set_status(-7)
        mode = get_mode()
        with np.errstate(all="ignore"):
            qkr.log(np.zeros(3))
            qkr.log(np.zeros(30000))
        assert get_mode() == mode and set_status(0) == -7 and get_callback() is None
        with pytest.warns(RuntimeWarning, match="divide by zero"):
            qkr.log(np.zeros(3))
    finally:
        set_mode(before)


# Arguments

def test_arguments_that_ufuncs_take():
    x = np.linspace(0.1, 1, 10)
    assert qkr.exp(x, dtype="f").dtype == np.float32
    assert qkr.exp([1, 2]).dtype == np.float64 and qkr.exp(np.float16(1)).dtype == np.float32
    assert isinstance(qkr.exp(1.0), np.float64) and qkr.exp(np.array(1.0)).shape == ()
    assert qkr.exp(np.ones((0, 3))).shape == (0, 3)
    assert qkr.exp(x.astype("f"), out=np.empty(10)).dtype == np.float64
    assert isinstance(qkr.exp(np.ma.masked_array(x, x > 0.5)), np.ma.MaskedArray)
    a, b = np.empty(10), np.empty(10)
    assert qkr.sincos(x, out=(a, b))[1] is b and qkr.modf(x, a, b)[0] is a
    out = np.empty((2, 10))
    qkr.exp(x, out)
    assert np.array_equal(out[0], out[1])
    for bad in [lambda: qkr.exp(x, out=np.empty(9)), lambda: qkr.exp(x, np.empty(9)), lambda: qkr.exp(x, x, x),
                lambda: qkr.exp(), lambda: qkr.exp("a"), lambda: qkr.exp(x, out=np.empty(10, int)),
                lambda: qkr.exp(x, nonsense=1), lambda: qkr.hypot(x, x[:3]), lambda: qkr.exp(np.longdouble(1))]:
        with pytest.raises((TypeError, ValueError)):
            bad()
    read_only = np.empty(10)
    read_only.flags.writeable = False
    with pytest.raises(ValueError):
        qkr.exp(x, read_only)


def test_modf_has_numpys_order():
    x = np.array([1.5, -2.25, -0.0, np.inf, -np.inf])
    for a, b in zip(qkr.modf(x), np.modf(x)):
        assert np.array_equal(a, b) and np.array_equal(np.signbit(a), np.signbit(b))


# Threads

def test_threads_compute_the_same_bits(in_threads):
    x = np.random.default_rng(4).uniform(-1, 2, 50000)

    def work(k):
        with np.errstate(all="ignore"):
            return [qkr.log(x) for _ in range(20)]

    expected = work(0)[0]
    for result in sum(in_threads(work), []):
        assert np.array_equal(result, expected, equal_nan=True)
