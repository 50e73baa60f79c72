#!/usr/bin/env bash
# Runs the benchmarks of an already built tree, prints the table and writes
# bench/RESULTS.md. Usage: bench/run-bench.sh BUILD_DIR [BENCHMARK ARGS...]
set -euo pipefail
BUILD=${1:?usage: run-bench.sh BUILD_DIR [BENCHMARK ARGS...]}
shift
HERE=$(cd "$(dirname "$0")" && pwd)
BUILD=$(cd "$BUILD" && pwd)
JSON=$BUILD/bench/vesk-bench.json
START=$(date +%s)

# The proxy benchmarks need no display; the collation locale is set by the
# benchmark itself, so the machine's locale does not change the figures.
export QT_QPA_PLATFORM=offscreen
export LC_ALL=C.UTF-8

"$BUILD/bench/vesk-bench" \
    --benchmark_out="$JSON" --benchmark_out_format=json \
    --benchmark_display_aggregates_only=true "$@" | tee "$BUILD/bench/vesk-bench.txt"

echo
"$BUILD/bench/vesk-bench-report" "$JSON" "$HERE/RESULTS.md" "$(( $(date +%s) - START ))"
# The roster window's proxy model, a binary of its own; its table is appended.
if [ -x "$BUILD/bench/vesk-bench-proxy" ]; then
    PROXY=$("$BUILD/bench/vesk-bench-proxy" --benchmark_display_aggregates_only=true 2>&1 |
        grep -E '^(BM_|Benchmark|Load)')
    echo "$PROXY"
    {
        echo
        echo "## Roster window: VeskRosterProxyModel (100,000 contacts)"
        echo
        echo "From bench/bench_proxy.cpp, in the same run. BM_SwitchFilter times, in every"
        echo "iteration, the library alone (filter every member, bulk-sort each group's passing"
        echo "members, order the groups) and then the proxy re-filtering and re-sorting every level"
        echo "(refresh() and the rows a view asks for), on the same filter; two filters with two"
        echo "sorting methods take turns. Target: ratio at most 1.5. BM_PresenceChange: CPU time of"
        echo "one dataChanged() of a random contact whose presence changed. Target: under 1 ms."
        echo
        echo '```'
        echo "$PROXY"
        echo '```'
    } >>"$HERE/RESULTS.md"
fi
# The whole-roster call's lines of the main run, and the quick search typed
# into the roster window (a binary of its own), appended the same way.
WHOLE=$(grep -E '^WholeRoster/.*(median|/1000000/)' "$BUILD/bench/vesk-bench.txt" || true)
if [ -n "$WHOLE" ] || [ -x "$BUILD/bench/vesk-bench-search" ]; then
    SEARCH=""
    if [ -x "$BUILD/bench/vesk-bench-search" ]; then
        SEARCH=$("$BUILD/bench/vesk-bench-search" 2>&1 | grep -E '^(BM_|Benchmark)')
        echo "$SEARCH"
    fi
    {
        echo
        echo "## Quick search and the whole-roster call"
        echo
        echo "From bench/bench_wholeroster.cpp and bench/bench_search.cpp, in the same run."
        echo "WholeRoster: VeskRosterFiltersManager::filterEntries() over the whole roster against the"
        echo "fastest hand-written predicate filling an index buffer, and filter() entry by entry;"
        echo "display_reads_ns is each entry's display name read and nothing else, host_reads_ns"
        echo "the host calls the fastest predicate makes for each entry, without its comparisons."
        echo "Target: whole_per_fastest at most 0.7. BM_Keystroke: CPU time of each keystroke of \"garcia\""
        echo "typed into the roster window at 100,000 contacts with a filter of three conditions"
        echo "current, from the key event until the view has laid out and painted, and of Escape,"
        echo "after Ctrl+F and the search's texts read in slices (prepare_ms in all, the longest"
        echo "slice prepare_longest_slice_ms); proxy_*_ms is the proxy's own layout change."
        echo "Targets: median 16 ms, worst 33 ms."
        echo
        echo '```'
        [ -n "$WHOLE" ] && echo "$WHOLE"
        [ -n "$SEARCH" ] && echo "$SEARCH"
        echo '```'
    } >>"$HERE/RESULTS.md"
fi

# The live XMPP host against a local Prosody, a binary of its own; appended too.
if [ -x "$BUILD/bench/vesk-bench-xmpp" ] && command -v prosody >/dev/null; then
    XMPP=$("$BUILD/bench/vesk-bench-xmpp" --benchmark_display_aggregates_only=true 2>&1 |
        grep -E '^(BM_|Benchmark|Load)')
    echo "$XMPP"
    {
        echo
        echo "## Live XMPP host (bench/bench_xmpp.cpp)"
        echo
        echo "Presence updates at 10,000 contacts through the mapping, the tree model and the proxy"
        echo "with a stored filter and method (updates_per_s; target at least 20,000), against the"
        echo "bare host update and row (ratio); log-in to a 5,000-item roster on a local Prosody"
        echo "until all are shown (login_ms; target under 1 s); a ten-second flood of 1,000"
        echo "presences a second (longest_stall_ms)."
        echo
        echo '```'
        echo "$XMPP"
        echo '```'
    } >>"$HERE/RESULTS.md"
fi

echo
echo "run-bench: wrote $HERE/RESULTS.md"
