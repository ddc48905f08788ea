#!/usr/bin/python3
"""What transforms and simulations take on many nodes: scaling.py CONSTANTS... prints the tables of docs/machines.md.

CONSTANTS are files that `constants` has printed, all for one kind of link; of several runs the smallest time counts,
since others on the machine only add to it. A node is one core here. For others, edit the file: divide `transform` and
`point` by the cores of a node, and put in `latency` and `byte` of the network.

With n^3 elements of 16 bytes, P ranks in a grid of R x C:

    T(P) = transform n^3 log2(n^3) / P + exchange(R) + exchange(C)
    exchange(m) = (m - 1) latency + V / m (copy + (m - 1) byte),  V = 16 n^3 / P,  nothing if m is 1

`transform`, `copy` and `byte` are those of a small array where a rank's part of it, V bytes, fits into the cache.
"""
import math
import pathlib
import sys

BYTES = 16  # of a complex number
BLOCKS = 1021  # of the simulation
SMALL, LARGE = 64, 192  # n that the constants are measured with
CACHE = 4 << 20


def constants(paths):
    """The smallest time under each name; `measured RANKS LENGTH` is a name."""
    best = {}
    for path in paths:
        for line in pathlib.Path(path).read_text().splitlines():
            name, value = line.rsplit(maxsplit=1)
            best[name] = min(best.get(name, math.inf), float(value))
    for n in (SMALL, LARGE):  # in a swap, half of the bytes stay
        best[f"byte {n}"] = 2 * best[f"swap {n}"] - best[f"copy {n}"]
    return best


def volume(length, ranks):
    return BYTES * length ** 3 / ranks


def per_byte(of, name, length, ranks):
    return of[f"{name} {SMALL if volume(length, ranks) <= CACHE else LARGE}"]


def exchange(of, length, ranks, members):
    if members == 1:
        return 0
    copy, byte = (per_byte(of, name, length, ranks) for name in ("copy", "byte"))
    return (members - 1) * of["latency"] + volume(length, ranks) / members * (copy + (members - 1) * byte)


def transform(of, length, rows, columns):
    ranks, elements = rows * columns, length ** 3
    return (per_byte(of, "transform", length, ranks) * elements * math.log2(elements) / ranks
            + exchange(of, length, ranks, rows) + exchange(of, length, ranks, columns))


def simulation(of, points, ranks):
    """The rank with the most blocks decides; gathering its sums takes a message from each."""
    most = math.ceil(BLOCKS / ranks)
    return of["point"] * points * most / BLOCKS + (ranks - 1) * of["latency"] + 16 * BLOCKS * of[f"byte {SMALL}"] * (ranks > 1)


def row(*cells):
    print("| " + " | ".join(cells) + " |")


def table(title, *names):
    print(f"\n{title}\n")
    row(*names)
    row(*["---"] * len(names))


def seconds(time):
    return f"{time:.3g} s" if time >= 1 else f"{1e3 * time:.3g} ms"


def main(paths):
    of = constants(paths)
    table("Constants", "part of a rank", "latency", "byte", "copy", "transform", "point")
    for name, n in (("within the cache", SMALL), ("beyond it", LARGE)):
        row(name, f"{1e6 * of['latency']:.2g} µs",
            *(f"{1e9 * of[key]:.2g} ns" for key in (f"byte {n}", f"copy {n}", f"transform {n}", "point")))

    table("Measured and modelled", "n", "1 rank", "2 ranks", "model")
    for length in sorted(int(name.split()[2]) for name in of if name.startswith("measured 2 ")):
        row(str(length), *(seconds(of[f"measured {ranks} {length}"]) for ranks in (1, 2)),
            seconds(transform(of, length, 2, 1)))

    grids = ((1, 1), (4, 1), (16, 1), (64, 1), (2, 2), (4, 4), (8, 8))
    cube = 1024
    table(f"Strong scaling: {cube}^3 on all", "nodes", "grid", "time", "efficiency", "of it exchange")
    alone = transform(of, cube, 1, 1)
    for rows, columns in grids:
        time, nodes = transform(of, cube, rows, columns), rows * columns
        moving = exchange(of, cube, nodes, rows) + exchange(of, cube, nodes, columns)
        row(str(nodes), f"{rows} x {columns}", seconds(time), f"{alone / time / nodes:.0%}", f"{moving / time:.0%}")

    small = 64
    table(f"Strong scaling of a small array: {small}^3 on all", "nodes", "grid", "time", "efficiency", "of it latency")
    alone = transform(of, small, 1, 1)
    for rows, columns in grids:
        time, nodes = transform(of, small, rows, columns), rows * columns
        waiting = (rows + columns - 2) * of["latency"]
        row(str(nodes), f"{rows} x {columns}", seconds(time), f"{alone / time / nodes:.0%}", f"{waiting / time:.0%}")

    each = 512
    table(f"Weak scaling: {each}^3 elements on each node", "nodes", "n", "slabs", "pencils", "efficiency of pencils")
    alone = transform(of, each, 1, 1)
    for nodes in (1, 4, 16, 64):
        length, side = each * nodes ** (1 / 3), math.isqrt(nodes)
        slabs, pencils = transform(of, length, nodes, 1), transform(of, length, side, side)
        row(str(nodes), f"{length:.0f}", seconds(slabs), seconds(pencils), f"{alone / pencils:.0%}")

    points = 10 ** 9
    table(f"Simulation: {points:.0e} points in {BLOCKS} blocks", "nodes", "time", "efficiency")
    for nodes in (1, 4, 16, 64):
        time = simulation(of, points, nodes)
        row(str(nodes), seconds(time), f"{simulation(of, points, 1) / time / nodes:.0%}")


if __name__ == "__main__":
    main(sys.argv[1:])
