# Completion of perch's command lines for fish. What it offers is what perch's own help lists: the options of the command,
# the parameters of the effect among them, and the items of its popups.

function __perch_help
    set -l words (commandline -opc)
    set -l effect
    for i in (seq 3 (count $words))
        if test "$words[$i]" = --plugin
            set effect --plugin $words[(math $i + 1)]
        end
    end
    $words[1] $words[2] $effect --help 2>/dev/null
end

# The long options with what is said of them.
function __perch_options
    __perch_help | string replace -rf '^ *(?:-., *)?(--[a-z0-9-]+)(?: \S+)? *(.*)' '$1\t$2'
end

# The values of the option before the word; nothing where it takes none that could be listed.
function __perch_values
    set -l words (commandline -opc)
    set -l line (__perch_help | string match -r -- "^ *(?:-., *)?$words[-1] .*")
    if string match -q -- '*[on|off]*' "$line"
        printf '%s\n' on off
    else
        string match -rg -- 'one of (.*), or its number' "$line" | string split ', '
    end
end

function __perch_is_at_command
    test (count (commandline -opc)) -eq 1
end

# Whether the word is a file's name: the value of an option that takes one, or of none.
function __perch_takes_file
    set -l words (commandline -opc)
    not string match -q -- '-*' "$words[-1]"
    or __perch_help | string match -rq -- "^ *(?:-., *)?$words[-1](?:,--\S+)? (?:PICTURE|FILE|FOLDER|BUNDLE) "
end

complete -c perch -f
complete -c perch -n __perch_is_at_command -a '(perch --help 2>/dev/null | string match -rg "^  ([a-z-]+) +(.*)" | string replace -r "\n" "\t")'
complete -c perch -n __perch_is_at_command -l help -d 'list the commands'
complete -c perch -n __perch_is_at_command -l version -d 'print the version'
complete -c perch -n 'not __perch_is_at_command; and string match -q -- "-*" (commandline -ct)' -a '(__perch_options)'
complete -c perch -n 'not __perch_is_at_command' -a '(__perch_values)'
complete -c perch -n 'not __perch_is_at_command; and __perch_takes_file' -F
