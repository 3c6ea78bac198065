#!/usr/bin/env bash
# Builds the fuzz targets (preset native) and runs each for a while from its committed corpus. What it finds and what it
# learns stays under build/fuzz: findings/TARGET/ and corpus/TARGET/.
#
#   scripts/fuzz.sh [--seconds N] [TARGET...]    N for each target, 10 without; all targets without names
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

seconds=10
if [ "${1:-}" = --seconds ]; then
    seconds=${2:?how many seconds}
    shift 2
fi
bin=$PWD/build/native/bin
build=$PWD/build/fuzz
tests=$PWD/tests/fuzz
mkdir -p "$build"
cmake --preset native >"$build/configure.log" 2>&1 || { cat "$build/configure.log" && exit 1; }
cmake --build --preset native --target fuzz
targets=("$@")
[ $# -gt 0 ] || mapfile -t targets < <(ls "$tests/corpus")

dictionary() { # target
    case $1 in
    Json | Packaging | Package) echo header ;;
    Configuration | SignerAnswer) echo configuration ;;
    AttachmentName) echo names ;;
    Blacklist) echo expressions ;;
    esac
}

# A target that never ends is a finding too: -timeout is for one input.
fuzz_one() { # target
    local target=$1 words log=$build/$1.log options=()
    words=$(dictionary "$target")
    [ -z "$words" ] || options=("-dict=$tests/dictionaries/$words.dict")
    mkdir -p "$build/corpus/$target" "$build/findings/$target"
    if "$bin/Fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        -use_value_profile=1 -artifact_prefix="$build/findings/$target/" "${options[@]}" \
        "$build/corpus/$target" "$tests/corpus/$target" >"$log" 2>&1; then
        awk -v target="$target" '
            / cov: / { for (i = 1; i < NF; ++i) if ($i == "cov:") coverage = $(i + 1) }
            /number_of_executed_units/ { units = $2 }
            /average_exec_per_sec/ { speed = $2 }
            /peak_rss_mb/ { memory = $2 }
            END { printf "%-16s %9d inputs, %6d a second, %5d edges, %4d MB\n", target, units, speed, coverage, memory }' "$log"
    else
        grep -aE 'does not hold|ERROR|SUMMARY|runtime error|Test unit written' "$log" || tail -n 20 "$log"
        echo "$target: FINDING, see $log"
        return 1
    fi
}

# The targets make their folders here; in memory they are ten times as fast.
if [ -z "${TMPDIR:-}" ] && [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export -f fuzz_one dictionary
export bin build seconds tests
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'fuzz_one "$1"' _ {}
