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
        grep -qE '^Uso: |scritto male' && said=it
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
exit $status
