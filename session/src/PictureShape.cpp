// SPDX-License-Identifier: MIT
#include "PictureShape.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace ImageAcquisition::Session
{

namespace
{

using Black = std::array<unsigned char, 2>;

/// More than any camera has; three bytes of each can still be counted by an `int`.
constexpr Count mostPixels = Count{1} << 28;

// Of limited range: luma begins at 16, and chroma has no colour at 128.
constexpr Black blackLuma{16, 16};
constexpr Black noColour{128, 128};

struct PackedFormat
{
    char const* format;
    unsigned int bytesPerSample;
    unsigned int samplePixels;
    Black black;
};

constexpr PackedFormat packedFormats[] = {
    {"YUYV", 4, 2, {16, 128}}, {"UYVY", 4, 2, {128, 16}}, {"RGB3", 3, 1, {}},
    {"BGR3", 3, 1, {}},        {"GREY", 1, 1, {}},        {"BA81", 1, 1, {}},
    {"GBRG", 1, 1, {}},        {"GRBG", 1, 1, {}},        {"RGGB", 1, 1, {}}};

PackedFormat const* packedFormat(std::string const& format) noexcept
{
    auto const* const found =
        std::find_if(std::begin(packedFormats), std::end(packedFormats),
                     [&](PackedFormat const& packed) { return format == packed.format; });
    return found == std::end(packedFormats) ? nullptr : found;
}

bool isPlanar(std::string const& format) noexcept
{
    return format == "NV12" || format == "YU12" || format == "YV12";
}

/// A line length that is too small is none.
Plane firstPlane(PictureLayout const& layout, Count lineBytes, Black black)
{
    return {0, std::max<Count>(layout.bytesPerLine, lineBytes), lineBytes, layout.height, black};
}

/// Chroma lies behind the luma, in lines half as long, or in pairs of bytes in lines as long.
PictureShape planarShape(PictureLayout const& layout)
{
    Plane const luma = firstPlane(layout, layout.width, blackLuma);
    Count const samples = (layout.width + Count{1}) / 2;
    Count const lines = (layout.height + Count{1}) / 2;
    Count const half = (luma.stride + 1) / 2;
    Count const start = luma.stride * luma.lines;
    if (layout.format == "NV12") {
        return {{luma, {start, 2 * half, 2 * samples, lines, noColour}, {}}};
    }
    Plane const near{start, half, samples, lines, noColour};
    Plane const far{start + half * lines, half, samples, lines, noColour};
    return layout.format == "YU12" ? PictureShape{{luma, near, far}}
                                   : PictureShape{{luma, far, near}};
}

bool isPlausible(PictureLayout const& layout) noexcept
{
    return layout.width != 0 && layout.height != 0 &&
           Count{layout.width} * layout.height <= mostPixels &&
           layout.bytesPerLine <= static_cast<unsigned int>(std::numeric_limits<int>::max());
}

/// @return where the next line begins.
unsigned char* copyLine(Bytes bytes, Plane const& plane, Count line, unsigned char* to)
{
    Count const from = plane.start + plane.stride * line;
    Count const there = bytes.size() > from ? std::min(bytes.size() - from, plane.lineBytes) : 0;
    to = std::copy_n(bytes.data() + (there == 0 ? 0 : from), there, to);
    for (Count i = there; i < plane.lineBytes; ++i) {
        *to++ = plane.black[i % 2];
    }
    return to;
}

} // namespace

Count PictureShape::size() const
{
    return std::max({planes[0].end(), planes[1].end(), planes[2].end()});
}

std::optional<PictureShape> shapeOf(PictureLayout const& layout)
{
    PackedFormat const* const packed = packedFormat(layout.format);
    if (!isPlausible(layout) || (packed == nullptr && !isPlanar(layout.format))) {
        return std::nullopt;
    }
    if (packed == nullptr) {
        return planarShape(layout);
    }
    Count const samples = (layout.width + Count{packed->samplePixels} - 1) / packed->samplePixels;
    return PictureShape{
        {firstPlane(layout, samples * packed->bytesPerSample, packed->black), {}, {}}};
}

void complete(Bytes bytes, PictureShape& shape, std::vector<unsigned char>& copy)
{
    Count size = 0;
    for (Plane const& plane : shape.planes) {
        size += plane.lineBytes * plane.lines;
    }
    copy.resize(std::max<std::size_t>(copy.size(), size));
    unsigned char* to = copy.data();
    for (Plane& plane : shape.planes) {
        auto const start = static_cast<Count>(to - copy.data());
        for (Count line = 0; line < plane.lines; ++line) {
            to = copyLine(bytes, plane, line, to);
        }
        plane.start = start;
        plane.stride = plane.lineBytes;
    }
}

bool isUncompressed(std::string const& format) noexcept
{
    return isPlanar(format) || packedFormat(format) != nullptr;
}

bool isJpeg(std::string const& format) noexcept
{
    return format == "MJPG" || format == "JPEG";
}

bool isBayer(std::string const& format) noexcept
{
    return format == "BA81" || format == "GBRG" || format == "GRBG" || format == "RGGB";
}

} // namespace ImageAcquisition::Session
