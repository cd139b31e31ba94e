#!/usr/bin/env bash
# Configures the project with one switch after another and checks what it reports and decides.
#
# Usage: configure_test.sh SOURCE ORVA_STRINGS,
#        with this build's CC, CXX, CFLAGS, CXXFLAGS and GENERATOR
set -euo pipefail
source=$1 tool=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset CMAKE_BUILD_TYPE
tree=$work/native

fail() {
    printf '%s\n' "$*"
    cat "$work/log"
    exit 1
}

# Forgets the switches of the call before. The log is joined into one line, since messages wrap.
configure() { # ARGUMENT…
    local status=0
    cmake -S "$source" -B "$tree" -G "$GENERATOR" -U 'ORVA_*' -U BUILD_SHARED_LIBS -U CMAKE_BUILD_TYPE \
        "$@" >"$work/log.lines" 2>&1 || status=$?
    tr -s ' \n' ' ' <"$work/log.lines" >"$work/log"
    return $status
}
accepts() { configure "$@" || fail "refused: $*"; }
refuses() { # SENTENCE ARGUMENT…
    if configure "${@:2}"; then
        fail "accepted: ${*:2}"
    fi
    says "$1"
}
says() { grep -qF -- "$1" "$work/log" || fail "it does not say '$1':"; }
does_not_say() { ! grep -qF -- "$1" "$work/log" || fail "it says '$1':"; }
has() { grep -qxF -- "$1" "$tree/CMakeCache.txt" || fail "the cache does not have $1:"; }
makes() { cmake --build "$tree" --target "$1" >"$work/log" 2>&1 || fail "it does not make $1:"; }
has_target() { cmake --build "$tree" --target help | grep -E "(^|[^A-Za-z_-])$1(\$|[^A-Za-z_-])" >/dev/null; }

# The build type.
accepts -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_C_FLAGS="$CFLAGS" -DCMAKE_CXX_FLAGS="$CXXFLAGS"
says "-- Build type: Release (CMAKE_BUILD_TYPE was not given)"
has CMAKE_BUILD_TYPE:STRING=Release
grep -q -- ' -O3 -DNDEBUG ' "$tree/compile_commands.json" || fail "the build is not optimised"
does_not_say "is off"
for part in OrvaLanguage orva-strings SampleHost library_tests; do
    has_target $part || fail "by default there is no $part"
done
accepts -DCMAKE_BUILD_TYPE=Debug
does_not_say "Build type"
has CMAKE_BUILD_TYPE:STRING=Debug
if [ "$GENERATOR" = Ninja ]; then
    cmake -S "$source" -B "$work/multi" -G "Ninja Multi-Config" -DCMAKE_CXX_COMPILER="$CXX" \
        -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DORVA_BUILD_TOOLS=OFF >"$work/log" 2>&1 || fail "no Multi-Config build:"
    does_not_say "Build type"
fi

# A shared library only.
refuses "BUILD_SHARED_LIBS=OFF: libOrvaLanguage is a shared library only, because a static one could not hide its internal names." \
    -DBUILD_SHARED_LIBS=OFF
accepts -DBUILD_SHARED_LIBS=ON

# A Nettle in a folder of its own is found there, after one beside the library.
if [ "$GENERATOR" = Ninja ] && [ "$(uname)" = Linux ]; then
    mkdir -p "$work/nettle"
    ln -s "$(pkg-config --variable=libdir nettle)/libnettle.so" "$work/nettle/"
    sed "s|^libdir=.*|libdir=$work/nettle|" "$(pkg-config --variable=pcfiledir nettle)/nettle.pc" >"$work/nettle/nettle.pc"
    for prefixes in "$work/nettle" ""; do
        PKG_CONFIG_PATH=$prefixes cmake -S "$source" -B "$work/run_path$prefixes" -G Ninja -DCMAKE_C_COMPILER="$CC" \
            -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DCMAKE_INSTALL_RPATH=/own -DORVA_BUILD_TOOLS=OFF \
            >"$work/log" 2>&1 || fail "no build with Nettle in '$prefixes':"
        grep -F ORIGIN "$work/run_path$prefixes/build.ninja" >"$work/log"
        says "-Wl,-rpath,\"\\\$\$ORIGIN:/own${prefixes:+:$prefixes}\""
    done
fi

# The tools, and what needs them.
accepts -DORVA_BUILD_TOOLS=OFF
says "-- ORVA_BUILD_TESTS is off: it needs ORVA_BUILD_TOOLS."
says "-- ORVA_BUILD_EXAMPLES is off: it needs ORVA_BUILD_TOOLS or ORVA_STRINGS_EXECUTABLE."
for part in orva-strings SampleHost library_tests; do
    if has_target $part; then
        fail "without tools there is $part"
    fi
done
accepts -DORVA_BUILD_TOOLS=OFF -DORVA_BUILD_TESTS=OFF -DORVA_BUILD_EXAMPLES=OFF
does_not_say "is off"
for part in TESTS BENCHMARKS FUZZERS; do
    refuses "ORVA_BUILD_$part can't be ON: it needs ORVA_BUILD_TOOLS." -DORVA_BUILD_TOOLS=OFF -DORVA_BUILD_$part=ON
done
refuses "ORVA_BUILD_EXAMPLES can't be ON: it needs ORVA_BUILD_TOOLS or ORVA_STRINGS_EXECUTABLE." \
    -DORVA_BUILD_TOOLS=OFF -DORVA_BUILD_EXAMPLES=ON
accepts -DORVA_BUILD_TOOLS=OFF -DORVA_BUILD_EXAMPLES=ON -DORVA_STRINGS_EXECUTABLE="$tool"
refuses "ORVA_STRINGS_EXECUTABLE: there is no file $work/none." -DORVA_STRINGS_EXECUTABLE="$work/none"

# A default stays a default if the folder was configured before.
accepts
cmake -S "$source" -B "$tree" -DORVA_BUILD_TOOLS=OFF >"$work/log" 2>&1 || fail "refused in a tree with tools:"
says "-- ORVA_BUILD_TESTS is off: it needs ORVA_BUILD_TOOLS."
cmake -S "$source" -B "$tree" -DORVA_BUILD_TOOLS=ON >"$work/log" 2>&1 || fail "refused in a tree without tools:"
has_target library_tests || fail "the tests stay off after the tools are on again"

# No install rules.
accepts -DORVA_INSTALL=OFF
cmake --install "$tree" --prefix "$work/prefix" >"$work/log" 2>&1 || fail "installing fails without install rules:"
[ ! -e "$work/prefix" ] || fail "installed: $(find "$work/prefix")"

# Cross-builds: for another system as far as CMake knows, but with the native compilers.
tree=$work/cross
cat >"$work/toolchain.cmake" <<END
set(CMAKE_SYSTEM_NAME $(uname))
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER "$CC")
set(CMAKE_CXX_COMPILER "$CXX")
END
accepts -DCMAKE_TOOLCHAIN_FILE="$work/toolchain.cmake" -DCMAKE_C_FLAGS="$CFLAGS" -DCMAKE_CXX_FLAGS="$CXXFLAGS"
says "-- ORVA_BUILD_TESTS is off: cross-built programs do not run here; set CMAKE_CROSSCOMPILING_EMULATOR."
says "-- ORVA_BUILD_EXAMPLES is off: a cross-built orva-strings does not run here; set ORVA_STRINGS_EXECUTABLE to one that does."
has_target orva-strings || fail "a cross-build has no orva-strings"
if has_target SampleHost; then
    fail "a cross-build has a sample host whose texts it can't protect"
fi
refuses "ORVA_BUILD_TESTS can't be ON: cross-built programs do not run here; set CMAKE_CROSSCOMPILING_EMULATOR." \
    -DORVA_BUILD_TESTS=ON
refuses "ORVA_BUILD_EXAMPLES can't be ON: a cross-built orva-strings does not run here; set ORVA_STRINGS_EXECUTABLE to one that does." \
    -DORVA_BUILD_EXAMPLES=ON
accepts -DCMAKE_CROSSCOMPILING_EMULATOR=env
does_not_say "is off"

# The given tool protects with this build's key, whatever its own is.
"$tool" key new "$work/key"
accepts -UCMAKE_CROSSCOMPILING_EMULATOR -DORVA_STRINGS_EXECUTABLE="$tool" -DORVA_KEY_FILE="$work/key"
does_not_say "ORVA_BUILD_EXAMPLES is off"
makes SampleHost_orva_strings_Sample_strings
shipped=$tree/examples/SampleHost.app/Contents/Resources/Sample.strings
grep -qE '^IDE_LICENSE="[0-9A-F]{64,}"$' "$shipped" || fail "the sample's text is not protected"
"$tool" reveal --key-file "$work/key" "$shipped" | cmp - "$source/examples/SampleHost/Sample.strings" ||
    fail "the sample's text is protected with another key"
# Another key in the same file. The build must notice without being reconfigured by hand.
"$tool" key new "$work/other"
sleep 1  # so that its time differs, even in whole seconds
cat "$work/other" >"$work/key"
makes SampleHost_orva_strings_Sample_strings
"$tool" reveal --key-file "$work/other" "$shipped" 2>"$work/log" | cmp - "$source/examples/SampleHost/Sample.strings" ||
    fail "the sample's text is not protected with the key that the file holds now:"
[ ! -e "$tree/tools/orva-strings/orva-strings" ] || fail "the build made a tool of its own for that"
echo "every switch does what it says"
