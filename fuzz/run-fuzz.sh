#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (ASan + UBSan + leak detection) and
# runs each of them.
#
#   fuzz/run-fuzz.sh [SECONDS]        fuzz each target SECONDS (default 60),
#                                     growing fuzz/corpus-work/<target>
#   fuzz/run-fuzz.sh --ci [SECONDS]   replay the committed corpus, then fuzz
#                                     each target SECONDS (default 30) into a
#                                     scratch corpus; what CTest runs
#
# VESK_FUZZ_BUILD_DIR picks the build directory (default build/fuzz),
# VESK_QT_MAJOR_VERSION the Qt (default: as the top-level build decides).
set -euo pipefail
FUZZ_DIR=$(cd "$(dirname "$0")" && pwd)
ROOT=$(dirname "$FUZZ_DIR")
BUILD=${VESK_FUZZ_BUILD_DIR:-$ROOT/build/fuzz}
TARGETS=(fuzz_stackfile fuzz_fields fuzz_rosterfile)
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$ROOT}

mode=long
case "${1:-}" in
--ci) mode=ci; shift ;;
esac
seconds=${1:-$([ "$mode" = ci ] && echo 30 || echo 60)}

if ! command -v clang++ >/dev/null; then
    echo "run-fuzz: clang++ is not installed" >&2
    exit 77
fi

CC=clang CXX=clang++ cmake -S "$ROOT" -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS=-O1 -DVESK_SANITIZE=ON -DVESK_BUILD_FUZZ=ON -DBUILD_TESTING=OFF \
    ${VESK_QT_MAJOR_VERSION:+-DVESK_QT_MAJOR_VERSION=$VESK_QT_MAJOR_VERSION} >/dev/null
cmake --build "$BUILD" -j "${VESK_FUZZ_JOBS:-2}" --target "${TARGETS[@]}" >/dev/null

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
# The stack-file target saves files on every run; on tmpfs a save's fsync
# costs nothing and the fuzzer runs several times faster.
if [ -z "${TMPDIR:-}" ] && [ -d /dev/shm ] && [ -w /dev/shm ]; then
    export TMPDIR=/dev/shm
fi
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
artifacts="$BUILD/artifacts"
mkdir -p "$artifacts"

# Per target: dictionary and the largest input worth generating.
declare -A DICT=([fuzz_stackfile]=stackfile.dict [fuzz_fields]=fields.dict [fuzz_rosterfile]=rosterfile.dict)
declare -A MAXLEN=([fuzz_stackfile]=16384 [fuzz_fields]=4096 [fuzz_rosterfile]=16384)

status=0
for target in "${TARGETS[@]}"; do
    name=${target#fuzz_}
    seeds="$FUZZ_DIR/corpus/$name"
    if [ "$mode" = ci ]; then
        work=$(mktemp -d)
        trap 'rm -rf "$work"' EXIT
    else
        work="$FUZZ_DIR/corpus-work/$name"
    fi
    mkdir -p "$work" "$seeds"
    log="$BUILD/$target.log"
    echo "run-fuzz: $target for ${seconds}s (log: $log)"
    # -timeout and -rss_limit_mb turn a slow input (> 10 s) or a runaway
    # allocation into a failure; print_final_stats gives the figures that
    # fuzz/RESULTS.md records.
    if ! "$BUILD/fuzz/$target" "$work" "$seeds" \
        -dict="$FUZZ_DIR/${DICT[$target]}" -max_len="${MAXLEN[$target]}" \
        -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -report_slow_units=1 \
        -print_final_stats=1 -artifact_prefix="$artifacts/$target-" >"$log" 2>&1; then
        echo "run-fuzz: $target FAILED; last lines of $log:" >&2
        tail -n 60 "$log" >&2
        status=1
    fi
    grep -E '^(stat::|#[0-9]+ +DONE)|Slowest unit' "$log" || true
    if [ "$mode" = ci ]; then
        rm -rf "$work"
        trap - EXIT
    fi
done
exit $status
