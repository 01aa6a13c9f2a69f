// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Iacq
{

/// A picture of three bytes a pixel, red first, without gaps between the lines.
struct RgbImage
{
    unsigned int width = 0;
    unsigned int height = 0;
    std::vector<unsigned char> pixels;
};

/// The bytes of a frame, and what they mean.
struct FrameView
{
    std::string format; ///< Four-character code.
    unsigned int width;
    unsigned int height;
    unsigned int bytesPerLine; ///< 0 for lines without padding.
    unsigned char const* data;
    std::size_t size;
};

/// Whether toRgb() knows the pixel format.
bool canConvert(std::string const& format);

/// Converts a frame. YUV is taken for BT.601 of limited range, as cameras send it.
/// @throws Failure when the format is unknown or the frame too short for its size.
RgbImage toRgb(FrameView const& frame);

} // namespace Iacq
