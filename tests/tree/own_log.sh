#!/bin/sh
# own_log.sh WRAPPER PROGRAM: fails when one of a program's tests writes to the log of the user in the user database, which
# libnss-wrapper replaces by a user of our own.
set -eu
wrapper=$1 program=$2
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir "$home/.trevallo"
echo "tester:x:$(id -u):$(id -g)::$home:/bin/sh" >"$home/passwd"
export NSS_WRAPPER_PASSWD="$home/passwd" NSS_WRAPPER_GROUP=/etc/group

# Each test in a process of its own: one that takes the log away would cover for those after it.
"$program" --gtest_list_tests | awk '/^[^ ]/ { suite = $1; next } { print suite $1 }' >"$home/tests"
[ -s "$home/tests" ]
status=0
while read -r name; do
    LD_PRELOAD=$wrapper "$program" --gtest_filter="$name" >"$home/output" 2>&1 || { cat "$home/output"; status=1; }
    [ -z "$(ls -A "$home/.trevallo")" ] || { echo "$name writes to the user's log"; status=1; }
    rm -f "$home"/.trevallo/*
done <"$home/tests"
exit $status
