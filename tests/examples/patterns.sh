#!/bin/sh
# patterns.sh PROGRAM: what it finds and makes of it is what sed does.
set -eu
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
mkdir "$dir/a" "$dir/b"
seq 1 300 | sed 's/.*/GET \/page& took &ms/; 7s/GET//' >"$dir/a/web.log"
echo 'GET / took 5ms' | tee "$dir/b/old.log" >"$dir/b/web.txt"

request='GET (/[a-z0-9]*) took ([0-9]+)'
"$1" "$dir/b:$dir/missing:$dir/a" '[a-z]*\.log' "$request" '\2 \1 [&]' >"$dir/actual"
for file in a/web b/old; do
    sed -nE "s|($request).*|${file#*/}.log: \3 \2 [\1]|p" "$dir/$file.log"
done | diff - "$dir/actual"
status=0
"$1" "$dir" x '(' y 2>"$dir/error" || status=$?
test $status = 2
