#!/usr/bin/env bash
# Texts.hpp in hosts of several kinds, each with every warning that a strict host may ask for; and
# Texts.h in strict C.
#
# Usage: texts_header_test.sh LIBRARY SOURCE, with this build's CC, CFLAGS, CXX and CXXFLAGS
set -euo pipefail
library=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
read -ra c_flags <<<"$CFLAGS"
read -ra flags <<<"$CXXFLAGS"
strict=(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-qual -Werror
    -I "$source/include")
strict_cxx=("${strict[@]}" -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual)

fail() {
    printf '%s\n' "$@"
    exit 1
}

app=$work/Host.app/Contents
mkdir -p "$app/Any" "$app/Resources"
strings=$app/Resources/Host.strings
printf 'QVLANG=English\nGREETING="Hello"\nQVLANG=Deutsch\nGREETING="Hallo"\n' >"$strings"

runs() { # WHAT FLAG…: a host built this way prints its text
    local printed
    "$CXX" "${strict_cxx[@]}" "${flags[@]}" "${@:2}" "$source/tests/release/hosts/texts_host.cpp" \
        -o "$app/Any/host" "$library" || fail "A host does not compile: $1"
    printed=$(LANG=de_DE.UTF-8 LANGUAGE=fr LC_ALL='' LC_MESSAGES='' LD_LIBRARY_PATH=${library%/*} \
        "$app/Any/host" "$strings") || fail "A host fails: $1"
    [ "$printed" = "2 entries, GREETING is Hallo" ] || fail "A host prints '$printed': $1"
    echo "runs: $1"
}
runs "C++17" -std=c++17
runs "C++20, optimised" -std=c++20 -O3
runs "neither exceptions nor type information" -std=c++17 -fno-exceptions -fno-rtti

# Without Sections, a host's standard library need not be that of the library.
cat >"$work/host.cpp" <<'CPP'
#include <OrvaLanguage/Texts.hpp>
int main() {
    const auto loaded = OrvaLanguage::LoadPreferred({"de"}, "Host.strings", nullptr);
    return loaded.section == "Deutsch" && OrvaLanguage::CopyText("GREETING") == "Hallo" &&
                   !OrvaLanguage::PreferredLanguages().empty() &&
                   OrvaLanguage::TextOr("MISSING", nullptr) == nullptr ? 0 : 1;
}
CPP
if clang++-19 -stdlib=libc++ -std=c++17 -x c++ -include vector -fsyntax-only /dev/null 2>/dev/null; then
    clang++-19 -stdlib=libc++ -std=c++17 "${strict_cxx[@]}" "$work/host.cpp" -o "$app/Any/host" "$library" ||
        fail "A host does not compile: libc++"
    LANG=de LC_ALL='' LC_MESSAGES='' LD_LIBRARY_PATH=${library%/*} "$app/Any/host" || fail "A host fails: libc++"
    echo "runs: libc++"
else
    echo "not run, since this machine lacks it: libc++"
fi

cat >"$work/host.c" <<'C'
#include <OrvaLanguage/Texts.h>
int main(void) {
    char* copy = OrvaCopyText("GREETING");
    return copy == NULL && !OrvaIsLoaded("") && OrvaTextOr("GREETING", "")[0] == '\0' ? 0 : 1;
}
C
"$CC" "${strict[@]}" "${c_flags[@]}" -std=c99 "$work/host.c" -o "$work/host" "$library" ||
    fail "A C99 host does not compile"
LD_LIBRARY_PATH=${library%/*} "$work/host" || fail "A C99 host fails"
! "$CXX" -I "$source/include" -fsyntax-only -x c++ "$work/host.c" 2>"$work/errors" ||
    fail "Texts.h compiles as C++"
grep -q 'error.*Texts\.hpp' "$work/errors" || fail "Texts.h does not lead C++ to Texts.hpp:" "$(cat "$work/errors")"
