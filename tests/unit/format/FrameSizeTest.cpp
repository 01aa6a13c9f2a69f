// SPDX-License-Identifier: MIT
#include "format/FrameSize.h"

#include "OpenNode.h"
#include "V4l2Hook.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::aCamera;

constexpr unsigned int yuyv = V4L2_PIX_FMT_YUYV;

TEST(FrameSizeTest, KeepsTheTwoNumbersOfAnIntervalAsTheyAre)
{
    FramePeriod const period({2, 60});
    EXPECT_FALSE(period.isInvalid());
    EXPECT_EQ(period.numerator(), 2u);
    EXPECT_EQ(period.denominator(), 60u);
}

TEST(FrameSizeTest, KeepsWidthAndHeight)
{
    auto const camera = aCamera().withFormat("YUYV").withSize(640, 480).install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    EXPECT_FALSE(size.isInvalid());
    EXPECT_EQ(size.width(), 640u);
    EXPECT_EQ(size.height(), 480u);
}

TEST(FrameSizeTest, ListsTheIntervalsInTheDriversOrder)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 15)
                            .withInterval(1, 30)
                            .withInterval(2, 15)
                            .install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    ASSERT_EQ(size.periodNumber(), 3);
    EXPECT_EQ(size.period(0)->denominator(), 15u);
    EXPECT_EQ(size.period(1)->denominator(), 30u);
    EXPECT_EQ(size.period(2)->numerator(), 2u);
    EXPECT_EQ(size.period(2)->denominator(), 15u);
}

TEST(FrameSizeTest, AsksForTheIntervalsOfItsOwnFormatAndSize)
{
    auto const camera = aCamera()
                            .withFormat("MJPG")
                            .withSize(640, 480)
                            .withInterval(1, 5)
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 6)
                            .withSize(320, 240)
                            .withInterval(1, 7)
                            .install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 320, 240);
    ASSERT_EQ(size.periodNumber(), 1);
    EXPECT_EQ(size.period(0)->denominator(), 7u);
    auto const asked =
        camera.calls(VIDIOC_ENUM_FRAMEINTERVALS).front().argument<v4l2_frmivalenum>();
    EXPECT_EQ(asked.index, 0u);
    EXPECT_EQ(yuyv, asked.pixel_format);
    EXPECT_EQ(asked.width, 320u);
    EXPECT_EQ(asked.height, 240u);
}

TEST(FrameSizeTest, GivesTheInvalidPeriodOutsideItsList)
{
    auto const camera =
        aCamera().withFormat("YUYV").withSize(640, 480).withInterval(1, 30).install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    EXPECT_FALSE(size.period(0)->isInvalid());
    EXPECT_EQ(IFramePeriod::invalid(), size.period(-1));
    EXPECT_EQ(IFramePeriod::invalid(), size.period(size.periodNumber()));
}

TEST(FrameSizeTest, MakesUpNoListFromARangeOfIntervals)
{
    struct
    {
        char const* node;
        bool stepwise;
    } const cases[] = {{"/dev/video0", true}, {"/dev/video1", false}};
    for (auto const& one : cases) {
        auto builder = aCamera(one.node).withFormat("YUYV").withSize(640, 480);
        if (one.stepwise) {
            builder.withSteppedIntervals({1, 60}, {1, 1}, {1, 60});
        } else {
            builder.withContinuousIntervals({1, 60}, {1, 1});
        }
        auto const camera = builder.install();
        OpenNode const node(one.node);
        FrameSize const size(node.fd(), yuyv, 640, 480);
        EXPECT_EQ(size.periodNumber(), 0);
        EXPECT_EQ(IFramePeriod::invalid(), size.period(0));
        EXPECT_EQ(camera.countOf(VIDIOC_ENUM_FRAMEINTERVALS), 1u);
    }
}

TEST(FrameSizeTest, HasNoIntervalsWhenTheDriverListsNone)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 30)
                            .failing(VIDIOC_ENUM_FRAMEINTERVALS, EIO)
                            .install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    EXPECT_EQ(size.periodNumber(), 0);
    EXPECT_EQ(IFramePeriod::invalid(), size.period(0));
}

TEST(FrameSizeTest, EndsTheListWhereTheDriverFails)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 30)
                            .withInterval(1, 15)
                            .failing(VIDIOC_ENUM_FRAMEINTERVALS, EIO, 2)
                            .install();
    OpenNode const node;
    EXPECT_EQ(FrameSize(node.fd(), yuyv, 640, 480).periodNumber(), 1);
}

TEST(FrameSizeTest, LooksAtTheTypeOfTheFirstAnswerOnly)
{
    V4l2Hook const hook([](int, unsigned long, void* argument) {
        auto& interval = *static_cast<v4l2_frmivalenum*>(argument);
        if (interval.index == 3) {
            errno = EINVAL;
            return -1;
        }
        interval.type =
            interval.index == 0 ? V4L2_FRMIVAL_TYPE_DISCRETE : V4L2_FRMIVAL_TYPE_STEPWISE;
        interval.discrete = {1, 10 + interval.index};
        return 0;
    });
    FrameSize const size(3, yuyv, 640, 480);
    ASSERT_EQ(size.periodNumber(), 3);
    EXPECT_EQ(size.period(2)->denominator(), 12u);
}

TEST(FrameSizeTest, EndsTheListOfADriverThatNeverDoes)
{
    V4l2Hook const hook([](int, unsigned long, void* argument) {
        static_cast<v4l2_frmivalenum*>(argument)->type = V4L2_FRMIVAL_TYPE_DISCRETE;
        return 0;
    });
    EXPECT_EQ(FrameSize(3, yuyv, 640, 480).periodNumber(), 4096);
}

TEST(FrameSizeTest, FindsAnIntervalByBothItsNumbers)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 30)
                            .withInterval(2, 15)
                            .withInterval(1, 15)
                            .install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    EXPECT_EQ(size.intervalIndex({1, 30}), 0);
    EXPECT_EQ(size.intervalIndex({2, 15}), 1);
    EXPECT_EQ(size.intervalIndex({1, 15}), 2);
    EXPECT_EQ(size.intervalIndex({2, 60}), -1);
    EXPECT_EQ(size.intervalIndex({2, 30}), -1);
    EXPECT_EQ(size.intervalIndex({0, 1}), -1);
}

TEST(FrameSizeTest, FindsTheFirstOfTwoEqualIntervals)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 15)
                            .withInterval(1, 30)
                            .withInterval(1, 30)
                            .install();
    OpenNode const node;
    EXPECT_EQ(FrameSize(node.fd(), yuyv, 640, 480).intervalIndex({1, 30}), 1);
}

TEST(FrameSizeTest, ReportsTheLineLengthOfTheFormatThatIsSetNow)
{
    auto const camera =
        aCamera().withFormat("YUYV").withSize(640, 480).withSize(320, 240).install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 320, 240);
    EXPECT_EQ(size.bytesPerLine(), 1280);
}

TEST(FrameSizeTest, HasNoLineLengthWhenTheDeviceDoesNotAnswer)
{
    auto camera = aCamera().withFormat("YUYV").withSize(640, 480).install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    camera.failFrom(VIDIOC_G_FMT, EIO);
    EXPECT_EQ(size.bytesPerLine(), -1);
}

} // namespace
