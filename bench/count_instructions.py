#!/usr/bin/python3
"""Counts the instructions of a load and of lookups, and fails if there are over 2 % more than recorded,
or if a load takes more than its goal. Unlike times, they are the same in every run, so that a change
for the worse shows.

Usage: count_instructions.py PROGRAM CORPORA [--update]

PROGRAM is host_orvalanguage; CORPORA is what make_corpora.py wrote, with the size 1000. The record
is instructions.json, beside this script; --update rewrites it.

The counts are those of Debian 12's compiler and C library. The processor makes no difference: on each
one with AVX2, valgrind shows programs the same one, so that the C library takes the same variants of
memchr and its like. Nor does the place of the corpora: the program gets a path of one length, since
that decides how the heap's blocks, and so the texts, are aligned.
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile

RECORD = pathlib.Path(__file__).with_name("instructions.json")
MAX_RATIO = 1.02  # to the record
MAX_PER_ENTRY = 750

ENTRIES = 1000
LOAD = "a load of 1,000 entries"
COUNTED = {LOAD: "ZuLoadStrings", "1,000 lookups": "ZuGetLocalizedString"}


def instructions_in(function, program, corpora):
    with tempfile.TemporaryDirectory(dir="/tmp") as folder:
        link, profile = pathlib.Path(folder, "corpora"), pathlib.Path(folder, "profile")
        link.symlink_to(pathlib.Path(corpora).resolve())
        subprocess.run(
            ["valgrind", "--quiet", "--tool=callgrind", f"--toggle-collect={function}",
             f"--callgrind-out-file={profile}", program, link / str(ENTRIES), str(ENTRIES)],
            check=True)
        return int(re.search(r"^summary: (\d+)", profile.read_text(), re.MULTILINE).group(1))


def main():
    arguments = [argument for argument in sys.argv[1:] if argument != "--update"]
    if len(arguments) != 2:
        sys.exit(__doc__)
    program, corpora = arguments
    counts = {what: instructions_in(function, program, corpora)
              for what, function in COUNTED.items()}
    if "--update" in sys.argv:
        RECORD.write_text(json.dumps(counts, indent=2) + "\n")
    recorded = json.loads(RECORD.read_text())
    failures = []
    for what, count in counts.items():
        share = count / recorded[what]
        print(f"Instructions of {what}: {count:,}, {share:.3f} times the record")
        if count == 0 or share > MAX_RATIO:
            failures.append(f"{what}: more than {MAX_RATIO} times the record, or none at all")
    per_entry = counts[LOAD] / ENTRIES
    print(f"Instructions of a load for each entry: {per_entry:.1f}; the goal is {MAX_PER_ENTRY}")
    if per_entry > MAX_PER_ENTRY:
        failures.append(f"{LOAD}: more than {MAX_PER_ENTRY} an entry")
    sys.exit("\n".join(failures) or 0)


if __name__ == "__main__":
    main()
