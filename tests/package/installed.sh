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
    [ -z "$(find "$prefix" -name 'libimageacquisition.a')" ] || fail "the static library is installed"
}

carries_version() {
    local file
    file="$(library_dir)/libimageacquisition.so"
    [ "$(readlink -f "$file")" = "$(library_dir)/libimageacquisition.so.$version" ] ||
        fail "libimageacquisition.so leads to $(readlink -f "$file")"
    grep -q "SONAME.*\[libimageacquisition.so.${version%%.*}\]" <<<"$(readelf -d "$file")" ||
        fail "SONAME: $(readelf -d "$file" | grep SONAME)"
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
            grep -iE '/Q[A-Z]|qt5|libusb|libudev|libv4l|linux/videodev' && fail "$header"
    done
    return 0
}

# A client of the session layer, found with CMake as a component and with pkg-config, and run.
serves_session() {
    mkdir -p "$work/session"
    cat >"$work/session/app.cpp" <<'END'
#include <Session.h>

#include <iostream>

int main()
{
    namespace ia = ImageAcquisition::Session;
    ia::Camera camera = ia::Camera::open("0");
    std::cout << camera.found().node() << " " << camera.select("").text() << "\n";
    try {
        camera["no such control"];
    } catch (ia::Error const& error) {
        std::cout << toText(error.kind()) << "\n";
    }
}
END
    cat >"$work/session/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.25)
project(app LANGUAGES CXX)
find_package(ImageAcquisition 1 REQUIRED COMPONENTS Session)
add_executable(app app.cpp)
target_link_libraries(app PRIVATE ImageAcquisition::Session)
END
    rm -rf "$work/session/build"
    cmake -S "$work/session" -B "$work/session/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
    cmake --build "$work/session/build"
    PKG_CONFIG_PATH="$(library_dir)/pkgconfig" pkg-config --cflags --libs imageacquisition-session |
        xargs g++ -std=c++17 "$work/session/app.cpp" -o "$work/session/app"
    local program
    for program in "$work/session/build/app" "$work/session/app"; do
        on_virtual_camera "$program" | tee "$work/session/log"
        grep -qE '^/dev/video0 [A-Z0-9]+ [0-9]+x[0-9]+@' "$work/session/log" || fail "no camera"
        grep -qx 'not found' "$work/session/log" || fail "no error was caught"
    done
}

# Each exported name of the session layer is in its namespace.
exports_session_names() {
    local foreign
    nm -D --defined-only -C "$(library_dir)/libimageacquisition-session.so" | cut -d' ' -f3- \
        >"$work/session-exports"
    grep -q 'ImageAcquisition::Session::Camera::open' "$work/session-exports" ||
        fail "the camera is not exported"
    foreign=$(grep -vE 'ImageAcquisition::Session::' "$work/session-exports" || true)
    [ -z "$foreign" ] || fail "exported without being the layer's: $foreign"
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
    grep -q 'firmware TJ8-' "$work/list.log" || fail "no firmware of the vendor's camera"
}

# Ten frames, and the last one's bytes in a file.
example_captures() {
    on_virtual_camera "$work/cmake/capture-by-interfaces" "$work/frame.raw" | tee "$work/capture.log"
    [ "$(grep -c '^frame ' "$work/capture.log")" -eq 10 ] || fail "not ten frames"
    local bytes
    bytes=$(sed -nE '$ s/^frame [0-9]+: ([0-9]+) bytes.*/\1/p' "$work/capture.log")
    [ "$(stat -c %s "$work/frame.raw")" -eq "$bytes" ] || fail "the file is not the last frame"
}

# Of a frame that claims more bytes than its buffer has, the file gets those of the buffer.
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
}

example_walks_controls() {
    on_virtual_camera "$work/cmake/walk-controls" | tee "$work/controls.log"
    grep -qE '^Brightness, Int32: -?[0-9]+ \(' "$work/controls.log" || fail "no brightness"
    grep -qE '^[^,]+, StringMenu:.*\[[^]]+\]' "$work/controls.log" || fail "no menu"
}

# The camera goes well after the program has begun to listen, and the program ends when told so.
example_watches() {
    rm -f "$work/keys"
    mkfifo "$work/keys"
    exec 3<>"$work/keys"
    on_virtual_camera --plug-after 1500 --unplug-after 4000 "$work/cmake/watch-cameras" \
        <"$work/keys" >"$work/watch.log" 3>&- &
    local program=$! tries=0
    until grep -q '^/dev/video[0-9]*: removed$' "$work/watch.log"; do
        tries=$((tries + 1))
        [ "$tries" -lt 300 ] || { kill "$program"; fail "no event: $(cat "$work/watch.log")"; }
        sleep 0.1
    done
    echo >&3
    wait "$program" || fail "it ended with $?"
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

# A client that asks for another major version, or for a newer minor one, is not served.
refuses_other_versions() {
    local wanted major=${version%%.*}
    mkdir -p "$work/version"
    for wanted in "$major" "$((major + 1))" "$major.99"; do
        printf 'cmake_minimum_required(VERSION 3.25)\nproject(p LANGUAGES CXX)\n%s\n' \
            "find_package(ImageAcquisition $wanted REQUIRED)" >"$work/version/CMakeLists.txt"
        rm -rf "$work/version/build"
        if cmake -S "$work/version" -B "$work/version/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
            >"$work/version/log" 2>&1; then
            [ "$wanted" = "$major" ] || fail "version $wanted was found"
        else
            [ "$wanted" != "$major" ] || fail "$(cat "$work/version/log")"
        fi
    done
}

pkg_config() {
    PKG_CONFIG_PATH="$(library_dir)/pkgconfig" pkg-config "$@" imageacquisition
}

# compile SOURCE PROGRAM, with nothing but what pkg-config says.
compile() {
    local flags
    read -ra flags <<<"$(pkg_config --cflags --libs)"
    g++ -std=c++17 -Wall -Wextra -Wpedantic -Werror "$1" -o "$2" "${flags[@]}"
}

serves_pkg_config() {
    [ "$(pkg_config --modversion)" = "$version" ] || fail "version $(pkg_config --modversion)"
    compile "$source/examples/list-cameras.cpp" "$work/list-cameras"
    on_virtual_camera "$work/list-cameras" | grep '/dev/video0'
}

readme_program_runs() {
    awk '/^```cpp$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source/README.md" \
        >"$work/readme.cpp"
    grep -q 'int main' "$work/readme.cpp" || fail "README.md has no program"
    compile "$work/readme.cpp" "$work/readme"
    on_virtual_camera "$work/readme" | tee "$work/readme.log"
    grep -qE '[0-9]+ bytes' "$work/readme.log" || fail "it captured nothing"
}

version=$(sed -nE 's/^project\(ImageAcquisition VERSION ([0-9.]+).*/\1/p' "$source/CMakeLists.txt")
[ "$(type -t "$case_name")" = function ] || { echo "no such case: $case_name" >&2; exit 2; }
"$case_name"
