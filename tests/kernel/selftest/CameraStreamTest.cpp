// SPDX-License-Identifier: MIT
#include "EmulatedCameras.h"
#include "FramePainter.h"
#include "JpegFrames.h"
#include "RawCapture.h"
#include "Shell.h"

#include <cerrno>
#include <chrono>
#include <gtest/gtest.h>

using namespace KernelTest;
using UsbCamera::FramePainter;
using UsbCamera::JpegFrames;

namespace
{

/// The driver throws faulty frames away unless it is told not to.
void keepFaultyFrames(bool keep)
{
    CommandResult const result = runShell(std::string("echo ") + (keep ? "1" : "0") +
                                          " > /sys/module/uvcvideo/parameters/nodrop");
    ASSERT_EQ(result.status, 0) << result.output;
}

class KeptFrames
{
public:
    KeptFrames() { keepFaultyFrames(true); }
    ~KeptFrames() { keepFaultyFrames(false); }
};

TEST(CameraStreamTest, EveryFormatSizeAndIntervalIsListed)
{
    EmulatedCameras const cameras({"ordinary"});
    std::string const listed =
        runShell("v4l2-ctl --list-formats-ext -d " + cameras.videoNode()).output;
    for (char const* text :
         {"'YUYV'", "'MJPG'", "640x480", "160x120", "320x240", "1280x960", "1280x720",
          "(60.000 fps)", "(30.000 fps)", "(20.000 fps)", "(15.000 fps)", "(10.000 fps)"}) {
        EXPECT_NE(listed.find(text), std::string::npos) << text << listed;
    }
}

TEST(CameraStreamTest, ThreeHundredFramesArriveWithEveryByteAndNoneLost)
{
    EmulatedCameras const cameras({"ordinary"});
    FramePainter painter(640, 480);
    RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, 640, 480);
    auto const begin = std::chrono::steady_clock::now();
    for (std::uint32_t number = 0; number < 300; ++number) {
        RawCapture::Frame const frame = capture.next();
        ASSERT_EQ(frame.error, 0);
        ASSERT_EQ(frame.sequence, number);
        ASSERT_EQ(FramePainter::readNumber(frame.bytes.data(), 640), number);
        ASSERT_TRUE(frame.bytes == painter.paint(number)) << "frame " << number;
    }
    std::chrono::duration<double> const took = std::chrono::steady_clock::now() - begin;
    RecordProperty("framesPerSecond", std::to_string(300 / took.count()));
}

TEST(CameraStreamTest, EverySizeArrivesWhole)
{
    EmulatedCameras const cameras({"ordinary"});
    for (auto const& [width, height, rate] :
         {std::tuple{160U, 120U, 60U}, std::tuple{320U, 240U, 30U}, std::tuple{1280U, 960U, 10U}}) {
        FramePainter painter(width, height);
        RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, width, height, rate);
        for (std::uint32_t number = 0; number < 5; ++number) {
            EXPECT_TRUE(capture.next().bytes == painter.paint(number)) << width << "x" << height;
        }
    }
}

TEST(CameraStreamTest, JpegImagesCountTheirFrames)
{
    EmulatedCameras const cameras({"ordinary"});
    JpegFrames images(640, 480);
    RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_MJPEG, 640, 480);
    for (std::uint32_t number = 0; number < 20; ++number) {
        RawCapture::Frame const frame = capture.next();
        ASSERT_EQ(frame.error, 0);
        EXPECT_EQ(JpegFrames::readNumber(frame.bytes.data(), frame.bytes.size()), number);
        EXPECT_TRUE(frame.bytes == images.frame(number)) << "frame " << number;
    }
}

TEST(CameraStreamTest, EveryStartCountsFromZeroAgain)
{
    EmulatedCameras const cameras({"ordinary"});
    for (int round = 0; round < 3; ++round) {
        RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, 160, 120);
        for (std::uint32_t number = 0; number < 3; ++number) {
            EXPECT_EQ(FramePainter::readNumber(capture.next().bytes.data(), 160), number);
        }
    }
}

TEST(CameraStreamTest, FramesComeAtThePaceThatWasChosen)
{
    EmulatedCameras const cameras({"ordinary"});
    RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, 320, 240, 15);
    ASSERT_EQ(capture.next().error, 0);
    auto const begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 15; ++i) {
        ASSERT_EQ(capture.next().error, 0);
    }
    std::chrono::duration<double> const took = std::chrono::steady_clock::now() - begin;
    EXPECT_GT(took.count(), 0.9);
}

TEST(CameraStreamTest, FullAndSuperSpeedCamerasStreamToo)
{
    for (char const* speed : {"full", "super"}) {
        EmulatedCameras const cameras({std::string("ordinary,speed=") + speed});
        FramePainter painter(640, 480);
        RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, 640, 480);
        for (std::uint32_t number = 0; number < 30; ++number) {
            RawCapture::Frame const frame = capture.next();
            ASSERT_TRUE(frame.bytes == painter.paint(number)) << speed << " frame " << number;
        }
    }
}

TEST(CameraStreamTest, TwoCamerasStreamAtOnce)
{
    EmulatedCameras const cameras({"ordinary", "vendor-old"});
    RawCapture first(cameras.videoNode(1), V4L2_PIX_FMT_YUYV, 320, 240, 15);
    RawCapture second(cameras.videoNode(2), V4L2_PIX_FMT_YUYV, 320, 240, 15);
    for (std::uint32_t number = 0; number < 30; ++number) {
        EXPECT_EQ(FramePainter::readNumber(first.next().bytes.data(), 320), number);
        EXPECT_EQ(FramePainter::readNumber(second.next().bytes.data(), 320), number);
    }
}

TEST(CameraStreamTest, TheDriverDropsACorruptedFrame)
{
    EmulatedCameras const cameras({"ordinary"}, {"1 corrupt 2"});
    RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, 160, 120);
    for (std::uint32_t const number : {0U, 1U, 3U, 4U}) {
        RawCapture::Frame const frame = capture.next();
        EXPECT_EQ(FramePainter::readNumber(frame.bytes.data(), 160), number);
        EXPECT_EQ(frame.sequence, number);
    }
}

TEST(CameraStreamTest, FaultyFramesArriveMarkedWhenTheDriverKeepsThem)
{
    KeptFrames const kept;
    EmulatedCameras const cameras({"ordinary"}, {"1 corrupt 1", "1 cut 3 10000"});
    RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, 160, 120);
    for (std::uint32_t number = 0; number < 5; ++number) {
        RawCapture::Frame const frame = capture.next();
        EXPECT_EQ(FramePainter::readNumber(frame.bytes.data(), 160), number);
        EXPECT_EQ(frame.isCorrupted, number == 1 || number == 3);
        EXPECT_EQ(frame.bytes.size(), number == 3 ? 10000U : 38400U);
    }
}

TEST(CameraStreamTest, AHeldCameraSendsNothingUntilItIsReleased)
{
    EmulatedCameras const cameras({"ordinary"}, {"1 hold 2"});
    RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, 160, 120);
    EXPECT_EQ(capture.next().error, 0);
    EXPECT_EQ(capture.next().error, 0);
    EXPECT_EQ(capture.next(500).error, ETIMEDOUT);
    EXPECT_EQ(cameras.status()["held"], true);
    cameras.command("release");
    EXPECT_EQ(FramePainter::readNumber(capture.next().bytes.data(), 160), 2U);
}

TEST(CameraStreamTest, ACameraUnpluggedInAFrameIsGoneForTheReader)
{
    EmulatedCameras const cameras({"ordinary"}, {"1 unplug frame 3"});
    {
        RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, 160, 120);
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(capture.next().error, 0);
        }
        EXPECT_EQ(capture.next().error, ENODEV);
    }
    EXPECT_TRUE(cameras.waitUntilGone());
    cameras.plug();
    RawCapture capture(cameras.videoNode(), V4L2_PIX_FMT_YUYV, 160, 120);
    EXPECT_EQ(capture.next().error, 0);
}

} // namespace
