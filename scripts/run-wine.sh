#!/usr/bin/env bash
# Runs one Windows program under Wine in the project's own prefix. CTest uses it as the emulator.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$root/build/wine}
export WINEDEBUG=${WINEDEBUG:--all} WINEARCH=win64
# No installer pop-ups for parts that nobody here needs.
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=;winemenubuilder.exe=d}
# A new prefix links the Windows user's Documents to the home folder: give it one that is ours.
export HOME=$root/build/home
# File names are UTF-8 whatever the machine's own language.
export LC_ALL=${LC_ALL:-C.UTF-8}
mkdir -p "$WINEPREFIX" "$HOME"
exec wine "$@"
