// SPDX-License-Identifier: MIT
#include "JpegDecoder.h"

#include "GuardedBytes.h"

#include "session/Error.h"

#include <gmock/gmock.h>
#include <turbojpeg.h>

#include <algorithm>

namespace
{

using namespace ImageAcquisition::Session;
using Content = std::vector<unsigned char>;
using testing::HasSubstr;

/// A red picture.
Content jpeg(int width, int height, int flags = 0)
{
    Content pixels(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::size_t i = 0; i < pixels.size(); i += 3) {
        pixels[i] = 255;
    }
    tjhandle const encoder = tjInitCompress();
    unsigned char* encoded = nullptr;
    unsigned long size = 0;
    tjCompress2(encoder, pixels.data(), width, 0, height, TJPF_RGB, &encoded, &size, TJSAMP_420, 80,
                flags);
    Content result(encoded, encoded + size);
    tjFree(encoded);
    tjDestroy(encoder);
    return result;
}

/// Where a marker stands for the last time.
Content::iterator lastMarker(Content& picture, unsigned char marker)
{
    Content const bytes = {0xff, marker};
    return std::find_end(picture.begin(), picture.end(), bytes.begin(), bytes.end());
}

/// The same picture with another size in its header.
Content claiming(int width, int height, Content picture)
{
    auto const header = lastMarker(picture, 0xc0);
    header[5] = static_cast<unsigned char>(height / 256);
    header[6] = static_cast<unsigned char>(height % 256);
    header[7] = static_cast<unsigned char>(width / 256);
    header[8] = static_cast<unsigned char>(width % 256);
    return picture;
}

Content withLastScanRepeated(int times, Content picture)
{
    Content const scan(lastMarker(picture, 0xda), picture.end() - 2);
    for (int i = 0; i < times; ++i) {
        picture.insert(picture.end() - 2, scan.begin(), scan.end());
    }
    return picture;
}

struct Decoded
{
    JpegDecoder::Size size;
    Content rgb;
};

Decoded decode(Content const& picture, unsigned int mostWidth, unsigned int mostHeight)
{
    GuardedBytes const guarded(picture);
    Decoded decoded{};
    decoded.size = JpegDecoder().decode(guarded.bytes(), {mostWidth, mostHeight}, decoded.rgb);
    return decoded;
}

/// What is said about a picture that is not decoded; nothing is allocated for it.
std::string faultOf(Content const& picture, unsigned int mostWidth, unsigned int mostHeight)
{
    Content rgb;
    try {
        GuardedBytes const guarded(picture);
        JpegDecoder().decode(guarded.bytes(), {mostWidth, mostHeight}, rgb);
    } catch (Error const& error) {
        EXPECT_EQ(error.kind(), ErrorKind::Refused);
        EXPECT_EQ(rgb.capacity(), 0U);
        return error.reason();
    }
    return "";
}

TEST(JpegDecoderTest, TakesAPictureUpToTheSizeThatIsSet)
{
    for (auto const& [width, height] : {std::pair{64u, 48u}, {65u, 48u}, {1280u, 720u}}) {
        Decoded const image = decode(jpeg(64, 48), width, height);
        EXPECT_EQ(image.size.width, 64u);
        EXPECT_EQ(image.size.height, 48u);
        ASSERT_EQ(image.rgb.size(), 64u * 48 * 3);
        EXPECT_GT(image.rgb[0], 240);
        EXPECT_LT(image.rgb[1], 15);
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
    EXPECT_EQ(faultOf(claiming(65500, 65500, jpeg(8, 8)), 640, 480),
              "the frame is a JPEG picture of 65500x65500, but 640x480 is set");
    EXPECT_EQ(faultOf(claiming(65535, 65535, jpeg(8, 8)), 640, 480),
              "the frame is no JPEG picture");
}

TEST(JpegDecoderTest, TakesAPictureWithoutTheUsualHuffmanTables)
{
    Content picture = jpeg(64, 48);
    for (Content::iterator table; (table = lastMarker(picture, 0xc4)) != picture.end();) {
        picture.erase(table, table + 2 + 256 * table[2] + table[3]);
    }
    Decoded const image = decode(picture, 64, 48);
    EXPECT_EQ(image.rgb, decode(jpeg(64, 48), 64, 48).rgb);
}

TEST(JpegDecoderTest, MeasuresAPictureByItsBytesWhereNoSizeIsKnown)
{
    EXPECT_EQ(decode(jpeg(640, 480), 0, 0).rgb.size(), 640u * 480 * 3);
    EXPECT_THAT(faultOf(claiming(2048, 2048, jpeg(8, 8)), 0, 0),
                HasSubstr("claim to be 2048x2048"));
    // As many bytes as it likes, but too large for any camera.
    Content padded = claiming(16384, 8192, jpeg(8, 8));
    padded.resize(1U << 20);
    EXPECT_THAT(faultOf(padded, 0, 0), HasSubstr("claim to be 16384x8192"));
}

TEST(JpegDecoderTest, RefusesMoreScansThanAnyPictureNeeds)
{
    Content const progressive = jpeg(64, 48, TJFLAG_PROGRESSIVE);
    EXPECT_EQ(decode(progressive, 64, 48).size.width, 64u);
    EXPECT_EQ(faultOf(withLastScanRepeated(100, progressive), 64, 48),
              "the frame is a broken JPEG picture: it has too many scans");
}

TEST(JpegDecoderTest, TakesDamagedDataForAPictureOfTheSameSizeOrForNone)
{
    for (int const flags : {0, TJFLAG_PROGRESSIVE}) {
        Content const whole = jpeg(32, 16, flags);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            Content const cut(whole.begin(), whole.begin() + static_cast<long>(size));
            Content changed = whole;
            changed[size] ^= 0xffu;
            for (Content const& damaged : {cut, changed}) {
                try {
                    Decoded const image = decode(damaged, 32, 16);
                    EXPECT_LE(image.size.width, 32u) << size;
                    EXPECT_LE(image.size.height, 16u) << size;
                    EXPECT_EQ(image.rgb.size(),
                              std::size_t(3) * image.size.width * image.size.height);
                } catch (Error const& error) {
                    EXPECT_EQ(error.kind(), ErrorKind::Refused) << size;
                }
            }
        }
    }
}

} // namespace
