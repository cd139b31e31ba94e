#!/usr/bin/python3
"""Counts the instructions of a load and of lookups, and fails if there are many more than recorded.
Unlike times, they are the same in every run, so that a change for the worse shows.

Usage: count_instructions.py PROGRAM CORPORA [--update]

PROGRAM is host_orvalanguage; CORPORA is what make_corpora.py wrote, with the size 1000. The record
is instructions.json, beside this script; --update rewrites it.
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile

RECORD = pathlib.Path(__file__).with_name("instructions.json")
MAX_RATIO = 1.1  # to the record

COUNTED = {
    "a load of 1,000 entries": "ZuLoadStrings",
    "1,000 lookups": "ZuGetLocalizedString",
}


def instructions_in(function, command):
    with tempfile.NamedTemporaryFile() as profile:
        subprocess.run(
            ["valgrind", "--quiet", "--tool=callgrind", f"--toggle-collect={function}",
             f"--callgrind-out-file={profile.name}", *command],
            check=True)
        return int(re.search(r"^summary: (\d+)", pathlib.Path(profile.name).read_text(),
                             re.MULTILINE).group(1))


def main():
    arguments = [argument for argument in sys.argv[1:] if argument != "--update"]
    if len(arguments) != 2:
        sys.exit(__doc__)
    program, corpora = arguments
    counts = {what: instructions_in(function, [program, f"{corpora}/1000", "1000"])
              for what, function in COUNTED.items()}
    if "--update" in sys.argv:
        RECORD.write_text(json.dumps(counts, indent=2) + "\n")
    recorded = json.loads(RECORD.read_text())
    is_slower = False
    for what, count in counts.items():
        share = count / recorded[what]
        print(f"Instructions of {what}: {count:,}, {share:.3f} times the record")
        is_slower |= count == 0 or share > MAX_RATIO
    sys.exit(f"More than {MAX_RATIO} times the record, or none at all" if is_slower else 0)


if __name__ == "__main__":
    main()
