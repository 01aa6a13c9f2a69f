// SPDX-License-Identifier: MIT
#pragma once

#include "FramePainter.h"

#include <vector>

namespace UsbCamera
{

/// The test pictures as JPEG images. To encode each anew would be too slow on an emulated
/// processor: eight are made once and repeat, and only a comment in the file tells the full number.
class JpegFrames
{
public:
    JpegFrames(unsigned width, unsigned height);

    /// The bytes stay good until the next call with a number that is equal modulo 8.
    Bytes const& frame(std::uint32_t number);

    static constexpr std::uint32_t pictures = 8;

    /// The number in an image's comment; throws std::invalid_argument when there is none.
    static std::uint32_t readNumber(std::uint8_t const* image, std::size_t size);

private:
    Bytes encode(Bytes const& picture) const;

    unsigned m_width;
    unsigned m_height;
    std::vector<Bytes> m_images;
};

} // namespace UsbCamera
