#!/usr/bin/python3
"""The manual pages agree with the headers, the command and each other, and are well-formed.

The test ManualPage compares the command's page with its table of commands; this one asks the built
command for what only that knows: values, options that exclude each other, and exit statuses.

Usage: manuals_test.py SOURCE ORVA_STRINGS

Ends with 77 if mandoc or man is missing: scripts/setup docs installs them.
"""
import re
import shutil
import subprocess
import sys
from pathlib import Path

SOURCE, TOOL = (Path(argument) for argument in sys.argv[1:])
FAULTS = []


def expect(holds, fault):
    if not holds:
        FAULTS.append(fault)


def plain(line):
    """A line as a reader sees it, without macros for fonts and without escapes."""
    macro = re.fullmatch(r"\.(B|I|[BIR]{2}) (.*)", line)
    if macro:
        words = re.findall(r'"([^"]*)"|([^" ]+)', macro[2])
        line = ("" if len(macro[1]) == 2 else " ").join(a or b for a, b in words)
    return re.sub(r"\\f.|\\[&c]", "", line).replace("\\-", "-")


def section(page, name):
    found = re.search(rf"^\.SH {name}\n(.*?)(?=^\.SH |\Z)", page, re.MULTILINE | re.DOTALL)
    return "\n".join(plain(line) for line in found[1].split("\n")) if found else ""


def one_line(text):
    return " ".join(text.split())


paths = sorted(SOURCE.glob("docs/man/*.[1-9]")) + [SOURCE / "tools/orva-strings/orva-strings.1"]
texts = {path.name: path.read_text() for path in paths}
links = {name: Path(text.split()[1]).name for name, text in texts.items()
         if text.startswith(".so ")}
pages = {name: text for name, text in texts.items() if name not in links}
headers = {f"OrvaLanguage/{path.name}": path.read_text().replace("ORVA_EXPORT ", "")
           for path in SOURCE.glob("include/OrvaLanguage/*")}

# Each exported name has a page with its declaration.
declarations = {}
for path in SOURCE.glob("include/OrvaLanguage/*.h"):
    for text in re.findall(r"^ *ORVA_EXPORT ([^;]*;)", path.read_text(), re.MULTILINE):
        declarations[re.search(r"(\w+)(\(|;)", text)[1]] = one_line(text)
for line in (SOURCE / "api/exports.txt").read_text().split("\n"):
    name = re.sub(r"^posix: |\(.*", "", line)
    if name and not name.startswith("#"):
        holder, _, member = name.partition("::")
        file = links.get(f"{holder}.3", f"{holder}.3")
        expect(declarations[member or holder] in one_line(section(pages.get(file, ""), "SYNOPSIS")),
               f"{file}: it lacks {declarations[member or holder]}")

for name, page in pages.items():
    # What a page declares is in the header that it names.
    synopsis = section(page, "SYNOPSIS")
    for header in re.findall("#include <(.*)>", synopsis):
        code = re.sub(r"^(#include|cc|\.).*", "", synopsis, flags=re.MULTILINE)
        for part in re.split("[;{}]|public:", code):
            expect(one_line(part) in one_line(headers.get(header, "")),
                   f"{name}: {header} does not have {one_line(part)}")
    # Its names are those of files.
    titles = section(page, "NAME").split(" - ")[0].replace("\\", "").split(", ")
    stem, number = name.rsplit(".", 1)
    expect(titles[0] == stem, f"{name}: it is about {titles[0]}")
    for title in titles[1:]:
        link = f"{title}.{number}"
        expect(links.get(link) == name, f"{name}: {link} does not lead here")
    # The pages that it names exist.
    for reference in re.findall(r"^\.BR ((?:orva|libOrva|Zu|Kor)\S*) \((\d)\)", page, re.MULTILINE):
        other = ".".join(reference).replace("\\", "")
        expect(other in texts, f"{name}: there is no {other}")
for link, name in links.items():
    expect(link.split(".")[0] in section(pages[name], "NAME"), f"{link}: {name} is not about it")



def say(*arguments):
    """What the command prints."""
    return subprocess.run([TOOL, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False).stdout


# The values of the command's options, and which of them exclude each other.
page = pages["orva-strings.1"]
described = {}
for paragraph in section(page, "OPTIONS").split(".TP\n"):
    tag, _, description = paragraph.partition("\n")
    described.update(dict.fromkeys(re.findall(r"--[a-z-]+", tag), description))
for synopsis in section(page, "SYNOPSIS").split("\n.br\n"):
    command = re.match(r"orva-strings ([a-z]+(?: [a-z]+)?)", synopsis)[1]
    usage = say(*command.split(), "--help")
    groups = re.findall(r"\[([^]]*\|[^]]*)\]", synopsis.replace("-o", "--output"))
    alternatives = {frozenset(re.findall("--[a-z-]+", group)) for group in groups}
    pairs = re.findall(r"(--[a-z-]+)(?: [A-Z]+)? Excludes: (--[a-z-]+)", usage)
    expect(alternatives == {frozenset(pair) for pair in pairs},
           f"{command}: the page has the alternatives {groups}, the help {pairs}")
    for option in re.findall(r"^  .*(--[a-z-]+) [A-Z]+\b", usage, re.MULTILINE):
        values = re.search(r"must be one of (\S+)", say(*command.split(), f"{option}=?", "file"))
        for value in values[1].split("|") if values else []:
            expect(re.search(rf"\b{value}\b", described[option]),
                   f"{command}: the page does not describe {option} {value}")

# The exit statuses.
statuses = re.findall(r"^\.TP\n(\d)$", section(page, "EXIT STATUS"), re.MULTILINE)
named = re.findall(r"(\d) [a-z]", re.search("Exit status: .*", say("--help"))[0])
expect(statuses == named, f"the page has the statuses {statuses}, the help {named}")

missing = [program for program in ("mandoc", "man") if not shutil.which(program)]
for path in paths:
    if path.name in pages and not missing:
        for command in (["mandoc", "-T", "lint", "-W", "warning"],
                        ["man", "--warnings", "-E", "UTF-8", "-l"]):
            done = subprocess.run([*command, path], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                  text=True, check=False)
            said = done.stdout if command[0] == "mandoc" else done.stderr
            expect(done.returncode == 0 and not said, said)

print(f"{len(pages)} pages, {len(links)} links, {len(declarations)} declarations")
print(*FAULTS, sep="\n")
if FAULTS:
    sys.exit(1)
if missing:
    print("skipped; scripts/setup docs installs what is missing:", *missing)
    sys.exit(77)
