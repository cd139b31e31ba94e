#!/usr/bin/python3
"""No link or path in the documents is dead, and docs/README.md leads to everything. The documents that
BUILD installs have no dead link either.

Usage: links_test.py SOURCE BUILD   BUILD may be empty: nothing to install
"""
import re
import subprocess
import sys
import tempfile
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


def links(document):
    """Each link to a file or an anchor: as written, its file, and its anchor."""
    for target in re.findall(r"\]\(([^)\s]+)\)", prose(document)):
        if not re.match("https?:", target):
            name, _, anchor = target.partition("#")
            yield target, (document.parent / name).resolve() if name else document, anchor


def is_dead(path, anchor):
    return not path.exists() or anchor and (path.suffix != ".md" or anchor not in anchors(path))


def dead_installed_links(build):
    """Those of the installed documents, which must still have links and what these lead to."""
    with tempfile.TemporaryDirectory() as prefix:
        subprocess.run(["cmake", "--install", build, "--prefix", prefix, "--component",
                        "development"], check=True, stdout=subprocess.DEVNULL)
        installed = [(document.name, *link) for document in sorted(Path(prefix).glob("**/*.md"))
                     for link in links(document)]
        dead = [f"installed, {name}: there is no {target}"
                for name, target, path, anchor in installed if is_dead(path, anchor)]
    kept = {name for *_, path, anchor in installed for name in (path.name, anchor)}
    lost = {"building.md", "SampleHost.cpp", "SECURITY.md", "the-development-key"} - kept
    return dead + [f"installed, no link leads to {name}" for name in sorted(lost)]


documents = found("**/*.md")
faults, leads_to, count = [], {}, 0
for document in sorted(documents):
    leads_to[document] = set()
    for target, path, anchor in links(document):
        count += 1
        leads_to[document].add(path)
        if is_dead(path, anchor):
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
if sys.argv[2]:
    faults += dead_installed_links(sys.argv[2])

print(f"{count} links and paths, {len(wanted)} pages and headers", *faults, sep="\n")
sys.exit(bool(faults))
