// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "control/CameraControlInt64Menu.h"
#include "control/CameraControlStringMenu.h"

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

ControlScript integerMenu()
{
    return integerMenuControl(id, "Exposure, Bias")
        .withItem(0, std::int64_t{-1000})
        .withItem(1, std::int64_t{0})
        .withItem(2, std::int64_t{1000});
}

v4l2_queryctrl bounds(int minimum, int maximum)
{
    v4l2_queryctrl record{};
    record.id = id;
    record.minimum = minimum;
    record.maximum = maximum;
    return record;
}

} // namespace

TEST(CameraControlStringMenuTest, ClosesTheHolesOfTheDriversMenu)
{
    CameraWithControls opened({menuWithHoles()});
    auto& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(2, menu.count());
    EXPECT_STREQ("Auto", menu.string(0));
    EXPECT_STREQ("Aperture Priority", menu.string(1));
    EXPECT_TRUE(menu.setCurrentIndex(1));
    EXPECT_EQ(3, opened.node.lastControlValueSent(id));
    opened.node.setControlValue(id, 3);
    EXPECT_EQ(1, menu.currentIndex());
    EXPECT_STREQ("Aperture Priority", menu.currentString());
}

TEST(CameraControlStringMenuTest, TransfersPlainlyAndNeverFromMemory)
{
    CameraWithControls opened({menuWithHoles()});
    auto& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(0, menu.currentIndex());
    opened.node.setControlValue(id, 3);
    EXPECT_EQ(1, menu.currentIndex());
    EXPECT_TRUE(menu.setCurrentIndex(0));
    EXPECT_EQ(2u, opened.node.countOf(VIDIOC_G_CTRL));
    EXPECT_EQ(1u, opened.node.countOf(VIDIOC_S_CTRL));
    EXPECT_EQ(3u, opened.node.countOf(Call::Ioctl));
}

TEST(CameraControlStringMenuTest, ValueInAHoleHasNoPosition)
{
    CameraWithControls opened({menuWithHoles()});
    opened.node.setControlValue(id, 1);
    auto const& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(-1, menu.currentIndex());
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
        EXPECT_EQ(noItem, static_cast<unsigned int>(sent.value)) << position;
    }
    EXPECT_EQ(4u, opened.node.countOf(VIDIOC_S_CTRL));
}

TEST(CameraControlStringMenuTest, DefaultIsAPositionToo)
{
    CameraWithControls const opened({menuWithHoles().byDefault(3)});
    auto const& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(1, menu.defaultIndex());
    EXPECT_STREQ("Aperture Priority", menu.defaultString());
    EXPECT_EQ(0u, opened.node.countOf(Call::Ioctl));
}

TEST(CameraControlStringMenuTest, DefaultInAHoleHasNoPosition)
{
    CameraWithControls const opened({menuWithHoles().byDefault(2)});
    auto const& menu = opened.as<ICameraControlStringMenu>(id);
    EXPECT_EQ(-1, menu.defaultIndex());
    EXPECT_THROW(menu.defaultString(), std::out_of_range);
}

TEST(CameraControlStringMenuTest, FailedReadCountsAsItemZero)
{
    CameraWithControls const opened({menuWithHoles().currently(3).refusingReads(EIO)});
    EXPECT_EQ(0, opened.as<ICameraControlStringMenu>(id).currentIndex());
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
    EXPECT_EQ(-1, menu.currentIndex());
    EXPECT_THROW(menu.currentString(), std::out_of_range);
    EXPECT_EQ(0u, opened.node.countOf(Call::Ioctl));
}

TEST(CameraControlStringMenuTest, EachNumberBetweenTheBoundsIsAskedForOnce)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(0, 4));
    std::vector<CallRecord> const calls = opened.node.calls();
    ASSERT_EQ(5u, calls.size());
    for (unsigned int index = 0; index < calls.size(); ++index) {
        EXPECT_EQ(CallId(VIDIOC_QUERYMENU), calls[index].call);
        v4l2_querymenu wanted{};
        wanted.id = id;
        wanted.index = index;
        auto const sent = calls[index].argument<v4l2_querymenu>();
        EXPECT_EQ(0, std::memcmp(&wanted, &sent, sizeof wanted)) << index;
    }
    EXPECT_EQ(2, menu.count());
}

TEST(CameraControlStringMenuTest, BoundsInTheWrongOrderMakeAnEmptyMenu)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(4, 3));
    EXPECT_EQ(0, menu.count());
    EXPECT_EQ(-1, menu.defaultIndex());
    EXPECT_THROW(menu.string(0), std::out_of_range);
    EXPECT_EQ(0u, opened.node.countOf(Call::Ioctl));
    EXPECT_FALSE(menu.setCurrentIndex(0));
    EXPECT_EQ(1u, opened.node.countOf(VIDIOC_S_CTRL));
}

TEST(CameraControlStringMenuTest, ProbingEndsAtTheLargestNumber)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(INT_MAX - 1, INT_MAX));
    EXPECT_EQ(2u, opened.node.countOf(VIDIOC_QUERYMENU));
    EXPECT_EQ(0, menu.count());
}

TEST(CameraControlStringMenuTest, BoundsAreSigned)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(-2, 0));
    EXPECT_EQ(3u, opened.node.countOf(VIDIOC_QUERYMENU));
    EXPECT_EQ(1, menu.count());
}

TEST(CameraControlStringMenuTest, ItemsAreAskedForOnceInALifetime)
{
    CameraWithControls const opened({menuWithHoles()});
    auto& menu = opened.as<ICameraControlStringMenu>(id);
    menu.updateState();
    menu.currentString();
    menu.setCurrentIndex(1);
    EXPECT_EQ(0u, opened.node.countOf(VIDIOC_QUERYMENU));
}

TEST(CameraControlStringMenuTest, InitialisingAnewForgetsTheOldItems)
{
    CameraWithControls opened({menuWithHoles()});
    CameraControlStringMenu menu(opened.camera, id, "Auto Exposure");
    menu.init(bounds(0, 3));
    menu.init(bounds(3, 3));
    EXPECT_EQ(1, menu.count());
    EXPECT_STREQ("Aperture Priority", menu.string(0));
    EXPECT_EQ(3u, menu.directIndexMapping(0));
}

TEST(CameraControlBaseMenuTest, MapsBothWays)
{
    CameraWithControls const opened({menuWithHoles()});
    auto const& menu = dynamic_cast<CameraControlBaseMenu const&>(opened.control(id));
    EXPECT_EQ(0u, menu.directIndexMapping(0));
    EXPECT_EQ(3u, menu.directIndexMapping(1));
    EXPECT_EQ(noItem, menu.directIndexMapping(2));
    EXPECT_EQ(noItem, menu.directIndexMapping(-1));
    EXPECT_EQ(0, menu.reverseIndexMapping(0));
    EXPECT_EQ(1, menu.reverseIndexMapping(3));
    EXPECT_EQ(-1, menu.reverseIndexMapping(1));
    EXPECT_EQ(-1, menu.reverseIndexMapping(noItem));
}

TEST(CameraControlInt64MenuTest, KeepsNoValuesButHasPositions)
{
    CameraWithControls opened({integerMenu().byDefault(1)});
    auto& menu = opened.as<ICameraControlInt64Menu>(id);
    EXPECT_EQ(0, menu.count());
    for (std::int64_t const value : {0, 1, 2}) {
        opened.node.setControlValue(id, value);
        EXPECT_EQ(value, menu.currentIndex());
    }
    EXPECT_EQ(1, menu.defaultIndex());
    EXPECT_TRUE(menu.setCurrentIndex(0));
    EXPECT_EQ(0, opened.node.lastControlValueSent(id));
}

TEST(CameraControlInt64MenuTest, ValuesThrowForEveryPosition)
{
    CameraWithControls const opened({integerMenu()});
    auto const& menu = opened.as<ICameraControlInt64Menu>(id);
    for (int const position : {0, 1, 2, 3, -1}) {
        EXPECT_THROW(menu.value(position), std::out_of_range) << position;
    }
    EXPECT_THROW(menu.currentValue(), std::out_of_range);
    EXPECT_THROW(menu.defaultValue(), std::out_of_range);
}

TEST(CameraControlInt64MenuTest, ClosesHolesToo)
{
    CameraWithControls opened({integerMenuControl(id, "Exposure, Bias")
                                   .withItem(2, std::int64_t{10})
                                   .withItem(7, std::int64_t{20})
                                   .byDefault(7)});
    auto& menu = opened.as<ICameraControlInt64Menu>(id);
    EXPECT_EQ(1, menu.currentIndex());
    EXPECT_TRUE(menu.setCurrentIndex(0));
    EXPECT_EQ(2, opened.node.lastControlValueSent(id));
    EXPECT_FALSE(menu.setCurrentIndex(2));
    opened.node.setControlValue(id, 5);
    EXPECT_EQ(-1, menu.currentIndex());
}

TEST(CameraControlInt64MenuTest, WriteOnlyHasNoPosition)
{
    CameraWithControls const opened({integerMenu().withFlags(V4L2_CTRL_FLAG_WRITE_ONLY)});
    EXPECT_EQ(-1, opened.as<ICameraControlInt64Menu>(id).currentIndex());
    EXPECT_EQ(0u, opened.node.countOf(Call::Ioctl));
}
