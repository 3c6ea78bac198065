#!/usr/bin/env bash
# Checks the house rules that a machine can check. Prints every place that breaks one.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mapfile -t sources < <(git ls-files -- '*.cpp' '*.h')
failed=0

report() { # rule, places that break it, if any
    [ -n "$2" ] || return 0
    printf 'check-source: %s\n%s\n' "$1" "$2"
    failed=1
}

# Includes run downwards only. A folder may include itself, what comes before it here, and no more. Every test may use
# tests/support.
check_layers() {
    awk '
        BEGIN {
            split("Libs/Tarnel/ Libs/Shared/ Libs/Framework/Core/ Libs/Framework/Application/ " \
                  "Libs/Processes/Core/ Libs/Processes/Cloud/ app/ Tools/ bench/ tests/", layers, " ")
        }
        function rank(path,    i) {
            for (i = 1; i in layers; ++i) if (index(path, layers[i]) == 1) return i
            return 0
        }
        /^#include "/ {
            split($0, parts, "\"")
            if (FILENAME ~ /\/tests\// && parts[2] ~ /^tests\/support\//) next
            if (rank(parts[2]) > rank(FILENAME)) print FILENAME ":" FNR ": " $0
            else if (rank(parts[2]) == 0) print FILENAME ":" FNR ": not from the root of the repository: " $0
        }' "${sources[@]}"
}

windows_headers() {
    grep -nHiE '^ *# *include *<windows\.h>' -- "${sources[@]}" | grep -E '^[^:]*\.h:' | grep -vE '^Libs/Tarnel/Platform/|(^|/)tests/' || true
}

# Names of things on the disk reach the system by Platform_Path, Platform_IO and Platform_Folder alone. The sample game
# shares no code with the agent, as no game does.
name_calls() {
    local windows='(CreateFile2?|Create(Hard|Symbolic)Link|DeleteFile|FindFirstFile(Ex)?|[GS]etFileAttributes(Ex)?|(Create|Remove)Directory|MoveFile(Ex)?|CopyFile(Ex)?|ReplaceFile|Get(Full|Long|Short)PathName|Get(Module|Temp)FileName|GetTempPath|[GS]etCurrentDirectory|GetFileVersionInfo(Size)?|FindFirstChangeNotification|LoadLibrary(Ex)?|SHGetKnownFolderPath)[AW]?'
    local runtime='_?w?f?(re)?open(_s)?|_w?s?(open\w*|stat\w*|remove|rename|unlink|mkdir|rmdir|chmod|access)|std::remove|rename|opendir|realpath|l?stat|mkdir|unlink|(open|stat|unlink|rename)at'
    git ls-files -- 'Libs/*/src/*' 'app/*' 'Tools/*/src/*' | grep -E '\.(cpp|h)$' |
        grep -vE '^Tools/SampleGame/|/Platform_(Path|IO|Folder)\.cpp$' |
        xargs grep -nE "(^|[^A-Za-z_.>])(($windows|$runtime)\(|std::(basic_|w)?[io]?f(stream|ilebuf)|std::filesystem)" | grep -vF '(L"CON' || true
}

# The brackets keep these lines from matching themselves.
wording() {
    git ls-files -z | xargs -0 grep -nIiE '\bspecificatio[n]\b|\bthe spe[c]\b|spec[.]md|\bParts? [0-9][.][0-9]' || true
}

# A page that promises something by a test's name must not outlive the test: `Suite.Case` there, and everywhere `test_x`,
# `test_x.py` and `test_x.py::test_y`.
missing_tests() {
    {
        grep -oE '`\w+\.[A-Z]\w+`' docs/guarantees.md | grep -vxF '`Suite.Case`'
        git grep -ohE '`(tests/e2e/)?test_\w+(\.py)?(::\w+)?`' -- '*.md'
    } | tr -d '`' | sort -u | comm -23 - <(tests_there) | while read -r name; do git grep -noF "\`$name\`" -- '*.md'; done
}

tests_there() {
    {
        git ls-files -z -- '*Test.cpp' | xargs -0 cat | tr '\n' ' ' | grep -oE '\bTEST(_[FP])?\(\w+, +\w+\)' |
            sed -E 's/.*\((\w+), +(\w+)\)/\1.\2/'
        git grep -oE '^def test_\w+' -- 'tests/e2e/test_*.py' | sed -E 's|(tests/e2e/)(.*):def (.*)|\2::\3\n\3\n\2\n\1\2|'
    } | sort -u
}

layout() {
    clang-format --dry-run "${sources[@]}" 2>&1 | grep -E 'warning|error' || true
}

# With the name of a check, that one alone.
if [ $# -gt 0 ]; then
    "$@"
    exit
fi
report "an include that runs upwards, or not from the root" "$(check_layers)"
report "windows.h in a module's header outside Libs/Tarnel/Platform" "$(windows_headers)"
report "a name goes to the system by another road than Platform_Path, Platform_IO and Platform_Folder" "$(name_calls)"
report "words that the project never uses" "$(wording)"
report "a test that no longer exists" "$(missing_tests)"
report "not as clang-format lays it out (clang-format -i FILE fixes it)" "$(layout)"
if ((failed)); then exit 1; fi
echo "check-source: ${#sources[@]} sources are in order"
