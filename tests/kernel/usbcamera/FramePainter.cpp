// SPDX-License-Identifier: MIT
#include "FramePainter.h"

#include <array>

namespace UsbCamera
{

namespace
{

constexpr unsigned bits = 32;
constexpr unsigned blockHeight = 16;
constexpr unsigned digits = 10;
constexpr unsigned glyphWidth = 5;
constexpr unsigned glyphHeight = 7;
constexpr unsigned digitTop = 24;
constexpr std::uint8_t black = 16;
constexpr std::uint8_t white = 235;
constexpr std::uint8_t grey = 128; ///< of both chroma values

/// Rows of five dots each, the leftmost in the highest bit.
constexpr std::array<std::array<std::uint8_t, glyphHeight>, 10> glyphs{{
    {14, 17, 19, 21, 25, 17, 14},
    {4, 12, 4, 4, 4, 4, 14},
    {14, 17, 1, 6, 8, 16, 31},
    {31, 2, 4, 2, 1, 17, 14},
    {2, 6, 10, 18, 31, 2, 2},
    {31, 16, 30, 1, 1, 17, 14},
    {6, 8, 16, 30, 17, 17, 14},
    {31, 1, 2, 4, 8, 8, 8},
    {14, 17, 17, 14, 17, 17, 14},
    {14, 17, 17, 15, 1, 2, 12},
}};

unsigned digitOf(std::uint32_t number, unsigned position)
{
    for (unsigned i = position + 1; i < digits; ++i) {
        number /= 10;
    }
    return number % 10;
}

} // namespace

FramePainter::FramePainter(unsigned width, unsigned height)
    : m_width(width), m_height(height), m_picture(std::size_t{2} * width * height)
{
    paintBars();
    fill(0, 0, m_width, digitTop + glyphHeight * dotSize() + digitTop - blockHeight, black);
    for (unsigned position = 0; position < digits; ++position) {
        paintDigit(position, 0);
    }
}

void FramePainter::paintBars()
{
    // White, yellow, cyan, green, magenta, red, blue and black as luma, U, V.
    constexpr std::uint8_t colours[8][3] = {{235, 128, 128}, {210, 16, 146},  {170, 166, 16},
                                            {145, 54, 34},   {106, 202, 222}, {81, 90, 240},
                                            {41, 240, 110},  {16, 128, 128}};
    for (unsigned y = 0; y < m_height; ++y) {
        for (unsigned x = 0; x < m_width; x += 2) {
            auto const& colour = colours[x * 8 / m_width];
            std::uint8_t* pair = &m_picture[std::size_t{2} * (y * m_width + x)];
            pair[0] = colour[0];
            pair[1] = colour[1];
            pair[2] = colour[0];
            pair[3] = colour[2];
        }
    }
}

void FramePainter::fill(unsigned x, unsigned y, unsigned width, unsigned height, std::uint8_t luma)
{
    for (unsigned row = y; row < y + height; ++row) {
        std::uint8_t* pixel = &m_picture[std::size_t{2} * (row * m_width + x)];
        for (unsigned i = 0; i < width; ++i) {
            *pixel++ = luma;
            *pixel++ = grey;
        }
    }
}

unsigned FramePainter::dotSize() const
{
    // Even, so that no pair of pixels is shared between two dots.
    return m_width >= 320 ? m_width / 320 * 2 : 2;
}

void FramePainter::paintDigit(unsigned position, unsigned digit)
{
    unsigned const dot = dotSize();
    unsigned const left = 2 + position * (glyphWidth + 1) * dot;
    for (unsigned row = 0; row < glyphHeight; ++row) {
        for (unsigned column = 0; column < glyphWidth; ++column) {
            bool const isSet = (glyphs[digit][row] >> (glyphWidth - 1 - column) & 1) != 0;
            fill(left + column * dot, digitTop + row * dot, dot, dot, isSet ? white : black);
        }
    }
}

Bytes const& FramePainter::paint(std::uint32_t number)
{
    // Only what differs from the picture before: emulated processors are slow.
    unsigned const blockWidth = m_width / bits;
    for (unsigned bit = 0; bit < bits; ++bit) {
        std::uint32_t const mask = std::uint32_t{1} << (bits - 1 - bit);
        if (((number ^ m_number) & mask) != 0) {
            fill(bit * blockWidth, 0, blockWidth, blockHeight,
                 (number & mask) != 0 ? white : black);
        }
    }
    for (unsigned position = 0; position < digits; ++position) {
        unsigned const digit = digitOf(number, position);
        if (digit != digitOf(m_number, position)) {
            paintDigit(position, digit);
        }
    }
    m_number = number;
    return m_picture;
}

std::uint32_t FramePainter::readNumber(std::uint8_t const* picture, unsigned width)
{
    unsigned const blockWidth = width / bits;
    std::uint32_t number = 0;
    for (unsigned bit = 0; bit < bits; ++bit) {
        unsigned const x = bit * blockWidth + blockWidth / 2;
        unsigned const luma = picture[std::size_t{2} * (blockHeight / 2 * width + x)];
        number = number << 1 | (luma > 125 ? 1U : 0U);
    }
    return number;
}

} // namespace UsbCamera
