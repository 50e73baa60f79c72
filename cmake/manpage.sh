#!/bin/sh
# Writes the manual page of a program from its own --help and --version, so
# that the page cannot drift from the program:
#   manpage.sh PROGRAM NAME_LINE OUTPUT
# A program with a "Commands:" list (vesk-roster) gets a COMMANDS section of
# each command's own help ("PROGRAM help COMMAND").
set -eu
program=$1 name=$2 output=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# The pages are made at build time, sanitizers or not, and never need a display.
export ASAN_OPTIONS=detect_leaks=0 QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8

# roff: backslashes and lines that would read as requests are escaped.
roff() { sed -e 's/\\/\\e/g' -e "s/^\\([.']\\)/\\\\\\&\\1/"; }

: >"$work/include"
commands=$("$program" --help | awk '/^Commands:$/ { on = 1; next } on && /^$/ { on = 0 } on { print $1 }')
if [ -n "$commands" ]; then
    echo '[COMMANDS]' >>"$work/include"
    for command in $commands; do
        "$program" help "$command" >"$work/help"
        printf '.TP\n.B %s\n.nf\n' "$(sed -n 's/^usage: [^ ]* //p' "$work/help" | head -n 1 | roff)" \
            >>"$work/include"
        sed '1,2d' "$work/help" | roff >>"$work/include"
        printf '.fi\n' >>"$work/include"
    done
fi
set -- --no-info --no-discard-stderr --name "$name" --output "$work/page"
[ -s "$work/include" ] && set -- "$@" --include "$work/include"
help2man "$@" "$program"
# help2man knows no "Exit status:" heading; it is a section of its own.
sed -e 's/^\.SS "Exit status:"$/.SH "EXIT STATUS"/' -e 's/^\.SS "Commands:"$/.SS "Commands (see COMMANDS):"/' \
    "$work/page" >"$output"
