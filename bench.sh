#!/usr/bin/env bash
# Measures the program against the bounds in docs/performance.md and prints one table. The machine should be quiet.
#
#   ./bench.sh [--quick] [--markdown] [ROW...]
#
# ROW names rows of the list below (default: all). --quick runs through everything with little data, which shows that it
# works and little about speed. --markdown prints the table as the document holds it; the rest goes to standard error.
# Exit code 0: every row was measured. A missed goal is told in the table and counted in the last line: it is a finding,
# and depends on the machine. Exit code 1: a row could not be measured.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

known=(compress package md5 memory header watcher start idle)
release=${MORVANE_BENCH_RELEASE:-build/release} # as it ships, run under Wine
native=${MORVANE_BENCH_NATIVE:-build/bench}     # this machine's own programs, optimised
export WINEPREFIX=${WINEPREFIX:-$PWD/build/wine}
scratch=$PWD/build/bench-scratch
quick=()
markdown=false
rows=()

# ---- the rows: each prints what its programs print; a line "ROW<tab>..." goes into the table (bench/src/Bench.h)

row_compress() { under_wine CompressBench; }
row_package() { packaging time; }
row_memory() { packaging memory; }
row_md5() { natively Md5Bench; }
row_header() { natively HeaderBench && under_wine HeaderBench; }
row_watcher() {
    local few=$((${#quick[@]} ? 1000 : 10000))
    make_folders "$few" && make_folders $((few * 10)) && under_wine WatcherBench
}
row_start() { under_wine StartBench; }
row_idle() { # the second as docs/recommended-configuration.json has it
    idle_agent --defaults && idle_agent
}

# ---- how they run

under_wine() { # program [argument]...
    scripts/run-wine.sh "$release/bin/$1.exe" "--scratch=Z:${scratch//\//\\}" "${quick[@]}" "${@:2}" </dev/null
}

natively() { # program [argument]...
    "$native/bin/$1" "--scratch=$scratch" "${quick[@]}" "${@:2}"
}

make_folders() { # count
    mkdir -p "$scratch/folders-$1" &&
        seq -f "$scratch/folders-$1/2024-05-06_07-08-09_crash-%06.0f" 0 $(($1 - 1)) | xargs mkdir
}

idle_agent() { # [argument]...
    MORVANE_BIN=$release/bin MORVANE_SCRATCH=$scratch/idle /usr/bin/python3 bench/idle_agent.py "${quick[@]}" "$@"
}

packaging() { # time|memory
    /usr/bin/python3 bench/packaging.py "$1" --release "$release" --native "$native" --scratch "$scratch" "${quick[@]}"
}

build() { # preset folder target...
    if ! { cmake --preset "$1" -B "$2" && cmake --build "$2" --target "${@:3}"; } >"build/$1-bench.log" 2>&1; then
        cat "build/$1-bench.log" >&2
        return 1
    fi
}

print_table() { # reads the rows
    if $markdown; then
        echo '| what | measured | bound | ratio | goal | |'
        echo '|---|---|---|---|---|---|'
        awk -F'\t' '{ print "| " $2 " | " $3 " | " $4 " | " $5 " | " $6 " | " $7 " |" }'
    else
        awk -F'\t' 'BEGIN { printf "%-52s %14s %14s %7s  %-8s\n", "what", "measured", "bound", "ratio", "goal" }
                    { printf "%-52s %14s %14s %7s  %-8s %s\n", $2, $3, $4, $5, $6, $7 }'
    fi
}

for argument in "$@"; do
    case $argument in
    --quick) quick=(--quick) ;;
    --markdown) markdown=true ;;
    *)
        [[ " ${known[*]} " == *" $argument "* ]] || { echo "bench.sh: no row $argument; there are: ${known[*]}" >&2 && exit 2; }
        rows+=("$argument")
        ;;
    esac
done
((${#rows[@]})) || rows=("${known[@]}")

exec 3>&1
if $markdown; then exec 1>&2; fi
scripts/setup.sh
echo "Building ..."
build release "$release" bench PackageTool MorvaneCrashReporter SampleGame
build bench "$native" bench PackageTool
mkdir -p "$scratch" "$WINEPREFIX"
results=$scratch/rows
: >"$results"
trap 'wineserver -k 2>/dev/null || true; rm -rf "$scratch"' EXIT
wineserver --persistent
scripts/run-wine.sh cmd.exe /c exit </dev/null >/dev/null 2>&1

unmeasured=()
for name in "${rows[@]}"; do
    echo "==== $name"
    if ! "row_$name" | sed -u 's/\r$//' | tee "$scratch/output" | { grep -v $'^ROW\t' || true; } || ! grep $'^ROW\t' "$scratch/output" >>"$results"; then
        unmeasured+=("$name")
    fi
done

print_table <"$results" >&3
missed=$(grep -c 'MISSED$' "$results" || true)
echo "$(wc -l <"$results") rows measured, $missed missed their goal${unmeasured[*]:+; not measured: ${unmeasured[*]}} (in $SECONDS s)"
[ ${#unmeasured[@]} -eq 0 ]
