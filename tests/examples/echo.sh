#!/bin/sh
# echo.sh PROGRAM: three letters come back, and the program ends by itself.
set -eu
test "$(timeout 60 "$1" | tr '\n' ',')" = "heard a,heard b,heard c,closing,"
