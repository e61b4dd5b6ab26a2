# Completion of zvrenew for fish. The program itself knows what can follow; where it says nothing, files do.
function __zvrenew_complete
    set -l words (commandline -opc) (commandline -ct)
    $words[1] --complete $words[2..-1] 2>/dev/null | string match -v ''
end
complete -c zvrenew -n 'test (count (__zvrenew_complete)) -gt 0' -f -a '(__zvrenew_complete)'
