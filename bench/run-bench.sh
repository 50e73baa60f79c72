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
    --benchmark_display_aggregates_only=true "$@"

echo
"$BUILD/bench/vesk-bench-report" "$JSON" "$HERE/RESULTS.md" "$(( $(date +%s) - START ))"
echo
echo "run-bench: wrote $HERE/RESULTS.md"
