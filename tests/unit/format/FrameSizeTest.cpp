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

TEST(FramePeriod, KeepsTheTwoNumbersAsTheyAre)
{
    FramePeriod const period({2, 60});
    EXPECT_FALSE(period.isInvalid());
    EXPECT_EQ(2u, period.numerator());
    EXPECT_EQ(60u, period.denominator());
}

TEST(FrameSize, KeepsWidthAndHeight)
{
    auto const camera = aCamera().withFormat("YUYV").withSize(640, 480).install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    EXPECT_FALSE(size.isInvalid());
    EXPECT_EQ(640u, size.width());
    EXPECT_EQ(480u, size.height());
}

TEST(FrameSize, ListsTheIntervalsInTheDriversOrder)
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
    ASSERT_EQ(3, size.periodNumber());
    EXPECT_EQ(15u, size.period(0)->denominator());
    EXPECT_EQ(30u, size.period(1)->denominator());
    EXPECT_EQ(2u, size.period(2)->numerator());
    EXPECT_EQ(15u, size.period(2)->denominator());
}

TEST(FrameSize, AsksForTheIntervalsOfItsOwnFormatAndSize)
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
    ASSERT_EQ(1, size.periodNumber());
    EXPECT_EQ(7u, size.period(0)->denominator());
    auto const asked =
        camera.calls(VIDIOC_ENUM_FRAMEINTERVALS).front().argument<v4l2_frmivalenum>();
    EXPECT_EQ(0u, asked.index);
    EXPECT_EQ(yuyv, asked.pixel_format);
    EXPECT_EQ(320u, asked.width);
    EXPECT_EQ(240u, asked.height);
}

TEST(FrameSize, GivesTheInvalidPeriodOutsideItsList)
{
    auto const camera =
        aCamera().withFormat("YUYV").withSize(640, 480).withInterval(1, 30).install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    EXPECT_FALSE(size.period(0)->isInvalid());
    EXPECT_EQ(IFramePeriod::invalid(), size.period(-1));
    EXPECT_EQ(IFramePeriod::invalid(), size.period(size.periodNumber()));
}

TEST(FrameSize, MakesUpNoListFromARangeOfIntervals)
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
        EXPECT_EQ(0, size.periodNumber());
        EXPECT_EQ(IFramePeriod::invalid(), size.period(0));
        EXPECT_EQ(1u, camera.countOf(VIDIOC_ENUM_FRAMEINTERVALS));
    }
}

TEST(FrameSize, HasNoIntervalsWhenTheDriverListsNone)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 30)
                            .failing(VIDIOC_ENUM_FRAMEINTERVALS, EIO)
                            .install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    EXPECT_EQ(0, size.periodNumber());
    EXPECT_EQ(IFramePeriod::invalid(), size.period(0));
}

TEST(FrameSize, EndsTheListWhereTheDriverFails)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 30)
                            .withInterval(1, 15)
                            .failing(VIDIOC_ENUM_FRAMEINTERVALS, EIO, 2)
                            .install();
    OpenNode const node;
    EXPECT_EQ(1, FrameSize(node.fd(), yuyv, 640, 480).periodNumber());
}

TEST(FrameSize, LooksAtTheTypeOfTheFirstAnswerOnly)
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
    ASSERT_EQ(3, size.periodNumber());
    EXPECT_EQ(12u, size.period(2)->denominator());
}

TEST(FrameSize, EndsTheListOfADriverThatNeverDoes)
{
    V4l2Hook const hook([](int, unsigned long, void* argument) {
        static_cast<v4l2_frmivalenum*>(argument)->type = V4L2_FRMIVAL_TYPE_DISCRETE;
        return 0;
    });
    EXPECT_EQ(4096, FrameSize(3, yuyv, 640, 480).periodNumber());
}

TEST(FrameSize, FindsAnIntervalByBothItsNumbers)
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
    EXPECT_EQ(0, size.intervalIndex({1, 30}));
    EXPECT_EQ(1, size.intervalIndex({2, 15}));
    EXPECT_EQ(2, size.intervalIndex({1, 15}));
    EXPECT_EQ(-1, size.intervalIndex({2, 60}));
    EXPECT_EQ(-1, size.intervalIndex({2, 30}));
    EXPECT_EQ(-1, size.intervalIndex({0, 1}));
}

TEST(FrameSize, FindsTheFirstOfTwoEqualIntervals)
{
    auto const camera = aCamera()
                            .withFormat("YUYV")
                            .withSize(640, 480)
                            .withInterval(1, 15)
                            .withInterval(1, 30)
                            .withInterval(1, 30)
                            .install();
    OpenNode const node;
    EXPECT_EQ(1, FrameSize(node.fd(), yuyv, 640, 480).intervalIndex({1, 30}));
}

TEST(FrameSize, ReportsTheLineLengthOfTheFormatThatIsSetNow)
{
    auto const camera =
        aCamera().withFormat("YUYV").withSize(640, 480).withSize(320, 240).install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 320, 240);
    EXPECT_EQ(1280, size.bytesPerLine());
}

TEST(FrameSize, HasNoLineLengthWhenTheDeviceDoesNotAnswer)
{
    auto camera = aCamera().withFormat("YUYV").withSize(640, 480).install();
    OpenNode const node;
    FrameSize const size(node.fd(), yuyv, 640, 480);
    camera.failFrom(VIDIOC_G_FMT, EIO);
    EXPECT_EQ(-1, size.bytesPerLine());
}

} // namespace
