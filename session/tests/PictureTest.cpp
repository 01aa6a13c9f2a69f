// SPDX-License-Identifier: MIT
#include "session/Picture.h"

#include "GuardedBytes.h"

#include "session/Error.h"

#include <gmock/gmock.h>
#include <turbojpeg.h>

#include <cmath>

namespace
{

using namespace ImageAcquisition::Session;
using Content = std::vector<unsigned char>;
using testing::ElementsAre;
using testing::ElementsAreArray;

Picture convert(PictureLayout const& layout, Content const& content)
{
    GuardedBytes const guarded(content);
    Picture picture;
    picture.convert(guarded.bytes(), layout);
    return picture;
}

Content rgbOf(PictureLayout const& layout, Content const& content)
{
    Picture const picture = convert(layout, content);
    return {picture.rgb().begin(), picture.rgb().end()};
}

/// What is said about bytes that are no picture.
Error faultOf(PictureLayout const& layout, Content const& content)
{
    GuardedBytes const guarded(content);
    Picture picture = convert({"GREY", 1, 1, 0}, {1});
    try {
        picture.convert(guarded.bytes(), layout);
    } catch (Error const& error) {
        EXPECT_TRUE(picture.empty());
        EXPECT_EQ(picture.rgb().size(), 0U);
        return error;
    }
    ADD_FAILURE() << layout.format << " was converted";
    return Error({});
}

/// Smooth enough to be kept by the encoder.
Content slopes(unsigned int width, unsigned int height)
{
    Content rgb;
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int x = 0; x < width; ++x) {
            rgb.push_back(static_cast<unsigned char>(255 * x / width));
            rgb.push_back(static_cast<unsigned char>(255 * y / height));
            rgb.push_back(static_cast<unsigned char>(255 * (x + y) / (width + height)));
        }
    }
    return rgb;
}

Content jpegOf(Content const& rgb, unsigned int width, unsigned int height, int subsampling)
{
    tjhandle const encoder = tjInitCompress();
    unsigned char* encoded = nullptr;
    unsigned long size = 0;
    EXPECT_EQ(tjCompress2(encoder, rgb.data(), static_cast<int>(width), 0, static_cast<int>(height),
                          TJPF_RGB, &encoded, &size, subsampling, 100, 0),
              0);
    Content result(encoded, encoded + size);
    tjFree(encoded);
    tjDestroy(encoder);
    return result;
}

// BT.601 of limited range: 16 is black, 235 white.
constexpr unsigned char black = 16, white = 235, neutral = 128;

TEST(PictureTest, HasBlackAndWhiteOfAVideo)
{
    EXPECT_THAT(rgbOf({"YUYV", 2, 1, 0}, {black, neutral, white, neutral}),
                ElementsAre(0, 0, 0, 255, 255, 255));
    EXPECT_THAT(rgbOf({"UYVY", 2, 1, 0}, {neutral, black, neutral, white}),
                ElementsAre(0, 0, 0, 255, 255, 255));
}

TEST(PictureTest, SkipsThePaddingOfLines)
{
    EXPECT_THAT(rgbOf({"GREY", 2, 2, 4}, {1, 2, 99, 99, 3, 4}),
                ElementsAreArray(Content{1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}));
    EXPECT_THAT(rgbOf({"RGB3", 1, 2, 4}, {1, 2, 3, 99, 4, 5, 6}), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(PictureTest, TakesALineLengthThatIsTooSmallForNone)
{
    EXPECT_THAT(rgbOf({"GREY", 2, 1, 1}, {1, 2}), ElementsAre(1, 1, 1, 2, 2, 2));
}

TEST(PictureTest, OfAJpegIsWhatWasEncoded)
{
    struct Case
    {
        int subsampling;
        double tolerance;
    };
    for (auto const& [subsampling, tolerance] :
         {Case{TJSAMP_444, 3}, Case{TJSAMP_422, 6}, Case{TJSAMP_420, 8}}) {
        for (unsigned int const width : {64u, 65u, 127u}) {
            Content const wanted = slopes(width, 49);
            Content const actual =
                rgbOf({"MJPG", width, 49, 0}, jpegOf(wanted, width, 49, subsampling));
            ASSERT_EQ(actual.size(), wanted.size());
            double difference = 0;
            for (std::size_t i = 0; i < wanted.size(); ++i) {
                difference = std::max(difference, std::abs(double(actual[i]) - wanted[i]));
            }
            EXPECT_LE(difference, tolerance) << subsampling << ", " << width;
        }
    }
}

TEST(PictureTest, RefusesAJpegWhoseHeaderClaimsMoreThanTheSelection)
{
    Content const jpeg = jpegOf(slopes(32, 16), 32, 16, TJSAMP_422);
    EXPECT_EQ(convert({"MJPG", 640, 480, 0}, jpeg).width(), 32U);
    EXPECT_EQ(faultOf({"MJPG", 31, 16, 0}, jpeg).reason(),
              "the frame is a JPEG picture of 32x16, but 31x16 is set");
}

TEST(PictureTest, TellsHowManyBytesAWholeOneTakes)
{
    EXPECT_EQ(bytesOf({"YUYV", 3, 2, 0}), 16U);
    EXPECT_EQ(bytesOf({"YUYV", 2, 2, 10}), 14U);
    EXPECT_EQ(bytesOf({"RGB3", 4, 4, 0}), 48U);
    EXPECT_EQ(bytesOf({"NV12", 3, 3, 0}), 17U);
    EXPECT_EQ(bytesOf({"YU12", 3, 3, 0}), 17U);
    EXPECT_EQ(bytesOf({"YV12", 4, 4, 0}), 24U);
    EXPECT_EQ(bytesOf({"BA81", 4, 4, 5}), 19U);
    EXPECT_EQ(bytesOf({"MJPG", 4, 4, 0}), 0U);
    EXPECT_EQ(bytesOf({"Y16 ", 4, 4, 0}), 0U);
    EXPECT_GT(bytesOf({"NV12", 0xffffffff, 0xffffffff, 0xffffffff}), 1ULL << 62);
}

TEST(PictureTest, RefusesAbsurdSizesBeforeItTakesMemory)
{
    for (char const* const format : {"YUYV", "RGB3", "GREY", "NV12", "YU12", "BA81"}) {
        for (PictureLayout const& layout :
             {PictureLayout{format, 0x55555556, 1, 0},
              PictureLayout{format, 0xffffffff, 0xffffffff, 0},
              PictureLayout{format, 1, 0xffffffff, 1}, PictureLayout{format, 8, 8, 0xffffffff}}) {
            EXPECT_EQ(faultOf(layout, {1, 2, 3, 4}).kind(), ErrorKind::Refused) << format;
        }
    }
}

TEST(PictureTest, RefusesWhatIsNone)
{
    EXPECT_EQ(faultOf({"GREY", 0, 0, 0}, {1}).reason(),
              "the camera does not tell the size of its frames");
    EXPECT_EQ(faultOf({"YUYV", 4, 4, 0}, {}).reason(), "the frame is empty");
    EXPECT_EQ(faultOf({"MJPG", 1, 1, 0}, {1, 2, 3, 4}).reason(), "the frame is no JPEG picture");
    EXPECT_EQ(faultOf({"MJPG", 1, 1, 0}, {}).kind(), ErrorKind::Refused);
}

TEST(PictureTest, NamesAFormatThatIsNotConverted)
{
    EXPECT_TRUE(Picture::converts("MJPG"));
    EXPECT_TRUE(Picture::converts("RGGB"));
    for (char const* const format : {"", "Y16 ", "H264", "yuyv", "YUYVX"}) {
        EXPECT_FALSE(Picture::converts(format)) << format;
        EXPECT_EQ(faultOf({format, 1, 1, 0}, {1, 2, 3, 4}).kind(), ErrorKind::Unsupported);
    }
    EXPECT_STREQ(faultOf({"H264", 1, 1, 0}, {}).what(),
                 "convert H264: pictures of this format are not converted");
}

TEST(PictureTest, KeepsItsMemoryFromFrameToFrame)
{
    Content const frame(64, 128);
    Picture picture;
    for (PictureLayout const& layout : {PictureLayout{"RGB3", 4, 4, 0},
                                        {"YUYV", 4, 4, 0},
                                        {"GREY", 2, 2, 0},
                                        {"NV12", 4, 4, 0}}) {
        unsigned char const* const before = picture.rgb().data();
        picture.convert({frame.data(), frame.size()}, layout);
        EXPECT_TRUE(before == nullptr || before == picture.rgb().data()) << layout.format;
        EXPECT_EQ(picture.rgb().size(), std::size_t{3} * layout.width * layout.height);
    }
}

TEST(PictureTest, IsAValue)
{
    Picture first = convert({"GREY", 2, 1, 0}, {1, 2});
    Picture const copy = first;
    EXPECT_THAT(Content(copy.rgb().begin(), copy.rgb().end()), ElementsAre(1, 1, 1, 2, 2, 2));
    Picture moved = std::move(first);
    EXPECT_EQ(moved.width(), 2U);
    EXPECT_TRUE(first.empty()); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(first.rgb().size(), 0U);
    first.convert({copy.rgb().data(), 1}, {"GREY", 1, 1, 0});
    EXPECT_THAT(Content(first.rgb().begin(), first.rgb().end()), ElementsAre(1, 1, 1));
    moved = first;
    first = copy;
    EXPECT_EQ(moved.width(), 1U);
    EXPECT_EQ(first.width(), 2U);
    moved = std::move(first);
    EXPECT_EQ(moved.width(), 2U);
    EXPECT_TRUE(first.empty()); // NOLINT(bugprone-use-after-move)
}

} // namespace
