"""A digest prints the same on other processors and with other choices of the C library: emulated ones of
two generations, and a C library that is told to do without AVX2 and fused operations. Where the bits that the
library gives to its users are recorded in a file, they are those.

same_digest.py PROGRAM SIZE [FILE [--write]]
"""
import os
import subprocess
import sys
from pathlib import Path

program, size, *recorded = sys.argv[1:]
VARIANTS = {
    "a C library without AVX2 and FMA": ([], {"GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX2,-FMA,-FMA4"}),
    "a processor without AVX": (["qemu-x86_64", "-cpu", "Nehalem"], {}),
    "a processor with AVX2": (["qemu-x86_64", "-cpu", "Haswell"], {}),
}


def digest(emulator=(), environment={}):
    return subprocess.run([*emulator, program, size], env={**os.environ, **environment}, text=True,
                          stdout=subprocess.PIPE, check=True).stdout.splitlines()


here = digest()
if "--write" in recorded:
    Path(recorded[0]).write_text("\n".join(here) + "\n")
faults = [] if len(here) > 50 else [f"only {len(here)} lines"]
results = {name: digest(*variant) for name, variant in VARIANTS.items()}
if recorded:
    results["what is recorded"] = Path(recorded[0]).read_text().splitlines()
for name, there in results.items():
    different = [f"{a} | {b}" for a, b in zip(here, there) if a != b]
    if different or len(there) != len(here):
        faults.append("\n".join([f"{name}: {len(different)} of {len(here)} lines differ", *different[:5]]))
print(f"{len(here)} lines, {len(results)} variants")
sys.exit("\n".join(faults) or 0)
