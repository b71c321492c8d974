#!/bin/sh
# run.sh BUILD_DIR VERSION CXX FLAGS: installs the library into a fresh place and
# builds a foreign program against it, through CMake and through pkg-config.
set -eu
build=$1 version=$2 cxx=$3 flags=$4
here=$(cd "$(dirname "$0")" && pwd)
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT

cmake --install "$build" --prefix "$dir/installed" >"$dir/log"
test -e "$dir/installed/include/orvikqzds/util/Str.h"
if find "$dir/installed" -path '*detail*' | grep .; then
    echo "internal headers were installed"
    exit 1
fi

cat >"$dir/expected" <<EOF
9 key value 1
EOF

cmake -G Ninja -S "$here/project" -B "$dir/cmake" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_PREFIX_PATH="$dir/installed" \
    -DEXPECTED_VERSION="$version" >>"$dir/log" 2>&1 || { cat "$dir/log"; exit 1; }
cmake --build "$dir/cmake" >>"$dir/log" 2>&1 || { cat "$dir/log"; exit 1; }
"$dir/cmake/foreign" | diff "$dir/expected" -

pc=$(dirname "$(find "$dir/installed" -name orvikqzds.pc)")
export PKG_CONFIG_PATH="$pc"
test "$(pkg-config --modversion orvikqzds)" = "$version"
libdir=$(pkg-config --variable=libdir orvikqzds)
# shellcheck disable=SC2046,SC2086
"$cxx" -std=c++17 $flags "$here/project/main.cxx" -o "$dir/foreign" \
    $(pkg-config --cflags --libs orvikqzds) -Wl,-rpath,"$libdir"
"$dir/foreign" | diff "$dir/expected" -

# Every public header stands alone, in a program that knows only the installed ones.
for header in $(cd "$dir/installed/include/orvikqzds" && find . -name '*.h'); do
    echo "#include \"${header#./}\"" >"$dir/one.cxx"
    "$cxx" -std=c++17 $flags -Wall -Wextra -Werror -fsyntax-only $(pkg-config --cflags orvikqzds) \
        "$dir/one.cxx"
done
