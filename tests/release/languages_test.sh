#!/usr/bin/env bash
# Builds the hosts in examples/hosts against an installed library, as their first lines say, and runs
# them. Not those in Swift, for which Debian has no compiler, and for Node, which needs a package that
# Debian lacks. Ends with status 77 (skipped) if "scripts/setup hosts" has not run.
#
# Usage: languages_test.sh BUILD SOURCE, with this build's CC, CXX, CFLAGS and CXXFLAGS
set -euo pipefail
build=$1 hosts=$2/examples/hosts

missing=()
for program in clang go gnustep-config rustc; do
    command -v "$program" >/dev/null || missing+=("$program")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "skipped: ${missing[*]} missing; scripts/setup hosts installs what is missing"
    # Many machines have Go or Rust, but hardly any has GNUstep without that part.
    if [[ ${missing[*]} == *gnustep* ]]; then exit 77; fi
    exit 1
fi

# Not in TMPDIR, whose name may have a blank: Go takes none in the flags of pkg-config.
work=$(mktemp -d /tmp/orva-test-XXXXXX)
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT  # Go's cache is read-only
cmake --install "$build" --prefix "$work/prefix" >"$work/log"
pc=$(find "$work/prefix" -name OrvaLanguage.pc)
export PKG_CONFIG_PATH=${pc%/*}
libdir='' flags=()
eval "libdir=$(pkg-config --variable=libdir OrvaLanguage)"  # its output is quoted for the shell
eval "flags=($(pkg-config --cflags --libs OrvaLanguage))"

app=$work/Host.app
mkdir -p "$app/Contents/Linux" "$app/Contents/Resources"
strings=$app/Contents/Resources/Sample.strings
host=$app/Contents/Linux/Host
read -ra c_flags <<<"$CFLAGS"
read -ra cxx_flags <<<"$CXXFLAGS"
read -ra gnustep <<<"$(gnustep-config --objc-flags) $(gnustep-config --base-libs)"

build() { # LANGUAGE COMMAND…: writes $host
    rm -f "$host"
    (cd "$work" && "${@:2}") >"$work/log" 2>&1 ||
        { echo "The host in $1 does not compile:" && cat "$work/log" && exit 1; }
}

# Prints one text, and another for a key that the file lacks. Without a file, it says so and fails.
run() { # LANGUAGE COMMAND…
    local printed
    cp "$hosts/../SampleHost/Sample.strings" "$strings"
    printed=$(LD_LIBRARY_PATH=$libdir LC_ALL=C.UTF-8 LANGUAGE=de_AT "${@:2}") || { echo "The host in $1 fails" && exit 1; }
    [ "$printed" = $'Öffnen …\nNew' ] || { echo "The host in $1 prints '$printed'" && exit 1; }
    rm "$strings"
    if printed=$(LD_LIBRARY_PATH=$libdir "${@:2}" 2>&1) || [ "$printed" != "Host: no texts" ]; then
        echo "The host in $1, without a file, does not fail, or prints '$printed'"
        exit 1
    fi
    echo "runs: $1 ($SECONDS s)"
}

build C "$CC" "${c_flags[@]}" -std=c99 -Wall -Wextra -Werror "$hosts/host.c" -o "$host" "${flags[@]}"
run C "$host"
build C++ "$CXX" "${cxx_flags[@]}" -std=c++17 -Wall -Wextra -Werror "$hosts/host.cpp" -o "$host" "${flags[@]}"
run C++ "$host"
build Objective-C clang -Werror -idirafter "$(gcc -print-file-name=include)" "$hosts/host.m" -o "$host" \
    "${gnustep[@]}" "${flags[@]}"
run Objective-C "$host"
build Rust rustc --edition 2021 --deny warnings -L "$libdir" "$hosts/host.rs" -o "$host"
run Rust "$host"
build Go env -u CC -u CXX GOCACHE="$work/cache" GOFLAGS=-mod=mod go build -o "$host" "$hosts/host.go"
run Go "$host"
run Python python3 "$hosts/host.py" "$app"
