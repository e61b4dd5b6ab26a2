#!/bin/sh
# exports.sh ROOT LIST LIBRARY HEADER...: fails when the list, the public headers and the library's symbols differ.
set -eu
cd "$1"
list=$2 library=$3
shift 3
export LC_ALL=C

sort -u "$list" | diff "$list" - || { echo "$list is not sorted, or names a symbol twice"; exit 1; }

awk -f tests/tree/declarations.awk "$@" | awk '$2 == "exported" { print $1 }' | sort | diff - "$list" ||
    { echo "the headers (<) and $list (>) differ"; exit 1; }

if [ "$(uname)" = Darwin ]; then
    nm -gU "$library" | awk '{ sub(/^_/, "", $3); print $3 }'
else
    nm -D --defined-only "$library" | awk '{ print $3 }'
fi | sort | diff - "$list" || { echo "the library (<) and $list (>) differ"; exit 1; }
