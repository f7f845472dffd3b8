# Completion of korvel-layout in fish. The words come from the program itself.

function __korvel_layout_complete
    set -l words (commandline -opc)
    set -l typed "$(commandline -ct)"
    set -l found ($words[1] complete $words[2..] $typed 2>/dev/null)
    if test "$found" = FILES
        __fish_complete_path $typed
    else
        printf '%s\n' $found
    end
end

complete -c korvel-layout -f -a '(__korvel_layout_complete)'
