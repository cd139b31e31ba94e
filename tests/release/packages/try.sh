#!/usr/bin/env bash
# Run in a root folder that may be changed, with the packages in /try. Installs the Debian packages,
# builds and runs hosts with them in each way, protects a strings file, reads the manual page, removes
# the packages and looks for what they left. Then does the same with the archive.
set -euo pipefail
cd /try

fail() { echo "packages_test: $*" >&2; exit 1; }
equal() { [ "$2" = "$3" ] || fail "$1 is '$2', not '$3'"; }  # WHAT FOUND EXPECTED
quietly() { "$@" >/try/log 2>&1 || { cat /try/log; fail "failed: $*"; }; }

# What only the build of the project needs, and no host.
mapfile -t unneeded < <(dpkg-query --show --showformat '${binary:Package}\n' \
    nettle-dev libexpat1-dev libcli11-dev nlohmann-json3-dev libutfcpp-dev libgtest-dev 2>/dev/null)
if [ ${#unneeded[@]} -gt 0 ]; then
    quietly dpkg --force-depends --remove "${unneeded[@]}"
fi
[ ! -e /usr/include/nettle ] || fail "Nettle's headers are still there"
rm -f /etc/dpkg/dpkg.cfg.d/docker  # a container may leave out manual pages and documents

# Which of the packages' files and folders exist. No package has a script that could make others.
for package in ./*.deb; do
    dpkg-deb --fsys-tarfile "$package" | tar -t | sed 's|^\.||'
    if dpkg-deb --info "$package" | grep -E 'postinst|postrm|preinst|prerm'; then fail "$package has a script"; fi
done | LC_ALL=C sort -u >paths
existing() { while read -r path; do if [ -e "$path" ] || [ -L "$path" ]; then echo "$path"; fi; done <paths; }
existing >before
grep -E '^/usr/lib/$' before >log || fail "the list of paths is wrong"
if grep -i orva before; then fail "a file of the packages is there before they are installed"; fi

version=$(dpkg-deb -f liborvalanguage1_*.deb Version)
equal "what liborvalanguage-dev needs" \
    "$(dpkg-deb -f liborvalanguage-dev_*.deb Depends)" "liborvalanguage1 (= $version)"
[[ $(dpkg-deb -f liborvalanguage1_*.deb Depends) == *libnettle* ]] || fail "the library does not need Nettle"
quietly dpkg --install ./*.deb
equal "what dpkg finds wrong" "$(dpkg --audit)" ""
ldconfig --print-cache | grep -F libOrvaLanguage.so.1 >log || fail "the linker's cache lacks the library"
equal "the command's version" "$(orva-strings --version)" "${version%-*}"
for name in liborvalanguage1 liborvalanguage-dev orva-strings; do
    for file in copyright changelog.gz changelog.Debian.gz; do
        [ -s "/usr/share/doc/$name/$file" ] || fail "there is no /usr/share/doc/$name/$file"
    done
done
for file in README.md CHANGELOG.md docs/building.md docs/format.md; do
    [ -s "/usr/share/doc/liborvalanguage-dev/$file" ] || fail "$file is not installed"
done
if grep -F '](../include/' /usr/share/doc/liborvalanguage-dev/docs/README.md; then
    fail "a document links to what is not beside it"
fi
MANPAGER="cat" quietly man orva-strings
grep -F "strings files" log >said || fail "the manual page is not there"
if readelf --dynamic "$(readlink -f /usr/lib/*/libOrvaLanguage.so.1)" | grep -E "RPATH|RUNPATH"; then
    fail "the library has a run path"
fi

# A host by find_package, which also finds the command, and one by pkg-config.
try_hosts() { # FOLDER ARGUMENT…
    quietly cmake -S hosts -B "$1" "${@:2}"
    quietly cmake --build "$1"
    printf 'QVLANG=en\nGREETING="Hello"\n' >"$1/Host.strings"
    equal "what the C host prints" "$("$1/cmake_c_host")" "2 entries"
    equal "what the C++ host prints" "$("$1/cmake_cpp_host")" "2 entries, GREETING is Hello"
    grep -xE 'IDE_TEXT="[0-9A-F]{64}"' "$1/Shipped.strings" >said || fail "the command protected nothing"
}
cat >lookup.c <<'EOF'
#include <OrvaLanguage/OrvaLanguage.h>
#include <stdio.h>

int main(int count, char** arguments) {
    const char* text = 0;
    if (count == 2 && ZuLoadStrings("", "Lookup.strings", 0) > 0) {
        text = ZuGetLocalizedString(arguments[1]);
    }
    return text == 0 || puts(text) == EOF;
}
EOF
printf 'QVLANG=en\nMENU_OPEN="Open"\nIDE_TEXT="a protected text"\n' >Source.strings

try_hosts by_cmake
equal "the flags of pkg-config" "$(pkg-config --cflags --libs OrvaLanguage | sed 's/ *$//')" -lOrvaLanguage
# shellcheck disable=SC2046  # flags are words
quietly cc lookup.c $(pkg-config --cflags --libs OrvaLanguage) -o lookup
orva-strings protect Source.strings >Lookup.strings
equal "a text" "$(./lookup MENU_OPEN)" Open
equal "a protected text" "$(./lookup IDE_TEXT)" "a protected text"

# A package with that host needs the library's.
mkdir -p debian
printf 'Source: lookup\n\nPackage: lookup\nArchitecture: any\n' >debian/control
dpkg-shlibdeps -O lookup >said
grep -F "liborvalanguage1 (>= $version)" said >log || fail "dpkg-shlibdeps says $(cat said)"

# Removed in an order that leaves no package without what it needs, and without a trace.
if dpkg --remove liborvalanguage1 >log 2>&1; then
    fail "the library can be removed before its headers"
fi
quietly dpkg --purge liborvalanguage-dev liborvalanguage1 orva-strings
existing >after
diff before after || fail "the packages left something behind, or took something with them"
if ./lookup MENU_OPEN 2>said; then fail "the host still finds a library"; fi

# The archive, in a folder of its own.
mkdir "/try/an archive"
tar -xzf ./*.tar.gz -C "/try/an archive" --strip-components=1
try_hosts from_archive -DCMAKE_PREFIX_PATH="/try/an archive"
export PKG_CONFIG_PATH="/try/an archive/lib/pkgconfig"
flags=$(pkg-config --cflags --libs OrvaLanguage)
eval "quietly cc lookup.c $flags -Wl,-rpath,'/try/an archive/lib' -o lookup"
"/try/an archive/bin/orva-strings" protect Source.strings >Lookup.strings
equal "a protected text, with the archive" "$(./lookup IDE_TEXT)" "a protected text"
echo "the packages install, serve hosts, and leave nothing behind"
