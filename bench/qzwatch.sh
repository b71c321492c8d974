#!/bin/sh
# qzwatch.sh PROGRAM [MEGABYTES]: three patterns counted in log text, beside grep with
# the three joined, on the same file. Best of three runs of each.
set -eu
program=$1 megabytes=${2:-200}
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir"

first='error: ([a-z]+) failed' second='Failed password for ([a-z]+)' third='HTTP/1\.1" 50[0-9]'

# The log of some servers, always the same one.
awk -v megabytes="$megabytes" 'BEGIN {
    srand(5)
    words = split("connection closed by peer timeout after request served from cache user " \
        "session opened job started finished checking disk queue worker reload config", word)
    programs = split("sshd cron kernel nginx postfix systemd", program)
    while (bytes < megabytes * 1000000) {
        kind = rand()
        if (kind < 0.01)
            text = "error: " word[1 + int(words * rand())] " failed with " int(99 * rand())
        else if (kind < 0.03)
            text = "Failed password for user" substr("abcdef", 1 + int(6 * rand()), 1) \
                " from 10.0." int(256 * rand()) "." int(256 * rand()) " port " int(65536 * rand())
        else if (kind < 0.15)
            text = "\"GET /" word[1 + int(words * rand())] " HTTP/1.1\" " \
                (rand() < 0.2 ? 500 : 200) " " int(100000 * rand())
        else {
            text = word[1 + int(words * rand())]
            for (n = 3 + int(8 * rand()); n > 0; --n) text = text " " word[1 + int(words * rand())]
        }
        second = int(++lines / 40)
        line = sprintf("Nov %2d %02d:%02d:%02d web%02d %s[%d]: %s", 1 + second / 86400,
            second / 3600 % 24, second / 60 % 60, second % 60, 20 * rand(),
            program[1 + int(programs * rand())], 300 + 30000 * rand(), text)
        bytes += length(line) + 1
        print line
    }
}' >log

# best COMMAND...: the shortest time in milliseconds; the output is in out.
best() {
    shortest=
    for _ in 1 2 3; do
        before=$(date +%s%N)
        "$@" >out
        time=$((($(date +%s%N) - before) / 1000000))
        [ -n "$shortest" ] && [ "$shortest" -le $time ] || shortest=$time
    done
    echo "$shortest"
}

grep_time=$(LC_ALL=C best grep -cE "$first|$second|$third" log)
grep_lines=$(cat out)
our_time=$(best "$program" -p "errors=$first" -p "logins=$second" -p "faults=$third" log)
our_lines=$(awk '{ n += $1 } END { print n }' out)
[ "$grep_lines" = "$our_lines" ] || echo "grep counts $grep_lines lines, qzwatch $our_lines"

# The most memory a run had, in kB.
peak() { { /usr/bin/time -f %M "$program" -p "errors=$first" "$@" >out; } 2>&1 | tail -n 1; }
echo "$(wc -c <log) bytes, $our_lines lines match"
echo "grep -cE:  $grep_time ms"
echo "qzwatch:   $our_time ms"
awk -v ours="$our_time" -v grep="$grep_time" 'BEGIN { printf "ratio:     %.2f\n", ours / grep }'
if [ -x /usr/bin/time ]; then
    echo "memory:    $(peak log) kB at most; for twice as much input $(peak log log) kB"
fi
