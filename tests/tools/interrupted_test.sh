#!/usr/bin/env bash
# Stops `orva-strings protect --in-place` and `-o`, and `fix`, at each call by which they write the
# file: killed, and by signals. The file keeps its old bytes until the rename and has its new ones after
# it. Then does the same with show's copy and a new key, and lets another program change the file.
#
# Usage: interrupted_test.sh TOOL, the tool linked with KillAtCall.cpp
set -euo pipefail
tool=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

{
    echo "QVLANG=en"
    for i in $(seq 500); do
        echo "IDE_$i=\"text number $i\""
    done
} >"$work/old"
"$tool" protect "$work/old" >"$work/new"
cmp -s "$work/old" "$work/new" && { echo "nothing to protect"; exit 1; }

# Recreates the folder, holding only the file from before, if any.
make_folder() {
    rm -rf "$work/folder"
    mkdir "$work/folder"
    [ -z "$before" ] || { cp "$before" "$work/folder/file" && chmod "$mode" "$work/folder/file"; }
}

# Runs the command undisturbed. Sets calls to the number of its calls, counting half a write as one
# more. Fails unless they have these names.
expect_calls() { # NAMES
    make_folder
    rm -f "$work/calls"
    CALLS=$work/calls "$tool" "${command[@]}" >/dev/null 2>&1
    local names
    names=$(cut -d ' ' -f 2 "$work/calls" | paste -sd ' ')
    [ "$names" = "$1" ] || { echo "${command[*]} made its calls in this order: $names"; exit 1; }
    calls=$(tail -1 "$work/calls" | cut -d ' ' -f 1)
}
number_of() { # NAME: the first call of that name
    grep -m 1 " $1\$" "$work/calls" | cut -d ' ' -f 1
}

# Runs the command once, stopped at the N-th call. Fails unless it ends with this status and leaves
# these bytes, or, if the name of their file is empty, no file.
stop_at() { # VARIABLE N STATUS BYTES
    make_folder
    local status=0
    (umask 022 && exec env "$1=$2" "$tool" "${command[@]}") >/dev/null 2>"$work/err" || status=$?
    [ "$status" = "$3" ] || { echo "$1=$2 ended with $status"; cat "$work/err"; exit 1; }
    if [ -n "$4" ]; then cmp "$work/folder/file" "$4"; else [ ! -e "$work/folder/file" ]; fi ||
        { echo "$1=$2 left the wrong file"; exit 1; }
    [ ! -e "$work/folder/file" ] || [ "$(stat -c %a "$work/folder/file")" = "$mode" ] ||
        { echo "$1=$2 changed the mode"; exit 1; }
    [ -z "$(find "$work/folder" -type f -perm "/$(printf %o $((0777 & ~0$mode)))")" ] ||
        { echo "$1=$2 left something that users who cannot read the file can read"; exit 1; }
    [ "$1" = KILL_AT ] || [ -z "$(find "$work/folder" -mindepth 1 ! -name file)" ] ||
        { echo "$1=$2 left a file"; exit 1; }
}

# Everything is on disk before the name leads to it, and the name before the tool ends.
stop_at_each_call() { # BEFORE MODE NAMES COMMAND...: the file before, if any, its mode, the calls
    before=$1 mode=$2 command=("${@:4}")
    expect_calls "$3"
    local rename resolved n file
    rename=$(number_of rename)
    resolved=$(number_of lstat)
    for n in $(seq "$calls"); do
        file=$work/new
        [ "$n" -gt "$rename" ] || file=$before
        stop_at KILL_AT "$n" 137 "$file"
    done 2>/dev/null
    stop_at KILL_AT $((calls + 1)) 0 "$work/new"
    for SIGNAL in 2 3 14; do  # SIGINT, SIGQUIT, SIGALRM
        export SIGNAL
        for n in $(seq "$calls"); do  # signals wait from the moment the name is resolved
            file=$work/new
            [ "$n" -gt "$resolved" ] || file=$before
            stop_at INTERRUPT_AT "$n" $((128 + SIGNAL)) "$file"
        done 2>/dev/null
    done
    unset SIGNAL
    echo "${command[*]/"$work"/}, before: ${before#"$work/"}: stopped at each of $calls calls"
}
echo "whatever" >"$work/other"
into_new="close lstat write fsync close rename fsync close"
into_old="close lstat write fchmod fsync close lstat rename fsync close"
in_place="close lstat write fchmod fsync close close lstat rename fsync close"
stop_at_each_call "" 644 "$into_new" protect -o "$work/folder/file" "$work/old"
stop_at_each_call "$work/other" 640 "$into_old" protect -o "$work/folder/file" "$work/old"
stop_at_each_call "$work/old" 640 "$in_place" protect --in-place "$work/folder/file"
{ printf '\xEF\xBB\xBF' && cat "$work/new"; } >"$work/marked"
stop_at_each_call "$work/marked" 640 "$in_place" fix "$work/folder/file"

# A change that another program makes before the last check stays, and nothing is left beside the file.
cat >"$work/look" <<'END'
cd "$1"
find . -mindepth 1 ! -name 'file.??????' -printf '%P %y %s %m %U %G %i %l\n' | sort
find . -type f ! -name 'file.??????' -exec cksum {} + | sort
END
act_at() { # N ACT: another program does this in the folder at the N-th call
    make_folder
    rm -f "$work/seen"
    status=0
    ACT_AT=$1 ACT="(cd '$work/folder' && $2) && sh '$work/look' '$work/folder' >'$work/seen'" \
        timeout -s KILL 60 "$tool" "${command[@]}" 2>"$work/err" || status=$?
    if [ ! -e "$work/seen" ] || [ -n "$(find "$work/folder" -name 'file.??????')" ]; then
        echo "'$2' at call $1 ended with $status"
        cat "$work/err"
        exit 1
    fi
}
stays_at() { # N ACT
    act_at "$@"
    if [ "$status" != 2 ] || ! grep -q 'error:' "$work/err" ||
        ! sh "$work/look" "$work/folder" | cmp "$work/seen"; then
        echo "'$2' at call $1 did not stay, status $status"
        cat "$work/err"
        exit 1
    fi
}
is_replaced_at() { # N ACT
    act_at "$@"
    if [ "$status" != 0 ] || [ ! -f "$work/folder/file" ] ||
        ! cmp "$work/folder/file" "$work/new"; then
        echo "'$2' at call $1 was not replaced, status $status"
        cat "$work/err"
        exit 1
    fi
}
# Sets numbers to those of the calls before the rename.
number_calls() { # NAMES
    expect_calls "$1"
    mapfile -t numbers < <(sed '/ rename$/,$d' "$work/calls" | cut -d ' ' -f 1)
}
kinds=(
    'chmod 600 file'
    'cp -p file other && mv other file'
    'mv file moved && mkfifo -m 640 file'
    'rm file && mkdir file'
    'rm file && ln -s file file'
    'rm file'
)
[ "$(id -u)" != 0 ] || kinds+=('chown 12345 file' 'chgrp 12345 file')
writes=('echo more >>file' 'echo "//" >part && dd if=part of=file conv=notrunc status=none')
number_calls "$in_place"
for n in "${numbers[@]}"; do
    for act in "${kinds[@]}"; do
        stays_at "$n" "$act"
    done
done
for n in "${numbers[@]:2}"; do  # once the name is resolved; before, it is a link like any other
    stays_at "$n" 'mv file moved && ln -s moved file'
done
for n in "${numbers[@]::${#numbers[@]}-1}"; do  # until the old file is read and closed
    for act in "${writes[@]}"; do
        stays_at "$n" "$act"
    done
done

# With -o the old content does not matter, nor does a file made where there was none.
before=$work/other mode=640 command=(protect -o "$work/folder/file" "$work/old")
number_calls "$into_old"
for n in "${numbers[@]: -3}"; do
    for act in "${kinds[@]}"; do
        stays_at "$n" "$act"
    done
    for act in "${writes[@]}"; do
        is_replaced_at "$n" "$act"
    done
done
before=''
number_calls "$into_new"
for n in "${numbers[@]: -2}"; do
    for act in 'echo mine >file' 'mkfifo file' 'ln -s nowhere file'; do
        is_replaced_at "$n" "$act"
        [ ! -e "$work/folder/nowhere" ] || { echo "a link was followed late"; exit 1; }
    done
    stays_at "$n" 'mkdir file'
done
echo "changed by another program at each of the calls before the rename"

before=$work/old command=(protect --in-place "$work/folder/file")
make_folder
SHORT_TRANSFERS=1 "$tool" protect --in-place "$work/folder/file" 2>/dev/null
cmp "$work/folder/file" "$work/new"

# Exceeding the file size limit is an error like any other.
cp "$work/old" "$work/folder/file"
status=0
(ulimit -f 10; exec "$tool" protect --in-place "$work/folder/file") 2>"$work/err" || status=$?
if [ "$status" != 2 ] || ! grep -q 'error: .*File too large' "$work/err" ||
    ! cmp "$work/folder/file" "$work/old" || [ "$(find "$work/folder" -type f | wc -l)" != 1 ]; then
    echo "a file that is too large ended with $status"
    exit 1
fi
if (ulimit -f 0; exec "$tool" key new "$work/key") 2>/dev/null || [ -e "$work/key" ]; then
    echo "a key that can't be written was left behind"
    exit 1
fi

# Wherever it is killed, show leaves none of the file behind, and nothing of its own that others
# could access. It leaves nothing at all if the reader stops, a signal comes or few files may be
# open.
export TMPDIR=$work/tmp
mkdir "$TMPDIR"
show() { "$tool" show --reveal "$work/new"; }
is_clean() { [ -z "$(ls "$work/tmp")" ] || { echo "show left a copy: $1"; exit 1; }; }
show 2>/dev/null | true || true
is_clean pipe
before='' command=(show --reveal "$work/new")
expect_calls "close mkdtemp mkdir mkdir unlink fchmod write symlink close"
for n in $(seq "$calls"); do
    status=0
    (umask 0 && KILL_AT=$n show) >/dev/null 2>&1 || status=$?
    [ "$status" = 137 ] || { echo "KILL_AT=$n ended show with $status"; exit 1; }
    if [ -n "$(find "$work/tmp" -type f -size +0)" ]; then
        echo "killed at call $n, show left a copy of the texts"
        exit 1
    fi
    if [ -n "$(find "$work/tmp" -mindepth 1 ! -type l -perm /077)" ]; then
        echo "killed at call $n, show left something that others can access"
        exit 1
    fi
    rm -rf "$work/tmp/"*
    status=0
    INTERRUPT_AT=$n show >/dev/null 2>&1 || status=$?
    [ "$status" = 130 ] || { echo "INTERRUPT_AT=$n ended show with $status"; exit 1; }
    is_clean "INTERRUPT_AT=$n"
done
KILL_AT=$((calls + 1)) show >/dev/null
is_clean "after the last call"
show_calls=$calls
# If opening shares the position of the file that is already open, it can be read only once.
printf 'QVLANG=en\nMENU="one"\nQVLANG=fr\nMENU="deux"\n' >"$work/two"
for answer in en:one FR:deux xx:one; do
    shown=$(SHARED_POSITION=1 "$tool" show --fallback --language "${answer%:*}" "$work/two" MENU 2>/dev/null) || true
    [ "$shown" = "MENU=\"${answer#*:}\"" ] || { echo "shared, ${answer%:*} shows $shown"; exit 1; }
done
if ! grep -qa __ubsan_handle "$tool"; then  # it opens files, too, and gives up if it can't
    exec 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&-  # files that the test's parent left open
    for files in $(seq 3 12); do
        shown=no
        if (ulimit -n "$files"; show) >/dev/null 2>&1; then shown=yes; fi
        is_clean "$files open files"
        # Besides the standard ones it needs the copy and the file through which the library reads
        # it.
        [ "$shown" = "$([ "$files" -lt 5 ] && echo no || echo yes)" ] ||
            { echo "with $files open files, shown: $shown"; exit 1; }
    done
fi

if output=$(ulimit -f 10; show 2>&1) || [[ $output != *"/strings: File too large"* ]]; then
    echo "a copy that can't be written is not reported: $output"
    exit 1
fi
is_clean "no room"

# A key file, once begun, is finished before a signal ends the command.
command=(key new "$work/folder/file")
expect_calls "fchmod write fsync close fsync close"
for n in $(seq "$calls"); do
    make_folder
    status=0
    INTERRUPT_AT=$n "$tool" "${command[@]}" 2>/dev/null || status=$?
    if [ "$status" != 130 ] || ! grep -qxE '[0-9A-F]{64}' "$work/folder/file"; then
        echo "INTERRUPT_AT=$n did not wait for the key, status $status"
        exit 1
    fi 2>/dev/null
done
# Killed, it may leave part of one, which is no key.
parts=0
for n in $(seq "$calls"); do
    make_folder
    status=0
    KILL_AT=$n "$tool" "${command[@]}" 2>/dev/null || status=$?
    [ "$status" = 137 ] || { echo "KILL_AT=$n ended key new with $status"; exit 1; }
    grep -qxE '[0-9A-F]{64}' "$work/folder/file" && continue
    parts=$((parts + 1))
    status=0
    "$tool" key show --key-file "$work/folder/file" >/dev/null 2>&1 || status=$?
    [ "$status" = 2 ] || { echo "part of a key is taken for a key, status $status"; exit 1; }
done 2>/dev/null
[ "$parts" -gt 0 ] || { echo "no part of a key was left, so SECURITY.md says too little"; exit 1; }
echo "short transfers, limits, $show_calls kills of show, $calls interrupts and kills of a new key"
