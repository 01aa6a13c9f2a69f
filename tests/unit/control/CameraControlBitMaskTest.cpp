// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ICameraControlBitMask.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int id = V4L2_CID_AUTO_WHITE_BALANCE;

ControlScript bitMask()
{
    return bitMaskControl(id, "Bits").range(0, 0xFFFFFFFF);
}

TEST(CameraControlBitMaskTest, CarriesAllThirtyTwoBitsBothWays)
{
    CameraWithControls opened({bitMask()});
    EXPECT_TRUE(opened.as<ICameraControlBitMask>(id).setValue(0x80000001u));
    CallRecord const call = opened.onlyCall();
    EXPECT_EQ(CallId(VIDIOC_S_CTRL), call.call);
    EXPECT_EQ(call.argument<v4l2_control>().value, static_cast<int>(0x80000001u));
    opened.node.setControlValue(id, 0xF0F0F0F0);
    EXPECT_EQ(opened.as<ICameraControlBitMask>(id).value(), 0xF0F0F0F0u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_G_CTRL), 1u);
}

TEST(CameraControlBitMaskTest, SendsBitsOutsideTheMaskToo)
{
    CameraWithControls const opened({bitMask().range(0, 0x0F)});
    EXPECT_TRUE(opened.as<ICameraControlBitMask>(id).setValue(0xFF));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 0xFF);
}

TEST(CameraControlBitMaskTest, DefaultMayHaveTheTopBit)
{
    CameraWithControls const opened({bitMask().byDefault(0x80000002).currently(1)});
    EXPECT_EQ(opened.as<ICameraControlBitMask>(id).defaultValue(), 0x80000002u);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
}

TEST(CameraControlBitMaskTest, WriteOnlyReadsZeroWithoutAsking)
{
    CameraWithControls const opened({bitMask().byDefault(7).withFlags(V4L2_CTRL_FLAG_WRITE_ONLY)});
    EXPECT_EQ(opened.as<ICameraControlBitMask>(id).value(), 0u);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
}

TEST(CameraControlBitMaskTest, FailuresAreZeroAndFalse)
{
    CameraWithControls const opened(
        {bitMask().byDefault(7).refusingReads(EIO).refusingWrites(EIO)});
    EXPECT_EQ(opened.as<ICameraControlBitMask>(id).value(), 0u);
    EXPECT_FALSE(opened.as<ICameraControlBitMask>(id).setValue(1));
}

} // namespace
