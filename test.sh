#!/usr/bin/env bash
# Sets the machine up, builds, and runs every test. A second run builds only what changed and needs no network. Exit code 0
# only if everything passed.
#
#   ./test.sh [STEP...]    all steps, in this order, without names
#
#   source    rules of the sources that a machine can check
#   clang     the product's sources for Windows, read by a second compiler
#   native    unit tests of what needs no Windows, with address and undefined-behaviour sanitizers
#   threads   those of the modules that share state between threads, with the thread sanitizer
#   fuzz      each fuzz target for some seconds
#   debug     the other unit tests under Wine, with the library's checks and undefined behaviour trapped
#   e2e       the executable as it ships, under Wine, against a real store
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

steps=("$@")
[ $# -gt 0 ] || steps=(source clang native threads fuzz debug e2e)
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

native_tests() {
    build native && ctest --preset native -j "$(nproc)"
}

tests_under_wine() {
    build debug --target unit_tests && with_wine ctest --preset debug -LE portable -j "$(nproc)"
}

# The thread sanitizer of this compiler fails with the address randomisation of newer kernels, so these tests run without
# it. If the machine forbids that, as some containers do, they run with it and may fail.
thread_tests() {
    local tests=(PlatformTest StringTest ReflectionTest JsonSerializationTest) unrandomised=(setarch -R)
    if ! setarch -R true; then
        echo "threads: this machine forbids setarch -R (in a container: allow the personality call)" >&2
        unrandomised=()
    fi
    build threads --target "${tests[@]}" || return
    "${unrandomised[@]}" ctest --preset threads -R "^($(IFS='|' && echo "${tests[*]}"))\$"
}

# The first program under Wine starts Wine's services, which keep that program's outputs open until the last program ends.
# So the first one is not a test, for which CTest would wait that long.
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
    build release --target end_to_end &&
        build native --target PackageTool &&
        /usr/bin/python3 -m pytest -q -ra -n 3 --dist loadfile --durations=8 tests/e2e
}

scripts/setup.sh
for name in "${steps[@]}"; do
    case $name in
    source) step source scripts/check-source.sh ;;
    clang) step clang scripts/clang.py ;;
    native) step native native_tests ;;
    threads) step threads thread_tests ;;
    fuzz) step fuzz scripts/fuzz.sh --seconds 4 ;;
    debug) step debug tests_under_wine ;;
    e2e) step e2e end_to_end ;;
    *) echo "test.sh: unknown step $name" >&2 && exit 2 ;;
    esac
done

echo "$passed passed, ${#failed[@]} failed${failed[*]:+: ${failed[*]}} (in $SECONDS s)"
[ ${#failed[@]} -eq 0 ]
