#!/usr/bin/python3
"""The Xcode project of the sample host is whole, as far as that can be read: every object and file that
it names is there, it compiles the host and puts the library into the bundle, and its script puts
the protected strings file there.

Usage: xcode_project_test.py SOURCE COMMAND   COMMAND: orva-strings
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SOURCE, COMMAND = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
FOLDER = SOURCE / "examples/SampleHost"
TOKEN = re.compile(r'//[^\n]*\n|/\*.*?\*/|\s+|("(?:[^"\\]|\\.)*"|[\w./$-]+|[{}()=;,])', re.DOTALL)
IDENTIFIER = re.compile("[0-9A-F]{24}")
# The build phases, in their order.
PHASES = ["PBXSourcesBuildPhase", "PBXFrameworksBuildPhase", "PBXCopyFilesBuildPhase",
          "PBXShellScriptBuildPhase"]


def tokens_of(text):
    position = 0
    while position < len(text):
        found = TOKEN.match(text, position)
        assert found, f"no property list at {text[position:position + 20]!r}"
        position = found.end()
        if found[1]:
            yield found[1]


def parse(tokens, token):
    """The value of an old-style property list that begins with this token."""
    if token == "{":
        values = {}
        while (key := next(tokens)) != "}":
            assert key not in values, f"{key} comes twice"
            assert next(tokens) == "=", f"no = after {key}"
            values[key] = parse(tokens, next(tokens))
            assert next(tokens) == ";", f"no ; after {key}"
        return values
    if token == "(":
        values = []
        while (item := next(tokens)) != ")":
            values.append(parse(tokens, item))
            assert next(tokens) == ",", f"no comma after {item}"
        return values
    assert token not in "{}()=;,", f"a value begins with {token}"
    if token.startswith('"'):
        return token[1:-1].replace("\\n", "\n").replace('\\"', '"')
    return token


def identifiers(value):
    """Every identifier of an object in a value."""
    if isinstance(value, dict):
        return {name for item in value.values() for name in identifiers(item)}
    if isinstance(value, list):
        return {name for item in value for name in identifiers(item)}
    return {value} if IDENTIFIER.fullmatch(value) else set()


def check_objects(project):
    """Each object is named by another, up to the root, and each name is that of an object."""
    objects = project["objects"]
    assert objects[project["rootObject"]]["isa"] == "PBXProject"
    reached, unread = set(), {project["rootObject"]}
    while unread:
        name = unread.pop()
        assert name in objects, f"there is no object {name}"
        reached.add(name)
        unread |= identifiers(objects[name]) - reached
    assert reached == set(objects), f"nothing names {set(objects) - reached}"


def check_files(objects):
    """The sources exist, and what is built is where CMake builds it."""
    for item in objects.values():
        if item["isa"] == "PBXFileReference" and item["sourceTree"] != "BUILT_PRODUCTS_DIR":
            assert item["sourceTree"] in ("<group>", "SOURCE_ROOT"), item["sourceTree"]
            path = Path(os.path.normpath(FOLDER / item["path"]))
            built = SOURCE / "build/release/Frameworks/libOrvaLanguage.dylib"
            assert path == built or path.is_file(), f"there is no {path}"


def check_phases(objects):
    target = next(item for item in objects.values() if item["isa"] == "PBXNativeTarget")
    phases = {objects[name]["isa"]: objects[name] for name in target["buildPhases"]}
    assert list(phases) == PHASES, list(phases)
    held = {kind: [objects[objects[name]["fileRef"]]["path"].split("/")[-1]
                   for name in phase["files"]] for kind, phase in phases.items()}
    # Xcode would convert a strings file among a target's resources into a form of its own.
    library = ["libOrvaLanguage.dylib"]
    assert list(held.values()) == [["SampleHost.cpp"], library, library, []], held
    assert phases["PBXCopyFilesBuildPhase"]["dstSubfolderSpec"] == "10", "not in Frameworks"
    return phases["PBXShellScriptBuildPhase"]


def settings_of(objects):
    return {name: value for item in objects.values() if item["isa"] == "XCBuildConfiguration"
            for name, value in item["buildSettings"].items()}


def check_settings(settings):
    root = (SOURCE / "CMakeLists.txt").read_text()
    for name, pattern in {"ARCHS": 'ARCHITECTURES "(.*?)"',
                          "MACOSX_DEPLOYMENT_TARGET": 'DEPLOYMENT_TARGET "(.*?)"'}.items():
        assert settings[name] == re.search(pattern, root)[1], f"{name} is not that of the library"
    headers = settings["HEADER_SEARCH_PATHS"].strip('"').replace("$(SRCROOT)", str(FOLDER))
    assert Path(headers, "OrvaLanguage/OrvaLanguage.h").is_file(), headers
    assert settings["ORVA_BUILD"] == "$(SRCROOT)/../../build/release", settings["ORVA_BUILD"]
    assert settings["LIBRARY_SEARCH_PATHS"] == '"$(ORVA_BUILD)/Frameworks"'


def run_script(phase, work):
    """Runs the script as Xcode does; returns what it makes of the strings file."""
    source, build, products = work / "a source", work / "a build", work / "products"
    (build / "tools/orva-strings").mkdir(parents=True)
    (build / "tools/orva-strings/orva-strings").symlink_to(COMMAND)
    source.mkdir()
    shutil.copy(FOLDER / "Sample.strings", source)
    settings = {"SRCROOT": source, "ORVA_BUILD": build, "TARGET_BUILD_DIR": products,
                "UNLOCALIZED_RESOURCES_FOLDER_PATH": "SampleHost.app/Contents/Resources"}

    def expanded(path):
        return re.sub(r"\$\((\w+)\)", lambda name: str(settings[name[1]]), path)

    environment = {f"SCRIPT_{kind}_FILE_{i}": expanded(path)
                   for kind in ("INPUT", "OUTPUT")
                   for i, path in enumerate(phase[f"{kind.lower()}Paths"])}

    def run():
        return subprocess.run([phase["shellPath"], "-c", phase["shellScript"]], check=False,
                              env={**os.environ, **environment}, stderr=subprocess.PIPE, text=True)

    done = run()
    assert done.returncode == 0, done.stderr
    made = products / "SampleHost.app/Contents/Resources/Sample.strings"
    assert re.search(r'^IDE_LICENSE="[0-9A-F]{64,}"$', made.read_text(), re.MULTILINE), made
    (source / "Sample.strings").write_text('QVLANG=en\nGREETING="a"\nGREETING="b"\n')
    assert run().returncode != 0, "the script accepts an error in the strings file"


text = (FOLDER / "SampleHost.xcodeproj/project.pbxproj").read_text()
stream = tokens_of(text)
PROJECT = parse(stream, next(stream))
assert next(stream, None) is None, "something follows the property list"
check_objects(PROJECT)
check_files(PROJECT["objects"])
SCRIPT = check_phases(PROJECT["objects"])
check_settings(settings_of(PROJECT["objects"]))
with tempfile.TemporaryDirectory() as folder:
    run_script(SCRIPT, Path(folder))
print(f"{len(PROJECT['objects'])} objects")
