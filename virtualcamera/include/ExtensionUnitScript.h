// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace VirtualCamera
{

using Guid = std::array<std::uint8_t, 16>;

/// One control of a UVC extension unit: so many bytes, read and written as a whole. Vectors
/// shorter than `size` are filled up with zeros, an empty `maximum` with 0x7f in each most
/// significant byte of a pair and 0xff below it (so that 16-bit fields end at 32767).
struct SelectorScript
{
    std::uint8_t selector = 0;
    std::uint16_t size = 0;
    std::vector<std::uint8_t> current;
    std::vector<std::uint8_t> minimum;
    std::vector<std::uint8_t> maximum;
    std::vector<std::uint8_t> defaults;
    bool readable = true;
    bool writable = true;
};

struct ExtensionUnitScript
{
    Guid guid{};
    std::vector<SelectorScript> selectors;
};

} // namespace VirtualCamera
