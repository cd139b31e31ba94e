#!/usr/bin/env bash
# Texts go to translators' programs and come back: each recipe of docs/translating.md, run as it is
# written there, with 3,000 entries. The exported file is XLIFF 1.2 in its strict form.
#
# Usage: translating_test.sh SOURCE_FOLDER ORVA_STRINGS
#
# Skipped where a program is missing: scripts/setup exchange installs them.
set -euo pipefail

source=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
PATH=$(cd "$(dirname "$2")" && pwd):/usr/lib/qt6/bin:$PATH
python=/usr/bin/python3
for program in podebug pofilter pomerge xliff2po po2xliff po2csv csv2po lconvert "$python"; do
    command -v "$program" >/dev/null || { echo "skipped: $program is missing; scripts/setup exchange installs it"; exit 77; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# The blocks of the document in this language whose text matches a pattern.
blocks() {
    awk -v language="$1" -v pattern="$2" '
        /^```/ && inside { if (text ~ pattern) printf "%s", text; inside = 0; next }
        $0 == "```" language { inside = 1; text = ""; next }
        inside { text = text $0 "\n" }' "$source/docs/translating.md"
}

run() { # PATTERN: runs the recipes that match it
    blocks sh "$1" >recipe.sh
    [ -s recipe.sh ] || { echo "no recipe for $1" >&2; exit 1; }
    cat recipe.sh
    bash -euo pipefail recipe.sh 2>log || { cat log >&2; return 1; }
}

compare() { # RESULT [OPTION…]: compares what came back with what was exported
    "$python" "$here/compare_xliff.py" xliff/de.xlf "$@"
}

# The document's own file, then one of many texts.
blocks strings QVLANG >Source.strings
run 'export --all -o'
"$python" "$here/compare_xliff.py" --strict xliff/de.xlf 1
grep -qF "<note from=\"developer\">The menu's first entry; %1 is the file's name</note>" xliff/de.xlf ||
    { cat xliff/de.xlf; exit 1; }
grep -qF 'maxwidth="20" size-unit="char"' xliff/de.xlf

# Released with another source text, which the translation still has.
sed 's/"Open %1."/"Open"/' Source.strings >Released.strings
run 'export --all --base'
grep -qF '<target state="needs-review-translation">%1 öffnen.</target>' xliff/de.xlf ||
    { cat xliff/de.xlf; exit 1; }

export_texts() { # [OPTION]: exports 3,000 entries
    "$python" "$here/compare_xliff.py" --write-strings Source.strings 3000 "$@"
    run 'export --all -o'
    "$python" "$here/compare_xliff.py" --strict xliff/de.xlf 3000
    compare xliff/de.xlf
}

lost=  # what a program loses, as a command for sed
imports() { # RESULT [OLD NEW]: what came back changes the strings file in this line, or not at all
    cp Source.strings before.strings
    cp xliff/de.xlf exported.xlf
    [ "$1" = xliff/de.xlf ] || cp "$1" xliff/de.xlf
    run 'orva-strings import'
    mv exported.xlf xliff/de.xlf
    diff <(sed "$lost" before.strings) <(sed "$lost" Source.strings) >changes || true
    if [ $# = 1 ]; then
        [ ! -s changes ]
    else
        grep '^[<>]' changes | diff - <(printf '< %s\n> %s\n' "$2" "$3")
    fi || { cat log changes; exit 1; }
    mv before.strings Source.strings
}

edit() { # FILE: edits one text, which must come back alone
    grep -qF 'de 490 plainplain' "$1"
    sed -i 's/de 490 plainplain/Geändert/' "$1"
}
edited=(--changes MENU_0490 Geändert)
edit_imported=('MENU_0490="de 490 plainplain"' 'MENU_0490="Geändert"')

export_texts --repeats
imports xliff/de.xlf
run podebug
compare pseudo.xlf --rewritten
podebug xliff/de.xlf same.xlf 2>log || { cat log >&2; exit 1; }
imports same.xlf
run pofilter
compare doubtful.xlf --loses-empty
imports doubtful.xlf
edit doubtful.xlf
imports doubtful.xlf "${edit_imported[@]}"
run '-of ts'
edit de.ts
run '-if ts'
compare from-ts.xlf "${edited[@]}" --loses-returns
lost='s/\r//g' imports from-ts.xlf "${edit_imported[@]}"

# pomerge would mix up the translations of texts that are the same.
run 'de.xlf de.po\n$'
if run 'grep msgctxt' >found 2>&1; then
    echo "texts that are the same went unnoticed" >&2
    exit 1
fi
grep -qxF 'msgctxt "MENU_0051"' found
export_texts
run 'de.xlf de.po\n$'
run 'grep msgctxt'
edit de.po
run 'pomerge.* de.po'
compare from-po.xlf "${edited[@]}"
imports from-po.xlf "${edit_imported[@]}"
run po2csv
edit table.csv
run csv2po
compare from-table.xlf "${edited[@]}" --changes-backslashes

# What po2xliff adds is of no use, but does no harm.
po2xliff -t xliff/de.xlf de.po unused.xlf 2>log || { cat log >&2; exit 1; }
compare unused.xlf --adds-units
imports unused.xlf
