#!/usr/bin/env bash
# Tries what scripts/package built in a root folder of its own: tests/release/packages/try.sh says how.
# Run as root, on Debian.
#
# Usage: packages_test.sh PACKAGES [--fresh]
#
# The root folder is this system without the project's tree and without what only its own build needs,
# in an overlay that keeps every change in memory. With --fresh, it is a new Debian with a compiler,
# CMake and pkg-config alone, from the network; this takes a minute.
# Exits with 77 if this user may not mount an overlay.
set -euo pipefail
packages=$(realpath "$1") fresh=${2:-}
source=$(cd "$(dirname "$0")/../.." && pwd)

if [ -z "${PACKAGES_TEST_MOUNTS:-}" ]; then
    unshare --mount --pid --fork true 2>/dev/null || { echo "skipped: mounting is not allowed here"; exit 77; }
    PACKAGES_TEST_MOUNTS=own exec unshare --mount --pid --fork "$0" "$@"  # they end with this process
fi
try_mount() { # ARGUMENT…
    mount "$@" || { echo "skipped: this mount is not allowed here"; exit 77; }
}
work=/run/orva-packages-test
mkdir -p "$work"
try_mount -t tmpfs none "$work"
cd "$work"
root=$work/root
mkdir upper overlay root try
cp "$packages"/*.deb "$packages"/*.tar.gz "$source/tests/release/packages/"* try/
cp -R "$source/tests/release/hosts" try/

if [ "$fresh" = --fresh ]; then
    mapfile -t sources < <(find /etc/apt -name sources.list -o -name debian.sources)
    mmdebstrap --quiet --variant=apt --include=g++,cmake,ninja-build,pkg-config,dpkg-dev,man-db,libnettle8,libexpat1 \
        "$(sh -c '. /etc/os-release; echo "$VERSION_CODENAME"')" "$root" "${sources[@]}"
else
    try_mount -t overlay none -o "lowerdir=/,upperdir=$work/upper,workdir=$work/overlay" "$root"
    try_mount -t tmpfs none "$root$source"
fi
try_mount --bind /dev "$root/dev"
try_mount -t proc none "$root/proc"
mkdir "$root/try"
try_mount --bind "$work/try" "$root/try"
env -i CMAKE_GENERATOR=Ninja PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 chroot "$root" bash /try/try.sh
