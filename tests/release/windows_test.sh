#!/usr/bin/env bash
# Builds the sample windows, and runs each on a display of its own: see windows_test.py.
#
# Usage: windows_test.sh SOURCE ORVA_STRINGS [SCREENSHOTS],
#        with this build's CC, CXX, CFLAGS, CXXFLAGS and GENERATOR; SCREENSHOTS is a folder for
#        qt.png and gtk.png
#
# Skipped where a program or a toolkit is missing: scripts/setup windows installs them.
set -euo pipefail
source=$1 tool=$2
skip() { echo "skipped: $1 is missing; scripts/setup windows installs it"; exit 77; }
for program in Xvfb dbus-run-session openbox scrot xdotool; do
    command -v "$program" >/dev/null || skip "$program"
done
[ -n "$(find /usr/include -path '*/qt6/QtWidgets' -print -quit)" ] || skip "Qt 6"
pkg-config gtk4 || skip "GTK 4"
python=/usr/bin/python3  # the one that Debian's modules are for
"$python" -c 'import gi; gi.require_version("Atspi", "2.0"); gi.require_version("GdkPixbuf", "2.0")' \
    2>/dev/null || skip "Atspi or GdkPixbuf for Python"
[ -x /usr/libexec/at-spi-bus-launcher ] || skip "at-spi2-core"

work=$(mktemp -d)
screenshots=${3:-$work}
session=
end_session() { [ -z "$session" ] || pkill -KILL -s "$session" || true; }
trap 'end_session; rm -rf "$work"' EXIT
fail() {
    printf '%s\n' "$*"
    cat "$work/log"
    exit 1
}

# The library and the windows; the texts are protected with the key of that library.
cmake -S "$source" -B "$work/build" -G "$GENERATOR" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
    -DCMAKE_C_FLAGS="$CFLAGS" -DCMAKE_CXX_FLAGS="$CXXFLAGS" \
    -DORVA_BUILD_TESTS=OFF -DORVA_BUILD_TOOLS=OFF -DORVA_STRINGS_EXECUTABLE="$tool" \
    -DORVA_BUILD_WINDOWS=ON -DORVA_WARNINGS_AS_ERRORS=ON >"$work/log" 2>&1 ||
    fail "The project with the windows does not configure:"
cmake --build "$work/build" --target QtWindow GtkWindow >"$work/log" 2>&1 ||
    fail "The windows do not build:"

# No setting of this user's; GTK draws without the display's OpenGL, and Qt shows itself to readers.
unset DISPLAY WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS LC_ALL LC_MESSAGES
export LANG=C.UTF-8 HOME=$work/home XDG_RUNTIME_DIR=$work/run
export GDK_BACKEND=x11 GSK_RENDERER=cairo QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
mkdir -m 700 "$HOME" "$XDG_RUNTIME_DIR"

check() { # NAME TOOLKIT SCREENSHOT_LANGUAGE SCREENSHOT
    local app=$work/build/examples/$1.app/Contents known=$source/examples/$1/Known.txt status=0
    local checks=(check --fail-on warning --baseline "$known")
    "$tool" "${checks[@]}" "$source/examples/$1/$1.strings" >"$work/log" 2>&1 ||
        fail "The strings file of $1 is not clean:"
    "$tool" "${checks[@]}" --shipped --key-file "$source/cmake/development.key" \
        --allow-development-key "$app/Resources/$1.strings" >"$work/log" 2>&1 ||
        fail "The shipped strings file of $1 is not clean:"

    # The bus starts processes of its own, which may outlive it; a session finds them all.
    setsid -w timeout 120 dbus-run-session -- "$python" "$source/tests/release/windows_test.py" \
        "$app/Linux/$1" "$2" "$3" "$screenshots/$4" >"$work/log" 2>&1 &
    session=$!
    wait "$session" || status=$?
    end_session
    session=
    [ "$status" = 0 ] || fail "$1 ended with $status:"
    grep "^$2: " "$work/log"
}
check QtWindow "Qt 6" Deutsch qt.png
check GtkWindow "GTK 4" العربية gtk.png
