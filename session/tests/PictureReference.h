// SPDX-License-Identifier: MIT
#pragma once

#include "session/Picture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <vector>

/// Pictures by the book, one pixel after the other, for comparison.
namespace PictureReference
{

using Colour = std::array<double, 3>;

/// BT.601, limited range.
inline Colour fromYuv(unsigned char y, unsigned char u, unsigned char v)
{
    double const luma = 255.0 / 219.0 * (y - 16);
    double const blue = 255.0 / 224.0 * (u - 128);
    double const red = 255.0 / 224.0 * (v - 128);
    Colour colour = {luma + 1.402 * red,
                     luma - 0.114 * 1.772 / 0.587 * blue - 0.299 * 1.402 / 0.587 * red,
                     luma + 1.772 * blue};
    for (double& part : colour) {
        part = std::clamp(part, 0.0, 255.0);
    }
    return colour;
}

/// Where a pixel's bytes are.
struct Samples
{
    std::size_t a, b, c;
};

/// Of a 4:2:2 or 4:2:0 format: luma, blue difference, red difference. Of others red, green, blue.
inline Samples samplesOf(ImageAcquisition::Session::PictureLayout const& layout, std::size_t x,
                         std::size_t y)
{
    std::size_t const width = layout.width;
    std::size_t const height = layout.height;
    auto const strideFor = [&](std::size_t used) {
        return layout.bytesPerLine == 0 ? used : layout.bytesPerLine;
    };
    std::size_t const pairs = y * strideFor((width + 1) / 2 * 4) + x / 2 * 4;
    std::size_t const triple = y * strideFor(3 * width) + 3 * x;
    std::size_t const stride = strideFor(width);
    std::size_t const single = y * stride + x;
    std::size_t const chroma = stride * height;
    std::size_t const half = (stride + 1) / 2;
    std::size_t const near = chroma + y / 2 * half + x / 2;
    std::size_t const far = near + half * ((height + 1) / 2);
    std::size_t const pair = chroma + y / 2 * (2 * half) + x / 2 * 2;
    if (layout.format == "YUYV") {
        return {pairs + x % 2 * 2, pairs + 1, pairs + 3};
    }
    if (layout.format == "UYVY") {
        return {pairs + x % 2 * 2 + 1, pairs, pairs + 2};
    }
    if (layout.format == "NV12") {
        return {single, pair, pair + 1};
    }
    if (layout.format == "YU12") {
        return {single, near, far};
    }
    if (layout.format == "YV12") {
        return {single, far, near};
    }
    if (layout.format == "RGB3") {
        return {triple, triple + 1, triple + 2};
    }
    if (layout.format == "BGR3") {
        return {triple + 2, triple + 1, triple};
    }
    return {single, single, single};
}

inline bool isYuv(std::string const& format)
{
    return format != "RGB3" && format != "BGR3" && format != "GREY";
}

inline Colour colourOf(std::vector<unsigned char> const& bytes,
                       ImageAcquisition::Session::PictureLayout const& layout, std::size_t x,
                       std::size_t y)
{
    Samples const at = samplesOf(layout, x, y);
    if (isYuv(layout.format)) {
        return fromYuv(bytes[at.a], bytes[at.b], bytes[at.c]);
    }
    return {double(bytes[at.a]), double(bytes[at.b]), double(bytes[at.c])};
}

/// The same in every run.
inline std::vector<unsigned char> noise(std::size_t size, unsigned int seed)
{
    std::mt19937 generator(seed);
    std::vector<unsigned char> bytes(size);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(generator() & 0xffU);
    }
    return bytes;
}

} // namespace PictureReference
