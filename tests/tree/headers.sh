#!/bin/sh
# headers.sh ROOT CXX CC [FLAG...]: fails when a header does not compile alone, or not twice in a row. A header that another
# file includes before anything else is left out: it was compiled alone when that file was, or includes.py looks at it where
# files are compiled together.
set -eu
cd "$1"
cxx=$2 cc=$3
shift 3
folders="include util diag card store inventory request install api ossl lenient pkcs11 crypt front simcard host words cli desktop"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# alone COMPILER FLAG...: compiles each header named on standard input by itself.
alone() {
    xargs -P 2 -I{} "$@" -fsyntax-only -Wall -Wextra -Wshadow -Wconversion -Werror -include {} -include {} /dev/null
}

# shellcheck disable=SC2086
find $folders \( -name '*.cpp' -o -name '*.h' \) -exec awk '
    FNR == 1 { first = 1 }
    first && /^#include/ {
        first = 0
        gsub(/["<>]/, "", $2)
        folder = FILENAME
        sub(/[^\/]*$/, "", folder)
        print $2 "\n" folder $2 "\ninclude/" $2
    }' {} + >"$work/compiled"
# shellcheck disable=SC2086
if find $folders -name '*.h' -exec grep -LE '^#pragma once$|^#ifndef [A-Z0-9_]+_H$' {} + | grep .; then
    echo "may not be included twice"
    exit 1
fi
# shellcheck disable=SC2086
find $folders -name '*.h' | grep -vxFf "$work/compiled" | alone "$cxx" -std=c++20 -I. -Iinclude "$@" -x c++
for name in zvRenew zvCrypt records pkcs11; do echo "include/$name.h"; done |
    alone "$cc" -std=c11 -pedantic -Iinclude -x c
