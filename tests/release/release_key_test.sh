#!/usr/bin/env bash
# A release with its own key, from end to end. Makes the key and builds the library, command and
# sample host with it. Another build's command protects texts, which this one's and the host then
# show. Then the key changes and everything is built again.
#
# Usage: release_key_test.sh SOURCE TOOL, TOOL: orva-strings of a build with another key;
#        with this build's CC, CXX, CFLAGS, CXXFLAGS and GENERATOR
set -euo pipefail
source=$1 other_tool=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
build=$work/build
tool=$build/tools/orva-strings/orva-strings

fail() {
    printf '%s\n' "$@"
    exit 1
}
expect() { # WHAT EXPECTED ACTUAL
    [ "$2" = "$3" ] || fail "$1: expected (left), found (right)" "$(diff <(echo "$2") <(echo "$3"))"
}

run_build() {
    cmake --build "$build" --target orva-strings SampleHost >"$work/build.log" 2>&1 ||
        fail "$(cat "$work/build.log")"
}

# The text of IDE_LICENSE that the host shows with these resources, and its answer without one.
shown() {
    local host
    host=$(echo "$build"/examples/SampleHost.app/Contents/*/SampleHost)
    "$host" "$1" | sed -n 's/^IDE_LICENSE *//p'
}

# Checks that every part of this build holds the key of this file.
holds_key() { # KEY_FILE
    local fingerprint library libraries=0
    fingerprint=$("$other_tool" key show --key-file "$1" | sed -n 's/^fingerprint: //p')
    [[ $fingerprint =~ ^[0-9A-F]{16}$ ]] || fail "no fingerprint: $fingerprint"
    grep -qF "key with fingerprint $fingerprint" "$work/build.log" "$work/configure.log" ||
        fail "the build names another key than $fingerprint"
    expect "the command's key" "fingerprint: $fingerprint
development key: no" "$("$tool" key show)"
    while read -r library; do
        expect "the key of $library" "fingerprint: $fingerprint
development key: no" "$("$other_tool" key show --library "$library")"
        libraries=$((libraries + 1))
    done < <(find "$build" -type f \( -name 'libOrvaLanguage.so.*' -o -name libOrvaLanguage.dylib \))
    expect "how many libraries" 2 $libraries
    expect "the host's own text" "Evaluation copy: 30 days left." "$(shown English)"

    # With this key both commands store the same, whether it is named or built in.
    "$other_tool" protect --key-file "$1" -o "$work/shipped" "$work/readable"
    "$tool" protect "$work/readable" 2>"$work/notes" >"$work/stored"
    cmp "$work/shipped" "$work/stored"
    [ ! -s "$work/notes" ] || fail "the command printed:" "$(cat "$work/notes")"
    expect "what the command shows" 'IDEA="an idea"
IDE_LICENSE="a licence"' "$("$tool" show --reveal "$work/shipped" IDEA IDE_LICENSE)"
    "$tool" reveal "$work/shipped" | cmp - "$work/readable"
    cp "$work/shipped" "$build/examples/SampleHost.app/Contents/Resources/Sample.strings"
    expect "what the host shows" "a licence" "$(shown en)"
}

printf 'QVLANG=en\nIDE_LICENSE="a licence"\nIDEA="an idea"\nIDE1="one"\nIDE ="a blank"\nMENU="menu"\n' \
    >"$work/readable"
"$other_tool" key new "$work/first.key"
"$other_tool" key new "$work/second.key"
cmp -s "$work/first.key" "$work/second.key" && fail "two keys are the same"
cp "$work/first.key" "$work/release.key"

cmake -S "$source" -B "$build" -G "$GENERATOR" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DORVA_BUILD_TESTS=OFF \
    -DCMAKE_C_COMPILER="$CC" -DCMAKE_C_FLAGS="$CFLAGS" -DCMAKE_CXX_COMPILER="$CXX" \
    -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DORVA_KEY_FILE="$work/release.key" >"$work/configure.log" 2>&1 ||
    fail "$(cat "$work/configure.log")"
run_build
holds_key "$work/release.key"
cp "$work/shipped" "$work/shipped_first"

# A build with another key can't read it.
if output=$("$other_tool" show --reveal "$work/shipped" IDE_LICENSE 2>&1); then
    fail "a build with another key shows: $output"
fi
[[ $output == *": error: IDE_LICENSE: the value does not decode"* ]] || fail "$output"

# Another key in the same file: the next build picks it up, with no other step.
cp "$work/second.key" "$work/release.key"
run_build
holds_key "$work/second.key"
cp "$work/shipped_first" "$build/examples/SampleHost.app/Contents/Resources/Sample.strings"
expect "what the host shows of the first key's text" "(no such text)" "$(shown en)"
"$tool" rekey --from "$work/first.key" --to "$work/second.key" "$work/shipped_first" |
    cmp - "$work/shipped"
echo "a build with its own key: built, shown, and built again with another"
