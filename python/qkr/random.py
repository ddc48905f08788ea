"""Random streams.

A stream is a generator with its running state. Its methods draw from the distributions; `numpy.random.Generator`
draws from it too, where its words have 32 random bits.

>>> import qkr.random
>>> stream = qkr.random.MT2203(2024, member=7)
>>> stream.normal(5.0, 2.0, size=(1000, 3)).shape
(1000, 3)
>>> import numpy
>>> numpy.random.Generator(stream).permutation(4).shape
(4,)

The numbers depend neither on the processor nor on how a draw is split into calls. One stream serves one thread at a
time (others wait); `spawn`, members of a family, `skip` and `leapfrog` make streams for parallel work. The methods fill
new arrays, or `out`, of float64 or float32, int64 or int32. Parameters of distributions are numbers, or arrays that
broadcast together and to `size`: then the numbers are those of a call for each element, in C order.

>>> stream.poisson([[1.0], [1000.0]], size=(2, 500)).shape
(2, 500)

What NumPy's Generator takes comes from blocks of 512 words; the methods of the stream go on behind the block.
"""

import numpy as _np

from . import _random

__all__ = [
    "MCG31M1", "MCG59", "MRG32K3A", "MT19937", "MT2203", "Niederreiter", "Philox", "R250", "Sobol", "Stream", "WH", "load",
]


class Stream(_random.Stream):
    """A random stream; the generators are its subclasses.

    Parameters
    ----------
    seed : None, int, sequence of ints or numpy.random.SeedSequence
        As of NumPy's generators: similar seeds give unrelated streams, and None takes entropy from the system.
    member : int
        Of the families (MT2203, WH): which generator of the family.
    words : sequence of ints, optional
        Seed words of the C interface, in place of a seed: the stream is that of `__vxsNewStreamEx` with these.

    Attributes
    ----------
    seed_seq : numpy.random.SeedSequence or None
        Where the seed words came from.

    Notes
    -----
    Beside its parameters, each distribution takes three arguments:

    - `size`, the shape of the result, a number or a tuple; if it is not given, the shape to which the parameters
      broadcast, so that numbers give one number;
    - `dtype`, float64 (as None) or float32 of real distributions, int64 (as None) or int32 of whole numbers;
    - `out`, an array in C order and of that type, which is filled and returned.

    A parameter out of its range raises ValueError before anything is drawn; another dtype raises TypeError.
    """

    _id = None
    _seed_words = 0
    _members = 1

    def __init__(self, seed=None, member=0, *, words=None):
        if self._id is None:
            raise TypeError("make a stream of one of the generators, MT19937 for instance")
        if not 0 <= member < self._members:
            raise ValueError(f"member is to be from 0 to {self._members - 1}")
        if words is not None and seed is not None:
            raise TypeError("either seed or words")
        self.seed_seq = None
        if words is None:
            self.seed_seq = seed if isinstance(seed, _np.random.SeedSequence) else _np.random.SeedSequence(seed)
            words = self._words_of(self.seed_seq, member)
        super().__init__(self._id + member, _np.asarray(words, dtype=_np.uint32))

    @classmethod
    def _words_of(cls, sequence, member):
        if cls._members > 1:  # members with the same words would begin alike
            sequence = _np.random.SeedSequence(
                sequence.entropy, spawn_key=(*sequence.spawn_key, member), pool_size=sequence.pool_size)
        return sequence.generate_state(cls._seed_words)

    @property
    def member(self):
        """Which generator of its family it is; 0 of those without a family."""
        return self.generator_id - self._id

    def spawn(self, n_children):
        """Makes `n_children` independent streams of this generator, as `numpy.random.SeedSequence.spawn` makes seeds.

        >>> [child.member for child in MT2203(1).spawn(2)]
        [0, 0]
        """
        if self.seed_seq is None:
            raise TypeError("a stream that was not made from a seed does not spawn")
        return [type(self)(seed, self.member) for seed in self.seed_seq.spawn(n_children)]

    @classmethod
    def family(cls, n, seed=None):
        """The first `n` members of the generator's family, with seeds that have nothing in common."""
        sequence = seed if isinstance(seed, _np.random.SeedSequence) else _np.random.SeedSequence(seed)
        return [cls(sequence, member) for member in range(n)]

    def random_raw(self, size=None):
        """The generator's own integers.

        They are uint32 numbers; MCG59's are uint64, and WH's are four uint32 each, along a last axis.

        Notes
        -----
        The C function: _vxsiRngUniformBits.
        """
        width, _ = self.word_size
        shape = () if size is None else tuple(_np.atleast_1d(size))
        count = int(_np.prod(shape, dtype=_np.int64))
        out = _np.empty(shape + (4,) * (width == 16), _np.uint64 if width == 8 else _np.uint32)
        self._raw_words(out, count)
        return out[()]

    def multivariate_normal(self, mean, cov, size=None, *, dtype=_np.float64):
        """Normal vectors of the given mean and covariance, along the last axis.

        Notes
        -----
        The C functions: _vxsdRngGaussianMV, _vxssRngGaussianMV with method 1.
        """
        mean = _np.ascontiguousarray(mean, dtype=dtype)
        cov = _np.asarray(cov, dtype=_np.float64)
        if mean.dtype not in (_np.float32, _np.float64):
            raise TypeError("multivariate_normal: dtype is float64 or float32")
        if mean.ndim != 1 or mean.size == 0 or cov.shape != (mean.size, mean.size):
            raise ValueError("multivariate_normal: a mean of d numbers and a covariance of d by d")
        triangle = _np.ascontiguousarray(_np.linalg.cholesky(cov), dtype=mean.dtype)
        shape = () if size is None else tuple(_np.atleast_1d(size))
        out = _np.empty(shape + mean.shape, mean.dtype)
        self._normal_vectors(out, mean, triangle)
        return out

    def poisson_each(self, lam):
        """A number of events for each mean of an array: int32, with no set-up for any of them.

        Notes
        -----
        The C function: _vxsiRngPoissonV, whose laws are approximate: within 6e-4 of all probability.
        """
        means = _np.ascontiguousarray(lam, dtype=_np.float64)
        if not _np.all(means >= 0):
            raise ValueError("poisson_each: lam is negative or NaN")
        out = _np.empty(means.shape, _np.int32)
        self._poisson_each(out, means)
        return out[()]

    @property
    def state(self):
        """The running state: the bytes of a stream file, in a dictionary as NumPy has it."""
        return {"bit_generator": type(self).__name__, "state": self._to_bytes()}

    @state.setter
    def state(self, value):
        if value["bit_generator"] != type(self).__name__:
            raise ValueError(f"state of a {value['bit_generator']}, not of a {type(self).__name__}")
        self._from_bytes(value["state"])

    def copy(self):
        """A second stream that goes on with the same numbers. It shares the seeds for children, which therefore differ.

        Notes
        -----
        The C function: __vxsCopyStream.
        """
        twin = type(self).__new__(type(self))
        twin._copy_from(self)
        twin.seed_seq = self.seed_seq
        return twin

    __copy__ = copy

    def __deepcopy__(self, memo):
        return self.copy()

    def __reduce__(self):
        return _restore, (type(self), self._to_bytes(), self.seed_seq)

    def __repr__(self):
        return f"<qkr.random.{type(self).__name__}" + (f", member {self.member}>" if self._members > 1 else ">")


def _restore(cls, data, seed_seq):
    stream = cls.__new__(cls)
    stream._from_bytes(data)
    stream.seed_seq = seed_seq
    return stream


class MCG31M1(Stream):
    """Multiplicative congruential generator modulo 2**31 - 1: small, skips and leapfrogs; words of 31 bits."""

    _id, _seed_words = 0x100000, 1


class R250(Stream):
    """Shift register of 250 words."""

    _id, _seed_words = 0x200000, 250


class MRG32K3A(Stream):
    """Two recurrences of order three, combined; skips ahead."""

    _id, _seed_words = 0x300000, 6


class MCG59(Stream):
    """Multiplicative congruential generator modulo 2**59: skips and leapfrogs; words of 59 bits."""

    _id, _seed_words = 0x400000, 2


class WH(Stream):
    """Family of 273 generators of four small components each; skips and leapfrogs."""

    _id, _seed_words, _members = 0x500000, 4, 273


class MT19937(Stream):
    """The Mersenne twister."""

    _id, _seed_words = 0x800000, 4


class MT2203(Stream):
    """Family of 1024 small Mersenne twisters with recurrences of their own, for parallel work."""

    _id, _seed_words, _members = 0x900000, 4, 1024


class Philox(Stream):
    """Philox 4x32-10, whose numbers are a function of key and counter, for work on many machines; skips ahead."""

    _id, _seed_words = _random.philox, 2


class _QuasiRandom(Stream):
    def __init__(self, dimension=1):
        if not 1 <= dimension <= self._dimensions:
            raise ValueError(f"dimension is to be from 1 to {self._dimensions}")
        super().__init__(words=[dimension])
        self.dimension = dimension

    def copy(self):
        twin = super().copy()
        twin.dimension = self.dimension
        return twin

    __copy__ = copy

    def __reduce__(self):
        return _restore_points, (type(self), self._to_bytes(), self.dimension)

    def spawn(self, n_children):
        raise TypeError("points are a single sequence: divide them by skip or leapfrog")

    def points(self, n, *, dtype=_np.float64):
        """The next `n` points: an array of n by `dimension` numbers from 0 to 1.

        >>> Sobol(2).points(3)
        array([[0.5 , 0.5 ],
               [0.75, 0.25],
               [0.25, 0.75]])
        """
        return self.random((n, self.dimension), dtype)

    def component(self, k):
        """Keeps component `k` of each point only, from 0 on."""
        if not 0 <= k < self.dimension:
            raise ValueError("no such component")
        self.leapfrog(k, 0x7FFFFFFF)
        self.dimension = 1


def _restore_points(cls, data, dimension):
    stream = _restore(cls, data, None)
    stream.dimension = dimension
    return stream


class Sobol(_QuasiRandom):
    """Sobol's points in up to 40 dimensions. Draw whole points, by distributions that keep components apart: uniform,
    exponential, weibull, cauchy, rayleigh, gumbel.

    Attributes
    ----------
    dimension : int
        How many numbers a point has.
    """

    _id, _dimensions = 0x600000, 40


class Niederreiter(_QuasiRandom):
    """Niederreiter's points in base 2, in up to 318 dimensions. Draw as from `Sobol`."""

    _id, _dimensions = 0x700000, 318


_generators = {cls._id >> 20: cls for cls in (MCG31M1, R250, MRG32K3A, MCG59, WH, MT19937, MT2203, Philox)}


def load(path):
    """Makes a stream from a file of `Stream.save`, or of a C program's `__vxsSaveStreamF`. It goes on where the saved
    one was, but does not spawn. Quasi-random streams are pickled instead."""
    stream = _random.Stream.__new__(_random.Stream)
    stream._load(path)
    cls = _generators.get(stream.generator_id >> 20)
    if cls is None:
        raise ValueError("a stream of another generator")
    return _restore(cls, stream._to_bytes(), None)
