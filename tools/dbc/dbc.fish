# Completion of dbc for fish. The program itself lists the possible words.

function __dbc_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct)
    for line in ($words[1] --complete $words[2..-1] "$current" 2>/dev/null)
        if test "$line" = :file
            __fish_complete_path "$current"
        else
            echo $line
        end
    end
end

complete -c dbc -f -a '(__dbc_complete)'
