#!/usr/bin/env bash
# Installs the build to a folder of its own, then compiles and runs C and C++ hosts that have
# nothing else. They find it with pkg-config and with CMake's find_package, the latter with and
# without the installed orva-strings. Then checks what each install component holds.
#
# Usage: installed_host_test.sh BUILD HOSTS,
#        with this build's CC, CXX, CFLAGS, CXXFLAGS and GENERATOR
set -euo pipefail
build=$1 hosts=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/prefix"  # an installed tree may be moved
pc=$(find "$work/prefix" -name OrvaLanguage.pc)
export PKG_CONFIG_PATH=${pc%/*}
libdir='' compile_flags=() link_flags=()
eval "libdir=$(pkg-config --variable=libdir OrvaLanguage)"  # its output is quoted for the shell

app=$work/Host.app/Contents
mkdir -p "$app/MacOS" "$app/Frameworks" "$app/Resources"
cp "$libdir"/libOrvaLanguage.* "$app/Frameworks/"  # where a host looks for it on macOS
printf 'QVLANG=en\nGREETING="Hello"\n' >"$app/Resources/Host.strings"

run() { # PROGRAM OUTPUT
    cp "$1" "$app/MacOS/"
    local printed
    printed=$(LD_LIBRARY_PATH=$libdir "$app/MacOS/${1##*/}")
    if [ "$printed" != "$2" ]; then
        echo "${1##*/} printed '$printed', not '$2'"
        exit 1
    fi
    echo "${1##*/}: $printed"
}

eval "compile_flags=($(pkg-config --cflags OrvaLanguage)) link_flags=($(pkg-config --libs OrvaLanguage))"
# shellcheck disable=SC2086  # flags are words
{
    $CC $CFLAGS -Wall -Wextra -Wpedantic -Werror -std=c99 "${compile_flags[@]}" \
        "$hosts/host.c" -o "$work/c_host" "${link_flags[@]}"
    $CXX $CXXFLAGS -Wall -Wextra -Wpedantic -Werror -std=c++17 "${compile_flags[@]}" \
        "$hosts/host.cpp" -o "$work/cpp_host" "${link_flags[@]}"
}
run "$work/c_host" "2 entries"
run "$work/cpp_host" "2 entries, GREETING is Hello"

cp "$hosts/host.c" "$hosts/host.cpp" "$hosts/CMakeLists.txt" "$work/"
build_hosts() { # FOLDER PREFIX
    cmake -S "$work" -B "$work/$1" -G "$GENERATOR" -DCMAKE_PREFIX_PATH="$2" \
        -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
        -DCMAKE_C_FLAGS="$CFLAGS" -DCMAKE_CXX_FLAGS="$CXXFLAGS" >"$work/cmake.log"
    cmake --build "$work/$1" >"$work/build.log" || { cat "$work/build.log"; exit 1; }
}
build_hosts cmake "$work/prefix"
run "$work/cmake/cmake_c_host" "2 entries"
run "$work/cmake/cmake_cpp_host" "2 entries, GREETING is Hello"
grep -qE '^IDE_TEXT="[0-9A-F]{64}"$' "$work/cmake/Shipped.strings" ||
    { echo "the package's orva-strings protected nothing"; exit 1; }

# The package files name the version, and a host of another major version finds none.
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
[ "$(pkg-config --modversion OrvaLanguage)" = "$version" ] || { echo "the .pc file is not of $version"; exit 1; }
echo '#include <OrvaLanguage/OrvaLanguage.h>
static const char* version = ORVA_VERSION_STRING;' >"$work/version.c"
# shellcheck disable=SC2086  # flags are words
$CC $CFLAGS "${compile_flags[@]}" -E -P "$work/version.c" | grep -xF "static const char* version = \"$version\";" ||
    { echo "the headers are not of $version"; exit 1; }
mkdir "$work/find"
finds() { # VERSION
    printf 'cmake_minimum_required(VERSION 3.22)\nproject(Find NONE)\nfind_package(OrvaLanguage %s)\n%s\n' \
        "$1" "message(STATUS \"found \${OrvaLanguage_VERSION}\")" >"$work/find/CMakeLists.txt"
    cmake -S "$work/find" -B "$work/find/$1" -DCMAKE_PREFIX_PATH="$work/prefix" >"$work/find.log" 2>&1
    grep -qxF -e "-- found $version" "$work/find.log"
}
major=${version%%.*}
finds "$major.0" || { echo "CMake finds no $major.0"; exit 1; }
for other in $((major - 1)).0 $((major + 1)).0 "$major.999"; do
    if finds "$other"; then echo "CMake takes $version for $other"; exit 1; fi
done

# What each component installs, apart from versions and documents.
lib=${pc%/pkgconfig/*}
lib=${lib#"$work/prefix/"}
case $(uname) in
Darwin)
    library=LIB/libOrvaLanguage.dylib
    name_for_linkers=
    ;;
*)
    library='LIB/libOrvaLanguage.so.1
LIB/libOrvaLanguage.so.1.M.P'
    name_for_linkers=LIB/libOrvaLanguage.so
    ;;
esac
holds() { # COMPONENT; the expected files on standard input, perhaps with empty lines
    cmake --install "$build" --prefix "$work/$1" --component "$1" >"$work/install.log"
    local found
    found=$(cd "$work/$1" && find . ! -type d | sed -E "s|^\./$lib/|LIB/|
        s/(Targets|Tools)-[a-z]+\.cmake\$/\1-CONFIG.cmake/
        s/(\.so\.[0-9]+)\.[0-9.]+\$/\1.M.P/; /^\.\/share\/doc\//d" | LC_ALL=C sort)
    if ! diff <(echo "$found") <(sed '/^$/d'); then
        echo "the component $1: found (left), expected (right)"
        exit 1
    fi
}
holds runtime <<<"$library"
holds development <<END
./include/OrvaLanguage/Export.h
./include/OrvaLanguage/KorString.h
./include/OrvaLanguage/KorStringMap.h
./include/OrvaLanguage/OrvaLanguage.h
./include/OrvaLanguage/Texts.h
./include/OrvaLanguage/Texts.hpp
./include/OrvaLanguage/Version.h
./share/man/man3/KorGetLocalizedString.3
./share/man/man3/KorLoadStrings.3
./share/man/man3/KorString.3
./share/man/man3/KorStringMap.3
./share/man/man3/ZuCloseBundle.3
./share/man/man3/ZuGetLocalizedString.3
./share/man/man3/ZuLoadStrings.3
./share/man/man3/ZuOpenBundle.3
./share/man/man3/libOrvaLanguage.3
LIB/cmake/OrvaLanguage/OrvaLanguageConfig.cmake
LIB/cmake/OrvaLanguage/OrvaLanguageConfigVersion.cmake
LIB/cmake/OrvaLanguage/OrvaLanguageStrings.cmake
LIB/cmake/OrvaLanguage/OrvaLanguageTargets-CONFIG.cmake
LIB/cmake/OrvaLanguage/OrvaLanguageTargets.cmake
$name_for_linkers
LIB/pkgconfig/OrvaLanguage.pc
END
holds tools <<'END'
./bin/orva-strings
./share/man/man1/orva-strings.1
./share/man/man5/orva-strings.5
LIB/cmake/OrvaLanguage/OrvaLanguageTools-CONFIG.cmake
LIB/cmake/OrvaLanguage/OrvaLanguageTools.cmake
END

# The documents, those that README leads to, and the examples.
installed_docs=$(cd "$work/development/share/doc/OrvaLanguage" &&
    find . -name '*.md' -o -path './examples/*' -type f | LC_ALL=C sort)
source_docs=$(cd "$hosts/../../.." &&
    { find README.md CHANGELOG.md SECURITY.md docs -name '*.md'
      find examples -type f ! -name CMakeLists.txt ! -path '*.xcodeproj/*'; } | sed 's|^|./|' | LC_ALL=C sort)
diff <(echo "$installed_docs") <(echo "$source_docs") ||
    { echo "the documents: installed (left), in the source (right)"; exit 1; }

# A host needs only the first two.
cp -a "$work/runtime/." "$work/development/"
build_hosts without_tools "$work/development"
run "$work/without_tools/cmake_c_host" "2 entries"
[ ! -e "$work/without_tools/Shipped.strings" ] || { echo "the hosts found another orva-strings"; exit 1; }

# Requesting a component that is not installed is an error.
mkdir "$work/requests"
cat >"$work/requests/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.22)
project(Requests LANGUAGES C)
find_package(OrvaLanguage REQUIRED COMPONENTS runtime development ${more})
END
requests() { # PREFIX COMPONENT
    cmake -S "$work/requests" -B "$work/requests/${1##*/}$2" -G "$GENERATOR" -DCMAKE_C_COMPILER="$CC" \
        -DCMAKE_PREFIX_PATH="$1" -Dmore="$2" >"$work/cmake.log" 2>&1
}
requests "$work/prefix" tools || { cat "$work/cmake.log"; exit 1; }
requests "$work/development" "" || { cat "$work/cmake.log"; exit 1; }
for request in "development tools" "prefix nonsense"; do
    # shellcheck disable=SC2086  # two words
    set -- $request
    if requests "$work/$1" "$2"; then
        echo "find_package finds a component $2 where none is installed"
        exit 1
    fi
    grep -qF "There is no component $2, or it is not installed." "$work/cmake.log" || { cat "$work/cmake.log"; exit 1; }
done
