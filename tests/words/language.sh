#!/bin/sh
# language.sh ZVRENEW: fails when the program does not speak the language that it is asked for.
set -eu
status=0

# speaks it|en LANG LANGUAGE ARGUMENT...
speaks() {
    wanted=$1
    locale=$2
    list=$3
    shift 3
    said=en
    env -u LC_ALL -u LC_MESSAGES LANG="$locale" LANGUAGE="$list" "$program" "$@" 2>&1 |
        grep -qE '^Uso: |Non previsto qui' && said=it
    [ $said = "$wanted" ] || { echo "LANG=$locale LANGUAGE=$list zvrenew $*: speaks $said"; status=1; }
}
program=$1
speaks it it_IT.UTF-8 "" --help # whether or not the machine has the locale
speaks it it "" --help
speaks it C.UTF-8 it --help
speaks it en_GB.UTF-8 de:it:en --help
speaks en en_GB.UTF-8 "" --help
speaks en it_IT.UTF-8 en:it --help
speaks en C it --help
speaks en "" "" --help
speaks en de_DE.UTF-8 "" --help
speaks it C "" --lang it --help
speaks it C "" list --lang=it --help
speaks it C "" list --lang it --no-such-option
speaks en it_IT.UTF-8 "" --lang en --help
speaks en C "" list --lang de --help

# What is wrong with a command line, in Italian: nothing of it is the parser's own English.
for mistake in "" "request" "request firma" "request signature --days" "request signature --days x" "list --pin-fd x" \
    "list --json=x" "frob" "list --wait=x" "list --days 1 --days 2" "status --no-such x" \
    "install x.pem --accept other" "remove"; do
    # shellcheck disable=SC2086 # several words
    said=$("$program" --lang it $mistake 2>&1 </dev/null) || true
    if echo "$said" | grep -qiE 'required|expected|convert|should|mistyped|missing|wants|override|ommand line|not in|scritto male' ||
        ! echo "$said" | grep -q 'aggiungere --help'; then
        echo "zvrenew --lang it $mistake: $said"
        status=1
    fi
done
exit $status
