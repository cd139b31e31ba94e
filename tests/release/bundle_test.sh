#!/usr/bin/env bash
# Runs the sample host's bundle, with a copy of Nettle in it, where the system has no Nettle: in a
# root folder with the C and C++ libraries only. Uses the library as built, then as installed.
#
# Usage: bundle_test.sh HOST BUILD   BUILD may be empty: nothing to install
# Exits with 77 if this user may not change the root folder, or if the host can't run there.
set -euo pipefail
host=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root

if nm "$host" | grep -F __asan_init >/dev/null; then
    echo "skipped: the address sanitizer needs the system's whole /proc"
    exit 77
fi
if chroot / true 2>/dev/null; then
    in_root=(chroot "$root")
elif unshare -r chroot / true 2>/dev/null; then
    in_root=(unshare -r chroot "$root")
else
    echo "skipped: neither chroot nor unshare -r chroot is allowed here"
    exit 77
fi

# The bundle, and each library that its host needs, including the loader, where it is looked for.
# Not the bundle's own libraries, and not Nettle.
mkdir -p "$root"
cp -R "${host%/Contents/*}" "$root/"
program=/${host#"${host%/*/Contents/*}/"}
frameworks=$root${program%/*/*}/Frameworks
library=$(ls "$frameworks")
while read -r file; do
    mkdir -p "$root${file%/*}"
    cp -L "$file" "$root$file"
done < <(ldd "$host" | grep -vE "/$library|libnettle" | grep -oE '/[^ ]+')
# The loader and the library use this to find the program.
mkdir -p "$root/proc/self"
ln -s "$program" "$root/proc/self/exe"
nettle=$(ldd "$frameworks/$library" | grep -oE '/[^ ]*libnettle\.so[^ ]*')

run() { LC_ALL=C "${in_root[@]}" "$program" Deutsch 2>&1; }
expect_texts() { # WHAT
    local printed
    printed=$(run) || true
    if ! grep -qx 'IDE_LICENSE Testversion: noch 30 Tage.' <<<"$printed"; then
        printf '%s: the host printed\n%s\n' "$1" "$printed"
        exit 1
    fi
}

# Without the copy it must not start; otherwise this test shows nothing.
if printed=$(run) || ! grep -q "${nettle##*/}" <<<"$printed"; then
    printf 'without Nettle the host printed\n%s\n' "$printed"
    exit 1
fi
cp -L "$nettle" "$frameworks/"
expect_texts "with the library as built"

if [ -n "$build" ]; then
    cmake --install "$build" --prefix "$work/installed" --component runtime >"$work/install.log"
    rm "$frameworks/$library"
    cp "$(find "$work/installed" -name "$library")" "$frameworks/"
    expect_texts "with the library as installed"
fi
echo "the library finds the copy of Nettle beside it"
