// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ICameraControlBoolean.h"

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

} // namespace
