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
    "streams": {"simd", "vecmath"},
    "distributions": {"simd", "vecmath", "streams"},
    "dft": {"simd", "service", "sigfft"},
    "convcorr": {"simd", "sigfft", "dft"},
    "library": {"simd", "vecmath", "streams", "sigfft", "dft", "convcorr"},
}


def ascending(*folders):
    """Each folder stands on all that are named before it."""
    return {folder: set(folders[:i]) for i, folder in enumerate(folders)}


# Rooms whose folders are layers of their own, none of them above 20 files; "" is the room's own folder.
FOLDERS = {
    "vecmath": {
        "tables": set(),
        "errors": set(),
        "frame": {"errors"},
        "exact": {"errors", "frame"},
        "real": {"errors", "frame", "tables"},
        "extended": {"frame", "tables"},
        "complex": {"errors", "frame", "tables", "extended"},
    },
    "streams": ascending("tables", "generators", "quasi", ""),
    "sigfft": ascending("arrays", "tables", "plan", "passes", "routes", "", "any_length", "convolution"),
}
root = pathlib.Path(sys.argv[1])
faults, checked = [], 0


def room_of_header(name):
    """include/qkr/vecmath.h and include/qkr/vecmath_control.h are headers of vecmath."""
    return pathlib.PurePath(name).stem.partition("_")[0]


def check(file, room, included):
    if included != room and included not in STANDS_ON[room]:
        faults.append(f"{file.relative_to(root)} ({room}) includes a file of {included}")


def folder_of(path):
    """The layer within its room: frame of vecmath/frame/contract.h, "" of a file beside the folders."""
    parts = pathlib.PurePath(path).parts
    return parts[1] if len(parts) > 2 else ""


def check_folders(file, included):
    room, path = included.partition("/")[0], file.relative_to(root)
    if room not in FOLDERS or path.parts[0] != room:
        return
    own, other = folder_of(path), folder_of(included)
    if other != own and other not in FOLDERS[room].get(own, set()):
        faults.append(f"{path} ({room}/{own}) includes a file of {room}/{other}")


for room in FOLDERS:
    for folder in [(root / room), *(path for path in (root / room).rglob("*") if path.is_dir())]:
        files = [file for file in folder.iterdir() if file.suffix in {".h", ".cpp"}]
        if len(files) > 20:
            faults.append(f"{folder.relative_to(root)} holds {len(files)} files")
        if files and folder_of(folder.relative_to(root) / "file") not in FOLDERS[room]:
            faults.append(f"{folder.relative_to(root)} is no layer of {room}")

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
                check_folders(file, name)
print(f"{checked} files")
sys.exit("\n".join(faults) or (0 if checked else "no files found"))
