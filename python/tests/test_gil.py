"""Calls of more than a few microseconds release the GIL, short ones keep it."""

import sys
import threading
import time

import numpy as np
import pytest

import qkr
import qkr.fft
import qkr.random
import qkr.signal


def releases_gil(call, seconds):
    """Whether another thread gets the GIL while `call` runs again and again. The interpreter does not take it away
    meanwhile, as the interval for that is longer than the test; so it must be given."""
    ran = []
    gate = threading.Lock()
    gate.acquire()

    def other():
        gate.acquire()
        ran.append(True)

    thread = threading.Thread(target=other)
    thread.start()
    interval = sys.getswitchinterval()
    sys.setswitchinterval(10000)
    try:
        gate.release()
        end = time.perf_counter() + seconds
        while time.perf_counter() < end and not ran:
            call()
        return bool(ran)
    finally:
        sys.setswitchinterval(interval)
        thread.join()


X = np.linspace(0.5, 1, 20000)
STREAM = qkr.random.MT19937(1)
LONG = {
    "dense": lambda: qkr.exp(X[:1000]),
    "long": lambda: qkr.exp(X),
    "strided": lambda: qkr.exp(X[::2]),
    "complex": lambda: qkr.exp(X[:1000] + 0j),
    "normal": lambda: STREAM.normal(size=1000),
    "integers": lambda: STREAM.integers(10, size=1000),
    "normal vectors": lambda: STREAM.multivariate_normal([0, 0], np.eye(2), 500),
    "poisson_each": lambda: STREAM.poisson_each(X),
    "raw words": lambda: STREAM.random_raw(1000),
    "fft": lambda: qkr.fft.fft(X[:1000]),
    "rfft": lambda: qkr.fft.rfft(X[:1000]),
    "irfft": lambda: qkr.fft.irfft(X[:1000]),
    "convolve": lambda: qkr.signal.convolve(X[:1000], X[:100]),
    "fft2": lambda: qkr.fft.fft2(X.reshape(100, 200)),
}
SHORT = {
    "dense": lambda: qkr.exp(X[:10]),
    "normal": lambda: STREAM.normal(size=10),
    "fft": lambda: qkr.fft.fft(X[:16]),
}


@pytest.mark.parametrize("name", LONG)
def test_long_calls_release_the_gil(name):
    assert releases_gil(LONG[name], seconds=30)


@pytest.mark.parametrize("name", SHORT)
def test_short_calls_keep_it(name):
    assert not releases_gil(SHORT[name], seconds=0.2)
