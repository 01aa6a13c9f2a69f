#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Whoever reads the name of a failed case is to know which file to open. One case a call:
#   test-names.sh CASE SOURCE_DIR
set -euo pipefail

case_name=$1 source=$2
problems=0

complain() { echo "FAILED: $*" >&2; problems=$((problems + 1)); }

# The files with GoogleTest's cases.
mapfile -t files < <(grep -rlE --include='*.cpp' '^\s*(TYPED_)?TEST(_[FP])?\(' \
    "$source"/{tests,tools,virtualcamera})
[ "${#files[@]}" -ge 100 ] || complain "only ${#files[@]} files have tests: the check sees too little"

# The suites of a file; a call of a macro may go on in the next line.
suites() {
    grep -zoP '(?m)^\s*(?:TYPED_)?TEST(?:_[FP]|_SUITE|_SUITE_P)?\(\s*\K\w+' "$1" | tr '\0' '\n'
    grep -zoP '(?m)^\s*INSTANTIATE_\w+\(\s*\w*,\s*\K\w+' "$1" | tr '\0' '\n' || true
}

suites_are_named_as_their_files() {
    local file suite count=0
    for file in "${files[@]}"; do
        while read -r suite; do
            count=$((count + 1))
            [ "$suite" = "$(basename "$file" .cpp)" ] ||
                complain "${file#"$source"/} holds the suite $suite"
        done < <(suites "$file" | sort -u)
    done
    [ "$count" -ge "${#files[@]}" ] || complain "only $count suites were seen in ${#files[@]} files"
}

test_files_have_different_names() {
    local name
    while read -r name; do
        complain "there are several files $name"
    done < <(printf '%s\n' "${files[@]}" | sed 's#.*/##' | sort | uniq -d)
}

[ "$(type -t "$case_name")" = function ] || { echo "no such case: $case_name" >&2; exit 2; }
"$case_name"
[ "$problems" -eq 0 ]
