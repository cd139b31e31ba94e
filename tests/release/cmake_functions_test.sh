#!/usr/bin/env bash
# Builds a host with the package's CMake functions from the installed library, with Make and with
# Ninja: what it makes, what it makes anew after a change, that an error leaves nothing behind, and that
# the host runs where it is copied or installed.
#
# Usage: cmake_functions_test.sh BUILD DOCUMENT,   DOCUMENT: docs/building.md
#        with this build's CC, CXX, CFLAGS and CXXFLAGS
# Exits with 77 if make or ninja is missing.
set -euo pipefail
build=$1 document=$2
for program in make ninja; do
    command -v "$program" >/dev/null || { echo "skipped: $program is missing; scripts/setup build installs it"; exit 77; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() {
    printf '%s\n' "$*"
    cat "$work/log"
    exit 1
}
expect() { # WHAT EXPECTED FOUND
    [ "$3" = "$2" ] || fail "$1: '$3', not '$2'"
}

cmake --install "$build" --prefix "$work/prefix" >"$work/log"
tool=$work/prefix/bin/orva-strings
host=$work/host
mkdir "$host"
cat >"$host/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.22)
project(MyApp LANGUAGES CXX)
find_package(Other REQUIRED PATHS "${CMAKE_CURRENT_SOURCE_DIR}")
find_package(OrvaLanguage 1.0 REQUIRED)
find_package(Other REQUIRED PATHS "${CMAKE_CURRENT_SOURCE_DIR}")
add_executable(myapp main.cpp)
target_compile_features(myapp PRIVATE cxx_std_17)
target_link_libraries(myapp PRIVATE OrvaLanguage::OrvaLanguage)
if(CONTENTS)
    set_target_properties(myapp PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CONTENTS}/Linux")
endif()
if(EXECUTABLE)
    set_target_properties(myapp PROPERTIES OUTPUT_NAME "${EXECUTABLE}")
endif()
orva_add_strings(TARGET myapp SOURCE "My App.strings" NAME App.strings CHECK ${more})
orva_generate_keys(TARGET myapp SOURCE "My App.strings" LANGUAGE c++ SCOPE app::keys
    REFERENCE en)
orva_embed(TARGET myapp)
install(TARGETS myapp)
END
# Another package, for older versions of CMake, changes what the host's own seems to be.
echo 'cmake_minimum_required(VERSION 3.16)' >"$host/OtherConfig.cmake"
cat >"$host/main.cpp" <<'END'
#include <Keys.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <cstdio>
int main() {
    if (ZuLoadStrings("", "App.strings", nullptr) < 1) {
        return 1;
    }
    std::printf("%s, %s\n", ZuGetLocalizedString(app::keys::GREETING),
                ZuGetLocalizedString(app::keys::IDE_NAME));
}
END
write_strings() { printf 'QVLANG=en\nGREETING="%s"\nIDE_NAME="My App"\n' "$1" >"$host/My App.strings"; }
configure() { # FOLDER GENERATOR ARGUMENT…
    cmake -S "$host" -B "$work/$1" -G "$2" -DCMAKE_PREFIX_PATH="$work/prefix" \
        -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS" "${@:3}" >"$work/log" 2>&1
}
# The files that a build made or changed, apart from its own notes.
made() { # FOLDER
    touch "$work/before"
    sleep 0.02  # a file system's clock may be coarse
    cmake --build "$work/$1" >"$work/log" 2>&1 || return 1
    (cd "$work/$1" && find . -type f -newer "$work/before" ! -name '.ninja*' ! -name '*.stamp' \
        ! -path '*/CMakeFiles/*' | LC_ALL=C sort | tr '\n' ' ')
}
later() { sleep 1.1; } # for a build system that compares whole seconds

for generator in "Unix Makefiles" Ninja; do
    name=${generator##* }
    write_strings Hello
    configure "$name" "$generator" || fail "$generator does not configure:"
    expect "$generator makes" \
        './App.strings ./myapp ./myapp_orva/keys/Keys.h ' \
        "$(made "$name" | sed -E 's|\./myapp_orva/lib/[^ ]* ||g')"
    expect "the host of $generator says" 'Hello, My App' "$("$work/$name/myapp")"
    grep -qE '^IDE_NAME="[0-9A-F]{64}"$' "$work/$name/App.strings" || fail "the text is not protected:"

    later
    expect "a second build of $generator makes" '' "$(made "$name")"
    touch "$host/My App.strings"
    expect "after the strings file was touched, $generator makes" './App.strings ' "$(made "$name")"
    later
    expect "and then" '' "$(made "$name")"
    write_strings Hi
    expect "after a text has changed, $generator makes" \
        './App.strings ./myapp ./myapp_orva/keys/Keys.h ' "$(made "$name")"
    expect "the host of $generator says" 'Hi, My App' "$("$work/$name/myapp")"

    # What was deleted is made again, and nothing else.
    later
    rm "$work/$name/App.strings"
    expect "after the strings file was deleted, $generator makes" './App.strings ' "$(made "$name")"
    rm "$work/$name/myapp_orva/keys/Keys.h"
    made "$name" >"$work/made" || fail "$generator does not make the constants again:"
    for library in OrvaLanguage nettle; do
        later
        rm "$work/$name/myapp_orva/lib/lib$library".so.*
        expect "after lib$library was deleted, $generator makes" \
            './myapp_orva/lib/libOrvaLanguage ./myapp_orva/lib/libnettle ' \
            "$(made "$name" | sed 's/\.so[^ ]*//g')"
    done
    later
    expect "and then" '' "$(made "$name")"

    # A finding fails the build, is shown, and leaves what was there. Mended, the build goes on.
    later
    cp "$work/$name/App.strings" "$work/good"
    printf 'QVLANG =de\nGREETING="x"\n' >>"$host/My App.strings"
    if made "$name" >"$work/made"; then fail "$generator builds with an error in the strings file:"; fi
    grep -F 'My App.strings:4:' "$work/log" | grep -F '[near-header]' >/dev/null ||
        fail "$generator does not show the finding:"
    cmp "$work/good" "$work/$name/App.strings"
    expect "beside it there are" '' "$(find "$work/$name/myapp_orva" -name App.strings)"
    write_strings Hi
    made "$name" >"$work/made" || fail "$generator does not build the mended file:"

    # A misspelt key does not compile.
    later
    sed -i.bak 's/keys::GREETING/keys::GREETNIG/' "$host/main.cpp"
    if made "$name" >"$work/made"; then fail "$generator builds a host with a misspelt key:"; fi
    grep -F GREETNIG "$work/log" >/dev/null || fail "the compiler does not name the key:"
    mv "$host/main.cpp.bak" "$host/main.cpp"
    made "$name" >"$work/made" || fail "$generator does not build:"
done

# Installed, and moved: the host finds its texts and its libraries, also if it is not called like its
# target.
configure named Ninja -DEXECUTABLE="My Tool" || fail "a host of another name does not configure:"
cmake --build "$work/named" >"$work/log" 2>&1 || fail "a host of another name does not build:"
cmake --install "$work/named" --prefix "$work/named_root" >"$work/log"
cmake --install "$work/Ninja" --prefix "$work/installed" >"$work/log"
mv "$work/installed" "$work/moved"
mv "$work/prefix/lib" "$work/prefix/gone"
expect "the installed host says" 'Hi, My App' "$("$work/moved/bin/myapp")"
expect "that of another name says" 'Hi, My App' "$("$work/named_root/bin/My Tool")"
expect "it has the libraries" 'libOrvaLanguage libnettle ' \
    "$(find "$work/moved/lib/myapp" -type f -exec basename {} \; | sed 's/\..*//' | sort | tr '\n' ' ')"
ldd "$work/moved/lib/myapp"/libOrvaLanguage.* | grep -F "$work/moved/lib/myapp/libnettle" >/dev/null ||
    fail "the library does not find the copy of Nettle"
mv "$work/prefix/gone" "$work/prefix/lib"

# Each configuration has its own.
configure multi "Ninja Multi-Config" -DCMAKE_CONFIGURATION_TYPES=Debug || fail "it does not configure:"
expect "Ninja Multi-Config makes" './Debug/App.strings ./Debug/myapp ' \
    "$(made multi | sed -E 's|\./myapp_orva/[^ ]* ||g')"
later
expect "and then" '' "$(made multi)"

# Known findings are accepted as long as they are known, and rules that the host disables. A file that
# an argument names counts as changed.
cp "$host/My App.strings" "$work/good"
echo 'GREETING="again"' >>"$host/My App.strings"
"$tool" check --write-baseline "$host/Known.txt" "$host/My App.strings" >"$work/log" 2>&1
configure known Ninja "-Dmore=CHECK_ARGUMENTS;--baseline;Known.txt" || fail "it does not configure:"
cmake --build "$work/known" >"$work/log" 2>&1 || fail "a known finding fails the build:"
later
expect "with a baseline, a second build makes" '' "$(made known)"
rm "$host/Known.txt"
"$tool" check --write-baseline "$host/Known.txt" "$work/good" >"$work/log" 2>&1
if cmake --build "$work/known" >"$work/log" 2>&1; then fail "a change of the baseline is not noticed:"; fi
sed -i.bak 's/ CHECK / /' "$host/CMakeLists.txt"
configure checked Ninja "-Dmore=CHECK_ARGUMENTS;--warn;near-header" || fail "it does not configure:"
if cmake --build "$work/checked" >"$work/log" 2>&1; then fail "CHECK_ARGUMENTS alone checks nothing:"; fi
grep -F '[duplicate-key]' "$work/log" >/dev/null || fail "the build does not say why it ends:"
configure checked Ninja "-Dmore=CHECK_ARGUMENTS;--disable;duplicate-key" || fail "it does not configure:"
cmake --build "$work/checked" >"$work/log" 2>&1 || fail "a disabled rule fails the build:"
mv "$host/CMakeLists.txt.bak" "$host/CMakeLists.txt"
cp "$work/good" "$host/My App.strings"

# A folder laid out like a bundle, with a key of its own.
"$tool" key new "$work/key"
configure bundle "Unix Makefiles" -DCONTENTS="$work/My App/Contents" "-Dmore=KEY_FILE;$work/key" ||
    fail "the bundle does not configure:"
cmake --build "$work/bundle" >"$work/log" 2>&1 || fail "the bundle does not build:"
expect "the bundle has" './Contents/Frameworks/libOrvaLanguage ./Contents/Frameworks/libnettle ./Contents/Linux/myapp ./Contents/Resources/App ' \
    "$(cd "$work/My App" && find . -type f | sed -E 's/(\/[^/.]*)\.[^/]*$/\1/' | LC_ALL=C sort | tr '\n' ' ')"
"$tool" check --shipped --key-file "$work/key" "$work/My App/Contents/Resources/App.strings" >"$work/log" ||
    fail "the bundle's texts do not decode with its key:"
later
rm "$work/key"
"$tool" key new "$work/key"
cmake --build "$work/bundle" >"$work/log" 2>&1 || fail "the bundle does not build with another key:"
"$tool" check --shipped --key-file "$work/key" "$work/My App/Contents/Resources/App.strings" >"$work/log" ||
    fail "a change of the key is not noticed:"
mv "$work/prefix/lib" "$work/prefix/gone"
expect "the bundle's library is" "$work/My App/Contents/Frameworks" \
    "$(ldd "$work/My App/Contents/Linux/myapp" | sed -nE 's|.*=> (.*)/Linux/\.\./Frameworks/libOrvaLanguage.*|\1/Frameworks|p')"
mv "$work/prefix/gone" "$work/prefix/lib"
# As Debian's package has it, the library has no run path.
echo "file(RPATH_REMOVE FILE [[$(realpath "$work/My App/Contents/Frameworks"/libOrvaLanguage.*)]])" >"$work/strip.cmake"
cmake -P "$work/strip.cmake"
ldd "$work/My App/Contents/Linux/myapp" | grep -F "/Linux/../Frameworks/libnettle" >/dev/null ||
    fail "a library without a run path does not find the copy of Nettle"

# SHIPPED refuses the development key.
configure development Ninja -Dmore=SHIPPED || fail "it does not configure:"
if cmake --build "$work/development" >"$work/log" 2>&1; then fail "texts of the development key are shipped:"; fi
grep -F '[development-key]' "$work/log" >/dev/null || fail "the build does not say why it ends:"
[ ! -e "$work/development/App.strings" ] || fail "the build leaves the refused file"

# It refuses a library with another key than the texts.
configure mismatch Ninja "-Dmore=KEY_FILE;$work/key;SHIPPED" || fail "it does not configure:"
if cmake --build "$work/mismatch" >"$work/log" 2>&1; then fail "texts that the library can't decode are shipped:"; fi
grep -F 'The library has another key than the texts' "$work/log" >/dev/null ||
    fail "the build does not say why it ends:"
[ ! -e "$work/mismatch/App.strings" ] || fail "the build leaves the refused file"
functions=$(find "$work/prefix" -name OrvaLanguageStrings.cmake)
library=$(find "$work/prefix" -name 'libOrvaLanguage.so.*' -type f)
cmake "-DCOMMAND_FILE=$tool" "-DLIBRARY=$library" -P "$functions" >"$work/log" 2>&1 ||
    fail "it refuses the library with the command's key:"

# Applications in one folder share their resources and libraries, which are made once. Names that are
# one to a target's name stay two. The build may make a source.
mkdir -p "$work/pair/second"
cat >"$work/pair/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.22)
project(Pair LANGUAGES CXX)
find_package(OrvaLanguage 1.0 REQUIRED)
set(folder "${CMAKE_CURRENT_BINARY_DIR}/Pair/Contents/Linux")
add_executable(first main.cpp)
target_link_libraries(first PRIVATE OrvaLanguage::OrvaLanguage)
set_target_properties(first PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${folder}")
orva_add_strings(TARGET first SOURCE Pair.strings NAME App.strings)
orva_add_strings(TARGET first SOURCE Pair.strings NAME App_strings)
add_custom_command(OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/Made.strings"
    COMMAND "${CMAKE_COMMAND}" -E copy "${CMAKE_CURRENT_SOURCE_DIR}/Pair.strings" Made.strings)
orva_add_strings(TARGET first SOURCE "${CMAKE_CURRENT_BINARY_DIR}/Made.strings")
orva_embed(TARGET first)
add_subdirectory(second)
END
cat >"$work/pair/second/CMakeLists.txt" <<'END'
add_executable(second ../main.cpp)
target_link_libraries(second PRIVATE OrvaLanguage::OrvaLanguage)
set_target_properties(second PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${folder}")
orva_add_strings(TARGET second SOURCE ../Pair.strings NAME App.strings)
orva_embed(TARGET second)
END
sed '/Keys.h/d; s/app::keys::\([A-Z_]*\)/"\1"/' "$host/main.cpp" >"$work/pair/main.cpp"
cp "$host/My App.strings" "$work/pair/Pair.strings"
for generator in "Unix Makefiles" Ninja; do
    name=pair_${generator##* }
    host=$work/pair configure "$name" "$generator" || fail "two applications do not configure:"
    cmake --build "$work/$name" -j 2 >"$work/log" 2>&1 || fail "two applications do not build:"
    expect "$generator makes the libraries and App.strings" '2 times' \
        "$(grep -cE 'Copying libOrvaLanguage|: App\.strings' "$work/log") times"
    for application in first second; do
        expect "the $application application says" 'Hi, My App' "$("$work/$name/Pair/Contents/Linux/$application")"
    done
    expect "they have" 'App.strings App_strings Made.strings ' \
        "$(cd "$work/$name/Pair/Contents/Resources" && printf '%s\n' * | LC_ALL=C sort | tr '\n' ' ')"
    later
    expect "$generator then makes" '' "$(made "$name")"
done

# For macOS, as far as this system can tell: files get where CMake puts the bundles, and only once.
mkdir "$work/mac"
cat >"$work/mac/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.22)
project(Mac LANGUAGES CXX)
find_package(OrvaLanguage 1.0 REQUIRED)
add_executable(plain MACOSX_BUNDLE main.cpp)
add_executable(named MACOSX_BUNDLE main.cpp)
set_target_properties(named PROPERTIES OUTPUT_NAME "My App" BUNDLE_EXTENSION tool)
add_custom_target(all_files)
foreach(app IN ITEMS plain named)
    orva_add_strings(TARGET ${app} SOURCE App.strings)
    orva_embed(TARGET ${app})
    add_dependencies(all_files ${app}_orva_strings_App_strings ${app}_orva_library)
    file(GENERATE OUTPUT ${app}.txt CONTENT "$<TARGET_BUNDLE_CONTENT_DIR:${app}>\n")
endforeach()
END
cp "$work/pair/Pair.strings" "$work/mac/App.strings"
cp "$work/pair/main.cpp" "$work/mac/"
host=$work/mac configure bundles Ninja -DCMAKE_SYSTEM_NAME=Darwin -DCMAKE_CXX_COMPILER_FORCED=ON \
    -DCMAKE_INSTALL_NAME_TOOL=none || fail "bundles do not configure:"
cmake --build "$work/bundles" --target all_files >"$work/log" 2>&1 || fail "a bundle's files are not made:"
for application in plain named; do
    contents=$(cat "$work/bundles/$application.txt")
    expect "in $contents are" './Frameworks/libOrvaLanguage ./Frameworks/libnettle ./Resources/App ' \
        "$(cd "$contents" && find . -name '*.s*' | sed 's/\.s[^/]*$//' | LC_ALL=C sort | tr '\n' ' ')"
done
cmake --build "$work/bundles" --target all_files >"$work/log" 2>&1
grep -F 'no work to do' "$work/log" >/dev/null || fail "a bundle's files are made twice:"

# What the document shows is a whole application.
mkdir -p "$work/documented/src" "$work/folder"
shown() { # HEADING
    awk -v heading="$1" '/^##/{is_inside = $0 == heading}
        /^```$/{is_code = 0} is_inside && is_code; /^```cmake$/{is_code = 1}' "$document"
}
shown '## An application that ships' >"$work/documented/CMakeLists.txt"
printf 'QVLANG=en\nMENU_OPEN="Open"\n' >"$work/documented/MyApp.strings"
sed 's/App.strings/MyApp.strings/; s/app::keys::[A-Z_]*/keys::MENU_OPEN/' "$host/main.cpp" \
    >"$work/documented/src/main.cpp"
host=$work/documented configure shown Ninja || fail "the document's application does not configure:"
cmake --build "$work/shown" >"$work/log" 2>&1 || fail "the document's application does not build:"
ctest --test-dir "$work/shown" >"$work/log" 2>&1 || fail "the document's test fails:"
grep -F '100% tests passed, 0 tests failed out of 1' "$work/log" >/dev/null || fail "it has no test:"
cmake --install "$work/shown" --prefix "$work/documented/root" >"$work/log"
expect "the document's application says" 'Open, Open' "$("$work/documented/root/bin/myapp")"

# Its other lines make one of a single folder, which is installed whole.
cp -R "$work/documented/src" "$work/documented/MyApp.strings" "$work/folder/"
shown '### In one folder' >"$work/lines"
{
    sed '/^# Checks and protects/,$d' "$work/documented/CMakeLists.txt"
    sed '/^install/,$d' "$work/lines"
    sed -n '/^# Checks and protects/,/^orva_embed/p' "$work/documented/CMakeLists.txt"
    sed -n '/^install/,$p' "$work/lines"
} >"$work/folder/CMakeLists.txt"
host=$work/folder configure folded Ninja || fail "the document's other lines do not configure:"
cmake --build "$work/folded" >"$work/log" 2>&1 || fail "the document's other lines do not build:"
cmake --install "$work/folded" --prefix "$work/folder/root" >"$work/log"
mv "$work/prefix/lib" "$work/prefix/gone"
expect "the folder's application says" 'Open, Open' "$("$work/folder/root/MyApp/Contents/Linux/myapp")"
mv "$work/prefix/gone" "$work/prefix/lib"

# Constants cause no warning and leave nothing in a program that does not use them.
printf 'QVLANG=en\nMENU_A="*/ /* \\"\nmenu.b="??/"\nA"B\\%s="c"\nIDE_X="x"\n' '????/' >"$work/odd.strings"
"$tool" keys --language c -o "$work/keys_c.h" "$work/odd.strings" 2>"$work/log"
sed -i.bak '/^A"/d' "$work/odd.strings"  # its name is reserved in C++
"$tool" keys --language c++ -o "$work/keys_cpp.h" "$work/odd.strings" 2>"$work/log"
strict=(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -c -o "$work/keys.o")
printf '#include "keys_c.h"\nint used;\n' >"$work/keys.c"
printf '#include "keys_cpp.h"\nint used;\n' >"$work/keys.cpp"
unused() { # COMMAND…
    "$@" >"$work/log" 2>&1 || fail "the constants do not compile:"
    expect "an object that uses no constant has" 'used' "$(nm "$work/keys.o" | awk '{print $NF}')"
}
unused "$CC" -std=c99 "${strict[@]}" "$work/keys.c"
unused "$CXX" -std=c++17 "${strict[@]}" "$work/keys.cpp"
unused "$CXX" -std=c++17 "${strict[@]}" -include "$work/keys_c.h" "$work/keys.cpp"

# Wrong arguments, and no command.
refused() { # MESSAGE CALL [VERSION]
    printf 'cmake_minimum_required(VERSION %s)\nproject(Wrong LANGUAGES CXX)\nfind_package(OrvaLanguage REQUIRED)\nadd_executable(myapp main.cpp)\n%s\n' \
        "${3:-3.22}" "$2" >"$work/wrong/CMakeLists.txt"
    if cmake -S "$work/wrong" -B "$work/wrong/build" -DCMAKE_PREFIX_PATH="$work/prefix" \
        -DCMAKE_CXX_COMPILER="$CXX" >"$work/log" 2>&1; then
        fail "accepted: $2"
    fi
    tr -s ' \n' '  ' <"$work/log" | grep -F "$1" >/dev/null || fail "$2 does not say '$1':"
}
mkdir "$work/wrong"
cp "$host/main.cpp" "$work/wrong/"
refused 'orva_add_strings: SOURCE must name' 'orva_add_strings(TARGET myapp)'
refused "TARGET must name a target, not 'other'" 'orva_embed(TARGET other)'
refused 'unknown or without a value: CHEK' 'orva_add_strings(TARGET myapp SOURCE a.strings CHEK)'
touch "$work/wrong/a.strings" "$work/wrong/b.strings"
folder=$(realpath "$work/wrong")
refused "with the type EXECUTABLE. 'texts' is not" 'add_library(texts INTERFACE)
orva_add_strings(TARGET texts SOURCE a.strings)'
refused "with the type EXECUTABLE. 'alias' is not" 'add_executable(alias ALIAS myapp)
orva_embed(TARGET alias)'
refused "with the type EXECUTABLE. 'other' is not" 'add_executable(other IMPORTED)
orva_embed(TARGET other)'
refused "'texts' is not" 'add_library(texts INTERFACE)
orva_generate_keys(TARGET texts SOURCE a.strings LANGUAGE c)'
refused "orva_add_strings: SOURCE: there is no file $folder/c.strings" \
    'orva_add_strings(TARGET myapp SOURCE c.strings)'
refused "orva_generate_keys: SOURCE: there is no file $folder/c.strings" \
    'orva_generate_keys(TARGET myapp SOURCE c.strings LANGUAGE c)'
refused "SOURCE: there is no file $folder" 'orva_add_strings(TARGET myapp SOURCE .)'
refused "KEY_FILE: there is no file $folder/key" \
    'orva_add_strings(TARGET myapp SOURCE a.strings KEY_FILE key)'
refused "NAME must be a file's name, without a folder, not 'a/b'" \
    'orva_add_strings(TARGET myapp SOURCE a.strings NAME a/b)'
refused "OUTPUT must be a file's name, without a folder, not 'a/b'" \
    'orva_generate_keys(TARGET myapp SOURCE a.strings LANGUAGE c OUTPUT a/b)'
refused "$folder/a.strings would be replaced by its protected form" \
    "set_target_properties(myapp PROPERTIES RUNTIME_OUTPUT_DIRECTORY [[$folder]])
orva_add_strings(TARGET myapp SOURCE a.strings)"
refused 'the target myapp_orva_strings_App of an earlier call makes' 'add_executable(other main.cpp)
orva_add_strings(TARGET myapp SOURCE a.strings NAME App)
orva_add_strings(TARGET other SOURCE b.strings NAME App)'
refused 'Use another NAME, or a folder of its own for myapp' \
    'orva_add_strings(TARGET myapp SOURCE a.strings NAME App)
orva_add_strings(TARGET myapp SOURCE a.strings NAME App SHIPPED)'
refused 'Use another OUTPUT' 'orva_generate_keys(TARGET myapp SOURCE a.strings LANGUAGE c)
orva_generate_keys(TARGET myapp SOURCE a.strings LANGUAGE c++)'
refused 'LANGUAGE must be c, c++ or swift' 'orva_generate_keys(TARGET myapp SOURCE a.strings LANGUAGE java)'
refused 'needs cmake_minimum_required(VERSION 3.22)' 'orva_add_strings(TARGET myapp SOURCE a.strings)' 3.16
rm "$work/prefix/lib"*/cmake/OrvaLanguage/OrvaLanguageTools* "$work/prefix/lib"/*/cmake/OrvaLanguage/OrvaLanguageTools* 2>/dev/null || true
rm "$tool"
refused 'There is no orva-strings' 'orva_add_strings(TARGET myapp SOURCE a.strings)'
echo "the functions make what is needed, once"
