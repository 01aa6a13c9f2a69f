// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <png.h>

#include <map>

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct Picture
{
    unsigned int width = 0;
    unsigned int height = 0;
    std::vector<unsigned char> pixels;

    std::vector<int> at(unsigned int x, unsigned int y) const
    {
        auto const first = pixels.begin() + 3 * (static_cast<long>(y) * width + x);
        return {first[0], first[1], first[2]};
    }
};

Picture readPng(std::string const& bytes)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    Picture picture;
    if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) != 0) {
        png.format = PNG_FORMAT_RGB;
        picture.width = png.width;
        picture.height = png.height;
        picture.pixels.resize(PNG_IMAGE_SIZE(png));
        png_image_finish_read(&png, nullptr, picture.pixels.data(), 0, nullptr);
    }
    return picture;
}

class CaptureFormat : public testing::TestWithParam<char const*>
{
};

// The test pattern has eight bars: white, yellow, cyan, green, magenta, red, blue and black.
TEST_P(CaptureFormat, ShowsTheColoursOfTheTestPattern)
{
    ScratchFolder const folder;
    ProgramRun const run = runIacq({"capture", "0", "-o", folder.path("frame.png"), "--format",
                                    GetParam(), "--size", "640x480"});
    ASSERT_EQ(run.status, 0) << run.errors;
    Picture const picture = readPng(folder.read("frame.png"));
    ASSERT_EQ(picture.width, 640u);
    ASSERT_EQ(picture.height, 480u);
    std::vector<int> const red = picture.at(440, 300);
    EXPECT_GT(red[0], 150);
    EXPECT_LT(red[1], 60);
    EXPECT_LT(red[2], 60);
    std::vector<int> const blue = picture.at(520, 300);
    EXPECT_LT(blue[0], 60);
    EXPECT_GT(blue[2], 150);
}

INSTANTIATE_TEST_SUITE_P(Formats, CaptureFormat,
                         testing::Values("YUYV", "MJPG", "RGB3", "BGR3", "YU12"));

TEST(CaptureCommand, WritesAPpmOfTheSizeAskedFor)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("frame.ppm"), "--size", "320x240"});
    ASSERT_EQ(run.status, 0) << run.errors;
    std::string const file = folder.read("frame.ppm");
    EXPECT_THAT(file, StartsWith("P6\n320 240\n255\n"));
    EXPECT_EQ(file.size(), 15u + 320 * 240 * 3);
}

TEST(CaptureCommand, WritesTheDriversBytesAsTheyAre)
{
    ScratchFolder const folder;
    ASSERT_EQ(runIacq({"capture", "0", "-o", folder.path("frame.raw"), "--format", "YUYV", "--size",
                       "320x240", "--interval", "1/15"})
                  .status,
              0);
    EXPECT_EQ(folder.read("frame.raw").size(), 320u * 240 * 2);
    ProgramRun const run =
        runIacq({"capture", "0", "-o", "-", "--output-format", "raw", "--format", "MJPG"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, StartsWith("\xff\xd8"));
}

TEST(CaptureCommand, NumbersSeveralFilesAndTheyShowDifferentFrames)
{
    ScratchFolder const folder;
    ASSERT_EQ(runIacq({"capture", "0", "-o", folder.path("a.ppm"), "--count", "3"}).status, 0);
    EXPECT_THAT(folder.names(), ElementsAre("a-0001.ppm", "a-0002.ppm", "a-0003.ppm"));
    EXPECT_NE(folder.read("a-0001.ppm"), folder.read("a-0002.ppm"));
}

TEST(CaptureCommand, TakesTheRestOfASelectionFromWhatIsSet)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.raw"), "--interval", "2/60"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(folder.read("a.raw").size(), 640u * 480 * 2);
}

TEST(CaptureCommand, RefusesWhatTheCameraDoesNotOfferAndSaysWhatItDoes)
{
    std::map<std::string, Words> const cases = {
        {"it has YUYV MJPG", {"--format", "ABCD"}}, {"it has 640x480", {"--size", "641x480"}},
        {"is no size", {"--size", "big"}},          {"it has 1/30", {"--interval", "1/29"}},
        {"is no interval", {"--interval", "30"}},
    };
    ScratchFolder const folder;
    for (auto const& [message, options] : cases) {
        Words arguments = {"capture", "0", "-o", folder.path("a.png")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        ProgramRun const run = runIacq(arguments);
        EXPECT_EQ(run.status, 2) << message;
        EXPECT_THAT(run.errors, HasSubstr(message));
    }
    EXPECT_TRUE(folder.names().empty());
}

/// A camera that is like any other but for what goes wrong.
Words cameraWith(ScratchFolder const& folder, std::string const& trouble)
{
    return {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "name": "Troubled",
        "formats": [{"pixelFormat": "YUYV", "description": "YUYV 4:2:2",
                     "sizes": [{"width": 64, "height": 48, "intervals": ["1/30"]}]}],
        "usb": {"port": "1-1", "vendorId": "1d6b", "productId": "0104", "serial": "T1"},
        )" + trouble + "}]}")};
}

TEST(CaptureCommand, SaysThatNoFrameCameAndWritesNothing)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.png")},
                cameraWith(folder, R"("frameFaults": [{"frame": 0, "fromThenOn": true,
                                                       "missing": true}])"));
    EXPECT_EQ(run.status, 4) << run.errors;
    EXPECT_EQ(run.errors, "iacq: the camera delivered no frame\n");
    EXPECT_THAT(folder.names(), ElementsAre("camera.json"));
}

TEST(CaptureCommand, PassesOverACorruptedFrame)
{
    ScratchFolder const folder;
    ProgramRun const run = runIacq({"capture", "0", "-o", folder.path("a.png")},
                                   cameraWith(folder, R"("frameFaults": [{"frame": 0,
                                                         "corrupted": true}])"));
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.errors, HasSubstr("frame 0 is corrupted"));
}

TEST(CaptureCommand, GivesUpOnCorruptedFramesInTheEnd)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.png")},
                cameraWith(folder, R"("frameFaults": [{"frame": 0, "fromThenOn": true,
                                                       "corrupted": true}])"));
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(folder.names(), ElementsAre("camera.json"));
}

TEST(CaptureCommand, DoesNotReadBeyondAShortFrame)
{
    ScratchFolder const folder;
    ProgramRun const run = runIacq({"capture", "0", "-o", folder.path("a.png")},
                                   cameraWith(folder, R"("frameFaults": [{"frame": 0,
                                                         "bytesUsed": 100}])"));
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(run.errors, HasSubstr("the frame has 100 bytes"));
    EXPECT_THAT(folder.names(), ElementsAre("camera.json"));
}

TEST(CaptureCommand, TellsOfACameraThatOnlyReads)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.png")}, {"--model", "read"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, StartsWith("iacq: the camera grants no buffers"));
    EXPECT_TRUE(folder.names().empty());
}

TEST(CaptureCommand, TellsOfAPathThatCannotBeWritten)
{
    ProgramRun const run = runIacq({"capture", "0", "-o", "/nonexistent/a.png"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: cannot write /nonexistent/a.png: No such file or directory\n");
}

} // namespace
