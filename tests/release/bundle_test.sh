#!/usr/bin/env bash
# Runs the sample host's bundle, with a copy of Nettle in it, where the system has no Nettle: in a root
# folder that holds the C and C++ libraries and nothing else. Once with the library as it was built,
# once as it is installed.
#
# Usage: bundle_test.sh HOST BUILD   BUILD may be empty: nothing to install
# Ends with 77 if this user may not change the root folder, or if the host can't run in this one.
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

# The bundle, and each library that its host needs at the place where it is looked for, the loader
# among them; but not those of the bundle, and not Nettle.
mkdir -p "$root"
cp -R "${host%/Contents/*}" "$root/"
program=/${host#"${host%/*/Contents/*}/"}
frameworks=$root${program%/*/*}/Frameworks
library=$(ls "$frameworks")
while read -r file; do
    mkdir -p "$root${file%/*}"
    cp -L "$file" "$root$file"
done < <(ldd "$host" | grep -vE "/$library|libnettle" | grep -oE '/[^ ]+')
# The loader and the library ask the system where the program is.
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

# Without the copy it can't start, or else this test shows nothing.
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
