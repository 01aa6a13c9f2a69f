// SPDX-License-Identifier: MIT
#include "JpegDecoder.h"

#include "Failure.h"

#include <turbojpeg.h>

#include <algorithm>
#include <memory>
#include <string>

namespace Iacq
{

namespace
{

/// Where the camera does not tell a size: no camera has more than that.
constexpr std::size_t mostPixels = 1U << 26;

/// A block of 64 pixels takes at least a bit.
constexpr std::size_t mostPixelsInByte = std::size_t{8} * 64;

/// Cameras send one scan, progressive pictures have about ten. Each costs as much time as all of
/// the picture, and can be had for a few bytes.
constexpr int mostScans = 100;

struct DecoderDeleter
{
    void operator()(void* decoder) const { tjDestroy(decoder); }
};

/// Within a scan, no such pair of bytes can stand for anything else.
int scansIn(unsigned char const* data, std::size_t size)
{
    int scans = 0;
    for (std::size_t i = 0; i + 1 < size; ++i) {
        if (data[i] == 0xff && data[i + 1] == 0xda) {
            ++scans;
        }
    }
    return scans;
}

std::string sizeText(unsigned int width, unsigned int height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

void demandSize(RgbImage const& image, std::size_t bytes, unsigned int mostWidth,
                unsigned int mostHeight)
{
    std::size_t const pixels = std::size_t(image.width) * image.height;
    if (mostWidth == 0 || mostHeight == 0) {
        if (pixels > std::min(mostPixels, mostPixelsInByte * bytes)) {
            throw Failure(NoFrame, "the frame is a broken JPEG picture: its " +
                                       std::to_string(bytes) + " bytes claim to be " +
                                       sizeText(image.width, image.height));
        }
    } else if (image.width > mostWidth || image.height > mostHeight) {
        throw Failure(NoFrame, "the frame is a JPEG picture of " +
                                   sizeText(image.width, image.height) + ", but " +
                                   sizeText(mostWidth, mostHeight) + " is set");
    }
}

} // namespace

RgbImage decodeJpeg(unsigned char const* data, std::size_t size, unsigned int mostWidth,
                    unsigned int mostHeight)
{
    std::unique_ptr<void, DecoderDeleter> const decoder(tjInitDecompress());
    int width = 0;
    int height = 0;
    int subsampling = 0;
    int colours = 0;
    if (!decoder || tjDecompressHeader3(decoder.get(), data, size, &width, &height, &subsampling,
                                        &colours) != 0) {
        throw Failure(NoFrame, "the frame is no JPEG picture");
    }
    RgbImage image{static_cast<unsigned int>(width), static_cast<unsigned int>(height), {}};
    demandSize(image, size, mostWidth, mostHeight);
    if (scansIn(data, size) > mostScans) {
        throw Failure(NoFrame, "the frame is a broken JPEG picture: it has too many scans");
    }
    image.pixels.resize(3 * std::size_t(image.width) * image.height);
    if (tjDecompress2(decoder.get(), data, size, image.pixels.data(), width, 0, height, TJPF_RGB,
                      0) != 0 &&
        tjGetErrorCode(decoder.get()) == TJERR_FATAL) {
        throw Failure(NoFrame, std::string("the frame is a broken JPEG picture: ") +
                                   tjGetErrorStr2(decoder.get()));
    }
    return image;
}

} // namespace Iacq
