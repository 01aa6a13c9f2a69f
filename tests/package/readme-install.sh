#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Does what README.md and INSTALL.md say about installing, in a mount namespace of its own:
#   readme-install.sh CASE SOURCE_DIR BUILD_DIR WORK_DIR
set -euo pipefail

case_name=$1 source=$2 build=$3 work=$4
stage="$work/stage/usr/local"

fail() { echo "FAILED: $*" >&2; exit 1; }

# commands_of_root PAGE: what it lets root do, without what the installation itself is.
commands_of_root() {
    sed 's/ *#.*//; s/ && /\n/g' "$source/$1" | sed -n 's/^sudo //p' | grep -v '^cmake --install'
}

# The namespace's root may be nobody outside, who cannot read all of /etc.
if [ "${README_INSTALL_INSIDE:-}" != yes ]; then
    if ! unshare --user --map-root-user --mount true; then
        echo "skipped: this machine lets nobody make namespaces and mounts"
        exit 77
    fi
    rm -rf "$work"
    mkdir -p "$work/etc"
    cp -a /etc/. "$work/etc" 2>/dev/null || true
    DESTDIR="$work/stage" cmake --install "$build" --prefix /usr/local >"$work/install.log"
    README_INSTALL_INSIDE=yes exec unshare --user --map-root-user --mount "$0" "$@"
fi
mount --bind "$work/etc" /etc
mount -t tmpfs tmpfs /run
[ ! -d /var/cache/ldconfig ] || mount -t tmpfs tmpfs /var/cache/ldconfig
PATH=$PATH:/usr/sbin:/sbin

# start_after_commands_of PAGE: the README's programs find their libraries then, and did not before.
start_after_commands_of() {
    local linked program
    commands_of_root "$1" | grep -v 'DIR' >"$work/commands"
    rm -f /etc/ld.so.cache
    for program in "$work"/programs/*/app; do
        # Read to its end: a pipe that closes at the first match fails ldd.
        linked=$(ldd "$program")
        grep -q 'libimageacquisition.*not found' <<<"$linked" ||
            fail "$program finds the library, whatever $1 says"
    done
    sh -e "$work/commands"
    for program in "$work"/programs/*/app; do
        "$build/virtualcamera/with-virtual-camera" "$program" >"$program.log"
        grep -qE '[0-9]+ bytes' "$program.log" || fail "$program captured nothing after what $1 says"
    done
}

programs_start_under_usr_local() {
    local made
    mount --bind "$stage" /usr/local
    awk -v folder="$work/programs" -f "$source/tests/package/programs.awk" "$source/README.md"
    for made in "$work"/programs/{1,2}; do
        (cd "$made" && sh -e command)
    done
    start_after_commands_of README.md
    start_after_commands_of INSTALL.md
}

reads_rules_of() {
    local output
    output=$(udevadm test /sys/devices/virtual/mem/null 2>&1) || true
    grep -q 'Reading rules file: ' <<<"$output" || fail "udevadm tells of no rules: $output"
    grep -q "^Reading rules file: $1/70-imageacquisition.rules" <<<"$output"
}

rules_are_read_under_usr_local() {
    mount --bind "$stage" /usr/local
    reads_rules_of /usr/local/lib/udev/rules.d || fail "udev does not read them"
}

rules_of_another_prefix_are_read() {
    commands_of_root INSTALL.md | grep 'DIR' | sed "s|DIR|$stage|g" >"$work/commands"
    [ -s "$work/commands" ] || fail "INSTALL.md says nothing of another prefix"
    ! reads_rules_of '.*' || fail "udev reads them, whatever INSTALL.md says"
    sh -e "$work/commands"
    reads_rules_of /etc/udev/rules.d || fail "udev does not read them"
}

[ "$(type -t "$case_name")" = function ] || { echo "no such case: $case_name" >&2; exit 2; }
"$case_name"
