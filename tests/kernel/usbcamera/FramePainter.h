// SPDX-License-Identifier: MIT
#pragma once

#include "Bytes.h"

namespace UsbCamera
{

/// Paints the test picture in YUYV: colour bars that stand still; in the top rows the frame number
/// as 32 black or white blocks, most significant bit first; below them the number in white digits.
/// A picture depends on its number only, so that a test can compare whole frames.
class FramePainter
{
public:
    /// `width` is a multiple of 32, `height` at least 64.
    FramePainter(unsigned width, unsigned height);

    /// The bytes stay good until the next call.
    Bytes const& paint(std::uint32_t number);

    /// The number that the blocks of a picture show.
    static std::uint32_t readNumber(std::uint8_t const* picture, unsigned width);

private:
    void fill(unsigned x, unsigned y, unsigned width, unsigned height, std::uint8_t luma);
    void paintBars();
    unsigned dotSize() const;
    void paintDigit(unsigned position, unsigned digit);

    unsigned m_width;
    unsigned m_height;
    Bytes m_picture;
    std::uint32_t m_number = 0;
};

} // namespace UsbCamera
