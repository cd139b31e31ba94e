#!/usr/bin/python3
"""Turns the results of a run into one table of goals: ours, the peer's, the ratio, met or not.

Usage: report.py RESULTS [DOCUMENT]

RESULTS is a folder of Google Benchmark's JSON. The table is printed; with DOCUMENT, a Markdown file,
it is written there too, with every figure, and a plot beside it (.svg). Every figure is the median
of its repetitions; what a run has not measured is left out.
"""

import json
import math
import pathlib
import re
import statistics
import subprocess
import sys

OURS = "OrvaLanguage"
LOOK_UP_PEERS = ("ICU", "Boost.Locale", "Qt", "GLib", "gettext")
LOAD_PEERS = ("GLib", "nlohmann-json")
SIZES = ("100", "1000", "10000", "100000", "installed")
PACKAGES = ("g++", "libc6", "libicu-dev", "libboost-locale-dev", "qt6-base-dev", "libglib2.0-dev",
            "nlohmann-json3-dev")

MICROSECOND, MILLISECOND = 1e3, 1e6  # in nanoseconds


class Results:
    """The medians of a run, by a benchmark's name without what Google Benchmark appends."""

    def __init__(self, folder):
        samples, self.counters = {}, {}
        self.repetitions = math.inf
        for path in sorted(folder.glob("*.json")):
            document = json.loads(path.read_text())
            self.context = document["context"]
            for run in document["benchmarks"]:
                if run["run_type"] != "iteration":
                    continue
                name = re.sub(r"/(iterations|repeats):\d+|/real_time", "", run["run_name"])
                if run.get("error_occurred"):
                    sys.exit(f"report.py: {name}: {run['error_message']}")
                samples.setdefault(name, []).append(run["real_time"])
                self.counters[name] = run
        self.times = {name: statistics.median(times) for name, times in samples.items()}
        self.repetitions = min(len(times) for times in samples.values())

    def time(self, name):
        """Nanoseconds, or None."""
        return self.times.get(name)

    def counter(self, name, counter):
        return self.counters[name][counter] if name in self.counters else None


def goals(results):
    """The rows of the table: what, ours, the other's, the figure that counts, the goal, met or not.
    The goals are of libraries side by side; where a row has no goal, it is for information."""
    rows = []

    def row(what, unit, ours, theirs, compare, goal, is_met, other=""):
        if ours is None or theirs is None:
            return
        scale, name = unit
        figure = compare(ours, theirs)
        rows.append((what, f"{ours / scale:.3g} {name}", f"{theirs / scale:.3g} {name} {other}".rstrip(),
                     f"{figure:.2f}", goal, "yes" if is_met(figure) else "NO"))

    nanoseconds, milliseconds, mebibytes = (1, "ns"), (MILLISECOND, "ms"), (1 << 20, "MiB")
    microseconds = (MICROSECOND, "µs")
    ratio = lambda ours, theirs: ours / theirs
    speed_up = lambda ours, theirs: theirs / ours

    for kind in ("hit", "miss"):
        for size in SIZES:
            peers = {peer: results.time(f"LookUp/{kind}/{peer}/{size}") for peer in LOOK_UP_PEERS}
            if None in peers.values():
                continue
            fastest = min(peers, key=peers.get)
            row(f"Look-up, {kind}, {entries_of(results, size)} entries: times as fast", nanoseconds,
                results.time(f"LookUp/{kind}/{OURS}/{size}"), peers[fastest], speed_up,
                "≥ 3", lambda figure: figure >= 3, fastest)
    row("Look-up, protected and cached, to a plain one", nanoseconds, results.time("LookUp/Cached"),
        results.time("LookUp/Plain"), ratio, "≤ 2.5", lambda figure: figure <= 2.5)
    row("Look-up, 100,000 entries to 1,000", nanoseconds, results.time(f"LookUp/hit/{OURS}/100000"),
        results.time(f"LookUp/hit/{OURS}/1000"), ratio, "< 8", lambda figure: figure < 8)
    row("First look-up of a protected text, to its floor", microseconds, results.time("LookUp/First"),
        results.time("LookUp/FirstFloor"), ratio, "≤ 1.5", lambda figure: figure <= 1.5)

    for size in ("1000", "10000"):
        for peer in LOAD_PEERS:
            row(f"Load, {int(size):,} entries", milliseconds, results.time(f"Load/{OURS}/{size}"),
                results.time(f"Load/{peer}/{size}"), ratio, "< 1", lambda figure: figure < 1, peer)
    first, last = results.time("LoadSection/10000/0"), results.time("LoadSection/10000/9")
    if first and last:
        skipped = results.counter("LoadSection/10000/9", "skipped")
        speed = skipped / (last - first)  # bytes a nanosecond: GB/s
        rows.append(("Load, last of ten sections: GB/s over those before",
                     f"{last / MILLISECOND:.3g} ms", f"{first / MILLISECOND:.3g} ms the first",
                     f"{speed:.2f}", "≥ 0.6", "yes" if speed >= 0.6 else "NO"))
    for size in (10_000, 100_000, 1_000_000):
        # How much more than n log n a load of so many entries takes, compared with one of 1,000.
        n_log_n = size * math.log(size) / (1000 * math.log(1000))
        row(f"Load, {size:,} entries to 1,000, by n log n", milliseconds,
            results.time(f"LoadGrowing/{size}"), results.time("LoadGrowing/1000"),
            lambda ours, theirs, n=n_log_n: ours / theirs / n, "≤ 1", lambda figure: figure <= 1)

    row("Memory of 10,000 entries", mebibytes, results.counter("Heap/host_orvalanguage", "bytes"),
        results.counter("Heap/host_map", "bytes"), ratio, "≤ 1.2", lambda figure: figure <= 1.2,
        "std::map")
    for program, peer in (("host_qt", "Qt"), ("host_icu", "ICU")):
        row("A host's start", milliseconds, results.time("Start/host_orvalanguage"),
            results.time(f"Start/{program}"), ratio, "< 1", lambda figure: figure < 1, peer)
    difference = lambda ours, theirs: (ours - theirs) / MILLISECOND
    row("A host's start: ms more", milliseconds, results.time("Start/host_orvalanguage"),
        results.time("Start/host_gettext"), difference, "≤ 1.5", lambda figure: figure <= 1.5, "gettext")
    row("A program's start, with the library and without: ms more", milliseconds,
        results.time("Start/start_with"), results.time("Start/start_without"), difference, "< 0.5",
        lambda figure: figure < 0.5)
    row("A program's memory, with the library and without: MiB more", mebibytes,
        results.counter("Resident/start_with", "bytes"),
        results.counter("Resident/start_without", "bytes"),
        lambda ours, theirs: (ours - theirs) / (1 << 20), "< 1", lambda figure: figure < 1)
    for operation in ("Decrypt", "Encrypt"):
        row(f"Cipher call, {operation.lower()} 64 bytes", nanoseconds,
            results.time(f"CCCrypt/{operation}"), results.time(f"Nettle/{operation}"), ratio, "≤ 1.3",
            lambda figure: figure <= 1.3, "Nettle alone")
    return rows


def entries_of(results, size):
    if size != "installed":
        return f"{int(size):,}"
    entries = results.counter(f"Load/{OURS}/installed", "entries")
    return f"{int(entries):,} installed" if entries else "installed"


def table(headings, rows):
    """A Markdown table whose columns are aligned, so that it reads as text too."""
    widths = [max(len(row[i]) for row in [headings, *rows]) for i in range(len(headings))]
    lines = [headings, ["-" * width for width in widths], *rows]
    return "".join(
        "| " + " | ".join(cell.ljust(width) for cell, width in zip(line, widths)) + " |\n"
        for line in lines)


def figures(results, prefix, names, sizes, scale):
    """A table of one kind of benchmark: a row for each library, a column for each size."""
    rows = []
    for name in names:
        times = [results.time(f"{prefix}/{name}/{size}") for size in sizes]
        if any(times):
            rows.append([name, *(f"{time / scale:.3g}" if time else "" for time in times)])
    return table(["", *(entries_of(results, size) for size in sizes)], rows)


def versions():
    output = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *PACKAGES],
                            stdout=subprocess.PIPE, text=True, check=False).stdout
    return ", ".join(output.splitlines())


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":")[1].strip()
    return "unknown processor"


def document_text(results, summary, plot):
    every = (OURS, *LOOK_UP_PEERS, "std::map")
    loads = (OURS, *LOAD_PEERS, "std::map")
    return f"""# Performance

`scripts/bench` measures this library beside what a host would use instead, and writes this page.
Every figure is the median of {results.repetitions} repetitions or more, all within one run, ours and the others' in
turn. Compare the ratios: the times are those of one machine.

{processor()}, {results.context["num_cpus"]} cores, {results.context["date"][:10]}; {versions()}.

## Goals

{summary}
![Look-ups, loads and starts, ours and the others']({plot})

## Look-ups

In nanoseconds, keys of about 23 bytes drawn at random. "Installed" are the translations of the
packages on the machine, in the language that has most. `std::map` is a map of strings, filled through the
library's line functions.

Hits:

{figures(results, "LookUp/hit", every, SIZES, 1)}
Misses:

{figures(results, "LookUp/miss", every, SIZES, 1)}
## Loads

In milliseconds. The installed translations of all languages are one strings file for this library and
`std::map`, which pass over the languages before the one they load; the others have that language in a
file of its own.

{figures(results, "Load", loads, SIZES, MILLISECOND)}
What a host's start is made of, for this library: each shared library that is linked, of which it
brings itself and Nettle, takes about 0.1 ms; reading 1,000 lines of text the rest. ICU, Qt and gettext
map catalogs that were compiled beforehand, and so do next to nothing for a load.

## Again

    scripts/bench             # the table and this page
    bench/count_instructions.py build/release/bench/host_orvalanguage build/release/bench/corpora

The second counts the instructions of loads and look-ups, which repeat from run to run, and compares
them with [bench/instructions.json](../bench/instructions.json).
"""


def draw(results, path):
    # Not needed for the table alone.
    import matplotlib
    matplotlib.use("svg")
    from matplotlib import pyplot

    matplotlib.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": "", "font.size": 9,
                                "axes.spines.top": False, "axes.spines.right": False})
    figure, (look_ups, loads, starts) = pyplot.subplots(1, 3, figsize=(12, 3.8))
    colour = {name: f"C{i}" for i, name in enumerate((OURS, *LOOK_UP_PEERS, "std::map"))}
    colour["nlohmann-json"] = "C8"

    def lines(axes, prefix, names, scale, title):
        for name in names:
            points = [(int(size), results.time(f"{prefix}/{name}/{size}")) for size in SIZES[:-1]]
            points = [(size, time / scale) for size, time in points if time]
            axes.plot(*zip(*points), marker="o", markersize=3, label=name, color=colour[name],
                      linewidth=2.5 if name == OURS else 1)
        axes.set(xscale="log", yscale="log", xlabel="entries", title=title)
        for axis in (axes.xaxis, axes.yaxis):
            axis.set_major_formatter("{x:,g}")
        axes.legend(frameon=False, fontsize=7)

    lines(look_ups, "LookUp/hit", (OURS, *LOOK_UP_PEERS, "std::map"), 1, "A look-up, ns")
    lines(loads, "Load", (OURS, *LOAD_PEERS, "std::map"), MILLISECOND, "A load, ms")
    hosts = {OURS: "host_orvalanguage", "gettext": "host_gettext", "ICU": "host_icu", "Qt": "host_qt"}
    starts.bar(list(hosts), [results.time(f"Start/{program}") / MILLISECOND for program in hosts.values()],
               color=[colour[name] for name in hosts])
    starts.set(title="A host's start, ms")
    figure.tight_layout()
    figure.savefig(path, metadata={"Date": None})


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    results = Results(pathlib.Path(sys.argv[1]))
    rows = goals(results)
    summary = table(["what", "ours", "compared with", "figure", "goal", "met"], rows)
    print(summary, end="")
    if len(sys.argv) == 3:
        document = pathlib.Path(sys.argv[2])
        plot = document.with_suffix(".svg")
        document.write_text(document_text(results, summary, plot.name))
        draw(results, plot)


if __name__ == "__main__":
    main()
