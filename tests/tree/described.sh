#!/bin/sh
# described.sh ROOT: fails when a function or variable of the public headers has no describing comment before it.
set -eu
cd "$1"
awk -f tests/tree/declarations.awk include/*.h | awk '
    $3 != "described" { print $1 " is not described"; wrong = 1 }
    END { exit wrong || !NR }'
