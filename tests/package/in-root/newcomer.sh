#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs in a clean root with the checkout in /root/checkout.tar: does what the README says, word for
# word, as somebody would who has just unpacked the sources.
set -uo pipefail
cd /root
. ./tap.sh

mkdir checkout
tar -C checkout -xf checkout.tar
cd checkout || exit 1

# The command lines of the README's first block, without their remarks.
commands=$(awk '/^```/ { if (inside) exit; inside = 1; next } inside { sub(/ *#.*/, ""); print }' README.md)
checkEqual "the README begins with the two commands" "./demo.sh ./test.sh" "$(echo $commands)"

says_what_it_shows() { grep "virtual camera" demo.log && grep "Virtual Webcam" demo.log; }
picture_decodes() {
    python3 - <<'END'
import struct, zlib
data = open("frame.png", "rb").read()
assert data[:8] == b"\x89PNG\r\n\x1a\n", "no PNG"
position, pixels = 8, b""
while position < len(data):
    length, kind = struct.unpack(">I4s", data[position:position + 8])
    body = data[position + 8:position + 8 + length]
    assert zlib.crc32(kind + body) == struct.unpack(">I", data[position + 8 + length:position + 12 + length])[0]
    if kind == b"IHDR":
        width, height, depth, colours = struct.unpack(">IIBB", body[:10])
    if kind == b"IDAT":
        pixels += body
    position += 12 + length
pixels = zlib.decompress(pixels)
assert (depth, colours) == (8, 2) and len(pixels) == height * (1 + 3 * width), "not the size it says"
assert len(set(pixels)) > 3, "an empty picture"
print(width, height)
END
}
demo() { $(sed -n 1p <<<"$commands") >demo.log 2>&1 || { tail -n 40 demo.log; return 1; }; }
tests() { $(sed -n 2p <<<"$commands") --quick >test.log 2>&1 || { tail -n 60 test.log; return 1; }; }
ran_tests() {
    tail -n 1 test.log
    tail -n 1 test.log | awk '{ exit !($1 > 100 && $3 == 0) }'
}

check "the first command works: $(sed -n 1p <<<"$commands")" demo
check "it tells that it uses the virtual camera" says_what_it_shows
check "the second command works: $(sed -n 2p <<<"$commands") --quick" tests
check "hundreds of tests passed and none failed" ran_tests
check "the picture decodes" picture_decodes
grep '^That took' test.log | sed 's/^/# tests: /'
finish
