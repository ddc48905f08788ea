"""A digest prints the same on other processors and with other choices of the C library: emulated ones of
two generations, and a C library that is told to do without AVX2 and fused operations."""
import os
import subprocess
import sys

program, size = sys.argv[1:]
VARIANTS = {
    "a C library without AVX2 and FMA": ([], {"GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX2,-FMA,-FMA4"}),
    "a processor without AVX": (["qemu-x86_64", "-cpu", "Nehalem"], {}),
    "a processor with AVX2": (["qemu-x86_64", "-cpu", "Haswell"], {}),
}


def digest(emulator=(), environment={}):
    return subprocess.run([*emulator, program, size], env={**os.environ, **environment}, text=True,
                          stdout=subprocess.PIPE, check=True).stdout.splitlines()


here = digest()
faults = [] if len(here) > 50 else [f"only {len(here)} lines"]
for name, variant in VARIANTS.items():
    there = digest(*variant)
    different = [f"{a} | {b}" for a, b in zip(here, there) if a != b]
    if different or len(there) != len(here):
        faults.append("\n".join([f"{name}: {len(different)} of {len(here)} lines differ", *different[:5]]))
print(f"{len(here)} lines, {len(VARIANTS)} variants")
sys.exit("\n".join(faults) or 0)
