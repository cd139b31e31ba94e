#!/usr/bin/env bash
# Compares the library's binary interface with that of the last release, packaging/abi/: hosts that
# were built then must still run. What is added passes. Then shows that three faults would not pass.
#
# Usage: abi_test.sh BUILD SOURCE [--update]
#   --update  write the baseline anew: docs/versions.md says when
#
# Compiles the library itself, with the debugging information that abidiff reads; BUILD has what its
# build generates. With g++ on x86-64, as the baseline was made.
# Exits with 77 if abidiff is missing (scripts/setup check installs it).
set -euo pipefail
build=$1 source=$2 update=${3:-}
baseline=$source/packaging/abi/libOrvaLanguage.so.1-x86_64.xml
command -v abidiff >/dev/null || { echo "skipped: abidiff is missing; scripts/setup check installs it"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "abi_test: $*" >&2; exit 1; }

afresh() {
    rm -rf "$work/source"
    mkdir "$work/source"
    cp -R "$source"/{api,clearing,crypt,include,platform,protection,strings} "$work/source/"
    cp "$build/OrvaLanguage.map" "$work/map"
}
link_with() { # SOURCE…: from these, compiled now, and from the other objects
    local from=$work/source
    mkdir -p "$work/objects"
    (cd "$work/objects" && g++ -std=c++17 -g -fPIC -fvisibility=hidden -fvisibility-inlines-hidden \
        -I"$from" -I"$from/include" -I"$build/generated" -c "${@/#/"$from/"}")
    g++ -shared -Wl,-soname,libOrvaLanguage.so.1 -Wl,--version-script="$work/map" "$work"/objects/*.o \
        -o "$work/libOrvaLanguage.so"
}
compatible() { abidiff --no-added-syms "$baseline" "$work/libOrvaLanguage.so" >"$work/report" 2>&1; }
change() { # FILE FROM TO
    grep -F -e "$2" "$1" >/dev/null || fail "${1##*/} does not have: $2"
    sed -i "s|$2|$3|" "$1"
}
refused() { # WHAT SAID
    if compatible; then fail "accepted: $1"; fi
    grep -E "$2" "$work/report" || { cat "$work/report"; fail "refused for another reason: $1"; }
}

afresh
# The other folders define nothing that is exported; the linker leaves what they lack undefined.
mapfile -t all < <(cd "$work/source" && ls {api,strings}/*.cpp platform/ResourcePathFolder.cpp)
link_with "${all[@]}"
if [ "$update" = --update ]; then
    abidw --headers-dir "$work/source/include" --drop-private-types --exported-interfaces-only --no-corpus-path \
        --no-comp-dir-path --no-show-locs --no-elf-needed --no-parameter-names --type-id-style hash \
        "$work/libOrvaLanguage.so" | sed "s|path='$work/source/|path='|" >"$baseline"
    exit
fi
compatible || { cat "$work/report"; fail "a host that was built for the release may not run"; }

change "$work/map" "        ZuOpenBundle;" ""
link_with api/ZuLoadStrings.cpp
refused "a symbol is removed" 'ZuOpenBundle'

afresh
change "$work/source/include/OrvaLanguage/OrvaLanguage.h" "ORVA_EXPORT int ZuLoadStrings" "ORVA_EXPORT long ZuLoadStrings"
change "$work/source/api/ZuLoadStrings.cpp" "int ZuLoadStrings" "long ZuLoadStrings"
link_with api/ZuLoadStrings.cpp
refused "a signature is changed" "'int' to 'long int'"

afresh
change "$work/source/include/OrvaLanguage/KorStringMap.h" "std::size_t valueLength;" "std::size_t valueLength; long more = 0;"
link_with api/StaticObjects.cpp strings/StringMapView.cpp api/ZuLoadStrings.cpp
refused "what a host reads is laid out differently" "data member insertion"
echo "hosts of the last release still run with this library"
