#!/usr/bin/env bash
# Lets every call of the agent to the system fail, one in each run, and prints what became of the reports.
#
#   scripts/fault-sweep.sh [OPTION]...     options: see tests/e2e/fault_sweep.py
#   scripts/fault-sweep.sh soak [COUNT]    the same for kills and a failing store: see tests/e2e/soak.py
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/setup.sh
if ! { cmake --preset release && cmake --build --preset release --target end_to_end; } >build/sweep-build.log 2>&1; then
    cat build/sweep-build.log >&2
    exit 1
fi
program=fault_sweep
if [ "${1:-}" = soak ]; then
    program=soak
    shift
fi
exec /usr/bin/python3 "tests/e2e/$program.py" "$@"
