// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace UsbCamera
{

struct VideoSize
{
    std::uint16_t width;
    std::uint16_t height;
    std::vector<std::uint32_t> intervals; ///< in 100 ns, shortest first; the first is the default
};

struct VideoFormat
{
    enum class Kind { Yuyv, Mjpeg };
    Kind kind;
    std::vector<VideoSize> sizes; ///< the first is the default
};

/// What every emulated camera offers; UVC numbers formats and sizes from 1.
std::vector<VideoFormat> const& videoFormats();

/// The largest frame of a size in any format, in bytes.
inline std::uint32_t frameBytes(VideoSize const& size)
{
    return std::uint32_t{2} * size.width * size.height;
}

} // namespace UsbCamera
