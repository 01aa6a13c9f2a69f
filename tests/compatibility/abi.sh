#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Holds the library's interface against the one that was released, and shows that this would notice
# a break:
#   abi.sh interface_is_kept SOURCE_DIR LIBRARY
#   abi.sh check_notices_changes SOURCE_DIR
set -euo pipefail

case_name=$1 source=$2 library=${3:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "FAILED: $*" >&2; exit 1; }

interface_is_kept() {
    "$source/abi/dump" "$library" "$work/now.abi"
    ! grep -q 'IMAGEACQUISITION_MODULE' "$work/now.abi" ||
        fail "abi/module.suppressions does not have all that exports.map.in gives the module"
    "$source/abi/compare" "$source/abi/libimageacquisition.so.1.abi" "$work/now.abi" ||
        fail "programs that were built against the released library would break"
}

# changed_interface NAME EDIT: dumps the device list's interface after a sed EDIT of its header.
changed_interface() {
    mkdir -p "$work/$1/abi"
    cp -r "$source/include" "$source/src" "$work/$1/"
    cp "$source/abi/dump" "$source/abi/module.suppressions" "$work/$1/abi/"
    sed -i "$2" "$work/$1/include/IDeviceList.h"
    # The library's own class need not know of the change.
    sed -i 's/ override;/;/' "$work/$1/src/device/DeviceList.h"
    g++ -std=c++17 -g -fPIC -shared -fvisibility=hidden -fvisibility-inlines-hidden \
        -I"$work/$1/include" -I"$work/$1/src" \
        "$work/$1/src/device/DeviceList.cpp" -o "$work/$1/library.so"
    "$work/$1/abi/dump" "$work/$1/library.so" "$work/$1.abi"
}

check_notices_changes() {
    local added='    virtual int added() const = 0;'
    changed_interface released ''
    changed_interface grown "/deviceByName.*= 0;/a\\$added"
    changed_interface inserted "/virtual int size/i\\$added"
    changed_interface removed '/virtual int size/d'
    changed_interface other_call 's|deviceByName(char const\* name)|deviceByName(char const* name, int from)|'
    local change
    for change in released grown; do
        "$source/abi/compare" "$work/released.abi" "$work/$change.abi" || fail "$change breaks nothing"
    done
    for change in inserted removed other_call; do
        ! "$source/abi/compare" "$work/released.abi" "$work/$change.abi" || fail "$change goes unnoticed"
    done
}

[ "$(type -t "$case_name")" = function ] || { echo "no such case: $case_name" >&2; exit 2; }
"$case_name"
