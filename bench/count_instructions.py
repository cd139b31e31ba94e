#!/usr/bin/python3
"""Counts the instructions of a load and of look-ups, and fails where there are many more than there
were: unlike times, they repeat from run to run, so that a change for the worse is seen.

Usage: count_instructions.py PROGRAM CORPORA [--update]

PROGRAM is host_orvalanguage; CORPORA is what make_corpora.py wrote, the size 1000. What there was is
in instructions.json, beside this script; --update writes it anew.
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile

RECORD = pathlib.Path(__file__).with_name("instructions.json")
MOST = 1.1  # times what there was

COUNTED = {
    "a load of 1,000 entries": "ZuLoadStrings",
    "1,000 look-ups": "ZuGetLocalizedString",
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
        print(f"Instructions of {what}: {count:,}, {share:.3f} of what there were")
        is_slower |= count == 0 or share > MOST
    sys.exit(f"More than {MOST} times as many, or none at all" if is_slower else 0)


if __name__ == "__main__":
    main()
