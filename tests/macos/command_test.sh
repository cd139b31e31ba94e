#!/usr/bin/env bash
# Compares the command as it was built for macOS with that of this machine: what they print, and that
# each decrypts what the other has encrypted.
#
# Usage: command_test.sh NATIVE LOADER COMMAND    LOADER: what runs the command
set -euo pipefail
native=$1
other=("$2" "$3")
sample=$(dirname "$0")/../../examples/SampleHost/Sample.strings
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

output() { # COMMAND ARGUMENT…
    "$@" 2>&1 || echo "exit status $?"
}

compare() { # ARGUMENT…
    local expected found
    expected=$(output "$native" "$@")
    found=$(output "${other[@]}" "$@")
    if [ "$found" != "$expected" ]; then
        printf 'orva-strings %s printed\n%s\nnot\n%s\n' "$*" "$found" "$expected"
        exit 1
    fi
}

"$native" protect -o "$work/native" "$sample"
"${other[@]}" protect -o "$work/other" "$sample"
compare --version
compare --help
compare protect --help
compare key show
for file in native other; do
    compare reveal "$work/$file"
    compare show --reveal --language Deutsch "$work/$file"
    compare show --all-languages --format json "$work/$file"
    compare export --language Deutsch --code English=en --code Deutsch=de --reveal -o - "$work/$file"
    compare sections "$work/$file"
    compare sections --format json "$work/$file"
done
compare show "$work/missing"
printf '<xliff version="1.2"><file source-language="en" target-language="de"><body><trans-unit id="MENU_QUIT"><source>Quit</source><target>Schluss</target></trans-unit></body></file></xliff>' >"$work/de.xlf"
compare import --code English=en --code Deutsch=de --check "$work/native" "$work/de.xlf"
compare import --code English=en --code Deutsch=de "$work/native" "$sample"
compare protect --key-file "$sample" "$sample"
[ "$("${other[@]}" reveal "$work/native")" = "$(cat "$sample")" ]
