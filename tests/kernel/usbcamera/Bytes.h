// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace UsbCamera
{

using Bytes = std::vector<std::uint8_t>;

/// Appends the low `size` bytes of `value`, least significant first, as USB stores numbers; zeros
/// where `size` exceeds the value's own.
inline void appendLittle(Bytes& bytes, std::uint64_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i, value >>= 8U) {
        bytes.push_back(static_cast<std::uint8_t>(value));
    }
}

inline void append(Bytes& bytes, Bytes const& more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

/// The number in `size` bytes, at most 8, from `offset` on; bytes beyond the end count as 0.
inline std::uint64_t readLittle(Bytes const& bytes, std::size_t offset, std::size_t size)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size && offset + i < bytes.size(); ++i) {
        value |= static_cast<std::uint64_t>(bytes[offset + i]) << (8 * i);
    }
    return value;
}

inline std::string toHex(Bytes const& bytes)
{
    static char const digits[] = "0123456789abcdef";
    std::string text;
    for (std::uint8_t const byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

/// Reads pairs of hexadecimal digits; throws std::invalid_argument on anything else.
Bytes fromHex(std::string const& text);

} // namespace UsbCamera
