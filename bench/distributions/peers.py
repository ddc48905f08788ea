#!/usr/bin/python3
"""Adds NumPy's generators to a run of bench_distributions: peers.py RUN.json

Numbers are drawn into new arrays, as NumPy gives them; the times include what Python takes to call a function,
about two microseconds.
"""
import numpy

from python_peers import add, cases, fastest, run_to_edit

# The row of bench_distributions, less its type and generator. A "_new" row has other parameters for each call, which
# NumPy sets up anew whatever they are.
REALS = {
    "Uniform": lambda g, n, dtype: g.random(n, dtype=dtype),
    "Exponential": lambda g, n, dtype: g.standard_exponential(n, dtype=dtype),
    "Gaussian0": lambda g, n, dtype: g.standard_normal(n, dtype=dtype),
    "Gaussian1": lambda g, n, dtype: g.standard_normal(n, dtype=dtype),
    "Gamma_0.3": lambda g, n, dtype: g.standard_gamma(0.3, n, dtype=dtype),
    "Gamma_0.8": lambda g, n, dtype: g.standard_gamma(0.8, n, dtype=dtype),
    "Gamma_3": lambda g, n, dtype: g.standard_gamma(3, n, dtype=dtype),
}
DOUBLES = {
    "Laplace": lambda g, n: g.laplace(0, 1, n),
    "Weibull": lambda g, n: g.weibull(2, n),
    "Cauchy": lambda g, n: g.standard_cauchy(n),
    "Rayleigh": lambda g, n: g.rayleigh(1, n),
    "Gumbel": lambda g, n: g.gumbel(0, 1, n),
    "Lognormal": lambda g, n: g.lognormal(0, 1, n),
    "Beta_0.2_0.3": lambda g, n: g.beta(0.2, 0.3, n),
    "Beta_0.8_0.7": lambda g, n: g.beta(0.8, 0.7, n),
    "Beta_0.5_3": lambda g, n: g.beta(0.5, 3, n),
    "Beta_2_3": lambda g, n: g.beta(2, 3, n),
}
WHOLE = {
    "Uniform": lambda g, n: g.integers(0, 1000, n, dtype=numpy.int32),
    "Geometric": lambda g, n: g.geometric(0.3, n),
    "Binomial_50_0.3": lambda g, n: g.binomial(50, 0.3, n),
    "Binomial_1000_0.4": lambda g, n: g.binomial(1000, 0.4, n),
    "Binomial_1000_0.4_new": lambda g, n: g.binomial(1000, 0.4, n),
    "Hypergeometric_small": lambda g, n: g.hypergeometric(200, 800, 100, n),
    "Hypergeometric_large": lambda g, n: g.hypergeometric(4000, 6000, 1000, n),
    "Negbinomial_5_0.3": lambda g, n: g.negative_binomial(5, 0.3, n),
    "Negbinomial_200_0.3": lambda g, n: g.negative_binomial(200, 0.3, n),
    "Poisson_5": lambda g, n: g.poisson(5, n),
    "Poisson_500": lambda g, n: g.poisson(500, n),
    "Poisson_500_new": lambda g, n: g.poisson(500, n),
    "Poisson1_500": lambda g, n: g.poisson(500, n),
    "PoissonV": lambda g, n, means=0.5 + numpy.arange(10**6) * 2654435761 % 1000: g.poisson(means[:n]),
}
ENGINES = {"numpy-pcg64": numpy.random.PCG64, "numpy-sfc64": numpy.random.SFC64}


def draw_of(name, form):
    if form == "i32":
        return WHOLE.get(name)
    if name in REALS:
        dtype = numpy.float64 if form == "f64" else numpy.float32
        return lambda g, n: REALS[name](g, n, dtype)
    return DOUBLES.get(name) if form == "f64" else None


def main():
    with run_to_edit() as run:
        times = {}  # which are the same beside each of our generators
        for (row, n), index in cases(run).items():
            name, form, _ = row.rsplit(".", 2)
            draw = draw_of(name, form)
            if draw is None:
                continue
            for engine, make in ENGINES.items():
                key = name, form, n, engine
                if key not in times:
                    generator = numpy.random.Generator(make(7))
                    times[key] = fastest(lambda: draw(generator, int(n)))
                add(run, row, n, engine, index, times[key], int(n))


if __name__ == "__main__":
    main()
