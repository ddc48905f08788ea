"""The shared object exports exactly what the public headers declare with QKR_API, under the version QKR_0."""
import re
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import where

VERSION = "QKR_0"
compiler, include, library = sys.argv[1:]


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


declared = set(where.declarations(compiler, include))

exported, versions = set(), set()
for line in output("nm", "-D", "--defined-only", "--format=posix", library).splitlines():
    name, _, version = line.split()[0].partition("@")
    if line.split()[1] != "A":  # the version itself is an absolute symbol
        exported.add(name)
        versions.add(version.lstrip("@"))

soname = re.search(r"\(SONAME\).*\[(.*)\]", output("readelf", "--dynamic", "--wide", library))
faults = [f"declared, not exported: {name}" for name in sorted(declared - exported)]
faults += [f"exported, not declared: {name}" for name in sorted(exported - declared)]
faults += ["the headers declare nothing"] * (not declared)
faults += [f"symbol versions {sorted(versions)}, not {VERSION}"] * (versions != {VERSION})
faults += [f"SONAME {soname and soname[1]}"] * (not soname or soname[1] != "libqkr.so.0")
print(f"{len(declared)} names declared, {len(exported)} exported")
sys.exit("\n".join(faults) or 0)
