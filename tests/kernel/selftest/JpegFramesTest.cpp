// SPDX-License-Identifier: MIT
#include "JpegFrames.h"

#include "FrameNumbers.h"
#include "FramePainter.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <jpeglib.h>

using namespace UsbCamera;

namespace
{

/// Decodes an image to its luma plane.
Bytes decodeLuma(Bytes const& image, unsigned& width, unsigned& height)
{
    jpeg_decompress_struct decoder{};
    jpeg_error_mgr errors{};
    decoder.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&decoder);
    jpeg_mem_src(&decoder, image.data(), static_cast<unsigned long>(image.size()));
    jpeg_read_header(&decoder, TRUE);
    decoder.out_color_space = JCS_GRAYSCALE;
    jpeg_start_decompress(&decoder);
    width = decoder.output_width;
    height = decoder.output_height;
    Bytes luma(std::size_t{width} * height);
    while (decoder.output_scanline < height) {
        JSAMPROW row = &luma[std::size_t{width} * decoder.output_scanline];
        jpeg_read_scanlines(&decoder, &row, 1);
    }
    jpeg_finish_decompress(&decoder);
    jpeg_destroy_decompress(&decoder);
    return luma;
}

TEST(JpegFramesTest, TellsTheFullNumberInItsComment)
{
    JpegFrames frames(320, 240);
    for (std::uint32_t const number : someNumbers) {
        Bytes const& image = frames.frame(number);
        EXPECT_EQ(JpegFrames::readNumber(image.data(), image.size()), number);
    }
}

TEST(JpegFramesTest, DecodesToThePaintedPicture)
{
    JpegFrames frames(320, 240);
    unsigned width = 0;
    unsigned height = 0;
    Bytes const luma = decodeLuma(frames.frame(13), width, height);
    ASSERT_EQ(width, 320U);
    ASSERT_EQ(height, 240U);
    FramePainter painter(320, 240);
    Bytes const& picture = painter.paint(13 % JpegFrames::pictures);
    long difference = 0;
    for (std::size_t i = 0; i < luma.size(); ++i) {
        difference += std::abs(int{luma[i]} - int{picture[2 * i]});
    }
    EXPECT_LT(difference / static_cast<long>(luma.size()), 3);
}

TEST(JpegFramesTest, RefusesAnImageWithoutANumber)
{
    Bytes const image(100, 0);
    EXPECT_THROW(JpegFrames::readNumber(image.data(), image.size()), std::invalid_argument);
}

} // namespace
