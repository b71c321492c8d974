#!/bin/sh
# wordcount.sh PROGRAM: the program's counts are those of sort | uniq -c.
set -eu
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

# Tabs, runs of blanks, an empty line, words longer than one read, equal counts,
# and no newline at the end.
{
    printf 'the  cat\tsat on the mat\n\n   the end  \n'
    seq 1 3000 | sed 's/^\(.*\)\(.\)$/word\2 number-\1/'
    head -c 5000 /dev/zero | tr '\0' 'x'
    printf ' a b c d e\nthe last line'
} >"$dir/text"
cat "$dir/text" "$dir/text" | tr ' \t\r\f\v' '\n\n\n\n\n' | sed '/^$/d' | LC_ALL=C sort | uniq -c |
    LC_ALL=C sort -k1,1nr -k2 | head -20 | awk '{ printf "%7s %s\n", $1, $2 }' >"$dir/expected"
"$1" "$dir/text" "$dir/text" | diff "$dir/expected" -

# A word may hold a NUL: it counts, and is shown up to it.
printf 'a\0b a\0b c\n' >"$dir/nul"
test "$("$1" "$dir/nul")" = "      2 a
      1 c"
for unreadable in "$dir" "$dir/missing"; do
    "$1" "$unreadable" 2>"$dir/error" && exit 1
    grep -q 'cannot read' "$dir/error"
done
# Without arguments it is this file's words that are counted.
database=/var/lib/dpkg/status
[ ! -r $database ] || test "$("$1")" = "$("$1" $database)"
