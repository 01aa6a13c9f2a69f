// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace VirtualCamera
{

using SerialBytes = std::vector<std::uint8_t>;

/// One UVC control that a camera offers over its serial port. Data is in little-endian order;
/// the size of `current` is the size of the control.
struct SerialControl
{
    std::uint8_t unit = 0; ///< 1 camera terminal, 2 processing unit, 3 extension unit.
    std::uint8_t selector = 0;
    SerialBytes current;
    SerialBytes minimum;
    SerialBytes maximum;
    SerialBytes defaults;
    std::uint8_t info = 0x03; ///< The answer to GET_INFO: bit 0 reading, bit 1 writing.
    /// What GET_LEN says when that is not the size of `current`.
    std::optional<std::uint16_t> claimedLength;
};

/// A number in so many bytes, the least significant byte first.
SerialBytes littleEndian(std::int64_t value, std::size_t length);

/// A control that holds one number.
SerialControl aSerialControl(std::uint8_t unit, std::uint8_t selector, std::size_t length,
                             std::int64_t minimum, std::int64_t maximum, std::int64_t value);

/// All controls of the vendor's camera, with the ranges of an autofocus camera for microscopy and
/// documents.
std::vector<SerialControl> vendorSerialControls();

} // namespace VirtualCamera
