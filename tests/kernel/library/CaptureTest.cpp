// SPDX-License-Identifier: MIT
#include "FramePainter.h"
#include "JpegFrames.h"
#include "OrdinaryCamera.h"
#include "Tool.h"

#include <fstream>
#include <iterator>

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::FramePainter;
using UsbCamera::JpegFrames;

namespace
{

/// The driver drops frames while no buffer is free: with half a second's worth of them none is lost
/// to a busy machine.
constexpr int manyBuffers = 16;

Bytes fileBytes(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

/// Frames from 0 on have to be the painter's, without a gap, stamped one after the other.
void expectFrames(IBlockingCamera& camera, unsigned width, unsigned height, unsigned count)
{
    FramePainter painter(width, height);
    const double begin = monotonicSeconds();
    const Stream stream(camera, manyBuffers);
    double last = begin;
    for (unsigned number = 0; number < count; ++number) {
        IFrame* const frame = camera.acquireFrame();
        ASSERT_FALSE(frame->isInvalid()) << number;
        ASSERT_EQ(frame->counter(), number);
        EXPECT_FALSE(frame->isCorrupted());
        EXPECT_EQ(frame->bytesUsed(), width * height * 2);
        ASSERT_TRUE(bytesOf(*frame) == painter.paint(number)) << number;
        EXPECT_GT(stampSeconds(*frame), last);
        last = stampSeconds(*frame);
        EXPECT_EQ(camera.releaseFrame(frame), 0);
    }
    EXPECT_LE(last, monotonicSeconds());
}

} // namespace

using Captures = OrdinaryCamera;

TEST_F(Captures, ThreeHundredFramesWithEveryByteAndNoneLost)
{
    ASSERT_TRUE(camera->setCurrentImageFormat("YUYV", 640, 480, 1, 30));
    expectFrames(*camera, 640, 480, 300);
}

TEST_F(Captures, EverySizeAndBeginAnewWithEachStart)
{
    for (const auto& [width, height, rate] :
         {std::tuple{160, 120, 60}, {320, 240, 30}, {1280, 960, 10}, {160, 120, 30}}) {
        SCOPED_TRACE(width);
        ASSERT_TRUE(camera->setCurrentImageFormat("YUYV", width, height, 1, rate));
        expectFrames(*camera, static_cast<unsigned>(width), static_cast<unsigned>(height), 5);
    }
}

TEST_F(Captures, JpegImagesAsTheCameraMadeThem)
{
    ASSERT_TRUE(camera->setCurrentImageFormat("MJPG", 640, 480, 1, 30));
    JpegFrames images(640, 480);
    const Stream stream(*camera, manyBuffers);
    for (unsigned number = 0; number < 20; ++number) {
        IFrame* const frame = camera->acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(JpegFrames::readNumber(frame->bytePtr(), frame->bytesUsed()), number);
        EXPECT_TRUE(bytesOf(*frame) == images.frame(number)) << number;
        EXPECT_EQ(camera->releaseFrame(frame), 0);
    }
}

TEST_F(Captures, NothingFromACameraThatHoldsItsFramesBack)
{
    ASSERT_TRUE(camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    cameras.command("hold 1");
    const Stream stream(*camera, 4);
    EXPECT_FALSE(camera->acquireFrame()->isInvalid());
    const double begin = monotonicSeconds();
    EXPECT_TRUE(camera->acquireFrame()->isInvalid());
    EXPECT_GE(monotonicSeconds() - begin, 1.99);
    cameras.command("release");
    const IFrame* const frame = camera->acquireFrame();
    EXPECT_EQ(FramePainter::readNumber(frame->bytePtr(), 160), 1U);
}

TEST_F(Captures, TheSameFramesByTheTool)
{
    camera.reset();
    const std::string folder = "/tmp/captured-";
    const CommandResult result = runTool("capture 0 --format YUYV --size 320x240 --fps 15 "
                                         "--buffers 16 -n 4 --output-format raw -o " +
                                         folder + "%d.raw");
    ASSERT_EQ(result.status, 0) << result.output;
    FramePainter painter(320, 240);
    for (unsigned number = 0; number < 4; ++number) {
        const Bytes bytes = fileBytes(folder + std::to_string(number + 1) + ".raw");
        EXPECT_TRUE(bytes == painter.paint(number)) << number << " has " << bytes.size();
    }
    const CommandResult image =
        runTool("capture 0 --format MJPG --size 320x240 --output-format raw -o /tmp/one.jpg");
    ASSERT_EQ(image.status, 0) << image.output;
    JpegFrames images(320, 240);
    EXPECT_TRUE(fileBytes("/tmp/one.jpg") == images.frame(0));
}
