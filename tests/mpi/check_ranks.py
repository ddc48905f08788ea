"""The programs of examples/mpi print the same on 1, 2 and 4 ranks, and that is right.

check_ranks.py LAUNCHER PROGRAM_DIR LIBRARY
"""
import ctypes
import math
import re
import subprocess
import sys
import unittest
from array import array

launcher, programs, library = sys.argv[1:]
qkr = ctypes.CDLL(library)
qkr._vxsdRngUniform.argtypes = [ctypes.c_int, ctypes.c_void_p, ctypes.c_int, ctypes.c_void_p] + 2 * [ctypes.c_double]
qkr.__getattr__("__vxsSeedWords").argtypes = [ctypes.c_uint64, ctypes.c_uint64, ctypes.c_int, ctypes.c_void_p]


def launched(ranks, program, *arguments):
    return subprocess.run([launcher, str(ranks), f"{programs}/{program}", *map(str, arguments)],
                          text=True, capture_output=True, timeout=120)


def uniform(generator, index, words, count):
    """The first numbers of a stream seeded as the program says."""
    seeds, stream, numbers = (ctypes.c_uint32 * words)(), ctypes.c_void_p(), array("d", bytes(8 * count))
    getattr(qkr, "__vxsSeedWords")(2026, index, words, seeds)
    if generator == 0x400000:
        seeds[0] |= 1
    assert getattr(qkr, "__vxsNewStreamEx")(ctypes.byref(stream), generator, words, seeds) == 0
    assert qkr._vxsdRngUniform(0, stream, count, numbers.buffer_info()[0], 0, 1) == 0
    getattr(qkr, "__vxsDeleteStream")(ctypes.byref(stream))
    return numbers


class Ranks(unittest.TestCase):
    def same_on_all(self, program, *arguments):
        """What is printed, on 1, 2 and 4 ranks, which therefore does not tell how many they are."""
        texts = {}
        for ranks in (1, 2, 4):
            done = launched(ranks, program, *arguments)
            self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
            texts[ranks] = done.stdout
        self.assertEqual(texts[2], texts[1])
        self.assertEqual(texts[4], texts[1])
        return texts[1]

    def test_monte_carlo(self):
        """The three ways against their definitions: members one after the other, one sequence cut into pieces, one
        sequence dealt out in turn."""
        blocks, points = 1021, 60
        size = 6 * points
        sequence, dealt = uniform(0x300000, 0, 6, blocks * size), uniform(0x400000, 0, 2, blocks * size)
        ways = {
            "member": [uniform(0x900000 + k, k, 4, size) for k in range(blocks)],
            "skip": [sequence[k * size:(k + 1) * size] for k in range(blocks)],
            "leapfrog": [dealt[k::blocks] for k in range(blocks)],
        }
        found = dict(re.findall(r"^(\w+) .* bits (\S+)$", self.same_on_all("monte_carlo", points), re.M))
        self.assertEqual(found.keys(), ways.keys())
        for name, parts in ways.items():
            whole = 0.0
            for numbers in parts:
                total = 0.0
                for a, b, c, d, e, f in zip(*[iter(numbers)] * 6):
                    x, y, z = a - d, b - e, c - f
                    total += math.sqrt(x * x + y * y + z * z)
                whole += total
            self.assertEqual(float.fromhex(found[name]), whole / (blocks * points), name)

    def test_mean(self):
        """A million points: within four standard errors of the closed form."""
        text = self.same_on_all("monte_carlo", 1000)
        exact = float(re.search(r"exact mean (\S+),", text)[1])
        rows = re.findall(r"mean (\S+) \+- (\S+),", text)
        self.assertEqual(len(rows), 3)
        for mean, error in rows:
            self.assertLess(abs(float(mean) - exact), 4 * float(error))
            self.assertAlmostEqual(float(error), 2.47e-4, delta=3e-6)

    def test_transforms(self):
        """Two and three dimensions; lengths that ranks divide, that they do not, primes, less rows than ranks. Slabs
        and pencils give the same spectrum."""
        for lengths in ((45, 17), (3, 2), (16, 32, 64), (45, 50, 14), (31, 37, 211), (3, 5, 2)):
            with self.subTest(lengths=lengths):
                text = self.same_on_all("transform", "slabs", *lengths)
                self.assertEqual(self.same_on_all("transform", "pencils", *lengths), text)
                self.assertIn("axis by axis:   the same bits\n", text)
                differences = re.findall(r"differs by (\S+)", text)
                self.assertEqual(len(differences), 2)
                self.assertLess(max(map(float, differences)), 1e-14)

    def test_usage(self):
        for arguments in ((), ("slabs", 3), ("rods", 3, 3), ("slabs", 3, 0)):
            done = launched(2, "transform", *arguments)
            self.assertNotEqual(done.returncode, 0)
            self.assertIn("usage: transform slabs|pencils N0 N1 [N2]", done.stderr)


unittest.main(argv=sys.argv[:1], verbosity=2)
