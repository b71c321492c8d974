#!/bin/sh
# tour.sh PAGE CXX FLAGS INCLUDE_DIR LIBRARY_DIR: the pieces of code of the page, in
# their order, are a program that prints what the page says. Pieces with a class at
# their left margin go before main().
set -eu
page=$1 cxx=$2 flags=$3 include=$4 library=$5
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

awk -v dir="$dir" -v page="$page" '
    /^```/ && kind { # the end of a piece
        if (kind == "cpp") printf "%s", piece >(dir (atTop ? "/top" : "/main"))
        kind = piece = atTop = ""
        next
    }
    /^```/ { kind = substr($0, 4); piece = kind == "cpp" ? "#line " NR + 1 " \"" page "\"\n" : ""; next }
    kind == "text" { print >(dir "/expected") }
    kind == "cpp" && /^#include/ { print >(dir "/includes"); $0 = "" }
    kind == "cpp" && /^class / { atTop = 1 }
    kind { piece = piece $0 "\n" }' "$page"
{
    cat "$dir/includes" "$dir/top"
    echo 'int main() {'
    cat "$dir/main"
    echo '}'
} >"$dir/tour.cxx"
# shellcheck disable=SC2086
"$cxx" -std=c++17 $flags -Wall -Wextra -Werror -I"$include" "$dir/tour.cxx" -o "$dir/tour" \
    -L"$library" -lorvikqzds -Wl,-rpath,"$library"
timeout 60 "$dir/tour" | diff "$dir/expected" -
