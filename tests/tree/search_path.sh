#!/bin/sh
# search_path.sh FOLDER: fails when a program or library in it lets the loader look for libraries anywhere but in a folder
# with an absolute path or below its own: an empty element is the working folder.
set -eu
export LC_ALL=C
folder=$1 found=$(mktemp)
trap 'rm -f "$found"' EXIT
find "$folder" -path "$folder/tests/tree/*/*" -prune -o -type f \( -perm -u+x -o -name '*.so*' \) -print >"$found"
seen=0 status=0
while read -r file; do
    path=$(readelf -dW "$file" 2>/dev/null | sed -n 's/.*(R[UN]*PATH) *Library r[un]*path: \[\(.*\)\]$/\1/p') || continue
    seen=$((seen + 1))
    [ -n "$path" ] || continue
    if echo ":$path:" | grep -qE '::|:[^/$:]|:\$[^O{]'; then
        echo "$file: $path"
        status=1
    fi
done <"$found"
[ $seen != 0 ] || { echo "nothing to look at in $folder"; exit 1; }
exit $status
