// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ICameraControlBitMask.h"
#include "ICameraControlBoolean.h"
#include "ICameraControlButton.h"
#include "ICameraControlNumeric.h"
#include "ICameraControlStringMenu.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int firstPrivate = 0x08000000;
constexpr unsigned int lastBelow = 0x07FFFFFF;

using Integer = ICameraControlNumeric<int>;

CameraBuilder withPrivateInteger()
{
    return CameraWithControls::builderOf(
        {integerControl(firstPrivate + 1, "Light Intensity").range(-1000, 1000).byDefault(5)});
}

TEST(PrivateControlTest, RefusedPlainReadIsMadeOnceMoreAsAnExtendedOne)
{
    CameraWithControls const opened(withPrivateInteger());
    EXPECT_EQ(opened.as<Integer>(firstPrivate + 1).value(), 5);
    std::vector<CallRecord> const calls = opened.node.calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(CallId(VIDIOC_G_CTRL), calls[0].call);
    EXPECT_EQ(calls[0].error, EINVAL);
    EXPECT_EQ(CallId(VIDIOC_G_EXT_CTRLS), calls[1].call);
    EXPECT_EQ(calls[1].controlClass, 0x08000000u);
    ASSERT_EQ(calls[1].controls.size(), 1u);
    EXPECT_EQ(firstPrivate + 1, calls[1].controls[0].id);
    EXPECT_EQ(calls[1].controls[0].size, 0u);
    EXPECT_EQ(calls[1].controls[0].value, 0);
}

TEST(PrivateControlTest, RefusedPlainWriteIsMadeOnceMoreAsAnExtendedOne)
{
    CameraWithControls const opened(withPrivateInteger());
    EXPECT_TRUE(opened.as<Integer>(firstPrivate + 1).setValue(-321));
    std::vector<CallRecord> const calls = opened.node.calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(CallId(VIDIOC_S_CTRL), calls[0].call);
    EXPECT_EQ(calls[0].argument<v4l2_control>().value, -321);
    EXPECT_EQ(calls[0].error, EINVAL);
    EXPECT_EQ(CallId(VIDIOC_S_EXT_CTRLS), calls[1].call);
    EXPECT_EQ(calls[1].controlClass, 0u);
    ASSERT_EQ(calls[1].controls.size(), 1u);
    EXPECT_EQ(calls[1].controls[0].size, 0u);
    // A 32-bit value in a field of 64 bits whose other half is empty.
    EXPECT_EQ(calls[1].controls[0].value,
              static_cast<std::int64_t>(static_cast<std::uint32_t>(-321)));
    EXPECT_EQ(opened.node.controlValue(firstPrivate + 1), -321);
    EXPECT_EQ(opened.as<Integer>(firstPrivate + 1).value(), -321);
}

TEST(PrivateControlTest, PlainTransferThatSucceedsStands)
{
    CameraWithControls const opened(withPrivateInteger().withPlainPrivateControls());
    EXPECT_EQ(opened.as<Integer>(firstPrivate + 1).value(), 5);
    EXPECT_TRUE(opened.as<Integer>(firstPrivate + 1).setValue(6));
    EXPECT_EQ(opened.node.countOf(VIDIOC_G_CTRL), 1u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 1u);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 2u);
}

TEST(PrivateControlTest, PlainTransferThatFailsOtherwiseStands)
{
    for (int const error : {EIO, EACCES, ERANGE, EBUSY, ENODEV, ENOTTY}) {
        CameraWithControls opened(withPrivateInteger());
        opened.node.fail(VIDIOC_G_CTRL, error);
        opened.node.fail(VIDIOC_S_CTRL, error);
        EXPECT_EQ(opened.as<Integer>(firstPrivate + 1).value(), 0);
        errno = 0;
        EXPECT_FALSE(opened.as<Integer>(firstPrivate + 1).setValue(6));
        EXPECT_EQ(error, errno);
        EXPECT_EQ(opened.node.countOf(Call::Ioctl), 2u) << error;
    }
}

TEST(PrivateControlTest, FailureOfTheSecondTransferIsTheAnswer)
{
    CameraWithControls opened(withPrivateInteger());
    opened.node.fail(VIDIOC_G_EXT_CTRLS, EIO);
    EXPECT_EQ(opened.as<Integer>(firstPrivate + 1).value(), 0);
    opened.node.fail(VIDIOC_S_EXT_CTRLS, ERANGE);
    errno = 0;
    EXPECT_FALSE(opened.as<Integer>(firstPrivate + 1).setValue(6));
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 4u);
}

TEST(PrivateControlTest, InvalidSecondTransferIsNotMadeAThirdTime)
{
    CameraWithControls opened(withPrivateInteger());
    opened.node.failFrom(VIDIOC_G_EXT_CTRLS, EINVAL);
    opened.node.failFrom(VIDIOC_S_EXT_CTRLS, EINVAL);
    EXPECT_EQ(opened.as<Integer>(firstPrivate + 1).value(), 0);
    EXPECT_FALSE(opened.as<Integer>(firstPrivate + 1).setValue(6));
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 4u);
}

TEST(PrivateControlTest, InterruptionIsNoRefusal)
{
    CameraWithControls opened(withPrivateInteger().withPlainPrivateControls());
    opened.node.fail(VIDIOC_S_CTRL, EINTR);
    EXPECT_TRUE(opened.as<Integer>(firstPrivate + 1).setValue(6));
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 2u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_EXT_CTRLS), 0u);
}

TEST(PrivateControlTest, RangeBeginsExactlyAtThePrivateBase)
{
    CameraWithControls const opened({
        integerControl(lastBelow, "Below").range(0, 9).refusingReads(EINVAL).refusingWrites(EINVAL),
        integerControl(firstPrivate, "First").range(0, 9).byDefault(4),
    });
    EXPECT_EQ(opened.as<Integer>(lastBelow).value(), 0);
    EXPECT_FALSE(opened.as<Integer>(lastBelow).setValue(1));
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 2u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_G_EXT_CTRLS), 0u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_EXT_CTRLS), 0u);

    EXPECT_EQ(opened.as<Integer>(firstPrivate).value(), 4);
    EXPECT_TRUE(opened.as<Integer>(firstPrivate).setValue(3));
    EXPECT_EQ(opened.node.countOf(VIDIOC_G_EXT_CTRLS), 1u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_EXT_CTRLS), 1u);
}

TEST(PrivateControlTest, StandardControlIsNeverAskedTwice)
{
    CameraWithControls const opened({
        integerControl(V4L2_CID_BRIGHTNESS, "Brightness")
            .range(0, 9)
            .refusingReads(EINVAL)
            .refusingWrites(EINVAL),
        integerControl(V4L2_CID_EXPOSURE_ABSOLUTE, "Exposure")
            .range(0, 9)
            .refusingReads(EINVAL)
            .refusingWrites(EINVAL),
    });
    for (unsigned int const id : {V4L2_CID_BRIGHTNESS, V4L2_CID_EXPOSURE_ABSOLUTE}) {
        EXPECT_EQ(opened.as<Integer>(id).value(), 0);
        EXPECT_FALSE(opened.as<Integer>(id).setValue(1));
    }
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 4u);
}

TEST(PrivateControlTest, EveryTypeThatTravelsPlainlyReachesItsPrivateControl)
{
    CameraWithControls const opened({
        booleanControl(firstPrivate + 5, "Auto").byDefault(1),
        menuControl(firstPrivate, "Mode").withItem("Off").withItem(3, "Continuous").byDefault(3),
        bitMaskControl(firstPrivate + 4, "Bits").range(0, 0xFFFFFFFF).byDefault(0x80000001),
        buttonControl(firstPrivate + 8, "Press"),
    });
    EXPECT_TRUE(opened.as<ICameraControlBoolean>(firstPrivate + 5).value());
    EXPECT_TRUE(opened.as<ICameraControlBoolean>(firstPrivate + 5).setValue(false));
    EXPECT_EQ(opened.node.controlValue(firstPrivate + 5), 0);

    auto& mode = opened.as<ICameraControlStringMenu>(firstPrivate);
    EXPECT_EQ(mode.currentIndex(), 1);
    EXPECT_TRUE(mode.setCurrentIndex(0));
    EXPECT_EQ(opened.node.controlValue(firstPrivate), 0);

    auto& bits = opened.as<ICameraControlBitMask>(firstPrivate + 4);
    EXPECT_EQ(bits.value(), 0x80000001u);
    EXPECT_TRUE(bits.setValue(0xC0000000));
    EXPECT_EQ(bits.value(), 0xC0000000u);

    EXPECT_TRUE(opened.as<ICameraControlButton>(firstPrivate + 8).clicked());
    EXPECT_EQ(opened.node.controlWrites(firstPrivate + 8), 2u); // The refused one and the other.
}

TEST(PrivateControlTest, ExtendedTypesMakeNoPlainAttempt)
{
    CameraWithControls const opened(
        {unsigned8Control(firstPrivate + 1, "Narrow").range(0, 200).byDefault(99)});
    auto& narrow = opened.as<ICameraControlNumeric<unsigned char>>(firstPrivate + 1);
    EXPECT_EQ(narrow.value(), 99);
    EXPECT_TRUE(narrow.setValue(100));
    EXPECT_EQ(opened.node.countOf(VIDIOC_G_CTRL), 0u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 0u);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 2u);
}

} // namespace
