#!/usr/bin/env bash
# A week with a translator: texts go out, the source moves on meanwhile, what comes back is imported and
# checked, and the host shows it.
#
# Usage: translators_week_test.sh ORVA_STRINGS SAMPLE_HOST    SAMPLE_HOST: in its bundle, SampleHost.app
set -euo pipefail

tool=$1
bundle=${2%%/SampleHost.app/*}/SampleHost.app
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -R "$bundle" "$work/"
cd "$work"
fail() { printf '%s\n' "$*"; exit 1; }

expect() { # STATUS MESSAGES ARGUMENT…: runs the command
    local status=0 printed
    printed=$("$tool" "${@:3}" 2>&1) || status=$?
    [ "$status $printed" = "$1 $2" ] ||
        fail "orva-strings ${*:3}: $status, not $1" "$printed" "instead of" "$2"
}

cat >Source.strings <<'END'
QVLANG=English
# orva: language en
APP_TITLE="Sample host"
# In the menu File
MENU_OPEN="Open…"
MENU_QUIT="Quit"
ASK_SAVE="Save your changes?"
IDE_LICENSE="Evaluation copy"
QVLANG=Deutsch
# orva: language de
APP_TITLE="Sample host"
MENU_OPEN="Aufmachen …"
ASK_SAVE="Änderungen sichern?"
IDE_LICENSE="Testversion"
END
cp Source.strings sent.strings
expect 0 'xliff/de.xlf: wrote 4 entries, 1 without a translation, left out 1 protected' \
    export --all -o xliff Source.strings

# The translator mends one text, adds one, is not sure of one, and improves one whose source is old.
sed -e 's|>Aufmachen …<|>Öffnen …<|' -e 's|<source>Quit</source>|&<target>Beenden</target>|' \
    -e 's|<target>Sample host|<target state="needs-review-translation">Beispielprogramm|' \
    -e 's|>Änderungen sichern?<|>Änderungen speichern?<|' xliff/de.xlf >back.xlf
sed -i 's/"Save your changes?"/"Save the document?"/' Source.strings

expect 0 'back.xlf:17: warning: ASK_SAVE: passed over, since its source is no longer the text of the reference
Source.strings: changed 1 entry, added 1, 1 is not finished' import --create Source.strings back.xlf
diff sent.strings Source.strings >changes || true
diff changes - <<'END'
7c7
< ASK_SAVE="Save your changes?"
---
> ASK_SAVE="Save the document?"
12c12,13
< MENU_OPEN="Aufmachen …"
---
> MENU_OPEN="Öffnen …"
> MENU_QUIT="Beenden"
END

# The check names the text that is out of date, until it is translated.
disabled=(--disable protected-texts-differ)
expect 1 "Source.strings:14:11: warning: ASK_SAVE: the reference's text has changed since, but not this translation [stale]
1 warning in 1 file" check --fail-on warning "${disabled[@]}" --base sent.strings Source.strings
sed -i 's/"Änderungen sichern?"/"Dokument sichern?"/' Source.strings
expect 0 'no findings in 1 file' \
    check --fail-on warning "${disabled[@]}" --base sent.strings Source.strings

"$tool" protect -o Sample.strings Source.strings 2>log || fail "$(cat log)"
expect 0 'no findings in 1 file' \
    check --shipped --allow-development-key "${disabled[@]}" Sample.strings
mv Sample.strings SampleHost.app/Contents/Resources/Sample.strings
shown=$("SampleHost.app/${2#*/SampleHost.app/}" Deutsch)
[ "$shown" = '6 entries, section Deutsch
APP_TITLE   Sample host
MENU_OPEN   Öffnen …
MENU_QUIT   Beenden
ASK_SAVE    Dokument sichern?
IDE_LICENSE Testversion
NOT_THERE   (no such text)' ] || fail "the host shows" "$shown"
