#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Holds the includes of src/ to the table in docs/architecture.md. One case a call:
#   include-direction.sh CASE SOURCE_DIR
set -euo pipefail

case_name=$1 source=$2

# The table as lines "FOLDER: FOLDER...", from the top to the bottom.
table() {
    sed -nE 's/^\| `([a-zA-Z0-9]+\/[a-zA-Z0-9]*)`[^|]*\|(.*)\|$/\1:\2/p' \
        "$source/docs/architecture.md" | tr -d '`'
}

open_files() { sed -nE 's/^\| `([^`]+)` \(for all\).*/\1/p' "$source/docs/architecture.md"; }

# What the folder or the file of this name may include, one a line.
allowed() { sed -nE "s|^$1:||p" <<<"$rows" | tr ' ' '\n' | sed '/^$/d'; }

# The name under which the table has a file: its own, or its folder.
row_of() {
    local file=${1%.*}
    if grep -qxF "$file" <<<"$open"; then echo "$file"; else echo "${file%%/*}/"; fi
}

# judge FILE INCLUDED...: prints each include of a file of src/ that the table does not allow.
judge() {
    local file=$1 own target included
    own=$(row_of "$file")
    shift
    for included; do
        target=$(row_of "$included")
        if [ "$target" != "$own" ] && ! grep -qxF "$target" <<<"$open" &&
            ! allowed "$own" | grep -qxF "$target"; then
            echo "src/$file includes $included"
        fi
    done
}

includes_follow_the_table() {
    local path file included count=0
    while IFS= read -r path; do
        file=${path#"$source"/src/}
        mapfile -t included < <(sed -nE 's/^#include "([^"]*\/[^"]*)"$/\1/p' "$path")
        judge "$file" "${included[@]}"
        count=$((count + ${#included[@]}))
    done < <(find "$source/src" -name '*.cpp' -o -name '*.h')
    [ "$count" -gt 100 ] || echo "only $count includes were seen"
}

# No row allows what stands in one above it.
table_has_no_way_up() {
    local row name below
    below=$rows
    while IFS= read -r row; do
        below=$(sed 1d <<<"$below")
        for name in ${row#*:}; do
            grep -q "^$name:" <<<"$below" || echo "${row%%:*} may include $name, which is not below it"
        done
    done <<<"$rows"
}

every_folder_is_in_the_table() {
    local folder
    for folder in "$source"/src/*/; do
        grep -q "^$(basename "$folder")/:" <<<"$rows" || echo "$(basename "$folder")/ has no row"
    done
}

wrong_includes_are_noticed() {
    local expected='src/control/A.cpp includes camera/Camera.h
src/format/A.h includes control/CameraControl.h
src/monitor/SelfPipe.cpp includes monitor/CameraEvent.h'
    [ "$(judge control/A.cpp control/B.h system/Text.h camera/Camera.h factory/HelperV4l2.h
         judge format/A.h control/CameraControl.h monitor/SelfPipe.h
         judge monitor/SelfPipe.cpp monitor/SelfPipe.h system/Pause.h monitor/CameraEvent.h)" = \
        "$expected" ] || echo "what the table forbids was let through"
}

rows=$(table)
open=$(open_files)
[ "$(wc -l <<<"$open")" = 2 ] || { echo "for all: $open" >&2; exit 1; }
problems=$("$case_name")
[ -z "$problems" ] || { echo "$problems" >&2; exit 1; }
