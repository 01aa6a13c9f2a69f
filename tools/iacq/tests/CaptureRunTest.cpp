// SPDX-License-Identifier: MIT
#include "PngPicture.h"
#include "ProgramRun.h"

#include <gmock/gmock.h>

#include <map>

namespace
{

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class CaptureRunTest : public testing::TestWithParam<char const*>
{
};

// The test pattern has eight bars: white, yellow, cyan, green, magenta, red, blue and black.
TEST_P(CaptureRunTest, ShowsTheColoursOfTheTestPattern)
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

INSTANTIATE_TEST_SUITE_P(Formats, CaptureRunTest,
                         testing::Values("YUYV", "MJPG", "RGB3", "BGR3", "YU12", "YV12"));

TEST(CaptureRunTest, WritesAPpmOfTheSizeAskedFor)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("frame.ppm"), "--size", "320x240"});
    ASSERT_EQ(run.status, 0) << run.errors;
    std::string const file = folder.read("frame.ppm");
    EXPECT_THAT(file, StartsWith("P6\n320 240\n255\n"));
    EXPECT_EQ(file.size(), 15u + 320 * 240 * 3);
}

TEST(CaptureRunTest, WritesTheDriversBytesAsTheyAre)
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

TEST(CaptureRunTest, NumbersSeveralFilesAndTheyShowDifferentFrames)
{
    ScratchFolder const folder;
    ASSERT_EQ(runIacq({"capture", "0", "-o", folder.path("a.ppm"), "--count", "3"}).status, 0);
    EXPECT_THAT(folder.names(), ElementsAre("a-0001.ppm", "a-0002.ppm", "a-0003.ppm"));
    EXPECT_NE(folder.read("a-0001.ppm"), folder.read("a-0002.ppm"));
}

TEST(CaptureRunTest, TakesTheRestOfASelectionFromWhatIsSet)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.raw"), "--interval", "2/60"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(folder.read("a.raw").size(), 640u * 480 * 2);
}

TEST(CaptureRunTest, RefusesWhatTheCameraDoesNotOfferAndSaysWhatItDoes)
{
    std::map<std::string, Words> const cases = {
        {"it has YUYV MJPG", {"--format", "ABCD"}},
        {"it has 640x480", {"--size", "641x480"}},
        {"is no size", {"--size", "big"}},
        {"it has 30 15 10 frames a second", {"--interval", "1/29"}},
        {"is no interval", {"--interval", "30"}},
        {"is no size", {"--size", "640x480@30"}},
        {"is no number", {"--fps", "30 640x480"}},
        {"is no number", {"--fps", "fast"}},
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

TEST(CaptureRunTest, TakesPicturesOfACameraWithARangeOfSizes)
{
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "usb": {"port": "1-1"},
        "formats": [{"pixelFormat": "YUYV", "sizeKind": "stepwise",
                     "sizeRange": {"minimumWidth": 16, "maximumWidth": 64, "stepWidth": 16,
                                   "minimumHeight": 16, "maximumHeight": 64, "stepHeight": 16}}],
        "currentWidth": 32, "currentHeight": 16}]})")};
    ProgramRun run = runIacq({"capture", "0", "-o", folder.path("a.raw")}, camera);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(folder.read("a.raw").size(), 32u * 16 * 2);
    run = runIacq({"capture", "0", "-o", folder.path("a.ppm"), "--size", "48x64"}, camera);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(folder.read("a.ppm"), StartsWith("P6\n48 64\n"));
    run = runIacq({"capture", "0", "-o", folder.path("b.ppm"), "--size", "50x64"}, camera);
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.errors, HasSubstr("it has 16x16..64x64 in steps of 16x16"));
}

TEST(CaptureRunTest, FillsInTheRestOfASelectionWithWhatGoesWithIt)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.ppm"), "--interval", "1/10"});
    EXPECT_EQ(run.status, 0) << run.errors;
    // Only this size is as slow as that.
    EXPECT_THAT(folder.read("a.ppm"), StartsWith("P6\n1280 720\n"));
}

TEST(CaptureRunTest, TakesFramesASecondInPlaceOfAnInterval)
{
    ScratchFolder const folder;
    ProgramRun run = runIacq({"capture", "0", "-o", folder.path("a.ppm"), "--fps", "10"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(folder.read("a.ppm"), StartsWith("P6\n1280 720\n"));
    run =
        runIacq({"capture", "0", "-o", folder.path("b.ppm"), "--fps", "10", "--interval", "1/10"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(folder.names(), ElementsAre("a.ppm"));
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

TEST(CaptureRunTest, SaysThatNoFrameCameAndWritesNothing)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.png")},
                cameraWith(folder, R"("frameFaults": [{"frame": 0, "fromThenOn": true,
                                                       "missing": true}])"));
    EXPECT_EQ(run.status, 4) << run.errors;
    EXPECT_EQ(run.errors, "iacq: wait for a frame: /dev/video0: none came within 5000 ms\n");
    EXPECT_THAT(folder.names(), ElementsAre("camera.json"));
}

TEST(CaptureRunTest, PassesOverACorruptedFrame)
{
    ScratchFolder const folder;
    ProgramRun const run = runIacq({"capture", "0", "-o", folder.path("a.png")},
                                   cameraWith(folder, R"("frameFaults": [{"frame": 0,
                                                         "corrupted": true}])"));
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.errors, HasSubstr("frame 0 is corrupted"));
}

TEST(CaptureRunTest, TellsHowManyFramesTheDriverLost)
{
    ScratchFolder const folder;
    ProgramRun run =
        runIacq({"capture", "0", "-o", folder.path("a.raw"), "-n", "4", "--buffers", "32"},
                cameraWith(folder, R"("frameFaults": [{"frame": 1, "missing": true},
                                                                   {"frame": 3, "missing": true},
                                                                   {"frame": 4, "missing": true}])"));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "iacq: frames lost: 3 by the driver\n");
    run = runIacq({"capture", "0", "-o", folder.path("b.raw"), "-n", "4", "--buffers", "32"},
                  cameraWith(folder, R"("frameFaults": [{"frame": 1, "missing": true},
                                                        {"frame": 3, "fromThenOn": true,
                                                         "missing": true}])"));
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.errors, "iacq: frames lost: 1 by the driver\n"
                          "iacq: wait for a frame: /dev/video0: none came within 5000 ms\n");
    EXPECT_THAT(folder.names(), ElementsAre("a-0001.raw", "a-0002.raw", "a-0003.raw", "a-0004.raw",
                                            "b-0001.raw", "b-0002.raw", "camera.json"));
}

// The camera sends no more frames than are wanted, so that none may be lost. To compress one takes
// longer than until the next comes.
TEST(CaptureRunTest, LosesNoFrameToTheWorkOnTheOneBefore)
{
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "usb": {"port": "1-1"},
        "formats": [{"pixelFormat": "YUYV",
                     "sizes": [{"width": 1280, "height": 720, "intervals": ["1/30"]}]}],
        "frameFaults": [{"frame": 40, "fromThenOn": true, "missing": true}]}]})")};
    ProgramRun const run = runIacq(
        {"capture", "0", "-o", folder.path("%02d.png"), "-n", "40", "--buffers", "12"}, camera);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(folder.names().size(), 41u);
    EXPECT_EQ(readPng(folder.read("40.png")).width, 1280u);
}

TEST(CaptureRunTest, GivesUpOnCorruptedFramesInTheEnd)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.png")},
                cameraWith(folder, R"("frameFaults": [{"frame": 0, "fromThenOn": true,
                                                       "corrupted": true}])"));
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(folder.names(), ElementsAre("camera.json"));
}

/// The errors of a capture of frames with so few bytes, which gives no picture.
std::string errorsOfFramesWith(std::string const& bytes, std::string const& name)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path(name)},
                cameraWith(folder, R"("frameFaults": [{"frame": 0, "bytesUsed": )" + bytes + "}]"));
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(folder.names(), ElementsAre("camera.json"));
    return run.errors;
}

TEST(CaptureRunTest, DoesNotReadBeyondAShortFrame)
{
    EXPECT_THAT(errorsOfFramesWith("100", "a.png"), HasSubstr("the frame has 100 bytes"));
}

TEST(CaptureRunTest, MakesNoFileOfAnEmptyFrame)
{
    EXPECT_EQ(errorsOfFramesWith("0", "a.raw"), "iacq: the frame is empty\n");
}

TEST(CaptureRunTest, KeepsAnOlderFileWhenNoFrameComes)
{
    ScratchFolder const folder;
    folder.write("a.png", "older");
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.png")},
                cameraWith(folder, R"("frameFaults": [{"frame": 0, "fromThenOn": true,
                                                       "missing": true}])"));
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(folder.read("a.png"), "older");
}

TEST(CaptureRunTest, TellsOfADriverThatRefusesTheFormat)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.png"), "--format", "YUYV"},
                cameraWith(folder, R"("faults": [{"call": "VIDIOC_S_FMT", "errno": "EBUSY",
                                                  "use": 1, "fromThenOn": true}])"));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors,
              "iacq: select YUYV: /dev/video0: the camera refused YUYV 64x48@30: Device "
              "or resource busy\n");
}

TEST(CaptureRunTest, TellsOfACameraThatDoesNotStart)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.png")},
                cameraWith(folder, R"("faults": [{"call": "VIDIOC_STREAMON", "errno": "EIO",
                                                  "use": 1, "fromThenOn": true}])"));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: start streaming: /dev/video0: the camera does not start: "
                          "Input/output error\n");
    EXPECT_THAT(folder.names(), ElementsAre("camera.json"));
}

TEST(CaptureRunTest, TellsOfACameraThatIsUnpluggedMeanwhile)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", "-", "--output-format", "raw", "--count", "1000000"},
                {"--model", "webcam", "--unplug-after", "500"});
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(run.errors, HasSubstr("iacq: wait for a frame: /dev/video0: the camera is gone"));
}

// As where nodes of devices that are gone are kept.
TEST(CaptureRunTest, TellsOfACameraThatIsGoneThoughItsNodeIsThere)
{
    ScratchFolder const folder;
    ProgramRun const run = runIacq({"capture", "0", "-o", folder.path("a.raw"), "--count", "3"},
                                   cameraWith(folder, R"("vanishingFrame": 1)"));
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.errors,
              "iacq: wait for a frame: /dev/video0: the camera is gone: No such device\n");
    EXPECT_THAT(folder.names(), ElementsAre("a-0001.raw", "camera.json"));
}

TEST(CaptureRunTest, TellsWhyACameraDoesNotStream)
{
    std::map<std::string, std::string> const cases = {
        // Two requests find out beforehand whether the camera grants buffers at all.
        {R"("faults": [{"call": "VIDIOC_REQBUFS", "errno": "EBUSY", "use": 3, "fromThenOn": true}])",
         "the camera grants no buffers: Device or resource busy"},
        {R"("faults": [{"call": "VIDIOC_REQBUFS", "errno": "ENODEV", "use": 3}])",
         "the camera is gone: No such device"},
        {R"("faults": [{"call": "VIDIOC_STREAMON", "errno": "ENODEV"}])",
         "the camera is gone: No such device"},
        {R"("faults": [{"call": "VIDIOC_REQBUFS", "errno": "ENOMEM", "use": 3}])",
         "the camera grants no buffers: Cannot allocate memory"},
        {R"("mostBuffers": 0)", "the camera grants no buffers"},
        {R"("mmap": false, "userPointers": true)", "the camera grants no buffers"},
        {R"("faults": [{"call": "VIDIOC_STREAMON", "errno": "EBUSY"}])",
         "the camera does not start: Device or resource busy"},
    };
    ScratchFolder const folder;
    for (auto const& [trouble, message] : cases) {
        ProgramRun const run =
            runIacq({"capture", "0", "-o", folder.path("a.raw")}, cameraWith(folder, trouble));
        EXPECT_EQ(run.status, 1) << trouble;
        EXPECT_EQ(run.errors, "iacq: start streaming: /dev/video0: " + message + "\n");
    }
    EXPECT_THAT(folder.names(), ElementsAre("camera.json"));
}

/// The command for a shell that captures small frames; the output is still to be named.
std::string captureSmall(std::string const& count)
{
    return std::string("timeout -k 10 10 ") + WITH_VIRTUAL_CAMERA + " " + IACQ_PROGRAM +
           " capture 0 --format YUYV --size 320x240 --output-format raw --count " + count + " -o ";
}

ProgramRun runShell(std::string const& script)
{
    return runProgram({"bash", "-o", "pipefail", "-c", script});
}

constexpr int endedBySigpipe = 128 + 13;
constexpr int endedByTimeout = 124;

TEST(CaptureRunTest, TellsOfAClosedOutputAndOfAFullDisk)
{
    ProgramRun run = runShell(captureSmall("1000") + "- >&-");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: cannot write standard output: Bad file descriptor\n");
    run = runShell(captureSmall("1000") + "/dev/full");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: cannot write /dev/full: No space left on device\n");
}

TEST(CaptureRunTest, EndsLikeOtherToolsWhenTheReaderHasGone)
{
    ScratchFolder const folder;
    ProgramRun run = runShell(captureSmall("1000") + "- | true");
    EXPECT_EQ(run.status, endedBySigpipe);
    EXPECT_EQ(run.errors, "");
    std::string const pipe = folder.path("pipe");
    run = runShell("mkfifo " + pipe + "; head -c 1 " + pipe + " & " + captureSmall("1000") + pipe);
    EXPECT_EQ(run.status, endedBySigpipe);
    EXPECT_EQ(run.errors, "");
}

TEST(CaptureRunTest, PutsEveryFrameIntoANamedPipe)
{
    ScratchFolder const folder;
    std::string const pipe = folder.path("pipe");
    ProgramRun const run = runShell("mkfifo " + pipe + "; cat " + pipe + " & " + captureSmall("5") +
                                    pipe + "; status=$?; wait; exit $status");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output.size(), 5u * 320 * 240 * 2);
    EXPECT_THAT(folder.names(), ElementsAre("pipe"));
}

// Of frames so large only seven may wait. Far more come before the reader begins to read.
TEST(CaptureRunTest, TellsHowManyFramesSlowWritingLost)
{
    ScratchFolder const folder;
    std::string const camera = folder.write("large.json", R"({"cameras": [{
        "formats": [{"pixelFormat": "YUYV", "description": "YUYV 4:2:2",
                     "sizes": [{"width": 4096, "height": 2160, "intervals": ["1/30"]}]}],
        "usb": {"port": "1-1"}}]})");
    ProgramRun const run =
        runShell("mkfifo " + folder.path("pipe") + "; (exec 3<" + folder.path("pipe") +
                 "; sleep 3; wc -c <&3) & timeout -k 10 50 " + WITH_VIRTUAL_CAMERA + " --config " +
                 camera + " " + IACQ_PROGRAM + " capture 0 --output-format raw --count 10 -o " +
                 folder.path("pipe") + "; status=$?; wait; exit $status");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.errors, StartsWith("iacq: frames lost: "));
    EXPECT_THAT(run.errors, EndsWith(" by slow writing\n"));
    EXPECT_EQ(run.output, std::to_string(10 * 4096 * 2160 * 2) + "\n");
}

TEST(CaptureRunTest, CanBeEndedWhileItWaitsForAReader)
{
    ScratchFolder const folder;
    ProgramRun const run = runShell("mkfifo " + folder.path("pipe") + "; timeout -k 5 3 " +
                                    captureSmall("5") + folder.path("pipe"));
    EXPECT_EQ(run.status, endedByTimeout) << run.errors;
    EXPECT_EQ(run.errors, "");
}

TEST(CaptureRunTest, TellsOfACameraThatOnlyReads)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"capture", "0", "-o", folder.path("a.png")}, {"--model", "read"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: start streaming: /dev/video0: the camera grants no buffers\n");
    EXPECT_TRUE(folder.names().empty());
}

TEST(CaptureRunTest, TellsOfAPathThatCannotBeWritten)
{
    ProgramRun const run = runIacq({"capture", "0", "-o", "/nonexistent/a.png"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "iacq: cannot write /nonexistent/a.png: No such file or directory\n");
}

} // namespace
