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
        : _width(width), _height(height), _bytesPerLine(bytesPerLine)
    {
    }
    virtual ~Canvas() = default;

    std::uint32_t width() const { return _width; }
    std::uint32_t height() const { return _height; }
    /// Bytes of a whole image.
    virtual std::size_t size() const { return std::size_t{_bytesPerLine} * _height; }
    void fill(unsigned char* image, std::uint32_t x, std::uint32_t y, std::uint32_t width,
              std::uint32_t height, Colour const& colour) const;

protected:
    virtual void fillLine(unsigned char* image, std::uint32_t x, std::uint32_t y,
                          std::uint32_t width, Colour const& colour) const = 0;
    std::uint32_t bytesPerLine() const { return _bytesPerLine; }

private:
    std::uint32_t _width;
    std::uint32_t _height;
    std::uint32_t _bytesPerLine;
};

/// Null for a format that has no canvas.
std::unique_ptr<Canvas> canvasFor(std::uint32_t pixelFormat, std::uint32_t width,
                                  std::uint32_t height, std::uint32_t bytesPerLine);

} // namespace VirtualCamera
