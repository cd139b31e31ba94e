#!/usr/bin/python3
"""Stands in for the commands in documents that would change the machine or take minutes.

Each checks that its arguments mean something: that presets, options, targets and tests exist.

Usage: stand_ins.py COMMAND ARGUMENT…, from a folder that prepare() has made
"""
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
from pathlib import Path

REFUSED = ("apt", "apt-get", "brew", "dpkg", "sudo")


def prepare(source, build, work):
    """Installs the build below work and makes the stand-ins; returns the blocks' environment."""
    binaries, prefix = work / "bin", work / "prefix"
    binaries.mkdir()
    subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)
    for name in ("cmake", "ctest", "ldconfig", "orva-strings", *REFUSED):
        make_stand_in(binaries / name, name)
    for name, compiler in (("cc", "CC"), ("c++", "CXX")):
        program = shlex.quote(shutil.which(os.environ[compiler]))
        (binaries / name).write_text(f'#!/bin/sh\nexec {program} "$@"\n')
        (binaries / name).chmod(0o755)
    libraries = next(prefix.rglob("pkgconfig")).parent
    return {**os.environ, "PATH": f"{binaries}:{prefix}/bin:{os.environ['PATH']}",
            "SOURCE": str(source), "BUILD": str(build), "PREFIX": str(prefix), "HOME": str(work),
            "PKG_CONFIG_PATH": f"{libraries}/pkgconfig", "CMAKE_PREFIX_PATH": str(prefix),
            "LD_LIBRARY_PATH": str(libraries), "LC_ALL": "C.UTF-8"}


def make_stand_in(path, name):
    path.write_text(f'#!/bin/sh\nexec {sys.executable} {shlex.quote(__file__)} {name} "$@"\n')
    path.chmod(0o755)


def copy_source(source, folder):
    """Copies the source, with stand-ins for its scripts."""
    shutil.copytree(source, folder, symlinks=True, dirs_exist_ok=True,
                    ignore=lambda path, _: ["build", ".git"] if Path(path) == source else [])
    for path in [*(folder / "scripts").iterdir(), folder / "bench" / "count_instructions.py"]:
        make_stand_in(path, path.relative_to(folder))


def fail(message):
    sys.exit(f"{Path(sys.argv[1]).name}: {message}")


def real(command, *arguments):
    """Runs the command that a stand-in hides; ends with its status if it fails."""
    hidden = str(Path(os.environ["PREFIX"]).parent / "bin")
    path = os.pathsep.join(p for p in os.environ["PATH"].split(os.pathsep) if p != hidden)
    done = subprocess.run([command, *arguments], env={**os.environ, "PATH": path}, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    print(done.stdout, end="", flush=True)
    if done.returncode != 0:
        sys.exit(done.returncode)
    return done.stdout


def cmake(arguments):
    if arguments[:1] == ["--preset"]:
        if "not used by the project" in real("cmake", *arguments):
            fail("a switch that the project does not have")
    elif arguments[:2] == ["--build", "--preset"]:
        real("cmake", *arguments, "--", "-n")  # only says what it would do
    elif arguments[:1] == ["--install"] and arguments[1].startswith("build/"):
        if not Path(arguments[1], "cmake_install.cmake").exists():
            fail(f"{arguments[1]} was not configured")
        prefix = arguments.index("--prefix") + 1
        real("cmake", "--install", os.environ["BUILD"], *arguments[2:prefix], os.environ["PREFIX"],
             *arguments[prefix + 1:])
    else:
        real("cmake", *arguments)


def ctest(arguments):
    presets = json.loads(Path("CMakePresets.json").read_text())["testPresets"]
    if arguments[:1] != ["--preset"] or arguments[1] not in [preset["name"] for preset in presets]:
        fail("no such preset")
    if arguments[2:3] == ["-R"]:
        sources = Path(os.environ["SOURCE"], "tests").rglob("*.cpp")
        tests = re.findall(r"^TEST(?:_F|_P)?\((\w+), (\w+)\)",
                           "\n".join(path.read_text() for path in sources), re.MULTILINE)
        if not any(re.search(arguments[3], ".".join(test)) for test in tests):
            fail(f"no test matches {arguments[3]}")
    elif arguments[2:]:
        fail(f"its stand-in does not know {arguments[2]}")


def orva_strings(arguments):
    """With a key for the document's build, as the command of that build."""
    cache = Path(os.environ["FOLDER"], "build", "release", "CMakeCache.txt")
    key = re.search(r"^ORVA_KEY_FILE:\w+=(.+)$", cache.read_text() if cache.exists() else "",
                    re.MULTILINE)
    if key and arguments[0] in ("protect", "check", "show") and "--key-file" not in arguments:
        arguments[1:1] = ["--key-file", key[1]]
    command = str(Path(os.environ["PREFIX"], "bin", "orva-strings"))
    os.execv(command, [command, *arguments])


def script(arguments):
    """A script of the project, which must know each argument."""
    source = Path(os.environ["SOURCE"])
    known = "".join((source / name).read_text()
                    for name in (sys.argv[1], "scripts/bench", "bench/CMakeLists.txt"))
    for argument in arguments:
        if not re.search(rf"(?<![\w-]){re.escape(Path(argument).name)}(?![\w-])", known):
            fail(f"it does not know {argument}")


def main():
    name, arguments = sys.argv[1], sys.argv[2:]
    if name in REFUSED:
        fail("this would change the machine; mark the block with the test that runs it")
    stand_ins = {"cmake": cmake, "ctest": ctest, "orva-strings": orva_strings}
    if name != "ldconfig":
        stand_ins.get(name, script)(arguments)


if __name__ == "__main__":
    main()
