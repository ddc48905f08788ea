"""Streams beside the C interface's promises, NumPy's own Mersenne twister and the laws of SciPy."""

import copy
import ctypes
import pickle
import threading

import numpy as np
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from scipy import stats

import qkr.random as qr

PSEUDO = [qr.MCG31M1, qr.R250, qr.MRG32K3A, qr.MCG59, qr.WH, qr.MT19937, qr.MT2203, qr.Philox]
FULL_WORDS = [qr.R250, qr.MRG32K3A, qr.MT19937, qr.MT2203, qr.Philox]

# Arguments of each distribution, and its law.
REAL = {
    "random": ((), stats.uniform()),
    "uniform": ((-2.0, 3.0), stats.uniform(-2, 5)),
    "standard_normal": ((), stats.norm()),
    "normal": ((5.0, 2.0), stats.norm(5, 2)),
    "exponential": ((2.0, 1.0), stats.expon(1, 2)),
    "laplace": ((1.0, 2.0), stats.laplace(1, 2)),
    "weibull": ((1.5, 2.0, 1.0), stats.weibull_min(1.5, 1, 2)),
    "cauchy": ((1.0, 2.0), stats.cauchy(1, 2)),
    "rayleigh": ((2.0, 1.0), stats.rayleigh(1, 2)),
    "lognormal": ((0.5, 0.25, 1.0, 2.0), stats.lognorm(0.25, 1, 2 * np.exp(0.5))),
    "gumbel": ((1.0, 2.0), stats.gumbel_r(1, 2)),
    "gumbel_left": ((1.0, 2.0), stats.gumbel_l(1, 2)),
    "gamma": ((2.5, 2.0, 1.0), stats.gamma(2.5, 1, 2)),
    "beta": ((2.0, 3.0, 1.0, 2.0), stats.beta(2, 3, 1, 2)),
}
WHOLE = {
    "integers": ((-3, 7), stats.randint(-3, 7)),
    "bernoulli": ((0.25,), stats.bernoulli(0.25)),
    "geometric": ((0.3,), stats.geom(0.3)),
    "binomial": ((20, 0.3), stats.binom(20, 0.3)),
    "hypergeometric": ((20, 30, 12), stats.hypergeom(50, 20, 12)),
    "negative_binomial": ((4.5, 0.4), stats.nbinom(4.5, 0.4)),
    "poisson": ((12.5,), stats.poisson(12.5)),
}
ALL = {**REAL, **WHOLE}


@pytest.mark.parametrize("name", REAL)
@pytest.mark.parametrize("dtype", [np.float64, np.float32])
def test_real_distribution_follows_its_law(name, dtype):
    arguments, law = REAL[name]
    sample = getattr(qr.MT19937(1), name)(*arguments, size=20000, dtype=dtype)
    assert sample.dtype == dtype
    # The seed is fixed; a right law fails such a test once in 1e4 seeds.
    assert stats.kstest(sample.astype(float), law.cdf).pvalue > 1e-4


@pytest.mark.parametrize("name", WHOLE)
@pytest.mark.parametrize("dtype", [np.int64, np.int32])
def test_whole_distribution_follows_its_law(name, dtype):
    arguments, law = WHOLE[name]
    sample = getattr(qr.MT19937(2), name)(*arguments, size=20000, dtype=dtype)
    assert sample.dtype == dtype
    values, counts = np.unique(sample, return_counts=True)
    expected = law.pmf(values) * sample.size
    assert law.pmf(values).sum() > 0.999
    often = expected >= 5
    rest = sample.size - expected[often].sum()
    chi2 = ((counts - expected)[often] ** 2 / expected[often]).sum()
    if rest > 5:
        chi2 += (counts[~often].sum() - rest) ** 2 / rest
    assert stats.chi2.sf(chi2, often.sum()) > 1e-4


def test_keywords_defaults_and_positions_agree():
    a, b, c = (qr.MT2203(3) for _ in range(3))
    x = a.normal(2.0, 3.0, (4, 5), np.float32)
    y = b.normal(scale=3.0, loc=2.0, size=(4, 5), dtype="f4")
    out = np.empty((4, 5), np.float32)
    assert c.normal(2.0, scale=3.0, out=out) is out
    assert np.array_equal(x, y) and np.array_equal(x, out)
    assert isinstance(qr.MT2203(3).normal(), float)


@pytest.mark.parametrize("name", ALL)
def test_splitting_a_draw_changes_nothing(name):
    arguments, _ = ALL[name]
    whole, parts = (getattr(qr.MCG59(4), name) for _ in range(2))
    expected = whole(*arguments, size=5000)
    pieces = [parts(*arguments, size=n) for n in (1, 2, 498, 2049, 2450)]
    assert np.array_equal(expected, np.concatenate(pieces))


@pytest.mark.parametrize("call, error", [
    (lambda s: s.normal(scale=-1), ValueError),
    (lambda s: s.normal(loc="1"), TypeError),
    (lambda s: s.normal(loc=["a"]), ValueError),
    (lambda s: s.normal([1, 2], [1, 2, 3]), ValueError),
    (lambda s: s.normal([1, 2], size=3), ValueError),
    (lambda s: s.normal([1, 2], size=()), ValueError),
    (lambda s: s.normal([[1, 2]], size=2), ValueError),
    (lambda s: s.normal([1, 2], out=np.empty(3)), ValueError),
    (lambda s: s.normal(0, [1, 2, -1]), ValueError),
    (lambda s: s.normal([[1], [2]], np.where(np.arange(600) == 599, np.nan, 1.0)), ValueError),
    (lambda s: s.normal(1, loc=1), TypeError),
    (lambda s: s.normal(mean=1), TypeError),
    (lambda s: s.normal(0, 1, None, None, None, 1), TypeError),
    (lambda s: s.gamma(), TypeError),
    (lambda s: s.gamma(float("nan")), ValueError),
    (lambda s: s.beta(1, 0), ValueError),
    (lambda s: s.uniform(0, float("inf")), ValueError),
    (lambda s: s.integers(3, 3), ValueError),
    (lambda s: s.integers(0, 2**31), ValueError),
    (lambda s: s.integers(0.5), ValueError),
    (lambda s: s.binomial(2.5, 0.5), ValueError),
    (lambda s: s.binomial(10, 1.5), ValueError),
    (lambda s: s.geometric(0), ValueError),
    (lambda s: s.poisson(-1), ValueError),
    (lambda s: s.hypergeometric(5, 5, 11), ValueError),
    (lambda s: s.hypergeometric(2**31 - 1, 2**31 - 1, 11), ValueError),
    (lambda s: s.random(dtype=int), TypeError),
    (lambda s: s.random(dtype=">f8"), TypeError),
    (lambda s: s.integers(5, dtype=float), TypeError),
    (lambda s: s.random(-1), ValueError),
    (lambda s: s.random(out=np.empty(4)[::2]), ValueError),
    (lambda s: s.random(out=np.empty(4), dtype="f4"), ValueError),
    (lambda s: s.random(3, out=np.empty(4)), ValueError),
    (lambda s: s.random(out=[0.0]), TypeError),
    (lambda s: s.leapfrog(2, 2), ValueError),
    (lambda s: s.skip(-1), ValueError),
    (lambda s: s.skip(1), NotImplementedError),
    (lambda s: qr.MT2203(1, member=1024), ValueError),
    (lambda s: qr.Stream(1), TypeError),
    (lambda s: qr.Sobol(41), ValueError),
    (lambda s: type(s).__new__(type(s)).random(), RuntimeError),
])
def test_bad_arguments_are_refused_and_draw_nothing(call, error):
    stream = qr.MT19937(5)
    with pytest.raises(error):
        call(stream)
    assert stream.random() == qr.MT19937(5).random()


def test_borders_of_whole_numbers():
    s = qr.MT19937(6)
    assert s.geometric(1.0, 5).tolist() == [1] * 5
    assert s.geometric(1e-14, 5, np.int32).tolist() == [2**31 - 1] * 5
    assert s.geometric(1e-14, 5).tolist() == [2**31] * 5
    extremes = s.integers(-2**31, 2**31 - 1, 10000)
    assert extremes.min() < -2.1e9 and extremes.max() > 2.1e9
    assert s.random(0).shape == (0,) and s.binomial(0, 0.5, (2, 0)).shape == (2, 0)


def test_parameters_that_are_arrays():
    cov = np.array([[2.0, 0.6, 0.1], [0.6, 1.0, -0.3], [0.1, -0.3, 0.5]])
    mean = [1.0, -2.0, 3.0]
    for dtype, error in ((np.float64, 0.03), (np.float32, 0.03)):
        x = qr.MT19937(7).multivariate_normal(mean, cov, (100, 500), dtype=dtype)
        assert x.shape == (100, 500, 3) and x.dtype == dtype
        x = x.reshape(-1, 3).astype(float)
        assert np.abs(x.mean(0) - mean).max() < error and np.abs(np.cov(x.T) - cov).max() < error
    with pytest.raises(np.linalg.LinAlgError):
        qr.MT19937(7).multivariate_normal([0, 0], [[1, 2], [2, 1]])
    means = np.repeat([[0.5], [40.0]], 20000, axis=1)
    counts = qr.MT19937(8).poisson_each(means)
    assert counts.shape == means.shape and np.abs(counts.mean(1) / [0.5, 40.0] - 1).max() < 0.03
    with pytest.raises(ValueError):
        qr.MT19937(8).poisson_each([1.0, np.nan])


@st.composite
def parameter_arrays(draw):
    """A distribution, and an array for each of its parameters: values near those of its row, shapes that broadcast."""
    name = draw(st.sampled_from([name for name in ALL if ALL[name][0]]))
    shape = draw(st.lists(st.integers(0, 4), max_size=3))
    arrays = []
    for value in ALL[name][0]:
        own = [1 if draw(st.booleans()) else n for n in shape][draw(st.integers(0, len(shape))):]
        steps = np.array(draw(st.lists(st.integers(0, 2), min_size=(n := int(np.prod(own))), max_size=n)), float)
        arrays.append((value + steps * (1 if isinstance(value, int) else 0.125)).reshape(own))
    return name, arrays, shape


@given(parameter_arrays(), st.sampled_from([0, 1]), st.booleans())
@settings(deadline=None, max_examples=300)
def test_parameters_that_are_arrays_give_the_numbers_of_single_calls(case, which, given_size):
    name, arrays, shape = case
    dtype = (REAL.get(name) and (np.float64, np.float32) or (np.int64, np.int32))[which]
    together, single = (getattr(qr.MT19937(9), name) for _ in range(2))
    size = tuple(shape) if given_size else None
    result = together(*arrays, size=size, dtype=dtype)
    broadcast = np.broadcast_arrays(*arrays, *([np.empty(shape)] if given_size else []))[:len(arrays)]
    expected = [single(*map(float, p), dtype=dtype) for p in zip(*map(np.ravel, broadcast))]
    assert np.shape(result) == broadcast[0].shape and np.result_type(result) == dtype
    assert np.array_equal(np.ravel(result), np.array(expected, dtype))


def test_runs_of_equal_parameters_are_one_draw():
    means = np.arange(5.0)[:, None]
    together, single = qr.MT2203(10), qr.MT2203(10)
    out = np.empty((5, 3000))
    assert together.normal(means, 2.0, out=out) is out
    assert np.array_equal(out, [single.normal(mean, 2.0, 3000) for mean in range(5)])
    assert together.random() == single.random()
    flat = qr.MT2203(10).poisson(np.full((40, 50), 7.5))
    assert np.array_equal(flat, qr.MT2203(10).poisson(7.5, (40, 50)))


# NumPy

def test_generator_has_the_numbers_of_numpys_own_mersenne_twister():
    theirs = np.random.MT19937()
    theirs._legacy_seeding([1, 2, 3])
    ours = qr.MT19937(words=[1, 2, 3])
    a, b = np.random.Generator(theirs), np.random.Generator(ours)
    assert np.array_equal(a.random(1000), b.random(1000))
    assert np.array_equal(a.integers(0, 2**63, 100), b.integers(0, 2**63, 100))
    assert np.array_equal(a.standard_normal(100, np.float32), b.standard_normal(100, np.float32))
    assert np.array_equal(a.permutation(100), b.permutation(100))


@pytest.mark.parametrize("cls", FULL_WORDS)
def test_generator_takes_the_words_of_the_stream(cls):
    stream, twin = cls(9), cls(9)
    words = twin.random_raw(20)
    drawn = np.random.Generator(stream).integers(0, 2**32, 20, dtype=np.uint32)
    assert np.array_equal(words, drawn)
    assert np.random.default_rng(stream).bit_generator is stream


@pytest.mark.parametrize("stream", [qr.MCG31M1(1), qr.MCG59(1), qr.WH(1), qr.Sobol(2), qr.Niederreiter(2)])
def test_streams_without_full_words_are_no_bit_generators(stream):
    with pytest.raises(AttributeError):
        stream.capsule


def test_state_restores_a_generator_in_use():
    stream = qr.MT2203(10, member=5)
    generator = np.random.Generator(stream)
    generator.random(3)
    state = stream.state
    expected = generator.random(2000)
    stream.state = state
    assert np.array_equal(generator.random(2000), expected)
    # A state from before anybody drew through NumPy serves too.
    stream.state = qr.MT2203(10, member=5).state
    assert np.array_equal(generator.random(4), np.random.Generator(qr.MT2203(10, member=5)).random(4))
    with pytest.raises(ValueError):
        stream.state = qr.MT19937(1).state


# Copies and files

@pytest.mark.parametrize("way", [copy.copy, copy.deepcopy, lambda s: pickle.loads(pickle.dumps(s))])
@pytest.mark.parametrize("cls", PSEUDO + [qr.Sobol, qr.Niederreiter])
def test_copies_go_on_with_the_same_numbers(cls, way):
    stream = cls(11)
    stream.normal(size=3)  # an unfinished pair
    if cls in FULL_WORDS:
        np.random.Generator(stream).random(5)  # words not yet taken
    twin = way(stream)
    assert type(twin) is cls and twin.generator_id == stream.generator_id
    if cls in FULL_WORDS:
        generators = [np.random.Generator(s) for s in (stream, twin)]
        assert np.array_equal(*(g.random(1000) for g in generators))
    assert np.array_equal(stream.normal(size=1000), twin.normal(size=1000))
    if cls in PSEUDO:
        assert stream.seed_seq.state == twin.seed_seq.state
    else:
        assert np.array_equal(stream.points(2), twin.points(2))


@pytest.mark.parametrize("cls", PSEUDO)
def test_files_hold_a_stream(cls, tmp_path):
    path = tmp_path / "stream"
    member = 3 if cls._members > 1 else 0
    stream = cls(12, member)
    stream.gamma(2.5, size=7)
    stream.save(path)
    loaded = qr.load(path)
    assert type(loaded) is cls and loaded.member == member
    assert np.array_equal(stream.gamma(2.5, size=100), loaded.gamma(2.5, size=100))
    with pytest.raises(TypeError):
        loaded.spawn(1)
    path.write_bytes(path.read_bytes()[:-1])
    with pytest.raises(OSError):
        qr.load(path)
    path.write_bytes(b"x" * 100)
    with pytest.raises(ValueError):
        qr.load(path)
    with pytest.raises(OSError):
        qr.load(tmp_path / "missing")


@given(st.binary(max_size=200))
def test_any_bytes_make_a_stream_or_an_exception(data):
    header = pickle.loads(pickle.dumps(qr.MCG59(1)._to_bytes()))[:16]
    for state in (data, header + data):
        stream = qr.MCG59(1)
        try:
            stream._from_bytes(state)
        except (OSError, ValueError, MemoryError):
            pass
        stream.random(10)


# Division of sequences

@pytest.mark.parametrize("cls", [qr.MCG31M1, qr.MCG59, qr.WH])
def test_leapfrog_and_skip_divide_a_sequence(cls):
    expected = cls(13).random(60)
    for k in range(3):
        part = cls(13)
        part.leapfrog(k, 3)
        assert np.array_equal(part.random(20), expected[k::3])
    skipped = cls(13)
    skipped.skip(25)
    assert np.array_equal(skipped.random(35), expected[25:])


@pytest.mark.parametrize("cls", [qr.MCG59, qr.MRG32K3A, qr.Philox])
def test_long_skips_add_up(cls):
    a, b = cls(14), cls(14)
    a.skip(2**64 - 1)
    for n in (2**63, 2**62, 2**62 - 2**31, 2**31 - 1):
        b.skip(n)
    assert np.array_equal(a.random(10), b.random(10))
    with pytest.raises(ValueError):
        a.skip(2**64)


def test_53_bits_are_those_of_numpys_generator():
    for cls in (qr.R250, qr.MT19937, qr.MT2203, qr.Philox):
        assert np.array_equal(cls(18).random_53(1000), np.random.Generator(cls(18)).random(1000))
    with pytest.raises(TypeError):
        qr.MT19937(1).random_53(3, np.float32)


@settings(max_examples=20)
@given(st.integers(0, 2**200), st.sampled_from(PSEUDO))
def test_seeds_and_children_differ(seed, cls):
    parent = cls(seed)
    streams = [parent, cls(seed + 1), *parent.spawn(2), *parent.spawn(1)]
    assert len({s.random() for s in streams}) == 5
    again = cls(np.random.SeedSequence(seed)).spawn(3)
    assert again[2].random(3).tolist() == cls(seed).spawn(3)[2].random(3).tolist()


def test_members_of_a_family_are_unrelated():
    for cls in (qr.MT2203, qr.WH):
        numbers = np.array([s.random(1000) for s in cls.family(16, 15)])
        correlation = np.corrcoef(numbers) - np.eye(16)
        assert np.abs(correlation).max() < 0.15  # five deviations


def test_points():
    first = qr.Sobol(3)
    assert first.points(4).shape == (4, 3)
    parts = [qr.Niederreiter(3) for _ in range(3)]
    expected = qr.Niederreiter(3).points(50)
    for k, part in enumerate(parts):
        part.component(k)
        assert np.array_equal(part.random(50), expected[:, k])


def test_seed_words_are_those_of_the_c_interface():
    library = ctypes.CDLL("libqkr.so.0")
    stream = ctypes.c_void_p()
    words = (ctypes.c_uint32 * 2)(2024, 7)
    out = np.empty(5)
    library.__getattr__("__vxsNewStreamEx")(ctypes.byref(stream), 0x900000 + 7, 2, words)
    library.__getattr__("_vxsdRngGaussian")(1, stream, 5, ctypes.c_void_p(out.ctypes.data), ctypes.c_double(1),
                                            ctypes.c_double(2))
    library.__getattr__("__vxsDeleteStream")(ctypes.byref(stream))
    assert np.array_equal(out, qr.MT2203(member=7, words=[2024, 7]).normal(1, 2, 5))


# Threads

def test_a_draw_waits_for_the_lock_without_the_gil():
    stream = qr.MT19937(16)
    drawn = []
    thread = threading.Thread(target=lambda: drawn.append(stream.random()))
    with stream.lock:
        thread.start()
        thread.join(0.05)  # runs Python meanwhile: the waiting draw has released the GIL
        assert thread.is_alive() and not drawn
    thread.join()
    assert drawn == [qr.MT19937(16).random()]
    with pytest.raises(RuntimeError):
        stream.lock.release()


def test_threads_share_a_stream_without_losing_numbers(in_threads):
    generator = np.random.Generator(qr.MT19937(17))
    expected = np.sort(np.random.Generator(qr.MT19937(17)).random(4 * 20000))
    parts = in_threads(lambda k: np.concatenate([generator.random(1000) for _ in range(20)]))
    assert np.array_equal(np.sort(np.concatenate(parts)), expected)
