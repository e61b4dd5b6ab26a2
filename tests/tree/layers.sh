#!/bin/sh
# layers.sh ROOT: fails when a file includes from a folder that its own folder may not use.
set -eu
cd "$1"

find include util diag card store inventory request install api ossl lenient pkcs11 front crypt simcard host words cli \
    desktop \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \) -exec awk '
function exists(path,    line, found) {
    found = (getline line < path) >= 0
    close(path)
    return found
}
# The folder at the top that an include leads to; empty for a header of the system.
function folder_of(from, name,    path) {
    path = from
    sub(/[^\/]*$/, "", path)
    if (exists(path name)) path = path name
    else if (exists(name)) path = name
    else return exists("include/" name) ? "include" : ""
    while (sub(/[^\/]+\/\.\.\//, "", path)) continue
    sub(/\/.*/, "", path)
    return path
}
function may_use(user, used) {
    if (used == "" || used == "include" || used == user) return 1
    if (used == "lenient" && (user == "crypt" || user == "host")) return 1
    if (used == "ossl" && (user == "lenient" || user == "crypt" || user == "simcard" || user == "host")) return 1
    if (used == "pkcs11" && (user == "front" || user == "simcard" || user == "host")) return 1
    if (used == "words" && (user == "cli" || user == "desktop")) return 1
    if (!(user in rank) || !(used in rank)) return 0
    if (user == "install" && (used == "inventory" || used == "request")) return 0
    return rank[used] < rank[user]
}
BEGIN {
    count = split("util diag card store inventory request install api", layers, " ")
    for (i = 1; i <= count; i++) rank[layers[i]] = i
}
/^[ \t]*#[ \t]*include[ \t]*[<"]/ {
    name = $0
    gsub(/^[^<"]*[<"]|[>"].*$/, "", name)
    user = FILENAME
    sub(/\/.*/, "", user)
    used = folder_of(FILENAME, name)
    seen++
    if (!may_use(user, used)) {
        print FILENAME ":" FNR ": " user "/ may not use " used "/ (" name ")"
        wrong = 1
    }
}
END {
    if (!seen) print "no include was seen"
    exit wrong || !seen
}' {} +
