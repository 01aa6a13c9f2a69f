#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Lets this machine's udevadm apply the rules to simulated devices:
#   udev-rules.sh RULES_FILE VENDOR_ID PRODUCT_ID
set -euo pipefail

rules=$1 vendor=$2 product=$3
name=$(basename "$rules")

# The rules go where udev looks, but in a mount name space of this script's own.
if [ "${UDEV_RULES_INSIDE:-}" != yes ]; then
    if ! unshare --user --map-root-user --mount true; then
        echo "skipped: this machine lets nobody make name spaces and mounts"
        exit 77
    fi
    UDEV_RULES_INSIDE=yes exec unshare --user --map-root-user --mount "$0" "$@"
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mount -t tmpfs tmpfs /run
mkdir -p /run/udev/rules.d
cp "$rules" /run/udev/rules.d/

problems=0
complain() { echo "FAILED: $*" >&2; problems=$((problems + 1)); }

# usb_device PORT VENDOR PRODUCT: a device with a serial port on its interface 5.
usb_device() {
    local path=/devices/pci0000:00/0000:00:14.0/usb1/1-$1
    cat <<END
P: $path
N: bus/usb/001/00$1
E: DEVNAME=/dev/bus/usb/001/00$1
E: DEVTYPE=usb_device
E: SUBSYSTEM=usb
A: idVendor=$2\\n
A: idProduct=$3\\n

P: $path/1-$1:1.5
E: DEVTYPE=usb_interface
E: SUBSYSTEM=usb
A: bInterfaceNumber=05\\n

P: $path/1-$1:1.5/tty/ttyACM$1
N: ttyACM$1
E: DEVNAME=/dev/ttyACM$1
E: SUBSYSTEM=tty

END
}

{ usb_device 1 "$vendor" "$product"; usb_device 2 "$vendor" 0000; usb_device 3 1d6b "$product"; } \
    >"$work/devices.umockdev"

# applied ACTION DEVICE_PATH: what udev makes of the device.
applied() {
    umockdev-run --device "$work/devices.umockdev" -- udevadm test --action "$1" \
        "/sys/devices/pci0000:00/0000:00:14.0/usb1/$2" 2>&1
}

has() { applied "$1" "$2" | grep -qE "$3"; }

if udevadm verify --help >/dev/null 2>&1; then
    udevadm verify "$rules" || complain "udevadm verify finds fault"
fi
output=$(applied add 1-1)
grep -q "Reading rules file: .*/$name" <<<"$output" || complain "udev does not read $name: $output"
if grep "$name:[0-9]*" <<<"$output" | grep -iE 'invalid|unknown|ignor|error|fail|expect'; then
    complain "udev finds fault"
fi

tag='^CURRENT_TAGS=.*:uaccess:'
has add 1-1 "$tag" || complain "the seat's user may not open the camera's USB device"
has add 1-1 '^ID_MM_DEVICE_IGNORE=1' || complain "ModemManager probes the camera"
has add 1-1/1-1:1.5/tty/ttyACM1 "$tag" || complain "the seat's user may not open the serial port"
has add 1-1/1-1:1.5/tty/ttyACM1 '^ID_MM_PORT_IGNORE=1' || complain "ModemManager probes the port"
has change 1-1 "$tag" || complain "a change takes the right away"
for other in 1-2 1-3 1-2/1-2:1.5/tty/ttyACM2 1-3/1-3:1.5/tty/ttyACM3; do
    ! has add "$other" "$tag|^ID_MM" || complain "the rules apply to $other, another device"
done
[ "$problems" -eq 0 ]
