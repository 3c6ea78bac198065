#!/usr/bin/env bash
# Prints the figures of the house: how large files, functions, comments and tests are, and the goal of each.
#
#   scripts/figures.sh [--check]    with --check the exit code is 1 if a goal marked "must" is missed
#
# Production is what is compiled under Libs, app and Tools without their tests. A code line is neither blank nor a
# comment. The weight of the tests counts lines that are not blank. Commit subjects are those of the last 20 commits.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
export LC_ALL=C.UTF-8

list() { # pattern that the path matches, pattern of tests or of nothing
    git ls-files | grep -E "$1" | grep -vE "$2" || true
}
mapfile -t production < <(list '^(Libs|app|Tools)/.*\.(cpp|h)$' '(^|/)tests?/')

non_blank() { # reads names of files
    xargs -r -d '\n' cat | grep -c '[^[:space:]]' || true
}

# One line for each file: name, lines, code lines, comment lines, longest function and the line where it begins.
measure_files() {
    awk '
        function finish_file() {
            if (name) print name, lines, code, comments, longest, where + 0
        }
        FNR == 1 {
            finish_file()
            name = FILENAME
            lines = code = comments = longest = where = start = begin = 0
        }
        {
            ++lines
            text = $0
            sub(/^[ \t]+/, "", text)
            indent = length($0) - length(text)
        }
        text ~ /^\/\// || text ~ /[;,{})] +\/\/ / { ++comments }
        text ~ /^$|^\/\// { next }
        { ++code; sub(/ +\/\/ .*/, "", text) }

        # A function reaches from the first line of its head to the closing brace below it, as clang-format lays it out.
        begin {
            if (text ~ /^}/ && indent == depth) {
                if (FNR - begin + 1 > longest) { longest = FNR - begin + 1; where = begin }
                begin = 0
            }
            next
        }
        !start { start = FNR; head = text; depth = indent }
        start != FNR { head = head " " text }
        text ~ /{$/ && head ~ /\(/ && head !~ /^(namespace|class|struct|enum|union|extern) / && head !~ /^[^(]* = / { begin = start }
        text ~ /[;{}]$|^#|^(public|private|protected):$/ { start = 0 }
        END { finish_file() }' "${production[@]}"
}
files=$(measure_files)

over_files() { # awk program over the lines of measure_files
    awk "$@" <<<"$files"
}

median() { # reads numbers
    sort -n | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] + 0 }'
}

missed=0
row() { # what, value, "<=" or ">=" or "~", goal, "must" or ""
    local reached
    reached=$(awk -v value="$2" -v how="$3" -v goal="$4" 'BEGIN {
        print (how == "<=" ? value <= goal : how == ">=" ? value >= goal : value >= 0.8 * goal && value <= 1.2 * goal) ? "yes" : "NO" }')
    printf '%-46s %8s   %-2s %-5s %-5s %s\n' "$1" "$2" "$3" "$4" "$5" "$reached"
    if [ "$5 $reached" = "must NO" ]; then missed=$((missed + 1)); fi
}

weigh() { # lines of test, lines of product
    awk -v tests="$1" -v product="$2" 'BEGIN { printf "%.2f", 10 * tests / product }'
}

product=$(list '^(Libs|app|Tools)/.*\.(cpp|h|py|rc)$' '(^|/)tests?/' | non_blank)
tests=$(list '(^|/)tests?/.*\.(cpp|h|py)$' '^$' | non_blank)

row "production files" ${#production[@]} '<=' 250 ''
row "  of them under 40 code lines, %" "$(over_files '$3 < 40 { ++n } END { printf "%.0f", 100 * n / NR }')" '<=' 45 ''
row "code lines for each header" "$(over_files '{ n += $3 } $1 ~ /\.h$/ { ++headers } END { printf "%.0f", n / headers }')" '>=' 125 ''
row "lines of a .cpp, median" "$(over_files '$1 ~ /\.cpp$/ { print $2 }' | median)" '>=' 100 ''
row "lines of the longest function" "$(over_files '$5 > n { n = $5 } END { print n }')" '<=' 40 must
row "includes that run upwards" "$(scripts/check-source.sh check_layers | wc -l)" '<=' 0 must
row "lines of test for ten of product, at most" "$(weigh "$tests" "$product")" '<=' 4 must
row "  aimed at" "$(weigh "$tests" "$product")" '<=' 3.3 ''
row "comment lines for each code line of a header" "$(over_files '$1 ~ /\.h$/ { code += $3; comments += $4 } END { printf "%.2f", comments / code }')" '~' 0.4 ''
row "lines of a page over 140 columns" "$(list '\.md$' '^$' | xargs -d '\n' cat | grep -cE '^.{141,}' || true)" '<=' 0 must
row "length of a commit subject, longest of 20" "$(git log -20 --format=%s | awk '{ if (length($0) > n) n = length($0) } END { print n }')" '<=' 62 ''

echo "product $product lines, tests $tests lines; longest functions:"
over_files '$5 > 36 { print "  " $5 " lines  " $1 ":" $6 }' | sort -rn
if [ "${1:-}" = --check ] && ((missed)); then exit 1; fi
