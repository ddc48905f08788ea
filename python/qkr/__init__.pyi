from ._ufuncs import *

__all__ = [
    "arccos", "arccosh", "arcsin", "arcsinh", "arctan", "arctan2", "arctanh", "cbrt", "ceil", "cos", "cosh",
    "divide", "erf", "erfc", "erfinv", "exp", "floor", "hypot", "invcbrt", "invsqrt", "log", "log10", "modf",
    "nearbyint", "power", "reciprocal", "rint", "round_half_away", "sin", "sincos", "sinh", "sqrt", "tan",
    "tanh", "trunc",
]
