#!/usr/bin/env bash
# Inspects the library as it was built for macOS: what it exports, what it imports from which
# library, how hosts find it, where it runs, and the order in which its static objects are made.
#
# Usage: macho_test.sh LIBRARY ARCHITECTURE MINIMUM_MACOS VERSION
# LLVM_NM and LLVM_OBJDUMP name LLVM's nm and objdump; by default Debian's. On a Mac, the system's are
# LLVM's.
set -euo pipefail
export LC_ALL=C
library=$1 architecture=$2 minimum=$3 version=$4
nm=${LLVM_NM:-llvm-nm-19} objdump=${LLVM_OBJDUMP:-llvm-objdump-19}
root=$(dirname "$0")/../..

failed=0
expect() { # WHAT EXPECTED FOUND
    if [ "$2" != "$3" ]; then
        echo "$1: expected (left), found (right):"
        diff <(echo "$2") <(echo "$3") || true
        failed=1
    fi
}

listed() { sed -E '/^(#|$)/d' "$1" | sort; }

# Writes the standard library's long names as a person does.
readable() {
    sed -E 's/std::__1::basic_string<char, std::__1::char_traits<char>, std::__1::allocator<char> ?>/std::string/g
            s/std::__1::basic_ifstream<char, std::__1::char_traits<char> ?>/std::ifstream/g'
}

symbols=$("$nm" --arch="$architecture" -m "$library")
headers=$("$objdump" --macho --arch="$architecture" --private-headers "$library")

expect "exports" "$(listed "$root/api/exports.txt" | grep -v '^posix:')" \
    "$("$nm" --arch="$architecture" --extern-only --defined-only --format=just-symbols "$library" |
        sed 's/^_//' | c++filt -n | readable | sort)"
expect "weak symbols, which another library's may replace" "" \
    "$(grep -E 'weak (private )?external' <<<"$symbols" | grep -v '(undefined)' || true)"
expect "imports" "$(listed "$root/tests/macos/imports-$architecture.txt")" \
    "$(sed -nE 's/^ *\(undefined\) (weak )?external _?([^ ]+) \(from ([^)]+)\)$/\3: \2/p' <<<"$symbols" | sort)"
expect "imports without a library" "" \
    "$(grep '(undefined)' <<<"$symbols" | grep -vE ' \(from (CoreFoundation|libSystem|libc\+\+)\)$' || true)"
expect "libraries" "/System/Library/Frameworks/CoreFoundation.framework/Versions/A/CoreFoundation
/usr/lib/libSystem.B.dylib
/usr/lib/libc++.1.dylib" "$(awk '$1 == "cmd" { load = $2 ~ /DYLIB$/ && $2 != "LC_ID_DYLIB" }
    load && $1 == "name" { print $2 }' <<<"$headers" | sort)"
expect "run paths" "" "$(grep LC_RPATH <<<"$headers" || true)"

expect "install name" "@executable_path/../Frameworks/libOrvaLanguage.dylib" \
    "$("$objdump" --macho --arch="$architecture" --dylib-id "$library" | tail -n 1)"
expect "current and compatibility version" "current $version
compatibility ${version%%.*}.0.0" \
    "$(grep -A 6 'cmd LC_ID_DYLIB' <<<"$headers" | sed -nE 's/^ *(current|compatibility) version /\1 /p')"
expect "system" "platform macos
minos $minimum" \
    "$(grep -A 5 'cmd LC_BUILD_VERSION' <<<"$headers" | sed -nE 's/^ *(platform|minos) /\1 /p')"
expect "namespace" TWOLEVEL "$(grep -A 3 '^Mach header' <<<"$headers" | grep -o TWOLEVEL || true)"

# One initialiser, which registers a destructor for each object in the order of their definitions.
# Code for arm64 does not name the objects.
expect "initialisers" "__GLOBAL__sub_I_StaticObjects.cpp" \
    "$("$objdump" --macho --arch="$architecture" --section=__DATA_CONST,__mod_init_func "$library" |
        sed -nE 's/^0x[0-9a-f]+ 0x[0-9a-f]+ //p')"
case $architecture in
x86_64) objects=$'gMapDecodedStrings\ngMapLocalizedStrings\ngDecodeMutex\ngCryptMutex' ;;
*) objects=$'object\nobject\nobject\nobject' ;;
esac
expect "destructors, in the order of their registration" "$objects" \
    "$("$objdump" --macho --arch="$architecture" --disassemble --no-show-raw-insn "$library" 2>/dev/null |
        awk '/^[^ \t].*:$/ { inside = /GLOBAL__sub_I_/; object = "object" }
            inside && match($0, /_g[A-Z][A-Za-z]*/) { object = substr($0, RSTART + 1, RLENGTH - 1) }
            inside && /___cxa_atexit/ { print object }')"

[ $failed = 0 ]
echo "$library ($architecture): as it should be"
