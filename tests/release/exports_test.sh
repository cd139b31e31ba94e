#!/usr/bin/env bash
# Compares the dynamic symbols of the built library with the readable list of its exports, and both
# with the Mach-O list that the build makes.
#
# Usage: exports_test.sh LIBRARY EXPORTS MACHO_LIST
set -euo pipefail
library=$1 exports=$2 macho_list=$3

# The standard library's long names as people write them, whichever library it is.
readable() {
    sed -E 's/std::(__cxx11::|__1::)?basic_string<char, std::(__1::)?char_traits<char>, std::(__1::)?allocator<char> ?>/std::string/g
            s/std::(__1::)?basic_ifstream<char, std::(__1::)?char_traits<char> ?>/std::ifstream/g'
}

# Everything but the version itself, which is an absolute symbol.
symbols() { nm --dynamic --defined-only --without-symbol-versions "$library" | awk '$2 != "A" {print $3}'; }

expected=$(sed -E '/^(#|$)/d; s/^posix: *//' "$exports" | LC_ALL=C sort)
exported=$(symbols | c++filt | readable | LC_ALL=C sort)
if [ "$expected" != "$exported" ]; then
    echo "The library's exports (right) are not those of the list (left):"
    diff <(echo "$expected") <(echo "$exported")
    exit 1
fi

# Each pattern of the Mach-O list matches one symbol. Together they match all but the "posix:" ones.
matched=$(while read -r pattern; do
    regex="^${pattern//\*/.*}\$"
    symbols | sed 's/^/_/' | grep -E -- "$regex" || echo "nothing matches $pattern"
done <"$macho_list" | LC_ALL=C sort)
wanted=$(symbols | sed 's/^/_/' | grep -vE "^_($(sed -nE 's/^posix: *//p' "$exports" | paste -sd '|'))\$" | LC_ALL=C sort)
if [ "$matched" != "$wanted" ]; then
    echo "What the Mach-O list matches (left) is not what it should (right):"
    diff <(echo "$matched") <(echo "$wanted")
    exit 1
fi
echo "$(echo "$exported" | wc -l) exports, as listed"
