#!/bin/sh
# faces.sh ROOT: fails when the library's C face is not where it belongs: a routine of exports.txt is defined in the
# exports.cpp of a folder, which alone includes that folder's header of routines, and nothing else calls one.
set -eu
cd "$1"
folders="util diag card store inventory request install api"

# shellcheck disable=SC2086
find $folders \( -name '*.h' -o -name '*.cpp' \) -exec awk '
BEGIN { while ((getline name < "exports.txt") > 0) { exported[name]; count++ } }
{
    face = FILENAME ~ /\/exports\.cpp$/
    folder = FILENAME
    sub(/\/.*/, "", folder)
}
/^#include "routines/ && !(face && $2 == "\"routines/" folder ".h\"") {
    print FILENAME ":" FNR ": includes " $2
    wrong = 1
}
!face {
    gsub(/"(\\.|[^"\\])*"/, "\"\"")
    sub(/\/\/.*/, "")
    rest = $0
    while (match(rest, /[A-Za-z0-9_:.>]+\(/)) {
        name = substr(rest, RSTART, RLENGTH - 1)
        rest = substr(rest, RSTART + RLENGTH)
        if (name in exported) {
            print FILENAME ":" FNR ": " name " is a routine of the face"
            wrong = 1
        }
    }
}
END { exit wrong || !count }' {} +
