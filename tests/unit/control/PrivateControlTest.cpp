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

} // namespace

TEST(PrivateControlTest, RefusedPlainReadIsMadeOnceMoreAsAnExtendedOne)
{
    CameraWithControls const opened(withPrivateInteger());
    EXPECT_EQ(5, opened.as<Integer>(firstPrivate + 1).value());
    std::vector<CallRecord> const calls = opened.node.calls();
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(CallId(VIDIOC_G_CTRL), calls[0].call);
    EXPECT_EQ(EINVAL, calls[0].error);
    EXPECT_EQ(CallId(VIDIOC_G_EXT_CTRLS), calls[1].call);
    EXPECT_EQ(0x08000000u, calls[1].controlClass);
    ASSERT_EQ(1u, calls[1].controls.size());
    EXPECT_EQ(firstPrivate + 1, calls[1].controls[0].id);
    EXPECT_EQ(0u, calls[1].controls[0].size);
    EXPECT_EQ(0, calls[1].controls[0].value);
}

TEST(PrivateControlTest, RefusedPlainWriteIsMadeOnceMoreAsAnExtendedOne)
{
    CameraWithControls const opened(withPrivateInteger());
    EXPECT_TRUE(opened.as<Integer>(firstPrivate + 1).setValue(-321));
    std::vector<CallRecord> const calls = opened.node.calls();
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(CallId(VIDIOC_S_CTRL), calls[0].call);
    EXPECT_EQ(-321, calls[0].argument<v4l2_control>().value);
    EXPECT_EQ(EINVAL, calls[0].error);
    EXPECT_EQ(CallId(VIDIOC_S_EXT_CTRLS), calls[1].call);
    EXPECT_EQ(0u, calls[1].controlClass);
    ASSERT_EQ(1u, calls[1].controls.size());
    EXPECT_EQ(0u, calls[1].controls[0].size);
    // A 32-bit value in a field of 64 bits whose other half is empty.
    EXPECT_EQ(static_cast<std::int64_t>(static_cast<std::uint32_t>(-321)),
              calls[1].controls[0].value);
    EXPECT_EQ(-321, opened.node.controlValue(firstPrivate + 1));
    EXPECT_EQ(-321, opened.as<Integer>(firstPrivate + 1).value());
}

TEST(PrivateControlTest, PlainTransferThatSucceedsStands)
{
    CameraWithControls const opened(withPrivateInteger().withPlainPrivateControls());
    EXPECT_EQ(5, opened.as<Integer>(firstPrivate + 1).value());
    EXPECT_TRUE(opened.as<Integer>(firstPrivate + 1).setValue(6));
    EXPECT_EQ(1u, opened.node.countOf(VIDIOC_G_CTRL));
    EXPECT_EQ(1u, opened.node.countOf(VIDIOC_S_CTRL));
    EXPECT_EQ(2u, opened.node.countOf(Call::Ioctl));
}

TEST(PrivateControlTest, PlainTransferThatFailsOtherwiseStands)
{
    for (int const error : {EIO, EACCES, ERANGE, EBUSY, ENODEV, ENOTTY}) {
        CameraWithControls opened(withPrivateInteger());
        opened.node.fail(VIDIOC_G_CTRL, error);
        opened.node.fail(VIDIOC_S_CTRL, error);
        EXPECT_EQ(0, opened.as<Integer>(firstPrivate + 1).value());
        errno = 0;
        EXPECT_FALSE(opened.as<Integer>(firstPrivate + 1).setValue(6));
        EXPECT_EQ(error, errno);
        EXPECT_EQ(2u, opened.node.countOf(Call::Ioctl)) << error;
    }
}

TEST(PrivateControlTest, FailureOfTheSecondTransferIsTheAnswer)
{
    CameraWithControls opened(withPrivateInteger());
    opened.node.fail(VIDIOC_G_EXT_CTRLS, EIO);
    EXPECT_EQ(0, opened.as<Integer>(firstPrivate + 1).value());
    opened.node.fail(VIDIOC_S_EXT_CTRLS, ERANGE);
    errno = 0;
    EXPECT_FALSE(opened.as<Integer>(firstPrivate + 1).setValue(6));
    EXPECT_EQ(ERANGE, errno);
    EXPECT_EQ(4u, opened.node.countOf(Call::Ioctl));
}

TEST(PrivateControlTest, InvalidSecondTransferIsNotMadeAThirdTime)
{
    CameraWithControls opened(withPrivateInteger());
    opened.node.failFrom(VIDIOC_G_EXT_CTRLS, EINVAL);
    opened.node.failFrom(VIDIOC_S_EXT_CTRLS, EINVAL);
    EXPECT_EQ(0, opened.as<Integer>(firstPrivate + 1).value());
    EXPECT_FALSE(opened.as<Integer>(firstPrivate + 1).setValue(6));
    EXPECT_EQ(4u, opened.node.countOf(Call::Ioctl));
}

TEST(PrivateControlTest, InterruptionIsNoRefusal)
{
    CameraWithControls opened(withPrivateInteger().withPlainPrivateControls());
    opened.node.fail(VIDIOC_S_CTRL, EINTR);
    EXPECT_TRUE(opened.as<Integer>(firstPrivate + 1).setValue(6));
    EXPECT_EQ(2u, opened.node.countOf(VIDIOC_S_CTRL));
    EXPECT_EQ(0u, opened.node.countOf(VIDIOC_S_EXT_CTRLS));
}

TEST(PrivateControlTest, RangeBeginsExactlyAtThePrivateBase)
{
    CameraWithControls const opened({
        integerControl(lastBelow, "Below").range(0, 9).refusingReads(EINVAL).refusingWrites(EINVAL),
        integerControl(firstPrivate, "First").range(0, 9).byDefault(4),
    });
    EXPECT_EQ(0, opened.as<Integer>(lastBelow).value());
    EXPECT_FALSE(opened.as<Integer>(lastBelow).setValue(1));
    EXPECT_EQ(2u, opened.node.countOf(Call::Ioctl));
    EXPECT_EQ(0u, opened.node.countOf(VIDIOC_G_EXT_CTRLS));
    EXPECT_EQ(0u, opened.node.countOf(VIDIOC_S_EXT_CTRLS));

    EXPECT_EQ(4, opened.as<Integer>(firstPrivate).value());
    EXPECT_TRUE(opened.as<Integer>(firstPrivate).setValue(3));
    EXPECT_EQ(1u, opened.node.countOf(VIDIOC_G_EXT_CTRLS));
    EXPECT_EQ(1u, opened.node.countOf(VIDIOC_S_EXT_CTRLS));
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
        EXPECT_EQ(0, opened.as<Integer>(id).value());
        EXPECT_FALSE(opened.as<Integer>(id).setValue(1));
    }
    EXPECT_EQ(4u, opened.node.countOf(Call::Ioctl));
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
    EXPECT_EQ(0, opened.node.controlValue(firstPrivate + 5));

    auto& mode = opened.as<ICameraControlStringMenu>(firstPrivate);
    EXPECT_EQ(1, mode.currentIndex());
    EXPECT_TRUE(mode.setCurrentIndex(0));
    EXPECT_EQ(0, opened.node.controlValue(firstPrivate));

    auto& bits = opened.as<ICameraControlBitMask>(firstPrivate + 4);
    EXPECT_EQ(0x80000001u, bits.value());
    EXPECT_TRUE(bits.setValue(0xC0000000));
    EXPECT_EQ(0xC0000000u, bits.value());

    EXPECT_TRUE(opened.as<ICameraControlButton>(firstPrivate + 8).clicked());
    EXPECT_EQ(2u, opened.node.controlWrites(firstPrivate + 8)); // The refused one and the other.
}

TEST(PrivateControlTest, ExtendedTypesMakeNoPlainAttempt)
{
    CameraWithControls const opened(
        {unsigned8Control(firstPrivate + 1, "Narrow").range(0, 200).byDefault(99)});
    auto& narrow = opened.as<ICameraControlNumeric<unsigned char>>(firstPrivate + 1);
    EXPECT_EQ(99, narrow.value());
    EXPECT_TRUE(narrow.setValue(100));
    EXPECT_EQ(0u, opened.node.countOf(VIDIOC_G_CTRL));
    EXPECT_EQ(0u, opened.node.countOf(VIDIOC_S_CTRL));
    EXPECT_EQ(2u, opened.node.countOf(Call::Ioctl));
}
