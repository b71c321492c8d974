#!/bin/sh
# addressbook.sh PROGRAM: the graph comes back as it was, also over an older, longer file.
set -eu
file=$(mktemp)
trap 'rm -f "$file"' EXIT
for size in 0 5000; do
    head -c $size /dev/zero >"$file"
    test "$("$1" "$file")" = "Ann, 12 High Street, knows Bob
    555 0101
    555 0102
Bob, 12 High Street, knows Ann
the circle closes, the address is shared"
    test "$(wc -c <"$file")" -lt 500
done
! "$1" / 2>/dev/null
! "$1" /dev/full 2>/dev/null
