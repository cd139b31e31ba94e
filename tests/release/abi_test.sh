#!/usr/bin/env bash
# Compares the library's binary interface with that of the last release, packaging/abi/: hosts that
# were built then must still run. What is added passes. Then shows that three faults would not pass.
#
# Usage: abi_test.sh LIBRARY SOURCE [--update], with this build's CXX
#   --update  write the baseline anew: docs/versions.md says when
#
# Exits with 77 where the library has no debugging information or another processor than the
# baseline, or where abidiff is missing (scripts/setup check installs it).
set -euo pipefail
library=$1 source=$2 update=${3:-}
build=${library%/*}
baseline=$source/packaging/abi/libOrvaLanguage.so.1-x86_64.xml
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "abi_test: $*" >&2; exit 1; }
skip() { echo "skipped: $*"; exit 77; }
command -v abidiff >/dev/null || skip "abidiff is missing"
readelf --wide --sections "$library" | grep -F .debug_info >/dev/null || skip "$library has no debugging information"
readelf --file-header "$library" | grep -F X86-64 >/dev/null || skip "$library is not for x86-64"

if [ "$update" = --update ]; then
    abidw --headers-dir "$source/include" --drop-private-types --exported-interfaces-only --no-corpus-path --no-comp-dir-path --no-show-locs \
        --no-elf-needed --no-parameter-names --type-id-style hash "$library" | sed "s|path='$source/|path='|" >"$baseline"
    exit
fi

compatible() { # LIBRARY
    abidiff --no-added-syms "$baseline" "$1" >"$work/report" 2>&1
}
compatible "$library" || { cat "$work/report"; fail "a host that was built for the release may not run"; }

# Links the library again, from its objects and these, each made of a changed copy of the sources.
# The changed sources come first on the compiler's path.
link_with() { # SOURCE…
    local objects=() one compile
    rm -rf "$work/objects"
    cp -R "$build/CMakeFiles" "$work/objects"
    for one in "$@"; do
        compile=$(sed -nE "s|^ *\"command\": \"([^ ]+) (.*) -o [^ ]+ -c $source/$one\",?\$|\1 -I'$work/changed' -I'$work/changed/include' \2|p" \
            "$build/compile_commands.json")
        [ -n "$compile" ] || fail "the build does not compile $one"
        (cd "$build" && eval "${compile//\\\"/\"} -o '$work/objects/orva_objects.dir/$one.o' -c '$work/changed/$one'")
    done
    mapfile -t objects < <(find "$work/objects"/orva_{objects,platform}.dir -name '*.o')
    "$CXX" -shared -Wl,-soname,libOrvaLanguage.so.1 -Wl,--version-script="$work/map" "${objects[@]}" \
        "$(pkg-config --variable=libdir nettle)/libnettle.so" -o "$work/libOrvaLanguage.so"
}
afresh() {
    rm -rf "$work/changed"
    mkdir "$work/changed"
    cp -R "$source"/{api,strings,include} "$work/changed/"
    cp "$build/OrvaLanguage.map" "$work/map"
}
change() { # FILE FROM TO
    grep -F -e "$2" "$1" >/dev/null || fail "${1##*/} does not have: $2"
    sed -i "s|$2|$3|" "$1"
}
refused() { # WHAT SAID
    if compatible "$work/libOrvaLanguage.so"; then fail "accepted: $1"; fi
    grep -E "$2" "$work/report" || { cat "$work/report"; fail "refused for another reason: $1"; }
}

afresh
link_with
compatible "$work/libOrvaLanguage.so" || { cat "$work/report"; fail "refused without a fault"; }

change "$work/map" "        ZuOpenBundle;" ""
link_with
refused "a symbol is removed" 'ZuOpenBundle'

afresh
change "$work/changed/include/OrvaLanguage/OrvaLanguage.h" "ORVA_EXPORT int ZuLoadStrings" "ORVA_EXPORT long ZuLoadStrings"
change "$work/changed/api/ZuLoadStrings.cpp" "int ZuLoadStrings" "long ZuLoadStrings"
link_with api/ZuLoadStrings.cpp
refused "a signature is changed" "return type changed|'int' to 'long int'"

afresh
change "$work/changed/include/OrvaLanguage/KorStringMap.h" "std::size_t valueLength;" "std::size_t valueLength; long more = 0;"
link_with api/StaticObjects.cpp strings/StringMapView.cpp
refused "what a host reads is laid out otherwise" "data member insertion"
echo "hosts of the last release still run with this library"
