"""qkr for Python: vector functions as NumPy ufuncs."""

from . import _ufuncs
from ._ufuncs import *  # noqa: F403
