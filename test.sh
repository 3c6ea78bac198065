#!/usr/bin/env bash
# Sets the machine up, builds, and runs every test: on the sources, natively with sanitizers, with inputs that a fuzzer
# makes, under Wine, end to end.
# A second run builds only what changed and needs no network. Exit code 0 only when everything passed.
#
#   ./test.sh [STEP...]    steps: source native threads fuzz release debug e2e (default: all, in this order)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

steps=("$@")
[ $# -gt 0 ] || steps=(source native threads fuzz release debug e2e)
passed=0
failed=()

# Runs one step, whose output shows as it comes, and remembers how it ended.
step() {
    local name=$1 start=$SECONDS
    shift
    echo "==== $name"
    if "$@"; then
        passed=$((passed + 1))
        echo "==== $name passed in $((SECONDS - start)) s"
    else
        failed+=("$name")
        echo "==== $name FAILED after $((SECONDS - start)) s"
    fi
}

build() { # preset [option of the build]...
    cmake --preset "$1" >"build/$1-configure.log" 2>&1 || { cat "build/$1-configure.log" && return 1; }
    cmake --build --preset "$1" "${@:2}"
}

unit_tests() { # preset
    build "$1" || return
    if [ "$1" = native ]; then
        ctest --preset native -j "$(nproc)"
    else
        # Now and then a program dies at its start under Wine, before its first test and without a word. A
        # second try tells that from a fault of ours; the output shows both.
        with_wine ctest --preset "$1" -j "$(nproc)" --repeat until-pass:2
    fi
}

# Of the modules that share state between threads, under the thread sanitizer. Its runtime of this compiler can't live with
# all the address randomisation of newer kernels, so it is switched off for the tests alone. Where a machine forbids that
# (some containers do), the tests run without, and fail where the kernel's randomisation is too much for them.
thread_tests() {
    local tests=(PlatformTest PlatformLogLimitTest StringTest ReflectionTest JsonSerializationTest) unrandomised=(setarch -R)
    if ! setarch -R true; then
        echo "threads: this machine forbids setarch -R (in a container: allow the personality call)" >&2
        unrandomised=()
    fi
    build threads --target "${tests[@]}" || return
    "${unrandomised[@]}" ctest --preset threads -R "^($(IFS='|' && echo "${tests[*]}"))\$"
}

# The first program under Wine starts its services, which inherit that program's outputs and keep them open until the
# last program ends. So the first one is no test: CTest would wait for it as long as any other test runs.
with_wine() { # command...
    local result=0
    export WINEPREFIX=${WINEPREFIX:-$PWD/build/wine}
    wineserver --persistent
    scripts/run-wine.sh cmd.exe /c exit </dev/null >/dev/null 2>&1
    "$@" || result=$?
    wineserver -k
    return "$result"
}

end_to_end() {
    build release && build native --target PackageTool && /usr/bin/python3 -m pytest -q -ra --durations=8 tests/e2e
}

scripts/setup.sh
for name in "${steps[@]}"; do
    case $name in
    source) step source scripts/check-source.sh ;;
    native | release | debug) step "$name" unit_tests "$name" ;;
    threads) step threads thread_tests ;;
    fuzz) step fuzz scripts/fuzz.sh --seconds 8 ;;
    e2e) step e2e end_to_end ;;
    *) echo "test.sh: unknown step $name" >&2 && exit 2 ;;
    esac
done

echo "$passed passed, ${#failed[@]} failed${failed[*]:+: ${failed[*]}} (in $SECONDS s)"
[ ${#failed[@]} -eq 0 ]
