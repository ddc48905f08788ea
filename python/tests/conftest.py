"""The suite draws the same examples in every run; `./dev python --hypothesis-profile=default` looks for new ones."""

from concurrent.futures import ThreadPoolExecutor

import pytest
from hypothesis import settings

settings.register_profile("suite", derandomize=True, deadline=None)
settings.load_profile("suite")


@pytest.fixture
def in_threads():
    """Runs work(k) in four threads at a time; what they return."""
    def run(work):
        with ThreadPoolExecutor(4) as pool:
            return list(pool.map(work, range(4)))
    return run
