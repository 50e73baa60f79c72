#!/usr/bin/env bash
# Installs a build tree into a scratch prefix and runs the programs from
# there, as a user who installed them would: --version and --help of both
# (the window's without a display), a command on a scratch settings
# directory, the window's catalogues found where they were installed; the
# manual pages render and the launcher and metainfo validate.
#   run-programs.sh BUILD_DIR VERSION
set -euo pipefail
build=$1 version=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
fail() { echo "run-programs: $*" >&2; exit 1; }
export LC_ALL=C.UTF-8 ASAN_OPTIONS=detect_leaks=0
# Nothing to show the window on: --help and --version must not need one.
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM

cmake --install "$build" --prefix "$prefix" >/dev/null
for file in bin/vesk-roster bin/vesk-roster-gui share/man/man1/vesk-roster.1.gz \
    share/man/man1/vesk-roster-gui.1.gz share/bash-completion/completions/vesk-roster \
    share/applications/org.vesk.VeskRosterGui.desktop \
    share/metainfo/org.vesk.VeskRosterGui.metainfo.xml \
    share/icons/hicolor/scalable/apps/org.vesk.VeskRosterGui.svg \
    share/vesk_gui_roster_filter/translations/vesk_roster_gui_de.qm; do
    [ -e "$prefix/$file" ] || fail "$file was not installed"
done

for program in vesk-roster vesk-roster-gui; do
    out=$("$prefix/bin/$program" --version) || fail "$program --version failed"
    [ "$out" = "$program $version" ] || fail "$program --version printed \"$out\""
    out=$("$prefix/bin/$program" --help) || fail "$program --help failed"
    grep -q -- '--version' <<<"$out" || fail "$program --help lists no --version"
done
echo "run-programs: both programs answer --version and --help from the prefix"

# The installed window finds its translations in the prefix, not in the build
# tree: the German text of one of its options.
out=$(LANGUAGE=de LC_ALL=de_DE.UTF-8 LANG=de_DE.UTF-8 "$prefix/bin/vesk-roster-gui" --help)
grep -q 'Einstellungsverzeichnis' <<<"$out" || fail "the window found no German catalogue: $out"

# The stand-in library comes from the program's own directory of the prefix.
settings=$work/settings
"$prefix/bin/vesk-roster" --settings "$settings" new here and presence is_or_not=is \
    presence_filter_presence=online >/dev/null || fail "the installed vesk-roster cannot store a filter"
"$prefix/bin/vesk-roster" --settings "$settings" filters | grep -q here ||
    fail "the installed vesk-roster does not list its filter"

for page in vesk-roster vesk-roster-gui; do
    text=$(MANWIDTH=80 man -l "$prefix/share/man/man1/$page.1.gz" 2>"$work/man-errors") ||
        fail "man -l $page failed: $(cat "$work/man-errors")"
    [ ! -s "$work/man-errors" ] || fail "man -l $page warned: $(cat "$work/man-errors")"
    for section in NAME SYNOPSIS OPTIONS FILES "EXIT STATUS"; do
        grep -q "^$section" <<<"$text" || fail "the page of $page has no $section section"
    done
    grep -q -- "--version" <<<"$text" || fail "the page of $page lists no --version"
done
text=$(MANWIDTH=80 man -l "$prefix/share/man/man1/vesk-roster.1.gz")
grep -q '^COMMANDS' <<<"$text" || fail "the page of vesk-roster has no COMMANDS section"
# Each command's own help is in the page, the helper's is not.
for command in edit import sorter-default; do
    synopsis=$("$prefix/bin/vesk-roster" help "$command" | sed -n 's/^usage: vesk-roster //p')
    grep -qF -- "$synopsis" <<<"$text" || fail "the page of vesk-roster lacks \"$synopsis\""
done
! grep -q 'complete \[--breaks' <<<"$text" || fail "the page of vesk-roster shows the completion helper"
echo "run-programs: the manual pages render with commands, options, files and exit status"

desktop-file-validate "$prefix/share/applications/org.vesk.VeskRosterGui.desktop" ||
    fail "the desktop entry does not validate"
appstreamcli validate --no-net --pedantic "$prefix/share/metainfo/org.vesk.VeskRosterGui.metainfo.xml" \
    >"$work/appstream" 2>&1 || fail "the metainfo does not validate: $(cat "$work/appstream")"
grep -q "<release version=\"$version\"" "$prefix/share/metainfo/org.vesk.VeskRosterGui.metainfo.xml" ||
    fail "the metainfo names another version"
echo "run-programs: the desktop entry and the metainfo validate"
