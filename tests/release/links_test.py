#!/usr/bin/python3
"""No link or path in the documents is dead, and docs/README.md leads to everything.

Usage: links_test.py SOURCE
"""
import re
import sys
from pathlib import Path

SOURCE = Path(sys.argv[1]).resolve()
OUTSIDE = {"build", ".git"}


def found(*patterns):
    return {path for pattern in patterns for path in SOURCE.glob(pattern)
            if path.relative_to(SOURCE).parts[0] not in OUTSIDE}


def prose(path):
    return re.sub(r"^( *)```.*?^\1```", "", path.read_text(), flags=re.MULTILINE | re.DOTALL)


def anchors(path):
    """The anchors of a document's headings, as GitHub makes them."""
    anchors_found = []
    for heading in re.findall(r"^#+ (.*)", prose(path), re.MULTILINE):
        heading = re.sub(r"\[(.*?)\]\(.*?\)", r"\1", heading)
        anchor = re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
        repeated = sum(re.fullmatch(rf"{anchor}(-\d+)?", other) is not None
                       for other in anchors_found)
        anchors_found.append(f"{anchor}-{repeated}" if repeated else anchor)
    return anchors_found


documents = found("**/*.md")
faults, leads_to, count = [], {}, 0
for document in sorted(documents):
    leads_to[document] = set()
    for target in re.findall(r"\]\(([^)\s]+)\)", prose(document)):
        if re.match("https?:", target):
            continue
        count += 1
        name, _, anchor = target.partition("#")
        path = (document.parent / name).resolve() if name else document
        leads_to[document].add(path)
        if not path.exists():
            faults.append(f"{document.relative_to(SOURCE)}: there is no {name}")
        elif anchor and (path.suffix != ".md" or anchor not in anchors(path)):
            faults.append(f"{document.relative_to(SOURCE)}: there is no {target}")

    for name in re.findall(r"`([\w.-]+/[\w./-]*)", prose(document)):
        parts = Path(name).parts
        if (SOURCE / parts[0]).is_dir() and parts[0] not in OUTSIDE:
            count += 1
            if not (SOURCE / name).exists():
                faults.append(f"{document.relative_to(SOURCE)}: there is no {name}")

reached, unread = set(), {SOURCE / "docs/README.md"}
while unread:
    path = unread.pop()
    reached.add(path)
    unread |= leads_to.get(path, set()) - reached
wanted = documents | found("docs/man/*", "tools/**/*.[1-9]", "include/**/*.h*")
for path in sorted(wanted - reached):
    faults.append(f"docs/README.md does not lead to {path.relative_to(SOURCE)}")

print(f"{count} links and paths, {len(wanted)} pages and headers", *faults, sep="\n")
sys.exit(bool(faults))
