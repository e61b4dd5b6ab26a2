#!/bin/sh
# manual.sh ROOT PAGES CC PROGRAM...: fails when a program's page in the folder PAGES has not the options and commands of
# its --help, and no others; when zvrenew.1 has not the exit codes of exit_codes.h; when zvRenew.3 declares something else
# than zvRenew.h, or its example does not compile; and when mandoc, where there is one, finds fault with a page.
set -eu
root=$1 pages=$2 cc=$3
shift 3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
: >"$work/diff"

# same WHAT: compares the lists here and there.
same() {
    sort -u "$work/here" >"$work/a"
    sort -u "$work/there" >"$work/b"
    if ! [ -s "$work/a" ] || ! diff "$work/a" "$work/b" >"$work/diff"; then
        echo "$1:"
        cat "$work/diff"
        status=1
    fi
}
commands_of() { sed -n '/^Subcommands:/,/^$/s/^  \([a-z][^ ]*\).*/\1/p' "$1"; }

export QT_QPA_PLATFORM=offscreen # a window's program wants a screen even for that
for program in "$@"; do
    page=$pages/${program##*/}.1
    "$program" --help >"$work/help"
    commands_of "$work/help" >"$work/here"
    sed -n 's/^\.It Cm \([^ ]*\).*/\1/p' "$page" >"$work/there"
    [ ! -s "$work/there" ] || same "commands of ${program##*/}, --help and page"
    while read -r command; do "$program" "$command" --help >>"$work/help"; done <"$work/here"
    sed -n 's/^  \(-.*\)/\1/p' "$work/help" | sed 's/  .*//' | tr ' ,' '\n\n' | grep '^-' >"$work/here"
    grep '^\.It Fl' "$page" | grep -o 'Fl [^ ]*' | sed 's/^Fl /-/' >"$work/there"
    same "options of ${program##*/}, --help and page"
done

sed -n 's/^ *[a-z_]* = \([0-9]*\),\{0,1\}.*/\1/p' "$root/include/exit_codes.h" >"$work/here"
sed -n 's/^\.It \([0-9]*\)$/\1/p' "$pages/zvrenew.1" >"$work/there"
same "exit codes, exit_codes.h and zvrenew.1"

# Declarations, one a line: "int name(char* a, bool b)", "bool name".
sed '/^#/d; s,//.*,,' "$root/include/zvRenew.h" | tr '\n' ' ' | sed 's,/\*,\n/*,g; s,\*/,&\n,g' | sed '/^\/\*/d' |
    tr -d '\n' | tr ';' '\n' | sed -n 's/^.*ZV_API //p' | sed 's/  */ /g' >"$work/here"
awk '
    $1 == ".Vt" { sub(/^\.Vt extern /, ""); sub(/ ;$/, ""); print }
    $1 == ".Ft" { sub(/^\.Ft /, ""); type = $0 }
    $1 == ".Fo" { name = $2; arguments = "" }
    $1 == ".Fa" && name { sub(/^\.Fa /, ""); gsub(/"/, ""); arguments = arguments (arguments ? ", " : "") $0 }
    $1 == ".Fc" { print type " " name "(" arguments ")"; name = "" }' "$pages/zvRenew.3" >"$work/there"
same "declarations of zvRenew.h and zvRenew.3"

awk -f "$root/tests/tree/declarations.awk" "$root/include/zvRenew.h" | sed -n 's/ exported .*//p' >"$work/here"
while read -r name; do
    sed '1,/^\.Sh DESCRIPTION/d' "$pages/zvRenew.3" | grep -qE "^\.(Fn|Va) $name( |$)" ||
        { echo "zvRenew.3 does not say what $name is"; status=1; }
done <"$work/here"

sed -n '/^#include/,/^\.Ed/{/^\.Ed/q;s/\\e/\\/g;p;}' "$pages/zvRenew.3" |
    "$cc" -std=c11 -Wall -Wextra -Werror -fsyntax-only -I"$root/include" -x c - || status=1
! command -v mandoc >/dev/null || mandoc -Tlint -Wwarning "$pages"/*.[1-9] || status=1
exit $status
