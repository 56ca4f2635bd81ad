#!/usr/bin/env bash
# make-manpage.sh PROGRAM VERSION DESCRIPTION OUT
# Writes the manual page of PROGRAM from its own --help text, so the page and
# the program never disagree. For kvr, each command's --help becomes a section.
set -euo pipefail
program=$1 version=$2 description=$3 out=$4

export QT_QPA_PLATFORM=offscreen   # kvr-pc answers --help without a display
export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$(mktemp -d)}
include=$(mktemp)
trap 'rm -f "$include"' EXIT

commands=$("$program" --help 2>/dev/null |
    awk '/^Commands:/ { on = 1; next } on && NF == 0 { exit } on { print $1 }')
for command in $commands; do
    {
        printf '[COMMAND %s]\n' "${command^^}"
        printf '.nf\n'
        "$program" "$command" --help 2>/dev/null | sed 's/\\/\\e/g; s/^[.'"'"']/\\\&&/'
        printf '.fi\n\n'
    } >>"$include"
done

extra=()
[ -s "$include" ] && extra=(--include="$include")
help2man --no-info --no-discard-stderr --version-string="$version" \
    --name="$description" "${extra[@]}" --output="$out" "$program"
