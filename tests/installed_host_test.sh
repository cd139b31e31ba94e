#!/usr/bin/env bash
# Installs the build to a folder of its own, then compiles and runs hosts in C and in C++ that have
# nothing but that: found with pkg-config, and with CMake's find_package.
#
# Usage: installed_host_test.sh BUILD HOSTS, with CC, CXX, CFLAGS, CXXFLAGS and GENERATOR as the build has them
set -euo pipefail
build=$1 hosts=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/prefix"  # an installed tree may be moved
pc=$(find "$work/prefix" -name OrvaLanguage.pc)
export PKG_CONFIG_PATH=${pc%/*}
libdir=$(pkg-config --variable=libdir OrvaLanguage)

mkdir -p "$work/Host.app/Contents/Any" "$work/Host.app/Contents/Resources"
printf 'QVLANG=en\nGREETING="Hello"\n' >"$work/Host.app/Contents/Resources/Host.strings"

run() { # PROGRAM: it must print the text of GREETING
    cp "$1" "$work/Host.app/Contents/Any/"
    local printed
    printed=$(LD_LIBRARY_PATH=$libdir "$work/Host.app/Contents/Any/${1##*/}")
    if [ "$printed" != "$2" ]; then
        echo "${1##*/} printed '$printed', not '$2'"
        exit 1
    fi
    echo "${1##*/}: $printed"
}

# shellcheck disable=SC2046,SC2086  # flags are words
{
    $CC $CFLAGS -Wall -Wextra -Wpedantic -Werror -std=c99 $(pkg-config --cflags OrvaLanguage) \
        "$hosts/host.c" -o "$work/c_host" $(pkg-config --libs OrvaLanguage)
    $CXX $CXXFLAGS -Wall -Wextra -Wpedantic -Werror -std=c++17 $(pkg-config --cflags OrvaLanguage) \
        "$hosts/host.cpp" -o "$work/cpp_host" $(pkg-config --libs OrvaLanguage)
}
run "$work/c_host" "2 entries"
run "$work/cpp_host" "2 entries, GREETING is Hello"

cp "$hosts/host.c" "$hosts/host.cpp" "$hosts/CMakeLists.txt" "$work/"
cmake -S "$work" -B "$work/cmake" -G "$GENERATOR" -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
    -DCMAKE_C_FLAGS="$CFLAGS" -DCMAKE_CXX_FLAGS="$CXXFLAGS" >"$work/cmake.log"
cmake --build "$work/cmake" >"$work/build.log" || { cat "$work/build.log"; exit 1; }
run "$work/cmake/cmake_c_host" "2 entries"
run "$work/cmake/cmake_cpp_host" "2 entries, GREETING is Hello"
