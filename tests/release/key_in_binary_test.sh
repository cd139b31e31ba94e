#!/usr/bin/env bash
# Builds the library with a key of its own and searches it for the key material and everything
# derived from it. Then checks that a build is repeatable, and tries invalid key files.
#
# Usage: key_in_binary_test.sh SOURCE GENERATOR, with this build's CXX
set -euo pipefail
source=$1 generator=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

configure() { # FOLDER KEY_FILE
    cmake -S "$source" -B "$work/tree-$1" -G "$generator" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DORVA_BUILD_TESTS=OFF \
        -DORVA_BUILD_EXAMPLES=OFF -DORVA_BUILD_TOOLS=OFF -DORVA_KEY_FILE="$2" >"$work/configure-$1.log" 2>&1
}

key=$(openssl rand -hex 32)
echo "$key" >"$work/key"
configure build "$work/key"
cmake --build "$work/tree-build" --target OrvaLanguage >"$work/build.log" 2>&1 ||
    { cat "$work/build.log"; exit 1; }
library=$(find "$work/tree-build" -type f \( -name 'libOrvaLanguage.so.*' -o -name libOrvaLanguage.dylib \))
hex=$(od -An -v -tx1 "$library" | tr -d ' \n')

# Anywhere in the file; the first and the last eight bytes of each are searched separately.
contains() { [[ $hex == *"$1"* ]]; }
contains "$(printf 'QVLANG=' | od -An -tx1 | tr -d ' \n')" || { echo "the search finds nothing"; exit 1; }

derived=$(for counter in 1 2 3 4 5; do
    # shellcheck disable=SC2059  # the format is the bytes
    printf "$(printf '%032x' "$counter" | sed 's/../\\x&/g')" |
        openssl enc -aes-256-ecb -nopad -K "$key" | od -An -v -tx1 | tr -d ' \n'
    echo
done)
[ ${#derived} = $((5 * 33 - 1)) ] || { echo "no derived values: $derived"; exit 1; }
for secret in "$key" $derived; do
    for part in "${secret:0:16}" "${secret: -16}"; do
        if contains "$part"; then
            echo "the library holds a part of the key or of a derived value"
            exit 1
        fi
    done
done
if grep -qiE "${key:0:16}|${key: -16}" <<<"$(strings -a "$library")"; then
    echo "the library holds digits of the key"
    exit 1
fi
if grep -q KeyShares <<<"$(git -C "$source" status --porcelain 2>/dev/null)"; then
    echo "the build wrote its shares into the source tree"
    exit 1
fi

# The same key gives the same shares; another gives others.
configure again "$work/key"
cmp "$work/tree-build/generated/KeyShares.h" "$work/tree-again/generated/KeyShares.h"
openssl rand -hex 32 >"$work/other"
configure other "$work/other"
if cmp -s "$work/tree-build/generated/KeyShares.h" "$work/tree-other/generated/KeyShares.h"; then
    echo "two keys have the same shares"
    exit 1
fi

refused() { # SENTENCE FILE
    if configure refused "$2"; then
        echo "accepted: $1"
        exit 1
    fi
    grep -qF -- "$1" <<<"$(tr -s ' \n' ' ' <"$work/configure-refused.log")" || { cat "$work/configure-refused.log"; exit 1; }
    rm -rf "$work/tree-refused"
}
refused "ORVA_KEY_FILE: $work/missing is missing or is a folder." "$work/missing"
mkdir "$work/folder"
refused "ORVA_KEY_FILE: $work/folder is missing or is a folder." "$work/folder"
: >"$work/empty"
refused "must hold 64 hexadecimal digits on one line, but has 0 bytes." "$work/empty"
echo "${key:1}" >"$work/short"
refused "must hold 64 hexadecimal digits on one line, but has 64 bytes." "$work/short"
printf '%s\n\n' "$key" >"$work/two"
refused "must hold 64 hexadecimal digits on one line, but has 66 bytes." "$work/two"
printf '%s\0' "${key:1}" >"$work/nul"
refused "must hold 64 hexadecimal digits, but has other characters." "$work/nul"
printf '%02000d' 0 >"$work/long"
refused "must hold 64 hexadecimal digits on one line, but has 2000 bytes." "$work/long"
echo "${key:1}g" >"$work/letters"
refused "must hold 64 hexadecimal digits, but has other characters." "$work/letters"

configure development ""
grep -qF "Protected texts: the development key, which is public; for a release, set ORVA_KEY_FILE to a key file" "$work/configure-development.log"
if grep -q "development" "$work/configure-build.log" "$work/configure-again.log"; then
    echo "a build with its own key mentions the development key"
    exit 1
fi
echo "neither the key nor what is derived from it is in the library"
