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
    : m_pixelFormat(pixelFormat), m_width(width), m_height(height), m_bytesPerLine(bytesPerLine),
      m_compressed(isJpeg(pixelFormat))
{
    if (m_compressed) {
        std::uint32_t const line = JpegEncoder::paddedTo(width);
        m_canvas = canvasFor(V4L2_PIX_FMT_YUV420, line, JpegEncoder::paddedTo(height), line);
    } else {
        // A scripted line may be too short for its pixels; the picture is then cut, not the memory.
        std::uint32_t const shortest = imageLayout(pixelFormat, width, height).bytesPerLine;
        m_canvas = canvasFor(pixelFormat, width, height, std::max(bytesPerLine, shortest));
    }
    drawBackground();
}

bool PatternRenderer::fits(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height,
                           std::uint32_t bytesPerLine) const
{
    return pixelFormat == m_pixelFormat && width == m_width && height == m_height &&
           bytesPerLine == m_bytesPerLine;
}

void PatternRenderer::drawBackground()
{
    if (!m_canvas) {
        m_background.resize(imageLayout(m_pixelFormat, m_width, m_height).sizeImage);
        for (std::size_t index = 0; index < m_background.size(); ++index) {
            m_background[index] = static_cast<unsigned char>(index);
        }
        return;
    }
    m_background.resize(m_canvas->size());
    constexpr std::uint32_t barCount = 8;
    for (std::uint32_t bar = 0; bar < barCount; ++bar) {
        auto const channel = [bar](std::uint32_t mask) {
            return static_cast<std::uint8_t>((bar & mask) != 0 ? 0 : 235);
        };
        std::uint32_t const left = m_width * bar / barCount;
        m_canvas->fill(m_background.data(), left, 0, m_canvas->width() - left, m_canvas->height(),
                       colourOf(channel(2), channel(4), channel(1)));
    }
    // The track of the moving square.
    m_canvas->fill(m_background.data(), 0, m_height / 4 * 3, m_canvas->width(), m_height / 8,
                   colourOf(0, 0, 0));
}

void PatternRenderer::drawSquare(unsigned char* image, std::uint32_t frameNumber) const
{
    std::uint32_t const side = evenPart(m_height / 8, 2);
    std::uint32_t const room = m_width > side ? m_width - side : 1;
    std::uint32_t const pace = evenPart(m_width / 64, 2);
    auto const x = static_cast<std::uint32_t>(std::uint64_t{frameNumber} * pace % room);
    m_canvas->fill(image, x, m_height / 4 * 3, side, m_height / 8, colourOf(255, 255, 255));
}

void PatternRenderer::drawNumber(unsigned char* image, std::uint32_t frameNumber) const
{
    char text[16];
    int const length = std::snprintf(text, sizeof text, "%06u", frameNumber);
    std::uint32_t const dot = evenPart(m_width / 80, 2);
    std::uint32_t const top = m_height / 8;
    std::uint32_t x = dot * 2;
    m_canvas->fill(image, x - dot, top - std::min(top, dot),
                   (static_cast<std::uint32_t>(length) * 6 + 1) * dot, 9 * dot, colourOf(0, 0, 0));
    for (int place = 0; place < length; ++place, x += 6 * dot) {
        Glyph const& glyph = digits[static_cast<std::size_t>(text[place] - '0')];
        for (std::uint32_t line = 0; line < 7; ++line) {
            for (std::uint32_t column = 0; column < 5; ++column) {
                if ((glyph[line] >> (4 - column) & 1) != 0) {
                    m_canvas->fill(image, x + column * dot, top + line * dot, dot, dot,
                                   colourOf(255, 255, 255));
                }
            }
        }
    }
}

std::size_t PatternRenderer::compress(unsigned char* target, std::size_t capacity)
{
    return JpegEncoder(m_width, m_height).encode(m_image.data(), target, capacity);
}

std::size_t PatternRenderer::render(std::uint32_t frameNumber, unsigned char* target,
                                    std::size_t capacity)
{
    bool const direct = m_canvas && !m_compressed && capacity >= m_background.size();
    unsigned char* image = target;
    if (!direct) {
        m_image.resize(m_background.size());
        image = m_image.data();
    }
    if (!m_background.empty()) {
        std::memcpy(image, m_background.data(), m_background.size());
    }
    if (m_canvas) {
        drawSquare(image, frameNumber);
        drawNumber(image, frameNumber);
    } else {
        std::memcpy(image, &frameNumber, std::min(sizeof frameNumber, m_background.size()));
    }
    if (direct) {
        return m_background.size();
    }
    if (m_compressed) {
        return compress(target, capacity);
    }
    std::size_t const bytes = std::min(capacity, m_image.size());
    if (bytes != 0) {
        std::memcpy(target, m_image.data(), bytes);
    }
    return bytes;
}

} // namespace VirtualCamera
