"""Random numbers and Fourier transforms of Dask arrays, whose bits do not depend on how an array is cut into chunks.

Each element of a random array has its place in one sequence of numbers, and every chunk skips to the places of its
rows. A transform of several axes goes through them one by one, from the last to the first; for each, the array is cut
so that chunks hold the axis whole. What is done to an element is always the same then, wherever it is done.
"""
import math

import dask.array as da
import numpy as np
import qkr
import qkr.fft
import qkr.random


def uniform(seed, shape, chunks, low=0.0, high=1.0):
    """Numbers from `low` to `high`: element (i, j, ...) is number ((i shape[1]) + j) shape[2] + ... of the sequence."""
    return da.map_blocks(_draw, seed=seed, shape=shape, low=low, high=high, dtype=np.float64,
                         chunks=da.core.normalize_chunks(chunks, shape, dtype=np.float64))


def normal(seed, shape, chunks):
    """Normal numbers of mean 0 and deviation 1, one of each uniform number: methods that take pairs, or reject, would
    need to know where in the sequence the rows before a chunk end."""
    half = 2.0 ** -32  # half of a step between uniform numbers, so that none is -1, where the result is infinite
    return math.sqrt(2) * uniform(seed, shape, chunks, half - 1, half + 1).map_blocks(qkr.erfinv, dtype=np.float64)


def _draw(seed, shape, low, high, block_info=None):
    ranges = block_info[None]["array-location"]
    out = np.empty(block_info[None]["chunk-shape"])
    stream, place = qkr.random.MRG32K3A(seed), 0
    for index in np.ndindex(out.shape[:-1]):
        first = [start + i for (start, _), i in zip(ranges, (*index, 0))]
        start = int(np.ravel_multi_index(first, shape))
        stream.skip(start - place)
        stream.uniform(low, high, out=out[index])
        place = start + out.shape[-1]
    return out


def fftn(x):
    """The transform of all axes."""
    return _each_axis(qkr.fft.fft, x)


def ifftn(x):
    return _each_axis(qkr.fft.ifft, x)


def _each_axis(transform, x):
    for axis in reversed(range(x.ndim)):
        # The other axes are cut again so that chunks stay about as large as they were.
        x = x.rechunk({axis: -1, **{other: "auto" for other in range(x.ndim) if other != axis}},
                      block_size_limit=max(math.prod(x.chunksize), x.shape[axis]) * 16)
        x = x.map_blocks(transform, axis=axis, dtype=np.complex128)
    return x
