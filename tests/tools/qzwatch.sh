#!/bin/sh
# qzwatch.sh PROGRAM QZDUMP: what the program counts of files, streams and changing
# files, beside grep, sort and uniq; and what it keeps when something goes wrong.
set -eu
program=$1 qzdump=$2
. "$(dirname "$0")/common.sh"
background= writers=
trap 'kill $background $writers 2>/dev/null || :; rm -rf "$dir"' EXIT

# count NAME: what the table says.
count() { awk -v name="$1" '$2 == name { print $1; exit }' "${2:-out}"; }

# Patterns beside grep, on lines that are empty, long, unterminated, and none.
awk 'BEGIN {
    srand(7)
    split("error: disk 1,,failed for root,x.y,error failed,-]z,tab\there,a word,$cash^,word", word, ",")
    for (i = 0; i < 20000; ++i) print word[1 + int(10 * rand())] " " word[1 + int(10 * rand())] i % 97
}' >text
{
    head -c 300000 /dev/zero | tr '\0' e
    echo ' failed'
    printf 'no newline error'
} >>text
: >empty
while read -r pattern; do
    for file in text empty; do
        run 0 -p "n=$pattern" $file
        expected=$(LC_ALL=C grep -cE -e "$pattern" $file || :)
        [ "$(count n)" = "$expected" ] || fail "$pattern in $file: $(count n), not $expected"
    done
done <<'EOF'
error
^error
error$
^ ?[0-9]+$
e.*failed
er[^:]*root
[^]-a]z
[^-a]z
x[^a-z]y
[^a-]+y 
[-]]
x\.y
\^|\$
\<word\>
(error|failed).+(disk|cash)
.*
^$
EOF
run 0 -l 'n=x.y' -l 'all=' text
[ "$(count n)" = "$(grep -cF x.y text)" ] || fail "literal: $(cat out)"
[ "$(count all)" = "$(grep -c '' text)" ] || fail "empty literal: $(cat out)"

# Keys beside sort and uniq: all of them, and the order of the highest.
run 0 -t 1000 -p 'n=for root ([a-z.: ]+)[0-9]' -p 'n=failed' text
sed -nE 's/.*for root ([a-z.: ]+)[0-9].*/\1/p' text | LC_ALL=C sort | uniq -c |
    LC_ALL=C sort -k1,1nr -s | sed 's/^ *//; s/ *$//' >expected
tail -n +2 out | sed -E 's/^ *//; s/ *#+$//; s/  +/ /; s/ *$//' | diff expected - || fail "keys"
seq 200000 | run 0 -t 2 -p 'n=^(.*)$' -
[ "$(awk '{ print $2 }' out | tr '\n' ' ')" = "n 1 10 " ] || fail "many keys: $(cat out)"

# NULs and octets that are no text: each counts in its line, and keys show them.
printf 'a\0b key=x\0y\nb\0\n\377\376 key=\033[2J\nkey=\351\n\0\0' >binary
run 0 -t 9 -p 'k=key=([^ ]+)$' -p 'n=^b' -l l=b binary
[ "$(count k) $(count n) $(count l)" = "2 1 2" ] || fail "binary: $(cat out)"
run 0 -t 9 -p 'k=key=(..?.?.?)' binary
grep -qF '\x1b[2J' out || fail "control characters: $(cat -v out)"
printf 'key=\302\233\351\233\342\202\233\n' | run 0 -t 9 -p 'k=key=(.*)'
grep -qF "$(printf '\\xc2\\x9b\351\\x9b\342\202\233 ')" out || fail "upper controls: $(cat -v out)"

# Other kinds of input.
mkfifo fifo
cat text >fifo &
run 0 -l n=error fifo - text <text
[ "$(count n)" = $((3 * $(grep -c error text))) ] || fail "fifo: $(cat out)"
mkdir -p d e d/matching.log
for i in $(seq 150); do echo "line $i" >d/$i.log; done
cp d/7.log e/b.log
run 0 -l n=line -d ':d::e=.*\.log' empty
[ "$(count n)" = 151 ] || fail "directories: $(cat out)"

grep -q __ubsan "$program" || # whose checks need descriptors
    (ulimit -n 24 && run 0 -l n=line d/[0-9]*.log && [ "$(count n)" = 150 ]) ||
    fail "few descriptors: $(cat out)"
run 0 -f -l n=x /dev/null

# Lines without an end, none of them too long, that are too much together.
# Minutes with sanitizers.
if ! grep -q __ubsan "$program"; then
    truncate -s 60M z1 z2 z3 z4 z5
    run 0 -l n= z?
    [ "$(count n)" -gt 5 ] || fail "beginnings of lines: $(cat out)"
fi

# start ARGUMENT...: in the background, its progress in a FIFO.
mkfifo progress go
start() {
    timeout 60 "$program" -i 0.05 "$@" >out 2>progress &
    background=$!
    exec 8<progress
}
await() { # TEXT, as the end of a line of progress
    while read -r line <&8; do
        case $line in *"$1") return 0 ;; esac
    done
    fail "ended before $1: $(cat out)"
}
finish() { # [SIGNAL]
    [ $# = 0 ] || kill -"$1" $background
    cat <&8 >err
    status=0
    wait $background || status=$?
    background=
    [ $status = 0 ] || fail "status $status: $(cat err)"
}

# A file that never lets the program wait holds up neither timers nor signals.
start -l n=x /dev/zero
await ' n 0'
finish INT

# FIFOs that stay open, more of them than can be served: all get their turns.
exec 9<>go
for i in $(seq 120); do
    mkfifo f$i
    (echo first && read -r _ <&9 && echo last) >f$i 8<&- &
    writers="$writers $!"
done
start -l n=st f[0-9]*
await ' n 120'
yes '' | head -n 120 >&9
finish
writers=
[ "$(count n)" = 240 ] || fail "turns: $(cat out)"

# Following: growth within a line, more files than can be served, rotation with a
# last word to the old file, cutting, a FIFO with one writer after another.
for i in $(seq 120); do echo n0 >g$i; done
echo n1 >log
start -f -s follow.state -p 'n=n([0-9]*)' log fifo g*
await ' n 121'
printf 'n' >>log
printf '2\n' >>log
echo n3 >>g99
await ' n 123'
exec 7>>log
mv log log.1
echo n4 >&7
echo n5 >log
await ' n 125'
echo n6 >>log
await ' n 126'
: >log
echo n >log
await ' n 127'
echo n8 >fifo
await ' n 128'
echo n9 >fifo
await ' n 129'
printf n10 >>log # no line yet
echo n11 >>g1
await ' n 130'
exec 7>&-
finish TERM
[ "$(count n)" = 131 ] || fail "following: $(cat out)"

# The state goes on from run to run, whatever is counted, and can be looked into.
printf 'n1\nn2\n' >pair
for signal in 'HUP 2' 'TERM 4'; do
    start -f -s state -p 'n=n(.*)' -l other=x pair
    await " n ${signal#* }  other 0"
    finish "${signal% *}"
done
ln -s state link && echo mine >state.new
run 0 -s link -p 'third=(.)' -t 5 pair
[ "$(count n) $(count other) $(count third)" = "4 0 2" ] || fail "state: $(cat out)"
"$qzdump" --stats state >stats
grep -q ' 3 .* object "Counter"$' stats || fail "qzdump: $(cat stats)"

# Whatever is wrong with a state, it stays as it was: cut or changed anywhere,
# more behind it, another program's, no file at all.
refused() { # FILE WHAT
    cp "$1" before
    run 2 -s "$1" -l n=x text
    [ ! -s out ] && grep -q "^qzwatch: $1: not a state file" err || fail "$2: $(cat out err)"
    cmp -s before "$1" || fail "$2: changed"
}
size=$(wc -c <state)
cp state good
run 0 -s good -l n=x text
mv out goodcounts
for at in $(seq 0 11 $((size - 1))); do
    head -c "$at" state >cut
    refused cut "cut at $at"
    # An object's number may change without harm, and nothing else.
    { head -c "$at" state; printf '\252'; tail -c +$((at + 2)) state; } >flipped
    cp flipped again
    "$program" -s again -l n=x text >out 2>err && cmp -s out goodcounts ||
        refused flipped "changed at $at"
done
{ cat state; printf x; } >longer
refused longer "longer"
refused text "text"

# Nothing is begun with a mistake, nor is anything lost.
cp state before
mkdir directory
while IFS='|' read -r named arguments; do
    # shellcheck disable=SC2086
    run 2 $arguments
    [ ! -s out ] && grep -qF "$named" err || fail "$arguments: $(cat out err)"
done <<'EOF'
usage: qzwatch|
usage: qzwatch|text
usage: qzwatch|-x -l n=x text
usage: qzwatch|-l x text
usage: qzwatch|-p =x text
usage: qzwatch|-i 0 -l n=x text
usage: qzwatch|-t x -l n=x text
usage: qzwatch|-t 1000001 -l n=x text
usage: qzwatch|-i 1e-9 -l n=x text
usage: qzwatch|-l n=x - -
qzwatch: n: the regular|-s state -p n=( text
qzwatch: d=(: the regular|-s state -l n=x -d d=(
qzwatch: missing: No such file|-s state -l n=x text missing
qzwatch: directory: Is a directory|-s state -l n=x directory
qzwatch: text: Not a directory|-s state -l n=x -d d:text=x
qzwatch: nowhere: No such file|-s state -l n=x -d d:nowhere=x
qzwatch: directory: Is a directory|-s directory -l n=x text
qzwatch: nowhere/state: No such file|-s nowhere/state -l n=x text
EOF
cmp -s before state || fail "a mistake changed the state"
run 0 --help
run 0 --version

# No room for the new state, which shows as late as can be: the old one stays, and the counts are shown.
status=0
(ulimit -f 1 && seq 80 | "$program" -s state -p 'n=(.*)' >out 2>err) || status=$?
[ $status = 1 ] && grep -q '^qzwatch: state: File too large' err || fail "no room: $(cat err)"
[ "$(count n)" = 84 ] && cmp -s before state && [ "$(cat state.*)" = mine ] || fail "no room: state"
status=0
"$program" -s state -l n=x text >/dev/full 2>err || status=$?
[ $status = 1 ] && grep -q 'standard output: No space' err || fail "lost output: $(cat err)"
! cmp -s before state || fail "the state was not saved for lost output"
