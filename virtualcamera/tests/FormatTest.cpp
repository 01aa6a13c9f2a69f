// SPDX-License-Identifier: MIT
#include "Client.h"

#include <gtest/gtest.h>

namespace
{

using namespace VirtualCamera;

v4l2_format formatOf(std::uint32_t pixelFormat, unsigned width, unsigned height)
{
    v4l2_format format{};
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    format.fmt.pix.pixelformat = pixelFormat;
    format.fmt.pix.width = width;
    format.fmt.pix.height = height;
    return format;
}

CameraBuilder camera()
{
    return aCamera()
        .withFormat("YUYV", "YUYV 4:2:2")
        .withSize(640, 480)
        .withInterval(1, 30)
        .withInterval(1, 15)
        .withSize(320, 240)
        .withInterval(1, 60)
        .withFormat("MJPG", "Motion-JPEG", V4L2_FMT_FLAG_COMPRESSED)
        .withSize(1280, 720)
        .withInterval(1, 10);
}

/// A format's size at this place, behind which there is no other.
v4l2_frmsizeenum lastSize(Client const& client, std::uint32_t format, unsigned index)
{
    v4l2_frmsizeenum behind{};
    behind.pixel_format = format;
    behind.index = index + 1;
    EXPECT_EQ(client.call(VIDIOC_ENUM_FRAMESIZES, behind), EINVAL);
    v4l2_frmsizeenum size{};
    size.pixel_format = format;
    size.index = index;
    EXPECT_EQ(client.call(VIDIOC_ENUM_FRAMESIZES, size), 0);
    return size;
}

TEST(FormatTest, EnumeratesFormatsSizesAndIntervals)
{
    auto const installed = camera().install();
    Client client;
    v4l2_fmtdesc description{};
    description.index = 1;
    description.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    ASSERT_EQ(client.call(VIDIOC_ENUM_FMT, description), 0);
    EXPECT_EQ(description.pixelformat, V4L2_PIX_FMT_MJPEG);
    EXPECT_STREQ(reinterpret_cast<char const*>(description.description), "Motion-JPEG");
    EXPECT_EQ(description.flags, static_cast<unsigned>(V4L2_FMT_FLAG_COMPRESSED));
    description.index = 2;
    EXPECT_EQ(client.call(VIDIOC_ENUM_FMT, description), EINVAL);
    v4l2_frmsizeenum const size = lastSize(client, V4L2_PIX_FMT_YUYV, 1);
    EXPECT_EQ(size.type, static_cast<unsigned>(V4L2_FRMSIZE_TYPE_DISCRETE));
    EXPECT_EQ(size.discrete.width, 320u);
    v4l2_frmivalenum interval{};
    interval.pixel_format = V4L2_PIX_FMT_YUYV;
    interval.width = 640;
    interval.height = 480;
    interval.index = 1;
    ASSERT_EQ(client.call(VIDIOC_ENUM_FRAMEINTERVALS, interval), 0);
    EXPECT_EQ(interval.discrete.denominator, 15u);
    interval.height = 481;
    EXPECT_EQ(client.call(VIDIOC_ENUM_FRAMEINTERVALS, interval), EINVAL);
}

TEST(FormatTest, EnumeratesRanges)
{
    auto const installed = aCamera()
                               .withFormat("GREY")
                               .withSteppedSizes({16, 640, 8, 16, 480, 4, {}})
                               .withSteppedIntervals({1, 60}, {1, 5}, {1, 60})
                               .withFormat("NV12")
                               .withContinuousSizes(32, 64, 32, 64)
                               .withContinuousIntervals({1, 30}, {1, 1})
                               .install();
    Client client;
    v4l2_frmsizeenum const size = lastSize(client, V4L2_PIX_FMT_GREY, 0);
    EXPECT_EQ(size.type, static_cast<unsigned>(V4L2_FRMSIZE_TYPE_STEPWISE));
    EXPECT_EQ(size.stepwise.step_width, 8u);
    v4l2_frmivalenum interval{};
    interval.pixel_format = V4L2_PIX_FMT_NV12;
    interval.width = interval.height = 40;
    ASSERT_EQ(client.call(VIDIOC_ENUM_FRAMEINTERVALS, interval), 0);
    EXPECT_EQ(interval.type, static_cast<unsigned>(V4L2_FRMIVAL_TYPE_CONTINUOUS));
    v4l2_format wanted = formatOf(V4L2_PIX_FMT_GREY, 103, 10);
    ASSERT_EQ(client.call(VIDIOC_TRY_FMT, wanted), 0);
    EXPECT_EQ(wanted.fmt.pix.width, 96u);
    EXPECT_EQ(wanted.fmt.pix.height, 16u);
}

TEST(FormatTest, TakesTheNearestSizeAndResetsTheInterval)
{
    auto const installed = camera().currentlyEvery(1, 15).install();
    Client client;
    v4l2_format wanted = formatOf(V4L2_PIX_FMT_YUYV, 330, 200);
    ASSERT_EQ(client.call(VIDIOC_TRY_FMT, wanted), 0);
    EXPECT_EQ(wanted.fmt.pix.width, 320u);
    v4l2_format current = formatOf(0, 0, 0);
    ASSERT_EQ(client.call(VIDIOC_G_FMT, current), 0);
    EXPECT_EQ(current.fmt.pix.width, 640u) << "trying changes nothing";
    ASSERT_EQ(client.call(VIDIOC_S_FMT, wanted), 0);
    ASSERT_EQ(client.call(VIDIOC_G_FMT, current), 0);
    EXPECT_EQ(current.fmt.pix.width, 320u);
    EXPECT_EQ(current.fmt.pix.bytesperline, 640u);
    EXPECT_EQ(current.fmt.pix.sizeimage, 320u * 240 * 2);
    v4l2_streamparm parameters{};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    ASSERT_EQ(client.call(VIDIOC_G_PARM, parameters), 0);
    EXPECT_EQ(parameters.parm.capture.timeperframe.denominator, 60u);
}

TEST(FormatTest, TakesThePresentFormatForAnUnknownOne)
{
    auto const installed = camera().install();
    Client client;
    v4l2_format wanted = formatOf(V4L2_PIX_FMT_RGB565, 640, 480);
    ASSERT_EQ(client.call(VIDIOC_S_FMT, wanted), 0);
    EXPECT_EQ(wanted.fmt.pix.pixelformat, V4L2_PIX_FMT_YUYV);
    wanted.type = V4L2_BUF_TYPE_VIDEO_OUTPUT;
    EXPECT_EQ(client.call(VIDIOC_S_FMT, wanted), EINVAL);
    EXPECT_EQ(client.call(VIDIOC_G_FMT, wanted), EINVAL);
}

TEST(FormatTest, TakesTheNearestInterval)
{
    auto const installed = camera().install();
    Client client;
    v4l2_streamparm parameters{};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    parameters.parm.capture.timeperframe = {1, 17};
    ASSERT_EQ(client.call(VIDIOC_S_PARM, parameters), 0);
    EXPECT_EQ(parameters.parm.capture.timeperframe.denominator, 15u);
    EXPECT_EQ(parameters.parm.capture.capability, static_cast<unsigned>(V4L2_CAP_TIMEPERFRAME));
    parameters.parm.capture.timeperframe = {0, 0};
    ASSERT_EQ(client.call(VIDIOC_S_PARM, parameters), 0);
    EXPECT_EQ(parameters.parm.capture.timeperframe.denominator, 30u);
}

TEST(FormatTest, CanStandOnASelectionThatIsNotOffered)
{
    auto installed = camera().currently("YUYV", 800, 600).currentlyEvery(2, 60).install();
    Client client;
    v4l2_format current = formatOf(0, 0, 0);
    ASSERT_EQ(client.call(VIDIOC_G_FMT, current), 0);
    EXPECT_EQ(current.fmt.pix.width, 800u);
    EXPECT_EQ(current.fmt.pix.sizeimage, 800u * 600 * 2);
    v4l2_streamparm parameters{};
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    ASSERT_EQ(client.call(VIDIOC_G_PARM, parameters), 0);
    EXPECT_EQ(parameters.parm.capture.timeperframe.numerator, 2u);
    installed.setCurrentFormat("XXXX", 10, 10);
    ASSERT_EQ(client.call(VIDIOC_G_FMT, current), 0);
    EXPECT_EQ(current.fmt.pix.pixelformat, pixelFormatByName("XXXX"));
}

TEST(FormatTest, ListsDuplicates)
{
    auto const installed = aCamera()
                               .withFormat("GREY")
                               .withSize(8, 8)
                               .withInterval(1, 30)
                               .withInterval(1, 30)
                               .withSize(8, 8)
                               .withFormat("GREY")
                               .install();
    Client client;
    v4l2_fmtdesc description{};
    description.index = 1;
    description.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    EXPECT_EQ(client.call(VIDIOC_ENUM_FMT, description), 0);
    v4l2_frmsizeenum size{};
    size.pixel_format = V4L2_PIX_FMT_GREY;
    size.index = 1;
    EXPECT_EQ(client.call(VIDIOC_ENUM_FRAMESIZES, size), 0);
    EXPECT_EQ(size.discrete.width, 8u);
}

TEST(FormatTest, ReportsTheScriptedImageLayout)
{
    auto const installed =
        aCamera().withFormat("GREY").withSize(8, 8).withImageLayout(16, 500).install();
    Client client;
    v4l2_format current = formatOf(0, 0, 0);
    ASSERT_EQ(client.call(VIDIOC_G_FMT, current), 0);
    EXPECT_EQ(current.fmt.pix.bytesperline, 16u);
    EXPECT_EQ(current.fmt.pix.sizeimage, 500u);
}

TEST(FormatTest, HasNoFormatsUnlessScripted)
{
    auto const installed = aCamera().install();
    Client client;
    v4l2_fmtdesc description{};
    description.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    EXPECT_EQ(client.call(VIDIOC_ENUM_FMT, description), EINVAL);
    v4l2_format wanted = formatOf(V4L2_PIX_FMT_YUYV, 640, 480);
    EXPECT_EQ(client.call(VIDIOC_TRY_FMT, wanted), EINVAL);
}

} // namespace
