#!/usr/bin/env bash
# Builds the library inside projects with settings of their own, runs their hosts, and checks that
# neither side changes the other.
#
# Usage: parents_test.sh SOURCE ORVA_STRINGS,
#        with this build's CC, CXX, CFLAGS, CXXFLAGS and GENERATOR; and, where there is one, with
#        STATIC_OBJECTS_TESTS, the test of the static objects' order
set -euo pipefail
source=$1 tool=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# How this system's linker and strip leave out what is not needed.
case $(uname) in
Darwin) drop_unused=-dead_strip strip_all=-x ;;
*) drop_unused=--gc-sections strip_all=--strip-all ;;
esac

fail() {
    printf '%s\n' "$*"
    cat "$work/log"
    exit 1
}
configure() { # FOLDER ARGUMENT…
    cmake -S "$source/tests/release/parents" -B "$work/$1" -G "$GENERATOR" -DCMAKE_C_COMPILER="$CC" \
        -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_C_FLAGS="$CFLAGS" -DSETTINGS="$work/$1.cmake" "${@:2}" \
        >"$work/log" 2>&1
}
build() { # FOLDER OUTPUT: the library and a host, which must print this
    cmake --build "$work/$1" --target parent_host >"$work/log" 2>&1 || fail "the project $1 does not build:"
    local app=$work/$1/Host.app/Contents printed
    mkdir -p "$app/MacOS" "$app/Frameworks" "$app/Resources"
    cp "$work/$1/parent_host" "$app/MacOS/"
    cp "$(library_of "$1")" "$app/Frameworks/"  # where a host looks for it on macOS
    printf 'QVLANG=en\nGREETING="Hello"\n' >"$app/Resources/Host.strings"
    printed=$("$app/MacOS/parent_host")
    [ "$printed" = "$2" ] || fail "the host of the project $1 printed '$printed', not '$2'"
}
library_of() { # FOLDER
    find "$work/$1" -name Host.app -prune -o \
        \( -name libOrvaLanguage.so.1 -o -name libOrvaLanguage.dylib \) -print
}
ours() { # FOLDER: how the library's sources are compiled
    grep -F '"command": ' "$work/$1/compile_commands.json" | grep -F " $source/" ||
        fail "the library's sources are not among the commands of the project $1"
}

# The shipped library still shows its key, whatever the compiler and the linker leave out.
shows_key() { # FOLDER KEY: the two lines
    strip "$strip_all" -o "$work/stripped" "$(library_of "$1")"
    "$tool" key show --library "$work/stripped" >"$work/log" 2>&1 || true
    [ "$(cat "$work/log")" = "$2" ] || fail "the stripped library in the project $1 does not show '$2', but:"
}

# An old standard, GNU extensions, no exceptions and no RTTI, by variables and by options. No build
# type, every function and datum in a section that the linker may drop, and static libraries except
# ours.
cat >"$work/strict.cmake" <<'END'
set(CMAKE_CXX_STANDARD 14)
set(CMAKE_CXX_EXTENSIONS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE OFF)
add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:-std=gnu++14;-fno-exceptions;-fno-rtti>")
add_compile_options(-ffunction-sections -fdata-sections)
END
echo "add_link_options(LINKER:$drop_unused)" >>"$work/strict.cmake"
strict=(-DCMAKE_CXX_FLAGS="$CXXFLAGS -std=gnu++11 -fno-exceptions -fno-rtti"
    -DHOST="$source/tests/release/parents/strict_host.cpp")
configure strict "${strict[@]}" || fail "the project strict does not configure without the library:"
settings() { sed -nE '/:(INTERNAL|STATIC)=/d; s/^(CMAKE_[^:]*):[A-Z]*/\1/p' "$work/strict/CMakeCache.txt"; }
settings >"$work/settings"
if configure strict "${strict[@]}" -DORVA_SOURCE="$source" -DBUILD_SHARED_LIBS=OFF; then
    fail "accepted: BUILD_SHARED_LIBS=OFF in a project around the library"
fi
grep -qF "BUILD_SHARED_LIBS=OFF: libOrvaLanguage" "$work/log" || fail "it does not say what is wrong:"
echo 'set(BUILD_SHARED_LIBS ON)' >>"$work/strict.cmake"
configure strict "${strict[@]}" -DORVA_SOURCE="$source" || fail "the project strict does not configure:"
if grep -qE "Build type|is off" "$work/log"; then
    fail "the library makes choices that belong to the project:"
fi
diff "$work/settings" <(settings) ||
    fail "the library changed the project's settings (left) to those on the right"
ours strict >"$work/commands"
if grep -F -e -std=gnu++14 "$work/commands"; then
    fail "the project's -std=gnu++14 reaches the library's sources"
fi
if grep -F " $source/tools/" "$work/commands"; then
    fail "the command is built, although the project strict did not request it"
fi
build strict "2 entries"
shows_key strict "$("$tool" key show --key-file "$source/cmake/development.key")"
cmake --install "$work/strict" --prefix "$work/prefix" >"$work/log" 2>&1 || fail "nothing is installed:"
[ "$(cd "$work/prefix" && find . ! -type d)" = ./bin/parent_host ] || fail "installed: $(find "$work/prefix")"

# A new standard, warnings as errors, link-time optimisation, and a key of its own.
cat >"$work/modern.cmake" <<'END'
set(CMAKE_CXX_STANDARD 20)
include(CheckIPOSupported)
check_ipo_supported(RESULT has_ipo)
set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ${has_ipo})
message(STATUS "Link-time optimisation: ${has_ipo}")
END
"$tool" key new "$work/key"
fingerprint=$("$tool" key show --key-file "$work/key" | sed -n 's/^fingerprint: //p')
configure modern -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DCMAKE_BUILD_TYPE=MinSizeRel -DORVA_WARNINGS_AS_ERRORS=ON -DORVA_BUILD_TOOLS=ON \
    -DHOST="$source/tests/release/hosts/host.cpp" -DORVA_SOURCE="$source" -DORVA_KEY_FILE="$work/key" ||
    fail "the project modern does not configure:"
grep -qxF -e "-- Protected texts: key with fingerprint $fingerprint" "$work/log" ||
    fail "it does not name the key's fingerprint, $fingerprint:"
grep -F -e "Link-time optimisation" "$work/log"
ours modern >"$work/commands"
if grep -vF -e -std=c++20 "$work/commands"; then
    fail "the library is not compiled as the project's C++20"
fi
build modern "2 entries, GREETING is Hello"
shows_key modern "fingerprint: $fingerprint
development key: no"

# Link-time optimisation may reorder the static objects of several sources.
if [ -n "${STATIC_OBJECTS_TESTS:-}" ]; then
    for project in strict modern; do
        ORVA_LIBRARY=$(library_of "$project") "$STATIC_OBJECTS_TESTS" >"$work/log" 2>&1 ||
            fail "the static objects of the project $project are not made in their order:"
    done
fi
echo "the library and the projects around it leave each other as they are"
