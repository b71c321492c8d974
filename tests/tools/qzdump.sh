#!/bin/sh
# qzdump.sh PROGRAM: what the program says of good, cut and hostile streams.
set -eu
program=$1
. "$(dirname "$0")/common.sh"

# Nothing raw on terminals.
check_output() { ! LC_ALL=C grep -q '[^ -~]' out err || fail "qzdump $1: control characters"; }

little='\042\021\146\125\104\063' big='\021\042\063\104\125\146'
header() { printf "qzBinaryWriter\0ieee\0$1"; }
word() { printf "\\$1\0\0\0"; }

# stream ORDER LONG SHORTS PAD: two graphs with every kind of pointer. The long 0
# behind a reference looks like the second word of the longer form.
stream() {
    header "$1"
    printf '\002' && word 2 && printf 'Node\0'
    printf '\112\004' && word 1 && word 2 && word 1 && printf "$2"
    printf '\003' && word 3 && word 4
    printf '\004' && word 3 && printf "$4"'\100\001<'
    printf '\013' && word 4 && printf "$4"'\001'
    printf '\015' && word 5 && printf "$4"
    printf '\016' && word 5 && printf "$4"
    printf '\012' && word 4 && word 2 && word 1
    printf '\114\004' && word 1 && printf "$4"'\0\0\0\0'
    printf '\106\004' && word 3 && word 4 && printf "$3"
    printf '\012' && word 6 && word 2 && word 1
    printf '\003' && word 7 && word 5
    printf '\105\005' && word 7 && word 5 && printf '&\033\\"\0'
}
stream "$little" '\005\0\0\0' '\001\0\376\377' '' >standard
stream "$little" '\005\0\0\0' '\001\0\376\377' '\0\0\0\0' >graph
stream "$big" '\0\0\0\005' '\0\001\377\376' '' >foreign
stream '\042\021\104\063\146\125' '\0\0\005\0' '\001\0\376\377' '\0\0\0\0' >mixed

cat >listing <<'EOF'
00000000  header           writer "qzBinaryWriter", floats "ieee", shorts little-endian, longs little-endian
0000001a  type definition  id 2, name "Node"
00000024  object           id 1, type 2 "Node", version 1, root of graph 1, 4 bytes: 5
00000036  new array        id 3, length 4
0000003f  known array      id 3
00000044  continuation     1 byte: 3c
00000047  new object       id 4
0000004c  null pointer
0000004d  new part         id 5
00000052  known part       id 5
00000057  object           id 4, type 2 "Node", version 1
00000064  known object     id 1, 4 bytes: 0
0000006e  shorts           id 3, length 4, 4 bytes: 1 -2
0000007c  object           id 6, type 2 "Node", version 1, root of graph 2
00000089  new array        id 7, length 5
00000092  chars            id 7, length 5, 5 bytes: "&\x1b\\\"\x00"
EOF
run 0 --members=longs standard
diff listing out
tail -n +2 listing | cut -c9- >records
for other in graph foreign mixed -; do
    run 0 --members=longs $other <graph
    tail -n +2 out | cut -c9- | diff records -
done
run 0 --fields=4 graph # the second words are empty continuations then
grep -q 'continuation$' out || fail "--fields=4: $(cat out)"
run 1 --fields=8 standard
run 0 --fields=4 --data=1 standard
grep -q 'shorts .* 4 bytes: 01 \.\.\.$' out || fail "--data=1: $(cat out)"

run 0 --stats standard
diff - out <<'EOF'
    bodies    records          bytes  type
         0          0             26  header
         0          1             10  type definitions
         1          1             15  array of chars
         1          1             14  array of shorts
         3         12             96  object "Node"
         5         15            161  total
EOF
run 0 --dot graph
diff - out <<'EOF'
digraph stream {
    node [shape=box];
    n1 [label="1 \"Node\"", peripheries=2];
    n1 -> n3;
    n1 -> n3;
    n1 -> n4;
    n5 [label="5 part", style=dashed];
    n1 -> n5 [style=dashed];
    n1 -> n5 [style=dashed];
    n4 [label="4 \"Node\""];
    n4 -> n1;
    n3 [label="3 2 shorts", style=rounded];
    n6 [label="6 \"Node\"", peripheries=2];
    n6 -> n7;
    n7 [label="7 5 chars \"&amp;\\x1b\\\\\\\"\\x00\"", style=rounded];
}
EOF

# A cut shows, but for those after the header, a graph, or an object that so far
# points to nothing.
size=$(wc -c <standard) whole=''
for cut in $(seq 0 "$size"); do
    head -c "$cut" standard >cut
    status=0
    "$program" cut >out 2>err || status=$?
    [ $status = 0 ] && whole="$whole $cut" && continue
    [ $status = 1 ] && grep -q '^qzdump: cut: offset ' err || fail "cut at $cut: $status"
done
[ "$whole" = " 26 54 124 137 $size" ] || fail "whole at$whole"

# broken WHY OCTETS: the first message for these records behind a header.
broken() {
    header "$little" >bad
    printf "$2" >>bad
    run 1 --dot bad
    run 1 --stats bad
    run 1 bad
    [ "$(sed -n '1s/^qzdump: bad: offset //p' err)" = "$1" ] || fail "not $1: $(cat err)"
}
type='\002\002\0\0\0T\0'
object="$type"'\012\001\0\0\0\002\0\0\0\001\0\0\0'
array3='\003\003\0\0\0\004\0\0\0'
broken '0000001a: no record has kind 15' '\117'
broken '0000001a: no record has kind 63' '\377'
broken '0000001a: a record claims 513 bytes of data and can have 512' '\212\001\002'
broken '0000001a: a record claims 4294967295 bytes of data and can have 512' '\300\377\377\377\377'
broken '0000001a: a name does not end within 65536 bytes' "\002\002\0\0\0$(printf %070000d 0)"
broken '0000001a: a continuation, and nothing to continue' '\100\001x'
broken '0000001a: a record of kind null pointer outside of an object' '\001'
broken '0000001a: array 3 where a graph should begin' '\005\003\0\0\0\0\0\0\0'
broken '0000001a: object 1 has type 9, which was not defined' '\012\001\0\0\0\011\0\0\0\001\0\0\0'
broken '00000021: the stream ends between a type definition and what it is for' "$type"
broken '0000002e: object 2 was type 2 before' "$object"'\013\002\0\0\0'
broken '0000002e: array 1 was object 1 before' "$object"'\004\001\0\0\0'
broken '0000002e: object 9 was not heard of before' "$object"'\014\011\0\0\0'
broken '00000037: object 3 was array 3 before' "$object$array3"'\014\003\0\0\0'
broken '0000002e: part 1 is new and was here before' "$object"'\015\001\0\0\0'
broken '0000002e: id 0 stands for the null pointer and nothing else' "$object"'\013\0\0\0\0'
broken '0000003c: the stream ends before the body of object 3 and 1 more' \
    "$object"'\013\003\0\0\0\003\004\0\0\0\377\377\377\377'
broken '00000037: array 3 has 3 bytes, and pointers promised 4' \
    "$object$array3"'\105\003\003\0\0\0\003\0\0\0abc'
broken '00000037: 5 bytes are no whole number of longs' \
    "$object$array3"'\107\005\003\0\0\0\005\0\0\0abcde'
broken '00000045: array 3 lacks 1 of its 5 bytes' \
    "$object$array3"'\105\004\003\0\0\0\005\0\0\0abcd'
broken '00000044: more data than the 4 bytes of array 3' \
    "$object$array3"'\105\003\003\0\0\0\004\0\0\0abc\100\002de'
broken '0000001a: object 1 has type 9, which was not defined' \
    '\012\001\0\0\0\011\0\0\0\001\0\0\0\002\003\0\0\0\033[2J\177\0\012\004\0\0\0\003\0\0\0\001\0\0\0'
[ "$(grep -c 'x1b\[2J\\x7f' out)" = 2 ] || fail "escapes: $(cat out)"

# misfit WHY OCTETS: the same for a whole stream.
misfit() {
    printf "$2" | run 1 -
    [ "$(cat err)" = "qzdump: -: offset $1" ] || fail "not $1: $(cat err)"
}
misfit '00000000: the stream ends within its header' ''
misfit '00000000: not a stream of the binary object format: its writer is "\x07"' \
    "\007\0ieee\0$little"
misfit '00000000: no reader knows the float format "vax"' "qzBinaryWriter\0vax\0$little"
misfit '00000000: no reader knows the byte order of the shorts' \
    'qzBinaryWriter\0ieee\0\0\0\063\104\125\146'
misfit '00000000: no reader knows the byte order of the longs' \
    'qzBinaryWriter\0ieee\0\042\021\377\377\377\377'

for misuse in '' 'a b' '--fields=5 a' '--data=x a' '--members=x a' '--dot --stats a' '--what a'; do
    # shellcheck disable=SC2086
    run 2 $misuse
    grep -q '^usage: qzdump' err || fail "no usage after $misuse"
done
run 1 "$dir/missing"
run 1 "$dir"
grep -q 'Is a directory' err || fail "a directory: $(cat err)"
run 0 --help
run 0 --version
! "$program" standard >/dev/full 2>err || fail "lost output went unnoticed"
