"""Compares XLIFF files that went through a translator's program with the one that was exported.

Usage: compare_xliff.py EXPORTED RESULT [--changes ID TARGET] [--rewritten] [--adds-units]
                        [--changes-backslashes] [--loses-returns] [--loses-empty]
       compare_xliff.py --strict EXPORTED UNITS
       compare_xliff.py --write-strings FILE ENTRIES [--repeats]
"""
import sys
import xml.etree.ElementTree as ET

CORE = "{urn:oasis:names:tc:xliff:document:1.2}"
SPACE = "{http://www.w3.org/XML/1998/namespace}space"

# What stands in the strings file after a text's number.
TEXTS = [
    "plain", "Grüße, 你好 😀", r"first\nsecond", "a\tb", 'a <b>&amp;</b> "quoted" \'c\'',
    "a\rb", "  two  blanks", r"a\\backslash", "]]>", "%1 of %2",
]


def write_strings(file, count, repeats):
    """Each text of the reference ends with a full stop and no translation does, so that each
    translation is worth a finding. Every tenth entry has none. With repeats, some texts are the same
    for several keys, with different translations, and one is empty."""
    with open(file, "w", encoding="utf-8", newline="") as out:
        for name, code, end in (("English", "en", "."), ("Deutsch", "de", "")):
            out.write(f"QVLANG={name}\n# orva: language {code}\n")
            for i in range(count):
                text = f"{code} {i} {TEXTS[i % 7]}{TEXTS[i // 7 % 10]}{end}"
                if repeats and code == "en" and i % 50 == 1:
                    text = "The same." if i > 1 else ""
                if code == "en" or i % 10 != 3:
                    out.write(f'# note {i}\nMENU_{i:04d}="{text}"\n')


def local(element):
    return element.tag.rpartition("}")[2]


def texts(file):
    """The source and the target of each unit, by its id."""
    units = {}
    for unit in ET.parse(file).iter():
        if local(unit) == "trans-unit":
            parts = {local(part): part.text or "" for part in unit}
            assert unit.get("id") not in units, f"{unit.get('id')} comes twice"
            units[unit.get("id")] = (parts["source"], parts.get("target"))
    return units


def compare(exported, result, options):
    """That a file came back with each unit that was exported, and each as it was, but for what the
    options say."""
    before, after = texts(exported), texts(result)
    assert before, "nothing was exported"
    if "--adds-units" in options:
        after = {key: text for key, text in after.items() if key in before}
    if "--loses-empty" in options:
        before = {key: text for key, text in before.items() if text[0]}
    assert list(before) == list(after), "other ids, or in another order"
    if "--changes" in options:
        key, text = options[options.index("--changes") + 1 :][:2]
        assert before[key][1] != text
        before[key] = (before[key][0], text)
    for key, (source, target) in before.items():
        expected = (source, target or "")
        found = (after[key][0], after[key][1] or "")
        if "--rewritten" in options:
            assert found[1] not in ("", expected[1]), f"{key}: not rewritten"
            expected, found = expected[:1], found[:1]
        if "--loses-returns" in options:
            expected = tuple(text.replace("\r", "") for text in expected)
        if "--changes-backslashes" in options and "\\" in source:
            continue
        assert expected == found, f"{key}: {expected!r} became {found!r}"


def check_strict(file, count):
    """That a file has the form that the strict schema of XLIFF 1.2 wants."""
    root = ET.parse(file).getroot()
    assert (root.tag, root.attrib) == (CORE + "xliff", {"version": "1.2"})
    (part,) = root
    assert part.tag == CORE + "file"
    assert part.attrib == {"original": "Source.strings", "source-language": "en",
                           "target-language": "de", "datatype": "plaintext"}
    (body,) = part
    assert body.tag == CORE + "body"
    assert len(body) == int(count), f"{len(body)} units"
    for unit in body:
        assert unit.tag == CORE + "trans-unit"
        assert unit.get("id") == unit.get("resname") and unit.get(SPACE) == "preserve"
        has_target = [child.tag for child in unit][1:2] == [CORE + "target"]
        assert [child.tag for child in unit] == (
            [CORE + "source"] + [CORE + "target"] * has_target + [CORE + "note"])
        assert unit.get("approved") == ("yes" if has_target else None)
        assert set(unit.keys()) <= {"id", "resname", SPACE, "approved", "maxwidth", "size-unit"}
        assert unit[-1].attrib == {"from": "developer"}
        assert not any(child.attrib for child in unit[:-1])


if __name__ == "__main__":
    if sys.argv[1] == "--write-strings":
        write_strings(sys.argv[2], int(sys.argv[3]), sys.argv[4:] == ["--repeats"])
    elif sys.argv[1] == "--strict":
        check_strict(sys.argv[2], sys.argv[3])
    else:
        compare(sys.argv[1], sys.argv[2], sys.argv[3:])
