// SPDX-License-Identifier: MIT
#include "GuardedBytes.h"
#include "PictureReference.h"

#include "session/Error.h"
#include "session/Picture.h"

#include <gmock/gmock.h>

#include <cmath>
#include <ostream>

namespace
{

using namespace ImageAcquisition::Session;
using PictureReference::Colour;
using PictureReference::noise;

struct BayerOrder
{
    char const* format;
    std::size_t redX, redY; ///< Where red is in a block of 2x2 pixels; blue is opposite.
};

void PrintTo(BayerOrder const& of, std::ostream* stream)
{
    *stream << of.format;
}

class PictureBayerTest : public testing::TestWithParam<BayerOrder>
{
protected:
    static std::vector<int> lineOf(Picture const& picture, std::size_t line)
    {
        auto const* const begin = picture.rgb().begin() + 3 * picture.width() * line;
        return {begin, begin + 3 * picture.width()};
    }

    /// 0 for red, 1 for green, 2 for blue.
    static std::size_t colourAt(std::size_t x, std::size_t y)
    {
        bool const isRedColumn = x % 2 == GetParam().redX;
        bool const isRedLine = y % 2 == GetParam().redY;
        return isRedColumn == isRedLine ? (isRedLine ? 0 : 2) : 1;
    }

    /// The mean of the nearest pixels of a colour, which is the pixel itself for its own.
    static Colour interpolated(std::vector<unsigned char> const& bytes, std::size_t stride,
                               std::size_t x, std::size_t y)
    {
        Colour colour = {};
        for (std::size_t part = 0; part < 3; ++part) {
            double sum = 0;
            double nearest = 3;
            int count = 0;
            for (std::size_t ny = y - 1; ny <= y + 1; ++ny) {
                for (std::size_t nx = x - 1; nx <= x + 1; ++nx) {
                    double const distance =
                        std::hypot(double(nx) - double(x), double(ny) - double(y));
                    if (colourAt(nx, ny) != part || distance > nearest) {
                        continue;
                    }
                    if (distance < nearest) {
                        nearest = distance;
                        sum = 0;
                        count = 0;
                    }
                    sum += bytes[ny * stride + nx];
                    ++count;
                }
            }
            colour[part] = sum / count;
        }
        return colour;
    }

    static double differenceInside(Picture const& picture, std::vector<unsigned char> const& bytes,
                                   std::size_t stride)
    {
        double difference = 0;
        for (std::size_t y = 1; y + 1 < picture.height(); ++y) {
            for (std::size_t x = 1; x + 1 < picture.width(); ++x) {
                Colour const wanted = interpolated(bytes, stride, x, y);
                for (std::size_t part = 0; part < 3; ++part) {
                    double const actual = picture.rgb()[3 * (y * picture.width() + x) + part];
                    difference = std::max(difference, std::abs(actual - wanted[part]));
                }
            }
        }
        return difference;
    }
};

TEST_P(PictureBayerTest, IsInterpolatedBetweenTheNearestPixels)
{
    Picture picture;
    for (unsigned int const width : {4u, 5u, 6u, 7u, 16u, 17u, 65u}) {
        for (unsigned int const height : {4u, 5u, 6u, 33u}) {
            for (unsigned int const padding : {0u, 1u, 16u}) {
                PictureLayout const layout = {GetParam().format, width, height,
                                              padding == 0 ? 0 : width + padding};
                auto const bytes = noise(bytesOf(layout), width + 1000 * height);
                for (auto const guard :
                     {GuardedBytes::Guard::Behind, GuardedBytes::Guard::Before}) {
                    GuardedBytes const guarded(bytes, guard);
                    picture.convert(guarded.bytes(), layout);
                    ASSERT_EQ(picture.width(), width);
                    ASSERT_EQ(picture.height(), height);
                    ASSERT_LE(differenceInside(picture, bytes, width + padding), 1)
                        << width << "x" << height << " with " << padding;
                }
            }
        }
    }
}

TEST_P(PictureBayerTest, OfOneColourHasItInEveryPixel)
{
    PictureLayout const layout = {GetParam().format, 9, 7, 0};
    std::vector<unsigned char> bytes(63);
    for (std::size_t y = 0; y < 7; ++y) {
        for (std::size_t x = 0; x < 9; ++x) {
            bytes[y * 9 + x] = static_cast<unsigned char>(200 - 60 * colourAt(x, y));
        }
    }
    Picture picture;
    picture.convert({bytes.data(), bytes.size()}, layout);
    for (std::size_t i = 0; i < picture.rgb().size(); ++i) {
        ASSERT_NEAR(picture.rgb()[i], double(200 - 60 * (i % 3)), 1) << i;
    }
}

TEST_P(PictureBayerTest, OfACutFrameIsBlackBelowWhatIsThere)
{
    Picture picture;
    for (unsigned int const bytesPerLine : {0u, 11u}) {
        PictureLayout const layout = {GetParam().format, 8, 8, bytesPerLine};
        std::size_t const stride = bytesPerLine == 0 ? 8 : bytesPerLine;
        std::vector<unsigned char> const whole(bytesOf(layout), 99);
        for (std::size_t size = 1; size < whole.size(); ++size) {
            GuardedBytes const guarded(std::vector<unsigned char>(size, 99));
            picture.convert(guarded.bytes(), layout);
            std::size_t const cutLine = size / stride;
            // The colours of a line come from its neighbours too.
            for (std::size_t line = 0; line + 1 < cutLine; ++line) {
                ASSERT_THAT(lineOf(picture, line), testing::Each(99)) << size << ", " << line;
            }
            for (std::size_t line = cutLine + 2; line < 8; ++line) {
                ASSERT_THAT(lineOf(picture, line), testing::Each(0)) << size << ", " << line;
            }
        }
    }
}

TEST_P(PictureBayerTest, IsRefusedWhereItIsTooSmall)
{
    Picture picture;
    for (unsigned int width = 1; width < 6; ++width) {
        for (unsigned int height = 1; height < 6; ++height) {
            PictureLayout const layout = {GetParam().format, width, height, 0};
            GuardedBytes const guarded(noise(std::size_t{width} * height, 1));
            if (width >= 4 && height >= 4) {
                EXPECT_NO_THROW(picture.convert(guarded.bytes(), layout));
            } else {
                EXPECT_THROW(picture.convert(guarded.bytes(), layout), Error);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Orders, PictureBayerTest,
                         testing::Values(BayerOrder{"BA81", 1, 1}, BayerOrder{"GBRG", 0, 1},
                                         BayerOrder{"GRBG", 1, 0}, BayerOrder{"RGGB", 0, 0}));

} // namespace
