// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace VirtualCamera
{

/// Compresses planar YUV 4:2:0 pictures whose lines and planes are padded to whole blocks.
class JpegEncoder
{
public:
    JpegEncoder(std::uint32_t width, std::uint32_t height) : m_width(width), m_height(height) {}

    static std::uint32_t paddedTo(std::uint32_t pixels) { return (pixels + 15) / 16 * 16; }
    /// The result is the length of the JPEG image, cut at `capacity`.
    std::size_t encode(unsigned char* planes, unsigned char* target, std::size_t capacity) const;

private:
    std::uint32_t m_width;
    std::uint32_t m_height;
};

} // namespace VirtualCamera
