#!/usr/bin/env bash
# Measures the program against the bounds in docs/performance.md and prints one table. The machine should be quiet.
#
#   ./bench.sh [--quick] [--write] [ROW...]    options and rows: see bench/bench.py
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

build() { # preset target...
    if ! { cmake --preset "$1" && cmake --build "build/$1" --target "${@:2}"; } >"build/$1-bench.log" 2>&1; then
        cat "build/$1-bench.log" >&2
        return 1
    fi
}

scripts/setup.sh
echo "Building ..."
build release bench PackageTool MorvaneCrashReporter SampleGame
build bench bench
exec /usr/bin/python3 bench/bench.py "$@"
