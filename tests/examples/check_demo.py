"""Runs the demonstration into a scratch directory and checks what it printed and wrote.

check_demo.py EXAMPLES_DIR BUILD_DIR SCRATCH_DIR
"""
import bisect
import cmath
import csv
import datetime
import importlib.util
import itertools
import math
import os
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

examples, build, out = map(Path, sys.argv[1:])


def run(*command, **environment):
    """Exit code, and stdout and stderr in the order in which they were written."""
    done = subprocess.run(list(map(str, command)), env=os.environ | environment,
                          text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.returncode, done.stdout


def rows(path, delimiter=","):
    with open(path, newline="") as file:
        return list(csv.DictReader(file, delimiter=delimiter))


def pixels(path):
    return path.read_bytes()[-512 * 512:]


class Demo(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(out, ignore_errors=True)
        code, cls.report = run(examples / "run_demo.sh", build, out)
        assert code == 0, cls.report

    def test_photo(self):
        """Restoring undoes most of the blur, and two threads give the pictures of one."""
        lines = re.findall(r"blurred they differ by (\S+) grey levels, restored by (\S+)\n", self.report)
        self.assertEqual(len(lines), 2)
        self.assertEqual(lines[0], lines[1])
        blurred, restored = map(float, lines[0])
        self.assertLess(restored, blurred / 2)
        photo = pixels(examples / "data/photo.pgm")
        for name, difference in (("blurred", blurred), ("restored", restored)):
            found = pixels(out / f"photo_{name}.pgm")
            self.assertAlmostEqual(math.dist(photo, found) / 512, difference, delta=0.7)
        spectrum = pixels(out / "photo_spectrum.pgm")
        self.assertEqual(max(spectrum), spectrum[256 * 512 + 256])

    def test_edges(self):
        """The pictures again, from their definitions, at some pixels; and the two ways agree."""
        photo = pixels(examples / "data/photo.pgm")
        weights = [math.exp(-i * i / 8) for i in range(-6, 7)]
        weights = [w / sum(weights) for w in weights]
        sharpened, edges = pixels(out / "photo_sharpened.pgm"), pixels(out / "photo_edges.pgm")
        for y, x in itertools.product(range(7, 505, 53), range(7, 505, 47)):
            def at(j, i):
                return photo[(y + j) * 512 + x + i]
            blurred = sum(weights[j + 6] * weights[i + 6] * at(j, i) for j in range(-6, 7) for i in range(-6, 7))
            expected = min(max(at(0, 0) + 1.5 * (at(0, 0) - blurred), 0), 255)
            self.assertAlmostEqual(sharpened[y * 512 + x], expected, delta=0.51)
            across = sum((2 - abs(j)) * (at(j, 1) - at(j, -1)) for j in (-1, 0, 1))
            down = sum((2 - abs(i)) * (at(1, i) - at(-1, i)) for i in (-1, 0, 1))
            self.assertAlmostEqual(edges[y * 512 + x], min(math.hypot(across, down) / 2, 255), delta=0.51)
        differences = re.findall(r"they differ by at most (\S+) grey levels", self.report)
        self.assertEqual(len(differences), 3)
        self.assertLess(max(map(float, differences)), 1e-3)

    def test_beats(self):
        """About 110 a minute; each is a local maximum of the likeness, which is a correlation coefficient."""
        table = rows(out / "ecg_beats.csv")
        signal, likeness = ([float(row[name]) for row in table] for name in ("millivolt", "likeness"))
        beats = [i for i, row in enumerate(table) if row["beat"] == "1"]
        self.assertTrue(105 <= len(beats) <= 115, len(beats))
        self.assertIn(f"{len(beats)} beats in 60 s, {len(beats)} a minute", self.report)
        place = round(float(re.search(r"template at (\S+) s", self.report)[1]) * 360)
        self.assertAlmostEqual(likeness[place], 1, places=9)
        self.assertGreater(min(b - a for a, b in itertools.pairwise(beats)), 108)

        def centred(i):
            part = signal[i - 25:i + 26]
            mean = sum(part) / 51
            return [v - mean for v in part]
        model = centred(place)
        for i in beats:
            self.assertEqual(likeness[i], max(likeness[max(i - 10, 0):i + 11]))
            part = centred(i)
            exact = sum(map(math.prod, zip(model, part))) / math.hypot(*model) / math.hypot(*part)
            self.assertAlmostEqual(likeness[i], exact, places=7)

    def test_growth(self):
        """The same line through the same logarithms, by Python's own."""
        points = []
        for line in (examples / "data/co2_weekly.csv").read_text().splitlines()[2:]:
            date, ppm = line.split(",")
            day = datetime.date(int(date[:4]), int(date[4:6]), int(date[6:]))
            start, end = datetime.date(day.year, 1, 1), datetime.date(day.year + 1, 1, 1)
            if ppm:
                points.append((day.year + (day - start).days / (end - start).days, math.log(float(ppm))))
        rates = rows(out / "co2_rates.csv")
        self.assertEqual(len(rates), 5)
        for i, rate in enumerate(rates):
            first, last = (1900, 2100) if i == 0 else (float(rate["from_year"]), float(rate["to_year"]))
            chosen = [(t, y) for t, y in points if first <= t < last]
            middle = sum(t for t, _ in chosen) / len(chosen)
            slope = sum((t - middle) * y for t, y in chosen) / sum((t - middle) ** 2 for t, _ in chosen)
            self.assertAlmostEqual(float(rate["percent_per_year"]), 100 * math.expm1(slope), places=7)
        whole = float(rates[0]["percent_per_year"])
        self.assertTrue(0.3 < whole < 0.5, whole)
        self.assertIn(f"growth of the whole record: {whole:.3f} % a year", self.report)
        self.assertIn("2284 weeks from 1958.2 to 2002.0, 59 of them not measured", self.report)

    def test_fit(self):
        weeks = rows(out / "co2_fit.csv")
        self.assertEqual(len(weeks), 2284)
        deviations = [float(w["ppm"]) - float(w["fit_ppm"]) for w in weeks if w["ppm"] != "nan"]
        self.assertEqual(len(deviations), 2284 - 59)
        self.assertLess(max(map(abs, deviations)), 10)  # ppm: season and bend of the trend, 4 each

    def test_tone_curve(self):
        before, after = pixels(out / "tone_before.pgm"), pixels(out / "tone_after.pgm")
        self.assertEqual(before, pixels(examples / "data/photo.pgm"))
        curve = [255 * math.log1p(10 * level / 255) / math.log(11) for level in range(256)]
        self.assertLess(max(abs(a - curve[b]) for a, b in zip(after, before)), 0.501)

    def test_daylight(self):
        """Almanac: sunrise to sunset at Greenwich is 16 h 38 min on 21 June, 7 h 50 min on 21 December."""
        days = rows(out / "daylight.csv")
        self.assertEqual(len(days), 365)
        self.assertAlmostEqual(float(days[171]["Greenwich"]), 16 + 38 / 60, delta=2 / 60)
        self.assertAlmostEqual(float(days[354]["Greenwich"]), 7 + 50 / 60, delta=2 / 60)
        quito = [float(day["Quito"]) for day in days]
        self.assertTrue(12.05 < min(quito) and max(quito) < 12.2)
        arctic = [float(day["Tromso"]) for day in days]
        self.assertAlmostEqual(arctic.count(24), 69, delta=2)  # from about 19 May to 26 July
        self.assertAlmostEqual(arctic.count(0), 49, delta=2)   # from about 27 November to 14 January

        sun = rows(out / "elevation.csv")
        self.assertEqual(len(sun), 365 * 48)
        highest = max(sun, key=lambda row: float(row["elevation"]))
        self.assertAlmostEqual(float(highest["elevation"]), 90 - 69.6529 + 23.436, delta=0.05)
        self.assertIn(highest["hour"], ("10.5", "11"))  # 19 degrees east of Greenwich

        # Haversines instead of arc tangents.
        places = [list(map(math.radians, map(float, line.split(",")[1:])))
                  for line in (examples / "data/stations.csv").read_text().splitlines()[2:]]
        for (lat, long), (lat2, long2) in itertools.combinations(places, 2):
            square = (math.sin((lat2 - lat) / 2) ** 2 +
                      math.cos(lat) * math.cos(lat2) * math.sin((long2 - long) / 2) ** 2)
            self.assertIn(f"{2 * 6371.0088 * math.asin(math.sqrt(square)):.1f}", self.report)

    def test_sunspots(self):
        """The same spectrum, by the sums that define it, around its top."""
        lines = (examples / "data/sunspots_yearly.csv").read_text().splitlines()[1:]
        years = [float(row["sunspots"]) for row in csv.DictReader(lines)]
        n, middle = len(years), (len(years) - 1) / 2
        mean = sum(years) / n
        slope = (sum((i - middle) * y for i, y in enumerate(years)) / sum((i - middle) ** 2 for i in range(n)))
        signal = [(y - mean - slope * (i - middle)) * math.sin(math.pi * (i + 0.5) / n) ** 2
                  for i, y in enumerate(years)]
        spectrum = rows(out / "sunspot_spectrum.csv")
        self.assertEqual(len(spectrum), 2049)
        top = max(range(1, 2049), key=lambda k: float(spectrum[k]["power"]))
        for k in (0, top - 1, top, top + 1, 2048):
            exact = abs(sum(y * cmath.exp(-2j * math.pi * k * i / 4096) for i, y in enumerate(signal))) ** 2
            self.assertAlmostEqual(float(spectrum[k]["power"]), exact, delta=1e-9 * float(spectrum[top]["power"]))
        period = float(re.search(r"strongest period: (.*) years", self.report)[1])
        self.assertAlmostEqual(period, 11, delta=0.3)
        self.assertAlmostEqual(period, 4096 / top, delta=0.1)

    def test_ecg(self):
        """Drift and hum, by the sums that define them, and the convolution at a few places."""
        lines = (examples / "data/ecg_360hz.csv").read_text().splitlines()[2:]
        raw, record = list(map(float, lines)), rows(out / "ecg_cleaned.csv")
        self.assertEqual([float(row["raw"]) for row in record], raw)
        half, width = 4 * 360, 0.5
        taps = range(-half, half + 1)
        window = [0.42 + 0.5 * math.cos(math.pi * i / (half + 1)) + 0.08 * math.cos(2 * math.pi * i / (half + 1))
                  for i in taps]
        low_pass = [w * (math.sin(2 * math.pi * width * i / 360) / (2 * math.pi * width * i / 360) if i else 1)
                    for w, i in zip(window, taps)]
        total = sum(low_pass)
        weights = [(i == 0) - p / total * (1 + 2 * math.cos(math.pi * i / 3)) for p, i in zip(low_pass, taps)]
        for place in (0, 1, 1439, 1440, 1441, 10000, 20000, 21599):
            exact = sum(w * raw[place - i] for w, i in zip(weights, taps) if 0 <= place - i < len(raw))
            self.assertAlmostEqual(float(record[place]["by_filter"]), exact, places=8)

        def amplitude(name, k):
            return abs(sum(float(row[name]) * cmath.exp(-2j * math.pi * k * i / 21600)
                           for i, row in enumerate(record))) / 10800

        spectrum = rows(out / "ecg_spectrum.csv")
        for name in ("raw", "by_transform", "by_filter"):
            for k in (5, 3599, 3600):
                self.assertAlmostEqual(float(spectrum[k][name]), amplitude(name, k), places=8)
        for name, most in (("by_transform", 1e-9), ("by_filter", 0.02)):  # of what there was
            for k in (5, 3599):
                self.assertLess(float(spectrum[k][name]), most * float(spectrum[k]["raw"]), (name, k))
            for k in (300, 1200, 4000):  # beats stay
                self.assertAlmostEqual(float(spectrum[k][name]) / float(spectrum[k]["raw"]), 1, delta=0.05)
        self.assertLess(float(re.search(r"the two ways differ by (.*) mV", self.report)[1]), 0.05)

    def test_year(self):
        """A year of 52.18 weeks; one line as Python sums it."""
        self.assertRegex(self.report, r"43 years +\(2244\): line 43, 52.19 weeks, 2.79 ppm, 99.2 %")
        lines = {(int(row["weeks"]), int(row["line"])): float(row["amplitude"]) for row in rows(out / "co2_year.csv")}
        self.assertEqual({weeks for weeks, _ in lines}, {43 * 52, 43 * 53, 2244, 2284})
        for weeks in (43 * 52, 43 * 53, 2284):  # whose lines hold less of the year
            self.assertLess(max(a for (n, _), a in lines.items() if n == weeks), lines[2244, 43])
        values = [line.split(",")[1] for line in (examples / "data/co2_weekly.csv").read_text().splitlines()[2:]]
        known = [i for i, value in enumerate(values) if value]
        ppm = []
        for i in range(len(values)):
            after = bisect.bisect_left(known, i)
            right, left = known[after], known[after - (known[after] != i)]
            share = (i - left) / (right - left) if right != left else 0
            ppm.append(float(values[left]) * (1 - share) + float(values[right]) * share)
        signal = ppm[-2244:]
        basis = []
        for degree in range(4):
            power = [(2 * i / 2243 - 1) ** degree for i in range(2244)]
            for lower in basis:
                share = sum(map(math.prod, zip(power, lower))) / sum(v * v for v in lower)
                power = [a - share * b for a, b in zip(power, lower)]
            share = sum(map(math.prod, zip(signal, power))) / sum(v * v for v in power)
            signal = [a - share * b for a, b in zip(signal, power)]
            basis.append(power)
        for k in (42, 43, 44):
            exact = abs(sum(y * cmath.exp(-2j * math.pi * k * i / 2244) for i, y in enumerate(signal))) / 1122
            self.assertAlmostEqual(lines[2244, k], exact, places=7)

    def test_plane(self):
        """The cuts lie where they belong, and hue and brightness are those of the functions."""
        def cuts(title):
            found = re.search(re.escape(title) + r" +jumps across the real axis(.*)\n", self.report)[1]
            return [tuple(map(float, pair)) for pair in re.findall(r"from (\S+) to ([-\d.]+)", found)]

        step = 6 / 480
        (left, near_left), (near_right, right) = cuts("arcsin z")
        self.assertTrue(left < -2.98 and right > 2.98)
        self.assertTrue(-1 - 3 * step < near_left < -1 and 1 < near_right < 1 + 3 * step)
        stretches = cuts("z^z")  # at negative integers z^z takes one value from both sides
        self.assertTrue(len(stretches) == 3 and all(stop < 0 for _, stop in stretches))
        (start, stop), = cuts("sqrt(z + 1) sqrt(z - 1)")
        self.assertTrue(-1 < start < -1 + 3 * step and 1 - 3 * step < stop < 1)

        def colour(w):
            logarithm = cmath.log(w)
            hue, brightness = logarithm.imag / (2 * math.pi) + 0.5, 0.55 + 0.45 * (logarithm.real % 1)
            parts = (abs(math.fmod(6 * hue + shift + 3, 6) - 3) - 1 for shift in (0, 2, 4))
            return [255 * brightness * min(max(part, 0), 1) for part in parts]

        functions = {"asin": cmath.asin, "power": lambda z: cmath.exp(z * cmath.log(z)),
                     "roots": lambda z: cmath.sqrt(z + 1) * cmath.sqrt(z - 1)}
        for name, function in functions.items():
            picture = (out / f"plane_{name}.ppm").read_bytes()[-3 * 480 * 480:]
            for row, column in itertools.product(range(5, 480, 47), repeat=2):
                z = complex(3 * (2 * column + 1 - 480) / 480, -3 * (2 * row + 1 - 480) / 480)
                wanted, found = colour(function(z)), picture[3 * (480 * row + column):][:3]
                self.assertLess(max(abs(a - b) for a, b in zip(wanted, found)), 2, (name, z))

    def test_error_policy(self):
        status = {}
        for row in rows(out / "error_policy.csv"):
            status.setdefault(row["function"], []).append(int(row["status"]))
            if row["status"] == "2":  # only singularities are repaired
                self.assertEqual(abs(float(row["result"])), math.inf)
                self.assertEqual(abs(float(row["repaired"])), sys.float_info.max)
            else:
                result, repaired = float(row["result"]), float(row["repaired"])
                self.assertTrue(result == repaired or math.isnan(result) and math.isnan(repaired), row)
        self.assertEqual(status, {"ln(a)": [0, 2, 1, 0, 0], "1/a": [0, 2, 0, 0, 0]})
        for text in ("status 1 (out of domain)", "status 2 (singularity)",
                     "callback: _vxmdLn_HA, element 1, status 2 (singularity), repaired",
                     "callback: _vxmdDiv_HA, element 1, status 2 (singularity), repaired",
                     "Error (VXM_STATUS_SING) in _vxmdLn_HA: argument caused singularity\n"
                     "a(1)=0\nr(1)=-inf\n",
                     "Error (VXM_STATUS_ERRDOM) in _vxmdLn_HA: argument is out of domain\na(2)=-3\n"):
            self.assertIn(text, self.report)

    def test_pi(self):
        """Random points miss by as much as they should, evenly spread ones by far less."""
        last = rows(out / "pi_error.csv")[-1]
        points = int(last["points"])
        expected = 4 * math.sqrt(math.pi / 4 * (1 - math.pi / 4) / points)
        for method in ("plain", "parallel"):  # mean of 16 squares: 0.5 to 1.6 but for 1 time in 10000
            self.assertTrue(0.4 < float(last[method]) / expected < 1.8, last)
        self.assertLess(float(last["sobol"]), expected / 10)
        self.assertIn("the same to the last point", self.report)
        self.assertEqual((out / "half_way.stream").read_bytes()[:4], b"RNG\0")

    def test_option(self):
        def normal(x):
            return math.erfc(-x / math.sqrt(2)) / 2

        def moment(a, b):
            """Of first^a second^b where the first share is worth more than the second, after two years."""
            variances, both = (0.3 ** 2 * 2, 0.2 ** 2 * 2), 0.4 * 0.3 * 0.2 * 2
            means = [math.log(price) + 0.03 * 2 - variance / 2 for price, variance in zip((100, 95), variances)]
            shift = means[0] - means[1] + a * (variances[0] - both) + b * (both - variances[1])
            logarithm = (a * means[0] + b * means[1] +
                         (a * a * variances[0] + 2 * a * b * both + b * b * variances[1]) / 2)
            return math.exp(logarithm) * normal(shift / math.sqrt(sum(variances) - 2 * both))

        discount = math.exp(-0.03 * 2)
        price = discount * (moment(1, 0) - moment(0, 1))
        square = discount ** 2 * (moment(2, 0) - 2 * moment(1, 1) + moment(0, 2))
        self.assertIn(f"closed form: {price:.6f}", self.report)
        estimates = [{name: float(value) for name, value in row.items()}
                     for row in rows(out / "option_error.csv")]
        self.assertEqual([row["points"] for row in estimates], [2 ** power for power in range(10, 21)])
        for row in estimates:
            self.assertAlmostEqual(row["random"] - row["random_error"], price, places=8)
            self.assertAlmostEqual(row["even"] - row["even_error"], price, places=8)
            self.assertLess(abs(row["random_error"]), 5 * row["standard_error"], row)
            self.assertLess(abs(row["even_error"]), row["standard_error"] / 4, row)
        standard_error = math.sqrt((square - price ** 2) / 2 ** 20)
        self.assertAlmostEqual(estimates[-1]["standard_error"] / standard_error, 1, delta=0.01)
        self.assertLess(abs(estimates[-1]["even_error"]), standard_error / 50)

    def test_distributions(self):
        """Chi-square of the histograms, to 5 deviations; densities as slopes of distribution functions."""
        functions = {
            "Gaussian": lambda x: math.erfc(-x / math.sqrt(2)) / 2,
            "Lognormal": lambda x: math.erfc(-2 * math.log(max(x, 1e-9)) / math.sqrt(2)) / 2,
            "Exponential": lambda x: -math.expm1(-x),
            "Laplace": lambda x: math.exp(x) / 2 if x < 0 else 1 - math.exp(-x) / 2,
            "Weibull": lambda x: -math.expm1(-x ** 3),
            "Rayleigh": lambda x: -math.expm1(-x ** 2),
            "Gumbel": lambda x: -math.expm1(-math.exp(x)),
            "Gamma": lambda x: 1 - math.exp(-x) * (1 + x + x * x / 2),
            "Beta": lambda x: 6 * x ** 2 - 8 * x ** 3 + 3 * x ** 4}
        histograms = {}
        for row in rows(out / "distributions.csv", ";"):
            histograms.setdefault(row["distribution"], []).append(row)
        self.assertEqual(list(histograms), list(functions))
        for name, histogram in histograms.items():
            function = functions[name]
            squares, cells = 0, 0
            for row in histogram:
                start, end = float(row["from"]), float(row["to"])
                middle = (start + end) / 2
                slope = (function(middle + 1e-5) - function(middle - 1e-5)) / 2e-5
                self.assertAlmostEqual(float(row["density_middle"]), slope, delta=1e-8, msg=f"{name} at {middle}")
                self.assertLess(abs(float(row["density_from"]) + float(row["density_to"]) - 2 * slope),
                                0.02, f"{name} from {start}")
                expected = 1e6 * (function(end) - function(start))
                if expected >= 10:
                    squares += (int(row["count"]) - expected) ** 2 / expected
                    cells += 1
            self.assertGreater(cells, 60, name)
            self.assertLess(abs(squares - cells), 5 * math.sqrt(2 * cells), name)

    def test_queue_and_trial(self):
        for row in rows(out / "queue.csv"):
            load, mean, square = float(row["load"]), 3, 9 + 4  # of a service: 1 + NB(2, 1/2)
            arrivals = load / mean
            expected = (arrivals * square + load ** 2 - load) / (2 * (1 - load))
            self.assertAlmostEqual(float(row["expected"]), expected, delta=1e-4 * expected)
            # Waits follow each other for about 1 / (1 - load)^2 slots.
            self.assertAlmostEqual(float(row["simulated"]) / expected, 1, delta=0.003 / (1 - load))
        trial = [(float(row["gain"]), float(row["simulated"]), float(row["normal"])) for row in rows(out / "trial.csv")]
        self.assertEqual([gain for gain, _, _ in trial], [0.25 * i for i in range(9)])
        for gain, simulated, normal in trial:  # the exact test is the more careful one, by a percent or two
            self.assertTrue(normal - 6 < simulated < normal + 3, (gain, simulated, normal))

    def test_pictures(self):
        if importlib.util.find_spec("matplotlib") is None:
            self.assertIn("plots skipped", self.report)
            return
        for name in ("co2_growth.png", "tone_curve.png", "daylight.png", "pi_error.png",
                     "option_error.png", "distributions.png", "queue_and_trial.png", "sunspot_spectrum.png",
                     "ecg_filter.png", "co2_year.png", "complex_plane.png",
                     "ecg_beats.png", "photo_edges.png"):
            self.assertIn(str(out / name), self.report)
            picture = (out / name).read_bytes()
            self.assertEqual(picture[:8], b"\x89PNG\r\n\x1a\n")
            self.assertGreater(len(picture), 20000)

    def test_without_matplotlib(self):
        blocked = out / "blocked"
        blocked.mkdir()
        (blocked / "matplotlib.py").write_text("raise ImportError('No module named matplotlib')\n")
        code, text = run("/usr/bin/python3", examples / "plot.py", out, PYTHONPATH=str(blocked))
        self.assertEqual((code, text.startswith("plots skipped: ")), (0, True), text)

    def test_bad_files(self):
        bad_row, zero, short, bad_place, bad_year = (out / name for name in
                                           ("bad_row.csv", "zero.csv", "short.pgm", "bad_place.csv", "bad_year.csv"))
        bad_row.write_text("date,ppm\n19580329,316.1\n19580230,316.1\n")
        zero.write_text("date,ppm\n19580329,316.1\n19580405,0\n")
        short.write_bytes(b"P5\n4 4\n255\nxxx")
        bad_year.write_text("year,sunspots\n1700,5\n1702,16\n")
        bad_place.write_text("name,latitude,longitude\nNowhere,91,0\n")
        co2, photo = examples / "data/co2_weekly.csv", examples / "data/photo.pgm"
        for program, arguments, message in (
                ("co2_growth", ["nowhere.csv", out], "cannot read nowhere.csv"),
                ("co2_growth", [bad_row, out], "line 3"),
                ("co2_growth", [zero, out], "not positive"),
                ("co2_growth", [co2, out / "nowhere"], "cannot write"),
                ("tone_curve", ["nowhere.pgm", out], "cannot read nowhere.pgm"),
                ("tone_curve", [co2, out], "not a binary PGM"),
                ("tone_curve", [short, out], "ends before its last pixel"),
                ("tone_curve", [photo, out / "nowhere"], "cannot write"),
                ("daylight", [bad_place, out], "line 2"),
                ("daylight", [examples / "data/stations.csv", out / "nowhere"], "cannot write"),
                ("sunspot_spectrum", [bad_year, out], "line 3"),
                ("sunspot_spectrum", [examples / "data/sunspots_yearly.csv", out / "nowhere"], "cannot write"),
                ("ecg_filter", [co2, out], "line 2"),
                ("ecg_filter", [examples / "data/ecg_360hz.csv", out / "nowhere"], "cannot write"),
                ("ecg_beats", [co2, out], "line 2"),
                ("ecg_beats", [examples / "data/ecg_360hz.csv", out / "nowhere"], "cannot write"),
                ("photo_edges", [short, out], "ends before its last pixel"),
                ("photo_edges", [photo, out / "nowhere"], "cannot write"),
                ("co2_year", [bad_row, out], "too little data"),
                ("co2_year", [co2, out / "nowhere"], "cannot write"),
                ("error_policy", [out / "nowhere"], "cannot write"),
                ("estimate_pi", [out / "nowhere"], "cannot write"),
                ("complex_plane", [out / "nowhere"], "cannot write"),
                ("option_price", [out / "nowhere"], "cannot write"),
                ("queue_and_trial", [out / "nowhere"], "cannot write"),
                ("error_policy", [], "usage: ")):
            with self.subTest(program=program, message=message):
                code, text = run(build / "examples" / program, *arguments)
                self.assertEqual(code, 1, text)
                self.assertIn(message, text)


unittest.main(argv=sys.argv[:1], verbosity=2)
