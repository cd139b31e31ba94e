#!/usr/bin/env bash
# Lets git show protected texts readable, with the lines that the manual page gives for its
# configuration. A value that does not decode is shown as it is and does not stop git.
#
# Usage: git_diff_test.sh ORVA_STRINGS MANUAL_PAGE
set -euo pipefail
tool=$(realpath "$1") manual=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "$*"
    exit 1
}

# A repository that no configuration of this machine reaches.
unset "${!GIT_@}"
export HOME=$work XDG_CONFIG_HOME=$work GIT_CONFIG_NOSYSTEM=1
export GIT_AUTHOR_NAME=A GIT_AUTHOR_EMAIL=a@example.com GIT_COMMITTER_NAME=A GIT_COMMITTER_EMAIL=a@example.com
export PATH=${tool%/*}:$PATH
git init --quiet "$work/repository"
cd "$work/repository"

# The page's lines: those of the configuration, and the last for the attributes.
mapfile -t lines < <(sed -n '/^\.EX$/,/^\.EE$/{s/\\-/-/g; /^\./!p}' "$manual")
[ ${#lines[@]} = 3 ] || fail "the manual page has ${#lines[@]} lines: ${lines[*]}"
printf '%s\n' "${lines[@]:0:2}" >>.git/config
echo "${lines[2]}" >.gitattributes

commit() {
    git add .
    git commit --quiet --message "$1"
}
# Expects the lines that the last commit has removed and added, and what else git says.
expect() { # LINES WARNINGS
    local shown
    shown=$(git diff HEAD~1 2>"$work/warnings") || fail "git diff ended with $?: $(cat "$work/warnings")"
    shown=$(grep -E '^([-+][^-+]|[-+]$)' <<<"$shown") || true
    [ "$shown" = "$1" ] || fail "git diff shows: $shown, not: $1"
    diff <(echo -n "$2") <(sed 's/^[^:]*:/FILE:/' "$work/warnings") || fail "git's warnings differ"
    git log --patch -1 2>/dev/null | grep -qFx -- "${1%%$'\n'*}" || fail "git log does not show it"
}

# Two commits whose files differ in a protected text and an ordinary one.
printf 'QVLANG=en\nMENU="Open"\nIDE_A="Register"\nIDE_B="Thank you"\n' >source
"$tool" protect -o App.strings source 2>/dev/null
rm source
grep -q Register App.strings && fail "the text is not protected"
commit first
printf 'QVLANG=en\nMENU="Open …"\nIDE_A="Register now"\nIDE_B="Thank you"\n' |
    "$tool" protect - 2>/dev/null >App.strings
commit second
expect '-MENU="Open"
-IDE_A="Register"
+MENU="Open …"
+IDE_A="Register now"' ""
git -c diff.orva-strings.textconv=cat diff HEAD~1 | grep -q Register && fail "it is in the file itself"

# A value that no longer decodes, beside a text that changes.
stored=$(sed -n 's/^IDE_B="\(.*\)"/\1/p' App.strings)
damaged=$(tr 0-9A-F 1-9A-F0 <<<"$stored")
{
    printf 'QVLANG=en\nMENU="Open …"\nIDE_A="Register soon"\n' | "$tool" protect - 2>/dev/null
    echo "IDE_B=\"$damaged\""
} >App.strings
commit third
expect '-IDE_A="Register now"
-IDE_B="Thank you"
+IDE_A="Register soon"
+IDE_B="'"$damaged"'"' "FILE:4: warning: IDE_B: the value looks stored but does not decode: it was damaged or made with another key
"
if git -c diff.orva-strings.textconv="orva-strings reveal" diff HEAD~1 >/dev/null 2>&1; then
    fail "git diff does not need --lenient"
fi

# A file that is no strings file yet.
echo "nothing" >App.strings
commit fourth
expect '-QVLANG=en
-MENU="Open …"
-IDE_A="Register soon"
-IDE_B="'"$damaged"'"
+nothing' "FILE:4: warning: IDE_B: the value looks stored but does not decode: it was damaged or made with another key
FILE: warning: the file has no section
"
echo "git shows readable texts, and stored ones where they do not decode"
