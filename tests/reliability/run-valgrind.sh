#!/usr/bin/env bash
# Runs the end-to-end scenario under Valgrind memcheck; any error fails.
#   run-valgrind.sh SOURCE_DIR SCENARIO_BINARY SANITIZED(ON|OFF) PLAIN_BUILD_DIR QT_MAJOR_VERSION
# A sanitized binary cannot run under Valgrind, so for a sanitized build the
# scenario is built again, plainly, in PLAIN_BUILD_DIR.
set -euo pipefail
source_dir=$1 scenario=$2 sanitized=$3 plain=$4 qt=$5

if ! command -v valgrind >/dev/null; then
    echo "run-valgrind: valgrind is not installed" >&2
    exit 77
fi
if [[ "$sanitized" =~ ^(ON|on|1|TRUE|true|YES|yes)$ ]]; then
    export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$source_dir}
    cmake -S "$source_dir" -B "$plain" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVESK_SANITIZE=OFF \
        -DBUILD_TESTING=ON -DVESK_QT_MAJOR_VERSION="$qt" >/dev/null
    cmake --build "$plain" -j 2 --target reliability_scenario >/dev/null
    scenario="$plain/tests/reliability/reliability_scenario"
fi
# Leaks count as errors only when definite: Qt keeps some allocations
# reachable until exit on purpose.
exec valgrind --tool=memcheck --error-exitcode=1 --leak-check=full \
    --suppressions="$source_dir/tests/reliability/valgrind.supp" \
    --errors-for-leak-kinds=definite --show-leak-kinds=definite --track-origins=yes \
    --num-callers=30 -q "$scenario"
