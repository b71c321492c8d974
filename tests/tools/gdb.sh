#!/bin/sh
# gdb.sh PROGRAM PRINTERS: the debugger shows strings and containers by content.
set -eu
actual=$(gdb -q -nx -batch -ex "source $2" -ex 'break stopHere' -ex run -ex up \
    -ex 'print text' -ex 'print empty' -ex 'print ints' -ex 'print strings' \
    -ex 'print dictionary' -ex 'print set' "$1" 2>&1 | grep '^\$')
expected='$1 = "some text"
$2 = ""
$3 = qzIntArray of 3 = {10, 20, 30}
$4 = qzStrArray of 2 = {"one", ""}
$5 = qzStrStrDictionary of 2 = {["second"] = "2", ["first"] = "1"}
$6 = qzStrSet of 1 = {"member"}'
if [ "$actual" != "$expected" ]; then
    printf 'expected:\n%s\nactual:\n%s\n' "$expected" "$actual"
    exit 1
fi
