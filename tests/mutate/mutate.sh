#!/usr/bin/env bash
# Plants the faults listed in faults.txt one at a time and runs the fast tests
# against each: a fault is caught when at least one test fails.
#
#   tests/mutate/mutate.sh [--list] [WORD...]
#
# WORDs pick the faults whose title contains one of them (all by default).
# The faults go into a scratch copy of the sources (build/mutate/src, built in
# build/mutate/build), never into the working tree, so an interrupted run
# leaves nothing behind: the next run copies the tree afresh. Exits non-zero
# when a fault is missed, does not build, or its anchor no longer matches.
set -uo pipefail

ROOT=$(cd "$(dirname "$0")/../.." && pwd)
FAULTS=${VESK_MUTATE_FAULTS:-$ROOT/tests/mutate/faults.txt}
WORK=$ROOT/build/mutate
SRC=$WORK/src
BUILD=$WORK/build
LOGS=$WORK/logs
# The long runs (kill loop, Valgrind, fuzzing) stay out; they guard against
# other kinds of fault than a wrong line.
EXCLUDE=${VESK_MUTATE_EXCLUDE:-tst_savecrash|tst_vesk_roster_kill|reliability_valgrind|reliability_fuzz}
JOBS=$(nproc 2>/dev/null || echo 2)
export CCACHE_BASEDIR=$SRC QT_QPA_PLATFORM=offscreen

list_only=0
words=()
for arg in "$@"; do
    case "$arg" in
    --list) list_only=1 ;;
    -h | --help)
        sed -n '2,11p' "$0" | sed 's/^# \{0,1\}//'
        exit 0
        ;;
    *) words+=("$arg") ;;
    esac
done

# faults.txt: blocks separated by blank lines, '#' lines are comments.
#   fault TITLE
#   file PATH            (relative to the repository; applies to what follows)
#   from TEXT            (must occur exactly once in the file)
#   to TEXT              (what replaces it; may be empty)
# A fault may hold several file/from/to lines; all are applied together.
titles=()
pair_fault=() pair_file=() pair_from=() pair_to=()
parse_error=0
lineno=0
current_file=""
pending_from=""
have_from=0
while IFS= read -r line || [ -n "$line" ]; do
    lineno=$((lineno + 1))
    case "$line" in
    '#'* | '') continue ;;
    'fault '*)
        titles+=("${line#fault }")
        current_file=""
        ;;
    'file '*) current_file=${line#file } ;;
    'from '*)
        pending_from=${line#from }
        pending_from=${pending_from//\\n/$'\n'}
        have_from=1
        ;;
    'to' | 'to '*)
        if [ ${#titles[@]} -eq 0 ] || [ -z "$current_file" ] || [ $have_from -eq 0 ]; then
            echo "faults.txt:$lineno: 'to' needs a fault, a file and a 'from' before it" >&2
            parse_error=1
        fi
        pair_fault+=($((${#titles[@]} - 1)))
        pair_file+=("$current_file")
        pair_from+=("$pending_from")
        to=${line#to}
        to=${to# }
        pair_to+=("${to//\\n/$'\n'}")
        have_from=0
        ;;
    *)
        echo "faults.txt:$lineno: cannot read: $line" >&2
        parse_error=1
        ;;
    esac
done <"$FAULTS"
[ $parse_error -eq 0 ] || exit 2

selected() { # fault index
    [ ${#words[@]} -eq 0 ] && return 0
    local word
    for word in "${words[@]}"; do
        [[ "${titles[$1]}" == *"$word"* ]] && return 0
    done
    return 1
}

# Writes the file of pair $1 with its anchor replaced, reading from directory
# $2 and writing to $3; fails when the anchor is missing or not unique.
apply_pair() {
    local j=$1 from_dir=$2 to_dir=$3
    local file=${pair_file[$j]} from=${pair_from[$j]} to=${pair_to[$j]}
    if [ ! -f "$from_dir/$file" ]; then
        echo "no file $file"
        return 1
    fi
    local content
    content=$(cat "$from_dir/$file")
    case "$content" in
    *"$from"*"$from"*)
        echo "anchor occurs more than once in $file: $from"
        return 1
        ;;
    *"$from"*) ;;
    *)
        echo "anchor not found in $file: $from"
        return 1
        ;;
    esac
    printf '%s\n' "${content/"$from"/"$to"}" >"$to_dir/$file"
}

# Every anchor is checked against the working tree before anything is built.
check=$(mktemp -d)
trap 'rm -rf "$check"' EXIT
stale=0
for ((i = 0; i < ${#titles[@]}; i++)); do
    selected "$i" || continue
    for ((j = 0; j < ${#pair_fault[@]}; j++)); do
        [ "${pair_fault[$j]}" -eq "$i" ] || continue
        mkdir -p "$check/$(dirname "${pair_file[$j]}")"
        [ -f "$check/${pair_file[$j]}" ] || cp "$ROOT/${pair_file[$j]}" "$check/${pair_file[$j]}"
        if ! message=$(apply_pair "$j" "$check" "$check"); then
            echo "stale  ${titles[$i]}: $message"
            stale=$((stale + 1))
        fi
    done
    rm -rf "${check:?}"/*
done

if [ $list_only -eq 1 ]; then
    for ((i = 0; i < ${#titles[@]}; i++)); do
        selected "$i" && echo "${titles[$i]}"
    done
    exit $((stale > 0))
fi
if [ $stale -gt 0 ]; then
    echo "mutate: $stale fault(s) no longer match the sources; update faults.txt" >&2
    exit 1
fi

# The scratch copy: tracked and new files of the working tree, copied only
# when they differ so that unchanged files keep their build.
mkdir -p "$SRC" "$LOGS"
(cd "$ROOT" && git ls-files --cached --others --exclude-standard) | sort >"$WORK/files"
while IFS= read -r file; do
    [ -f "$ROOT/$file" ] || continue
    if ! cmp -s "$ROOT/$file" "$SRC/$file"; then
        mkdir -p "$SRC/$(dirname "$file")"
        cp "$ROOT/$file" "$SRC/$file"
    fi
done <"$WORK/files"
(cd "$SRC" && find . -type f | sed 's|^\./||' | sort) | comm -23 - "$WORK/files" \
    | (cd "$SRC" && xargs -r -d '\n' rm -f)

build() { # log file
    {
        [ -f "$BUILD/build.ninja" ] || cmake -S "$SRC" -B "$BUILD" -G Ninja \
            -DCMAKE_BUILD_TYPE=Debug -DBUILD_TESTING=ON -DVESK_SANITIZE=OFF \
            -DCMAKE_LINK_DEPENDS_NO_SHARED=ON
        cmake --build "$BUILD" -j "$JOBS"
    } >"$1" 2>&1
}

# Stops at the first failure: one failing test is enough to call a fault caught.
run_tests() { # log file
    ctest --test-dir "$BUILD" -j "$JOBS" -E "$EXCLUDE" --timeout 300 --stop-on-failure \
        --output-on-failure >"$1" 2>&1
}

failed_tests() { # log file
    sed -n 's/^[[:space:]]*[0-9]* - \([^ ]*\) .*/\1/p' "$1" | sort -u | tr '\n' ' '
}

echo "mutate: building and testing the unchanged sources in $BUILD" >&2
if ! build "$LOGS/clean.build"; then
    cat "$LOGS/clean.build" >&2
    echo "mutate: the unchanged sources do not build" >&2
    exit 2
fi
if ! run_tests "$LOGS/clean.test"; then
    grep -E 'Failed|\*\*\*' "$LOGS/clean.test" >&2
    echo "mutate: the unchanged sources fail tests; fix them first ($LOGS/clean.test)" >&2
    exit 2
fi

planted=0 caught=0
problems=()
for ((i = 0; i < ${#titles[@]}; i++)); do
    selected "$i" || continue
    planted=$((planted + 1))
    log=$LOGS/fault-$((i + 1))
    touched=()
    ok=1
    rm -rf "$WORK/saved"
    for ((j = 0; j < ${#pair_fault[@]}; j++)); do
        [ "${pair_fault[$j]}" -eq "$i" ] || continue
        file=${pair_file[$j]}
        if [ ! -f "$WORK/saved/$file" ]; then
            mkdir -p "$WORK/saved/$(dirname "$file")"
            cp "$SRC/$file" "$WORK/saved/$file"
            touched+=("$file")
        fi
        apply_pair "$j" "$SRC" "$SRC" >/dev/null || ok=0
    done
    start=$SECONDS
    if [ $ok -eq 0 ]; then
        verdict="stale "
    elif ! build "$log.build"; then
        verdict="nobuild"
    elif run_tests "$log.test"; then
        verdict="MISSED"
    else
        verdict="caught"
        caught=$((caught + 1))
    fi
    for file in "${touched[@]}"; do
        cp "$WORK/saved/$file" "$SRC/$file"
    done
    detail=""
    [ "$verdict" = caught ] && detail=" by $(failed_tests "$log.test")"
    [ "$verdict" = nobuild ] && detail=" (see $log.build)"
    printf '%-7s %s%s [%ss]\n' "$verdict" "${titles[$i]}" "$detail" $((SECONDS - start))
    [ "$verdict" = caught ] || problems+=("$verdict ${titles[$i]}")
done

echo "mutate: $caught of $planted faults caught"
if [ ${#problems[@]} -gt 0 ]; then
    printf '  %s\n' "${problems[@]}"
    exit 1
fi
