#!/usr/bin/env bash
# Installs the build under one prefix after another: pkg-config's answers are clean under each, and
# the target "uninstall" removes all that was installed and nothing else.
#
# Usage: prefixes_test.sh BUILD
set -euo pipefail
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "prefixes_test: $*" >&2; exit 1; }
equal() { [ "$2" = "$3" ] || fail "$1 is '$2', not '$3'"; }  # WHAT FOUND EXPECTED
install_under() { DESTDIR=$work/stage cmake --install "$build" --prefix "$1" >"$work/log"; }
uninstall() { cmake --build "$build" --target uninstall >"$work/log" 2>&1; }
ask() { pkg-config "$@" OrvaLanguage; }
find_pc() { # FOLDER
    PKG_CONFIG_LIBDIR=$(dirname "$(find "$1" -name OrvaLanguage.pc)")
    export PKG_CONFIG_LIBDIR
}
unset PKG_CONFIG_PATH PKG_CONFIG_SYSROOT_DIR

# The system's prefixes, and none: absolute paths, and nothing to add where the compiler looks anyway.
for prefix in /usr /usr/local /; do
    install_under "$prefix"
    find_pc "$work/stage"
    equal "the prefix under $prefix" "$(ask --variable=prefix)" "${prefix%/}"
    equal "the include folder under $prefix" "$(ask --variable=includedir)" "${prefix%/}/include"
    [[ $(ask --cflags --libs) != *[./][./]* ]] || fail "under $prefix: $(ask --cflags --libs)"
    [ "$prefix" != /usr ] || equal "what /usr needs" "$(ask --cflags | tr -d ' ')" ""
    rm -r "$work/stage"
done

# Any other prefix: the tree may be moved.
cmake --install "$build" --prefix "$work/first" >"$work/log"
mv "$work/first" "$work/moved"
find_pc "$work/moved"
[ -f "$(eval echo "$(ask --variable=includedir)")/OrvaLanguage/OrvaLanguage.h" ] ||
    fail "the moved tree's headers are not in $(ask --variable=includedir)"

# Uninstall, without and with DESTDIR. What others put there stays, hidden or not.
uninstall || fail "it fails where all files are missing already: $(cat "$work/log")"
cmake --install "$build" --prefix "$work/prefix" >"$work/log"
mkdir -p "$work/prefix/share/others"
touch "$work/prefix/include/OrvaLanguage/.other" "$work/prefix/share/others/file"
uninstall || fail "$(cat "$work/log")"
grep -F -e "-- Removing: $work/prefix/include/OrvaLanguage/OrvaLanguage.h" "$work/log" >"$work/said" ||
    fail "it does not say what it removes: $(cat "$work/log")"
equal "what is left" "$(cd "$work/prefix" && find . ! -type d | LC_ALL=C sort)" \
    "./include/OrvaLanguage/.other
./share/others/file"
equal "what is left of the project's folders" \
    "$(cd "$work/prefix" && find . -type d -name OrvaLanguage)" ./include/OrvaLanguage
if uninstall; then fail "a second uninstall does not say that there is nothing to remove"; fi
grep -F "There is nothing to remove" "$work/log" >"$work/said" || fail "$(cat "$work/log")"

install_under /opt/orva
DESTDIR=$work/stage uninstall || fail "$(cat "$work/log")"
equal "what is left under DESTDIR" "$(find "$work/stage" ! -type d)" ""
echo "each prefix is clean, and nothing stays behind"
