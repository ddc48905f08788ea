"""The Dask example on two worker processes: its arrays have the bits of one process, however they are cut."""
import os
import re
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest
import qkr
import qkr.fft
import qkr.random

distributed = pytest.importorskip("dask.distributed")
examples = Path(__file__).resolve().parents[2] / "examples" / "dask"
sys.path.insert(0, str(examples))  # workers inherit it
blocks = pytest.importorskip("blocks")

CASES = [((1000,), (333,)), ((45, 64), (45, 64)), ((45, 64), (16, 17)), ((12, 31, 10), (5, 31, 10)),
         ((12, 31, 10), (12, 16, 4))]


@pytest.fixture(scope="module", autouse=True)
def client():
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            yield client


def test_two_processes(client):
    found = set(client.run(os.getpid).values())
    assert len(found) == 2 and os.getpid() not in found


@pytest.mark.parametrize("shape,chunks", CASES)
def test_random(shape, chunks):
    array = blocks.uniform(5, shape, chunks, -2.0, 3.0)
    assert array.chunksize == chunks
    one = qkr.random.MRG32K3A(5).uniform(-2.0, 3.0, size=shape)
    assert array.compute().tobytes() == one.tobytes()
    step = 2.0 ** -32
    places = qkr.random.MRG32K3A(5).uniform(step - 1, step + 1, size=shape)
    assert blocks.normal(5, shape, chunks).compute().tobytes() == (np.sqrt(2) * qkr.erfinv(places)).tobytes()


def test_normal_law():
    numbers = blocks.normal(1, (500, 400), (50, 400)).compute()
    assert np.isfinite(numbers).all()
    assert abs(numbers.mean()) < 5 / np.sqrt(numbers.size) and abs(numbers.var() - 1) < 5 * np.sqrt(2 / numbers.size)


@pytest.mark.parametrize("shape,chunks", CASES)
def test_transforms(shape, chunks):
    x = blocks.uniform(6, shape, chunks, -1.0, 1.0)
    spectrum, whole = blocks.fftn(x), x.compute()
    expected = whole
    for axis in reversed(range(whole.ndim)):
        expected = qkr.fft.fft(expected, axis=axis)
    found = spectrum.compute()
    assert found.tobytes() == expected.tobytes()
    np.testing.assert_allclose(found, np.fft.fftn(whole), rtol=0, atol=1e-14 * abs(found).max())
    np.testing.assert_allclose(blocks.ifftn(spectrum).compute(), whole, rtol=0, atol=1e-14)


def test_landscape():
    done = subprocess.run([sys.executable, examples / "landscape.py", "60"], text=True, capture_output=True, timeout=120)
    assert done.returncode == 0, done.stderr
    rows = re.findall(r"^chunks of (.*): deviation (\S+), digest (\w{16})$", done.stdout, re.M)
    assert [row[0] for row in rows] == ["60 x 60", "20 x 60", "12 x 15"]
    assert len({row[1:] for row in rows}) == 1
