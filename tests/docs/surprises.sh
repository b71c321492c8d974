#!/bin/sh
# surprises.sh TEST_PROGRAM... : every test that a comment or docs/surprises.md
# names as pinning something exists, and what a comment marks is in the document.
set -eu
cd "$(dirname "$0")/../.."
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

for program in "$@"; do
    "$program" --gtest_list_tests | awk '/^[^ ]/ { suite = $1 } /^ / { print suite $1 }'
done | sort -u >"$dir/tests"
test -s "$dir/tests"

# Names after "Pinned by", which may run over comment lines.
for directory in util xdr event regex; do
    [ -d $directory ] && find $directory -name '*.h' -o -name '*.cxx' | grep "^$directory/" || true
done | while read -r file; do
    sed 's|^ *// *||' "$file" | tr '\n' ' ' | grep -o 'Pinned by [^ ]*\( and [^ ]*\)\?' || true
done | grep -o '[A-Za-z_]\+\.[A-Za-z]\+' | sort -u >"$dir/comments"
test -s "$dir/comments"

grep -o '`[A-Za-z_]*\.[A-Za-z]*`' docs/surprises.md | tr -d '`' | sort -u >"$dir/document"

status=0
comm -23 "$dir/comments" "$dir/tests" | sed 's/^/a comment names a missing test: /' >"$dir/faults"
comm -23 "$dir/document" "$dir/tests" | sed 's/^/docs\/surprises.md names a missing test: /' >>"$dir/faults"
comm -23 "$dir/comments" "$dir/document" | sed 's/^/not in docs\/surprises.md: /' >>"$dir/faults"
if [ -s "$dir/faults" ]; then
    cat "$dir/faults"
    status=1
fi
exit $status
