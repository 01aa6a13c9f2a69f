// SPDX-License-Identifier: MIT
#include "PatternRenderer.h"

#include "ImageLayout.h"
#include "JpegEncoder.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace VirtualCamera
{

namespace
{

using Glyph = std::array<std::uint8_t, 7>; // One line per byte, five pixels in its low bits.

constexpr std::array<Glyph, 10> digits{{
    {0x0e, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0e},
    {0x04, 0x0c, 0x04, 0x04, 0x04, 0x04, 0x0e},
    {0x0e, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1f},
    {0x1f, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0e},
    {0x02, 0x06, 0x0a, 0x12, 0x1f, 0x02, 0x02},
    {0x1f, 0x10, 0x1e, 0x01, 0x01, 0x11, 0x0e},
    {0x06, 0x08, 0x10, 0x1e, 0x11, 0x11, 0x0e},
    {0x1f, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0e, 0x11, 0x11, 0x0e, 0x11, 0x11, 0x0e},
    {0x0e, 0x11, 0x11, 0x0f, 0x01, 0x02, 0x0c},
}};

bool isJpeg(std::uint32_t pixelFormat)
{
    return pixelFormat == V4L2_PIX_FMT_MJPEG || pixelFormat == V4L2_PIX_FMT_JPEG;
}

std::uint32_t evenPart(std::uint32_t value, std::uint32_t lowest)
{
    return std::max(value & ~1u, lowest);
}

} // namespace

PatternRenderer::PatternRenderer(std::uint32_t pixelFormat, std::uint32_t width,
                                 std::uint32_t height, std::uint32_t bytesPerLine)
    : _pixelFormat(pixelFormat), _width(width), _height(height), _bytesPerLine(bytesPerLine),
      _compressed(isJpeg(pixelFormat))
{
    if (_compressed) {
        std::uint32_t const line = JpegEncoder::paddedTo(width);
        _canvas = canvasFor(V4L2_PIX_FMT_YUV420, line, JpegEncoder::paddedTo(height), line);
    } else {
        // A scripted line may be too short for its pixels; the picture is then cut, not the memory.
        std::uint32_t const shortest = imageLayout(pixelFormat, width, height).bytesPerLine;
        _canvas = canvasFor(pixelFormat, width, height, std::max(bytesPerLine, shortest));
    }
    drawBackground();
}

bool PatternRenderer::fits(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height,
                           std::uint32_t bytesPerLine) const
{
    return pixelFormat == _pixelFormat && width == _width && height == _height &&
           bytesPerLine == _bytesPerLine;
}

void PatternRenderer::drawBackground()
{
    if (!_canvas) {
        _background.resize(imageLayout(_pixelFormat, _width, _height).sizeImage);
        for (std::size_t index = 0; index < _background.size(); ++index)
            _background[index] = static_cast<unsigned char>(index);
        return;
    }
    _background.resize(_canvas->size());
    constexpr std::uint32_t barCount = 8;
    for (std::uint32_t bar = 0; bar < barCount; ++bar) {
        auto const channel = [bar](std::uint32_t mask) {
            return static_cast<std::uint8_t>((bar & mask) != 0 ? 0 : 235);
        };
        std::uint32_t const left = _width * bar / barCount;
        _canvas->fill(_background.data(), left, 0, _canvas->width() - left, _canvas->height(),
                      colourOf(channel(2), channel(4), channel(1)));
    }
    // The track of the moving square.
    _canvas->fill(_background.data(), 0, _height / 4 * 3, _canvas->width(), _height / 8,
                  colourOf(0, 0, 0));
}

void PatternRenderer::drawSquare(unsigned char* image, std::uint32_t frameNumber) const
{
    std::uint32_t const side = evenPart(_height / 8, 2);
    std::uint32_t const room = _width > side ? _width - side : 1;
    std::uint32_t const pace = evenPart(_width / 64, 2);
    auto const x = static_cast<std::uint32_t>(std::uint64_t{frameNumber} * pace % room);
    _canvas->fill(image, x, _height / 4 * 3, side, _height / 8, colourOf(255, 255, 255));
}

void PatternRenderer::drawNumber(unsigned char* image, std::uint32_t frameNumber) const
{
    char text[16];
    int const length = std::snprintf(text, sizeof text, "%06u", frameNumber);
    std::uint32_t const dot = evenPart(_width / 80, 2);
    std::uint32_t const top = _height / 8;
    std::uint32_t x = dot * 2;
    _canvas->fill(image, x - dot, top - std::min(top, dot),
                  (static_cast<std::uint32_t>(length) * 6 + 1) * dot, 9 * dot, colourOf(0, 0, 0));
    for (int place = 0; place < length; ++place, x += 6 * dot) {
        Glyph const& glyph = digits[static_cast<std::size_t>(text[place] - '0')];
        for (std::uint32_t line = 0; line < 7; ++line)
            for (std::uint32_t column = 0; column < 5; ++column)
                if ((glyph[line] >> (4 - column) & 1) != 0)
                    _canvas->fill(image, x + column * dot, top + line * dot, dot, dot,
                                  colourOf(255, 255, 255));
    }
}

std::size_t PatternRenderer::compress(unsigned char* target, std::size_t capacity)
{
    return JpegEncoder(_width, _height).encode(_image.data(), target, capacity);
}

std::size_t PatternRenderer::render(std::uint32_t frameNumber, unsigned char* target,
                                    std::size_t capacity)
{
    bool const direct = _canvas && !_compressed && capacity >= _background.size();
    unsigned char* image = target;
    if (!direct) {
        _image.resize(_background.size());
        image = _image.data();
    }
    if (!_background.empty())
        std::memcpy(image, _background.data(), _background.size());
    if (_canvas) {
        drawSquare(image, frameNumber);
        drawNumber(image, frameNumber);
    } else {
        std::memcpy(image, &frameNumber, std::min(sizeof frameNumber, _background.size()));
    }
    if (direct)
        return _background.size();
    if (_compressed)
        return compress(target, capacity);
    std::size_t const bytes = std::min(capacity, _image.size());
    if (bytes != 0)
        std::memcpy(target, _image.data(), bytes);
    return bytes;
}

} // namespace VirtualCamera
