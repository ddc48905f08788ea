"""The shared object exports exactly what the public headers declare with QKR_API, under the version QKR_0."""
import re
import subprocess
import sys

VERSION = "QKR_0"
compiler, include, library = sys.argv[1:]


def output(*command, text=""):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout


def declared_name(declaration):
    """'void *(*i_malloc)(size_t)', 'extern int table[4]' or 'int32_t f(int32_t n)': the name that it declares."""
    declaration = re.sub(r"__attribute__\s*\(\(.*?\)\)", "", declaration)
    for pattern in (r"\(\s*\*\s*(\w+)\s*\)\s*\(", r"(\w+)\s*\(", r"(\w+)\s*(?:\[[^]]*\]\s*)*$"):
        if found := re.search(pattern, declaration):
            return found[1]
    sys.exit(f"no name found in: {declaration}")


# QKR_API stands in the preprocessed text under a name of its own, so that it can be told from other attributes.
preprocessed = output(compiler, "-E", "-P", "-x", "c", "-I", include, "-", text="""
#include <qkr/api.h>
#undef QKR_API
#define QKR_API exported_here
#include <qkr/qkr.h>
""")
declared = {declared_name(text) for text in re.findall(r"\bexported_here\b([^;{]*)", preprocessed)}

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
