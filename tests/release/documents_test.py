#!/usr/bin/python3
"""Runs every block of code in the project's documents, as CONTRIBUTING.md describes.

Usage: documents_test.py SOURCE BUILD,
       with this build's CC and CXX

Each document has a copy of SOURCE, in which its blocks are run from top to bottom. The library and
orva-strings are installed from BUILD. stand_ins.py has the commands that would change the machine
or take minutes.
"""
import itertools
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import stand_ins

# A fragment is compiled as the body of a function.
FRAGMENT = """#include <OrvaLanguage/OrvaLanguage.h>
{headers}
void Fragment(void);
void Fragment(void) {{
{body}
}}
"""
PROJECT = "cmake_minimum_required(VERSION 3.22)\nproject(Document LANGUAGES C CXX)\n"
COMMENT = re.compile(r" *<!-- (file|test|not run|run):\s+(.*?)\s*-->", re.DOTALL)


class Fault(Exception):
    """What is wrong with a block."""


class Block:
    """A block of code with the mark above it, or a comment that stands by itself."""

    def __init__(self, line, kind, text="", mark=("", "")):
        self.line, self.kind, self.text, self.mark = line, kind, text, mark


def blocks_of(text):
    """The blocks of a document, in order."""
    lines = text.split("\n")
    found = []
    mark = ("", "")
    i = 0
    while i < len(lines):
        start = i
        shown = re.sub("`[^`]+`", "", lines[i])
        fence = re.fullmatch(r"( *)```([^`]*)", lines[i])
        if fence:
            i += 1
            while lines[i] != fence[1] + "```":
                i += 1
            body = "".join(f"{line.removeprefix(fence[1])}\n" for line in lines[start + 1 : i])
            found.append(Block(start + 1, fence[2], body, mark))
            mark = ("", "")
        elif "<!--" in shown:
            while "-->" not in lines[i]:
                i += 1
            comment = COMMENT.fullmatch("\n".join(lines[start : i + 1]))
            if comment and comment[1] == "run":
                found.append(Block(start + 1, *comment.groups()))
            elif comment and lines[i + 1].lstrip().startswith("```"):
                mark = comment.groups()
            else:
                found.append(Block(start + 1, "comment"))
        elif re.search("```|~~~", shown) or (
                lines[i].startswith(("    ", "\t")) and not lines[i - 1].strip()):
            found.append(Block(start + 1, "other"))
        i += 1
    return found


def examples_of(path):
    """The examples of a manual page."""
    language = {".3": "cpp" if "Kor" in path.name else "c", ".5": "strings"}[path.suffix]
    text = re.sub(r"\\\[u([0-9A-F]+)\]", lambda sign: chr(int(sign[1], 16)), path.read_text())
    return [Block(text[: found.start()].count("\n") + 1, language, found[1].replace("\\e", "\\"))
            for found in re.finditer(r"^\.EX\n(.*?)^\.EE\n", text, re.MULTILINE | re.DOTALL)]


class Document:
    """A document's blocks and the folder in which they run."""

    def __init__(self, path, source, folder, environment):
        self.path, self.source, self.folder = path, source, folder
        self.name = str(path.relative_to(source))
        self.environment = environment
        self.text = path.read_text()
        if path.suffix == ".md":
            # What the test OrvaStringsCheck compares with the command.
            explained = self.execute(["orva-strings", "explain"])
            self.blocks = blocks_of(self.text.replace(explained, ""))
        else:
            self.blocks = examples_of(path)
        self.printed = None  # by what was run last
        self.files = []  # those of the blocks
        self.counts = {}

    def run(self):
        """Runs every block; returns what is wrong."""
        faults = []
        for i, block in enumerate(self.blocks):
            self.counts[block.kind] = self.counts.get(block.kind, 0) + 1
            try:
                self.run_block(block, self.blocks[i + 1 :])
            except Fault as fault:
                faults.append(f"{self.name}:{block.line}: {block.kind}: {fault}")
        for span in set(re.findall(r"`(\S[^`\n]*)`", self.text)):
            faults += [f"{self.name}: `{span}`: there is no {word}" for word in self.unknown(span)]
        return faults

    def unknown(self, span):
        """The command and options in a code span that our command or script does not have."""
        words = span.split()
        script = self.source / words[0]
        if words[0] == "orva-strings":
            command = " ".join(itertools.takewhile(re.compile("[a-z][a-z-]*").fullmatch, words))
            known = self.execute([*command.split(), "--help"])
            if "COMMAND" in known and f"{command} [" not in known:
                yield command
        elif len(words) > 1 and script.is_file():
            known = script.read_text()
        else:
            return
        for option in re.findall(r"(?<!\S)--[a-z-]+", span):
            if not re.search(rf"{option}(?![\w-])", known):
                yield option

    def run_block(self, block, later):
        kind, (mark, argument) = block.kind, block.mark
        if kind == "text" or mark == "not run":
            return
        if mark == "test":
            self.expect_test(argument)
            return
        if mark == "file":
            self.write(argument, block.text)
            names = {argument, str(Path(argument).parent)} - {"."}
            if not any(name in other.text for name in names for other in later):
                raise Fault(f"nothing below uses {argument}")
        if kind in ("sh", "run"):
            self.printed = self.execute(["bash", "-euo", "pipefail", "-c", block.text])
        elif kind == "console":
            self.expect(block.text, self.replay(block.text))
        elif kind == "output":
            if self.printed is None:
                raise Fault("nothing above it was run")
            self.expect(block.text, self.printed)
        elif kind in ("c", "cpp"):
            self.compile(block, later)
        elif kind == "cmake" and not mark:
            self.build(block.text)
        elif kind == "strings" and not mark:
            self.write("block.strings", block.text)
            self.execute(["orva-strings", "check", "block.strings"])
        elif not mark:
            raise Fault("no way to run this; CONTRIBUTING.md says how a block is marked")

    def write(self, name, text):
        self.files.append(name)
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def execute(self, command, may_fail=False, folder=None):
        done = subprocess.run(
            command, cwd=folder or self.folder, env=self.environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=250, check=False)
        if done.returncode != 0 and not may_fail:
            raise Fault(f"ended with {done.returncode}:\n{done.stdout}")
        return done.stdout

    def replay(self, text):
        """What a terminal would show after the commands of a block, those behind "$ "."""
        shown = ""
        for command in re.findall(r"^\$ (.*)$", text, re.MULTILINE):
            shown += f"$ {command}\n" + self.execute(["bash", "-c", command], may_fail=True)
        return shown

    def expect(self, expected, printed):
        if printed != expected:
            raise Fault(f"this was printed instead:\n{printed}")

    def compile(self, block, later):
        """Compiles a program or a fragment. Runs a program whose output the document shows."""
        name = "block." + block.kind
        is_program = re.search(r"\bmain\(", block.text)
        text = block.text
        if not is_program:
            headers = "".join(re.findall(r"^#.*\n", text, re.MULTILINE))
            body = re.sub(r"^#.*\n", "", text, flags=re.MULTILINE)
            text = FRAGMENT.format(headers=headers, body=body)
        self.write(name, text)
        compiler = ["cc", "-std=c99"] if block.kind == "c" else ["c++", "-std=c++17"]
        kinds, target = (["--cflags", "--libs"], ["-o", "block"]) if is_program else (
            ["--cflags"], ["-c"])
        flags = self.execute(["pkg-config", *kinds, "OrvaLanguage"]).split()
        self.execute([*compiler, "-Wall", "-Wextra", "-Werror", name, *target, *flags])
        if is_program and later and later[0].kind == "output":
            self.printed = self.execute(["./block"])

    def build(self, text):
        """Configures and builds a project, or the part of one, beside the document's files."""
        folder = Path(tempfile.mkdtemp(dir=self.folder))
        for name in self.files:
            (folder / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(self.folder / name, folder / name)
        heading = "" if "project(" in text else PROJECT
        (folder / "CMakeLists.txt").write_text(heading + text)
        self.execute(["cmake", "-S", ".", "-B", "build"], folder=folder)
        self.execute(["cmake", "--build", "build"], folder=folder)

    def expect_test(self, name):
        """Expects a test of this name to read the document."""
        lists = "".join((self.source / "tests" / file).read_text()
                        for file in ("CMakeLists.txt", "Linux.cmake"))
        script = re.search(rf"add_test\(NAME {re.escape(name)} COMMAND\s+"
                           r'"\$\{CMAKE_CURRENT_SOURCE_DIR\}/([^"]*)"', lists)
        if not script:
            raise Fault(f"there is no test {name}")
        if self.name not in (self.source / "tests" / script[1]).read_text():
            raise Fault(f"the test {name} does not read {self.name}")


def main():
    source, build = (Path(argument).resolve() for argument in sys.argv[1:])
    documents = sorted(path for path in source.rglob("*.md")
                       if not {"build", ".git"} & set(path.relative_to(source).parts))
    documents += sorted(source.glob("docs/man/*.[35]"))
    faults = []
    # Not in TMPDIR, whose name may have a blank: to a host's compiler, that would be two words.
    with tempfile.TemporaryDirectory(dir="/tmp") as work:
        environment = stand_ins.prepare(source, build, Path(work))
        for number, path in enumerate(documents):
            folder = Path(work) / f"document {number}"
            folder.mkdir()
            document = Document(path, source, folder, {**environment, "FOLDER": str(folder)})
            if document.blocks:
                stand_ins.copy_source(source, folder)
            faults += document.run()
            counts = ", ".join(f"{n} {kind}" for kind, n in sorted(document.counts.items()))
            print(f"{document.name}: {counts or 'no blocks'}", flush=True)
    print(*faults, sep="\n")
    sys.exit(bool(faults))


main()
