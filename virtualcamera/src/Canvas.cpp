// SPDX-License-Identifier: MIT
#include "Canvas.h"

#include <linux/videodev2.h>

#include <algorithm>

namespace VirtualCamera
{

namespace
{

std::uint8_t toByte(double value)
{
    return static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0));
}

class PackedYuvCanvas : public Canvas
{
public:
    PackedYuvCanvas(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerLine,
                    bool lumaFirst)
        : Canvas(width, height, bytesPerLine), m_lumaFirst(lumaFirst)
    {
    }

private:
    void fillLine(unsigned char* image, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                  Colour const& colour) const override
    {
        unsigned char* at = image + std::size_t{y} * bytesPerLine() + std::size_t{x} * 2;
        for (std::uint32_t pixel = 0; pixel < width; ++pixel, at += 2) {
            std::uint8_t const chroma = pixel % 2 == 0 ? colour.chromaBlue : colour.chromaRed;
            at[m_lumaFirst ? 0 : 1] = colour.luma;
            at[m_lumaFirst ? 1 : 0] = chroma;
        }
    }

    bool m_lumaFirst;
};

class RgbCanvas : public Canvas
{
public:
    RgbCanvas(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerLine, bool redFirst)
        : Canvas(width, height, bytesPerLine), m_redFirst(redFirst)
    {
    }

private:
    void fillLine(unsigned char* image, std::uint32_t x, std::uint32_t y, std::uint32_t width,
                  Colour const& colour) const override
    {
        unsigned char* at = image + std::size_t{y} * bytesPerLine() + std::size_t{x} * 3;
        for (std::uint32_t pixel = 0; pixel < width; ++pixel, at += 3) {
            at[0] = m_redFirst ? colour.red : colour.blue;
            at[1] = colour.green;
            at[2] = m_redFirst ? colour.blue : colour.red;
        }
    }

    bool m_redFirst;
};

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
        return std::make_unique<PackedYuvCanvas>(width, height, bytesPerLine, true);
    case V4L2_PIX_FMT_UYVY:
        return std::make_unique<PackedYuvCanvas>(width, height, bytesPerLine, false);
    case V4L2_PIX_FMT_RGB24:
        return std::make_unique<RgbCanvas>(width, height, bytesPerLine, true);
    case V4L2_PIX_FMT_BGR24:
        return std::make_unique<RgbCanvas>(width, height, bytesPerLine, false);
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
