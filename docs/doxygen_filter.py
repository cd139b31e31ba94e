#!/usr/bin/python3
"""Prints a header or a document as Doxygen wants it. docs/Doxyfile names it as a filter."""
import html
import re
import sys
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[1]


def header(text):
    """Makes Doxygen's comments of plain ones, and of the first one the file's.

    A parameter is a name with two blanks behind it. "\\" and "@" would begin commands of Doxygen's.
    """
    text = re.sub(r"^ *(?:/?\*|//).*$", lambda line: re.sub(r"[\\@]", r"\\\g<0>", line[0]),
                  text, flags=re.MULTILINE)
    text = re.sub(r"^( *)//(?= |$)", r"\1///", text, flags=re.MULTILINE)
    text = re.sub(r"^/\*(?= |$)", "/**", text, flags=re.MULTILINE)
    text = re.sub(r"^ \* ([a-z]\w*) {2,}", r" * @param \1 ", text, flags=re.MULTILINE)
    return re.sub(r"\A/\*\*", "/** @file\n *", re.sub(r"\A///", "/// @file\n///", text))


def label(path, anchor):
    """A name for a heading that no other document has."""
    return "-".join(path.relative_to(SOURCE).with_suffix("").parts) + "-" + anchor


def document(text, path):
    """Names each heading, and makes links lead to what is in Doxygen's pages.

    A code span with an odd number of quotes would end where the next one is.
    """

    def heading(found):
        words = re.sub(r"[^\w\- ]", "", found[2].lower()).replace(" ", "-")
        return f"{found[1]} {found[2]} {{#{label(path, words)}}}"

    def link(found):
        name, _, anchor = found[2].partition("#")
        target = (path.parent / name).resolve() if name else path
        if target.suffix == ".md":
            text = found[1].replace("`", "")  # Doxygen would show the quotes
            return f"[{text}](#{label(target, anchor)})" if anchor else f"[{text}]({target})"
        if target.suffix in (".1", ".3", ".5"):
            return f"[{found[1]}](man/{target.name}.html)"
        return found[1]

    def code(found):
        text = html.escape(found[1]).replace("&#x27;", "&apos;")  # "#" would begin a link
        return f"<code>{text}</code>".replace("\\", "\\\\")

    parts = re.split(r"^( *```.*?^ *```$)", text, flags=re.MULTILINE | re.DOTALL)
    for i in range(0, len(parts), 2):  # what is between blocks of code
        parts[i] = re.sub(r"^(##+) (.*)$", heading, parts[i], flags=re.MULTILINE)
        parts[i] = re.sub(r"(?<!!)\[([^]]*)\]\(((?!https?:)[^)\s]*)\)", link, parts[i])
        parts[i] = re.sub(r"""`([^`\n]*["'][^`\n]*)`""", code, parts[i])
    return "".join(parts)


def main():
    path = Path(sys.argv[1]).resolve()
    text = path.read_text()
    print(document(text, path) if path.suffix == ".md" else header(text), end="")


main()
