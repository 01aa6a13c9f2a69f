// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ICameraControlBitMask.h"
#include "ICameraControlBoolean.h"
#include "ICameraControlButton.h"
#include "control/CameraControlButton.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int id = V4L2_CID_AUTO_WHITE_BALANCE;

ControlScript boolean()
{
    return booleanControl(id, "White Balance, Automatic");
}

ControlScript button()
{
    return buttonControl(id, "Restart");
}

ControlScript bitMask()
{
    return bitMaskControl(id, "Bits").range(0, 0xFFFFFFFF);
}

} // namespace

TEST(CameraControlBooleanTest, ReadsWithAPlainCall)
{
    CameraWithControls opened({boolean()});
    EXPECT_FALSE(opened.as<ICameraControlBoolean>(id).value());
    opened.node.setControlValue(id, 1);
    opened.node.clearLog();
    EXPECT_TRUE(opened.as<ICameraControlBoolean>(id).value());
    EXPECT_EQ(CallId(VIDIOC_G_CTRL), opened.onlyCall().call);
}

TEST(CameraControlBooleanTest, AnyValueButZeroIsTrue)
{
    CameraWithControls opened({boolean()});
    for (int const value : {5, -1, 256}) {
        opened.node.setControlValue(id, value);
        EXPECT_TRUE(opened.as<ICameraControlBoolean>(id).value()) << value;
    }
}

TEST(CameraControlBooleanTest, SendsOneForTrueAndZeroForFalse)
{
    CameraWithControls const opened({boolean()});
    EXPECT_TRUE(opened.as<ICameraControlBoolean>(id).setValue(true));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 1);
    EXPECT_TRUE(opened.as<ICameraControlBoolean>(id).setValue(false));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 0);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 2u);
}

TEST(CameraControlBooleanTest, DefaultIsTrueUnlessZero)
{
    CameraWithControls const five({boolean().byDefault(5)});
    EXPECT_TRUE(five.as<ICameraControlBoolean>(id).defaultValue());
    CameraWithControls const zero({boolean().byDefault(0).currently(1)});
    EXPECT_FALSE(zero.as<ICameraControlBoolean>(id).defaultValue());
    EXPECT_EQ(zero.node.countOf(Call::Ioctl), 0u);
}

TEST(CameraControlBooleanTest, WriteOnlyReadsFalseWithoutAsking)
{
    CameraWithControls const opened({boolean().byDefault(1).withFlags(V4L2_CTRL_FLAG_WRITE_ONLY)});
    EXPECT_FALSE(opened.as<ICameraControlBoolean>(id).value());
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
    EXPECT_TRUE(opened.as<ICameraControlBoolean>(id).setValue(true));
}

TEST(CameraControlBooleanTest, FailuresAreFalse)
{
    CameraWithControls const opened(
        {boolean().byDefault(1).refusingReads(EIO).refusingWrites(EIO)});
    EXPECT_FALSE(opened.as<ICameraControlBoolean>(id).value());
    EXPECT_FALSE(opened.as<ICameraControlBoolean>(id).setValue(true));
}

TEST(CameraControlBooleanTest, ReadOnlyIsRefusedAlsoWhenGrabbed)
{
    for (unsigned int const flags :
         {V4L2_CTRL_FLAG_READ_ONLY, V4L2_CTRL_FLAG_READ_ONLY | V4L2_CTRL_FLAG_GRABBED}) {
        CameraWithControls const opened({boolean().withFlags(flags)});
        EXPECT_FALSE(opened.as<ICameraControlBoolean>(id).setValue(true));
        EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
    }
}

TEST(CameraControlButtonTest, SendsOneWithEachClick)
{
    CameraWithControls const opened({button()});
    EXPECT_TRUE(opened.as<ICameraControlButton>(id).clicked());
    EXPECT_TRUE(opened.as<ICameraControlButton>(id).clicked());
    std::vector<CallRecord> const calls = opened.node.calls();
    ASSERT_EQ(calls.size(), 2u);
    for (CallRecord const& call : calls) {
        EXPECT_EQ(CallId(VIDIOC_S_CTRL), call.call);
        EXPECT_EQ(call.argument<v4l2_control>().value, 1);
    }
}

TEST(CameraControlButtonTest, HasNoValueToReadAndDoesNotAskForOne)
{
    CameraWithControls const opened({button()});
    EXPECT_EQ(dynamic_cast<CameraControlButton&>(opened.control(id)).inquireControlValue(), 0);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
}

TEST(CameraControlButtonTest, RefusedClickIsFalse)
{
    CameraWithControls const opened({button().refusingWrites(EIO)});
    EXPECT_FALSE(opened.as<ICameraControlButton>(id).clicked());
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 1u);
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
