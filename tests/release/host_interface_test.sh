#!/usr/bin/env bash
# What a C++ host may be: built for another standard, with another kind of standard library, with
# names of its own. And what it can't do with the library's table.
#
# Usage: host_interface_test.sh LIBRARY SOURCE, with this build's CXX and CXXFLAGS
set -euo pipefail
library=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
read -ra flags <<<"$CXXFLAGS"
headers=(-I "$source/include")
strict=(-Wall -Wextra -Wpedantic -Werror)

fail() {
    printf '%s\n' "$@"
    exit 1
}

mkdir -p "$work/Host.app/Contents/Any" "$work/Host.app/Contents/Resources"
printf 'QVLANG=en\nGREETING="Hello"\n' >"$work/Host.app/Contents/Resources/Host.strings"

runs() { # WHAT COMPILER FLAG…: a host built this way prints its text
    local what=$1 compiler=$2 host=$work/Host.app/Contents/Any/host printed
    "$compiler" "${strict[@]}" "${headers[@]}" "${@:3}" "$source/tests/release/hosts/host.cpp" -o "$host" \
        "$library" || fail "A host does not compile: $what"
    printed=$(LD_LIBRARY_PATH=${library%/*} "$host") || fail "A host fails: $what"
    [ "$printed" = "2 entries, GREETING is Hello" ] || fail "A host prints '$printed': $what"
    echo "runs: $what"
}

# A host copies no more than the pointer to the table.
copies_no_table() {
    local copied
    copied=$(readelf --wide --symbols --dyn-syms "$work/Host.app/Contents/Any/host" |
        awk '/@ORVALANGUAGE/ && $4 == "OBJECT" && $7 != "UND" && $3 > 8')
    [ -z "$copied" ] || fail "The host has a copy of more than a pointer:" "$copied"
}

for standard in c++17 c++20 c++2b; do
    runs "$standard" "$CXX" "${flags[@]}" -std=$standard
done
runs "no position-independent code" "$CXX" "${flags[@]}" -std=c++17 -fno-pie -no-pie
grep -q 'R_.*_COPY .*gMapLocalizedStrings' <<<"$(readelf --wide --relocs "$work/Host.app/Contents/Any/host")" ||
    fail "The linker did not copy the reference to the table into this host"
copies_no_table
runs "position-independent code" "$CXX" "${flags[@]}" -std=c++17 -fPIE -pie
copies_no_table
runs "neither exceptions nor type information" "$CXX" "${flags[@]}" -std=c++17 -fno-exceptions -fno-rtti
# Sanitizers and libc++'s checks belong to this build. What matters here is another library's
# layout.
if [[ " $CXXFLAGS " == *" -stdlib=libc++ "* ]]; then
    runs "libstdc++" "$CXX" -std=c++17 -stdlib=libstdc++
else
    runs "containers that check themselves" "$CXX" "${flags[@]}" -std=c++17 -D_GLIBCXX_DEBUG
    if clang++-19 -stdlib=libc++ -std=c++17 -x c++ -include vector -fsyntax-only /dev/null 2>/dev/null; then
        [[ $CXXFLAGS == *-fsanitize* ]] || runs "libc++" clang++-19 -std=c++17 -stdlib=libc++
    else
        echo "not run, since this machine lacks it: libc++"
    fi
fi

# A host with its own StringMap calls its own.
cat >"$work/own.cpp" <<'END'
#include <OrvaLanguage/KorString.h>
class StringMap {
public:
    int Size() const { return 7; }
    int Find(const char*) const { return 8; }
};
int main() {
    return KorString::gMapLocalizedStrings.Size() == 0 && StringMap().Size() == 7 &&
                   StringMap().Find("") == 8 ? 0 : 1;
}
END
"$CXX" "${strict[@]}" "${headers[@]}" "${flags[@]}" -std=c++17 "$work/own.cpp" -o "$work/own" "$library"
LD_LIBRARY_PATH=${library%/*} "$work/own" || fail "A host with a StringMap of its own fails"

compiles() { # STATEMENT: quietly
    printf '#include <OrvaLanguage/KorString.h>\nvoid F(KorString*) { %s }\n' "$1" |
        "$CXX" "${headers[@]}" "${flags[@]}" -std=c++17 -fsyntax-only -x c++ - 2>"$work/errors"
}
compiles 'for (auto& entry : KorString::gMapLocalizedStrings) { (void)entry; }' ||
    fail "Walking the table does not compile" "$(cat "$work/errors")"
while read -r statement; do
    ! compiles "$statement" || fail "This compiles: $statement"
done <<'END'
KorString::gMapLocalizedStrings.Clear();
KorString::gMapLocalizedStrings.Insert("KEY_", "value");
KorString::gMapLocalizedStrings = KorString::gMapLocalizedStrings;
for (auto& entry : KorString::gMapLocalizedStrings) { entry.value = "x"; }
KorString::gMapLocalizedStrings.begin()->key = "x";
KorStringMap map;
auto copy = KorString::gMapLocalizedStrings;
delete &KorString::gMapLocalizedStrings;
KorString text;
END

for standard in c++11 c++14; do
    for header in KorString.h KorStringMap.h Texts.hpp; do
        echo "#include <OrvaLanguage/$header>" >"$work/old.cpp"
        ! "$CXX" "${headers[@]}" "${flags[@]}" -std=$standard -fsyntax-only "$work/old.cpp" 2>"$work/errors" ||
            fail "$header compiles for $standard"
        [ "$(sed -n '/error:/p' "$work/errors" | sed '/error:.* C++17/s/.*/clear/')" = clear ] ||
            fail "$header, $standard: not one clear error:" "$(cat "$work/errors")"
    done
    echo '#include <OrvaLanguage/OrvaLanguage.h>' >"$work/old.cpp"
    "$CXX" "${strict[@]}" "${headers[@]}" "${flags[@]}" -std=$standard -fsyntax-only "$work/old.cpp" ||
        fail "OrvaLanguage.h does not compile for $standard"
done
