#!/bin/sh
# dataflow.sh PROGRAM: immediate sends come first, then urgent, then queued ones.
set -eu
test "$("$1" | tr '\n' ' ')" = "7 degrees distributing 99 degrees 20 degrees 21 degrees 0 left "
