"""Runs the demonstration into a scratch directory and compares what it printed and wrote with NumPy.

check_demo.py EXAMPLES_DIR BUILD_DIR SCRATCH_DIR
"""
import math
import os
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

import numpy as np

examples, build, out = map(Path, sys.argv[1:])


def run(*command, **environment):
    """Exit code, and stdout and stderr in the order in which they were written."""
    done = subprocess.run(list(map(str, command)), env=os.environ | environment,
                          text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.returncode, done.stdout


def table(name, delimiter=","):
    return np.genfromtxt(out / name, delimiter=delimiter, names=True, dtype=None, encoding=None)


def data(name):
    return np.genfromtxt(examples / "data" / name, delimiter=",", skip_header=2)


def picture(path):
    return np.frombuffer(path.read_bytes()[-512 * 512:], np.uint8).reshape(512, 512).astype(float)


def without_trend(signal, degree):
    x = np.linspace(-1, 1, len(signal))
    return signal - np.polyval(np.polyfit(x, signal, degree), x)


def normal(x):
    return np.vectorize(math.erfc)(-x / math.sqrt(2)) / 2


class Demo(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(out, ignore_errors=True)
        code, cls.report = run(examples / "run_demo.sh", build, out)
        assert code == 0, cls.report
        cls.photo = picture(examples / "data/photo.pgm")

    def near(self, found, expected, most):
        self.assertLess(np.max(np.abs(np.asarray(found) - expected)), most)

    def test_photo(self):
        """Restoring undoes most of the blur, and two threads give the pictures of one."""
        lines = re.findall(r"blurred they differ by (\S+) grey levels, restored by (\S+)\n", self.report)
        self.assertEqual((len(lines), lines[0]), (2, lines[1]))
        blurred, restored = map(float, lines[0])
        self.assertLess(restored, blurred / 2)
        for name, difference in (("blurred", blurred), ("restored", restored)):
            found = picture(out / f"photo_{name}.pgm")
            self.near(np.sqrt(np.mean((found - self.photo) ** 2)), difference, 0.7)

    def test_edges(self):
        """Away from the borders; and the two ways agree."""
        across, down = (np.einsum("yxji,ji->yx", np.lib.stride_tricks.sliding_window_view(self.photo, (3, 3)), kernel)
                        for kernel in (np.outer([1, 2, 1], [1, 0, -1]), np.outer([1, 0, -1], [1, 2, 1])))
        self.near(picture(out / "photo_edges.pgm")[1:-1, 1:-1], np.minimum(np.hypot(across, down) / 2, 255), 0.51)
        bell = np.exp(-np.arange(-6, 7) ** 2 / 8)
        soft = np.apply_along_axis(np.convolve, 0, np.apply_along_axis(np.convolve, 1, self.photo, bell, "same"), bell,
                                   "same")
        sharpened = np.clip(2.5 * self.photo - 1.5 * soft / bell.sum() ** 2, 0, 255)
        self.near((picture(out / "photo_sharpened.pgm") - sharpened)[6:-6, 6:-6], 0, 0.51)
        differences = re.findall(r"they differ by at most (\S+) grey levels", self.report)
        self.assertEqual(len(differences), 3)
        self.near(list(map(float, differences)), 0, 1e-3)

    def test_beats(self):
        """About 110 a minute; their likeness is a correlation coefficient."""
        found = table("ecg_beats.csv")
        beats = np.flatnonzero(found["beat"])
        self.assertTrue(105 <= len(beats) <= 115 and np.diff(beats).min() > 108, beats)
        place = round(float(re.search(r"template at (\S+) s", self.report)[1]) * 360)
        cuts = [found["millivolt"][i - 25:i + 26] for i in (place, *beats)]
        self.near(found["likeness"][beats], np.corrcoef(cuts)[0, 1:], 1e-7)

    def test_growth(self):
        """The same line through the same logarithms, but for where in its year a date stands."""
        dates, ppm = data("co2_weekly.csv").T
        self.assertIn(f"2284 weeks from 1958.2 to 2002.0, {np.isnan(ppm).sum()} of them not measured", self.report)
        year = dates // 10000 + (dates // 100 % 100 - 1) / 12 + (dates % 100 - 1) / 365
        for rate in table("co2_rates.csv")[1:]:
            chosen = (year >= rate["from_year"]) & (year < rate["to_year"]) & ~np.isnan(ppm)
            slope = np.polyfit(year[chosen] - 1980, np.log(ppm[chosen]), 1)[0]
            self.near(rate["percent_per_year"], 100 * np.expm1(slope), 2e-3)
        fit = table("co2_fit.csv")
        self.assertLess(np.nanmax(np.abs(fit["ppm"] - fit["fit_ppm"])), 10)  # season and bend of the trend, 4 each

    def test_tone_curve(self):
        self.assertTrue(np.array_equal(picture(out / "tone_before.pgm"), self.photo))
        self.near(picture(out / "tone_after.pgm"), 255 * np.log1p(10 * self.photo / 255) / np.log(11), 0.501)

    def test_daylight(self):
        """Almanac: sunrise to sunset at Greenwich is 16 h 38 min on 21 June, 7 h 50 min on 21 December."""
        days, sun = table("daylight.csv"), table("elevation.csv")
        self.near(days["Greenwich"][[171, 354]], np.array([16 + 38 / 60, 7 + 50 / 60]), 2 / 60)
        self.near(days["Quito"], 12.125, 0.075)
        self.near([np.sum(days["Tromso"] == 24), np.sum(days["Tromso"] == 0)], np.array([69, 49]), 2.5)
        self.near(np.max(sun["elevation"]), 90 - 69.6529 + 23.436, 0.05)
        # Haversines instead of arc tangents.
        _, latitude, longitude = np.radians(data("stations.csv")).T
        north, east = (np.sin(np.subtract.outer(a, a) / 2) for a in (latitude, longitude))
        square = north ** 2 + np.outer(np.cos(latitude), np.cos(latitude)) * east ** 2
        for distance in 2 * 6371.0088 * np.arcsin(np.sqrt(square[np.triu_indices(len(square), 1)])):
            self.assertIn(f"{distance:.1f}", self.report)

    def test_sunspots(self):
        signal = without_trend(data("sunspots_yearly.csv")[:, 1], 1)
        n = len(signal)
        signal = signal * np.sin(np.pi * (np.arange(n) + 0.5) / n) ** 2
        power, exact = table("sunspot_spectrum.csv")["power"], np.abs(np.fft.rfft(signal, 4096)) ** 2
        self.near(power, exact, 1e-9 * max(exact))
        period = float(re.search(r"strongest period: (.*) years", self.report)[1])
        self.assertTrue(10.7 < period < 11.3 and abs(period - 4096 / (1 + np.argmax(exact[1:]))) < 0.1, period)

    def test_ecg(self):
        """The convolution and the spectra; drift and hum go, the beats stay."""
        record, spectrum = table("ecg_cleaned.csv"), table("ecg_spectrum.csv")
        self.assertTrue(np.array_equal(record["raw"], data("ecg_360hz.csv")))
        taps = np.arange(-1440, 1441)
        angle = np.pi * taps / 1441
        low_pass = np.sinc(taps / 360) * (0.42 + 0.5 * np.cos(angle) + 0.08 * np.cos(2 * angle))
        weights = (taps == 0) - low_pass / sum(low_pass) * (1 + 2 * np.cos(np.pi * taps / 3))
        self.near(record["by_filter"], np.convolve(record["raw"], weights, "same"), 1e-8)
        for name, most in (("by_transform", 1e-9), ("by_filter", 0.02)):  # of what there was
            self.near(spectrum[name][1:10800], np.abs(np.fft.rfft(record[name]))[1:10800] / 10800, 1e-8)
            self.near(spectrum[name][[5, 3599]] / spectrum["raw"][[5, 3599]], 0, most)
            self.near(spectrum[name][[300, 1200, 4000]] / spectrum["raw"][[300, 1200, 4000]], 1, 0.05)
        self.assertLess(float(re.search(r"the two ways differ by (.*) mV", self.report)[1]), 0.05)

    def test_year(self):
        """A year of 52.18 weeks: the 43rd line of 43 years, and no other, holds it."""
        self.assertRegex(self.report, r"43 years +\(2244\): line 43, 52.19 weeks, 2.79 ppm, 99.2 %")
        ppm = data("co2_weekly.csv")[:, 1]
        known = np.flatnonzero(~np.isnan(ppm))
        signal = without_trend(np.interp(np.arange(len(ppm)), known, ppm[known])[-2244:], 3)
        found = table("co2_year.csv")
        chosen = (found["weeks"] == 2244) & (found["line"] > 0) & (found["line"] < 1122)
        self.near(found["amplitude"][chosen], np.abs(np.fft.rfft(signal))[found["line"][chosen]] / 1122, 1e-7)
        self.assertEqual(found[np.argmax(found["amplitude"])][["weeks", "line"]].item(), (2244, 43))

    def test_plane(self):
        """The cuts lie where they belong, and hue and brightness are those of the functions."""
        def cuts(title):
            found = re.search(re.escape(title) + r" +jumps across the real axis(.*)\n", self.report)[1]
            return [tuple(map(float, pair)) for pair in re.findall(r"from (\S+) to ([-\d.]+)", found)]

        (left, near_left), (near_right, right) = cuts("arcsin z")
        self.near([left, near_left, near_right, right], np.array([-3, -1, 1, 3]), 3 * 6 / 480)
        stretches = cuts("z^z")  # at negative integers z^z takes one value from both sides
        self.assertTrue(len(stretches) == 3 and all(stop < 0 for _, stop in stretches))
        self.near(cuts("sqrt(z + 1) sqrt(z - 1)"), [[-1, 1]], 3 * 6 / 480)

        axis = 3 * (2 * np.arange(5, 480, 47) + 1 - 480) / 480
        z = axis[np.newaxis, :] - 1j * axis[:, np.newaxis]
        for name, w in (("asin", np.arcsin(z)), ("power", z ** z), ("roots", np.sqrt(z + 1) * np.sqrt(z - 1))):
            found = np.frombuffer((out / f"plane_{name}.ppm").read_bytes()[-3 * 480 * 480:], np.uint8)
            hue = 6 * (np.angle(w) / (2 * np.pi) + 0.5)[..., np.newaxis] + np.array([0, 2, 4])
            brightness = (0.55 + 0.45 * (np.log(np.abs(w)) % 1))[..., np.newaxis]
            self.near(found.reshape(480, 480, 3)[5::47, 5::47],
                      255 * brightness * np.clip(np.abs((hue + 3) % 6 - 3) - 1, 0, 1), 2)

    def test_error_policy(self):
        """Only singularities are repaired."""
        found = table("error_policy.csv")
        self.assertEqual(list(found["status"]), [0, 2, 1, 0, 0] + [0, 2, 0, 0, 0])
        singular = found["status"] == 2
        self.assertTrue(np.all(np.abs(found["repaired"][singular]) == sys.float_info.max))
        self.assertTrue(np.array_equal(found["result"][~singular], found["repaired"][~singular], equal_nan=True))
        for text in ("status 1 (out of domain)", "callback: _vxmdDiv_HA, element 1, status 2 (singularity), repaired",
                     "Error (VXM_STATUS_SING) in _vxmdLn_HA: argument caused singularity\na(1)=0\nr(1)=-inf\n"):
            self.assertIn(text, self.report)

    def test_pi(self):
        """Random points miss by as much as they should, evenly spread ones by far less."""
        last = table("pi_error.csv")[-1]
        expected = 4 * math.sqrt(math.pi / 4 * (1 - math.pi / 4) / last["points"])
        for method in ("plain", "parallel"):  # mean of 16 squares: 0.5 to 1.6 but for 1 time in 10000
            self.assertTrue(0.4 < last[method] / expected < 1.8, last)
        self.assertLess(last["sobol"], expected / 10)
        self.assertIn("the same to the last point", self.report)

    def test_option(self):
        """The right to change one share for another after two years, by W. Margrabe's formula."""
        spread = math.sqrt((0.3 ** 2 + 0.2 ** 2 - 2 * 0.4 * 0.3 * 0.2) * 2)
        d = math.log(100 / 95) / spread + spread / 2
        price = 100 * normal(d) - 95 * normal(d - spread)
        self.assertIn(f"closed form: {price:.6f}", self.report)
        found = table("option_error.csv")
        self.assertEqual(list(found["points"]), [2 ** power for power in range(10, 21)])
        self.near(found["random"] - found["random_error"], price, 1e-8)
        self.near(found["even"] - found["even_error"], price, 1e-8)
        self.near(found["random_error"] / found["standard_error"], 0, 5)
        self.near(found["even_error"] / found["standard_error"], 0, 1 / 4)
        self.near(found["standard_error"][1:] / found["standard_error"][:-1], math.sqrt(0.5), 0.1)

    def test_distributions(self):
        """The histograms follow the densities beside them, to 5 deviations."""
        histograms = table("distributions.csv", ";")
        self.assertEqual(len(set(histograms["distribution"])), 9)
        for name in set(histograms["distribution"]):
            rows = histograms[histograms["distribution"] == name]
            expected = 1e6 * rows["density_middle"] * (rows["to"] - rows["from"])
            full = expected >= 1000
            self.assertGreater(np.sum(expected[full]), 0.9e6, name)
            self.near((rows["count"][full] - expected[full]) / (5 * np.sqrt(expected[full]) + 0.003 * expected[full]), 0, 1)

    def test_queue_and_trial(self):
        queue, trial = table("queue.csv"), table("trial.csv")
        load, mean, square = queue["load"], 3, 9 + 4  # of a service: 1 + NB(2, 1/2)
        expected = (load / mean * square + load ** 2 - load) / (2 * (1 - load))
        self.near(queue["expected"] / expected, 1, 1e-4)
        # Waits follow each other for about 1 / (1 - load)^2 slots.
        self.near((queue["simulated"] / expected - 1) * (1 - load), 0, 0.003)
        self.assertEqual(list(trial["gain"]), [0.25 * i for i in range(9)])
        # The exact test is the more careful one, by a percent or two.
        self.near(trial["simulated"] - trial["normal"], -1.5, 4.5)

    def test_pictures(self):
        if "plots skipped" not in self.report:
            plots = [Path(path).read_bytes() for path in re.findall(r"^(/.*\.png)$", self.report, re.M)]
            self.assertEqual(len(plots), 14)
            self.assertTrue(all(plot[:4] == b"\x89PNG" and len(plot) > 20000 for plot in plots))
        (out / "matplotlib.py").write_text("raise ImportError('No module named matplotlib')\n")
        code, text = run("/usr/bin/python3", examples / "plot.py", out, PYTHONPATH=str(out))
        self.assertEqual((code, text.startswith("plots skipped: ")), (0, True), text)

    def test_bad_files(self):
        bad = {"date.csv": b"date,ppm\n19580329,316.1\n19580230,316.1\n",
               "zero.csv": b"date,ppm\n19580329,316.1\n19580405,0\n",
               "short.pgm": b"P5\n4 4\n255\nxxx",
               "year.csv": b"year,sunspots\n1700,5\n1702,16\n",
               "place.csv": b"name,latitude,longitude\nNowhere,91,0\n"}
        for name, content in bad.items():
            (out / name).write_bytes(content)
        cases = [(program, [out / "nowhere"], "cannot write")
                 for program in ("error_policy", "estimate_pi", "complex_plane", "option_price", "queue_and_trial")]
        cases += [(program, [examples / "data" / file, out / "nowhere"], "cannot write") for program, file in (
            ("co2_growth", "co2_weekly.csv"), ("tone_curve", "photo.pgm"), ("daylight", "stations.csv"))]
        cases += [(program, [out / file, out], message) for program, file, message in (
            ("co2_growth", "nowhere.csv", "cannot read"), ("co2_growth", "date.csv", "line 3"),
            ("co2_growth", "zero.csv", "not positive"), ("co2_year", "date.csv", "too little data"),
            ("tone_curve", "nowhere.pgm", "cannot read"), ("tone_curve", "date.csv", "not a binary PGM"),
            ("tone_curve", "short.pgm", "ends before its last pixel"), ("daylight", "place.csv", "line 2"),
            ("sunspot_spectrum", "year.csv", "line 3"), ("ecg_filter", "date.csv", "not a number"))]
        for program, arguments, message in [*cases, ("error_policy", [], "usage: ")]:
            with self.subTest(program=program, message=message):
                code, text = run(build / "examples" / program, *arguments)
                self.assertEqual(code, 1, text)
                self.assertIn(message, text)


unittest.main(argv=sys.argv[:1], verbosity=2)
