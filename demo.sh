#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets everything up, then shows what the library does: the cameras, the first one's formats and
# controls, and a picture from it in frame.png. Without a camera it uses the virtual one.
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages build tools virtualcamera
build=build/demo
[ -f "$build/build.ninja" ] || cmake --preset demo >/dev/null
echo "Building (quick after the first time) ..."
cmake --build --preset demo | { grep -E 'warning|error|FAILED' || true; }

iacq="$build/tools/iacq/iacq"
run=()
# A node without a USB device behind it, such as a loopback device, is left out of the list.
cameras=$("$iacq" list --json 2>/dev/null | tr -d ' \n') || true
if [ -n "$cameras" ] && [ "$cameras" != "[]" ]; then
    echo "Using the attached camera."
else
    echo "No usable camera is attached: using the project's virtual camera."
    run=("$build/virtualcamera/with-virtual-camera")
fi

echo; echo "== Cameras"
"${run[@]}" "$iacq" list
echo; echo "== The first camera"
"${run[@]}" "$iacq" show 0
echo; echo "== A picture"
"${run[@]}" "$iacq" capture 0 -o frame.png
ls -l frame.png
