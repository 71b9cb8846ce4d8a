#!/bin/bash
# completions.sh FOLDER PROGRAM_FOLDER: asks bash, zsh and fish, as far as they are here, what the completions in FOLDER offer for
# command lines of the perch in PROGRAM_FOLDER.
set -u

folder=$1
PATH=$2:$PATH
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit
touch beauty.png
failures=0

# Each prints what is offered for the words of a command line, of which the last is being written.
offered_by_bash() {
    bash --norc -c 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
        _perch_complete perch "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
        printf "%s\n" "${COMPREPLY[@]}"' "$folder/perch.bash" "$@"
}
# What offers candidates in zsh writes to its line editor alone; here it writes them all to standard output.
offered_by_zsh() {
    zsh -f -c '_describe() { print -rl -- "${(@)${(@P)2}%%:*}"; }
        compadd() { shift; print -rl -- "$@"; }
        _files() { print -rl -- *; }
        file=$1; shift; words=("$@"); CURRENT=$#; source $file' zsh "$folder/_perch" "$@" |
        awk -v word="${*: -1}" 'index($0, word) == 1'
}
offered_by_fish() {
    fish --no-config -c 'source $argv[1]; complete -C "$argv[2..]"' "$folder/perch.fish" "$@" | cut -f 1
}

# expect OFFERED WORD...: the candidates, sorted, with a space between them
expect() {
    local expected=$1 shell offered
    shift
    for shell in bash zsh fish; do
        command -v $shell >/dev/null || continue
        offered=$(offered_by_$shell "$@" | sort | paste -s -d ' ')
        if [[ $offered != "$expected" ]]; then
            echo "$shell offers \"$offered\" for \"$*\", not \"$expected\""
            failures=$((failures + 1))
        fi
    done
}

expect "render" perch re
expect "--focal-point --frames" perch curve --f
expect "--maximum-blur" perch render --maximum
expect "--focal-point --frames" perch sheet --f
expect "--control-channel" perch render -i beauty.png --control-c
expect "Coarse Fine" perch render --blur-type ""
expect "Fine" perch render --blur-type F
expect "Lightness Luma" perch render --control-channel L
expect "off on" perch render --invert-control ""
expect "beauty.png" perch render -i b
expect "beauty.png" perch render --control-layer b
expect "" perch render --maximum-blur b
expect "" perch render --no-such-option b
expect "" perch no-such-command --f
expect "beauty.png" perch describe b
expect "beauty.png" perch describe --plugin b
expect "auto json line none openjd" perch render --progress ""
expect "skip" perch render --existing s
expect "16 8 auto" perch render --depth ""
expect "hold" perch sheet --missing-layer-frame h
expect "openjd parallel slurm" perch job ""
expect "slurm" perch job s
expect "beauty.png" perch job slurm --output b
expect "perch" perch job slurm --tasks 8 -- p
expect "render" perch job slurm --tasks 8 -- perch re
expect "--focal-point --frames --frames-from" perch job slurm --tasks 8 -- perch render --f
expect "Fine" perch job slurm --tasks 8 -- perch render --blur-type F
expect "continue" perch job slurm --tasks 8 -- perch render -i beauty.png --on-error c

# All options that a command's help lists, and no others.
for command in $(perch --help | sed -n '/^Commands:/,/^$/s/^  \([a-z-]*\) .*/\1/p'); do
    expect "$(perch "$command" --help | grep -oE '^ +(-[a-z],)?--[a-z0-9-]+' | grep -oE -- '--.*' | sort | paste -s -d ' ')" \
        perch "$command" --
done

for shell in zsh fish; do
    command -v $shell >/dev/null || echo "$shell is not installed, and what it is offered is not tested"
done
exit $((failures > 0))
