#!/usr/bin/env bash
# The recipes of docs/checks.md, each run as it is written there, in the programs that it is for.
#
# Usage: recipes_test.sh SOURCE_FOLDER ORVA_STRINGS
#
# Skipped where a program is missing: scripts/setup check installs them.
set -euo pipefail

source=$(cd "$1" && pwd)
PATH=$(cd "$(dirname "$2")" && pwd):$PATH
for program in git pre-commit vim; do
    command -v "$program" >/dev/null || { echo "skipped: $program is missing; scripts/setup check installs it"; exit 77; }
done
vim --version | grep +quickfix >/dev/null || { echo "skipped: this vim has no quickfix list; scripts/setup check installs one that has"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work/home PRE_COMMIT_HOME=$work/pre-commit
mkdir -p "$HOME"
git config --global user.name test
git config --global user.email test@localhost
git config --global init.defaultBranch main
git config --global safe.directory '*'

fail() { echo "recipes_test: $*" >&2; exit 1; }

# The block of the document in this language whose text matches a pattern.
block() {
    awk -v language="$1" -v pattern="$2" '
        /^```/ && inside { if (text ~ pattern) printf "%s", text; inside = 0; next }
        $0 == "```" language { inside = 1; text = ""; next }
        inside { text = text $0 "\n" }' "$source/docs/checks.md"
}

cd "$work"
printf 'QVLANG=en\nMENU_OPEN="Open"\n' >clean.strings
printf 'QVLANG=en\nMENU_OPEN="Open"\nOK="OK"\nMENU_OPEN="Open file"\n' >wrong.strings
printf 'none of its files\n' >other.txt

# pre-commit, with the hook as this project offers it.
git init -q hooks
cp "$source/.pre-commit-hooks.yaml" hooks
git -C hooks add -A
git -C hooks commit -qm hooks
git -C hooks tag v1.0.0
git init -q project
cp clean.strings wrong.strings other.txt project
block yaml 'repos:' | sed "s|https://example.com/libOrvaLanguage|$work/hooks|" >project/.pre-commit-config.yaml
grep -q "$work/hooks" project/.pre-commit-config.yaml || fail "no recipe for pre-commit"
cd project
git add -A
status=0
pre-commit run --all-files >../pre-commit.log 2>&1 || status=$?
cat ../pre-commit.log
[ "$status" -eq 1 ] || fail "pre-commit ended with status $status"
grep -qF 'wrong.strings:3:1: error: OK: ' ../pre-commit.log || fail "pre-commit does not show the finding"
grep -qF '2 errors in 2 files' ../pre-commit.log || fail "the hook was not run on the two files"
sed -i '3,4d' wrong.strings
git add -A
pre-commit run --all-files
cd ..

# Vim, in which :make lists the findings.
block vim makeprg >recipe.vim
[ -s recipe.vim ] || fail "no recipe for Vim"
vim -es -u NONE -c 'set nocompatible' -c 'source recipe.vim' -c 'edit wrong.strings' -c 'silent make!' \
    -c 'call writefile(map(getqflist(), {_, f -> bufname(f.bufnr) . ":" . f.lnum . ":" . f.col . ":" . f.type}), "quickfix")' \
    -c 'qall!' || true
printf '%s\n' wrong.strings:3:1:e wrong.strings:4:1:e >expected
diff expected quickfix || fail "Vim's list is not what was expected"

# The pattern of VS Code's problem matcher, which is not in Debian.
block json problemMatcher >tasks.json
orva-strings check wrong.strings >findings || true
python3 - <<'END'
import json, re
pattern = json.load(open("tasks.json"))["tasks"][0]["problemMatcher"]["pattern"]
found = [re.match(pattern["regexp"], line) for line in open("findings").read().splitlines()]
parts = ("file", "line", "column", "severity", "code")
found = [tuple(match[pattern[part]] for part in parts) for match in found if match]
expected = [("wrong.strings", "3", "1", "error", "short-key"),
            ("wrong.strings", "4", "1", "error", "duplicate-key")]
assert found == expected, found
END

# GitHub's steps: the command, as the shell gets it.
command=$(block yaml upload-sarif | sed -n 's/^- run: //p')
[ -n "$command" ] || fail "no recipe for GitHub"
cp wrong.strings Sample.strings
status=0
bash -ec "$command" || status=$?
[ "$status" -eq 1 ] || fail "the step ended with status $status"
python3 -c 'import json; assert len(json.load(open("findings.sarif"))["runs"][0]["results"]) == 2'

# A merge, with git itself: two branches that append, two that change one key, a conflict left in.
git init -q merge
cd merge
printf 'QVLANG=en\nMENU_OPEN="Open"\n' >Sample.strings
git add -A
git commit -qm base
for branch in one two; do
    git checkout -q -b "append-$branch" main
    printf 'MENU_%s="text"\n' "$branch" >>Sample.strings
    git commit -qam append
    git checkout -q -b "change-$branch" main
    sed -i "s/\"Open\"/\"Open $branch\"/" Sample.strings
    git commit -qam change
done
found() {  # the lines and rules that check finds
    orva-strings check --format json Sample.strings |
        python3 -c '
import json, sys
print(*("%(line)d:%(rule)s" % finding for finding in json.load(sys.stdin)["findings"]))' || true
}
expect() {
    [ "$(found)" = "$2" ] || fail "$1: $(found)"
}
git checkout -q append-one
git merge -q append-two >/dev/null 2>&1 && fail "two branches that append did not conflict"
expect "appended on both sides" "3:conflict-marker 5:conflict-marker 7:conflict-marker"
sed -i '/^[<=>]/d' Sample.strings
expect "both appended lines" ""
git commit -qam merged
git checkout -q change-one
git merge -q change-two >/dev/null 2>&1 && fail "two branches that change one key did not conflict"
expect "changed on both sides" \
    "2:conflict-marker 4:conflict-marker 5:duplicate-key 6:conflict-marker"
git commit -qam "a conflict left in"
expect "committed with the conflict" \
    "2:conflict-marker 4:conflict-marker 5:duplicate-key 6:conflict-marker"
sed -i '/^[<=>]/d' Sample.strings
expect "without the markers" "3:duplicate-key"
printf 'QVLANG=en\nIDE_TITLE="%064d"\n' 0 >Sample.strings
expect "a value that does not decode" "2:damaged-text"
