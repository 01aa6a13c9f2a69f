// SPDX-License-Identifier: MIT
#include "PixelConversion.h"

#include "Failure.h"
#include "JpegDecoder.h"

#include <algorithm>
#include <map>

namespace Iacq
{

namespace
{

using Pixel = unsigned char*;
using Line = unsigned char const*;

unsigned char clamp(int value)
{
    return static_cast<unsigned char>(std::clamp(value, 0, 255));
}

/// BT.601, limited range, in 8-bit fixed point.
void putYuv(Pixel pixel, int y, int u, int v)
{
    int const luma = 298 * (y - 16) + 128;
    pixel[0] = clamp((luma + 409 * (v - 128)) >> 8);
    pixel[1] = clamp((luma - 100 * (u - 128) - 208 * (v - 128)) >> 8);
    pixel[2] = clamp((luma + 516 * (u - 128)) >> 8);
}

/// Where the parts of a 4:2:2 pair of pixels lie.
struct PackedOrder
{
    int y0, u, y1, v;
};

void packedLine(Line line, Pixel out, unsigned int width, PackedOrder const& order)
{
    for (std::size_t x = 0; x < width; ++x) {
        Line const pair = line + 4 * (x / 2);
        putYuv(out + 3 * x, pair[x % 2 == 0 ? order.y0 : order.y1], pair[order.u], pair[order.v]);
    }
}

void yuyvLine(Line line, Pixel out, unsigned int width)
{
    packedLine(line, out, width, {0, 1, 2, 3});
}

void uyvyLine(Line line, Pixel out, unsigned int width)
{
    packedLine(line, out, width, {1, 0, 3, 2});
}

void rgbLine(Line line, Pixel out, unsigned int width)
{
    std::copy_n(line, 3 * static_cast<std::size_t>(width), out);
}

void bgrLine(Line line, Pixel out, unsigned int width)
{
    for (std::size_t x = 0; x < width; ++x) {
        std::reverse_copy(line + 3 * x, line + 3 * x + 3, out + 3 * x);
    }
}

void greyLine(Line line, Pixel out, unsigned int width)
{
    for (std::size_t x = 0; x < width; ++x) {
        std::fill_n(out + 3 * x, 3, line[x]);
    }
}

/// A format whose lines stand for themselves.
struct PackedFormat
{
    std::size_t (*bytesInLine)(std::size_t width);
    void (*convertLine)(Line line, Pixel out, unsigned int width);
};

std::size_t pairs(std::size_t width)
{
    return (width + 1) / 2 * 4;
}

std::size_t triples(std::size_t width)
{
    return 3 * width;
}

std::size_t singles(std::size_t width)
{
    return width;
}

std::map<std::string, PackedFormat> const& packedFormats()
{
    static std::map<std::string, PackedFormat> const formats = {{"YUYV", {pairs, yuyvLine}},
                                                                {"UYVY", {pairs, uyvyLine}},
                                                                {"RGB3", {triples, rgbLine}},
                                                                {"BGR3", {triples, bgrLine}},
                                                                {"GREY", {singles, greyLine}}};
    return formats;
}

/// Where the chroma of a 4:2:0 picture lies behind its luma.
struct ChromaLayout
{
    std::size_t uStart, vStart;
    std::size_t stride;
    unsigned int step;
};

ChromaLayout chromaLayout(std::string const& format, std::size_t stride, std::size_t height)
{
    std::size_t const luma = stride * height;
    if (format == "NV12") {
        // Pairs of bytes: an odd line needs one more than its luma has.
        return {luma, luma + 1, (stride + 1) / 2 * 2, 2};
    }
    std::size_t const half = (stride + 1) / 2;
    std::size_t const plane = half * ((height + 1) / 2);
    return format == "YU12" ? ChromaLayout{luma, luma + plane, half, 1}
                            : ChromaLayout{luma + plane, luma, half, 1};
}

bool isPlanar(std::string const& format)
{
    return format == "NV12" || format == "YU12" || format == "YV12";
}

void demand(FrameView const& frame, std::size_t bytes)
{
    if (frame.size < bytes) {
        throw Failure(NoFrame, "the frame has " + std::to_string(frame.size) + " bytes, but " +
                                   frame.format + " " + std::to_string(frame.width) + "x" +
                                   std::to_string(frame.height) + " needs " +
                                   std::to_string(bytes));
    }
}

/// Not before the frame has shown its bytes: a forged size may not fit into memory.
RgbImage blankImage(FrameView const& frame)
{
    RgbImage image{frame.width, frame.height, {}};
    image.pixels.resize(3 * std::size_t(frame.width) * frame.height);
    return image;
}

RgbImage convertPacked(FrameView const& frame)
{
    PackedFormat const& format = packedFormats().at(frame.format);
    std::size_t const used = format.bytesInLine(frame.width);
    std::size_t const stride = std::max<std::size_t>(frame.bytesPerLine, used);
    // The last line need not be padded.
    demand(frame, stride * (frame.height - 1) + used);
    RgbImage image = blankImage(frame);
    for (std::size_t y = 0; y < frame.height; ++y) {
        format.convertLine(frame.data + y * stride,
                           image.pixels.data() + y * 3 * std::size_t(frame.width), frame.width);
    }
    return image;
}

RgbImage convertPlanar(FrameView const& frame)
{
    std::size_t const stride = std::max(frame.bytesPerLine, frame.width);
    ChromaLayout const chroma = chromaLayout(frame.format, stride, frame.height);
    std::size_t const lastLine = (frame.height - 1) / 2;
    std::size_t const lastPixel = (frame.width - 1) / 2 * std::size_t(chroma.step);
    demand(frame,
           std::max(chroma.uStart, chroma.vStart) + lastLine * chroma.stride + lastPixel + 1);
    RgbImage image = blankImage(frame);
    for (std::size_t y = 0; y < frame.height; ++y) {
        Line const u = frame.data + chroma.uStart + y / 2 * chroma.stride;
        Line const v = frame.data + chroma.vStart + y / 2 * chroma.stride;
        Pixel const out = image.pixels.data() + y * 3 * std::size_t(frame.width);
        for (std::size_t x = 0; x < frame.width; ++x) {
            putYuv(out + 3 * x, frame.data[y * stride + x], u[x / 2 * chroma.step],
                   v[x / 2 * chroma.step]);
        }
    }
    return image;
}

bool isJpeg(std::string const& format)
{
    return format == "MJPG" || format == "JPEG";
}

} // namespace

bool canConvert(std::string const& format)
{
    return packedFormats().count(format) != 0 || isPlanar(format) || isJpeg(format);
}

RgbImage toRgb(FrameView const& frame)
{
    if (!canConvert(frame.format)) {
        throw Failure(BadUsage,
                      "cannot convert " + frame.format + " to a picture; use --output-format raw");
    }
    if (isJpeg(frame.format)) {
        return decodeJpeg(frame.data, frame.size, frame.width, frame.height);
    }
    if (frame.width == 0 || frame.height == 0) {
        throw Failure(CameraFailed, "the camera does not tell the size of its frames");
    }
    return isPlanar(frame.format) ? convertPlanar(frame) : convertPacked(frame);
}

} // namespace Iacq
