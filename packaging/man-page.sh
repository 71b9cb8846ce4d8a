#!/bin/sh
# man-page.sh PERCH TEMPLATE PAGE: writes the manual page TEMPLATE to PAGE, with what PERCH's own help lists in place of its two
# marks: every command with its options, and the exit codes.
set -eu

perch=$1
template=$2
page=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# A sentence as the page has it: no character of it is a request.
escaped() {
    sed 's/\\/\\e/g; s/-/\\-/g; s/^\([.'\'']\)/\\\&\1/'
}

# Rows of two columns, two spaces before the first, as paragraphs that hang from the first.
paragraphs() {
    escaped | sed -n 's/^  \([^ ]\{1,\}\( [^ ]\{1,\}\)\{0,1\}\)  *\([^ ].*\)$/.TP\n.B \1\n\3/p'
}

# Not into a pipe, which would hide that it fails.
"$perch" --help >"$scratch/program"
sed -n '/^Exit codes:/,/^$/p' "$scratch/program" | paragraphs >"$scratch/codes"
sed -n '/^Commands:/,/^$/s/^  \([a-z-]*\) .*/\1/p' "$scratch/program" >"$scratch/commands"
for command in $(cat "$scratch/commands"); do
    "$perch" "$command" --help >"$scratch/help"
    printf '.SS perch %s\n' "$(echo "$command" | escaped)"
    sed '/^Usage:/,$d' "$scratch/help" | escaped
    # The effect's parameters are not the program's.
    sed '/^Parameters of the effect:/,$d' "$scratch/help" | paragraphs
done >"$scratch/options"
for part in codes options; do
    [ -s "$scratch/$part" ] || { echo "$0: $perch --help lists no $part" >&2; exit 1; }
done

sed -e "/^\.\\\\\" options$/{r $scratch/options" -e 'd}' -e "/^\.\\\\\" codes$/{r $scratch/codes" -e 'd}' "$template" >"$scratch/page"
cp "$scratch/page" "$page"
