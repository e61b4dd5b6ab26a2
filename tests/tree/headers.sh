#!/bin/sh
# headers.sh ROOT CXX CC [FLAG...]: fails when a header does not compile alone, or not twice in a row.
set -eu
cd "$1"
cxx=$2 cc=$3
shift 3

# alone COMPILER FLAG...: compiles each header named on standard input by itself.
alone() {
    xargs -P 2 -I{} "$@" -fsyntax-only -Wall -Wextra -Wshadow -Wconversion -Werror -include {} -include {} /dev/null
}

find include util diag card store inventory request install api crypt simcard cli -name '*.h' |
    alone "$cxx" -std=c++20 -I. -Iinclude "$@" -x c++
for name in zvRenew zvCrypt records pkcs11; do echo "include/$name.h"; done |
    alone "$cc" -std=c11 -pedantic -Iinclude -x c
