#!/bin/sh
# architecture.sh ROOT: fails when docs/architecture.md names a file or folder that is not there, or leaves out a folder at
# the top.
set -eu
cd "$1"
page=docs/architecture.md

grep -o '`[^` ]*`' $page | tr -d '`' | sort -u | {
    missing=0
    while read -r name; do
        case $name in
        [!a-z]*) continue ;;
        */* | *.cpp | *.h | *.md | *.sh) [ -e "$name" ] || { echo "$page: there is no $name"; missing=1; } ;;
        esac
    done
    exit $missing
}

# What lies about untracked is no room of the house.
folders=$(git ls-files 2>/dev/null | sed -n 's,^\([^.][^/]*/\).*,\1,p' | sort -u)
for folder in ${folders:-*/}; do
    grep -qF "\`$folder\`" $page || { echo "$page does not name $folder"; exit 1; }
done
