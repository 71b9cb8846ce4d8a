# Completion of perch's command lines for fish. What it offers is what perch's own help lists: the options of the command,
# the parameters of the effect among them, and the words that an option takes.

# The words before the one that is being written. What a job runs, behind --, is a command line of its own.
function __perch_words
    set -l words (commandline -opc)
    if set -l dashes (contains -i -- -- $words)
        set -e words[1..$dashes]
    end
    string join \n -- $words
end

function __perch_help
    set -l program (commandline -opc)[1]
    set -l words (__perch_words)
    set -l effect
    for i in (seq 3 (math (count $words) - 1))
        if test "$words[$i]" = --plugin
            set effect --plugin $words[(math $i + 1)]
        end
    end
    $program $words[2] $effect --help 2>/dev/null
end

# The long options with what is said of them.
function __perch_options
    __perch_help | string replace -rf '^ *(?:-., *)?(--[a-z0-9-]+)(?: \S+)? *(.*)' '$1\t$2'
end

# The words that the option before the word takes, or the command as its first; nothing where they could not be listed.
function __perch_values
    set -l words (__perch_words)
    if test (count $words) -eq 2
        __perch_help | string match -rg -- '^  [A-Z]+ ([a-z]+\|[a-z|]+) ' | string split '|'
    end
    set -l line (__perch_help | string match -r -- "^ *(?:-., *)?$words[-1] .*")
    string match -rg -- '^ *--\S+ \[?([a-z0-9]+\|[a-z0-9|]+)' "$line" | string split '|'
    string match -rg -- 'one of (.*), or its number' "$line" | string split ', '
end

function __perch_is_at_command
    test (count (__perch_words)) -eq 1
end

function __perch_is_behind_command
    test (count (__perch_words)) -gt 1
end

# Whether the word is a file's name: the value of an option that takes one, or of none.
function __perch_takes_file
    set -l words (__perch_words)
    set -l help (__perch_help)
    if test (count $words) -eq 2; and string match -rq -- '^  [A-Z]+ [a-z]+\|' $help
        return 1
    end
    not string match -q -- '-*' "$words[-1]"
    or string match -rq -- "^ *(?:-., *)?$words[-1](?:,--\S+)? (?:PICTURE|FILE|FOLDER|BUNDLE) " $help
end

complete -c perch -f
complete -c perch -n 'test (count (__perch_words)) -eq 0' -a perch
complete -c perch -n __perch_is_at_command -a '(perch --help 2>/dev/null | string match -rg "^  ([a-z-]+) +(.*)" | string replace -r "\n" "\t")'
complete -c perch -n __perch_is_at_command -l help -d 'list the commands'
complete -c perch -n __perch_is_at_command -l version -d 'print the version'
complete -c perch -n '__perch_is_behind_command; and string match -q -- "-*" (commandline -ct)' -a '(__perch_options)'
complete -c perch -n __perch_is_behind_command -a '(__perch_values)'
complete -c perch -n '__perch_is_behind_command; and __perch_takes_file' -F
