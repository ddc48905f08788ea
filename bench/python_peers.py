"""What the peers.py of the rooms share: how long a call takes, and where that stands in a run of Google Benchmark."""
import contextlib
import json
import math
import pathlib
import sys
import timeit

REPETITIONS = 9
SECONDS = 0.002  # that a repetition takes at least


def fastest(call):
    """Seconds."""
    once = timeit.timeit(call, number=1)
    number = max(1, math.ceil(SECONDS / once))
    return min(timeit.repeat(call, number=number, repeat=REPETITIONS if once < 0.1 else 2)) / number


@contextlib.contextmanager
def run_to_edit():
    """The run in the file that the command line names; written back at the end."""
    path = pathlib.Path(sys.argv[1])
    run = json.loads(path.read_text())
    yield run
    path.write_text(json.dumps(run))


def cases(run):
    """The names and sizes of all benchmarks, with the index of their family."""
    return {tuple(b["run_name"].split("/")[:3:2]): b["family_index"] for b in run["benchmarks"]}


def add(run, name, size, contender, index, seconds, elements, clock="cpu_time", **counters):
    run["benchmarks"].append({
        "run_name": f"{name}/any/{size}/{contender}", "family_index": index, "run_type": "iteration",
        clock: 1e9 * seconds, "time_unit": "ns", "elements": elements, **counters})
