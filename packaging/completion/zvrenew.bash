# Completion of zvrenew for bash. The program itself knows what can follow; where it says nothing, files do.
_zvrenew() {
    local IFS=$'\n'
    # shellcheck disable=SC2207
    COMPREPLY=($("$1" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null | cut -f 1))
}
complete -o default -F _zvrenew zvrenew
