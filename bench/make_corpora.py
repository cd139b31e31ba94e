#!/usr/bin/python3
"""Writes the texts that the benchmarks look up, in the format of each library compared.

Usage: make_corpora.py FOLDER SIZE…    SIZE: a number of generated entries, or "installed"

"installed" is the translations of the packages on this machine: every message catalog (.mo) of
every language, in one strings file. The language with the most entries is looked up.

A corpus is a folder in FOLDER, named after its size; one that is newer than this script is kept,
since ICU's compiler takes minutes for 100,000 entries. It holds

    texts.strings       for the library
    language            the section to load, and the one language of the other formats
    keys.txt            its keys, in file order
    note                for "installed": what the entries are
    texts.ini .json .qm LANGUAGE.res LANGUAGE/LC_MESSAGES/SIZE.mo
"""

import gettext
import json
import pathlib
import random
import re
import shutil
import struct
import subprocess
import sys
from xml.sax.saxutils import escape

LANGUAGE = "de"
CATALOGS = (pathlib.Path("/usr/share/locale"), pathlib.Path("/usr/share/locale-langpack"))

# A key that every format can hold: ICU allows only these characters, a GKeyFile no space at either
# end, and "=" ends the library's.
KEY = re.compile(r"""(?! )[A-Za-z0-9 "%&'()*+,./:;<>?_-]{4,}(?<! )""")
PROTECTED = "IDE"
OF_KEY_FILES = "Encoding"

# What a text can't hold in some format: a control character, and the two bytes of "\n", which would
# become a line feed.
UNSUITABLE_TEXT = re.compile(r"\\n|[\0-\x08\x0b-\x1f\x7f\ufffe\uffff]")

WORDS = (
    "Absatz Adresse Ansicht Auswahl Bearbeiten Bereich Bild Datei Drucken Ebene Einfügen Ende Farbe "
    "Fenster Format Größe Hilfe Kopie Linie löschen Menü Name neu öffnen Ordner Rahmen rückgängig "
    "Schrift Seite sichern Spalte Suche Tabelle Text Vorlage wählen Werkzeug Zeichen Zeile über"
).split()


def generated_entries(size):
    """Keys of 21 to 26 bytes, texts of 1 to 9 words; the same for a size in every run."""
    numbers = random.Random(size)
    kinds = ("MENU", "BUTTON", "DIALOG", "TOOLTIP", "LABEL", "STATUS")
    parts = ("TEXT", "TITLE", "HINT", "SHORT", "LONG")
    entries = {}
    for number in range(size):
        key = f"{numbers.choice(kinds)}_{number:05}_ENTRY_{numbers.choice(parts)}"
        entries[key] = " ".join(numbers.choices(WORDS, k=numbers.randint(1, 9)))
    return entries


def is_suitable(key, text):
    """Whether every format can hold an entry."""
    return (
        isinstance(key, str)
        and KEY.fullmatch(key) is not None
        and not key.startswith(PROTECTED)
        and key != OF_KEY_FILES
        and text not in ("", key)  # some return the key if there is no text
        and UNSUITABLE_TEXT.search(text) is None
    )


def installed_entries():
    """The entries of each language, and how many were left out: not every format can hold those."""
    sections = {}
    unsuitable = 0
    for path in sorted(path for folder in CATALOGS for path in folder.glob("*/LC_MESSAGES/*.mo")):
        try:
            with path.open("rb") as file:
                catalog = gettext.GNUTranslations(file)._catalog  # the only way to get all of them
        except (OSError, ValueError, LookupError, struct.error):
            print(f"make_corpora.py: skipped, as it can't be read: {path}", file=sys.stderr)
            continue
        section = sections.setdefault(path.parts[-3], {})
        for key, text in catalog.items():
            if key == "":
                continue  # the catalog's own header
            if is_suitable(key, text):
                section.setdefault(key, text)
            else:
                unsuitable += 1
    return sections, unsuitable


def strings_section(name, entries):
    lines = [f"QVLANG={name}"]
    lines += ['%s="%s"' % (key, text.replace("\n", "\\n")) for key, text in entries.items()]
    return "\n".join(lines) + "\n"


def quoted(text):
    """As C, gettext and ICU write a text."""
    escaped = text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n").replace("\t", "\\t")
    return f'"{escaped}"'


def key_file_value(text):
    escaped = text.replace("\\", "\\\\").replace("\n", "\\n").replace("\t", "\\t")
    blanks = len(escaped) - len(escaped.lstrip(" "))
    return "\\s" * blanks + escaped[blanks:]


def run(*command):
    subprocess.run([str(part) for part in command], check=True, stdout=subprocess.DEVNULL)


def write_peers(folder, size, language, entries):
    """Writes the other libraries' formats; those that are compiled, with their own tools."""
    items = entries.items()
    (folder / "texts.ini").write_text(
        "[texts]\n" + "".join(f"{key}={key_file_value(text)}\n" for key, text in items))
    (folder / "texts.json").write_text(json.dumps(entries, ensure_ascii=False, indent=0))

    messages = folder / language / "LC_MESSAGES"
    messages.mkdir(parents=True, exist_ok=True)
    source = folder / "texts.po"
    header = 'msgid ""\nmsgstr "Content-Type: text/plain; charset=UTF-8\\n"\n'
    source.write_text(header + "".join(
        f"msgid {quoted(key)}\nmsgstr {quoted(text)}\n" for key, text in items))
    run("msgfmt", "-o", messages / f"{size}.mo", source)

    source = folder / f"{language}.txt"
    source.write_text(f"{language} {{\n" + "".join(
        f"{quoted(key)} {{ {quoted(text)} }}\n" for key, text in items) + "}\n")
    run("genrb", "--quiet", "-e", "UTF-8", "-d", folder, source)

    source = folder / "texts.ts"
    source.write_text(
        f'<?xml version="1.0" encoding="utf-8"?>\n<TS version="2.1" language="{language}">'
        "<context><name></name>\n"
        + "".join(f"<message><source>{escape(key)}</source>"
                  f"<translation>{escape(text)}</translation></message>\n" for key, text in items)
        + "</context></TS>\n")
    run("/usr/lib/qt6/bin/lrelease", "-silent", source, "-qm", folder / "texts.qm")


def write_corpus(folder, sections, language):
    # Under another name first, so that a corpus with the final name is complete.
    unfinished = folder.with_suffix(".new")
    shutil.rmtree(unfinished, ignore_errors=True)
    unfinished.mkdir(parents=True)
    (unfinished / "texts.strings").write_text(
        "".join(strings_section(name, entries) for name, entries in sections.items()))
    (unfinished / "language").write_text(language)
    (unfinished / "keys.txt").write_text("".join(f"{key}\n" for key in sections[language]))
    write_peers(unfinished, folder.name, language, sections[language])
    shutil.rmtree(folder, ignore_errors=True)
    unfinished.rename(folder)


def main():
    if len(sys.argv) < 3 or not all(re.fullmatch(r"[1-9]\d*|installed", size) for size in sys.argv[2:]):
        sys.exit(__doc__)
    root = pathlib.Path(sys.argv[1])
    for size in sys.argv[2:]:
        folder = root / size
        if folder.exists() and folder.stat().st_mtime > pathlib.Path(__file__).stat().st_mtime:
            continue
        print(f"{size} entries", flush=True)
        if size != "installed":
            write_corpus(folder, {LANGUAGE: generated_entries(int(size))}, LANGUAGE)
            continue
        sections, unsuitable = installed_entries()
        if not sections:
            print("skipped: this machine has no message catalogs")
            continue
        language = max(sections, key=lambda name: len(sections[name]))
        write_corpus(folder, sections, language)
        total = sum(len(entries) for entries in sections.values())
        note = (f"{total:,} entries of {len(sections)} languages; {unsuitable:,} more are left "
                f"out, because not every format can hold them")
        (folder / "note").write_text(note)
        print(note)


if __name__ == "__main__":
    main()
