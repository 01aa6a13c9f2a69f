// SPDX-License-Identifier: MIT
#pragma once

#include "Canvas.h"

#include <vector>

namespace VirtualCamera
{

/// Renders the test pattern for one format and size. What is the same in every frame is drawn
/// once, so that a frame costs little more than a copy.
class PatternRenderer
{
public:
    PatternRenderer(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height,
                    std::uint32_t bytesPerLine);

    bool fits(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height,
              std::uint32_t bytesPerLine) const;
    /// Writes at most `capacity` bytes; the result is how many.
    std::size_t render(std::uint32_t frameNumber, unsigned char* target, std::size_t capacity);

private:
    void drawBackground();
    void drawSquare(unsigned char* image, std::uint32_t frameNumber) const;
    void drawNumber(unsigned char* image, std::uint32_t frameNumber) const;
    std::size_t compress(unsigned char* target, std::size_t capacity);

    std::uint32_t m_pixelFormat;
    std::uint32_t m_width;
    std::uint32_t m_height;
    std::uint32_t m_bytesPerLine;
    bool m_compressed;
    std::unique_ptr<Canvas> m_canvas; ///< Null for a format without one.
    std::vector<unsigned char> m_background;
    std::vector<unsigned char> m_image; ///< The picture to compress.
};

} // namespace VirtualCamera
