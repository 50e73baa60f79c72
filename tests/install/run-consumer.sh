#!/usr/bin/env bash
# Installs a build tree into a scratch prefix, checks what went there, then
# builds a small client against it twice, through find_package and through
# pkg-config, and runs both.
#   run-consumer.sh BUILD_DIR QT_MAJOR_VERSION LIBRARY_SUFFIX [EXTRA_CXX_FLAGS]
set -euo pipefail
build=$1 qt=$2 suffix=$3 flags=${4:-}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null
private=$(find "$prefix" -name '*_p.h')
if [ -n "$private" ]; then
    echo "run-consumer: private headers were installed: $private" >&2
    exit 1
fi
libdir=$(dirname "$(find "$prefix" -name "libvesk_gui_roster_filter$suffix.so" | head -n 1)")
qm=$prefix/share/vesk_gui_roster_filter/translations/vesk_gui_roster_filter_de.qm
for file in "$libdir/libvesk_gui_roster_filter$suffix.so.0" "$libdir/libvesk_host$suffix.so.0" \
    "$libdir/pkgconfig/vesk_gui_roster_filter$suffix.pc" "$qm"; do
    [ -e "$file" ] || { echo "run-consumer: $file was not installed" >&2; exit 1; }
done
# The proxy model's library, where this tree builds it.
if [ -n "$(find "$build" -name "libvesk_gui_roster_models$suffix.so" -print -quit)" ]; then
    for file in "$libdir/libvesk_gui_roster_models$suffix.so.0" \
        "$libdir/pkgconfig/vesk_gui_roster_models$suffix.pc" \
        "$prefix/include/vesk_gui_roster_models/veskrosterproxymodel.h"; do
        [ -e "$file" ] || { echo "run-consumer: $file was not installed" >&2; exit 1; }
    done
    grep -q 'Vesk::RosterModels' "$(find "$prefix" -name VeskRosterFilterTargets.cmake)" || {
        echo "run-consumer: the package lacks Vesk::RosterModels" >&2
        exit 1
    }
fi
# The editor widgets' library, with its catalogue, where this tree builds it.
widgets=0
if [ -n "$(find "$build" -name "libvesk_gui_roster_widgets$suffix.so" -print -quit)" ]; then
    widgets=1
    for file in "$libdir/libvesk_gui_roster_widgets$suffix.so.0" \
        "$libdir/pkgconfig/vesk_gui_roster_widgets$suffix.pc" \
        "$prefix/include/vesk_gui_roster_widgets/veskfiltereditorwidget.h" \
        "$prefix/share/vesk_gui_roster_filter/translations/vesk_gui_roster_widgets_de.qm"; do
        [ -e "$file" ] || { echo "run-consumer: $file was not installed" >&2; exit 1; }
    done
fi
soname=$(objdump -p "$libdir/libvesk_gui_roster_filter$suffix.so" | awk '$1 == "SONAME" { print $2 }')
[ "$soname" = "libvesk_gui_roster_filter$suffix.so.0" ] || {
    echo "run-consumer: SONAME is \"$soname\"" >&2
    exit 1
}

expected=$'display: 2 fields, passes an empty entry: yes\nAnzeigename'
check() { # label, program
    local output
    output=$("$2" "$qm")
    if [ "$output" != "$expected" ]; then
        printf 'run-consumer: the %s client printed\n%s\ninstead of\n%s\n' "$1" "$output" "$expected" >&2
        exit 1
    fi
    echo "run-consumer: the $1 client builds and runs"
}

cmake -S "$here/consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
    -DQT_MAJOR_VERSION="$qt" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
cmake --build "$work/cmake" >/dev/null
check find_package "$work/cmake/consumer"

export PKG_CONFIG_PATH=$libdir/pkgconfig
# shellcheck disable=SC2046,SC2086 # pkg-config's output is a list of words
${CXX:-c++} -std=c++17 -fPIC $flags "$here/consumer/main.cpp" -o "$work/consumer-pkg-config" \
    $(pkg-config --cflags --libs "vesk_gui_roster_filter$suffix") -Wl,-rpath,"$libdir"
check pkg-config "$work/consumer-pkg-config"

# A client that embeds the filter editor and stores what it hands back
# through the filters manager, in a settings directory of its own.
if [ $widgets -eq 1 ]; then
    cmake -S "$here/widgets-consumer" -B "$work/widgets" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DQT_MAJOR_VERSION="$qt" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
    cmake --build "$work/widgets" >/dev/null
    # The client's run path reaches the libraries it links, not what they
    # link in turn: a prefix the loader does not search is named for it.
    output=$(LD_LIBRARY_PATH=$libdir XDG_CONFIG_HOME=$work/config QT_QPA_PLATFORM=offscreen \
        "$work/widgets/widgets-consumer" \
        "$prefix/share/vesk_gui_roster_filter/translations/vesk_gui_roster_widgets_de.qm")
    expected_widgets=$'(display Ann)\nEr&weiterter Modus'
    if [ "$output" != "$expected_widgets" ] || [ ! -s "$work/config/vesk-host/roster_filters/ann" ]; then
        printf 'run-consumer: the widgets client printed\n%s\ninstead of\n%s\n' "$output" "$expected_widgets" >&2
        exit 1
    fi
    echo "run-consumer: the widgets client builds, stores and runs"
fi
