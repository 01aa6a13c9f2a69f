// SPDX-License-Identifier: MIT
#include "JpegDecoder.h"

#include "Failure.h"

#include <turbojpeg.h>

#include <memory>

namespace Iacq
{

namespace
{

/// No camera has more; the header of a broken picture may claim 4 thousand millions.
constexpr std::size_t mostPixels = 1U << 28;

struct DecoderDeleter
{
    void operator()(void* decoder) const { tjDestroy(decoder); }
};

} // namespace

RgbImage decodeJpeg(unsigned char const* data, std::size_t size)
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
    if (std::size_t(image.width) * image.height > mostPixels) {
        throw Failure(NoFrame, "the frame is a broken JPEG picture: its size is absurd");
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
