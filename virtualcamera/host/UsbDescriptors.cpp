// SPDX-License-Identifier: MIT
#include "UsbDescriptors.h"

#include <string>

namespace VirtualCamera
{

namespace
{

std::uint16_t idOf(std::optional<std::string> const& text)
{
    try {
        return static_cast<std::uint16_t>(text ? std::stoul(*text, nullptr, 16) : 0);
    } catch (std::exception const&) {
        // sysfs may be scripted to hold anything; a descriptor holds a number.
        return 0;
    }
}

} // namespace

std::vector<std::uint8_t> usbDescriptors(UsbDeviceScript const& script)
{
    auto const low = [](std::uint16_t word) { return static_cast<std::uint8_t>(word & 0xff); };
    auto const high = [](std::uint16_t word) { return static_cast<std::uint8_t>(word >> 8); };
    std::uint16_t const vendor = idOf(script.vendorId);
    std::uint16_t const product = idOf(script.productId);
    return {// Device: miscellaneous class with interface association, as cameras have.
            18, 1, low(script.usbRevision), high(script.usbRevision), 0xef, 2, 1, 64, low(vendor),
            high(vendor), low(product), high(product), 0, 1, 1, 2, 3, 1,
            // Configuration 1: bus powered, 500 mA.
            9, 2, 18, 0, 1, 1, 0, 0x80, 250,
            // Interface 0: video control.
            9, 4, 0, 0, 0, 0x0e, 1, 0, 0};
}

} // namespace VirtualCamera
