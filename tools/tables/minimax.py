"""Polynomials of least largest error, by the exchange algorithm of E. Ya. Remez (1934)."""
import gmpy2
from gmpy2 import mpfr


def solve(matrix, right):
    """Gaussian elimination with row pivoting."""
    rows = [list(row) + [value] for row, value in zip(matrix, right)]
    size = len(rows)
    for i in range(size):
        pivot = max(range(i, size), key=lambda k: abs(rows[k][i]))
        rows[i], rows[pivot] = rows[pivot], rows[i]
        for k in range(i + 1, size):
            factor = rows[k][i] / rows[i][i]
            rows[k] = [x - factor * y for x, y in zip(rows[k], rows[i])]
    result = [mpfr(0)] * size
    for i in reversed(range(size)):
        known = sum((rows[i][j] * result[j] for j in range(i + 1, size)), mpfr(0))
        result[i] = (rows[i][size] - known) / rows[i][i]
    return result


def value(coefficients, x):
    total = mpfr(0)
    for c in reversed(coefficients):
        total = total * x + c
    return total


def minimax(f, weight, low, high, terms, grid=2000, rounds=12):
    """Coefficients, lowest power first, of the polynomial p that makes max |weight * (p - f)| least on [low, high];
    and that maximum. The weight may be zero at `low`."""
    low, high = mpfr(low), mpfr(high)
    points = [low + (high - low) * (1 - gmpy2.cos(gmpy2.const_pi() * (i + 1) / grid)) / 2 for i in range(grid)]
    exact = [f(x) for x in points]
    weights = [weight(x) for x in points]
    chosen = [(2 * i + 1) * grid // (2 * terms + 2) for i in range(terms + 1)]
    for _ in range(rounds):
        matrix = [[points[k] ** j for j in range(terms)] + [(-1) ** i / weights[k]] for i, k in enumerate(chosen)]
        coefficients = solve(matrix, [exact[k] for k in chosen])[:terms]
        errors = [w * (value(coefficients, x) - y) for w, x, y in zip(weights, points, exact)]
        # the largest error of each run of one sign
        runs = [[0]]
        for k in range(1, grid):
            if (errors[k] > 0) == (errors[k - 1] > 0):
                runs[-1].append(k)
            else:
                runs.append([k])
        peaks = [max(run, key=lambda k: abs(errors[k])) for run in runs]
        while len(peaks) > terms + 1:
            del peaks[0 if abs(errors[peaks[0]]) < abs(errors[peaks[-1]]) else -1]
        if len(peaks) < terms + 1 or peaks == chosen:
            break
        chosen = peaks
    return coefficients, max(map(abs, errors))
