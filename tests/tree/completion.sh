#!/usr/bin/env bash
# completion.sh ROOT ZVRENEW: fails when a shell's completion of zvrenew offers something else than it should; zsh and fish
# where they are.
set -u
root=$1
PATH=$(dirname "$2"):$PATH
status=0
# shellcheck disable=SC1091
source "$root/packaging/completion/zvrenew.bash"

# offers WANTED WORD...: what is offered for the last word, separated by blanks.
offers() {
    local wanted=$1
    shift
    COMP_WORDS=(zvrenew "$@") COMP_CWORD=$# COMPREPLY=()
    _zvrenew zvrenew "${*: -1}" ""
    [ "${COMPREPLY[*]}" = "$wanted" ] || { echo "zvrenew $*: offers \"${COMPREPLY[*]}\", not \"$wanted\""; status=1; }
}
offers "install" i
offers "request" req
offers "signature authentication services" request ""
offers "signature" request --force sig
offers "--remove-old" install --rem
offers "--accept --apply-if" install certificate.pem --a
offers "expired ends-earlier" install --accept e
offers "holder,expired holder,ends-earlier" install --accept holder,e
offers "--version" --v
offers "" install ""
offers "" list --pin-file ""
offers "" nothing-such

# Each command's own options, as its --help has them.
for command in $(zvrenew --complete "" | cut -f 1); do
    known=$(zvrenew "$command" --help | sed -n 's/^  \(-[^ ]*\).*/\1/p' | sed 's/^-h,//' | sort)
    offered=$(zvrenew --complete "$command" -- | cut -f 1 | sort)
    [ -n "$known" ] && [ "$offered" = "$known" ] || { echo "$command: not the options of its --help: $offered"; status=1; }
done

if command -v fish >/dev/null; then
    offered=$(fish -N -c "source $root/packaging/completion/zvrenew.fish; complete -C 'zvrenew i'" | cut -f 1 | tr '\n' ' ')
    [ "$offered" = "install " ] || { echo "fish offers \"$offered\""; status=1; }
fi
! command -v zsh >/dev/null || zsh -n "$root/packaging/completion/_zvrenew" || status=1
exit $status
