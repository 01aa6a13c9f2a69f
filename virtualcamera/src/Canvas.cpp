// SPDX-License-Identifier: MIT
#include "Canvas.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <array>

namespace VirtualCamera
{

namespace
{

std::uint8_t toByte(double value)
{
    return static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0));
}

/// The bytes that a line of one colour repeats, which may be those of two pixels.
struct PixelBytes
{
    std::size_t count;
    std::array<std::uint8_t, 4> bytes;
};

/// A format whose pixels lie one behind the other.
class PackedCanvas : public Canvas
{
public:
    using BytesOf = PixelBytes (*)(Colour const&);

    PackedCanvas(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerLine,
                 std::size_t bytesPerPixel, BytesOf bytesOf)
        : Canvas(width, height, bytesPerLine), m_bytesPerPixel(bytesPerPixel), m_bytesOf(bytesOf)
    {
    }

private:
    void fillLine(unsigned char* image, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                  Colour const& colour) const override
    {
        unsigned char* const at = image + std::size_t{y} * bytesPerLine() + x * m_bytesPerPixel;
        PixelBytes const pixel = m_bytesOf(colour);
        for (std::size_t byte = 0; byte < width * m_bytesPerPixel; ++byte) {
            at[byte] = byte < pixel.count ? pixel.bytes[byte] : at[byte - pixel.count];
        }
    }

    std::size_t m_bytesPerPixel;
    BytesOf m_bytesOf;
};

PixelBytes yuyvOf(Colour const& colour)
{
    return {4, {colour.luma, colour.chromaBlue, colour.luma, colour.chromaRed}};
}

PixelBytes uyvyOf(Colour const& colour)
{
    return {4, {colour.chromaBlue, colour.luma, colour.chromaRed, colour.luma}};
}

PixelBytes rgbOf(Colour const& colour)
{
    return {3, {colour.red, colour.green, colour.blue}};
}

PixelBytes bgrOf(Colour const& colour)
{
    return {3, {colour.blue, colour.green, colour.red}};
}

class GreyCanvas : public Canvas
{
public:
    using Canvas::Canvas;

protected:
    void fillLine(unsigned char* image, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                  Colour const& colour) const override
    {
        unsigned char* const at = image + std::size_t{y} * bytesPerLine() + x;
        std::fill(at, at + width, colour.luma);
    }
};

/// Luma, then chroma at half the resolution.
class PlanarYuvCanvas : public GreyCanvas
{
public:
    enum class Chroma : std::uint8_t { Interleaved, BlueFirst, RedFirst };

    PlanarYuvCanvas(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerLine,
                    Chroma chroma)
        : GreyCanvas(width, height, bytesPerLine), m_chroma(chroma)
    {
    }

    std::size_t size() const override { return Canvas::size() + 2 * chromaLine() * chromaLines(); }

private:
    std::size_t chromaLine() const { return (std::size_t{bytesPerLine()} + 1) / 2; }
    std::size_t chromaLines() const { return (height() + 1) / 2; }

    void fillLine(unsigned char* image, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                  Colour const& colour) const override
    {
        GreyCanvas::fillLine(image, x, y, width, colour);
        if (y % 2 != 0) {
            return;
        }
        std::size_t const pairs = (std::size_t{width} + 1) / 2;
        unsigned char* const chroma = image + Canvas::size();
        if (m_chroma == Chroma::Interleaved) {
            unsigned char* at = chroma + std::size_t{y / 2} * 2 * chromaLine() + x;
            for (std::size_t pair = 0; pair < pairs; ++pair, at += 2) {
                at[0] = colour.chromaBlue;
                at[1] = colour.chromaRed;
            }
            return;
        }
        bool const blueFirst = m_chroma == Chroma::BlueFirst;
        unsigned char* const first = chroma + std::size_t{y / 2} * chromaLine() + x / 2;
        unsigned char* const second = first + chromaLine() * chromaLines();
        std::fill(first, first + pairs, blueFirst ? colour.chromaBlue : colour.chromaRed);
        std::fill(second, second + pairs, blueFirst ? colour.chromaRed : colour.chromaBlue);
    }

    Chroma m_chroma;
};

} // namespace

Colour colourOf(std::uint8_t red, std::uint8_t green, std::uint8_t blue)
{
    // ITU-R BT.601, limited range.
    return {red,
            green,
            blue,
            toByte(16 + 0.257 * red + 0.504 * green + 0.098 * blue),
            toByte(128 - 0.148 * red - 0.291 * green + 0.439 * blue),
            toByte(128 + 0.439 * red - 0.368 * green - 0.071 * blue)};
}

void Canvas::fill(unsigned char* image, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                  std::uint32_t height, Colour const& colour) const
{
    std::uint32_t const left = x & ~1u;
    std::uint32_t const right = std::min((x + width + 1) & ~1u, m_width);
    std::uint32_t const bottom = std::min(y + height, m_height);
    if (left >= right) {
        return;
    }
    for (std::uint32_t line = y; line < bottom; ++line) {
        fillLine(image, left, line, right - left, colour);
    }
}

std::unique_ptr<Canvas> canvasFor(std::uint32_t pixelFormat, std::uint32_t width,
                                  std::uint32_t height, std::uint32_t bytesPerLine)
{
    switch (pixelFormat) {
    case V4L2_PIX_FMT_YUYV:
        return std::make_unique<PackedCanvas>(width, height, bytesPerLine, 2, yuyvOf);
    case V4L2_PIX_FMT_UYVY:
        return std::make_unique<PackedCanvas>(width, height, bytesPerLine, 2, uyvyOf);
    case V4L2_PIX_FMT_RGB24:
        return std::make_unique<PackedCanvas>(width, height, bytesPerLine, 3, rgbOf);
    case V4L2_PIX_FMT_BGR24:
        return std::make_unique<PackedCanvas>(width, height, bytesPerLine, 3, bgrOf);
    case V4L2_PIX_FMT_GREY:
        return std::make_unique<GreyCanvas>(width, height, bytesPerLine);
    case V4L2_PIX_FMT_NV12:
        return std::make_unique<PlanarYuvCanvas>(width, height, bytesPerLine,
                                                 PlanarYuvCanvas::Chroma::Interleaved);
    case V4L2_PIX_FMT_YUV420:
        return std::make_unique<PlanarYuvCanvas>(width, height, bytesPerLine,
                                                 PlanarYuvCanvas::Chroma::BlueFirst);
    case V4L2_PIX_FMT_YVU420:
        return std::make_unique<PlanarYuvCanvas>(width, height, bytesPerLine,
                                                 PlanarYuvCanvas::Chroma::RedFirst);
    default:
        return nullptr;
    }
}

} // namespace VirtualCamera
