// SPDX-License-Identifier: MIT
// What ImageFormat::setToDevice sends to the device.
#include "format/ImageFormat.h"

#include "OpenNode.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aCamera;
using VirtualCamera::Call;

v4l2_fmtdesc const mjpg = [] {
    v4l2_fmtdesc description{};
    description.pixelformat = V4L2_PIX_FMT_MJPEG;
    return description;
}();

class ImageFormatSelectionTest : public testing::Test
{
protected:
    ImageFormatSelectionTest() { m_camera.clearLog(); }

    /// Two formats; the second with a size that has a list of intervals and one that has not.
    VirtualCamera::InstalledCamera m_camera = aCamera()
                                                  .withFormat("YUYV")
                                                  .withSize(160, 120)
                                                  .withFormat("MJPG")
                                                  .withSize(640, 480)
                                                  .withInterval(1, 30)
                                                  .withInterval(1, 15)
                                                  .withSize(320, 240)
                                                  .install();
    OpenNode const m_node;
    ImageFormat const m_format{m_node.fd(), mjpg};
};

TEST_F(ImageFormatSelectionTest, TriesAndSetsTheFormatThenTheInterval)
{
    m_camera.clearLog();
    EXPECT_TRUE(m_format.setToDevice(0, 1));
    auto const calls = m_camera.calls();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(VirtualCamera::CallId(VIDIOC_TRY_FMT), calls[0].call);
    EXPECT_EQ(VirtualCamera::CallId(VIDIOC_S_FMT), calls[1].call);
    EXPECT_EQ(VirtualCamera::CallId(VIDIOC_G_PARM), calls[2].call);
    EXPECT_EQ(VirtualCamera::CallId(VIDIOC_S_PARM), calls[3].call);
    auto const set = calls[3].argument<v4l2_streamparm>();
    EXPECT_EQ(set.parm.capture.timeperframe.numerator, 1u);
    EXPECT_EQ(set.parm.capture.timeperframe.denominator, 15u);
    EXPECT_EQ(set.type, static_cast<__u32>(V4L2_BUF_TYPE_VIDEO_CAPTURE));
}

TEST_F(ImageFormatSelectionTest, LeavesAllOtherMembersOfTheFormatZero)
{
    m_camera.clearLog();
    EXPECT_TRUE(m_format.setToDevice(1, 0));
    auto const sent = m_camera.calls(VIDIOC_TRY_FMT).front().argument<v4l2_format>();
    v4l2_format expected{};
    expected.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    expected.fmt.pix.width = 320;
    expected.fmt.pix.height = 240;
    expected.fmt.pix.pixelformat = V4L2_PIX_FMT_MJPEG;
    EXPECT_EQ(std::memcmp(&expected, &sent, sizeof sent), 0);
}

TEST_F(ImageFormatSelectionTest, SetsTheFormatAsTheDriverLeftItAfterTrying)
{
    m_camera.clearLog();
    EXPECT_TRUE(m_format.setToDevice(0, 0));
    auto const tried = m_camera.calls(VIDIOC_TRY_FMT).front().answer<v4l2_format>();
    auto const set = m_camera.calls(VIDIOC_S_FMT).front().argument<v4l2_format>();
    EXPECT_NE(tried.fmt.pix.sizeimage, 0u);
    EXPECT_EQ(std::memcmp(&tried, &set, sizeof set), 0);
}

TEST_F(ImageFormatSelectionTest, LeavesTheFrameRateAloneForASizeWithoutIntervals)
{
    m_camera.clearLog();
    EXPECT_TRUE(m_format.setToDevice(1, 7));
    EXPECT_EQ(m_camera.countOf(VIDIOC_S_FMT), 1u);
    EXPECT_EQ(m_camera.countOf(VIDIOC_G_PARM), 1u);
    EXPECT_EQ(m_camera.countOf(VIDIOC_S_PARM), 0u);
}

TEST_F(ImageFormatSelectionTest, RefusesASizePositionThatIsTooLargeWithoutAskingTheDevice)
{
    m_camera.clearLog();
    EXPECT_FALSE(m_format.setToDevice(m_format.sizeNumber(), 0));
    EXPECT_FALSE(m_format.setToDevice(2147483647, 0));
    EXPECT_EQ(m_camera.countOf(Call::Ioctl), 0u);
}

TEST_F(ImageFormatSelectionTest, ThrowsForANegativeSizePosition)
{
    m_camera.clearLog();
    EXPECT_THROW(m_format.setToDevice(-1, 0), std::out_of_range);
    EXPECT_EQ(m_camera.countOf(Call::Ioctl), 0u);
}

TEST_F(ImageFormatSelectionTest, SendsTheInvalidPeriodForAnIntervalPositionOutsideTheList)
{
    for (int const position : {-1, 2, 2147483647}) {
        m_camera.clearLog();
        EXPECT_TRUE(m_format.setToDevice(0, position));
        auto const set = m_camera.calls(VIDIOC_S_PARM).front().argument<v4l2_streamparm>();
        EXPECT_EQ(set.parm.capture.timeperframe.numerator, 0u);
        EXPECT_EQ(set.parm.capture.timeperframe.denominator, 1u);
    }
}

TEST_F(ImageFormatSelectionTest, FailsWithAnyCallThatFails)
{
    struct
    {
        unsigned long request;
        unsigned int callsBefore;
    } const cases[] = {
        {VIDIOC_TRY_FMT, 0}, {VIDIOC_S_FMT, 1}, {VIDIOC_G_PARM, 2}, {VIDIOC_S_PARM, 3}};
    for (auto const& one : cases) {
        m_camera.clearLog();
        m_camera.fail(one.request, EIO);
        EXPECT_FALSE(m_format.setToDevice(0, 0)) << VirtualCamera::callName(one.request);
        EXPECT_EQ(m_camera.countOf(Call::Ioctl), one.callsBefore + 1);
        m_camera.stopFailing();
    }
}

TEST_F(ImageFormatSelectionTest, KeepsTheNewFormatWhenOnlyTheIntervalIsRefused)
{
    m_camera.fail(VIDIOC_S_PARM, EINVAL);
    EXPECT_FALSE(m_format.setToDevice(0, 1));
    v4l2_format present{};
    present.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    ASSERT_EQ(v4l2_ioctl(m_node.fd(), VIDIOC_G_FMT, &present), 0);
    EXPECT_EQ(present.fmt.pix.pixelformat, static_cast<__u32>(V4L2_PIX_FMT_MJPEG));
    EXPECT_EQ(present.fmt.pix.width, 640u);
}

TEST_F(ImageFormatSelectionTest, TakesSizeAndIntervalByValueToo)
{
    m_camera.clearLog();
    EXPECT_TRUE(m_format.setToDevice(640, 480, 1, 15));
    auto const set = m_camera.calls(VIDIOC_S_PARM).front().argument<v4l2_streamparm>();
    EXPECT_EQ(set.parm.capture.timeperframe.denominator, 15u);
}

TEST_F(ImageFormatSelectionTest, RefusesValuesThatAreNotInTheLists)
{
    m_camera.clearLog();
    EXPECT_FALSE(m_format.setToDevice(640, 481, 1, 30));
    EXPECT_FALSE(m_format.setToDevice(160, 120, 1, 30)) << "a size of another format";
    EXPECT_FALSE(m_format.setToDevice(640, 480, 2, 60)) << "1/30, but not in these numbers";
    EXPECT_FALSE(m_format.setToDevice(640, 480, 1, 29));
    EXPECT_FALSE(m_format.setToDevice(-640, 480, 1, 30));
    EXPECT_FALSE(m_format.setToDevice(640, 480, -1, -30));
    EXPECT_EQ(m_camera.countOf(Call::Ioctl), 0u);
}

TEST_F(ImageFormatSelectionTest, CannotSetASizeWithoutIntervalsByValue)
{
    m_camera.clearLog();
    EXPECT_FALSE(m_format.setToDevice(320, 240, 1, 30));
    EXPECT_FALSE(m_format.setToDevice(320, 240, 0, 1));
    EXPECT_EQ(m_camera.countOf(Call::Ioctl), 0u);
    EXPECT_TRUE(m_format.setToDevice(1, 0));
}

} // namespace
