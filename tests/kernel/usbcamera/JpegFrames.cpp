// SPDX-License-Identifier: MIT
#include "JpegFrames.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <stdexcept>
#include <string>

namespace UsbCamera
{

namespace
{

std::string const label = "frame ";
constexpr std::size_t numberDigits = 10;
/// The comment follows the first marker, well within these bytes.
constexpr std::size_t searchedBytes = 64;

std::string numberText(std::uint32_t number)
{
    std::string const text = std::to_string(number);
    return std::string(numberDigits - text.size(), '0') + text;
}

std::size_t findNumber(std::uint8_t const* image, std::size_t size)
{
    std::uint8_t const* end = image + std::min(size, searchedBytes);
    std::uint8_t const* found = std::search(image, end, label.begin(), label.end());
    if (found == end ||
        static_cast<std::size_t>(found - image) + label.size() + numberDigits > size) {
        throw std::invalid_argument("the image has no frame number");
    }
    return static_cast<std::size_t>(found - image) + label.size();
}

void writeLines(jpeg_compress_struct& compressor, Bytes const& picture)
{
    std::size_t const width = compressor.image_width;
    Bytes line(3 * width);
    while (compressor.next_scanline < compressor.image_height) {
        std::uint8_t const* from = &picture[2 * width * compressor.next_scanline];
        for (std::size_t x = 0; x < width; ++x) {
            std::uint8_t const* pair = from + x / 2 * 4;
            line[3 * x] = pair[x % 2 * 2];
            line[3 * x + 1] = pair[1];
            line[3 * x + 2] = pair[3];
        }
        JSAMPROW row = line.data();
        jpeg_write_scanlines(&compressor, &row, 1);
    }
}

} // namespace

JpegFrames::JpegFrames(unsigned width, unsigned height)
    : m_width(width), m_height(height), m_images(pictures)
{
    FramePainter painter(width, height);
    for (std::uint32_t i = 0; i < pictures; ++i) {
        m_images[i] = encode(painter.paint(i));
    }
}

Bytes JpegFrames::encode(Bytes const& picture) const
{
    jpeg_compress_struct compressor{};
    jpeg_error_mgr errors{};
    compressor.err = jpeg_std_error(&errors);
    jpeg_create_compress(&compressor);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&compressor, &buffer, &size);
    compressor.image_width = m_width;
    compressor.image_height = m_height;
    compressor.input_components = 3;
    compressor.in_color_space = JCS_YCbCr;
    jpeg_set_defaults(&compressor);
    compressor.dct_method = JDCT_IFAST;
    // The same subsampling as the picture's own.
    compressor.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&compressor, TRUE);
    std::string const comment = label + numberText(0);
    jpeg_write_marker(&compressor, JPEG_COM, reinterpret_cast<JOCTET const*>(comment.data()),
                      static_cast<unsigned>(comment.size()));
    writeLines(compressor, picture);
    jpeg_finish_compress(&compressor);
    jpeg_destroy_compress(&compressor);
    Bytes image(buffer, buffer + size);
    std::free(buffer);
    return image;
}

Bytes const& JpegFrames::frame(std::uint32_t number)
{
    Bytes& image = m_images[number % pictures];
    std::string const text = numberText(number);
    std::copy(text.begin(), text.end(),
              image.begin() + static_cast<std::ptrdiff_t>(findNumber(image.data(), image.size())));
    return image;
}

std::uint32_t JpegFrames::readNumber(std::uint8_t const* image, std::size_t size)
{
    std::size_t const offset = findNumber(image, size);
    return static_cast<std::uint32_t>(
        std::stoul(std::string(image + offset, image + offset + numberDigits)));
}

} // namespace UsbCamera
