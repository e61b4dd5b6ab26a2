#!/bin/sh
# described.sh ROOT: fails when a function or variable of the public headers has no describing comment before it, or when
# CHANGELOG.md does not name a symbol that the library exports.
set -eu
cd "$1"
find include -name '*.h' -exec awk -f tests/tree/declarations.awk {} + | awk '
    $3 != "described" { print $1 " is not described"; wrong = 1 }
    END { exit wrong || !NR }'
awk '
    FILENAME == "exports.txt" { exported[$1]; next }
    { while (match($0, /`[^`]*`/)) { delete exported[substr($0, RSTART + 1, RLENGTH - 2)]; $0 = substr($0, RSTART + RLENGTH) } }
    END { for (name in exported) { print name " is not in CHANGELOG.md"; wrong = 1 } exit wrong }' exports.txt CHANGELOG.md
