#!/usr/bin/python3
"""Turns the results of a run into one table of goals: ours, the peer's, the ratio, met or not.

Usage: report.py RESULTS DOCUMENT NOTE
       report.py RESULTS

RESULTS is a folder of Google Benchmark's JSON. The table is printed, and written to DOCUMENT, a
Markdown file, with every figure and a plot (.svg) beside it; the results must then include every
benchmark. NOTE is a file that says what the installed entries are. Without a document, the available
figures are printed without goals: a short run only shows that the benchmarks run.

Times are processor times, except those of cold lookups; each is the median of its repetitions.
"""

import json
import math
import pathlib
import re
import statistics
import subprocess
import sys

OURS = "OrvaLanguage"
LOOKUP_PEERS = ("ICU", "Boost.Locale", "Qt", "GLib", "gettext")
LOAD_PEERS = ("GLib", "nlohmann-json")
FLOOR = "floor"  # no competitor, but what is possible
LOOKUPS = (OURS, *LOOKUP_PEERS, "std::map", FLOOR)
LOADS = (OURS, *LOAD_PEERS, "std::map", FLOOR)
STARTS = {OURS: "host_orvalanguage", "gettext": "host_gettext", "ICU": "host_icu", "Qt": "host_qt",
          FLOOR: "host_floor"}
MEMORIES = {OURS: "host_orvalanguage", "GLib": "host_glib", "nlohmann-json": "host_json",
            "std::map": "host_map", FLOOR: "host_floor"}
SIZES = ("100", "1000", "10000", "100000", "installed")
PACKAGES = ("g++", "libc6-dev", "libicu-dev", "libboost-locale-dev", "qt6-base-dev", "libglib2.0-dev",
            "nlohmann-json3-dev", "robin-map-dev")
MEMORY = ("Heap/", "Resident/")  # measured once

# How many times as fast as the fastest peer a warm lookup was when the goals were set.
WARM_LOOKUPS = {"hit": dict(zip(SIZES, (5.76, 8.56, 10.19, 4.17, 6.91))),
                "miss": dict(zip(SIZES, (3.98, 3.76, 5.66, 5.23, 5.11)))}
COLD_LOOKUPS = {"1000": 4, "10000": 4, "100000": 4}


class Results:
    """The medians of a run, by a benchmark's name without what Google Benchmark appends."""

    def __init__(self, folder):
        samples, self.counters = {}, {}
        for path in sorted(folder.glob("*.json")):
            document = json.loads(path.read_text())
            self.context = document["context"]
            for run in document["benchmarks"]:
                if run["run_type"] != "iteration":
                    continue
                name = re.sub(r"/(iterations|repeats):\d+|/manual_time", "", run["run_name"])
                if run.get("error_occurred"):
                    sys.exit(f"report.py: {name}: {run['error_message']}")
                # A manual time is in real_time: the processor time of another process.
                is_manual = "/manual_time" in run["run_name"]
                samples.setdefault(name, []).append(run["real_time" if is_manual else "cpu_time"])
                self.counters[name] = run
        if not samples:
            sys.exit(f"report.py: no results in {folder}")
        self.times = {name: statistics.median(times) for name, times in samples.items()}
        self.repetitions = min(
            len(times) for name, times in samples.items() if not name.startswith(MEMORY))

    def time(self, name):
        """Nanoseconds."""
        return self.times[name]

    def counter(self, name, counter):
        return self.counters[name][counter]


class Goal:
    """A row of the table: two figures, how they are compared, and the goal for the result; also two
    of the floor, if it has any, which are compared likewise."""

    def __init__(self, what, unit, ours, theirs, compare, relation, limit, other="", floor=None):
        self.what, self.relation, self.limit = what, relation, limit
        scale, name = unit
        self.ours = f"{ours / scale:.3g} {name}"
        self.theirs = "–" if theirs is None else f"{theirs / scale:.3g} {name} {other}".rstrip()
        self.figure = compare(ours, theirs)
        self.floor = "–" if floor is None else f"{compare(*floor):.2f}"

    def is_met(self):
        return {"<": self.figure < self.limit, "≤": self.figure <= self.limit,
                "≥": self.figure >= self.limit}[self.relation]

    def cells(self):
        return (self.what, self.ours, self.theirs, f"{self.figure:.2f}",
                f"{self.relation} {self.limit:g}", "yes" if self.is_met() else "NO", self.floor)


NANOSECONDS, MICROSECONDS, MILLISECONDS = (1, "ns"), (1e3, "µs"), (1e6, "ms")
MEBIBYTES = (1 << 20, "MiB")


def share(ours, theirs):
    return ours / theirs


def speed_up(ours, theirs):
    return theirs / ours


def milliseconds(ours, _):
    return ours / MILLISECONDS[0]


def milliseconds_more(ours, theirs):
    return (ours - theirs) / MILLISECONDS[0]


def mebibytes_more(ours, theirs):
    return (ours - theirs) / MEBIBYTES[0]


def lookup_goal(results, benchmark, kind, size, least):
    def time(name):
        return results.time(f"{benchmark}/{kind}/{name}/{size}")

    fastest = min(LOOKUP_PEERS, key=time)
    setting = {"Lookup": "Lookup", "LookupCold": "Cold lookup"}[benchmark]
    return Goal(f"{setting}, {kind}, {entries_of(results, size)} entries: times as fast",
                NANOSECONDS, time(OURS), time(fastest), speed_up, "≥", least, fastest,
                (time(FLOOR), time(fastest)))


def lookup_goals(results, sizes):
    time = results.time
    for kind in ("hit", "miss"):
        for size in sizes:
            yield lookup_goal(results, "Lookup", kind, size, WARM_LOOKUPS[kind][size])
    for kind in ("hit", "miss"):
        for size, least in COLD_LOOKUPS.items():
            yield lookup_goal(results, "LookupCold", kind, size, least)
    yield Goal("Lookup, protected and cached", NANOSECONDS, time("Lookup/Cached"),
               time("Lookup/Plain"), share, "≤", 2.5, "plain")
    yield Goal("Lookup, hit, 100,000 entries", NANOSECONDS, time(f"Lookup/hit/{OURS}/100000"),
               time(f"Lookup/hit/{OURS}/1000"), share, "<", 8, "1,000 entries",
               (time(f"Lookup/hit/{FLOOR}/100000"), time(f"Lookup/hit/{FLOOR}/1000")))
    first, first_floor = time("Lookup/First"), time("Lookup/FirstFloor")
    yield Goal("First lookup of a protected text", MICROSECONDS, first, first_floor, share, "≤", 1.1,
               "its conversions and cipher calls", (first_floor, first_floor))


def load_goals(results):
    time = results.time
    for size in ("1000", "10000"):
        for benchmark, setting, peer, compare, relation, limit in (
                ("Load", "Load", "GLib", speed_up, "≥", 3),
                ("LoadCold", "Cold load", "GLib", speed_up, "≥", 2.5),
                ("Load", "Load", "nlohmann-json", share, "<", 1)):
            ours, theirs, floor = (time(f"{benchmark}/{name}/{size}")
                                   for name in (OURS, peer, FLOOR))
            what = f"{setting}, {int(size):,} entries"
            yield Goal(what + ": times as fast" * (compare is speed_up), MILLISECONDS, ours, theirs,
                       compare, relation, limit, peer, (floor, theirs))
    skipped = results.counter(f"LoadSection/{OURS}/10000/9", "skipped")
    yield Goal("Load, last of ten sections: GB/s of those skipped", MILLISECONDS,
               time(f"LoadSection/{OURS}/10000/9"), time(f"LoadSection/{OURS}/10000/0"),
               lambda last, first: skipped / (last - first), "≥", 2, "first section",
               (time(f"LoadSection/{FLOOR}/10000/9"), time(f"LoadSection/{FLOOR}/10000/0")))
    for size, most in ((10_000, 1), (100_000, 1), (1_000_000, 0.9)):
        n_log_n = size * math.log(size) / (1000 * math.log(1000))
        yield Goal(f"Load, {size:,} entries: growth over that of n log n", MILLISECONDS,
                   time(f"LoadGrowing/{OURS}/{size}"), time(f"LoadGrowing/{OURS}/1000"),
                   lambda many, few, n=n_log_n: many / few / n, "≤", most, "1,000 entries",
                   (time(f"LoadGrowing/{FLOOR}/{size}"), time(f"LoadGrowing/{FLOOR}/1000")))
    yield Goal("`protect`, 10,000 entries: ms", MILLISECONDS, time("ProtectFile"), None,
               milliseconds, "≤", 8)


def start_goals(results):
    time, counter = results.time, results.counter
    ours, theirs, floor = (counter(f"Heap/{MEMORIES[name]}", "bytes")
                           for name in (OURS, "std::map", FLOOR))
    yield Goal("Memory of 10,000 entries", MEBIBYTES, ours, theirs, share, "≤", 0.55, "std::map",
               (floor, theirs))
    starts = {name: time(f"Start/{program}") for name, program in STARTS.items()}
    for peer in ("Qt", "ICU"):
        yield Goal("A host's start", MILLISECONDS, starts[OURS], starts[peer], share, "<", 1, peer,
                   (starts[FLOOR], starts[peer]))
    yield Goal("A host's start: ms more", MILLISECONDS, starts[OURS], starts["gettext"],
               milliseconds_more, "≤", 1.5, "gettext", (starts[FLOOR], starts["gettext"]))
    yield Goal("A program's start with the library: ms more", MILLISECONDS,
               time("Start/start_with"), time("Start/start_without"), milliseconds_more, "<", 0.5,
               "without")
    yield Goal("A program's memory with the library: MiB more", MEBIBYTES,
               counter("Resident/start_with", "bytes"), counter("Resident/start_without", "bytes"),
               mebibytes_more, "<", 1, "without")


def goals(results, sizes):
    """Every goal, in the order of the table."""
    yield from lookup_goals(results, sizes)
    yield from load_goals(results)
    yield from start_goals(results)
    for operation in ("Decrypt", "Encrypt"):
        yield Goal(f"Cipher call, {operation.lower()} 64 bytes", NANOSECONDS,
                   results.time(f"CCCrypt/{operation}"), results.time(f"Nettle/{operation}"),
                   share, "≤", 1.3, "Nettle alone")


def entries_of(results, size):
    if size != "installed":
        return f"{int(size):,}"
    return f"{int(results.counter(f'Load/{OURS}/installed', 'entries')):,} installed"


def table(headings, rows):
    """A Markdown table whose columns are aligned, so that it reads as text too."""
    widths = [max(len(row[i]) for row in [headings, *rows]) for i in range(len(headings))]
    lines = [headings, ["-" * width for width in widths], *rows]
    return "".join(
        "| " + " | ".join(cell.ljust(width) for cell, width in zip(line, widths)) + " |\n"
        for line in lines)


def rounded(figure):
    return f"{figure:.3g}" if figure < 1000 else f"{figure:,.0f}"


def figures(results, prefix, names, sizes, scale):
    """A table of one kind of benchmark: a row for each library, a column for each size."""
    rows = [[name, *(rounded(results.time(f"{prefix}/{name}/{size}") / scale) for size in sizes)]
            for name in names]
    return table(["", *(entries_of(results, size) for size in sizes)], rows)


def starts_and_memory(results):
    def row(name):
        start, memory = "–", "–"
        if name in STARTS:
            start = rounded(results.time(f"Start/{STARTS[name]}") / MILLISECONDS[0])
        if name in MEMORIES:
            memory = rounded(results.counter(f"Heap/{MEMORIES[name]}", "bytes") / MEBIBYTES[0])
        return [name, start, memory]

    return table(["", "a host's start, ms", "memory of 10,000 entries, MiB"],
                 [row(name) for name in {**STARTS, **MEMORIES}])


def versions():
    output = subprocess.run(["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *PACKAGES],
                            stdout=subprocess.PIPE, text=True, check=False).stdout
    return ", ".join(output.splitlines())


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":")[1].strip()
    return "unknown processor"


def introduction(results, summary, plot):
    return f"""# Performance

`scripts/bench` compares this library with what a host would use instead, and writes this page.
Every time, except that of cold lookups, is processor time. Each is the median of at least
{results.repetitions} repetitions within one run, ours and the others' in random order. Compare the
ratios: the times are those of one machine.

{processor()}, {results.context["num_cpus"]} cores, {results.context["date"][:10]}, load {results.context["load_avg"][0]:.1f}; {versions()}.

## Goals

{summary}
The figure is ours divided by the other's, unless the first column says otherwise after its colon.

The floor is a program that does about the least that the task allows: it finds the section, copies its
bytes, splits them with `memchr` and stores views of them in robin-map, the faster of the hash tables that
Debian packages. It checks nothing and replaces no escapes. The last column is the figure that it would
have in our place. Its table is not the smallest possible: at least half of its slots, of 40 bytes each,
are free. So ours can be better in memory, and wherever the caches decide.

Where a goal is not met, this is in the way:

- A cold hit waits for memory two or three times in a row, for the slots, the entry and, in a large
  table, the page tables; a cold miss waits once or twice. So does any hash table.
- The goals for warm hits are the ratios of a run in which this machine's memory answered faster.
- Skipping a section copies each line out of the stream's buffer.
- A million entries do not fit into the caches, a thousand do.
- At a host's start, the system binds Nettle's 546 symbols, as Debian links it.
- To protect a text takes two cipher calls, for its tag and for itself, and each expands its key again:
  over two fifths of the instructions, so that 10,000 texts can't take less than about 5 ms here.

![Lookups, loads, starts and memory, ours and the others']({plot})

"""


def lookups(results, sizes, note):
    installed = f"""

"Installed" means the translations in the packages installed on the machine: {note}.
The keys looked up are those of the language with the most entries.""" if note else ""
    return f"""## Lookups

Times are in nanoseconds. The keys are drawn at random; in the tables of 100 to 100,000 entries, which
are generated, they are 23 bytes long on average.{installed}

The calls are `ures_getStringByKey`, `boost::locale::gettext`, `QTranslator::translate`,
`g_key_file_get_string` and `dgettext`. A `std::map` of strings, filled through the library's line
functions, is there for comparison. The calls of Boost, Qt and GLib return a new text each time. Boost's
message facet, which does not, took half the time of `boost::locale::gettext` when it was tried.

### Warm

One lookup after the other, as in a loop: the table is in the processor's caches, as far as it fits.

Hits:

{figures(results, "Lookup/hit", LOOKUPS, sizes, 1)}
Misses; ICU and GLib search further before they give up:

{figures(results, "Lookup/miss", LOOKUPS, sizes, 1)}
### Cold

As a user interface looks texts up: each key once, after other work has pushed the table out of the
processor's caches. They are evicted again after a tenth of the keys, at most 1,000. The keys themselves
and the code of a lookup are fetched beforehand.

Hits:

{figures(results, "LookupCold/hit", LOOKUPS, sizes, 1)}
Misses:

{figures(results, "LookupCold/miss", LOOKUPS, sizes, 1)}
"""


def loads_and_starts(results, sizes):
    return f"""## Loads

Times are in milliseconds. This library, `std::map` and the floor read the installed translations from
one strings file with all languages, and skip the languages before the one to load. The others have that
language in a file of its own.

{figures(results, "Load", LOADS, sizes, MILLISECONDS[0])}
Cold, after the processor's caches have been evicted; the file is in the system's memory:

{figures(results, "LoadCold", LOADS, sizes, MILLISECONDS[0])}
`orva-strings protect` takes {results.time("ProtectFile") / 1e6:.0f} ms for 10,000 texts, not counting its start and its reading and
writing of files.

## Starts and memory

A host that loads 1,000 texts, looks up a hundred of them and exits; and how much of the heap 10,000 texts
take. The catalogs of ICU, Qt and gettext are mapped, and take none.

{starts_and_memory(results)}
Besides what any C++ program does, a host with this library links two more shared libraries at its start,
this one and Nettle, at about 0.1 ms each, and reads 1,000 lines of text. ICU, Qt and gettext map catalogs
that were compiled beforehand, and have next to nothing to load.

"""


REPRODUCING = """## Reproducing these figures

```sh
scripts/bench            # the table and this page
scripts/bench --short    # makes the corpora that the next command needs
bench/count_instructions.py build/release/bench/{host_orvalanguage,short-corpora}
```

The last command counts the instructions of loads and lookups and compares them with
[bench/instructions.json](../bench/instructions.json). Unlike times, the counts are the same in every run.
"""


def draw(results, sizes, path):
    # Not needed for the figures alone.
    import matplotlib
    matplotlib.use("svg")
    from matplotlib import pyplot

    matplotlib.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": "", "font.size": 9,
                                "axes.spines.top": False, "axes.spines.right": False})
    figure, ((hits, cold_hits, cold_misses), (loads, starts, memory)) = pyplot.subplots(
        2, 3, figsize=(13, 8))
    colour = {name: f"C{i}" for i, name in enumerate((OURS, *LOOKUP_PEERS, "std::map"))}
    colour |= {"nlohmann-json": "C8", FLOOR: "grey"}

    def lines(axes, prefix, names, scale, title):
        for name in names:
            points = [(int(size), results.time(f"{prefix}/{name}/{size}") / scale)
                      for size in sizes if size.isdigit()]
            axes.plot(*zip(*points), marker="o", markersize=3, label=name, color=colour[name],
                      linewidth=2.5 if name == OURS else 1,
                      linestyle="dashed" if name == FLOOR else "solid")
        axes.set(xscale="log", yscale="log", xlabel="entries", title=title)
        for axis in (axes.xaxis, axes.yaxis):
            axis.set_major_formatter("{x:,g}")
        axes.legend(frameon=False, fontsize=7, loc="center left", bbox_to_anchor=(1, 0.5))

    def bars(axes, figures, title):
        axes.barh(list(figures), list(figures.values()), color=[colour[name] for name in figures])
        axes.invert_yaxis()
        axes.set(title=title)

    lines(hits, "Lookup/hit", LOOKUPS, 1, "A warm lookup that hits, ns")
    lines(cold_hits, "LookupCold/hit", LOOKUPS, 1, "A cold lookup that hits, ns")
    lines(cold_misses, "LookupCold/miss", LOOKUPS, 1, "A cold lookup that misses, ns")
    for axes in (hits, cold_hits, cold_misses):
        axes.set_ylim(10, 10_000)  # to compare them
    lines(loads, "Load", LOADS, MILLISECONDS[0], "A load, ms")
    bars(starts, {name: results.time(f"Start/{program}") / MILLISECONDS[0]
                  for name, program in STARTS.items()}, "A host's start, ms")
    bars(memory, {name: results.counter(f"Heap/{program}", "bytes") / MEBIBYTES[0]
                  for name, program in MEMORIES.items()}, "Memory of 10,000 entries, MiB")
    figure.tight_layout()
    figure.savefig(path, metadata={"Date": None})


def report(results, document, note):
    sizes = [size for size in SIZES if f"Load/{OURS}/{size}" in results.times]
    missing = {"100", "1000", "10000", "100000"} - set(sizes)
    if missing:
        sys.exit(f"report.py: not measured: {', '.join(sorted(missing))} entries")
    rows = list(goals(results, sizes))
    summary = table(["what", "ours", "compared with", "figure", "goal", "met", "floor"],
                    [row.cells() for row in rows])
    plot = document.with_suffix(".svg")
    draw(results, sizes, plot)
    document.write_text(introduction(results, summary, plot.name) + lookups(results, sizes, note) +
                        loads_and_starts(results, sizes) + REPRODUCING)
    print(summary, end="")
    print(f"{sum(row.is_met() for row in rows)} of {len(rows)} goals met")


def main():
    if len(sys.argv) not in (2, 4):
        sys.exit(__doc__)
    results = Results(pathlib.Path(sys.argv[1]))
    if len(sys.argv) == 2:
        print(table(["benchmark", "ns"],
                    [(name, f"{time:,.0f}") for name, time in results.times.items()
                     if not name.startswith(MEMORY)]), end="")
        return
    note = pathlib.Path(sys.argv[3])
    try:
        report(results, pathlib.Path(sys.argv[2]), note.read_text() if note.exists() else "")
    except KeyError as error:
        sys.exit(f"report.py: not measured: {error.args[0]}")


if __name__ == "__main__":
    main()
