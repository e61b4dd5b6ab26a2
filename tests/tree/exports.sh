#!/bin/sh
# exports.sh ROOT LIBRARY: fails when exports.txt, the public headers and the library's symbols differ.
set -eu
cd "$1"
library=$2
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sort -u exports.txt | diff exports.txt - || { echo "exports.txt is not sorted, or names a symbol twice"; exit 1; }

awk -f tests/tree/declarations.awk include/zvRenew.h include/routines.h | awk '$2 == "exported" { print $1 }' |
    sort >"$work/declared"
diff "$work/declared" exports.txt || { echo "the headers (<) and exports.txt (>) differ"; exit 1; }

if [ "$(uname)" = Darwin ]; then
    nm -gU "$library" | awk '{ sub(/^_/, "", $3); print $3 }'
else
    nm -D --defined-only "$library" | awk '{ print $3 }'
fi | sort >"$work/exported"
diff "$work/exported" exports.txt || { echo "the library (<) and exports.txt (>) differ"; exit 1; }
