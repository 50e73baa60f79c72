#!/usr/bin/env bash
# Makes the Debian packages of a build tree with its CPack configuration (the
# same rules ./run package uses on a Release tree), unpacks them into a
# scratch root and checks what they hold and need, then runs the unpacked
# program from there.
#   run-package.sh BUILD_DIR QT_MAJOR_VERSION LIBRARY_SUFFIX VERSION
set -euo pipefail
build=$1 qt=$2 suffix=$3 version=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "run-package: $*" >&2; exit 1; }
export LC_ALL=C.UTF-8 ASAN_OPTIONS=detect_leaks=0

cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/out" >"$work/cpack.log" 2>&1 ||
    fail "cpack failed: $(cat "$work/cpack.log")"
library=libvesk-gui-roster-filter$suffix
runtime=$(ls "$work"/out/"$library"-0_*.deb) || fail "no runtime package"
dev=$(ls "$work"/out/"$library"-dev_*.deb) || fail "no development package"
programs=$(ls "$work"/out/vesk-roster_*.deb) || fail "no package of the programs"

# What each package holds: the files a user of it needs, and nothing of the others'.
for deb in "$runtime" "$dev" "$programs"; do
    dpkg-deb -c "$deb" | awk '{ print $2 }' | sort -u | grep -qv '^root/root$' &&
        fail "$(basename "$deb") holds files not owned by root"
    dpkg-deb -c "$deb" | awk '$1 !~ /^d/ { sub(/^\.\//, "", $6); print $6 }' | sort >"$deb.files"
done
expect() { # package file list, pattern...
    local list=$1; shift
    for pattern in "$@"; do
        grep -qE "^$pattern\$" "$list" || fail "$(basename "$list" .files) lacks $pattern"
    done
}
expect "$programs.files" usr/bin/vesk-roster usr/bin/vesk-roster-gui \
    'usr/lib/.*vesk-roster/libvesk_standin.*\.so' 'usr/lib/.*vesk-roster/libvesk_xmpp.*\.so' \
    usr/share/man/man1/vesk-roster.1.gz \
    usr/share/man/man1/vesk-roster-gui.1.gz usr/share/bash-completion/completions/vesk-roster \
    usr/share/applications/org.vesk.VeskRosterGui.desktop \
    usr/share/metainfo/org.vesk.VeskRosterGui.metainfo.xml \
    usr/share/icons/hicolor/scalable/apps/org.vesk.VeskRosterGui.svg \
    usr/share/vesk_gui_roster_filter/translations/vesk_roster_gui_de.qm
expect "$runtime.files" "usr/lib/.*libvesk_gui_roster_filter$suffix\.so\.0(\..*)?" \
    "usr/lib/.*libvesk_host$suffix\.so\.0(\..*)?" "usr/lib/.*libvesk_gui_roster_widgets$suffix\.so\.0(\..*)?" \
    usr/share/vesk_gui_roster_filter/translations/vesk_gui_roster_filter_de.qm
expect "$dev.files" 'usr/include/vesk_gui_roster_filter/veskrosterfiltersmanager.h' \
    "usr/lib/.*libvesk_gui_roster_filter$suffix\.so" "usr/lib/(.*/)?pkgconfig/vesk_gui_roster_filter$suffix\.pc" \
    "usr/lib/(.*/)?cmake/VeskRosterFilter$suffix/VeskRosterFilterConfig\.cmake"
grep -q include/ "$runtime.files" "$programs.files" && fail "headers outside the development package"
grep -qE '\.so$' "$runtime.files" && fail "the runtime package holds the development links"
shared=$(cat "$runtime.files" "$dev.files" "$programs.files" | sort | uniq -d)
[ -z "$shared" ] || fail "files in two packages: $shared"

# Dependencies come from the binaries (dpkg-shlibdeps): the C library and
# Qt, which no rule lists by hand, and the project's own packages by version.
if [ "$qt" = 6 ]; then qtcore=libqt6core6; qtgui=libqt6widgets6; else qtcore=libqt5core5a; qtgui=libqt5widgets5; fi
depends() { dpkg-deb -f "$1" Depends; }
for package in "$runtime" "$programs"; do
    for needed in libc6 "$qtcore"; do
        grep -qE "(^|, )$needed( |,|$)" <<<"$(depends "$package")" ||
            fail "$(basename "$package") does not depend on $needed: $(depends "$package")"
    done
done
# The live host's XMPP library, found in the programs' private library.
grep -qE "(^|, )libstrophe0( |,|$)" <<<"$(depends "$programs")" ||
    fail "the programs' package does not depend on libstrophe0: $(depends "$programs")"
grep -qE "(^|, )$qtgui( |,|$)" <<<"$(depends "$programs")" ||
    fail "the programs' package does not depend on $qtgui: $(depends "$programs")"
grep -qF "$library-0 (= $version" <<<"$(depends "$programs")" ||
    fail "the programs' package does not depend on $library-0 $version: $(depends "$programs")"
grep -qF "$library-0 (= $version" <<<"$(depends "$dev")" ||
    fail "the development package does not depend on $library-0 $version: $(depends "$dev")"
echo "run-package: $(basename "$programs") depends on $(depends "$programs")"

# Unpacked as dpkg would, the program runs from the scratch root: it finds
# the project's libraries and its own through its RUNPATH alone.
root=$work/root
for deb in "$runtime" "$dev" "$programs"; do dpkg -x "$deb" "$root"; done
out=$(env -u LD_LIBRARY_PATH "$root/usr/bin/vesk-roster" --version) || fail "the unpacked vesk-roster does not run"
[ "$out" = "vesk-roster $version" ] || fail "the unpacked vesk-roster says \"$out\""
settings=$work/settings
env -u LD_LIBRARY_PATH "$root/usr/bin/vesk-roster" --settings "$settings" new here and presence \
    is_or_not=is presence_filter_presence=online >/dev/null || fail "the unpacked vesk-roster cannot store"
env -u LD_LIBRARY_PATH "$root/usr/bin/vesk-roster" --settings "$settings" filters | grep -q here ||
    fail "the unpacked vesk-roster does not list its filter"
out=$(env -u DISPLAY -u WAYLAND_DISPLAY "$root/usr/bin/vesk-roster-gui" --version) ||
    fail "the unpacked window does not answer --version"
echo "run-package: the unpacked programs run"
