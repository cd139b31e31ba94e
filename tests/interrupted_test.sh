#!/usr/bin/env bash
# Stops `orva-strings protect --in-place` at each call by which it replaces the file, one after the
# other: killed, and for want of space. The file then holds its old bytes or its new ones, whole.
#
# Usage: interrupted_test.sh TOOL, the tool linked with KillAtCall.cpp
set -euo pipefail
tool=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

{
    echo "QVLANG=en"
    for i in $(seq 2000); do
        echo "IDE_$i=\"text number $i\""
    done
} >"$work/old"
"$tool" protect "$work/old" >"$work/new"
cmp -s "$work/old" "$work/new" && { echo "nothing to protect"; exit 1; }

olds=0 news=0

# Runs the tool once, stopped at the N-th call, and sets status; fails unless the file is whole.
stop_at() { # VARIABLE N
    rm -rf "$work/folder"
    mkdir "$work/folder"
    cp "$work/old" "$work/folder/file"
    chmod 640 "$work/folder/file"
    status=0
    (exec env "$1=$2" "$tool" protect --in-place "$work/folder/file") 2>"$work/err" || status=$?
    if cmp -s "$work/folder/file" "$work/old"; then
        olds=$((olds + 1))
    elif cmp -s "$work/folder/file" "$work/new"; then
        news=$((news + 1))
    else
        echo "$1=$2 left the file half written"
        exit 1
    fi
    [ "$(stat -c %a "$work/folder/file")" = 640 ] || { echo "$1=$2 changed the mode"; exit 1; }
}

calls=0
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

waited=0
for n in $(seq "$calls"); do
    stop_at INTERRUPT_AT "$n" 2>/dev/null
    [ "$status" = 130 ] || { echo "INTERRUPT_AT=$n ended with $status"; exit 1; }
    [ "$(find "$work/folder" -type f | wc -l)" = 1 ] || { echo "INTERRUPT_AT=$n left a file"; exit 1; }
    if cmp -s "$work/folder/file" "$work/new"; then waited=$((waited + 1)); fi
done
[ "$waited" -gt 4 ] || { echo "only $waited interrupts waited"; exit 1; }
echo "interrupted at each of $calls calls, of which $waited waited"

failures=0
for n in $(seq "$calls"); do
    stop_at FAIL_AT "$n"
    [ "$(find "$work/folder" -type f | wc -l)" = 1 ] || { echo "FAIL_AT=$n left a file"; exit 1; }
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

# Everything is on the disk before the name leads to it, and the name before the tool is done.
cp "$work/old" "$work/folder/file"
CALLS=$work/calls "$tool" protect --in-place "$work/folder/file" 2>/dev/null
order=$(paste -sd ' ' "$work/calls")
if [[ $order != *"write fchmod fsync close rename fsync close" ]]; then
    echo "the calls came in this order: $order"
    exit 1
fi

cp "$work/old" "$work/folder/file"
SHORT_WRITES=1 "$tool" protect --in-place "$work/folder/file" 2>/dev/null
cmp "$work/folder/file" "$work/new"

# Who may not keep the owner keeps the group, if he may; no bit outlives whom it was meant for.
replace_refused() { # WHAT: prints the new mode
    cp "$work/old" "$work/folder/file"
    chmod 6754 "$work/folder/file"
    REFUSE=$1 "$tool" protect --in-place "$work/folder/file" 2>/dev/null
    cmp "$work/folder/file" "$work/new"
    stat -c %a "$work/folder/file"
}
[ "$(replace_refused nothing)" = 6754 ] || { echo "the mode is not kept"; exit 1; }
[ "$(replace_refused owner)" = 754 ] || { echo "without the owner the mode is wrong"; exit 1; }
[ "$(replace_refused group)" = 744 ] || { echo "without the group the mode is wrong"; exit 1; }
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

# Nothing stays under TMPDIR when nobody reads on.
mkdir "$work/tmp"
TMPDIR=$work/tmp "$tool" show --reveal "$work/new" 2>/dev/null | true || true
[ -z "$(ls "$work/tmp")" ] || { echo "show left a copy"; exit 1; }

# A key file that could not be finished does not stay.
unfinished=0
for n in 1 2 3 4 5; do
    rm -f "$work/key"
    if FAIL_AT=$n "$tool" key new "$work/key" 2>/dev/null; then
        [ "$(wc -c <"$work/key")" = 65 ]
    elif [ -e "$work/key" ]; then
        echo "FAIL_AT=$n left a part of a key"
        exit 1
    else
        unfinished=$((unfinished + 1))
    fi
done
[ "$unfinished" -ge 4 ] || { echo "only $unfinished keys were not finished"; exit 1; }
echo "calls in their order, short writes, owners, limits, pipes, unfinished keys"
