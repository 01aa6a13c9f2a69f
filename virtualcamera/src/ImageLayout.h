// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace VirtualCamera
{

struct ImageLayout
{
    std::uint32_t bytesPerLine = 0;
    std::uint32_t sizeImage = 0;
};

/// The `bytesperline` and `sizeimage` that a driver gives a format at a size.
ImageLayout imageLayout(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height);

} // namespace VirtualCamera
