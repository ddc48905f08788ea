#!/usr/bin/python3
"""Runs every table generator; --check compares the committed files instead of writing them."""
import subprocess
import sys
from pathlib import Path

GENERATORS = ["circular", "error_function", "exponential", "extended", "hyperbolic", "inverse", "logarithm", "mrg32k3a",
              "niederreiter", "poisson_bands", "power", "sobol", "square_root", "stream_scalars", "tangent", "twiddles", "unit_circle",
              "wichmann_hill"]

here = Path(__file__).resolve().parent
failed = [name for name in GENERATORS
          if subprocess.run([sys.executable, here / f"{name}.py", *sys.argv[1:]]).returncode]
sys.exit(1 if failed else 0)
