"""Transforms beside SciPy's, through the module and through SciPy's own functions."""

import os
import subprocess
import sys

import numpy as np
import pytest
import scipy.fft
from hypothesis import given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp

import qkr.fft

ONE = ["fft", "ifft", "rfft", "irfft", "hfft", "ihfft"]
TWO = [name + "2" for name in ONE]
MANY = [name + "n" for name in ONE]
OF_REAL = ("rfft", "ihfft")


def random_array(rng, shape, char):
    x = rng.standard_normal(shape)
    if char in "FD":
        x = x + 1j * rng.standard_normal(shape)
    return x.astype(char)


def assert_same(ours, theirs):
    assert ours.dtype == theirs.dtype and ours.shape == theirs.shape
    error = np.abs(ours.astype("D") - theirs.astype("D")).max(initial=0)
    bound = 1e-6 if theirs.dtype.char in "fF" else 1e-15
    assert error <= 8 * bound * max(1, np.abs(theirs).max(initial=0))


@st.composite
def calls(draw):
    """A function and arguments of all kinds that SciPy accepts."""
    name = draw(st.sampled_from(ONE + TWO + MANY))
    base = name.rstrip("2n")
    dims = draw(st.integers(1 if name in ONE else 2, 5))
    shape = draw(hnp.array_shapes(min_dims=dims, max_dims=dims, min_side=2, max_side=6))
    shape = draw(st.permutations([*shape[:-1], draw(st.sampled_from([2, 5, 16, 30, 37, 151, 210]))]))
    char = draw(st.sampled_from("fd" if base in OF_REAL else "fdFD"))
    x = random_array(np.random.default_rng(draw(st.integers(0, 99))), tuple(shape), char)
    x = draw(st.sampled_from([x, x.T, x[::-1], x.byteswap().newbyteorder()]))
    options = {"norm": draw(st.sampled_from([None, "backward", "ortho", "forward"])),
               "workers": draw(st.sampled_from([None, 1, 3]))}
    lengths = st.integers(2, 40)
    if name in ONE:
        options["axis"] = draw(st.integers(-dims, dims - 1))
        if draw(st.booleans()):
            options["n"] = draw(lengths)
    else:
        count = 2 if name in TWO else draw(st.integers(1, dims))
        options["axes"] = draw(st.permutations(range(-dims, 0)))[:count]
        if draw(st.booleans()):
            options["s"] = [draw(st.integers(2, 8)) for _ in options["axes"]]
    return name, x, options


@settings(max_examples=250, deadline=None)
@given(calls())
def test_all_arguments_mean_what_scipy_means(call):
    name, x, options = call
    before = x.copy()
    ours = getattr(qkr.fft, name)(x, **options)
    assert np.array_equal(x, before)
    theirs = getattr(scipy.fft, name)(x, **options)
    assert_same(ours, theirs)
    with scipy.fft.set_backend(qkr.fft, only=True):
        through = getattr(scipy.fft, name)(x, **options)
    assert np.array_equal(through, ours)


@pytest.mark.parametrize("n", [*range(1, 70), 127, 128, 149, 151, 1000, 1021, 4096, 30030, 65536])
@pytest.mark.parametrize("char", "fdFD")
def test_lengths(n, char):
    x = random_array(np.random.default_rng(n), (3, n), char)
    for name in ("fft", "ifft") + (("rfft",) if char in "fd" else ()):
        assert_same(getattr(qkr.fft, name)(x), getattr(scipy.fft, name)(x))
    if n > 1:
        half = scipy.fft.rfft(x.real)
        for m in (n, n + 1):
            assert_same(qkr.fft.irfft(half, m), scipy.fft.irfft(half, m))


@pytest.mark.parametrize("char", "fdFD")
@pytest.mark.parametrize("shape", [(1,), (2,), (9,), (100,), (3, 64), (2, 3, 45)])
def test_the_quick_way_has_the_same_bits(shape, char):
    x = random_array(np.random.default_rng(3), shape, char)
    names = ["fft", "ifft"] + (["rfft"] if char in "fd" else [])
    for name in names:
        f = getattr(qkr.fft, name)
        assert np.array_equal(f(x), f(x, norm="backward"))
        assert np.array_equal(f(x, shape[-1]), f(x))
        assert np.array_equal(f(x[..., ::-1]), f(x[..., ::-1].copy()))
    half = qkr.fft.rfft(x.real)
    for n in (shape[-1], shape[-1] ^ 1, np.int64(shape[-1])):
        if n > 0:
            assert np.array_equal(qkr.fft.irfft(half, n), qkr.fft.irfft(half, n, norm="backward"))


@pytest.mark.parametrize("x", [[1, 2, 3, 4], np.array([True, False]), np.arange(5, dtype=np.int8),
                               np.arange(6, dtype=np.float16), np.array([1, 2.5], dtype=object), 1j * np.arange(3)])
def test_other_types(x):
    assert_same(qkr.fft.fft(x), scipy.fft.fft(x))


def test_empty_batches_and_axes():
    for shape in [(0, 4), (3, 0, 4)]:
        x = np.zeros(shape)
        assert_same(qkr.fft.fft(x), scipy.fft.fft(x))
        assert_same(qkr.fft.rfft(x), scipy.fft.rfft(x))
    x = np.arange(3.0)
    assert_same(qkr.fft.fftn(x, axes=()), scipy.fft.fftn(x, axes=()))


@pytest.mark.parametrize("call, error", [
    (lambda: qkr.fft.fft([]), ValueError),
    (lambda: qkr.fft.fft([1, 2], n=0), ValueError),
    (lambda: qkr.fft.fft([1, 2], n=2.5), TypeError),
    (lambda: qkr.fft.fft([1, 2], axis=1), ValueError),
    (lambda: qkr.fft.fft(1.0), ValueError),
    (lambda: qkr.fft.fft([1, 2], norm="other"), ValueError),
    (lambda: qkr.fft.fft([1, 2], workers=0), ValueError),
    (lambda: qkr.fft.fft([1, 2], workers=-1000), ValueError),
    (lambda: qkr.fft.fft([1, 2], plan=3), NotImplementedError),
    (lambda: qkr.fft.fft(np.arange(3, dtype=np.longdouble)), TypeError),
    (lambda: qkr.fft.fft(["a"]), TypeError),
    (lambda: qkr.fft.rfft([1j]), TypeError),
    (lambda: qkr.fft.irfft([1.0]), ValueError),
    (lambda: qkr.fft.rfftn(np.ones(3), axes=()), ValueError),
    (lambda: qkr.fft.fftn(np.ones((3, 3)), axes=(0, 0)), ValueError),
    (lambda: qkr.fft.fftn(np.ones((3, 3)), axes=(2,)), ValueError),
    (lambda: qkr.fft.fftn(np.ones((3, 3)), s=(2, 2, 2)), ValueError),
    (lambda: qkr.fft.fftn(np.ones((3, 3)), s=(2,), axes=(0, 1)), ValueError),
    (lambda: qkr.fft.fftn(np.ones((3, 3)), s=(0, 2)), ValueError),
    (lambda: qkr.fft.next_fast_len(0), ValueError),
    (lambda: qkr.fft.cache_limit(-1, 1), ValueError),
])
def test_bad_arguments(call, error):
    with pytest.raises(error):
        call()


def test_overwrite_x_uses_the_memory_and_only_then():
    x = random_array(np.random.default_rng(1), (4, 50), "D")
    before = x.copy()
    expected = qkr.fft.fft(x, axis=0)
    assert np.array_equal(x, before)
    result = qkr.fft.fft(x, axis=0, overwrite_x=True)
    assert np.shares_memory(x, result) and np.array_equal(result, expected)
    read_only = before.copy()
    read_only.flags.writeable = False
    assert np.array_equal(qkr.fft.fft(read_only, axis=0, overwrite_x=True), expected)
    assert np.array_equal(read_only, before)


def test_bits_do_not_depend_on_workers_batch_or_place():
    x = random_array(np.random.default_rng(2), (9, 60, 7), "D")
    expected = qkr.fft.fft(x, axis=1)
    assert np.array_equal(qkr.fft.fft(x, axis=1, workers=4), expected)
    assert np.array_equal(np.stack([qkr.fft.fft(y, axis=0) for y in x]), expected)
    assert np.array_equal(qkr.fft.fft(x.transpose(2, 0, 1)).transpose(1, 2, 0), expected)


@given(st.integers(1, 10**7))
def test_next_fast_len(target):
    def is_fast(n):
        for p in (2, 3, 5, 7):
            while n % p == 0:
                n //= p
        return n == 1

    best = qkr.fft.next_fast_len(target)
    assert is_fast(best) and best >= target
    assert not any(map(is_fast, range(target, min(best, target + 200))))


def test_backend_leaves_to_scipy_what_is_not_served():
    x = np.arange(8.0)
    with scipy.fft.set_backend(qkr.fft):
        assert scipy.fft.fft(x.astype(np.longdouble)).dtype == np.clongdouble
        assert np.allclose(scipy.fft.idct(scipy.fft.dct(x)), x)
        qkr.fft.cache_clear()
        scipy.fft.fft2(np.ones((3, 3)), workers=2)
    assert qkr.fft.cache_info().transforms > 0


def test_backend_has_the_workers_that_are_set(monkeypatch):
    asked = []
    monkeypatch.setattr(qkr.fft, "_workers", lambda workers: asked.append(workers) or 1)
    x = np.ones((4, 4))
    with scipy.fft.set_backend(qkr.fft), scipy.fft.set_workers(3):
        scipy.fft.fft(x)
        scipy.fft.fft(x, workers=2)
        scipy.fft.fft(x, None, -1, None, False, 2)
    assert asked == [3, 2, 2]


def test_cache_keeps_its_bounds_and_what_was_used_last():
    limits = qkr.fft.cache_info()
    try:
        qkr.fft.cache_clear()
        qkr.fft.cache_limit(3, 1000)
        for n in (10, 20, 30, 10, 40):  # 20 goes
            qkr.fft.fft(np.ones(n, "D"))
        assert qkr.fft.cache_info()[:3] == (3, 3, 80)
        qkr.fft.fft(np.ones(970, "D"))  # with 40 too much; 30 has gone before
        assert qkr.fft.cache_info()[:3] == (1, 3, 970)
        qkr.fft.fft(np.ones(2000, "D"))  # too long to be kept
        assert qkr.fft.cache_info().points <= 1000
        qkr.fft.cache_limit(0, 0)
        assert_same(qkr.fft.fft(np.ones(16)), scipy.fft.fft(np.ones(16)))
        assert qkr.fft.cache_info().transforms == 0
    finally:
        qkr.fft.cache_limit(limits.most_transforms, limits.most_points)


def test_threads_share_the_cache(in_threads):
    x = [random_array(np.random.default_rng(n), (20, n), "D") for n in (64, 100, 64, 1000)]
    expected = [qkr.fft.fft(y) for y in x]
    same = in_threads(lambda k: [np.array_equal(qkr.fft.fft(x[k], workers=2), expected[k]) for _ in range(50)])
    assert np.all(same)


@pytest.mark.parametrize("name", MANY)
@pytest.mark.parametrize("norm", ["backward", "ortho"])
def test_planes_have_the_bits_of_one_thread(name, norm):
    for shape in ((750, 1001), (120, 64, 91), (2, 530, 700), (2, 12, 96, 500), (700000, 1)):
        x = random_array(np.random.default_rng(1), shape, "d" if name in ("rfftn", "ihfftn") else "F")
        function = getattr(qkr.fft, name)
        axes = range(len(shape) > 2, len(shape))
        arguments = {"s": [shape[a] for a in axes], "axes": axes, "norm": norm}
        assert np.array_equal(function(x, **arguments, workers=3), function(x, **arguments)), shape


@pytest.mark.parametrize("workers", [1, 3])
def test_named_workers_are_alone(workers):
    """They do not bring a team of the OpenMP runtime each."""
    script = f"""if True:
        import numpy as np, qkr.fft
        qkr.fft.fft(np.ones((300, 4000)), workers={workers})
        assert not any("libomp" in line for line in open("/proc/self/maps"))"""
    subprocess.run([sys.executable, "-c", script], check=True, env={**os.environ, "OMP_NUM_THREADS": "3"})


@pytest.mark.parametrize("threads", ["", "2"])
def test_fork_while_others_are_in_the_cache(threads):
    script = """if True:
        import os, signal, threading
        import numpy as np, qkr.fft
        x = [np.ones(500 + k, "D") for k in range(60)]
        def spin():
            while True:
                for y in x: qkr.fft.fft(y)
        for _ in range(3): threading.Thread(target=spin, daemon=True).start()
        for _ in range(60):
            child = os.fork()
            if child == 0:
                signal.alarm(20)
                qkr.fft.fft(x[0])
                os._exit(0)
            assert os.waitpid(child, 0)[1] == 0
        os._exit(0)"""
    subprocess.run([sys.executable, "-c", script], check=True, env={**os.environ, "OMP_NUM_THREADS": threads})
