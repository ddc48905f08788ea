#!/usr/bin/python3
"""Pictures from the numbers that the example programs wrote.

plot.py OUT_DIR prints the path of each picture. Without matplotlib it says so and draws nothing.
"""
import sys
from pathlib import Path

try:
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt
    import numpy as np
except ImportError as missing:
    print(f"plots skipped: {missing} (Debian package: python3-matplotlib)")
    sys.exit(0)

BLUE, RED, GREY = "#2a6f97", "#c1121f", "#8d99ae"
plt.rcParams.update({
    "figure.constrained_layout.use": True, "figure.constrained_layout.w_pad": 0.1,
    "figure.constrained_layout.h_pad": 0.08, "figure.dpi": 120, "font.size": 10, "axes.titlesize": 11,
    "axes.titleweight": "bold", "axes.spines.top": False, "axes.spines.right": False,
})


def read_csv(path):
    return np.genfromtxt(path, delimiter=",", names=True)


def read_pgm(path):
    """A binary PGM of 8 bits a pixel, without comments, as the programs write it."""
    magic, size, largest, pixels = path.read_bytes().split(b"\n", 3)
    width, height = map(int, size.split())
    if magic != b"P5" or largest != b"255":
        sys.exit(f"{path} is not an 8-bit binary PGM")
    return np.frombuffer(pixels, np.uint8).reshape(height, width)


def read_ppm(path):
    """A binary PPM of 8 bits a colour, likewise."""
    magic, size, largest, pixels = path.read_bytes().split(b"\n", 3)
    width, height = map(int, size.split())
    if magic != b"P6" or largest != b"255":
        sys.exit(f"{path} is not an 8-bit binary PPM")
    return np.frombuffer(pixels, np.uint8).reshape(height, width, 3)


def plot_co2(out_dir):
    fit, rates = read_csv(out_dir / "co2_fit.csv"), read_csv(out_dir / "co2_rates.csv")
    whole, decades = rates[0]["percent_per_year"], rates[1:]
    figure, (record, growth) = plt.subplots(1, 2, figsize=(11, 4.6), width_ratios=(2.2, 1))

    record.plot(fit["year"], fit["ppm"], color=BLUE, linewidth=0.8, label="weekly measurements")
    record.plot(fit["year"], fit["fit_ppm"], color=RED, linewidth=1.8,
                label=f"exponential fit, {whole:.3f} % a year")
    record.set(title="Carbon dioxide in the air at Mauna Loa", xlabel="year", ylabel="CO$_2$ (ppm by volume)")
    record.margins(x=0.01)
    record.grid(alpha=0.25)
    record.legend(frameon=False, loc="upper left")

    names = [f"{row['from_year']:.0f}s" for row in decades]
    bars = growth.bar(names, decades["percent_per_year"], color=BLUE, width=0.65)
    growth.bar_label(bars, fmt="%.2f", label_type="center", color="white")
    growth.axhline(whole, color=RED, linewidth=1.4, linestyle="--", label="whole record")
    growth.set(title="Growth by decade", xlabel="decade", ylabel="growth (% a year)")
    growth.set_ylim(0, 1.25 * decades["percent_per_year"].max())
    growth.legend(frameon=False, loc="upper left")
    return figure, "co2_growth.png"


def plot_tone_curve(out_dir):
    before, after = read_pgm(out_dir / "tone_before.pgm"), read_pgm(out_dir / "tone_after.pgm")
    curve = read_csv(out_dir / "tone_curve.csv")
    figure = plt.figure(figsize=(13, 4.7))
    left, middle, right = figure.subplots(1, 3, width_ratios=(1, 1, 0.85))

    after_title = "After the logarithmic tone curve"
    for axes, picture, title in ((left, before, "Before"), (middle, after, after_title)):
        axes.imshow(picture, cmap="gray", vmin=0, vmax=255)
        axes.set_title(title)
        axes.axis("off")

    levels = np.arange(257)
    share = right.twinx()
    for picture, colour, name in ((before, GREY, "before"), (after, BLUE, "after")):
        percent = 100 * np.histogram(picture, levels[::8])[0] / picture.size
        share.stairs(percent, levels[::8], fill=True, color=colour, alpha=0.4, label=f"pixels {name}")
    share.set(ylabel="pixels (% in 8 grey levels)", ylim=(0, 40), yticks=(0, 5, 10))
    share.yaxis.set_label_coords(1.1, 0.3)
    share.legend(frameon=False, loc="lower right", bbox_to_anchor=(1, 0.36))
    right.plot(curve["grey_before"], curve["grey_after"], color=RED, linewidth=2, label="tone curve")
    right.plot([0, 255], [0, 255], color="black", linewidth=0.8, linestyle=":", label="unchanged")
    right.set(title="The curve and the pixels", xlabel="grey level (0 black, 255 white)",
              ylabel="grey level after", xlim=(0, 255), ylim=(0, 255),
              xticks=range(0, 256, 51), yticks=range(0, 256, 51))
    right.legend(frameon=False, loc="upper left")
    return figure, "tone_curve.png"


def plot_daylight(out_dir):
    hours, sun = read_csv(out_dir / "daylight.csv"), read_csv(out_dir / "elevation.csv")
    stations = hours.dtype.names[1:]
    figure, (year, clock) = plt.subplots(1, 2, figsize=(12, 4.8))

    for station, colour in zip(stations, plt.cm.viridis(np.linspace(0, 0.9, len(stations)))):
        year.plot(hours["day"], hours[station], color=colour, linewidth=1.8, label=station.replace("_", " "))
    year.set(title="From sunrise to sunset", xlabel="day of 2026", ylabel="hours", xlim=(1, 365),
             ylim=(-0.5, 24.5), yticks=range(0, 25, 4))
    year.grid(alpha=0.25)
    year.legend(frameon=False, loc="upper left", fontsize=8)

    elevation = sun["elevation"].reshape(365, -1).T
    picture = clock.imshow(elevation, origin="lower", aspect="auto", extent=(1, 366, 0, 24), cmap="RdBu_r",
                           vmin=-50, vmax=50)
    clock.contour(np.arange(365) + 1.5, sun["hour"][:elevation.shape[0]] + 0.25, elevation, levels=[-0.833],
                  colors="black", linewidths=1)
    clock.set(title=f"Elevation of the sun, {stations[-1]}", xlabel="day of 2026", ylabel="time of day (h, UTC)",
              yticks=range(0, 25, 4))
    figure.colorbar(picture, label="degrees above the horizon")
    return figure, "daylight.png"


def plot_pi(out_dir):
    errors = read_csv(out_dir / "pi_error.csv")
    points = errors["points"]
    figure, axes = plt.subplots(figsize=(7, 4.8))
    for name, colour, label in (("plain", GREY, "MT19937, one stream"),
                                ("parallel", BLUE, "MT2203, one member for each of 4 threads"),
                                ("sobol", RED, "Sobol points")):
        axes.loglog(points, errors[name], "o-", color=colour, markersize=4, label=label)
    deviation = 4 * np.sqrt(np.pi / 4 * (1 - np.pi / 4))
    axes.loglog(points, deviation / np.sqrt(points), "k:", linewidth=1, label="expected of random points")
    axes.set(title="Pi from points in the unit square", xlabel="points", ylabel="error of pi")
    axes.grid(alpha=0.25)
    axes.legend(frameon=False, loc="lower left")
    return figure, "pi_error.png"


def plot_option(out_dir):
    estimates = read_csv(out_dir / "option_error.csv")
    points, law = estimates["points"], estimates["standard_error"]
    figure, axes = plt.subplots(figsize=(7, 4.8))
    axes.loglog(points, np.abs(estimates["random_error"]), "o-", color=BLUE, markersize=4, linewidth=1,
                label="random points, MT19937")
    axes.loglog(points, np.abs(estimates["even_error"]), "o-", color=RED, markersize=4, linewidth=1,
                label="evenly spread points, Sobol")
    axes.loglog(points, law, "k:", linewidth=1, label="expected of random points")
    axes.set(title="Price of an option to swap two shares, by simulation", xlabel="points",
             ylabel="error of the price")
    axes.grid(alpha=0.25)
    axes.legend(frameon=False, loc="lower left")
    return figure, "option_error.png"


def plot_distributions(out_dir):
    table = np.genfromtxt(out_dir / "distributions.csv", delimiter=";", names=True, dtype=None,
                          encoding="utf-8")
    numbers = 1e6  # of each distribution
    figure, grid = plt.subplots(3, 3, figsize=(11, 8.2))
    for name, axes in zip(dict.fromkeys(table["distribution"]), grid.flat):
        rows = table[table["distribution"] == name]
        edges = np.append(rows["from"], rows["to"][-1])
        axes.stairs(rows["count"] / (numbers * np.diff(edges)), edges, fill=True, color=BLUE, alpha=0.4)
        # Ends and middles of the bins, in order; a jump at the end of the axis stays at the end.
        x = np.column_stack((rows["from"], (rows["from"] + rows["to"]) / 2, rows["to"])).ravel()
        density = np.column_stack((rows["density_from"], rows["density_middle"], rows["density_to"])).ravel()
        axes.plot(x, density, color=RED, linewidth=1.4)
        axes.set_title(f"{name}: {rows['parameters'][0]}", fontsize=10)
        axes.set(xlim=edges[[0, -1]], ylim=(0, 1.08 * density.max()))
    figure.supylabel("density (line), share of a million numbers (area)", fontsize=10)
    return figure, "distributions.png"


def plot_queue_and_trial(out_dir):
    queue, trial = read_csv(out_dir / "queue.csv"), read_csv(out_dir / "trial.csv")
    figure, (waits, powers) = plt.subplots(1, 2, figsize=(11, 4.4))
    waits.plot(queue["load"], queue["expected"], color=RED, linewidth=1.4, label="closed form")
    waits.plot(queue["load"], queue["simulated"], "o", color=BLUE, label="simulated")
    waits.set(title="Waiting in a queue", xlabel="load", ylabel="mean wait (slots)", yscale="log")
    powers.plot(trial["gain"], trial["normal"], color=RED, linewidth=1.4, label="normal approximation")
    powers.plot(trial["gain"], trial["simulated"], "o", color=BLUE, label="simulated")
    powers.set(title="Noticing the better of two versions", xlabel="more buyers (% of the visitors)",
               ylabel="noticed (% of the trials)", ylim=(0, 100))
    for axes in (waits, powers):
        axes.grid(alpha=0.25)
        axes.legend(frameon=False, loc="upper left")
    return figure, "queue_and_trial.png"


def plot_sunspots(out_dir):
    signal, spectrum = read_csv(out_dir / "sunspots.csv"), read_csv(out_dir / "sunspot_spectrum.csv")
    figure, (record, lines) = plt.subplots(1, 2, figsize=(12, 4.4), width_ratios=(1.4, 1))
    record.plot(signal["year"], signal["sunspots"], color=BLUE, linewidth=1)
    record.set(title="Sunspots", xlabel="year", ylabel="yearly mean number")
    record.margins(x=0.01)
    record.grid(alpha=0.25)

    shown = spectrum[(spectrum["frequency"] > 1 / 120) & (spectrum["frequency"] < 0.25)]
    period, power = 1 / shown["frequency"], shown["power"] / shown["power"].max()
    lines.semilogx(period, power, color=BLUE, linewidth=1.4)
    strongest = period[power.argmax()]
    lines.axvline(strongest, color=RED, linewidth=1, linestyle="--", label=f"{strongest:.1f} years")
    lines.set(title="Spectrum", xlabel="period (years)", ylabel="power, of the highest",
              xticks=(5, 10, 20, 50, 100), xticklabels=(5, 10, 20, 50, 100))
    lines.grid(alpha=0.25)
    lines.legend(frameon=False)
    return figure, "sunspot_spectrum.png"


def plot_ecg(out_dir):
    signal, spectrum = read_csv(out_dir / "ecg_cleaned.csv"), read_csv(out_dir / "ecg_spectrum.csv")
    figure = plt.figure(figsize=(12, 7.2))
    grid = figure.add_gridspec(2, 2, width_ratios=(1, 1.15), height_ratios=(1, 1))
    record, beats, lines = (figure.add_subplot(place) for place in (grid[0, :], grid[1, 0], grid[1, 1]))
    record.plot(signal["second"], signal["raw"], color="0.6", linewidth=0.8, label="as recorded")
    record.plot(signal["second"], signal["by_filter"], color=BLUE, linewidth=0.8, label="by convolution with a filter")
    record.set(title="Electrocardiogram", xlabel="second", ylabel="millivolt", xlim=(0, 30))
    record.legend(frameon=False, loc="upper right", ncols=2)

    shown = (signal["second"] >= 12) & (signal["second"] <= 14)
    beats.plot(signal["second"][shown], signal["raw"][shown], color="0.6", linewidth=1, label="as recorded")
    beats.plot(signal["second"][shown], signal["by_filter"][shown], color=BLUE, linewidth=1.4, label="by convolution")
    beats.plot(signal["second"][shown], signal["by_transform"][shown], color=RED, linewidth=1, linestyle="--",
               label="through the spectrum")
    beats.set(title="Two seconds of it", xlabel="second", ylabel="millivolt", ylim=(-1.2, 2.4))
    beats.legend(frameon=False, loc="upper right", fontsize=9)

    for name, color, label in (("raw", "0.6", "as recorded"), ("by_filter", BLUE, "by convolution")):
        lines.semilogy(spectrum["frequency"], spectrum[name], color=color, linewidth=0.6, label=label)
    lines.set(title="Spectrum: no drift near 0, no hum at 60 Hz", xlabel="frequency (Hz)", ylabel="amplitude (millivolt)",
              xlim=(0, 70), ylim=(1e-5, 1))
    lines.legend(frameon=False, loc="upper right")
    for axes in (record, beats, lines):
        axes.grid(alpha=0.25)
    return figure, "ecg_filter.png"


def plot_year(out_dir):
    table = read_csv(out_dir / "co2_year.csv")
    titles = {2236: "43 times 52 weeks", 2279: "43 times 53 weeks", 2244: "43 years", 2284: "the whole record"}
    figure, grid = plt.subplots(1, 4, figsize=(12, 3.8), sharey=True)
    for axes, (weeks, title) in zip(grid, titles.items()):
        rows = table[table["weeks"] == weeks]
        axes.vlines(rows["period"], 0, rows["amplitude"], color=BLUE, linewidth=2.5)
        axes.axvline(365.2425 / 7, color=RED, linewidth=1, linestyle="--", label="a year")
        axes.set(title=f"{title}: {weeks}", xlabel="period (weeks)", xlim=(47, 58), ylim=(0, None))
        axes.grid(alpha=0.25)
    grid[0].set_ylabel("carbon dioxide (ppm)")
    grid[0].legend(frameon=False)
    return figure, "co2_year.png"


def plot_photo(out_dir):
    figure, grid = plt.subplots(1, 4, figsize=(14, 3.2))
    for axes, (name, title) in zip(grid, (("tone_before", "Photograph"), ("photo_blurred", "Blurred by 2 pixels"),
                                          ("photo_restored", "Restored"))):
        axes.imshow(read_pgm(out_dir / f"{name}.pgm"), cmap="gray", vmin=0, vmax=255)
        axes.set_title(title)
        axes.axis("off")

    level = read_pgm(out_dir / "photo_spectrum.pgm")
    spectrum = grid[-1].imshow(level, cmap="magma", extent=(-0.5, 0.5, 0.5, -0.5), aspect=level.shape[0] / level.shape[1])
    grid[-1].set(title="Spectrum of the photograph", xlabel="waves per pixel, across", ylabel="down",
                 xticks=(-0.5, 0, 0.5), yticks=(-0.5, 0, 0.5))
    figure.colorbar(spectrum, label="amplitude (logarithmic)", ticks=())
    return figure, "photo_transform.png"


def plot_plane(out_dir):
    titles = {"asin": "arcsin z", "power": "$z^z$", "roots": r"$\sqrt{z+1}\,\sqrt{z-1}$"}
    figure, grid = plt.subplots(1, 3, figsize=(12, 4.4), sharey=True)
    for axes, (name, title) in zip(grid, titles.items()):
        axes.imshow(read_ppm(out_dir / f"plane_{name}.ppm"), extent=(-3, 3, -3, 3))
        axes.set(title=title, xlabel="real part")
    grid[0].set_ylabel("imaginary part")
    return figure, "complex_plane.png"


def plot_beats(out_dir):
    table = read_csv(out_dir / "ecg_beats.csv")
    figure, (record, likeness) = plt.subplots(2, 1, figsize=(12, 6), sharex=True)
    beats = table[table["beat"] == 1]
    record.plot(table["second"], table["millivolt"], color="0.5", linewidth=0.8)
    record.plot(beats["second"], beats["millivolt"], "v", color=RED, markersize=5, label=f"{len(beats)} beats")
    record.set(title="Heart beats, found by correlation with one of them", ylabel="millivolt")
    record.legend(frameon=False, loc="upper right")
    likeness.plot(table["second"], table["likeness"], color=BLUE, linewidth=0.8)
    likeness.axhline(0.6, color=RED, linewidth=1, linestyle="--")
    likeness.set(xlabel="second", ylabel="likeness", xlim=(0, 20), ylim=(-1, 1))
    for axes in (record, likeness):
        axes.grid(alpha=0.25)
    return figure, "ecg_beats.png"


def plot_edges(out_dir):
    figure, grid = plt.subplots(1, 2, figsize=(12, 6.2))
    for axes, name in zip(grid, ("sharpened", "edges")):
        axes.imshow(read_pgm(out_dir / f"photo_{name}.pgm"), cmap="gray", vmin=0, vmax=255)
        axes.set_title(name)
        axes.axis("off")
    return figure, "photo_edges.png"


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: plot.py OUT_DIR")
    out_dir = Path(sys.argv[1])
    for plot in (plot_co2, plot_tone_curve, plot_daylight, plot_pi, plot_option,
                 plot_distributions, plot_queue_and_trial, plot_sunspots, plot_ecg, plot_year,
                 plot_photo, plot_plane, plot_beats, plot_edges):
        try:
            figure, name = plot(out_dir)
            figure.savefig(out_dir / name)
        except OSError as error:
            sys.exit(f"plot.py: {error}")
        print(out_dir / name)


main()
