"""Calls run downward only: a file of one room includes nothing of a room that it does not stand on, and a file of
one layer of a room nothing of a layer above it."""
import pathlib
import re
import sys

STANDS_ON = {
    "simd": set(),
    "service": {"simd"},
    "vecmath": {"simd"},
    "sigfft": {"simd"},
    "streams": {"simd"},
    "distributions": {"simd", "vecmath", "streams"},
    "dft": {"simd", "service", "sigfft"},
    "convcorr": {"simd", "sigfft", "dft"},
}
# Folders of a room, the lowest first; files of the room itself stand on all of them but those named behind "".
LAYERS = {
    "streams": ["tables", "generators", "quasi", ""],
}
root = pathlib.Path(sys.argv[1])
faults, checked = [], 0


def room_of_header(name):
    """include/qkr/vecmath.h and include/qkr/vecmath_control.h are headers of vecmath."""
    return pathlib.PurePath(name).stem.partition("_")[0]


def check(file, room, included):
    if included != room and included not in STANDS_ON[room]:
        faults.append(f"{file.relative_to(root)} ({room}) includes a file of {included}")


def check_layer(file, room, included):
    """`included` is the name of a file of the same room, from the room's folder on."""
    layers = LAYERS[room]
    own, other = (name.rpartition("/")[0] for name in (str(file.relative_to(root / room)), included))
    unknown = {own, other} - set(layers)
    if unknown:
        faults.append(f"{file.relative_to(root)}: no layer {' or '.join(unknown)} in {room}")
    elif layers.index(other) > layers.index(own):
        faults.append(f"{file.relative_to(root)} (layer {own}) includes a file of the layer {other}")


for room in STANDS_ON:
    public = [file for file in (root / "include" / "qkr").glob("*.h") if room_of_header(file) == room]
    own = [file for file in (root / room).rglob("*") if file.suffix in {".h", ".cpp"}]
    for file in public + own:
        checked += 1
        for name in re.findall(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', file.read_text(), re.MULTILINE):
            first, _, rest = name.partition("/")
            if first == "qkr" and rest != "api.h":
                check(file, room, room_of_header(rest))  # also refuses qkr.h, which includes all rooms
            elif first in STANDS_ON or first in {"tests", "tools", "bench", "examples"}:
                check(file, room, first)
                if first == room and room in LAYERS:
                    check_layer(file, room, rest)
print(f"{checked} files")
sys.exit("\n".join(faults) or (0 if checked else "no files found"))
