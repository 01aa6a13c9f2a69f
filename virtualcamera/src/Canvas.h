// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace VirtualCamera
{

/// A colour in both of the forms that pictures are made of.
struct Colour
{
    std::uint8_t red, green, blue;
    std::uint8_t luma, chromaBlue, chromaRed;
};

Colour colourOf(std::uint8_t red, std::uint8_t green, std::uint8_t blue);

/// Draws rectangles into an image of some pixel format. Rectangles are widened to even pixels,
/// since most formats share their chroma among neighbours, and cut at the image's edges.
class Canvas
{
public:
    Canvas(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerLine)
        : m_width(width), m_height(height), m_bytesPerLine(bytesPerLine)
    {
    }
    virtual ~Canvas() = default;

    std::uint32_t width() const { return m_width; }
    std::uint32_t height() const { return m_height; }
    /// Bytes of a whole image.
    virtual std::size_t size() const { return std::size_t{m_bytesPerLine} * m_height; }
    void fill(unsigned char* image, std::uint32_t x, std::uint32_t y, std::uint32_t width,
              std::uint32_t height, Colour const& colour) const;

protected:
    virtual void fillLine(unsigned char* image, std::uint32_t x, std::uint32_t y,
                          std::uint32_t width, Colour const& colour) const = 0;
    std::uint32_t bytesPerLine() const { return m_bytesPerLine; }

private:
    std::uint32_t m_width;
    std::uint32_t m_height;
    std::uint32_t m_bytesPerLine;
};

/// Null for a format that has no canvas.
std::unique_ptr<Canvas> canvasFor(std::uint32_t pixelFormat, std::uint32_t width,
                                  std::uint32_t height, std::uint32_t bytesPerLine);

} // namespace VirtualCamera
