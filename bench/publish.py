#!/usr/bin/python3
"""What was measured, where readers see it: publish.py OUTDIR keeps the ratios of OUTDIR/ROOM.csv and the picture
OUTDIR/ROOM.png under docs/measured, and makes from all that lies there docs/speed.md and the tables of README.md.

A table of README.md stands between two comments, of which the first says what is in it:

    <!-- speed ROOM
    FUNCTION SIZE LABEL
    -->
    <!-- end of speed -->
"""
import collections
import csv
import dataclasses
import pathlib
import re
import shutil
import statistics
import sys

import report

measured = pathlib.Path("docs/measured")
columns = ["function", "level", "n", "ratio", "fastest", "ratio to any", "fastest of any"]
titles = {
    "vecmath": "Vector functions",
    "streams": "Random words and uniform numbers",
    "distributions": "Distributions",
    "sigfft": "Transforms of power-of-two length",
    "sigfft_dft": "Transforms of any length",
    "sigfft_convolution": "Convolution",
    "sigfft_arrays": "Copies, fills and conversions",
    "dft": "Transforms by descriptor",
    "convcorr": "Convolution and correlation tasks",
    "cxx": "C++ beside C",
    "python_ufuncs": "Python: ufuncs beside NumPy, SciPy and numba",
    "python_random": "Python: random numbers beside NumPy and numba",
    "python_fft": "Python: transforms beside NumPy and SciPy",
}
intro = """# Speed

Our time divided by that of the fastest peer whose errors are below 1 ulp, in the same run on the same arrays: below 1 we are faster. Each cell names that peer; rows that lose are in bold. Made by `./dev speed` from the files of `./dev bench`, smallest of interleaved repetitions, on a Xeon (Skylake) with AVX-512 and two cores; where a row has no peer it is not shown.

In brackets: our time divided by that of the fastest peer of any accuracy, where that is a faster one, or where no peer stays below 1 ulp on the sample. Such a peer answers an easier question; where its ratio is above 1, it is the faster choice for who can do with its errors.
"""


def keep(folder):
    measured.mkdir(parents=True, exist_ok=True)
    for path in sorted(folder.glob("*.csv")):
        if path.stem not in titles:
            continue
        rows = [(row["function"], row["level"], row["n"], row["ratio of the aim"], row["peer of the aim"],
                 row["ratio to any"], row["fastest"])
                for row in csv.DictReader(path.open()) if row["ratio of the aim"] or row["ratio to any"]]
        with (measured / path.name).open("w", newline="") as file:
            csv.writer(file, lineterminator="\n").writerows([columns, *rows])
        shutil.copy(path.with_suffix(".png"), measured)


@dataclasses.dataclass
class Row:
    function: str
    level: str
    size: int
    ratio: float | None  # to the fastest peer within 1 ulp, where there is one
    peer: str
    any_ratio: float | None
    any_peer: str


def read(room):
    def ratio(text):
        return float(text) if text else None

    return [Row(row["function"], row["level"], int(row["n"]), ratio(row["ratio"]), row["fastest"],
                ratio(row.get("ratio to any")), row.get("fastest of any"))
            for row in csv.DictReader((measured / f"{room}.csv").open())]


def cell(row):
    if not row or row.ratio is None:
        return ""
    return f"**{row.ratio:.2f}** {row.peer}" if round(row.ratio, 2) > 1 else f"{row.ratio:.2f} {row.peer}"


def cell_with_any(row):
    if not row or row.any_ratio is None or row.any_ratio <= (row.ratio or 0):
        return cell(row)
    return f"{cell(row)} ({row.any_ratio:.2f} {row.any_peer})".lstrip()


def table_by_size(rows):
    """One line a function, one column a size."""
    sizes = sorted({row.size for row in rows})
    cells = {(row.function, row.size): row for row in rows}
    return "\n".join(report.table(["", *(f"n = {size}" for size in sizes)], (
        [function, *(cell_with_any(cells.get((function, size))) for size in sizes)]
        for function in dict.fromkeys(row.function for row in rows))))


def table(lines, rows, cell=cell):
    """lines: label, function, size."""
    levels = list({row.level: None for row in rows})
    cells = {(row.function, row.size, row.level): row for row in rows}
    return "\n".join(report.table(["", *levels], ([label, *(cell(cells.get((function, size, level))) for level in levels)]
                                                  for label, function, size in lines)))


def tally(rows):
    by_level = collections.defaultdict(list)
    for row in rows:
        if row.ratio is not None:
            by_level[row.level].append(row.ratio)
    return "; ".join(f"{level}: {len(ratios)} rows, median {statistics.median(ratios):.2f}, "
                     f"{sum(ratio > 1.005 for ratio in ratios)} above 1, largest {max(ratios):.2f}"
                     for level, ratios in by_level.items())


def speed_page():
    parts = [intro]
    for room, title in titles.items():
        if not (measured / f"{room}.csv").exists():
            continue
        rows = read(room)
        by_size = report.is_by_size(rows)
        if by_size and len({row.level for row in rows}) == 1:
            ratios = table_by_size(rows)
        else:
            size = None if by_size else report.main_size(rows)
            shown = [row for row in rows if size in (None, row.size)]
            lines = {(f"{row.function}, {row.size}", row.function, row.size): None for row in shown}
            ratios = table(lines, shown, cell_with_any)
        parts.append(f"## {title}\n\n{tally(rows)}.\n\n![Ratios of {room}](measured/{room}.png)\n\n{ratios}\n")
    return "\n".join(parts)


def readme_table(match):
    room, wanted = match[1], [line.split(None, 2) for line in match[2].strip().splitlines()]
    rows = read(room)
    for function, size, _ in wanted:
        if not any((row.function, row.size) == (function, int(size)) for row in rows):
            sys.exit(f"README.md: {room} has no {function} {size}")
    lines = [(label, function, int(size)) for function, size, label in wanted]
    return (f"<!-- speed {room}\n{match[2].strip()}\n-->\n{table(lines, rows)}\n\n"
            f"Of all that was measured: {tally(rows)}.\n<!-- end of speed -->")


def main():
    keep(pathlib.Path(sys.argv[1]))
    pathlib.Path("docs/speed.md").write_text(speed_page())
    readme = pathlib.Path("README.md")
    readme.write_text(re.sub(r"<!-- speed (\w+)\n(.*?)-->.*?<!-- end of speed -->", readme_table, readme.read_text(),
                             flags=re.S))


if __name__ == "__main__":
    main()
