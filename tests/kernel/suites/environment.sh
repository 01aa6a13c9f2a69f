#!/bin/bash
# SPDX-License-Identifier: MIT
# The test environment itself: what a suite relies on inside the virtual machine is real.
# Modules: vivid n_devs=2 node_types=0x1,0x1
# Tools: v4l2-ctl udevadm
# shellcheck source=tests/kernel/tap.sh
. "$KERNEL_TEST_SOURCE/tap.sh"

isStockKernel() { uname -v | grep Debian; }
udevDescribesNode() {
    udevadm info --query=property --name=/dev/video0 | grep 'ID_V4L_CAPABILITIES=:capture:'
}
udevLinksNode() { await 10 test -e /dev/v4l/by-path/platform-vivid.0-video-index0; }

# The monitor has to listen before the module goes: it says when it does.
udevReportsRemoval() {
    local log=/tmp/environment-udev.log monitor result=0
    stdbuf -oL udevadm monitor --udev --subsystem-match=video4linux > $log &
    monitor=$!
    await 10 grep -q 'UDEV - the event' $log || result=1
    modprobe -r vivid || result=1
    await 20 grep -q 'remove .*video1 (video4linux)' $log || result=1
    kill $monitor
    cat $log
    return $result
}

nodesAreGone() { await 10 test ! -e /dev/video0 && await 10 test ! -e /dev/video1; }
nodesComeBack() { modprobe vivid && await 20 test -c /dev/video0; }

streamsFrames() {
    local file=/tmp/environment-frames
    v4l2-ctl -d /dev/video0 --set-fmt-video=width=320,height=180,pixelformat=YUYV \
        --stream-mmap --stream-count=10 --stream-to=$file || return 1
    stat -c 'size of 10 frames: %s' $file
    [ "$(stat -c %s $file)" -eq $((10 * 320 * 180 * 2)) ]
}

loopbackCarries() {
    local reply
    busybox nc -l -p 7777 -e cat &
    reply=$(await 10 sh -c 'echo over loopback | busybox nc -w 2 127.0.0.1 7777')
    echo "reply: $reply"
    [ "$reply" = "over loopback" ]
}

terminalIsReal() {
    [ "$(script -qec 'test -t 0 && echo terminal' /dev/null | tr -d '\r\n')" = terminal ]
}
outputIsShared() {
    grep "^out $KERNEL_TEST_OUT 9p rw" /proc/mounts && echo shared > "$KERNEL_TEST_OUT/environment.txt"
}
rootIsAnOverlay() { touch "$KERNEL_TEST_SOURCE/environment.probe" && grep '^overlay / overlay' /proc/mounts; }
clockKeepsTime() {
    local wall before after
    before=$(date +%s%N) wall=$(cut -d' ' -f1 /proc/uptime)
    sleep 1
    after=$(date +%s%N)
    echo "slept $(((after - before) / 1000000)) ms from uptime $wall on"
    [ $((after - before)) -ge 1000000000 ] && [ $((after - before)) -lt 3000000000 ]
}

check "the machine runs Debian's stock kernel" isStockKernel
check "vivid shows its first node" test -c /dev/video0
check "vivid shows its second node" test -c /dev/video1
check "udev describes a video node" udevDescribesNode
check "udev links a video node by its path" udevLinksNode
check "v4l2-ctl streams ten frames of the right size" streamsFrames
check "the loopback interface carries data" loopbackCarries
check "a pseudo-terminal is a terminal" terminalIsReal
check "the output directory can be written" outputIsShared
check "what is written to the checkout goes to an overlay" rootIsAnOverlay
check "the clock keeps time" clockKeepsTime
check "udev reports a node that disappears" udevReportsRemoval
check "the nodes of an unloaded module are gone" nodesAreGone
check "a module can be loaded again" nodesComeBack
finish
