#!/usr/bin/env bash
# Checks that the built library and the commands that compile its sources make mistakes in it hard
# to exploit.
#
# Usage: hardening_test.sh LIBRARY COMMANDS CONFIGURATION   COMMANDS: compile_commands.json;
#                                                 CONFIGURATION: such as Release, or nothing
set -euo pipefail
library=$1 commands=$2 configuration=$3

missing=0
expect() {  # WHAT COMMAND…
    if ! "${@:2}"; then
        echo "missing: $1"
        missing=1
    fi
}
segments=$(readelf --wide --segments "$library")
dynamic=$(readelf --wide --dynamic "$library")
imports=$(nm --dynamic --undefined-only --without-symbol-versions "$library")

# Search the output of readelf or nm.
holds() { grep -qE -- "$2" <<<"$1"; }
lacks() { ! holds "$@"; }

expect "relocations made read-only" holds "$segments" '^ *GNU_RELRO '
expect "symbols bound at start" holds "$dynamic" '\(FLAGS\).*BIND_NOW'
expect "no relocations in the code" lacks "$dynamic" 'TEXTREL'
expect "a stack segment" holds "$segments" '^ *GNU_STACK '
expect "a stack that can't be executed" lacks "$segments" '^ *GNU_STACK .* RWE '
expect "no segment both writable and executable" lacks "$segments" '^ *LOAD .* RWE '
compilations=$(grep -E -- ' -o CMakeFiles/orva_(objects|platform)\.dir/' "$commands")
expect "the library's sources" [ "$(wc -l <<<"$compilations")" -gt 10 ]

# A flag in every compilation, and its effect in at least one.
all_have() { ! grep -vqE -- " $1 " <<<"$compilations"; }
expect "guarded stack frames" holds "$imports" ' __stack_chk_fail$'
expect "guarded stack frames in each source" all_have -fstack-protector-strong
if [[ $configuration =~ ^(Release|RelWithDebInfo|MinSizeRel)$ ]]; then
    expect "copies with their bounds checked" holds "$imports" ' __[a-z]+_chk$'
    expect "copies with their bounds checked in each source" all_have -D_FORTIFY_SOURCE=3
fi
[ $missing = 0 ] && echo "hardened"
