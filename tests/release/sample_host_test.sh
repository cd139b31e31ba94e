#!/usr/bin/env bash
# Runs the sample host as the demo does and checks its output.
#
# Usage: sample_host_test.sh [LOADER] HOST    LOADER: what runs the host, if this system does not
set -euo pipefail
host=("$@")

expect() { # STATUS OUTPUT ARGUMENT…
    local status=0 printed
    printed=$("${host[@]}" "${@:3}" 2>&1) || status=$?
    if [ "$status" != "$1" ] || [ "$printed" != "$2" ]; then
        printf 'SampleHost %s ended with %s, not %s, and printed\n%s\nnot\n%s\n' \
            "${*:3}" "$status" "$1" "$printed" "$2"
        exit 1
    fi
}

english='6 entries, section English
APP_TITLE   Sample host
MENU_OPEN   Open…
MENU_QUIT   Quit
ASK_SAVE    Save your changes?
They are lost otherwise.
IDE_LICENSE Evaluation copy: 30 days left.
NOT_THERE   (no such text)'
german='6 entries, section Deutsch
APP_TITLE   Beispielprogramm
MENU_OPEN   Öffnen …
MENU_QUIT   Beenden
ASK_SAVE    Änderungen sichern?
Sie gehen sonst verloren.
IDE_LICENSE Testversion: noch 30 Tage.
NOT_THERE   (no such text)'
french='6 entries, section Français
APP_TITLE   Programme d'\''exemple
MENU_OPEN   Ouvrir…
MENU_QUIT   Quitter
ASK_SAVE    Enregistrer les modifications ?
Elles seront perdues sinon.
IDE_LICENSE Version d'\''évaluation : encore 30 jours.
NOT_THERE   (no such text)'

expect 0 "$english"
expect 0 "$english" english
expect 0 "$german" Deutsch
expect 0 "$french" Français
expect 0 "$english" Nederlands
expect 1 'SampleHost: no texts in Missing.strings' English Missing.strings

# The shipped file does not show the protected text.
strings=${!#%/*/*}/Resources/Sample.strings
grep -qE '^IDE_LICENSE="[0-9A-F]{64,}"$' "$strings"
if grep -q 'Evaluation' "$strings"; then
    echo "the protected text is readable in $strings"
    exit 1
fi
