// SPDX-License-Identifier: MIT
// Every format that is not compressed, held against the formulas of the book.
#include "GuardedBytes.h"
#include "PictureReference.h"

#include "session/Error.h"
#include "session/Picture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

namespace
{

using namespace ImageAcquisition::Session;
using PictureReference::Colour;
using PictureReference::colourOf;
using PictureReference::noise;
using PictureReference::samplesOf;

struct FormatCase
{
    char const* format;
    double tolerance; ///< Of each colour, of 255.
    unsigned int bytesInTwoPixels;
};

void PrintTo(FormatCase const& of, std::ostream* stream)
{
    *stream << of.format;
}

class PictureYuvTest : public testing::TestWithParam<FormatCase>
{
protected:
    static PictureLayout layoutOf(unsigned int width, unsigned int height, unsigned int padding)
    {
        unsigned int const used = (width + 1) / 2 * GetParam().bytesInTwoPixels;
        return {GetParam().format, width, height, padding == 0 ? 0 : used + padding};
    }

    /// The largest difference from the reference.
    static double differenceOf(Picture const& picture, PictureLayout const& layout,
                               std::vector<unsigned char> const& bytes)
    {
        double difference = 0;
        for (std::size_t y = 0; y < layout.height; ++y) {
            for (std::size_t x = 0; x < layout.width; ++x) {
                Colour const wanted = colourOf(bytes, layout, x, y);
                for (std::size_t part = 0; part < 3; ++part) {
                    double const actual = picture.rgb()[3 * (y * layout.width + x) + part];
                    difference = std::max(difference, std::abs(actual - wanted[part]));
                }
            }
        }
        return difference;
    }

    /// What a byte is where the picture is black.
    static unsigned char blackAt(PictureLayout const& layout, std::size_t position)
    {
        std::string const format = GetParam().format;
        if (format == "NV12" || format == "YU12" || format == "YV12") {
            return position < samplesOf(layout, 0, layout.height).a ? 16 : 128;
        }
        std::size_t const stride = samplesOf(layout, 0, 1).a - samplesOf(layout, 0, 0).a;
        bool const isLuma = position % stride % 2 == (format == "YUYV" ? 0 : 1);
        return format != "YUYV" && format != "UYVY" ? 0 : isLuma ? 16 : 128;
    }
};

TEST_P(PictureYuvTest, IsConvertedWithinTheToleranceForEachSizeAndLineLength)
{
    Picture picture;
    for (unsigned int const width : {1u, 2u, 3u, 4u, 5u, 15u, 16u, 17u, 31u, 33u, 64u, 65u, 641u}) {
        for (unsigned int const height : {1u, 2u, 3u, 8u, 33u}) {
            for (unsigned int const padding : {0u, 1u, 2u, 13u, 64u}) {
                PictureLayout const layout = layoutOf(width, height, padding);
                auto const bytes = noise(bytesOf(layout), width + 1000 * height);
                for (auto const guard :
                     {GuardedBytes::Guard::Behind, GuardedBytes::Guard::Before}) {
                    GuardedBytes const guarded(bytes, guard);
                    picture.convert(guarded.bytes(), layout);
                    ASSERT_EQ(picture.width(), width);
                    ASSERT_EQ(picture.height(), height);
                    ASSERT_LE(differenceOf(picture, layout, bytes), GetParam().tolerance)
                        << width << "x" << height << " with " << padding;
                }
            }
        }
    }
}

TEST_P(PictureYuvTest, HasEveryLumaAndChroma)
{
    // Each pair of samples once, the third in steps.
    PictureLayout const layout = layoutOf(512, 512, 0);
    std::vector<unsigned char> bytes(bytesOf(layout));
    Picture picture;
    for (unsigned int third = 0; third < 256; third += 51) {
        for (std::size_t y = 0; y < 512; ++y) {
            for (std::size_t x = 0; x < 512; ++x) {
                auto const at = samplesOf(layout, x, y);
                bytes[at.a] = static_cast<unsigned char>(third);
                bytes[at.b] = static_cast<unsigned char>(x / 2);
                bytes[at.c] = static_cast<unsigned char>(y / 2);
            }
        }
        picture.convert({bytes.data(), bytes.size()}, layout);
        ASSERT_LE(differenceOf(picture, layout, bytes), GetParam().tolerance) << third;
    }
}

TEST_P(PictureYuvTest, OfACutFrameIsThatOfBlackBytesWhereTheyLack)
{
    Picture picture;
    for (unsigned int const padding : {0u, 3u}) {
        PictureLayout const layout = layoutOf(7, 5, padding);
        auto const whole = noise(bytesOf(layout), 7);
        for (std::size_t size = 1; size < whole.size(); ++size) {
            auto const end = whole.begin() + static_cast<long>(size);
            GuardedBytes const guarded(std::vector<unsigned char>(whole.begin(), end));
            picture.convert(guarded.bytes(), layout);
            auto completed = whole;
            for (std::size_t i = size; i < whole.size(); ++i) {
                completed[i] = blackAt(layout, i);
            }
            ASSERT_LE(differenceOf(picture, layout, completed), GetParam().tolerance) << size;
        }
    }
}

// Red, green and blue are copied. The rest is computed with six bits behind the point.
constexpr double computed = 3;

INSTANTIATE_TEST_SUITE_P(Formats, PictureYuvTest,
                         testing::Values(FormatCase{"YUYV", computed, 4},
                                         FormatCase{"UYVY", computed, 4},
                                         FormatCase{"NV12", computed, 2},
                                         FormatCase{"YU12", computed, 2},
                                         FormatCase{"YV12", computed, 2}, FormatCase{"RGB3", 0, 6},
                                         FormatCase{"BGR3", 0, 6}, FormatCase{"GREY", 0, 2}));

} // namespace
