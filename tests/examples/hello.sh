#!/bin/sh
# hello.sh PROGRAM SOURCE README: the README shows this program, and it works.
set -eu
sed -n '/^```cpp$/,/^```$/p' "$3" | sed '1d;$d' | diff "$2" -
test "$("$1")" = "2 left, Peru: Lima"
