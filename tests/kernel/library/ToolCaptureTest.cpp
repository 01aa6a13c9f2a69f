// SPDX-License-Identifier: MIT
#include "FramePainter.h"
#include "JpegFrames.h"
#include "OrdinaryCamera.h"
#include "Tool.h"
#include "V4l2Ctl.h"

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::FramePainter;
using UsbCamera::JpegFrames;

namespace
{

/// The frame number that the blocks on top of a PPM picture show.
std::uint32_t numberInPicture(Bytes const& picture, std::string const& header, unsigned width)
{
    std::uint32_t number = 0;
    for (unsigned block = 0; block < 32; ++block) {
        std::size_t const pixel = header.size() + 3 * (block * width / 32 + width / 64);
        number = number << 1U | (picture.at(pixel) > 127 ? 1U : 0U);
    }
    return number;
}

class ToolCaptureTest : public OrdinaryCamera
{
protected:
    void SetUp() override { m_camera.reset(); }
};

TEST_F(ToolCaptureTest, AreTheCamerasFrames)
{
    CommandResult const result =
        runTool("capture 0 --format YUYV --size 320x240 --fps 15 --buffers 16 -n 4 "
                "-o /tmp/captured-%d.raw");
    ASSERT_EQ(result.status, 0) << result.output;
    FramePainter painter(320, 240);
    for (unsigned number = 0; number < 4; ++number) {
        Bytes const bytes = fileBytes("/tmp/captured-" + std::to_string(number + 1) + ".raw");
        EXPECT_TRUE(bytes == painter.paint(number)) << number << " has " << bytes.size();
    }
    // What it selected stays.
    std::string const text = v4l2Ctl(m_node, "--get-fmt-video --get-parm");
    EXPECT_NE(text.find("Width/Height      : 320/240"), std::string::npos) << text;
    EXPECT_NE(text.find("Frames per second: 15.000"), std::string::npos) << text;
}

TEST_F(ToolCaptureTest, AreTheCamerasJpegImages)
{
    CommandResult const result =
        runTool("capture 0 --format MJPG --size 320x240 --output-format raw -o /tmp/one.jpg");
    ASSERT_EQ(result.status, 0) << result.output;
    JpegFrames images(320, 240);
    EXPECT_TRUE(fileBytes("/tmp/one.jpg") == images.frame(0));
}

TEST_F(ToolCaptureTest, BecomePicturesWhateverTheFormat)
{
    std::string const header = "P6\n320 240\n255\n";
    for (char const* const format : {"YUYV", "MJPG", "RGB3", "YU12"}) {
        SCOPED_TRACE(format);
        CommandResult const result =
            runTool(std::string("capture 0 --size 320x240 --buffers 16 -n 2 -o /tmp/as-%d.ppm "
                                "--format ") +
                    format);
        ASSERT_EQ(result.status, 0) << result.output;
        for (unsigned const number : {0U, 1U}) {
            Bytes const picture = fileBytes("/tmp/as-" + std::to_string(number + 1) + ".ppm");
            ASSERT_EQ(picture.size(), header.size() + 320 * 240 * 3);
            EXPECT_EQ(header, std::string(picture.begin(), picture.begin() + header.size()));
            EXPECT_EQ(numberInPicture(picture, header, 320), number);
        }
    }
}

TEST_F(ToolCaptureTest, FailWhileAnotherProgramStreamsAndLeaveNoFile)
{
    CameraPointer const other = openListed(m_node);
    ASSERT_TRUE(other->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    Stream const stream(*other, 4);
    CommandResult const result = runTool("capture 0 -o /tmp/none.raw");
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_NE(result.output.find("held by "), std::string::npos) << result.output;
    EXPECT_EQ(runShell("test -e /tmp/none.raw").status, 1);
    EXPECT_FALSE(other->acquireFrame()->isInvalid());
}

} // namespace
