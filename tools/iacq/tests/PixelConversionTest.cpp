// SPDX-License-Identifier: MIT
#include "PixelConversion.h"

#include "Failure.h"

#include <gmock/gmock.h>

namespace
{

using Bytes = std::vector<unsigned char>;
using testing::ElementsAre;
using testing::ElementsAreArray;

Iacq::RgbImage convert(char const* format, unsigned int width, unsigned int height,
                       Bytes const& bytes, unsigned int bytesPerLine = 0)
{
    return Iacq::toRgb({format, width, height, bytesPerLine, bytes.data(), bytes.size()});
}

// BT.601 of limited range: 16 is black, 235 white, and (81, 90, 240) red.
constexpr unsigned char black = 16, white = 235, neutral = 128;

TEST(PixelConversionTest, TurnsYuvIntoRgb)
{
    EXPECT_THAT(convert("YUYV", 2, 1, {black, neutral, white, neutral}).pixels,
                ElementsAre(0, 0, 0, 255, 255, 255));
    EXPECT_THAT(convert("YUYV", 2, 1, {81, 90, 81, 240}).pixels, ElementsAre(255, 0, 0, 255, 0, 0));
    EXPECT_THAT(convert("YUYV", 2, 1, {41, 240, 41, 110}).pixels,
                ElementsAre(0, 0, 255, 0, 0, 255));
}

TEST(PixelConversionTest, KnowsTheOrderOfEachPackedFormat)
{
    EXPECT_THAT(convert("UYVY", 2, 1, {neutral, black, neutral, white}).pixels,
                ElementsAre(0, 0, 0, 255, 255, 255));
    EXPECT_THAT(convert("RGB3", 1, 1, {1, 2, 3}).pixels, ElementsAre(1, 2, 3));
    EXPECT_THAT(convert("BGR3", 1, 1, {1, 2, 3}).pixels, ElementsAre(3, 2, 1));
    EXPECT_THAT(convert("GREY", 2, 1, {7, 9}).pixels, ElementsAre(7, 7, 7, 9, 9, 9));
}

TEST(PixelConversionTest, FindsTheChromaOfEachPlanarFormat)
{
    // One block of 2x2 red pixels: u 90, v 240.
    for (auto const& [format, bytes] :
         std::vector<std::pair<char const*, Bytes>>{{"NV12", {81, 81, 81, 81, 90, 240}},
                                                    {"YU12", {81, 81, 81, 81, 90, 240}},
                                                    {"YV12", {81, 81, 81, 81, 240, 90}}}) {
        Bytes const pixels = convert(format, 2, 2, bytes).pixels;
        ASSERT_EQ(pixels.size(), 12u) << format;
        for (std::size_t i = 0; i < pixels.size(); i += 3) {
            EXPECT_EQ(pixels[i], 255) << format;
            EXPECT_EQ(pixels[i + 1], 0) << format;
            EXPECT_EQ(pixels[i + 2], 0) << format;
        }
    }
}

TEST(PixelConversionTest, SkipsThePaddingOfLines)
{
    EXPECT_THAT(convert("GREY", 2, 2, {1, 2, 99, 99, 3, 4}, 4).pixels,
                ElementsAreArray(Bytes{1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}));
    EXPECT_THAT(convert("RGB3", 1, 2, {1, 2, 3, 99, 4, 5, 6}, 4).pixels,
                ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(PixelConversionTest, TakesALineLengthThatIsTooSmallForNone)
{
    EXPECT_THAT(convert("GREY", 2, 1, {1, 2}, 1).pixels, ElementsAre(1, 1, 1, 2, 2, 2));
}

TEST(PixelConversionTest, TakesOddSizes)
{
    EXPECT_EQ(convert("YUYV", 3, 1, Bytes(8, neutral)).pixels.size(), 9u);
    EXPECT_EQ(convert("YU12", 3, 3, Bytes(9 + 4 + 4, neutral)).pixels.size(), 27u);
    // The chroma of NV12 comes in pairs: four bytes a line here, and the last pixel is red.
    Bytes bytes(9, 81);
    bytes.insert(bytes.end(), {neutral, neutral, 90, 240, neutral, neutral, 90, 240});
    Bytes const pixels = convert("NV12", 3, 3, bytes).pixels;
    EXPECT_THAT(Bytes(pixels.end() - 3, pixels.end()), ElementsAre(255, 0, 0));
}

TEST(PixelConversionTest, NeverReadsBeyondAShortFrame)
{
    struct Case
    {
        char const* format;
        std::size_t needed;
    };
    for (auto const& [format, needed] : {Case{"YUYV", 32}, Case{"RGB3", 48}, Case{"GREY", 16},
                                         Case{"NV12", 24}, Case{"YU12", 24}, Case{"YV12", 24}}) {
        EXPECT_NO_THROW(convert(format, 4, 4, Bytes(needed, 1))) << format;
        EXPECT_THROW(convert(format, 4, 4, Bytes(needed - 1, 1)), Iacq::Failure) << format;
        EXPECT_THROW(convert(format, 4, 4, {}), Iacq::Failure) << format;
    }
}

TEST(PixelConversionTest, AsksForAnAbsurdSizesBytesBeforeItTakesMemory)
{
    for (char const* const format : {"YUYV", "RGB3", "GREY", "NV12", "YU12"}) {
        EXPECT_THROW(convert(format, 0x55555556, 1, {1, 2, 3, 4}), Iacq::Failure) << format;
        EXPECT_THROW(convert(format, 0xffffffff, 0xffffffff, {1, 2, 3, 4}), Iacq::Failure)
            << format;
    }
}

TEST(PixelConversionTest, RefusesWhatItDoesNotKnow)
{
    EXPECT_FALSE(Iacq::canConvert("BA81"));
    EXPECT_THROW(convert("BA81", 1, 1, {1, 2, 3, 4}), Iacq::Failure);
    EXPECT_THROW(convert("GREY", 0, 0, {1}), Iacq::Failure);
    EXPECT_THROW(convert("MJPG", 1, 1, {1, 2, 3, 4}), Iacq::Failure);
    EXPECT_THROW(convert("MJPG", 1, 1, {}), Iacq::Failure);
}

} // namespace
