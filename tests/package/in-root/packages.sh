#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs in a clean root: the packages install, and serve someone who has nothing else.
set -uo pipefail
cd /root
. ./tap.sh
export DEBIAN_FRONTEND=noninteractive

apt_get() { apt-get -q -y -o Dpkg::Use-Pty=0 -o APT::Sandbox::User=root "$@"; }
installs() { apt_get update && apt_get install --no-install-recommends ./*.deb; }
installs_compilers() { apt_get install --no-install-recommends g++ cmake make pkg-config; }

has_nothing_of_the_dependencies() {
    ! dpkg-query -W -f '${Package}\n' |
        grep -E '^(qtbase5|libusb-1.0-0|libudev|libv4l|libyuv|libturbojpeg0|nlohmann-json3)-dev$'
}

examples=/usr/share/doc/libimageacquisition-doc/examples
cmake_builds_examples() { cmake -S $examples -B build && cmake --build build; }
pkg_config_builds() {
    # Unquoted: the words are to be split.
    # shellcheck disable=SC2046
    g++ -std=c++17 -Wall -Wextra -Werror "$examples/$1.cpp" -o "$1" \
        $(pkg-config --cflags --libs "$2")
}

lists() { "$@" | tee list.log; grep 'node     /dev/video0' list.log; }
captures() { with-virtual-camera "$1" frame.raw && [ "$(stat -c %s frame.raw)" -gt 100000 ]; }
captures_a_picture() {
    with-virtual-camera build/capture-frames frame.ppm serial:VC1001 "YUYV 640x480@30" &&
        [ "$(stat -c %s frame.ppm)" -eq $((15 + 640 * 480 * 3)) ]
}
walks_controls() { with-virtual-camera build/walk-controls | grep '^Brightness: 0, from -64'; }
tool_captures() {
    with-virtual-camera iacq capture 0 -o frame.png &&
        [ "$(head -c 4 frame.png | tail -c 3)" = PNG ]
}
tool_lists_both_kinds() {
    with-virtual-camera iacq list --json | tee cameras.json
    grep '"vendorsOwn": true' cameras.json && grep '"vendorsOwn": false' cameras.json
}
controls_of_the_serial_camera() {
    with-virtual-camera --model serial -- iacq show 0 --json >serial.json 2>serial.log &&
        echo "$(grep -c '"family"' serial.json) controls"
    cat serial.log
}
serial_camera_has_its_controls() { controls_of_the_serial_camera | tee with.log; grep -x '39 controls' with.log; }
without_the_module() {
    apt_get purge libimageacquisition-serial1 && controls_of_the_serial_camera | tee without.log &&
        grep 'without the controls on its serial port' without.log && ! grep '^39 controls' without.log
}
purges() {
    apt_get purge 'libimageacquisition*' 'imageacquisition-*' &&
        ! find /usr /lib /etc -iname '*imageacquisition*' -not -path '/usr/share/keyrings/*' | grep .
}

check "the packages install in a clean root" installs
check "a compiler, CMake and pkg-config install" installs_compilers
check "no headers of the library's dependencies come with them" has_nothing_of_the_dependencies
check "CMake finds the library and builds the examples" cmake_builds_examples
check "pkg-config finds the library" pkg_config_builds capture-by-interfaces imageacquisition
check "pkg-config finds the session layer" pkg_config_builds list-cameras imageacquisition-session
check "the example that CMake built runs on the virtual camera" lists with-virtual-camera build/list-cameras
check "the example that pkg-config built runs on the virtual camera" lists with-virtual-camera ./list-cameras
check "an example of the session layer captures a picture" captures_a_picture
check "an example of the interfaces captures frames" captures build/capture-by-interfaces
check "the one that pkg-config built does so too" captures ./capture-by-interfaces
check "an example walks the controls" walks_controls
check "the installed tool captures a picture" tool_captures
check "the installed tool lists an ordinary camera and one of the vendor's" tool_lists_both_kinds
check "a camera with a serial link has its controls" serial_camera_has_its_controls
check "without the module's package it has its video, and the tool says so" without_the_module
check "the udev rules are where udev looks" test -s /lib/udev/rules.d/70-imageacquisition.rules
check "purging the packages leaves nothing" purges
finish
