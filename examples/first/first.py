# The mean of a million lognormal numbers: near exp(1/2) = 1.65.
import qkr
import qkr.random

stream = qkr.random.MT2203(777, member=7)  # member 7 of a family of generators
x = stream.normal(0.0, 1.0, size=1_000_000)  # mean, deviation
qkr.exp(x, out=x)  # in place
print(f"mean {x.mean():.2f}")
