#!/usr/bin/env bash
# Stops `orva-strings protect --in-place` and `-o` at each call by which they write the file, one after
# the other: killed, and for want of space. The file then holds its old bytes or its new ones, whole.
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

# Makes the folder anew, with only the file that is there before, if any.
make_folder() {
    rm -rf "$work/folder"
    mkdir "$work/folder"
    [ -z "$before" ] || { cp "$before" "$work/folder/file" && chmod "$mode" "$work/folder/file"; }
}

holds_before() {
    if [ -n "$before" ]; then cmp -s "$work/folder/file" "$before"; else [ ! -e "$work/folder/file" ]; fi
}

# Runs the tool once, stopped at the N-th call, and sets status; fails unless the file is whole.
stop_at() { # VARIABLE N
    make_folder
    status=0
    (umask 022 && exec env "$1=$2" "$tool" "${command[@]}") 2>"$work/err" || status=$?
    if holds_before; then
        olds=$((olds + 1))
    elif cmp -s "$work/folder/file" "$work/new"; then
        news=$((news + 1))
    else
        echo "$1=$2 left the file half written"
        exit 1
    fi
    [ ! -e "$work/folder/file" ] || [ "$(stat -c %a "$work/folder/file")" = "$mode" ] ||
        { echo "$1=$2 changed the mode"; exit 1; }
    [ -z "$(find "$work/folder" -type f -perm "/$(printf %o $((0777 & ~0$mode)))")" ] ||
        { echo "$1=$2 left what others may read who may not read the file"; exit 1; }
    [ "$1" = KILL_AT ] || [ -z "$(find "$work/folder" -mindepth 1 ! -name file)" ] ||
        { echo "$1=$2 left a file"; exit 1; }
}

stop_at_each_call() { # BEFORE MODE COMMAND...: the file there before, if any, and the one after
    before=$1 mode=$2
    shift 2
    command=("$@")
    echo "${command[*]/"$work"/}, before: ${before#"$work/"}"
    calls=0 olds=0 news=0
    while stop_at KILL_AT $((calls + 1)) && [ "$status" != 0 ]; do
        [ "$status" = 137 ] || { echo "KILL_AT=$calls ended with $status"; cat "$work/err"; exit 1; }
        calls=$((calls + 1))
    done 2>/dev/null
    cmp "$work/folder/file" "$work/new"
    if [ "$olds" -le 3 ] || [ "$news" -le 1 ]; then
        echo "$olds times the old file, $news the new"
        exit 1
    fi
    echo "killed at each of $calls calls"

    for SIGNAL in 2 3 14; do  # SIGINT, SIGQUIT, SIGALRM
        export SIGNAL
        waited=0
        for n in $(seq "$calls"); do
            stop_at INTERRUPT_AT "$n" 2>/dev/null
            [ "$status" = $((128 + SIGNAL)) ] || { echo "INTERRUPT_AT=$n ended with $status"; exit 1; }
            if cmp -s "$work/folder/file" "$work/new"; then waited=$((waited + 1)); fi
        done
        [ "$waited" -gt 4 ] || { echo "only $waited interrupts waited"; exit 1; }
        echo "interrupted at each of $calls calls, of which $waited waited"
    done
    unset SIGNAL

    failures=0
    for n in $(seq "$calls"); do
        stop_at FAIL_AT "$n"
        if [ "$status" = 0 ]; then  # the end of reading, or what comes after all is done
            cmp "$work/folder/file" "$work/new"
        elif [ "$status" = 2 ] && grep -q 'error: .*No space left' "$work/err"; then
            failures=$((failures + 1))
        else
            echo "FAIL_AT=$n ended with $status"
            cat "$work/err"
            exit 1
        fi
    done
    [ "$failures" -gt 4 ] || { echo "only $failures failures were told"; exit 1; }
    echo "failed at each of $calls calls, $failures of them told"
}
echo "whatever" >"$work/other"
stop_at_each_call "" 644 protect -o "$work/folder/file" "$work/old"
stop_at_each_call "$work/other" 640 protect -o "$work/folder/file" "$work/old"
stop_at_each_call "$work/old" 640 protect --in-place "$work/folder/file"

# Everything is on the disk before the name leads to it, and the name before the tool is done.
ends_with() { # CALLS COMMAND...
    make_folder
    rm -f "$work/calls"
    CALLS=$work/calls "$tool" "${@:2}" 2>/dev/null
    local order
    order=$(cut -d ' ' -f 2 "$work/calls" | paste -sd ' ')
    [[ $order = *"$1" ]] || { echo "$2 $3 made its calls in this order: $order"; exit 1; }
}
ends_with "write fchmod fsync close close lstat rename fsync close" protect --in-place "$work/folder/file"
before=$work/other
ends_with "write fchmod fsync close lstat rename fsync close" protect -o "$work/folder/file" "$work/old"
before=''
ends_with "write fsync close rename fsync close" protect -o "$work/folder/file" "$work/old"
before=$work/old

# What another program makes of the file until the last look at it stays, and nothing beside it.
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
        echo "'$2' at call $1 did not stay, $status"
        cat "$work/err"
        exit 1
    fi
}
is_replaced_at() { # N ACT
    act_at "$@"
    if [ "$status" != 0 ] || [ ! -f "$work/folder/file" ] ||
        ! cmp "$work/folder/file" "$work/new"; then
        echo "'$2' at call $1 was not replaced, $status"
        cat "$work/err"
        exit 1
    fi
}
# The numbers of the calls before the rename.
number_calls() {
    make_folder
    rm -f "$work/calls"
    CALLS=$work/calls "$tool" "${command[@]}" 2>/dev/null
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
number_calls
for n in "${numbers[@]}"; do
    for act in "${kinds[@]}"; do
        stays_at "$n" "$act"
    done
done
for n in "${numbers[@]:2}"; do  # from when the name is resolved: before, it is a link like any other
    stays_at "$n" 'mv file moved && ln -s moved file'
done
for n in "${numbers[@]::${#numbers[@]}-1}"; do  # until the old file is read and closed
    for act in "${writes[@]}"; do
        stays_at "$n" "$act"
    done
done

# With -o what the file holds does not matter, nor what is made where there was none.
before=$work/other mode=640 command=(protect -o "$work/folder/file" "$work/old")
number_calls
for n in "${numbers[@]: -3}"; do
    for act in "${kinds[@]}"; do
        stays_at "$n" "$act"
    done
    for act in "${writes[@]}"; do
        is_replaced_at "$n" "$act"
    done
done
before=''
number_calls
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

# Who may not keep the owner keeps the group, if he may; no bit outlives whom it was meant for, and
# none shuts somebody out in vain.
replace_refused() { # WHAT MODE: prints the new mode
    cp "$work/old" "$work/folder/file"
    chmod "$2" "$work/folder/file"
    REFUSE=$1 "$tool" protect --in-place "$work/folder/file" 2>/dev/null
    cmp "$work/folder/file" "$work/new"
    stat -c %a "$work/folder/file"
}
[ "$(replace_refused nothing 6754)" = 6754 ] || { echo "the mode is not kept"; exit 1; }
[ "$(replace_refused owner 6754)" = 754 ] || { echo "without the owner the mode is wrong"; exit 1; }
for modes in 754:744 664:644 604:600 701:700 640:600; do
    for what in group list; do
        [ "$(replace_refused "$what" "${modes%:*}")" = "${modes#*:}" ] ||
            { echo "without the $what the mode is wrong: $modes"; exit 1; }
    done
done
[ "$(replace_refused group 6754)" = 744 ] || { echo "without the group the mode is wrong"; exit 1; }
group=$(id -G | tr ' ' '\n' | tail -1)
[ "$(id -u)" != 0 ] || group=12345
chgrp "$group" "$work/folder/file"
REFUSE=owner "$tool" reveal --in-place "$work/folder/file" 2>/dev/null
[ "$(stat -c %g "$work/folder/file")" = "$group" ] || { echo "the group is not kept"; exit 1; }

# A limit of a file's size is an error like any other.
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

# show leaves nothing of the file behind, at whichever call it is killed, and nothing of its own that
# others could get at; and nothing at all when nobody reads on, a signal comes, a call fails or few
# files may be open.
mkdir "$work/tmp"
show() { TMPDIR=$work/tmp "$tool" show --reveal "$work/new"; }
is_clean() { [ -z "$(ls "$work/tmp")" ] || { echo "show left a copy: $1"; exit 1; }; }
show 2>/dev/null | true || true
is_clean pipe
rm -f "$work/calls"
CALLS=$work/calls show >/dev/null
order=$(cut -d ' ' -f 2 "$work/calls" | paste -sd ' ')
if [[ $order != "close mkdtemp mkdir mkdir unlink fchmod write symlink close" ]]; then
    echo "show made its calls in this order: $order"
    exit 1
fi
kills=0
while :; do
    status=0
    (umask 0 && KILL_AT=$((kills + 1)) show) >/dev/null 2>&1 || status=$?
    [ "$status" = 137 ] || break
    kills=$((kills + 1))
    if [ -n "$(find "$work/tmp" -type f -size +0)" ]; then
        echo "killed at call $kills, show left a copy of the texts"
        exit 1
    fi
    if [ -n "$(find "$work/tmp" -mindepth 1 ! -type l -perm /077)" ]; then
        echo "killed at call $kills, show left what is not private"
        exit 1
    fi
    rm -rf "$work/tmp/"*
done
if [ "$status" != 0 ] || [ "$kills" -lt "$(tail -1 "$work/calls" | cut -d ' ' -f 1)" ]; then
    echo "show was killed at $kills calls only, and then ended with $status"
    exit 1
fi
is_clean killed
interrupts=0
head -1 "$work/old" >"$work/short"
while ! INTERRUPT_AT=$((interrupts + 1)) TMPDIR=$work/tmp "$tool" show "$work/short" >/dev/null; do
    interrupts=$((interrupts + 1))
    is_clean "INTERRUPT_AT=$interrupts"
done
[ "$interrupts" -gt 2 ] || { echo "show made only $interrupts calls"; exit 1; }
for n in $(seq "$kills"); do
    status=0
    FAIL_AT=$n show >/dev/null 2>"$work/err" || status=$?
    is_clean "FAIL_AT=$n"
    if [ "$status" != 0 ] && { [ "$status" != 2 ] || ! grep -q 'error: .*No space' "$work/err"; }; then
        echo "FAIL_AT=$n ended show with $status"
        cat "$work/err"
        exit 1
    fi
done
# Where what is opened shares its position with the file that is open already, it can be read once.
printf 'QVLANG=en\nMENU="one"\nQVLANG=fr\nMENU="deux"\n' >"$work/two"
for answer in en:one FR:deux xx:one; do
    shown=$(SHARED_POSITION=1 "$tool" show --fallback --language "${answer%:*}" "$work/two" MENU 2>/dev/null) || true
    [ "$shown" = "MENU=\"${answer#*:}\"" ] || { echo "shared, ${answer%:*} shows $shown"; exit 1; }
done
if ! grep -qa __ubsan_handle "$tool"; then  # which opens files, too, and gives up without them
    shown=0
    for files in $(seq 3 12); do
        if (ulimit -n "$files"; show) >/dev/null 2>&1; then shown=$((shown + 1)); fi
        is_clean "$files open files"
    done
    [ "$shown" -ge 5 ] || { echo "only $shown limits were wide enough"; exit 1; }
fi

if told=$(ulimit -f 10; show 2>&1) || [[ $told != *"/strings: File too large"* ]]; then
    echo "a copy that can't be written is not told: $told"
    exit 1
fi
is_clean "no room"

# A key file is whole or not there.
unfinished=0
for n in 1 2 3 4 5 6; do
    rm -f "$work/key"
    if INTERRUPT_AT=$n "$tool" key new "$work/key" || [ "$(wc -c <"$work/key")" != 65 ]; then
        echo "INTERRUPT_AT=$n did not wait for the key"
        exit 1
    fi 2>/dev/null
    rm "$work/key"
    if FAIL_AT=$n "$tool" key new "$work/key" 2>/dev/null; then
        [ "$(wc -c <"$work/key")" = 65 ]
    elif [ -e "$work/key" ]; then
        echo "FAIL_AT=$n left a part of a key"
        exit 1
    else
        unfinished=$((unfinished + 1))
    fi
done
(cd "$work" && CALLS=$work/key-calls "$tool" key new key)  # in the folder that is current
grep -c fsync "$work/key-calls" | grep -qx 2 || { echo "the key's name may not last"; exit 1; }
[ "$unfinished" -ge 5 ] || { echo "only $unfinished keys were not finished"; exit 1; }
echo "calls in their order, short transfers, owners, limits, $kills kills of show, keys"
