#!/usr/bin/env bash
# Gives the same key files to the build and to orva-strings. They must agree on whether each is
# valid, and on its fingerprint. Then asks the built library for its own.
#
# Usage: key_files_test.sh SOURCE ORVA_STRINGS LIBRARY
set -euo pipefail
source=$1 tool=$2 library=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
file=$work/key

fail() {
    echo "$*"
    cat "$work/log" "$work/shown" 2>/dev/null || true
    exit 1
}

# The verdict of the build and of the command on the file: a fingerprint, or "refused".
by_build() {
    if cmake -S "$source/tests/tools/keys" -B "$work/tree" -DSOURCE="$source" -DORVA_KEY_FILE="$file" >"$work/log" 2>&1; then
        sed -n 's/^-- Protected texts: key with fingerprint //p' "$work/log"
    elif grep -qF "ORVA_KEY_FILE: " "$work/log"; then
        echo refused
    else
        fail "the build failed for another reason:"
    fi
}
by_command() {
    local status=0
    "$tool" key show --key-file "$file" >"$work/shown" 2>&1 || status=$?
    case $status in
    0) sed -n 's/^fingerprint: //p' "$work/shown" ;;
    2) echo refused ;;
    *) fail "orva-strings ended with $status:" ;;
    esac
}

count=0
expect() { # VERDICT WHAT: "refused", or the fingerprint of the key in the file
    local build command
    build=$(by_build)
    command=$(by_command)
    [ "$build" = "$1" ] || fail "$2: the build says '$build', not '$1'"
    [ "$command" = "$1" ] || fail "$2: orva-strings says '$command', not '$1'"
    rm -rf "$file"
    count=$((count + 1))
}
holds() { # VERDICT FORMAT, as printf takes it
    # shellcheck disable=SC2059  # the cases are formats
    printf "$2" >"$file"
    expect "$1" "a file of '$2'"
}

# The fingerprint: the first 16 digits of the SHA-256 of "libOrvaLanguage key fingerprint $upper".
lower=000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1eff
upper=000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1EFF
mixed=000102030405060708090a0B0C0d0e0F101112131415161718191A1b1c1D1eFf
digits63=${lower:1}
good=EC08641AF7AF5D1A

holds $good "$lower\n"
holds $good "$lower\r\n"
holds $good "$lower"
holds $good "$upper\n"
holds $good "$mixed\n"
holds refused "$lower\r"
holds refused "$lower\n\n"
holds refused "$lower\n\r"
holds refused "$lower\r\r\n"
holds refused "$lower\r\n\n"
holds refused "$lower\n$lower\n"
holds refused "\n$lower"
holds refused ""
holds refused "\n"
holds refused "\r\n"
holds refused "$digits63"
holds refused "$digits63\n"
holds refused "${lower}0"
holds refused "${lower}0\n"
holds refused "$lower\0"
holds refused "$lower\0\n"
holds refused "$digits63\0"
holds refused "\0$digits63\n"
holds refused "${lower:0:31}\0${lower:32}"
holds refused " $digits63\n"
holds refused "$digits63 \n"
holds refused " $lower\n"
holds refused "$lower \n"
holds refused "${lower:0:32} ${lower:32}\n"
holds refused "${lower:0:32}\n${lower:32}\n"
holds refused "0x$lower\n"
holds refused "\xEF\xBB\xBF$lower\n"
holds refused "\xEF\xBB\xBF${lower:3}\n"
for other in g G / : @ '`' "\\\\" '\x80' '\xC3' '%%' '#' '"' ';' '[' ']'; do
    holds refused "$other$digits63\n"
    holds refused "$digits63$other\n"
done
printf '%02000d' 0 >"$file"
expect refused "a file of 2000 digits"
mkdir "$file"
expect refused "a folder"
expect refused "no file"
ln -s "$work/missing" "$file"
expect refused "a link to nothing"
printf '%s\n' "$lower" >"$work/target"
ln -s "$work/target" "$file"
expect $good "a link to a key file"
echo "$count key files: the build and orva-strings agree"

# If the key in the file changes, the next build uses the new one.
echo "$lower" >"$file"
by_build >/dev/null
sleep 1  # so that its time differs, even in whole seconds
echo "0${lower:1:62}0" >"$file"
cmake --build "$work/tree" >"$work/log" 2>&1
fingerprint=$("$tool" key show --key-file "$file" | sed -n 's/^fingerprint: //p')
grep -qxF "#define ORVA_KEY_FINGERPRINT \"$fingerprint\"" "$work/tree/KeyFingerprints.h" ||
    fail "the build does not notice that the key file changed:"

[ "$("$tool" key show --library "$library")" = "$("$tool" key show)" ] ||
    fail "the library's file and the command built with it show different keys"
