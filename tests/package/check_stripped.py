"""The installed libraries carry no debug information; where it is asked for, a file beside the shared one does.

check_stripped.py CMAKE BUILD_DIR STAGE
"""
import pathlib
import subprocess
import sys

cmake, build, stage = sys.argv[1:]
library = next(path for path in pathlib.Path(stage).rglob("libqkr.so.*") if not path.is_symlink())
archive = library.with_name("libqkr.a")
debug_file = library.with_name(library.name + ".debug")


def sections(path):
    return subprocess.run(["readelf", "--sections", "--wide", path], capture_output=True, text=True, check=True).stdout


faults = [f"{path.name} has debug information" for path in (library, archive) if ".debug_info" in sections(path)]
subprocess.run([cmake, "--install", build, "--prefix", stage, "--component", "debug"], check=True)
faults += ["no debug information in the file for it"] * (".debug_info" not in sections(debug_file))
link = subprocess.run(["readelf", "--string-dump=.gnu_debuglink", library], capture_output=True, text=True, errors="replace").stdout
faults += [f"{library.name} does not name {debug_file.name}"] * (debug_file.name not in link)
print(*(f"{path.name}: {path.stat().st_size / 1e6:.1f} MB" for path in (library, archive, debug_file)), sep=", ")
sys.exit("\n".join(faults) or 0)
