// SPDX-License-Identifier: MIT
#include "PictureShape.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace ImageAcquisition::Session
{

namespace
{

/// More than any camera has; three bytes of each can still be counted by an `int`.
constexpr Count mostPixels = Count{1} << 28;

struct PackedFormat
{
    char const* format;
    unsigned int bytesPerSample;
    unsigned int samplePixels;
};

constexpr PackedFormat packedFormats[] = {{"YUYV", 4, 2}, {"UYVY", 4, 2}, {"RGB3", 3, 1},
                                          {"BGR3", 3, 1}, {"GREY", 1, 1}, {"BA81", 1, 1},
                                          {"GBRG", 1, 1}, {"GRBG", 1, 1}, {"RGGB", 1, 1}};

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
Plane planeOf(PictureLayout const& layout, Count bytesPerSample, Count samples)
{
    return {0, std::max<Count>(layout.bytesPerLine, bytesPerSample * samples), bytesPerSample,
            samples, layout.height};
}

/// Chroma lies behind the luma, in lines half as long, or in pairs of bytes in lines as long.
PictureShape planarShape(PictureLayout const& layout)
{
    Plane const luma = planeOf(layout, 1, layout.width);
    Count const samples = (layout.width + Count{1}) / 2;
    Count const lines = (layout.height + Count{1}) / 2;
    Count const half = (luma.stride + 1) / 2;
    Count const start = luma.stride * luma.lines;
    if (layout.format == "NV12") {
        Plane const pairs = {start, 2 * half, 2, samples, lines};
        return {luma, pairs, pairs, 2, 2, true};
    }
    Plane const near = {start, half, 1, samples, lines};
    Plane const far = {start + half * lines, half, 1, samples, lines};
    return layout.format == "YU12" ? PictureShape{luma, near, far, 2, 2, true}
                                   : PictureShape{luma, far, near, 2, 2, true};
}

} // namespace

Plane const& PictureShape::last() const
{
    if (!isPlanar) {
        return first;
    }
    return u.start > v.start ? u : v;
}

Present PictureShape::presentIn(Count bytes) const
{
    Plane const& plane = last();
    Count const there = bytes > plane.start ? bytes - plane.start : 0;
    Count const line = plane.samples * plane.bytesPerSample;
    Count const lines = there < line ? 0 : std::min(plane.lines, (there - line) / plane.stride + 1);
    Count const rest = there > lines * plane.stride ? there - lines * plane.stride : 0;
    Count const samples =
        lines == plane.lines ? 0 : std::min(plane.samples, rest / plane.bytesPerSample);
    return {static_cast<unsigned int>(lines), static_cast<unsigned int>(samples)};
}

std::optional<PictureShape> shapeOf(PictureLayout const& layout)
{
    if (!isPlausible(layout)) {
        return std::nullopt;
    }
    if (isPlanar(layout.format)) {
        return planarShape(layout);
    }
    PackedFormat const* const packed = packedFormat(layout.format);
    if (packed == nullptr) {
        return std::nullopt;
    }
    Count const samples = (layout.width + Count{packed->samplePixels} - 1) / packed->samplePixels;
    Plane const plane = planeOf(layout, packed->bytesPerSample, samples);
    return PictureShape{plane, plane, plane, packed->samplePixels, 1, false};
}

bool isPlausible(PictureLayout const& layout) noexcept
{
    return layout.width != 0 && layout.height != 0 &&
           Count{layout.width} * layout.height <= mostPixels &&
           layout.bytesPerLine <= static_cast<unsigned int>(std::numeric_limits<int>::max());
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
