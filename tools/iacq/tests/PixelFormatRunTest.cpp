// SPDX-License-Identifier: MIT
#include "PngPicture.h"
#include "ProgramRun.h"

#include <gmock/gmock.h>

namespace
{

using testing::ElementsAre;

struct RedPicture
{
    char const* format;
    char const* bytes; ///< Of 2x2 pixels, in hexadecimal digits.
    int bytesPerLine;
};

void PrintTo(RedPicture const& picture, std::ostream* stream)
{
    *stream << picture.format << picture.bytesPerLine;
}

class PixelFormatRunTest : public testing::TestWithParam<RedPicture>
{
protected:
    static Words camera(ScratchFolder const& folder)
    {
        RedPicture const& picture = GetParam();
        return {"--config",
                folder.write("camera.json", std::string(R"({"cameras": [{"node": "/dev/video0",
                                 "usb": {"port": "1-1"}, "formats": [{
                                 "sizes": [{"width": 2, "height": 2, "intervals": ["1/30"]}],
                                 "sizeImage": 64, "pixelFormat": ")") +
                                                picture.format + R"(", "frameBytes": ")" +
                                                picture.bytes + R"(", "bytesPerLine": )" +
                                                std::to_string(picture.bytesPerLine) + "}]}]}")};
    }
};

TEST_P(PixelFormatRunTest, IsConverted)
{
    ScratchFolder const folder;
    Words const red = camera(folder);
    ProgramRun run = runIacq({"capture", "0", "-o", folder.path("a.ppm")}, red);
    EXPECT_EQ(run.status, 0) << run.errors;
    std::string pixels;
    for (int i = 0; i < 4; ++i) {
        pixels += std::string("\xff\0\0", 3);
    }
    EXPECT_EQ(folder.read("a.ppm"), "P6\n2 2\n255\n" + pixels);
    run = runIacq({"capture", "0", "-o", folder.path("a.png")}, red);
    EXPECT_EQ(run.status, 0) << run.errors;
    std::vector<unsigned char> const decoded = readPng(folder.read("a.png")).pixels;
    EXPECT_EQ(pixels, std::string(decoded.begin(), decoded.end()));
}

// So red that nothing depends on how its converter rounds.
INSTANTIATE_TEST_SUITE_P(Formats, PixelFormatRunTest,
                         testing::Values(RedPicture{"YUYV", "525452ff525452ff", 4},
                                         RedPicture{"YUYV", "525452ff0000525452ff0000", 6},
                                         RedPicture{"UYVY", "5452ff525452ff52", 4},
                                         RedPicture{"RGB3", "ff0000ff0000ff0000ff0000", 6},
                                         RedPicture{"RGB3", "ff0000ff00004444ff0000ff0000", 8},
                                         RedPicture{"BGR3", "0000ff0000ff0000ff0000ff", 6},
                                         RedPicture{"NV12", "5252525254ff", 2},
                                         RedPicture{"YU12", "5252525254ff", 2},
                                         RedPicture{"YU12", "52520000525200005400ff00", 4},
                                         RedPicture{"YV12", "52525252ff54", 2}));

TEST(PixelFormatRunTest, ShowsGreyAsItIs)
{
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "usb": {"port": "1-1"},
        "formats": [{"pixelFormat": "GREY", "frameBytes": "01ff",
                     "sizes": [{"width": 2, "height": 1, "intervals": ["1/30"]}]}]}]})")};
    ProgramRun const run = runIacq({"capture", "0", "-o", "-", "--output-format", "PPM"}, camera);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, "P6\n2 1\n255\n\x01\x01\x01\xff\xff\xff");
}

TEST(PixelFormatRunTest, LeavesAnUnknownPixelFormatToRaw)
{
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "usb": {"port": "1-1"},
        "formats": [{"pixelFormat": "H264", "frameBytes": "01020304",
                     "sizes": [{"width": 2, "height": 2, "intervals": ["1/30"]}]}]}]})")};
    ProgramRun run = runIacq({"capture", "0", "-o", folder.path("a.png")}, camera);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.errors, "iacq: cannot convert H264 to a picture; use --output-format raw\n");
    EXPECT_THAT(folder.names(), ElementsAre("camera.json"));
    run = runIacq({"capture", "0", "-o", folder.path("a.raw")}, camera);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(folder.read("a.raw"), "\x01\x02\x03\x04");
}

} // namespace
