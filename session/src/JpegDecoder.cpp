// SPDX-License-Identifier: MIT
#include "JpegDecoder.h"

#include "session/Error.h"

#include <turbojpeg.h>

#include <algorithm>
#include <new>
#include <string>

namespace ImageAcquisition::Session
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

[[noreturn]] void refuse(std::string const& reason)
{
    throw Error({ErrorKind::Refused, "convert MJPG", reason});
}

/// Within a scan, no such pair of bytes can stand for anything else.
int scansIn(Bytes bytes)
{
    int scans = 0;
    for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
        if (bytes[i] == 0xff && bytes[i + 1] == 0xda) {
            ++scans;
        }
    }
    return scans;
}

std::string sizeText(JpegDecoder::Size size)
{
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

void demandSize(JpegDecoder::Size size, std::size_t bytes, JpegDecoder::Size most)
{
    std::size_t const pixels = std::size_t{size.width} * size.height;
    if (most.width == 0 || most.height == 0) {
        if (pixels > std::min(mostPixels, mostPixelsInByte * bytes)) {
            refuse("the frame is a broken JPEG picture: its " + std::to_string(bytes) +
                   " bytes claim to be " + sizeText(size));
        }
    } else if (size.width > most.width || size.height > most.height) {
        refuse("the frame is a JPEG picture of " + sizeText(size) + ", but " + sizeText(most) +
               " is set");
    }
}

} // namespace

void JpegDecoder::Deleter::operator()(void* decoder) const
{
    tjDestroy(decoder);
}

JpegDecoder::JpegDecoder() : m_decoder(tjInitDecompress())
{
    if (!m_decoder) {
        throw std::bad_alloc();
    }
}

JpegDecoder::Size JpegDecoder::sizeOf(Bytes bytes) const
{
    int width = 0;
    int height = 0;
    int subsampling = 0;
    int colours = 0;
    if (bytes.empty() || tjDecompressHeader3(m_decoder.get(), bytes.data(), bytes.size(), &width,
                                             &height, &subsampling, &colours) != 0) {
        refuse("the frame is no JPEG picture");
    }
    return {static_cast<unsigned int>(width), static_cast<unsigned int>(height)};
}

JpegDecoder::Size JpegDecoder::decode(Bytes bytes, Size most, std::vector<unsigned char>& rgb)
{
    Size const size = sizeOf(bytes);
    demandSize(size, bytes.size(), most);
    if (scansIn(bytes) > mostScans) {
        refuse("the frame is a broken JPEG picture: it has too many scans");
    }
    rgb.resize(std::max(rgb.size(), std::size_t{3} * size.width * size.height));
    if (tjDecompress2(m_decoder.get(), bytes.data(), bytes.size(), rgb.data(),
                      static_cast<int>(size.width), 0, static_cast<int>(size.height), TJPF_RGB,
                      0) != 0 &&
        tjGetErrorCode(m_decoder.get()) == TJERR_FATAL) {
        refuse(std::string("the frame is a broken JPEG picture: ") +
               tjGetErrorStr2(m_decoder.get()));
    }
    return size;
}

} // namespace ImageAcquisition::Session
