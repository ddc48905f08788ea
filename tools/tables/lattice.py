"""Lattice reduction, for the generators of tables."""
from math import ceil, floor, sqrt


class Reduced:
    """A basis of short integer vectors (A. K. Lenstra, H. W. Lenstra and L. Lovasz, Mathematische Annalen 261
    (1982) 515). The vectors are exact; mu and the squared lengths of the orthogonalised vectors, which only steer
    the way, are in floating point."""

    def __init__(self, basis):
        self.basis, n = basis, len(basis)
        self.mu, self.square = [[0.0] * n for _ in range(n)], [0.0] * n
        self.orthogonalise(0)
        k = 1
        while k < n:
            self.shorten(k)
            if self.square[k] >= (0.99 - self.mu[k][k - 1] ** 2) * self.square[k - 1]:
                k += 1
            else:
                basis[k], basis[k - 1] = basis[k - 1], basis[k]
                k = max(k - 1, 1)
                self.orthogonalise(k - 1)

    def orthogonalise(self, k):
        r = [0.0] * (k + 1)
        for j in range(k + 1):
            r[j] = float(sum(x * y for x, y in zip(self.basis[k], self.basis[j])))
            r[j] -= sum(self.mu[j][i] * r[i] for i in range(j))
            if j < k:
                self.mu[k][j] = r[j] / self.square[j]
        self.square[k] = r[k]

    def shorten(self, k):
        """Takes multiples of the vectors before it from vector k, until none is left to take."""
        changed = True
        while changed:
            self.orthogonalise(k)
            changed = False
            for j in range(k - 1, -1, -1):
                q = round(self.mu[k][j])
                if q:
                    changed = True
                    self.basis[k] = [x - q * y for x, y in zip(self.basis[k], self.basis[j])]
                    for i in range(j):
                        self.mu[k][i] -= q * self.mu[j][i]
                    self.mu[k][j] -= q

    def shortest_square(self):
        """By enumeration of all coefficient vectors that may lead below the shortest one known."""
        n = len(self.basis)
        best = min(float(sum(x * x for x in v)) for v in self.basis)
        coefficients = [0] * n

        def search(k, square):
            nonlocal best
            if k < 0:
                best = min(best, square) if square > 0 else best
                return
            centre = -sum(coefficients[i] * self.mu[i][k] for i in range(k + 1, n))
            width = sqrt(max(0.0, (best - square) / self.square[k]))
            for c in range(ceil(centre - width), floor(centre + width) + 1):
                coefficients[k] = c
                search(k - 1, square + (c - centre) ** 2 * self.square[k])
            coefficients[k] = 0

        search(n - 1, 0.0)
        return best
