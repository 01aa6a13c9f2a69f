#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Holds the includes to the tables in docs/architecture.md. One case a call:
#   include-direction.sh CASE SOURCE_DIR
set -euo pipefail

case_name=$1 source=$2

# table HEADING: the table below it as lines "FOLDER: FOLDER...", from the top to the bottom.
table() {
    sed -n "/^## $1\$/,/^## /p" "$source/docs/architecture.md" |
        sed -nE 's/^\| `([a-zA-Z0-9/]+)`[^|]*\|(.*)\|$/\1:\2/p' | tr -d '`'
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

# Where the compiler looks for headers, before it looks in the system.
roots=(include session/include session/src src tools/iacq virtualcamera/include tests/support)

# place_of FILE NAME: sets place to the file of this tree that FILE includes by that name, or to
# nothing.
place_of() {
    local folder
    for folder in "${1%/*}" "${roots[@]}"; do
        place=$folder/$2
        if [ -f "$source/$place" ]; then
            [[ "$2" != *..* ]] || place=$(realpath --relative-to="$source" "$source/$place")
            return
        fi
    done
    place=
}

# judge_outside FOLDER FILE PLACE...: prints what the table of the folders outside src/ does not
# allow the file of the folder to use.
judge_outside() {
    local folder=$1 file=$2 place name names
    shift 2
    read -ra names <<<"$folder $(sed -nE "s|^$folder:||p" <<<"$outside")"
    for place; do
        for name in "${names[@]}"; do
            # A folder, or a file without its extension.
            if [[ "$name" == */ && "$place" == "$name"* || "${place%.*}" == "$name" ]]; then
                continue 2
            fi
        done
        echo "$file uses $place"
    done
}

folders_outside_follow_their_table() {
    local folder file included place count=0 places
    for folder in $(cut -d: -f1 <<<"$outside"); do
        while IFS=: read -r file included; do
            place_of "$folder$file" "$included"
            [[ "$place" == "${place:+$folder}"* ]] || judge_outside "$folder" "$folder$file" "$place"
            count=$((count + 1))
        done < <(cd "$source/$folder" && grep -rE --include='*.cpp' --include='*.h' \
            --exclude-dir=tests '^#include ["<]' . |
            sed -E 's/^\.\///; s/#include ["<]([^">]*)[">].*/\1/')
    done
    [ "$count" -gt 400 ] || echo "only $count includes were seen"
    mapfile -t places < <(sed -nE 's|^ *\.\./(src/.*\.cpp)$|\1|p' "$source/session/CMakeLists.txt")
    [ "${#places[@]}" -gt 0 ] || echo "no source was seen that the session layer compiles in"
    judge_outside session/src/ session/CMakeLists.txt "${places[@]}"
}

wrong_includes_outside_are_noticed() {
    local expected='session/src/A.cpp uses src/device/DeviceList.h
session/src/A.cpp uses src/camera/Camera.h
session/include/session/A.h uses include/IFrame.h
examples/a.cpp uses session/src/Names.h'
    [ "$(judge_outside session/src/ session/src/A.cpp session/src/B.h include/IFrame.h \
            src/system/VideoNode.h src/device/Device.h src/device/DeviceList.h src/camera/Camera.h
         judge_outside session/include/ session/include/session/A.h session/include/session/B.h \
            include/IFrame.h
         judge_outside examples/ examples/a.cpp include/IFrame.h session/include/Session.h \
            session/src/Names.h)" = "$expected" ] ||
        echo "what the table forbids was let through"
}

includes_are_found_where_they_are() {
    local include file name expected place
    for include in session/src/A.cpp:camera/Camera.h:src/camera/Camera.h \
        session/src/A.cpp:Names.h:session/src/Names.h tools/iacq/A.cpp:vector: \
        tools/iacq/A.cpp:session/Found.h:session/include/session/Found.h \
        tools/iacq/commands/A.cpp:../Output.h:tools/iacq/Output.h; do
        IFS=: read -r file name expected <<<"$include"
        place_of "$file" "$name"
        [ "$place" = "$expected" ] || echo "$file includes $name, and '$place' is found"
    done
}

rows=$(table "What leans on what")
outside=$(table "The session layer")
open=$(open_files)
[ "$(wc -l <<<"$open")" = 2 ] || { echo "for all: $open" >&2; exit 1; }
problems=$("$case_name")
[ -z "$problems" ] || { echo "$problems" >&2; exit 1; }
