#!/bin/sh
# packages.sh BUILD_DIR CXX FLAGS: the packages install, gdb finds the printers by
# itself, and the examples build and run. Nothing outside a temporary directory changes.
set -eu
build=$1 cxx=$2 flags=$3
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
root=$dir/root
cd "$dir"

quietly() {
    "$@" >>"$dir/log" 2>&1 || { cat "$dir/log"; exit 1; }
}

quietly cpack --config "$build/CPackConfig.cmake" -B "$dir"
architecture=$(dpkg-deb -f liborvikqzds1_*.deb Architecture)

# A system with what the packages may depend on, as it is on this machine.
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
dpkg-query -W -f 'Package: ${Package}\nStatus: install ok installed\nMaintainer: none
Architecture: '"$architecture"'\nMulti-Arch: same\nVersion: ${Version}\nDescription: none\n\n' \
    libc6 libgcc-s1 libstdc++6 >"$root/var/lib/dpkg/status"
quietly dpkg --root="$root" --log="$dir/dpkg.log" --force-architecture --force-not-root \
    -i ./*.deb

libdir=$(dirname "$(find "$root/usr/lib" -name liborvikqzds.so)")
export LD_LIBRARY_PATH="$libdir"
"$root/usr/bin/qzdump" --version >>"$dir/log"
for program in "$root"/usr/bin/*; do
    test -s "$root/usr/share/man/man1/${program##*/}.1"
done

# An i386 compiler on a machine that is not does not know of the directory by itself.
quietly cmake -G Ninja -S "$root/usr/share/doc/liborvikqzds-dev/examples" -B examples \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$flags -g -femit-class-debug-always" \
    -DCMAKE_PREFIX_PATH="$root/usr" -DCMAKE_LIBRARY_ARCHITECTURE="${libdir##*/}"
quietly cmake --build examples
test "$(examples/hello)" = "2 left, Peru: Lima"

# Printers are found by the place of the library, in one tree of gdb's own.
if command -v gdb >/dev/null; then
    mkdir -p "tree$root"
    ln -s "$root/usr/share/gdb/auto-load/usr" "tree$root/usr"
    timeout 120 gdb -q -nx -batch -iex "set auto-load scripts-directory $dir/tree" \
        -iex "set auto-load safe-path $dir" -ex 'set breakpoint pending on' \
        -ex 'break qzDictionary::removeAt' -ex run -ex 'frame function main' \
        -ex 'print capitals' examples/hello >gdb.log 2>&1 || true
    grep -qF '["Peru"] = "Lima"' gdb.log || { cat gdb.log; exit 1; }
fi
