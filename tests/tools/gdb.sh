#!/bin/sh
# gdb.sh PROGRAM PRINTERS: the debugger shows what the objects hold. Addresses are
# shown here as @.
set -eu
program=$1 printers=$2
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

input='qzInputChannel float = {object = @, function = @ <receive()>, pendingEvent = @}'
converter="qzConverter int to float = {downstream = $input}"
cat >"$dir/expected" <<EOF
path: "/usr/share"
chain: "/usr/share/doc"
(qzArray&)ints: (qzArray &) @: qzIntArray of 1 = {10}
strings: qzStrArray of 2 = {"one", ""}
dictionary: qzStrStrDictionary of 2 = {["second"] = "2", ["first"] = "1"}
pointers: qzVoidPtrDict of 0
set: qzStrSet of 1 = {"member"}
list: GenericList of 1 = {@}
links: qzIndexableList of 1 = {@}
data: qzStrData held by 0 = {value = "text"}
(qzObj&)gauge: (qzObj &) @: Gauge = {<outputs.level> = qzOutputChannel int = {$converter}, <inputs.show> = $input, <unit> = "bar", <scale> = 0.5, <last> = qzVoidData held by 1, letters = 5, level = @, reading = 4}
**(qzProperty**)gauge.properties->data: qzProperty = {outputs.level = qzOutputChannel int = {$converter}}
*qz_theEventHandler: qzEventHandler of 1 = {qzMessageEvent 1 = {channel = $converter, data = qzIntData held by 1 = {value = 7}}}
EOF
sed -n 's/^\([^ ]*\): .*/echo \1: \\n\nprint \1/p' "$dir/expected" >"$dir/commands"
timeout 120 gdb -q -nx -batch -ex "source $printers" -ex 'break stopHere' -ex run -ex up \
    -x "$dir/commands" "$program" >"$dir/output" 2>&1
sed -n '/^path: /,$p' "$dir/output" | sed '/: $/N; s/\n\$[0-9]* = //; s/@\?0x[0-9a-f]\+/@/g' |
    diff "$dir/expected" - || { head -20 "$dir/output"; exit 1; }
