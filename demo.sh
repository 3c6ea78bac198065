#!/usr/bin/env bash
# From a clean Debian 12 with git and root to a crash report in a bucket: sets up, builds, crashes a sample game beside
# the agent, with a key and without, and opens what arrived in a local S3 store. Ends by itself; exit code 0 when both reports
# arrived whole.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

scripts/setup.sh
echo "demo: building (preset release)"
cmake --preset release >build/release-configure.log 2>&1 || { cat build/release-configure.log && exit 1; }
cmake --build --preset release --target MorvaneCrashReporter SampleGame
exec /usr/bin/python3 kit/demo.py
