#!/usr/bin/env bash
# The recipes for Homebrew, vcpkg and Conan, whose programs Debian lacks: each is read as its language,
# names the version of the headers, and stops at its placeholder with an error that says what is
# missing. No recipe has been run by the program that it is for.
#
# Usage: package_recipes_test.sh SOURCE
#
# Skipped without ruby, which scripts/setup check installs.
set -euo pipefail
source=$1
command -v ruby >/dev/null || { echo "skipped: ruby is missing; scripts/setup check installs it"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "package_recipes_test: $*" >&2; cat "$work/log"; exit 1; }
stops() { # RECIPE COMMAND…: with the placeholder's error
    if "${@:2}" >"$work/log" 2>&1; then fail "$1 does not stop"; fi
    tr -s ' \n' ' ' <"$work/log" >"$work/line"
    grep -F "The location of the source is not decided: see docs/decisions.md." "$work/line" >"$work/said" ||
        fail "$1 stops for another reason"
}
names_version() { # RECIPE VERSION
    [ "$2" = "$version" ] || fail "$1 is of version '$2', not '$version'"
}

printf '#include <OrvaLanguage/Version.h>\nORVA_VERSION_STRING\n' >"$work/version.c"
version=$("${CXX:-c++}" -I "$source/include" -E -P "$work/version.c" | tr -d '"\n')

formula=$source/packaging/homebrew/orvalanguage.rb
ruby -wc "$formula" >"$work/log" 2>&1 || fail "the formula is no Ruby"
names_version "the formula" "$(sed -n 's/^  version "\(.*\)"$/\1/p' "$formula")"
stops "the formula" ruby -e 'class Formula; def self.desc(*) = nil; end; load ARGV[0]' "$formula"

python3 -m json.tool "$source/packaging/vcpkg/vcpkg.json" >"$work/log" 2>&1 || fail "vcpkg.json is no JSON"
names_version "the port" "$(sed -n 's/^ *"version": "\(.*\)",$/\1/p' "$work/log")"
stops "the port" cmake -P "$source/packaging/vcpkg/portfile.cmake"

# With stand-ins for Conan's modules, so that the recipe can be loaded.
cat >"$work/recipe.py" <<'EOF'
import sys
from types import ModuleType
for name in "conan", "conan.errors", "conan.tools", "conan.tools.cmake", "conan.tools.files", "conan.tools.gnu":
    sys.modules[name] = ModuleType(name)
for name, members in {"conan": "ConanFile", "conan.tools.cmake": "CMake CMakeDeps CMakeToolchain cmake_layout",
                      "conan.tools.files": "get", "conan.tools.gnu": "PkgConfigDeps"}.items():
    for member in members.split():
        setattr(sys.modules[name], member, type(member, (), {}))
sys.modules["conan.errors"].ConanException = type("ConanException", (Exception,), {})
recipe = {}
exec(compile(open(sys.argv[1]).read(), sys.argv[1], "exec"), recipe)
recipe = recipe["OrvaLanguageConan"]()
print(recipe.version) if sys.argv[2] == "version" else recipe.source()
EOF
conanfile=$source/packaging/conan/conanfile.py
python3 "$work/recipe.py" "$conanfile" version >"$work/log" 2>&1 || fail "the Conan recipe can't be loaded"
names_version "the Conan recipe" "$(cat "$work/log")"
stops "the Conan recipe" python3 "$work/recipe.py" "$conanfile" source
echo "three recipes, of version $version"
