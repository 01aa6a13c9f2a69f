// SPDX-License-Identifier: MIT
#include "control/CameraControlStringMenu.h"
#include "CameraWithControls.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <stdexcept>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int id = V4L2_CID_EXPOSURE_AUTO;
constexpr unsigned int noItem = 0xFFFFFFFF;

ControlScript menuWithHoles()
{
    return menuControl(id, "Auto Exposure").withItem(0, "Auto").withItem(3, "Aperture Priority");
}

v4l2_queryctrl bounds(int minimum, int maximum)
{
    v4l2_queryctrl record{};
    record.id = id;
    record.minimum = minimum;
    record.maximum = maximum;
    return record;
}

TEST(CameraControlStringMenuTest, ClosesTheHolesOfTheDriversMenu)
{
    CameraWithControls opened({menuWithHoles()});
    auto& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(menu.count(), 2);
    EXPECT_STREQ(menu.string(0), "Auto");
    EXPECT_STREQ(menu.string(1), "Aperture Priority");
    EXPECT_TRUE(menu.setCurrentIndex(1));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 3);
    opened.node.setControlValue(id, 3);
    EXPECT_EQ(menu.currentIndex(), 1);
    EXPECT_STREQ(menu.currentString(), "Aperture Priority");
}

TEST(CameraControlStringMenuTest, TransfersPlainlyAndNeverFromMemory)
{
    CameraWithControls opened({menuWithHoles()});
    auto& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(menu.currentIndex(), 0);
    opened.node.setControlValue(id, 3);
    EXPECT_EQ(menu.currentIndex(), 1);
    EXPECT_TRUE(menu.setCurrentIndex(0));
    EXPECT_EQ(opened.node.countOf(VIDIOC_G_CTRL), 2u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 1u);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 3u);
}

TEST(CameraControlStringMenuTest, ValueInAHoleHasNoPosition)
{
    CameraWithControls opened({menuWithHoles()});
    opened.node.setControlValue(id, 1);
    auto const& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(menu.currentIndex(), -1);
    EXPECT_THROW(menu.currentString(), std::out_of_range);
}

TEST(CameraControlStringMenuTest, PositionsOutsideTheListThrow)
{
    CameraWithControls const opened({menuWithHoles()});
    auto const& menu = opened.as<ICameraControlStringMenu>(id);
    for (int const position : {2, -1, INT_MAX, INT_MIN}) {
        EXPECT_THROW(menu.string(position), std::out_of_range) << position;
    }
}

TEST(CameraControlStringMenuTest, PositionOutsideTheListIsSentAsMinusOne)
{
    CameraWithControls const opened({menuWithHoles()});
    auto& menu = opened.as<ICameraControlStringMenu>(id);
    for (int const position : {5, 2, -1, INT_MIN}) {
        EXPECT_FALSE(menu.setCurrentIndex(position));
        auto const sent = opened.node.calls().back().argument<v4l2_control>();
        EXPECT_EQ(static_cast<unsigned int>(sent.value), noItem) << position;
    }
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 4u);
}

TEST(CameraControlStringMenuTest, DefaultIsAPositionToo)
{
    CameraWithControls const opened({menuWithHoles().byDefault(3)});
    auto const& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(menu.defaultIndex(), 1);
    EXPECT_STREQ(menu.defaultString(), "Aperture Priority");
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
}

TEST(CameraControlStringMenuTest, DefaultInAHoleHasNoPosition)
{
    CameraWithControls const opened({menuWithHoles().byDefault(2)});
    auto const& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(menu.defaultIndex(), -1);
    EXPECT_THROW(menu.defaultString(), std::out_of_range);
}

TEST(CameraControlStringMenuTest, FailedReadCountsAsItemZero)
{
    CameraWithControls const opened({menuWithHoles().currently(3).refusingReads(EIO)});
    EXPECT_EQ(opened.as<ICameraControlStringMenu>(id).currentIndex(), 0);
}

TEST(CameraControlStringMenuTest, FailedReadHasNoPositionWhereItemZeroIsAHole)
{
    CameraWithControls const opened({menuControl(id, "Auto Exposure")
                                         .withItem(1, "Manual")
                                         .withItem(3, "Aperture Priority")
                                         .byDefault(3)
                                         .refusingReads(EIO)});
    auto const& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(menu.currentIndex(), -1);
    EXPECT_THROW(menu.currentString(), std::out_of_range);
}

TEST(CameraControlStringMenuTest, RefusedSelectionIsFalse)
{
    CameraWithControls const opened({menuWithHoles().refusingWrites(EIO)});
    EXPECT_FALSE(opened.as<ICameraControlStringMenu>(id).setCurrentIndex(1));
}

TEST(CameraControlStringMenuTest, WriteOnlyHasNoPositionAndIsNotRead)
{
    CameraWithControls const opened({menuWithHoles().withFlags(V4L2_CTRL_FLAG_WRITE_ONLY)});
    auto const& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(menu.currentIndex(), -1);
    EXPECT_THROW(menu.currentString(), std::out_of_range);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
}

TEST(CameraControlStringMenuTest, EachNumberBetweenTheBoundsIsAskedForOnce)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(0, 4));
    std::vector<CallRecord> const calls = opened.node.calls();
    ASSERT_EQ(calls.size(), 5u);
    for (unsigned int index = 0; index < calls.size(); ++index) {
        EXPECT_EQ(CallId(VIDIOC_QUERYMENU), calls[index].call);
        v4l2_querymenu wanted{};
        wanted.id = id;
        wanted.index = index;
        auto const sent = calls[index].argument<v4l2_querymenu>();
        EXPECT_EQ(std::memcmp(&wanted, &sent, sizeof wanted), 0) << index;
    }
    EXPECT_EQ(menu.count(), 2);
}

TEST(CameraControlStringMenuTest, BoundsInTheWrongOrderMakeAnEmptyMenu)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(4, 3));
    EXPECT_EQ(menu.count(), 0);
    EXPECT_EQ(menu.defaultIndex(), -1);
    EXPECT_THROW(menu.string(0), std::out_of_range);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
    EXPECT_FALSE(menu.setCurrentIndex(0));
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 1u);
}

TEST(CameraControlStringMenuTest, ProbingEndsAtTheLargestNumber)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(INT_MAX - 1, INT_MAX));
    EXPECT_EQ(opened.node.countOf(VIDIOC_QUERYMENU), 2u);
    EXPECT_EQ(menu.count(), 0);
}

TEST(CameraControlStringMenuTest, BoundsAreSigned)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(-2, 0));
    EXPECT_EQ(opened.node.countOf(VIDIOC_QUERYMENU), 3u);
    EXPECT_EQ(menu.count(), 1);
}

TEST(CameraControlStringMenuTest, ItemsAreAskedForOnceInALifetime)
{
    CameraWithControls const opened({menuWithHoles()});
    auto& menu = opened.as<ICameraControlStringMenu>(id);
    menu.updateState();
    menu.currentString();
    menu.setCurrentIndex(1);
    EXPECT_EQ(opened.node.countOf(VIDIOC_QUERYMENU), 0u);
}

TEST(CameraControlStringMenuTest, InitialisingAnewForgetsTheOldItems)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(0, 3));
    menu.init(bounds(3, 3));
    EXPECT_EQ(menu.count(), 1);
    EXPECT_STREQ(menu.string(0), "Aperture Priority");
    EXPECT_EQ(menu.directIndexMapping(0), 3u);
}

TEST(CameraControlStringMenuTest, MapsPositionsAndValuesBothWays)
{
    CameraWithControls const opened({menuWithHoles()});
    auto const& menu = dynamic_cast<CameraControlBaseMenu const&>(opened.control(id));
    EXPECT_EQ(menu.directIndexMapping(0), 0u);
    EXPECT_EQ(menu.directIndexMapping(1), 3u);
    EXPECT_EQ(menu.directIndexMapping(2), noItem);
    EXPECT_EQ(menu.directIndexMapping(-1), noItem);
    EXPECT_EQ(menu.reverseIndexMapping(0), 0);
    EXPECT_EQ(menu.reverseIndexMapping(3), 1);
    EXPECT_EQ(menu.reverseIndexMapping(1), -1);
    EXPECT_EQ(menu.reverseIndexMapping(noItem), -1);
}

} // namespace
