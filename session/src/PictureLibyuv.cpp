// SPDX-License-Identifier: MIT
#include "PictureLibyuv.h"

#include <libyuv.h>

#include <algorithm>

namespace ImageAcquisition::Session
{

namespace
{

// The library names byte orders after little-endian words: its RAW is red, green, blue in memory,
// its RGB24 blue, green, red, and its ARGB blue, green, red, alpha.

/// Fits into the processor's nearest cache with what it is made of.
constexpr unsigned int scratchBytes = 16384;

/// What is read, what is written, and how far apart the lines are.
struct Lines
{
    unsigned char const* from;
    int fromStride;
    unsigned char* to;
    int toStride;
    int width;
    int height;
};

using ToArgb = int (*)(unsigned char const* from, int fromStride, unsigned char* argb,
                       int argbStride, int width, int height);

/// In bands of lines, for the library has no way that is direct.
bool throughArgb(ToArgb toArgb, Lines lines, std::vector<unsigned char>& scratch)
{
    int const argbStride = 4 * lines.width;
    int const band = std::max(1, static_cast<int>(scratchBytes) / argbStride);
    scratch.resize(std::max(scratch.size(),
                            static_cast<std::size_t>(argbStride) * static_cast<std::size_t>(band)));
    while (lines.height > 0) {
        int const height = std::min(band, lines.height);
        if (toArgb(lines.from, lines.fromStride, scratch.data(), argbStride, lines.width, height) !=
                0 ||
            libyuv::ARGBToRAW(scratch.data(), argbStride, lines.to, lines.toStride, lines.width,
                              height) != 0) {
            return false;
        }
        lines.from += static_cast<std::ptrdiff_t>(lines.fromStride) * height;
        lines.to += static_cast<std::ptrdiff_t>(lines.toStride) * height;
        lines.height -= height;
    }
    return true;
}

bool convertPacked(std::string const& format, Lines const& lines,
                   std::vector<unsigned char>& scratch)
{
    if (format == "YUYV") {
        return throughArgb(libyuv::YUY2ToARGB, lines, scratch);
    }
    if (format == "UYVY") {
        return throughArgb(libyuv::UYVYToARGB, lines, scratch);
    }
    if (format == "GREY") {
        return throughArgb(libyuv::J400ToARGB, lines, scratch);
    }
    if (format == "RGB3") {
        libyuv::CopyPlane(lines.from, lines.fromStride, lines.to, lines.toStride, 3 * lines.width,
                          lines.height);
        return true;
    }
    return format == "BGR3" && libyuv::RGB24ToRAW(lines.from, lines.fromStride, lines.to,
                                                  lines.toStride, lines.width, lines.height) == 0;
}

bool convertPlanar(PictureShape const& shape, unsigned char const* data, Lines const& lines)
{
    auto const& [luma, u, v] = shape.planes;
    auto const stride = static_cast<int>(u.stride);
    if (v.lines == 0) {
        return libyuv::NV12ToRAW(lines.from, lines.fromStride, data + u.start, stride, lines.to,
                                 lines.toStride, lines.width, lines.height) == 0;
    }
    return libyuv::I420ToRAW(lines.from, lines.fromStride, data + u.start, stride, data + v.start,
                             stride, lines.to, lines.toStride, lines.width, lines.height) == 0;
}

} // namespace

bool convertWithLibyuv(PictureLayout const& layout, PictureShape const& shape,
                       unsigned char const* data, unsigned char* rgb,
                       std::vector<unsigned char>& scratch)
{
    auto const width = static_cast<int>(layout.width);
    Lines const lines{data,  static_cast<int>(shape.planes[0].stride), rgb, 3 * width,
                      width, static_cast<int>(layout.height)};
    return shape.planes[1].lines != 0 ? convertPlanar(shape, data, lines)
                                      : convertPacked(layout.format, lines, scratch);
}

} // namespace ImageAcquisition::Session
