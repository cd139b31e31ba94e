#!/usr/bin/env bash
# Shows that macho_test.sh can fail: links the library anew with one fault after the other, and looks
# for the complaint that names it.
#
# Usage: macho_faults_test.sh BUILD VERSION    BUILD: the build for macOS on x86-64
set -euo pipefail
build=$1 version=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$build"

unset LIBRARY_PATH  # clang would look for libraries of this machine

library=Frameworks/libOrvaLanguage.dylib
faulty=$work/faulty.dylib
link=$(ninja -t commands $library | tail -n 1)
static_objects=CMakeFiles/orva_objects.dir/api/StaticObjects.cpp.o
compile=$(ninja -t commands $static_objects | tail -n 1)

# Prints a command edited by sed, which must change it.
edited() { # COMMAND SED_SCRIPT
    local command
    command=$(sed -E "$2" <<<"$1")
    if [ "$command" = "$1" ]; then
        echo "nothing to edit: $2" >&2
        return 1
    fi
    echo "$command"
}

# To another file, and without the warning about a list of exports that names what is not there.
link=$(edited "$link" "s# -o $library # -o $faulty #")
link=$(edited "$link" "s# -Wl,-fatal_warnings##")

# Links with the command edited by sed, and expects a complaint about one thing.
fault() { # COMPLAINT SED_SCRIPT
    local command output
    rm -f "$faulty"
    command=$(edited "$link" "$2")
    bash -c "$command" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
    if output=$("$here/macho_test.sh" "$faulty" x86_64 10.15 "$version" 2>&1); then
        echo "$1: not noticed"
        exit 1
    fi
    if [[ $output != *"$1: expected"* ]]; then
        printf '%s: another complaint:\n%s\n' "$1" "$output"
        exit 1
    fi
}

# An object of one source, for the linker.
object() { # NAME SOURCE
    clang++-19 --target=x86_64-apple-macos10.15 -xc++ -c -o "$work/$1.o" - <<<"$2"
}

object import 'extern "C" int getpid(); extern "C" int Import() { return getpid(); }'
object missing 'extern "C" int Extra(); extern "C" int Missing() { return Extra(); }'
object constructor '__attribute__((constructor)) void Construct() {}'
object initialiser 'extern "C" int getpid(); int gProcess = getpid();'
cat >"$work/libExtra.tbd" <<'END'
--- !tapi-tbd
tbd-version: 4
targets: [ x86_64-macos ]
install-name: '/usr/lib/libExtra.dylib'
exports:
  - targets: [ x86_64-macos ]
    symbols: [ '_Extra' ]
...
END
sed 's/^std::recursive_mutex gDecodeMutex;$/std::mutex gCryptMutex;/; t; s/^std::mutex gCryptMutex;$/std::recursive_mutex gDecodeMutex;/' \
    "$here/../../api/StaticObjects.cpp" >"$work/swapped.cpp"
compile=$(edited "$compile" "s# -o [^ ]+\.o # -o $work/swapped.o #")
bash -c "$(edited "$compile" "s# -c [^ ]+# -c $work/swapped.cpp#")"

fault "exports" "s#-Xlinker -exported_symbols_list -Xlinker [^ ]+##"
fault "weak symbols, which another library's may replace" "s#-Xlinker -exported_symbols_list -Xlinker [^ ]+##"
fault "imports" "s# $static_objects# & $work/import.o#"
fault "imports without a library" "s# $static_objects# & $work/missing.o $work/libExtra.tbd#"
fault "libraries" "s# $static_objects# & $work/missing.o $work/libExtra.tbd#"
fault "libraries" "s# $static_objects# & -Wl,-weak_library,$work/libExtra.tbd $work/missing.o#"
fault "run paths" "s# -o # -Wl,-rpath,/usr/local/lib -o #"
fault "install name" "s#@executable_path/../Frameworks#@rpath#"
fault "current and compatibility version" "s# -current_version [^ ]+##"
fault "current and compatibility version" "s# -compatibility_version [^ ]+##"
fault "system" "s#-mmacosx-version-min=10.15#-mmacosx-version-min=11.0#"
fault "namespace" "s# -o # -Wl,-flat_namespace -o #"
fault "initialisers" "s# $static_objects# & $work/initialiser.o#"
fault "initialisers" "s# $static_objects# & $work/constructor.o#"
fault "destructors, in the order of their registration" "s# $static_objects# $work/swapped.o#"
echo "each fault was noticed"
