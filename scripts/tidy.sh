#!/usr/bin/env bash
# Runs clang-tidy over the sources that preset release compiles, or over those named on the command line.
# A file that passed is not looked at again until it, a header or .clang-tidy changes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

build=${MORVANE_TIDY_BUILD:-build/release}
passed=build/tidy
gcc=$(x86_64-w64-mingw32-g++-posix -print-file-name=include)
gcc=${gcc%/include}

# clang reads the cross compiler's commands with that compiler's headers; options that only GCC knows are ignored.
export TIDY_ARGUMENTS="-p $build --quiet \
  --extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-error \
  --extra-arg=-Qunused-arguments --extra-arg=-isystem$gcc/include/c++ \
  --extra-arg=-isystem$gcc/include/c++/x86_64-w64-mingw32 --extra-arg=-isystem/usr/x86_64-w64-mingw32/include"

missing=$(git ls-files -d '*.cpp' '*.h')
if [ -n "$missing" ]; then
    printf 'tidy: deleted, but still in the index (git rm):\n%s\n' "$missing" >&2
    exit 2
fi
mkdir -p "$passed"
TIDY_COMMON=$(git ls-files -co --exclude-standard '*.h' .clang-tidy scripts/tidy.sh | sort | xargs cat | sha256sum | cut -d' ' -f1)
export TIDY_COMMON TIDY_PASSED=$passed TIDY_BUILD=$build

check_one() {
    local file=$1 stamp log
    [ -e "$file" ] || { echo "tidy: $file is gone: configure $TIDY_BUILD again" && return 1; }
    stamp=$TIDY_PASSED/$( (echo "$TIDY_COMMON $file"; cat "$file") | sha256sum | cut -d' ' -f1)
    [ -e "$stamp" ] && return 0
    log=$(mktemp)
    # shellcheck disable=SC2086 # the arguments are meant to split
    if clang-tidy $TIDY_ARGUMENTS "$file" >"$log" 2>/dev/null; then
        touch "$stamp"
        rm -f "$log"
        return 0
    fi
    cat "$log"
    rm -f "$log"
    return 1
}
export -f check_one

if [ $# -gt 0 ]; then
    files=("$@")
else
    mapfile -t files < <(python3 - "$build/compile_commands.json" <<'PY'
import json, os, sys
root = os.getcwd() + "/"
for entry in json.load(open(sys.argv[1])):
    path = os.path.normpath(os.path.join(entry["directory"], entry["file"]))
    if path.startswith(root) and path.endswith(".cpp") and not path.startswith(root + "build/"):
        print(path[len(root):])
PY
    )
fi
printf '%s\n' "${files[@]}" | sort -u | xargs -r -P "$(nproc)" -I{} bash -c 'check_one "$1"' _ {}
