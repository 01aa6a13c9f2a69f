#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets everything up and runs every test. --quick leaves out the virtual machine and the builds with
# sanitizers, so that it is done within minutes, and analyses only the files that changed; --lint only
# analyses, all of them; --clean-root only builds the packages and tries them and the README in clean
# roots.
set -euo pipefail
cd "$(dirname "$0")"

quick=false only_lint=false only_clean_root=false
for argument in "$@"; do
    case "$argument" in
        --quick) quick=true ;;
        --lint) only_lint=true ;;
        --clean-root) only_clean_root=true ;;
        *) echo "usage: ./test.sh [--quick | --lint | --clean-root]" >&2; exit 2 ;;
    esac
done

jobs=$(nproc)
passed=0 failed=0 skipped=0

say() { printf '\n== %s (%d s since the start)\n' "$1" "$SECONDS"; }

# Adds up what a run reported, told by "N passed, N failed, N skipped".
count() {
    local numbers
    numbers=$(grep -oE '^[0-9]+ passed, [0-9]+ failed, [0-9]+ skipped$' <<<"$1" | tail -n 1)
    [ -n "$numbers" ] || { echo "test.sh: a run ended without its summary" >&2; failed=$((failed + 1)); return; }
    read -r p _ f _ s _ <<<"$numbers"
    passed=$((passed + p)) failed=$((failed + f)) skipped=$((skipped + s))
}

# The same of a ctest log.
ctest_summary() {
    awk '/tests failed out of/ { total = $NF; bad = $4 }
         /\(Skipped\)$|\*\*\*Skipped/ { skip[$0] = 1 }
         END { n = 0; for (line in skip) if (line ~ /^ *[0-9]+\/[0-9]+ /) ++n
               if (total > 0) print total - bad - n " passed, " bad " failed, " n " skipped" }' "$1"
}

# Builds a preset and runs its tests. They wait more than they work, hence more jobs than cores. Many
# measure time, so one that fails on a busy machine gets two more tries; the log tells.
build_and_test() {
    local preset=$1
    shift
    say "$preset: build"
    cmake --preset "$preset" "$@" >/dev/null
    cmake --build --preset "$preset" -j "$jobs" | { grep -E 'warning|error|FAILED|note:' || true; }
    say "$preset: test"
    local log="build/$preset/tests.log"
    ctest --preset "$preset" -j $((jobs * 4)) --repeat until-pass:3 >"$log" 2>&1 ||
        grep -vE '^ *[0-9]+/[0-9]+ Test .*Passed|^ *Start ' "$log" || true
    local summary
    grep -E '^ *Test +#?[0-9]*:? .*Failed|\*\*\*Failed|\*\*\*Timeout' "$log" | sed 's/ \.\.\.*/ ... /' || true
    summary=$(ctest_summary "$log")
    echo "$summary"
    count "$summary"
    # Another try may pass, but what a sanitizer or a signal reported stays a fault.
    if grep -E '(Address|Leak|Thread|UndefinedBehavior)Sanitizer|runtime error:|\*\*\*Exception' "$log"; then
        echo "$preset: a fault that no other try undoes, see $log"
        failed=$((failed + 1))
    fi
}

# A tree without its history has no changes and no list of its files.
lint() {
    say "lint"
    if ! git rev-parse --git-dir >/dev/null 2>&1; then
        echo "skip: this is no git checkout"
        skipped=$((skipped + 1))
        return
    fi
    scripts/install-packages lint
    if scripts/lint "$@"; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
    fi
}

# Each root starts from nothing: this is where a missing package in a list shows.
clean_root() {
    say "packages: build, and try them and the README in clean roots"
    scripts/install-packages build tools virtualcamera docs package
    mkdir -p build
    tests/package/run | tee build/package-tests.log || true
    count "$(cat build/package-tests.log)"
}

groups=(build tools virtualcamera tests docs)
$quick || groups+=(kernel)
$only_clean_root || scripts/install-packages "${groups[@]}"

if $only_clean_root; then
    clean_root
elif $only_lint; then
    cmake --preset release -DIMAGEACQUISITION_BUILD_KERNEL_TESTS=ON >/dev/null
    lint build/release
elif $quick; then
    build_and_test release -DIMAGEACQUISITION_BUILD_KERNEL_TESTS=OFF
    lint --changed build/release
    echo "The virtual machine and the sanitizers were left out (--quick)."
else
    build_and_test release -DIMAGEACQUISITION_BUILD_KERNEL_TESTS=ON
    build_and_test asan-ubsan
    build_and_test tsan
    say "kernel: test"
    tests/kernel/fetch-kernel build/kernel
    tests/kernel/run --build build/release --jobs "$((jobs < 4 ? jobs : 4))" 2>&1 | tee build/kernel-tests.log || true
    count "$(cat build/kernel-tests.log)"
fi

printf '\nThat took %d s.\n%d passed, %d failed, %d skipped\n' "$SECONDS" "$passed" "$failed" "$skipped"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
