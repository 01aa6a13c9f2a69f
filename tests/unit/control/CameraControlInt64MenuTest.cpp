// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ICameraControlInt64Menu.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cstdint>
#include <stdexcept>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int id = V4L2_CID_EXPOSURE_AUTO;

ControlScript integerMenu()
{
    return integerMenuControl(id, "Exposure, Bias")
        .withItem(0, std::int64_t{-1000})
        .withItem(1, std::int64_t{0})
        .withItem(2, std::int64_t{1000});
}

TEST(CameraControlInt64MenuTest, KeepsNoValuesButHasPositions)
{
    CameraWithControls opened({integerMenu().byDefault(1)});
    auto& menu = opened.as<ICameraControlInt64Menu>(id);
    EXPECT_EQ(menu.count(), 0);
    for (std::int64_t const value : {0, 1, 2}) {
        opened.node.setControlValue(id, value);
        EXPECT_EQ(menu.currentIndex(), value);
    }
    EXPECT_EQ(menu.defaultIndex(), 1);
    EXPECT_TRUE(menu.setCurrentIndex(0));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 0);
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
    EXPECT_EQ(menu.currentIndex(), 1);
    EXPECT_TRUE(menu.setCurrentIndex(0));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 2);
    EXPECT_FALSE(menu.setCurrentIndex(2));
    opened.node.setControlValue(id, 5);
    EXPECT_EQ(menu.currentIndex(), -1);
}

TEST(CameraControlInt64MenuTest, WriteOnlyHasNoPosition)
{
    CameraWithControls const opened({integerMenu().withFlags(V4L2_CTRL_FLAG_WRITE_ONLY)});
    EXPECT_EQ(opened.as<ICameraControlInt64Menu>(id).currentIndex(), -1);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
}

} // namespace
