# Completion of perch's command lines for bash. What it offers is what perch's own help lists: the options of the command,
# the parameters of the effect among them, and the words that an option takes.

_perch_complete() {
    local program=$1 word=$2 option=$3 words=("${COMP_WORDS[@]}") at=$COMP_CWORD command effect=() help line candidates i
    local IFS=$'\n'
    COMPREPLY=()
    # What a job runs, behind --, is a command line of its own.
    for ((i = 2; i < COMP_CWORD; ++i)); do
        if [[ ${words[i]} == -- ]]; then
            words=("${words[@]:i+1}")
            at=$((COMP_CWORD - i - 1))
            break
        fi
    done
    if ((at == 0)); then
        COMPREPLY=($(compgen -W "$program" -- "$word"))
        return
    fi
    if ((at == 1)); then
        candidates=$("$program" --help 2>/dev/null | sed -n '/^Commands:/,/^$/s/^  \([a-z-]*\) .*/\1/p')
        COMPREPLY=($(compgen -W "$candidates"$'\n--help\n--version' -- "$word"))
        return
    fi

    command=${words[1]}
    for ((i = 2; i < at - 1; ++i)); do
        if [[ ${words[i]} == --plugin ]]; then effect=(--plugin "${words[i + 1]}"); fi
    done
    help=$("$program" "$command" "${effect[@]}" --help 2>/dev/null)
    if [[ $word == -* ]]; then
        candidates=$(sed -n 's/^ *\(-., *\)\{0,1\}\(--[a-z0-9-]*\).*/\2/p' <<<"$help")
        COMPREPLY=($(compgen -W "$candidates" -- "$word"))
        return
    fi

    if [[ $option != -* ]]; then
        candidates=$(sed -n 's/^  [A-Z]* \([a-z]*|[a-z|]*\) .*/\1/p' <<<"$help")
        if [[ $at == 2 && -n $candidates ]]; then
            COMPREPLY=($(compgen -W "${candidates//|/$IFS}" -- "$word"))
        else
            COMPREPLY=($(compgen -f -- "$word"))
        fi
        return
    fi
    line=$(sed -n "/^ *\(-., *\)\{0,1\}$option /p; /^ *$option,--/p" <<<"$help")
    case $line in
        *" VALUE "*"one of "*", or its number"*)
            candidates=${line#*one of }
            candidates=${candidates%%, or its number*}
            COMPREPLY=($(compgen -W "${candidates//, /$IFS}" -- "$word"))
            ;;
        *" PICTURE "* | *" FILE "* | *" FOLDER "* | *" BUNDLE "*) COMPREPLY=($(compgen -f -- "$word")) ;;
        *)
            candidates=$(sed -n 's/^ *--[a-z0-9-]* \[\{0,1\}\([a-z0-9]*|[a-z0-9|]*\).*/\1/p' <<<"$line")
            COMPREPLY=($(compgen -W "${candidates//|/$IFS}" -- "$word"))
            ;;
    esac
}

complete -o filenames -F _perch_complete perch
