"""Nothing of the shared object runs when it is loaded, and it needs no more than the C library and threads."""
import re
import subprocess
import sys

ALLOWED = re.compile(r"lib(c|m|pthread)\.so\.\d+|libomp\.so(\.\d+)?|ld-linux-x86-64\.so\.2")
library = sys.argv[1]


def readelf(option):
    return subprocess.run(["readelf", option, "--wide", library], capture_output=True, text=True, check=True).stdout


dynamic = readelf("--dynamic")
needed = re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic)
faults = [f"has {tag}" for tag in re.findall(r"\(((?:PREINIT|INIT|FINI)(?:_ARRAY)?)\)", dynamic)]
faults += ["has an indirect function, resolved at load time"] * ("IRELATIV" in readelf("--relocs"))
faults += [f"needs {name}" for name in needed if not ALLOWED.fullmatch(name)]
faults += ["looks functions up at their first call"] * (not re.search(r"\(FLAGS_1\).*\bNOW\b", dynamic))
faults += ["readelf shows no dynamic section"] * ("(SYMTAB)" not in dynamic)
print("needs", *needed)
sys.exit("\n".join(faults) or 0)
