#!/usr/bin/env bash
# What `orva-strings fix --diff` and `orva-strings sync --diff` print, patch(1) applies: the result is
# what the command makes without --diff.
#
# Usage: fix_diff_test.sh ORVA_STRINGS
set -euo pipefail
tool=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

fail() {
    echo "$*"
    cat -A changes
    exit 1
}

mark=$'\xEF\xBB\xBF'
count=0
command=(fix)
expect() { # NAME FORMAT: a file of these bytes, as printf makes them
    # shellcheck disable=SC2059  # the format is the test's own
    printf "$2" >"$1"
    local status=0
    "$tool" "${command[@]}" --diff "$1" >changes || status=$?
    [ "$status" = 1 ] || fail "'$2': --diff ended with $status"
    "$tool" "${command[@]}" - <"$1" >fixed
    cp "$1" before
    patch -p0 --binary --quiet <changes || fail "'$2': patch refuses this:"
    cmp "$1" fixed || fail "'$2': patched otherwise:"
    patch -R --binary --quiet "$1" changes || fail "'$2': patch can't take this back:"
    cmp "$1" before || fail "'$2': taken back otherwise:"
    rm "$1"
    count=$((count + 1))
}

expect Sample.strings ' QVLANG=en\nABCD =1\nABCD =1\nEFGH=2\n'
expect 'With blanks' ' QVLANG=en\n'
expect unended ' QVLANG=en'
expect unended2 'QVLANG=en\nABCD=1\nABCD=1'
expect windows " QVLANG=en\r\n\r\nABCD=\"1\"\r\n${mark}ABCD=\"1\"\r\n"
expect returns 'QVLANG=en\rABCD=1\rABCD=1\r'
expect returns3 'QVLANG=en\r\r'
expect returns2 'QVLANG=en\r ABCD=1'
expect marks "${mark}QVLANG=en\n1\n2\n3\n4\n5\n6\n7\n${mark}8\n9\n10\n11\n12\n13\n14\n15\n16\n$mark"
expect dashes 'QVLANG=en\n -- A=1\n++ A =1\n-- A =1\n++ A =1\n++ B =2\n'
expect binary ' QVLANG=en\nABCD =\0\xFF\x1B\n'
command=(sync --fill reference --prune)
en='QVLANG=en\nAAAA=1\nBBBB=2\nCCCC=3\nDDDD=4\nEEEE=5\nFFFF=6\nGGGG=7\nHHHH=8\nIIII=9\n'
expect 'Some sample.strings' "${en}QVLANG=de\nBBBB=2\nAAAA=1\n"
expect unended "${en}QVLANG=de\nBBBB=2\nAAAA=1"
expect header "${en}QVLANG=de"
expect kept "${en}QVLANG=de\nAAAA=1\nBBBB=2\nCCCC=3\nDDDD=4\nEEEE=5\nFFFF=6\nGGGG=7\nHHHH=8"
expect pruned "${en}${en/en/de}XXXX=1"
expect apart "${en}QVLANG=de\nBBBB=2\nAAAA=1\nCCCC=3\nDDDD=4\nEEEE=5\nFFFF=6\nGGGG=7\nIIII=9\nHHHH=8\n"
expect near "${en}QVLANG=de\nBBBB=2\nAAAA=1\nCCCC=3\nDDDD=4\nEEEE=5\nFFFF=6\nHHHH=8\nGGGG=7\nIIII=9\n"
expect windows "${en}QVLANG=de\r\nBBBB=2\r\n# a\nAAAA=1\r\n\r\n# end\r"
echo "$count diffs applied and taken back"
