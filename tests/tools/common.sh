# What the tests of the tools begin with: a directory of their own to work in, and how to run the
# tool, whose path is in $program.
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
cd "$dir"

fail() {
    echo "$*"
    exit 1
}

# What else must hold of a run, by the files out and err; a test may have a definition of its own.
check_output() { :; }

# run STATUS ARGUMENT...: output and messages go to the files out and err.
run() {
    wanted=$1 status=0
    shift
    timeout 120 "$program" "$@" >out 2>err || status=$?
    [ $status = "$wanted" ] ||
        fail "$(basename "$program") $*: status $status, not $wanted: $(cat err)"
    check_output "$*"
}
