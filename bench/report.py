#!/usr/bin/python3
"""Tables and plots of a benchmark run: report.py ROOM.json OUTDIR writes ROOM.csv, ROOM.md and ROOM.png.

The file is Google Benchmark's. Benchmarks are named FUNCTION/LEVEL/SIZE/CONTENDER; the level `any` stands beside
every level, and the contender `qkr` is ours. Counters of a benchmark:
  elements   the time is given per so many
  ulp        largest error on a sample; a contender without it counts as exact
  reference  this is what ours is compared with for its aim, and not a peer
  bytes      that an element has, where the rate at which ours writes them is of interest
  wall       the time counts by the clock, and not what the calling thread worked: others work for it
  aim        of ours: the largest ratio of times that is wanted, to the reference, or where there is none to the
             fastest peer within 1 ulp
"""
import collections
import csv
import dataclasses
import json
import math
import pathlib
import sys

OURS = "qkr"


@dataclasses.dataclass
class Timing:
    ns: float = math.inf  # per element, the smallest of all repetitions: others on the machine only add to it
    ulp: float = 0.0
    reference: bool = False
    aim: float = math.inf
    bytes: float = 0

    def rate(self):
        return f"{self.bytes / self.ns:.1f}" if self.bytes else ""


@dataclasses.dataclass
class Row:
    function: str
    level: str
    size: int
    timings: dict

    def ratio(self, chosen):
        """Ours against the fastest of the chosen contenders, and its name; (None, "") if there is none."""
        peers = [(t.ns, name) for name, t in self.timings.items() if name != OURS and chosen(t)]
        if not peers:
            return None, ""
        ns, name = min(peers)
        return self.timings[OURS].ns / ns, name

    def accurate(self):
        return self.ratio(lambda t: not t.reference and t.ulp <= 1)

    def fastest(self):
        return self.ratio(lambda t: not t.reference)

    def aimed(self):
        to_reference = self.ratio(lambda t: t.reference)
        return to_reference if to_reference[1] else self.accurate()

    def misses(self):
        ratio, _ = self.aimed()
        return ratio is not None and round(ratio, 2) > self.timings[OURS].aim


def read(path):
    timings = collections.defaultdict(lambda: collections.defaultdict(Timing))
    runs = [run for run in json.loads(path.read_text())["benchmarks"] if run["run_type"] == "iteration"]
    for run in sorted(runs, key=lambda run: run["family_index"]):  # as registered: they ran in random order
        function, level, size, contender = run["run_name"].split("/")[:4]
        to_ns = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
        timing = timings[function, level, int(size)][contender]
        time = run["real_time" if run.get("wall") else "cpu_time"]
        timing.ns = min(timing.ns, time * to_ns / run.get("elements", 1))
        timing.ulp = run.get("ulp", 0.0)
        timing.reference = bool(run.get("reference"))
        timing.aim = run.get("aim", math.inf)
        timing.bytes = run.get("bytes", 0)
    rows = []
    for (function, level, size), of_level in timings.items():
        everywhere = timings.get((function, "any", size), {})
        if level != "any" and OURS in of_level:
            rows.append(Row(function, level, size, {**of_level, **everywhere}))
    return rows


def contender_names(rows):
    names = {name: None for row in rows for name in row.timings}
    return [OURS] + [name for name in names if name != OURS]


def main_size(rows):
    """The size that most functions were measured at; of several the middle one."""
    functions = collections.defaultdict(set)
    for row in rows:
        functions[row.size].add(row.function)
    most = max(len(f) for f in functions.values())
    sizes = sorted(size for size, f in functions.items() if len(f) == most)
    return sizes[(len(sizes) + 1) // 2 if len(sizes) > 1 else 0] if len(sizes) != 2 else sizes[1]


def number(x, digits):
    return "" if x is None or math.isinf(x) else f"{x:.{digits}f}"


def write_csv(rows, path):
    names = contender_names(rows)
    with path.open("w", newline="") as file:
        out = csv.writer(file)
        out.writerow(["function", "level", "n", *(f"{name} ns" for name in names), *(f"{name} ulp" for name in names),
                      "GB/s", "ratio within 1 ulp", "fastest within 1 ulp", "ratio to any", "fastest",
                      "ratio of the aim", "peer of the aim", "aim", "misses aim"])
        for row in rows:
            timed = [row.timings.get(name) for name in names]
            accurate, fastest, (aimed, aimed_at) = row.accurate(), row.fastest(), row.aimed()
            out.writerow([row.function, row.level, row.size, *(t and f"{t.ns:.4f}" for t in timed),
                          *(t and f"{t.ulp:.3f}" for t in timed), row.timings[OURS].rate(), number(accurate[0], 3), accurate[1],
                          number(fastest[0], 3), fastest[1], number(aimed, 3), aimed_at, row.timings[OURS].aim,
                          int(row.misses())])


def table(header, lines):
    yield "| " + " | ".join(header) + " |"
    yield "|" + "---|" * len(header)
    yield from ("| " + " | ".join(line) + " |" for line in lines)


def ratio_cell(row):
    if row is None:
        return ""
    ratio, name = row.aimed()
    any_ratio, any_name = row.fastest()
    mark = "**" if row.misses() else ""
    accurate = f"{mark}{ratio:.2f}{mark} {name}" if name else f"{row.timings[OURS].ns:.2f} ns"
    return accurate + (f" ({any_ratio:.2f} {any_name})" if any_name not in ("", name) else "")


def summary(rows, size):
    """One line a function, one column a level: ratio of the aim, in brackets that to the fastest of all."""
    levels = list({row.level: None for row in rows})
    cells = {(row.function, row.level): row for row in rows if row.size == size}
    functions = list({row.function: None for row in rows if row.size == size})
    lines = [[f, *(ratio_cell(cells.get((f, level))) for level in levels)] for f in functions]
    return table([f"n = {size}", *levels], lines)


def is_by_size(rows):
    """Whether the run is a study of sizes, with the same many of them for every function."""
    sizes = collections.defaultdict(set)
    for row in rows:
        sizes[row.function].add(row.size)
    return min(map(len, sizes.values())) > 4


def summary_by_size(rows):
    """One line a size, one column a function and level: ratio of the aim."""
    for function, level_rows in grouped(rows, lambda row: row.function).items():
        levels = list({row.level: None for row in level_rows})
        cells = {(row.size, row.level): row for row in level_rows}
        sizes = sorted({row.size for row in level_rows})
        yield from table([function, *levels],
                         [[str(size), *(ratio_cell(cells.get((size, level))) for level in levels)] for size in sizes])
        yield ""


def grouped(rows, key):
    groups = collections.defaultdict(list)
    for row in rows:
        groups[key(row)].append(row)
    return groups


def details(rows):
    names = contender_names(rows)
    rates = any(row.timings[OURS].bytes for row in rows)

    def line(row):
        def timing(name):
            t = row.timings.get(name)
            return "" if not t else f"{t.ns:.3f}" if t.reference else f"{t.ns:.3f} ({t.ulp:.2f})"
        accurate, fastest = row.accurate(), row.fastest()
        return [row.function, row.level, str(row.size), *map(timing, names), *[row.timings[OURS].rate()][:rates],
                f"{number(accurate[0], 2)} {accurate[1]}", f"{number(fastest[0], 2)} {fastest[1]}",
                f"{row.aimed()[0]:.2f} > {row.timings[OURS].aim}" if row.misses() else ""]
    header = ["function", "level", "n", *names, *["GB/s"][:rates], "within 1 ulp", "of any accuracy", "above the aim"]
    return table(header, map(line, rows))


def plot_by_size(rows, path):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    functions = grouped(rows, lambda row: row.function)
    columns = 2
    lines = -(-len(functions) // columns)
    figure, axes = plt.subplots(lines, columns, figsize=(11, 3 * lines), layout="constrained", squeeze=False, sharey=True)
    for axis, (function, of_function) in zip(axes.flat, functions.items()):
        for level, of_level in grouped(of_function, lambda row: row.level).items():
            ratios = sorted((row.size, row.aimed()[0]) for row in of_level if row.aimed()[0] is not None)
            axis.plot(*zip(*ratios), "o-", label=level)
        axis.axhline(1, color="grey", linewidth=1)
        axis.set_xscale("log", base=2)
        axis.set(title=function, ylim=(0, None), ylabel=f"our time / {of_function[0].aimed()[1]}'s")
        axis.legend()
    figure.suptitle(f"qkr {path.stem}: below 1 ours is faster")
    figure.savefig(path, dpi=110)


def plot(rows, size, path):
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    functions = list({row.function: None for row in rows})[::-1]
    sizes_of = collections.defaultdict(set)
    for row in rows:
        sizes_of[row.function].add(row.size)
    series = [f for f in functions[::-1] if sum(size <= 32 for size in sizes_of[f]) > 3][:2]
    levels = list({row.level: None for row in rows})
    colours = dict(zip(levels, ["#4477aa", "#ccaa33", "#cc3344", "#228833"]))

    figure, axes = plt.subplots(1, 1 + len(series), figsize=(7 + 4.5 * len(series), max(4, 1.5 + 0.24 * len(functions))),
                                layout="constrained", squeeze=False)
    ratios, *curves = axes[0]
    for row in rows:
        ratio, _ = row.aimed()
        if row.size == size and ratio is not None:
            ratios.plot(ratio, functions.index(row.function), "o", color=colours[row.level], alpha=0.8)
    for level in levels:
        ratios.plot([], [], "o", color=colours[level], label=level)
    ratios.axvline(1, color="grey", linewidth=1)
    ratios.set_xscale("log", base=2)
    ratios.set_yticks(range(len(functions)), functions)
    ratios.set_ylim(-0.7, len(functions) - 0.3)
    ratios.grid(axis="y", alpha=0.3)
    ratios.xaxis.set_major_formatter(matplotlib.ticker.FormatStrFormatter("%g"))
    ratios.set_xlabel(f"our time / that of the fastest accurate peer, n = {size} (left of 1: ours is faster)")
    ratios.legend(loc="best")

    widest = levels[-1]
    for axis, function in zip(curves, series):
        of_function = sorted((r for r in rows if (r.function, r.level) == (function, widest) and r.size <= 64),
                             key=lambda r: r.size)
        for name in contender_names(of_function):
            timed = [(r.size, r.timings[name].ns * r.size) for r in of_function if name in r.timings]
            axis.plot(*zip(*timed), label=name, linewidth=2 if name == OURS else 1)
        axis.set(title=f"{function}, {widest}", xlabel="n", ylabel="ns a call", xlim=(0, 33))
        axis.set_ylim(0, 2.5 * max(r.timings[OURS].ns * r.size for r in of_function if r.size <= 32))
        axis.legend()
    figure.suptitle(f"qkr {path.stem} beside the fastest peer within 1 ulp")
    figure.savefig(path, dpi=110)


def main():
    source, out = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    rows = read(source)
    if not rows:
        sys.exit(f"{source}: no measurements of {OURS}")
    out.mkdir(parents=True, exist_ok=True)
    size = main_size(rows)
    overview = "\n".join(summary_by_size(rows) if is_by_size(rows) else summary(rows, size))
    explanation = (
        "Our time divided by that of the fastest peer with errors below 1 ulp (of exact functions: by that of the "
        "reference), below 1 where ours is faster; bold above the aim. In brackets the same to the fastest peer of "
        "any accuracy, where that is another. Plain nanoseconds per element where there is no peer.")
    detail_note = ("Nanoseconds per element, smallest of all repetitions, and in brackets the largest error in ulp "
                   "on a sample; then ratios of our time to the fastest.")
    (out / f"{source.stem}.md").write_text(
        f"# Benchmarks: {source.stem}\n\n{explanation}\n\n{overview}\n\n{detail_note}\n\n"
        + "\n".join(details(rows)) + "\n")
    write_csv(rows, out / f"{source.stem}.csv")
    if is_by_size(rows):
        plot_by_size(rows, out / f"{source.stem}.png")
    else:
        plot(rows, size, out / f"{source.stem}.png")
    print(f"{explanation}\n\n{overview}")


if __name__ == "__main__":
    main()
