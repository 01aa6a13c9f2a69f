#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks of a tree that `cmake --install` made, as its users see it. One case a call:
#   installed.sh CASE SOURCE_DIR BUILD_DIR WORK_DIR
set -euo pipefail

case_name=$1 source=$2 build=$3 work=$4
prefix="$work/prefix"

fail() { echo "FAILED: $*" >&2; exit 1; }

library_dir() { dirname "$(find "$prefix" -name libimageacquisition.so)"; }

on_virtual_camera() { LD_LIBRARY_PATH=$(library_dir) "$build/virtualcamera/with-virtual-camera" "$@"; }

# The prefix differs from the configured one, and the tree is moved once more afterwards.
install_tree() {
    rm -rf "$work"
    mkdir -p "$work"
    cmake --install "$build" --prefix "$work/first" >"$work/install.log"
    mv "$work/first" "$prefix"
    [ -f "$prefix/include/imageacquisition/ICameraFactory.h" ] || fail "no headers"
    [ -f "$prefix/include/imageacquisition/Session.h" ] || fail "no headers of the session layer"
    [ -z "$(find "$prefix" -name '*.a')" ] || fail "a static library is installed"
}

carries_version() {
    local name file
    for name in libimageacquisition.so libimageacquisition-session.so; do
        file="$(library_dir)/$name"
        [ "$(readlink -f "$file")" = "$(library_dir)/$name.$version" ] ||
            fail "$name leads to $(readlink -f "$file")"
        grep -q "SONAME.*\[$name.${version%%.*}\]" <<<"$(readelf -d "$file")" ||
            fail "SONAME: $(readelf -d "$file" | grep SONAME)"
    done
}

# Each exported name is a member, vtable or typeinfo of a public class.
exports_public_names() {
    local classes foreign
    classes=$(cd "$prefix/include/imageacquisition" && printf '%s|' *.h | sed 's/\.h//g; s/|$//')
    nm -D --defined-only -C "$(library_dir)/libimageacquisition.so" | cut -d' ' -f3- >"$work/exports"
    grep -q 'ImageAcquisition::ICameraFactory::getUniqueInstance' "$work/exports" ||
        fail "the factory is not exported"
    sed -i -E '/@@IMAGEACQUISITION_MODULE_|^A? ?IMAGEACQUISITION_MODULE_/d' "$work/exports"
    foreign=$(grep -vE "^((vtable|VTT|typeinfo|typeinfo name) for |non-virtual thunk to |virtual thunk to )?ImageAcquisition::($classes)(<[a-z ]+>)?(::|$)" "$work/exports" || true)
    [ -z "$foreign" ] || fail "exported without being public: $foreign"
}

needs_no_foreign_header() {
    local header
    for header in "$prefix"/include/imageacquisition/{,session/}*.h; do
        g++ -std=c++17 -I "$prefix/include/imageacquisition" -Wall -Wextra -Wpedantic -Werror \
            -fsyntax-only -x c++ "$header" 2>&1 |
            grep -v 'pragma once in main file' | grep -E 'error|warning' && fail "$header"
        g++ -std=c++17 -I "$prefix/include/imageacquisition" -M -x c++ "$header" | tr ' \\' '\n\n' |
            grep -iE '/Q[A-Z]|qt5|libusb|libudev|libv4l|linux/videodev|libyuv|jpeg|nlohmann' && fail "$header"
    done
    return 0
}

# Each exported name of the session layer is a member, vtable or typeinfo of a class that its
# headers mark, or a function that they mark.
exports_session_names() {
    local marked='IMAGEACQUISITION_SESSION_EXPORT' headers classes functions foreign
    headers=$(cat "$prefix"/include/imageacquisition/session/*.h | tr '\n' ' ')
    classes=$(grep -oE "(class|struct) $marked [A-Za-z:]+" <<<"$headers" | sed 's/.* //' | paste -sd '|')
    functions=$(grep -oE "$marked [^({;]*\(" <<<"$headers" | sed -E 's/.* ([^ ]+)\($/\1/' | paste -sd '|')
    nm -D --defined-only -C "$(library_dir)/libimageacquisition-session.so" | cut -d' ' -f3- |
        sed -E 's/^(vtable|typeinfo|typeinfo name) for (.*)/\2::/; s/\(.*//; s/\[abi:[^]]*\]//' |
        sort -u >"$work/session-exports"
    grep -qx 'ImageAcquisition::Session::Camera::open' "$work/session-exports" ||
        fail "the camera is not exported"
    foreign=$(grep -vxE "ImageAcquisition::Session::(($classes)::[^:]*|$functions)" \
        "$work/session-exports" || true)
    [ -z "$foreign" ] || fail "exported without being public: $foreign"
}

serves_cmake() {
    rm -rf "$work/cmake"
    cmake -S "$source/examples" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_DISABLE_FIND_PACKAGE_Qt5=ON -DCMAKE_DISABLE_FIND_PACKAGE_PkgConfig=ON
    cmake --build "$work/cmake"
}

example_lists() {
    on_virtual_camera "$work/cmake/list-cameras" | tee "$work/list.log"
    grep -q 'node     /dev/video0' "$work/list.log" || fail "no camera was listed"
    grep -q 'open by  serial:VC1000' "$work/list.log" || fail "it does not say how to open it"
    grep -q '^/dev/video1 does not capture' "$work/list.log" || fail "nothing was left out"
    grep -q 'firmware TJ8-' "$work/list.log" || fail "no firmware of the vendor's camera"
}

# check_picture FILE SIZE: it is a picture of this size, WIDTH HEIGHT, and shows something.
check_picture() {
    local header="P6 $2 255" bytes
    [ "$(head -n 3 "$1" | tr '\n' ' ')" = "$header " ] || fail "no picture of $2"
    bytes=$((${2% *} * ${2#* } * 3))
    [ "$(stat -c %s "$1")" -eq $((${#header} + 1 + bytes)) ] || fail "not the picture's bytes"
    [ "$(tail -c "$bytes" "$1" | od -An -v -tx1 -w3 | sort -u | wc -l)" -gt 5 ] ||
        fail "an empty picture"
}

# Ten frames of the camera and the selection that are asked for, and the last one as a picture.
example_captures() {
    on_virtual_camera "$work/cmake/capture-frames" "$work/frame.ppm" serial:VC1001 320x240@30 |
        tee "$work/capture.log"
    [ "$(head -n 1 "$work/capture.log")" = "YUYV 320x240@30" ] || fail "another selection"
    [ "$(grep -c '^frame [0-9]*: 153600 bytes$' "$work/capture.log")" -eq 10 ] || fail "not ten frames"
    grep -qE '^[0-9]+ frames, [0-9.]+ a second' "$work/capture.log" || fail "no statistics"
    check_picture "$work/frame.ppm" "320 240"
}

# Ten frames, and the last one's bytes in a file.
example_captures_by_interfaces() {
    on_virtual_camera "$work/cmake/capture-by-interfaces" "$work/frame.raw" |
        tee "$work/interfaces.log"
    [ "$(grep -c '^frame ' "$work/interfaces.log")" -eq 10 ] || fail "not ten frames"
    local bytes
    bytes=$(sed -nE '$ s/^frame [0-9]+: ([0-9]+) bytes.*/\1/p' "$work/interfaces.log")
    [ "$(stat -c %s "$work/frame.raw")" -eq "$bytes" ] || fail "the file is not the last frame"
}

# Of a frame that claims more bytes than its buffer has, the files get those of the buffer.
example_believes_no_overstated_frame() {
    cat >"$work/overstated.json" <<'END'
{ "cameras": [ { "usb": { "port": "1-1" },
    "formats": [ { "pixelFormat": "YUYV",
                   "sizes": [ { "width": 64, "height": 48, "intervals": [ "1/30" ] } ] } ],
    "frameFaults": [ { "fromThenOn": true, "claimedBytes": 100000000 } ] } ] }
END
    on_virtual_camera --config "$work/overstated.json" "$work/cmake/capture-by-interfaces" \
        "$work/overstated.raw" | tee "$work/overstated.log"
    [ "$(grep -c '100000000 bytes' "$work/overstated.log")" -eq 10 ] || fail "no frame claims too much"
    [ "$(stat -c %s "$work/overstated.raw")" -eq $((64 * 48 * 2)) ] || fail "not the buffer's bytes"
    on_virtual_camera --config "$work/overstated.json" "$work/cmake/capture-frames" \
        "$work/overstated.ppm" | tee "$work/overstated.log"
    [ "$(grep -c ": $((64 * 48 * 2)) bytes" "$work/overstated.log")" -eq 10 ] ||
        fail "frames are not as long as their buffer"
    check_picture "$work/overstated.ppm" "64 48"
}

example_walks_controls() {
    on_virtual_camera "$work/cmake/walk-controls" name:"Virtual Vendor Camera" | tee "$work/controls.log"
    grep -qx 'Brightness: 0, from -64 to 64 by 1' "$work/controls.log" || fail "no brightness"
    grep -qx 'Power Line Frequency: 50 Hz, one of Disabled | 50 Hz | 60 Hz' "$work/controls.log" ||
        fail "no menu"
    grep -q '^Focus, Absolute: .*, inactive$' "$work/controls.log" || fail "none is inactive"
    on_virtual_camera --model all-controls "$work/cmake/walk-controls" >"$work/controls.log"
    grep -qE '^[^:]+: \(it is a button\)$' "$work/controls.log" || fail "no button"
    ! on_virtual_camera "$work/cmake/walk-controls" serial:none 2>"$work/controls.log" ||
        fail "a camera was found"
    grep -q '^walk-controls: find camera .serial:none.' "$work/controls.log" || fail "it says not why"
}

# The camera goes well after the program has begun to listen, and the program ends when told so.
example_watches() {
    rm -f "$work/keys"
    mkfifo "$work/keys"
    exec 3<>"$work/keys"
    on_virtual_camera --plug-after 1500 --unplug-after 4000 "$work/cmake/watch-cameras" \
        <"$work/keys" >"$work/watch.log" 3>&- &
    local program=$! tries=0
    until grep -q "^removed /dev/video2 'Virtual Vendor Camera'" "$work/watch.log"; do
        tries=$((tries + 1))
        [ "$tries" -lt 300 ] || { kill "$program"; fail "no event: $(cat "$work/watch.log")"; }
        sleep 0.1
    done
    echo >&3
    wait "$program" || fail "it ended with $?"
    grep -q "^added /dev/video2 " "$work/watch.log" || fail "it did not tell that the camera came"
}

# Installed programs find the installed libraries by themselves.
installed_tools_run() {
    env -u LD_LIBRARY_PATH "$prefix/bin/with-virtual-camera" "$prefix/bin/iacq" \
        capture 0 -o "$work/frame.png"
    [ "$(head -c 8 "$work/frame.png" | od -An -tx1 | tr -d ' \n')" = 89504e470d0a1a0a ] ||
        fail "no picture"
}

# The tool with a copy of the library, beside which is what the caller puts there.
tool_with_library_alone() {
    local folder=$work/$case_name
    rm -rf "$folder"
    mkdir "$folder"
    cp -a "$(library_dir)"/libimageacquisition.so.* "$folder"
    [ $# -eq 0 ] || "$@" "$folder/libimageacquisition-serial.so.${version%%.*}"
    LD_LIBRARY_PATH=$folder "$prefix/bin/with-virtual-camera" --model serial -- \
        "$prefix/bin/iacq" show 0 --json >"$folder/show.json" 2>"$folder/errors" ||
        fail "$(cat "$folder/errors")"
}

# The camera has its formats, and a single line tells what it lacks.
opened_without_serial_controls() {
    grep -q '"name": "YUYV"' "$work/$case_name/show.json" || fail "no formats"
    ! grep -q '"Focus Strategy"' "$work/$case_name/show.json" || fail "there are controls of the link"
    local warning='^WARNING: /dev/video[0-9]+ is opened without the controls on its serial port: '
    [ "$(grep -cE "$warning.*$1" "$work/$case_name/errors")" -eq 1 ] ||
        fail "$(cat "$work/$case_name/errors")"
}

module_is_found_beside_the_library() {
    local controls
    "$prefix/bin/with-virtual-camera" --model serial -- "$prefix/bin/iacq" show 0 --json \
        >"$work/serial.json"
    controls=$(python3 -c 'import json, sys; print(len(json.load(sys.stdin)["controls"]))' \
        <"$work/serial.json")
    [ "$controls" -eq 39 ] || fail "$controls controls"
}

# module_is_found LIBRARY_PATH: by a client with that path, which has changed its folder before it
# opens the first camera.
module_is_found() {
    local client=$work/$case_name controls
    printf '%s\n' '#include <ImageAcquisition.h>' '#include <cstdio>' '#include <memory>' \
        '#include <unistd.h>' 'using namespace ImageAcquisition;' 'int main() {' \
        '    ICameraFactory& factory = ICameraFactory::getUniqueInstance();' \
        '    std::unique_ptr<IDeviceList> const list(factory.createDeviceList());' \
        '    if (chdir("/tmp") != 0) return 1;' \
        '    std::unique_ptr<IBlockingCamera> camera(factory.createBlockingCamera(list->at(0)));' \
        '    std::printf("%d\n", camera ? camera->controlNumber() : -1);' '}' >"$client.cpp"
    g++ -std=c++17 -I"$prefix/include/imageacquisition" "$client.cpp" -o "$client" \
        -L"$(library_dir)" -limageacquisition
    controls=$(LD_LIBRARY_PATH=$1 "$build/virtualcamera/with-virtual-camera" --model serial -- \
        "$client" 2>"$client.errors")
    [ "$controls" -eq 39 ] || fail "$controls controls: $(cat "$client.errors")"
}

module_is_found_from_another_folder() {
    cd "$(library_dir)/.."
    module_is_found "./$(basename "$(library_dir)")"
}

module_is_found_through_a_link() {
    mkdir -p "$work/links"
    ln -sf "$(library_dir)/libimageacquisition.so.${version%%.*}" "$work/links/"
    module_is_found "$work/links"
}

video_works_without_the_module() {
    tool_with_library_alone
    opened_without_serial_controls 'cannot open shared object file'
}

a_file_that_is_no_module_is_refused() {
    tool_with_library_alone cp "$source/README.md"
    opened_without_serial_controls 'invalid ELF header'
}

# Only the name of the version differs, as it would in one that was built for another release.
as_of_another_release() {
    LC_ALL=C sed 's/IMAGEACQUISITION_MODULE_[0-9]/IMAGEACQUISITION_MODULE_9/' \
        "$(library_dir)/libimageacquisition-serial.so.${version%%.*}" >"$1"
}

a_module_of_another_release_is_refused() {
    tool_with_library_alone as_of_another_release
    opened_without_serial_controls "version .IMAGEACQUISITION_MODULE_9"
}

# finds WORDS...: whether find_package(ImageAcquisition WORDS...) succeeds.
finds() {
    mkdir -p "$work/$case_name"
    printf 'cmake_minimum_required(VERSION 3.25)\nproject(p LANGUAGES CXX)\n%s\n' \
        "find_package(ImageAcquisition $*)" >"$work/$case_name/CMakeLists.txt"
    rm -rf "$work/$case_name/build"
    cmake -S "$work/$case_name" -B "$work/$case_name/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        >"$work/$case_name/log" 2>&1
}

# A client that asks for another major version, or for a newer minor one, is not served.
refuses_other_versions() {
    local major=${version%%.*}
    finds "$major" REQUIRED || fail "$(cat "$work/$case_name/log")"
    ! finds "$((major + 1))" REQUIRED || fail "version $((major + 1)) was found"
    ! finds "$major.99" REQUIRED || fail "version $major.99 was found"
}

refuses_other_components() {
    finds REQUIRED COMPONENTS Session || fail "$(cat "$work/$case_name/log")"
    ! finds REQUIRED COMPONENTS Nonsense || fail "a component Nonsense was found"
    grep -q 'Nonsense' "$work/$case_name/log" || fail "it is not named: $(cat "$work/$case_name/log")"
}

# compile_with MODULE SOURCE PROGRAM: with nothing but what pkg-config says of the module.
compile_with() {
    local flags
    read -ra flags <<<"$(PKG_CONFIG_PATH="$(library_dir)/pkgconfig" pkg-config --cflags --libs "$1")"
    g++ -std=c++17 -Wall -Wextra -Wpedantic -Werror "$2" -o "$3" "${flags[@]}"
}

serves_pkg_config() {
    local module told
    for module in imageacquisition imageacquisition-session; do
        told=$(PKG_CONFIG_PATH="$(library_dir)/pkgconfig" pkg-config --modversion "$module")
        [ "$told" = "$version" ] || fail "$module has the version $told"
    done
    compile_with imageacquisition-session "$source/examples/list-cameras.cpp" "$work/list-cameras"
    on_virtual_camera "$work/list-cameras" | grep '/dev/video0'
    compile_with imageacquisition "$source/examples/capture-by-interfaces.cpp" "$work/capture"
    on_virtual_camera "$work/capture" "$work/frame-of-client.raw" | grep '^frame 9: '
}

# Also where the linker leaves the library out of what a program asks for by itself.
session_finds_the_library_beside_it() {
    local linked
    g++ -std=c++17 -I"$prefix/include/imageacquisition" "$source/examples/capture-frames.cpp" \
        -o "$work/by-session" -Wl,--as-needed -L"$(library_dir)" "-Wl,-rpath,$(library_dir)" \
        -Wl,--allow-shlib-undefined -limageacquisition-session
    linked=$(readelf -d "$work/by-session")
    ! grep -q 'NEEDED.*libimageacquisition.so' <<<"$linked" || fail "the library is linked: $linked"
    env -u LD_LIBRARY_PATH "$build/virtualcamera/with-virtual-camera" "$work/by-session" \
        "$work/by-session.ppm" | grep -E '^[0-9]+ frames, '
}

# programs_run PAGE COUNT: each program of the page, built as CMake and the compiler are told there,
# captures.
programs_run() {
    local folder="$work/programs/$1" made count=0
    rm -rf "$folder"
    awk -v folder="$folder" -f "$source/tests/package/programs.awk" "$source/$1"
    for made in "$folder"/*; do
        (cd "$made" && PKG_CONFIG_PATH="$(library_dir)/pkgconfig" sh -ex command)
        cmake -S "$made" -B "$made/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
        cmake --build "$made/build"
        for program in "$made/app" "$made/build/app"; do
            on_virtual_camera "$program" >"$made/log" || fail "$program ends with $?"
            grep -qE '[0-9]+ bytes' "$made/log" || fail "$program captured nothing: $(cat "$made/log")"
        done
        count=$((count + 1))
    done
    [ "$count" -eq "$2" ] || fail "$1 has $count programs"
}

# The session layer comes first.
readme_programs_run() {
    programs_run README.md 2
    grep -q '<Session.h>' "$work/programs/README.md/1/app.cpp" || fail "another program is the first"
    grep -qE '^[0-9]+ frames, [0-9.]+ a second' "$work/programs/README.md/1/log" ||
        fail "it has no statistics"
    grep -q '<ImageAcquisition.h>' "$work/programs/README.md/2/app.cpp" || fail "no second program"
}

session_pages_program_runs() { programs_run docs/session.md 1; }

version=$(sed -nE 's/^project\(ImageAcquisition VERSION ([0-9.]+).*/\1/p' "$source/CMakeLists.txt")
[ "$(type -t "$case_name")" = function ] || { echo "no such case: $case_name" >&2; exit 2; }
"$case_name"
