"""Documentation that is run, stubs that hold, and SciPy's own tests through the backend."""

import doctest
import importlib
import os
import subprocess
import sys
from pathlib import Path

import pytest
import scipy

import qkr

MODULES = ["qkr", "qkr.random", "qkr.fft", "qkr.signal"]
README = Path(__file__).resolve().parents[1] / "README.md"


@pytest.mark.parametrize("name", MODULES)
def test_examples_of_docstrings(name):
    failed, tried = doctest.testmod(importlib.import_module(name))
    assert tried and not failed


def test_examples_of_the_readme():
    failed, tried = doctest.testfile(str(README), module_relative=False)
    assert tried > 10 and not failed


def test_everything_public_is_documented():
    for name in MODULES:
        module = importlib.import_module(name)
        for public in module.__all__:
            assert getattr(module, public).__doc__, f"{name}.{public}"


def test_stubs_are_those_of_the_modules():
    folder = Path(qkr.__file__).parents[1]
    assert (folder / "qkr" / "py.typed").exists()
    checked = subprocess.run([sys.executable, "-m", "mypy.stubtest", "qkr"], capture_output=True, text=True,
                             env={**os.environ, "MYPYPATH": str(folder)})
    assert checked.returncode == 0, checked.stdout


PLUGIN = """
import pytest, scipy.fft, qkr.fft

@pytest.fixture(autouse=True)
def through_the_backend(request):
    calls_from_threads = "TestFFTThreadSafe" in request.node.nodeid  # a backend that is set belongs to its thread
    if calls_from_threads:
        scipy.fft.set_global_backend(qkr.fft)
    with scipy.fft.set_backend(qkr.fft):
        yield
    if calls_from_threads:
        scipy.fft.set_global_backend("scipy")
"""
# The files, which tests of them, and those that ask for more than a right result: for the words of a message, or for
# zeros where rounding errors relative to the largest result are left.
SCIPY_TESTS = [
    ("fft/tests/test_numpy.py", "", ""),
    ("fft/tests/test_multithreading.py", "", "test_invalid_workers"),
    ("fft/_pocketfft/tests/test_basic.py", "", ""),
    ("signal/tests/test_signaltools.py", "TestFFTConvolve or FreqConvolves or Hilbert or Resample",
     "test_hilbert_axisN"),
    ("signal/tests/test_spectral.py", "", "test_roundtrip_scaling"),
    ("signal/tests/test_czt.py", "", ""),
]


@pytest.mark.parametrize("file, which, without", SCIPY_TESTS)
def test_scipys_own_tests_pass_through_the_backend(file, which, without, tmp_path):
    path = Path(scipy.__file__).parent / file
    if not path.exists():
        pytest.skip("SciPy was installed without its tests")
    (tmp_path / "through_qkr.py").write_text(PLUGIN)
    select = " and ".join(part for part in (f"({which})" * bool(which), f"not {without}" * bool(without)) if part)
    run = subprocess.run(
        [sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider", "-p", "through_qkr", "-k", select, str(path)],
        capture_output=True, text=True, cwd=tmp_path,
        env={**os.environ, "PYTHONPATH": os.pathsep.join([str(tmp_path), *filter(None, sys.path)])})
    assert run.returncode == 0, run.stdout[-3000:]
