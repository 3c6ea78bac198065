#!/usr/bin/env bash
# Runs one Windows program under Wine in the project's own prefix. CTest uses it as the emulator.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$root/build/wine}
export WINEDEBUG=${WINEDEBUG:--all} WINEARCH=win64
# No installer pop-ups for parts that nobody here needs.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=;winemenubuilder.exe=d}
mkdir -p "$WINEPREFIX"
exec wine "$@"
