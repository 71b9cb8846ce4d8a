# Completion of perch's command lines for bash. What it offers is what perch's own help lists: the options of the command,
# the parameters of the effect among them, and the items of its popups.

_perch_complete() {
    local program=$1 word=$2 option=$3 command=${COMP_WORDS[1]} effect=() help line candidates i
    local IFS=$'\n'
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        candidates=$("$program" --help 2>/dev/null | sed -n '/^Commands:/,/^$/s/^  \([a-z-]*\) .*/\1/p')
        COMPREPLY=($(compgen -W "$candidates"$'\n--help\n--version' -- "$word"))
        return
    fi

    for ((i = 2; i < COMP_CWORD - 1; ++i)); do
        if [[ ${COMP_WORDS[i]} == --plugin ]]; then effect=(--plugin "${COMP_WORDS[i + 1]}"); fi
    done
    help=$("$program" "$command" "${effect[@]}" --help 2>/dev/null)
    if [[ $word == -* ]]; then
        candidates=$(sed -n 's/^ *\(-., *\)\{0,1\}\(--[a-z0-9-]*\).*/\2/p' <<<"$help")
        COMPREPLY=($(compgen -W "$candidates" -- "$word"))
        return
    fi

    if [[ $option != -* ]]; then
        COMPREPLY=($(compgen -f -- "$word"))
        return
    fi
    line=$(sed -n "/^ *\(-., *\)\{0,1\}$option /p; /^ *$option,--/p" <<<"$help")
    case $line in
        *" VALUE "*"one of "*", or its number"*)
            candidates=${line#*one of }
            candidates=${candidates%%, or its number*}
            COMPREPLY=($(compgen -W "${candidates//, /$IFS}" -- "$word"))
            ;;
        *"[on|off]"*) COMPREPLY=($(compgen -W $'on\noff' -- "$word")) ;;
        *" PICTURE "* | *" FILE "* | *" FOLDER "* | *" BUNDLE "*) COMPREPLY=($(compgen -f -- "$word")) ;;
    esac
}

complete -o filenames -F _perch_complete perch
