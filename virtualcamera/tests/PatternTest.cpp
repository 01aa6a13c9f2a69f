// SPDX-License-Identifier: MIT
#include "Client.h"

#include <gtest/gtest.h>

#include <cstdio>

#include <jpeglib.h>

namespace
{

using namespace VirtualCamera;

using Image = std::vector<std::uint8_t>;

struct Decoded
{
    unsigned width = 0;
    unsigned height = 0;
    Image grey;
};

Decoded decodeJpeg(Image const& bytes)
{
    jpeg_error_mgr errors{};
    jpeg_decompress_struct decompressor{};
    decompressor.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&decompressor);
    jpeg_mem_src(&decompressor, bytes.data(), bytes.size());
    jpeg_read_header(&decompressor, TRUE);
    decompressor.out_color_space = JCS_GRAYSCALE;
    jpeg_start_decompress(&decompressor);
    Decoded decoded{decompressor.output_width, decompressor.output_height, {}};
    decoded.grey.resize(std::size_t{decoded.width} * decoded.height);
    while (decompressor.output_scanline < decompressor.output_height) {
        JSAMPROW line = &decoded.grey[std::size_t{decompressor.output_scanline} * decoded.width];
        jpeg_read_scanlines(&decompressor, &line, 1);
    }
    jpeg_finish_decompress(&decompressor);
    jpeg_destroy_decompress(&decompressor);
    return decoded;
}

TEST(PatternTest, ChangesWithEachFrameAndOnlyWithIt)
{
    for (char const* name :
         {"YUYV", "UYVY", "RGB3", "BGR3", "GREY", "NV12", "YU12", "YV12", "MJPG"}) {
        std::uint32_t const format = pixelFormatByName(name);
        EXPECT_EQ(testPattern(format, 160, 120, 7), testPattern(format, 160, 120, 7)) << name;
        EXPECT_NE(testPattern(format, 160, 120, 7), testPattern(format, 160, 120, 8)) << name;
        // The square is back at the same place after as many frames as it has places.
        EXPECT_NE(testPattern(format, 160, 120, 7), testPattern(format, 160, 120, 17)) << name;
    }
}

TEST(PatternTest, HasTheSizeOfItsFormat)
{
    EXPECT_EQ(testPattern(V4L2_PIX_FMT_YUYV, 64, 48, 0).size(), 64u * 48 * 2);
    EXPECT_EQ(testPattern(V4L2_PIX_FMT_RGB24, 64, 48, 0).size(), 64u * 48 * 3);
    EXPECT_EQ(testPattern(V4L2_PIX_FMT_NV12, 64, 48, 0).size(), 64u * 48 * 3 / 2);
    EXPECT_EQ(testPattern(V4L2_PIX_FMT_YUV420, 63, 47, 0).size(), 63u * 47 + 2 * 32 * 24);
    EXPECT_EQ(testPattern(pixelFormatByName("XYZ0"), 8, 8, 3).size(), 128u);
}

TEST(PatternTest, HasTheChromaPlanesOfOnePlanarFormatSwappedInTheOther)
{
    Image const blueFirst = testPattern(V4L2_PIX_FMT_YUV420, 160, 120, 5);
    Image const redFirst = testPattern(V4L2_PIX_FMT_YVU420, 160, 120, 5);
    std::ptrdiff_t const luma = 160 * 120;
    std::ptrdiff_t const plane = luma / 4;
    Image swapped(blueFirst.begin(), blueFirst.begin() + luma);
    swapped.insert(swapped.end(), blueFirst.begin() + luma + plane, blueFirst.end());
    swapped.insert(swapped.end(), blueFirst.begin() + luma, blueFirst.begin() + luma + plane);
    EXPECT_EQ(redFirst, swapped);
    EXPECT_NE(redFirst, blueFirst);
}

TEST(PatternTest, AgreesOnLumaInAllFormats)
{
    Image const grey = testPattern(V4L2_PIX_FMT_GREY, 160, 120, 5);
    Image const yuyv = testPattern(V4L2_PIX_FMT_YUYV, 160, 120, 5);
    Image const uyvy = testPattern(V4L2_PIX_FMT_UYVY, 160, 120, 5);
    Image const nv12 = testPattern(V4L2_PIX_FMT_NV12, 160, 120, 5);
    Decoded const jpeg = decodeJpeg(testPattern(V4L2_PIX_FMT_MJPEG, 160, 120, 5));
    ASSERT_EQ(jpeg.width, 160u);
    ASSERT_EQ(jpeg.height, 120u);
    double difference = 0;
    for (std::size_t pixel = 0; pixel < grey.size(); ++pixel) {
        ASSERT_EQ(yuyv[2 * pixel], grey[pixel]);
        ASSERT_EQ(uyvy[2 * pixel + 1], grey[pixel]);
        ASSERT_EQ(nv12[pixel], grey[pixel]);
        difference += std::abs(jpeg.grey[pixel] - grey[pixel]);
    }
    EXPECT_LT(difference / static_cast<double>(grey.size()), 3.0);
}

TEST(PatternTest, StartsWithAWhiteAndEndsWithABlackBar)
{
    Image const rgb = testPattern(V4L2_PIX_FMT_RGB24, 640, 480, 0);
    EXPECT_EQ(rgb[0], 235);
    EXPECT_EQ(rgb[1], 235);
    EXPECT_EQ(rgb[2], 235);
    EXPECT_EQ(rgb[640 * 3 - 1], 0);
    std::size_t const redBar = 640 / 8 * 5 * 3 + 3;
    EXPECT_EQ(rgb[redBar], 235);
    EXPECT_EQ(rgb[redBar + 1], 0);
    EXPECT_EQ(rgb[redBar + 2], 0);
    Image const bgr = testPattern(V4L2_PIX_FMT_BGR24, 640, 480, 0);
    EXPECT_EQ(bgr[redBar + 2], 235);
}

TEST(PatternTest, DrawsNothingOutsideTinyOrOddPictures)
{
    // The address sanitizer would see it.
    for (char const* name : {"YUYV", "UYVY", "RGB3", "GREY", "NV12", "YU12", "YV12", "MJPG"}) {
        for (std::uint32_t size : {1u, 2u, 3u, 7u, 17u}) {
            EXPECT_FALSE(testPattern(pixelFormatByName(name), size, size, 9).empty()) << name;
        }
    }
}

TEST(PatternTest, StandsStillOnRequestAndGivesScriptedBytes)
{
    auto const still = smallCamera().withStillPattern().install();
    Client client;
    ASSERT_EQ(client.start(2), 0);
    v4l2_buffer buffer{};
    ASSERT_EQ(client.dequeue(buffer), 0);
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(buffer.sequence, 1u);
    EXPECT_EQ(std::memcmp(client.mapped(0), client.mapped(1), buffer.bytesused), 0);

    auto const scripted = aCamera("/dev/video1")
                              .withFormat("MJPG")
                              .withSize(64, 48)
                              .withFrameBytes({1, 2, 3})
                              .paced(Pace::Immediate)
                              .install();
    Client other("/dev/video1");
    ASSERT_EQ(other.start(1), 0);
    ASSERT_EQ(other.dequeue(buffer), 0);
    EXPECT_EQ(buffer.bytesused, 3u);
    EXPECT_EQ(other.mapped(0)[2], 3);
}

TEST(PatternTest, NeverWritesBeyondAScriptedLayout)
{
    for (char const* name : {"YUYV", "NV12", "MJPG"}) {
        auto const camera = aCamera()
                                .withFormat(name)
                                .withSize(64, 48)
                                .withImageLayout(3, 100)
                                .paced(Pace::Immediate)
                                .offeringUserPointers()
                                .install();
        Client client;
        std::vector<unsigned char> bytes(100);
        ASSERT_EQ(client.startInto(bytes), 0);
        v4l2_buffer buffer{};
        buffer.memory = V4L2_MEMORY_USERPTR;
        ASSERT_EQ(client.dequeue(buffer), 0);
        EXPECT_LE(buffer.bytesused, 100u);
    }
}

} // namespace
