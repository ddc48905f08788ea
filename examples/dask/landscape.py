#!/usr/bin/python3
"""A random landscape on two worker processes: noise by blocks, transformed, its short waves damped, and transformed
back. It is made three times, cut into chunks of other shapes, and has the same bits each time.

landscape.py [SIDE]
"""
import hashlib
import sys
import time

import dask.array as da
import numpy as np
from dask.distributed import Client, LocalCluster

import blocks


def landscape(side, chunks):
    """Heights whose waves of k periods have a power of 1 / k^4, as eroded land has roughly."""
    noise = blocks.normal(2026, (side, side), chunks)
    spectrum = blocks.fftn(noise)
    periods = da.from_array(np.abs(np.fft.fftfreq(side, 1 / side)), chunks=side)
    square = (periods[:, None] ** 2 + periods[None, :] ** 2).rechunk(spectrum.chunks)
    heights = blocks.ifftn(da.where(square > 0, spectrum / da.maximum(square, 1), 0))
    return heights.real


def main(side):
    # Threads would do, too, as the library does not hold Python's lock; processes are as they are on a cluster.
    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, Client(cluster):
        for chunks in ((side, side), (side // 3, side), (side // 5, side // 4)):
            start = time.perf_counter()
            heights = landscape(side, chunks).compute()
            digest = hashlib.sha256(heights.tobytes()).hexdigest()[:16]
            print(f"chunks of {chunks[0]} x {chunks[1]}: deviation {heights.std():.6e}, digest {digest}", flush=True)
            print(f"  {time.perf_counter() - start:.2f} s", file=sys.stderr)


if __name__ == "__main__":  # workers import this file, too
    main(int(sys.argv[1]) if len(sys.argv) > 1 else 1024)
