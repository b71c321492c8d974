#!/bin/sh
# wordcount.sh PROGRAM: the program's counts are those of sort | uniq -c.
set -eu
program=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

# A text with awkward corners: tabs, runs of blanks, an empty line, words longer
# than one read, equal counts, and no newline at the end.
{
    printf 'the  cat\tsat on the mat\n\n   the end  \n'
    seq 1 3000 | sed 's/^\(.*\)\(.\)$/word\2 number-\1/'
    head -c 5000 /dev/zero | tr '\0' 'x'
    printf ' a b c d e\nthe last line'
} >"$dir/text"

expected() {
    cat "$@" | tr ' \t\r\f\v' '\n\n\n\n\n' | sed '/^$/d' | LC_ALL=C sort | uniq -c |
        LC_ALL=C sort -k1,1nr -k2 | head -20 | awk '{ printf "%7s %s\n", $1, $2 }'
}

check() {
    expected "$@" >"$dir/expected"
    "$program" "$@" >"$dir/actual"
    test -s "$dir/expected"
    diff "$dir/expected" "$dir/actual"
}

check "$dir/text"
check "$dir/text" "$dir/text"
if [ -r /var/lib/dpkg/status ]; then
    check /var/lib/dpkg/status
    "$program" >"$dir/default"
    diff "$dir/expected" "$dir/default"
fi
# A word may hold a NUL: it counts, and is shown up to it.
printf 'a\0b a\0b c\n' >"$dir/nul"
test "$("$program" "$dir/nul")" = "      2 a
      1 c"
if "$program" "$dir" 2>/dev/null; then
    echo "a directory passed for a text"
    exit 1
fi
if "$program" "$dir/missing" 2>"$dir/error"; then
    echo "a missing file went unnoticed"
    exit 1
fi
grep -q 'cannot read' "$dir/error"
