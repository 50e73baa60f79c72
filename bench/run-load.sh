#!/usr/bin/env bash
# Load time and peak memory of vesk-roster on generated rosters, for one build
# or two builds side by side (the runs of the two interleave, so both meet the
# same load on a shared machine).
#
#   bench/run-load.sh NEW_BUILD_DIR [BEFORE_BUILD_DIR [BEFORE_LABEL]]
#
# "load" is `vesk-roster filters`: reading the roster and starting the library,
# without per-entry work; "show" is the whole `show` through the default
# filter. Figures are CPU time (user + system; the best of REPEATS runs) and
# peak resident memory (the largest), both from /usr/bin/time. The table goes
# to stdout and, between its markers, into bench/RESULTS.md.
set -euo pipefail
NEW=${1:?usage: run-load.sh NEW_BUILD_DIR [BEFORE_BUILD_DIR [BEFORE_LABEL]]}
OLD=${2:-}
OLD_LABEL=${3:-before}
HERE=$(cd "$(dirname "$0")" && pwd)
REPEATS=${VESK_LOAD_REPEATS:-3}
SIZES=(${VESK_LOAD_SIZES:-10000 100000 1000000})
export LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen

if [ ! -x /usr/bin/time ]; then
    echo "run-load: /usr/bin/time is not installed (Debian package \"time\")" >&2
    exit 1
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

builds=(new)
declare -A BIN=([new]=$NEW/vesk-roster/vesk-roster)
declare -A LABEL=([new]=after)
if [ -n "$OLD" ]; then
    builds+=(old)
    BIN[old]=$OLD/vesk-roster/vesk-roster
    LABEL[old]=$OLD_LABEL
fi

declare -A CPU RSS
for n in "${SIZES[@]}"; do
    "${BIN[new]}" generate "$n" --seed 20261123 >"$work/roster.json"
    for ((r = 0; r < REPEATS; ++r)); do
        for b in "${builds[@]}"; do
            for cmd in filters show; do
                rm -rf "$work/settings"
                /usr/bin/time -f '%U %S %M' -o "$work/time" "${BIN[$b]}" \
                    --settings "$work/settings" --roster "$work/roster.json" "$cmd" >/dev/null
                read -r user sys kb <"$work/time"
                ms=$(awk -v u="$user" -v s="$sys" 'BEGIN { printf "%d", (u + s) * 1000 }')
                key="$b,$n,$cmd"
                if [ -z "${CPU[$key]:-}" ] || [ "$ms" -lt "${CPU[$key]}" ]; then CPU[$key]=$ms; fi
                if [ -z "${RSS[$key]:-}" ] || [ "$kb" -gt "${RSS[$key]}" ]; then RSS[$key]=$kb; fi
            done
        done
    done
done

qt=$("${BIN[new]}" --version 2>/dev/null | head -n 1 || true)
table=$(
    echo "<!-- roster-load -->"
    echo "## Loading a roster: vesk-roster before and after the QJsonDocument reader"
    echo
    echo "Written by \`bench/run-load.sh\` on $(date -u +%Y-%m-%dT%H:%M:%SZ), load average" \
        "$(cut -d' ' -f1-3 /proc/loadavg). Rosters from \`vesk-roster generate N --seed 20261123\`;" \
        "CPU time is user + system, the best of $REPEATS runs; memory is the peak resident set." \
        "\"load\" is \`vesk-roster filters\` (read the roster, start the library), \"show\" the" \
        "whole \`show\`. Runs of the two builds interleave."
    echo
    if [ -n "$OLD" ]; then
        echo "| contacts | step | CPU ${LABEL[old]} | CPU after | ratio | peak RSS ${LABEL[old]} | peak RSS after | ratio |"
        echo "|---:|---|---:|---:|---:|---:|---:|---:|"
    else
        echo "| contacts | step | CPU | peak RSS |"
        echo "|---:|---|---:|---:|"
    fi
    for n in "${SIZES[@]}"; do
        for cmd in filters show; do
            step=$([ "$cmd" = filters ] && echo load || echo show)
            a=${CPU[new,$n,$cmd]} am=$((RSS[new,$n,$cmd] / 1024))
            if [ -n "$OLD" ]; then
                o=${CPU[old,$n,$cmd]} om=$((RSS[old,$n,$cmd] / 1024))
                awk -v n="$n" -v s="$step" -v o="$o" -v a="$a" -v om="$om" -v am="$am" 'BEGIN {
                    printf "| %d | %s | %d ms | %d ms | %.2f× | %d MiB | %d MiB | %.2f× |\n",
                        n, s, o, a, (o ? a / o : 0), om, am, (om ? am / om : 0) }'
            else
                echo "| $n | $step | $a ms | $am MiB |"
            fi
        done
    done
    echo "<!-- /roster-load -->"
)
echo "$table"

# Replace the section between the markers, or append it.
results=$HERE/RESULTS.md
if grep -q '^<!-- roster-load -->$' "$results" 2>/dev/null; then
    awk -v table="$table" '
        /^<!-- roster-load -->$/ { print table; skip = 1; next }
        /^<!-- \/roster-load -->$/ { skip = 0; next }
        !skip { print }' "$results" >"$work/results" && cat "$work/results" >"$results"
else
    printf '\n%s\n' "$table" >>"$results"
fi
echo "run-load: wrote $results" >&2
