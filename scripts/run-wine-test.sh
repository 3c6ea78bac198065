#!/usr/bin/env bash
# Runs one unit-test program under Wine. Now and then a program dies there at its start, before its first test. Only then
# is it started a second time, and says so.
set -uo pipefail
output=$(mktemp)
trap 'rm -f "$output"' EXIT

for attempt in first second; do
    "$(dirname "${BASH_SOURCE[0]}")/run-wine.sh" "$@" 2>&1 | tee "$output"
    result=$?
    if [ $result = 0 ] || grep -q '^\[==========\] Running' "$output"; then exit $result; fi
    echo "run-wine-test: $attempt start of $1 ended with $result before its first test"
done
exit $result
