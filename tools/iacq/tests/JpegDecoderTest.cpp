// SPDX-License-Identifier: MIT
#include "JpegDecoder.h"

#include "Failure.h"

#include <gmock/gmock.h>
#include <turbojpeg.h>

#include <algorithm>

namespace
{

using Bytes = std::vector<unsigned char>;
using testing::HasSubstr;

/// A red picture.
Bytes jpeg(int width, int height, int flags = 0)
{
    Bytes pixels(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::size_t i = 0; i < pixels.size(); i += 3) {
        pixels[i] = 255;
    }
    tjhandle const encoder = tjInitCompress();
    unsigned char* encoded = nullptr;
    unsigned long size = 0;
    tjCompress2(encoder, pixels.data(), width, 0, height, TJPF_RGB, &encoded, &size, TJSAMP_420, 80,
                flags);
    Bytes result(encoded, encoded + size);
    tjFree(encoded);
    tjDestroy(encoder);
    return result;
}

/// Where a marker stands for the last time.
Bytes::iterator lastMarker(Bytes& picture, unsigned char marker)
{
    Bytes const bytes = {0xff, marker};
    return std::find_end(picture.begin(), picture.end(), bytes.begin(), bytes.end());
}

/// The same picture with another size in its header.
Bytes claiming(int width, int height, Bytes picture)
{
    auto const header = lastMarker(picture, 0xc0);
    header[5] = static_cast<unsigned char>(height / 256);
    header[6] = static_cast<unsigned char>(height % 256);
    header[7] = static_cast<unsigned char>(width / 256);
    header[8] = static_cast<unsigned char>(width % 256);
    return picture;
}

Bytes withLastScanRepeated(int times, Bytes picture)
{
    Bytes const scan(lastMarker(picture, 0xda), picture.end() - 2);
    for (int i = 0; i < times; ++i) {
        picture.insert(picture.end() - 2, scan.begin(), scan.end());
    }
    return picture;
}

Iacq::RgbImage decode(Bytes const& picture, unsigned int mostWidth, unsigned int mostHeight)
{
    return Iacq::decodeJpeg(picture.data(), picture.size(), mostWidth, mostHeight);
}

/// What is said about a picture that is not decoded.
std::string faultOf(Bytes const& picture, unsigned int mostWidth, unsigned int mostHeight)
{
    try {
        decode(picture, mostWidth, mostHeight);
    } catch (Iacq::Failure const& failure) {
        EXPECT_EQ(failure.status(), Iacq::NoFrame);
        return failure.what();
    }
    return "";
}

TEST(JpegDecoderTest, TakesAPictureUpToTheSizeThatIsSet)
{
    for (auto const& [width, height] : {std::pair{64u, 48u}, {65u, 48u}, {1280u, 720u}}) {
        Iacq::RgbImage const image = decode(jpeg(64, 48), width, height);
        EXPECT_EQ(image.width, 64u);
        EXPECT_EQ(image.height, 48u);
        ASSERT_EQ(image.pixels.size(), 64u * 48 * 3);
        EXPECT_GT(image.pixels[0], 240);
        EXPECT_LT(image.pixels[1], 15);
    }
}

TEST(JpegDecoderTest, RefusesAPictureLargerThanTheSizeThatIsSet)
{
    EXPECT_EQ(faultOf(jpeg(65, 48), 64, 48),
              "the frame is a JPEG picture of 65x48, but 64x48 is set");
    EXPECT_EQ(faultOf(jpeg(64, 49), 64, 48),
              "the frame is a JPEG picture of 64x49, but 64x48 is set");
}

TEST(JpegDecoderTest, RefusesAFewBytesThatClaimToBeAHugePicture)
{
    EXPECT_EQ(faultOf(claiming(16384, 16384, jpeg(8, 8)), 640, 480),
              "the frame is a JPEG picture of 16384x16384, but 640x480 is set");
}

TEST(JpegDecoderTest, MeasuresAPictureByItsBytesWhereNoSizeIsKnown)
{
    EXPECT_EQ(decode(jpeg(640, 480), 0, 0).pixels.size(), 640u * 480 * 3);
    EXPECT_THAT(faultOf(claiming(2048, 2048, jpeg(8, 8)), 0, 0),
                HasSubstr("claim to be 2048x2048"));
    // As many bytes as it likes, but too large for any camera.
    Bytes padded = claiming(16384, 8192, jpeg(8, 8));
    padded.resize(1U << 20);
    EXPECT_THAT(faultOf(padded, 0, 0), HasSubstr("claim to be 16384x8192"));
}

TEST(JpegDecoderTest, RefusesMoreScansThanAnyPictureNeeds)
{
    Bytes const progressive = jpeg(64, 48, TJFLAG_PROGRESSIVE);
    EXPECT_EQ(decode(progressive, 64, 48).width, 64u);
    EXPECT_EQ(faultOf(withLastScanRepeated(100, progressive), 64, 48),
              "the frame is a broken JPEG picture: it has too many scans");
}

TEST(JpegDecoderTest, TakesDamagedDataForAPictureOfTheSameSizeOrForNone)
{
    for (int const flags : {0, TJFLAG_PROGRESSIVE}) {
        Bytes const whole = jpeg(32, 16, flags);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            Bytes const cut(whole.begin(), whole.begin() + static_cast<long>(size));
            Bytes changed = whole;
            changed[size] ^= 0xffu;
            for (Bytes const& damaged : {cut, changed}) {
                try {
                    Iacq::RgbImage const image = decode(damaged, 32, 16);
                    EXPECT_LE(image.width, 32u) << size;
                    EXPECT_LE(image.height, 16u) << size;
                    EXPECT_EQ(image.pixels.size(), std::size_t(3) * image.width * image.height);
                } catch (Iacq::Failure const& failure) {
                    EXPECT_EQ(failure.status(), Iacq::NoFrame) << size;
                }
            }
        }
    }
}

} // namespace
