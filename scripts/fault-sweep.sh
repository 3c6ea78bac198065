#!/usr/bin/env bash
# Lets every call of the agent to the system fail, one in each run, and prints what became of the reports.
#
#   scripts/fault-sweep.sh [OPTION]...     options: see tests/e2e/fault_sweep.py
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/setup.sh
if ! { cmake --preset release && cmake --build --preset release --target end_to_end; } >build/sweep-build.log 2>&1; then
    cat build/sweep-build.log >&2
    exit 1
fi
exec /usr/bin/python3 tests/e2e/fault_sweep.py "$@"
