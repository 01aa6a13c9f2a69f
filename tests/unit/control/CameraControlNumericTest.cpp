// SPDX-License-Identifier: MIT
#include "control/CameraControlNumeric.h"
#include "CameraWithControls.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cerrno>
#include <climits>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int id = V4L2_CID_BRIGHTNESS;

ControlScript integer(std::int64_t lowest, std::int64_t highest, std::int64_t step = 1)
{
    return integerControl(id, "Brightness").range(lowest, highest, step);
}

template <typename T>
void expectRange(ICameraControlNumeric<T> const& control, T minimum, T maximum, T step)
{
    EXPECT_EQ(control.minimum(), minimum);
    EXPECT_EQ(control.maximum(), maximum);
    EXPECT_EQ(control.step(), step);
}

/// A control of its own, initialised with a driver's record.
template <typename T>
class Initialised
{
public:
    Initialised(int minimum, int maximum, int step) : control(opened.camera, id, "Brightness")
    {
        v4l2_queryctrl record{};
        record.id = id;
        record.minimum = minimum;
        record.maximum = maximum;
        record.step = step;
        control.init(record);
    }

    CameraWithControls opened{aCamera()};
    CameraControlNumeric<T> control;
};

TEST(CameraControlNumericTest, RangeIsZeroBeforeItIsInitialised)
{
    CameraWithControls const opened(aCamera());
    CameraControlNumeric<int> const control(const_cast<Camera&>(opened.camera), id, "Brightness");
    expectRange(control, 0, 0, 0);
}

TEST(CameraControlNumericTest, RangeInTheWrongOrderIsPutRight)
{
    CameraWithControls const opened({integer(10, 0)});
    expectRange(opened.as<ICameraControlNumeric<int>>(id), 0, 10, 1);
}

// So do the vendor's 32-bit words come from a kernel, whose 0 to 0xffffffff is 0 to -1 here.
TEST(CameraControlNumericTest, WholeUnsignedWordIsMinusOneToZeroAndTakesNothingElse)
{
    CameraWithControls const opened({integer(0, -1)});
    auto& control = opened.as<ICameraControlNumeric<int>>(id);
    expectRange(control, -1, 0, 1);
    EXPECT_FALSE(control.setValue(1));
    EXPECT_FALSE(control.setValue(-2));
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 0u);
    control.setValue(-1);
    control.setValue(0);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 2u);
}

TEST(CameraControlNumericTest, StepIsNarrowedToTheRange)
{
    CameraWithControls const wide({integer(0, 255, 1000)});
    expectRange(wide.as<ICameraControlNumeric<int>>(id), 0, 255, 255);
    CameraWithControls const exact({integer(-5, 5, 10)});
    expectRange(exact.as<ICameraControlNumeric<int>>(id), -5, 5, 10);
    CameraWithControls const reversed({integer(5, -5, 11)});
    expectRange(reversed.as<ICameraControlNumeric<int>>(id), -5, 5, 10);
}

TEST(CameraControlNumericTest, RangeOfOneValueHasStepZeroAndSendsIt)
{
    CameraWithControls const opened({integer(5, 5)});
    auto& control = opened.as<ICameraControlNumeric<int>>(id);
    expectRange(control, 5, 5, 0);
    EXPECT_TRUE(control.setValue(5));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 5);
    EXPECT_FALSE(control.setValue(4));
    EXPECT_FALSE(control.setValue(6));
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 1u);
}

TEST(CameraControlNumericTest, NegativeOrZeroStepIsSmallerThanAnyWidthAndStays)
{
    Initialised<int> const negative(0, 10, -3);
    expectRange(negative.control, 0, 10, -3);
    Initialised<int> const zero(0, 10, 0);
    expectRange(zero.control, 0, 10, 0);
}

TEST(CameraControlNumericTest, WidestRangesKeepTheirStep)
{
    Initialised<int> const widest(INT_MIN, INT_MAX, 1);
    expectRange(widest.control, INT_MIN, INT_MAX, 1);
    Initialised<int> const reversed(INT_MAX, INT_MIN, INT_MAX);
    expectRange(reversed.control, INT_MIN, INT_MAX, INT_MAX);
    Initialised<int> const half(INT_MIN, 0, INT_MAX);
    expectRange(half.control, INT_MIN, 0, INT_MAX);

    Initialised<long long> largest(0, 0, 0);
    largest.control.setMinMaxStep(LLONG_MIN, LLONG_MAX, 1);
    expectRange(largest.control, LLONG_MIN, LLONG_MAX, 1LL);
    largest.control.setMinMaxStep(LLONG_MAX - 1, LLONG_MAX, 2);
    expectRange(largest.control, LLONG_MAX - 1, LLONG_MAX, 1LL);
}

TEST(CameraControlNumericTest, WidestRangeIsSettableFromEndToEnd)
{
    CameraWithControls const opened({integer(INT_MIN, INT_MAX)});
    auto& control = opened.as<ICameraControlNumeric<int>>(id);
    for (int const value : {INT_MIN, -1, 0, INT_MAX}) {
        EXPECT_TRUE(control.setValue(value));
        EXPECT_EQ(control.value(), value);
    }
}

TEST(CameraControlNumericTest, ValuesBetweenStepsAreSentAsTheyAre)
{
    CameraWithControls const opened({integer(0, 100, 10)});
    EXPECT_TRUE(opened.as<ICameraControlNumeric<int>>(id).setValue(15));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 15);
}

TEST(CameraControlNumericTest, ValuesOutsideTheRangeAreNotSent)
{
    CameraWithControls const opened({integer(0, 100, 10)});
    auto& control = opened.as<ICameraControlNumeric<int>>(id);
    for (int const value : {101, -1, INT_MAX, INT_MIN}) {
        EXPECT_FALSE(control.setValue(value)) << value;
    }
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
    EXPECT_TRUE(control.setValue(0));
    EXPECT_TRUE(control.setValue(100));
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 2u);
}

TEST(CameraControlNumericTest, RangeIsNotAskedForAgain)
{
    CameraWithControls const opened({integer(0, 100)});
    auto& control = opened.as<ICameraControlNumeric<int>>(id);
    control.setValue(1);
    control.updateState();
    expectRange(control, 0, 100, 1);
    EXPECT_EQ(opened.node.countOf(VIDIOC_QUERYCTRL), 1u); // Of updateState(), for the flags.
}

TEST(CameraControlNumericTest, WriteOnlyReadsZeroWithoutAsking)
{
    CameraWithControls const opened({
        integer(0, 100).byDefault(50).withFlags(V4L2_CTRL_FLAG_WRITE_ONLY),
        unsigned16Control(V4L2_CID_GAIN, "Gain").byDefault(9).withFlags(V4L2_CTRL_FLAG_WRITE_ONLY),
    });
    EXPECT_EQ(opened.as<ICameraControlNumeric<int>>(id).value(), 0);
    EXPECT_EQ(opened.as<ICameraControlNumeric<unsigned short>>(V4L2_CID_GAIN).value(), 0);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
}

TEST(CameraControlNumericTest, FailuresAreZeroAndFalse)
{
    CameraWithControls opened({
        integer(0, 9).byDefault(5).refusingReads(EIO).refusingWrites(EIO),
        unsigned8Control(V4L2_CID_GAIN, "Gain").byDefault(5).refusingReads(EIO).refusingWrites(EIO),
    });
    EXPECT_EQ(opened.as<ICameraControlNumeric<int>>(id).value(), 0);
    EXPECT_FALSE(opened.as<ICameraControlNumeric<int>>(id).setValue(1));
    auto& gain = opened.as<ICameraControlNumeric<unsigned char>>(V4L2_CID_GAIN);
    EXPECT_EQ(gain.value(), 0);
    EXPECT_FALSE(gain.setValue(1));
}

TEST(CameraControlNumericTest, ThirtyTwoBitControlTravelsPlainly)
{
    CameraWithControls const opened({integer(-100, 100).byDefault(-7)});
    auto& control = opened.as<ICameraControlNumeric<int>>(id);
    EXPECT_EQ(control.value(), -7);
    EXPECT_TRUE(control.setValue(-8));
    EXPECT_EQ(opened.node.countOf(VIDIOC_G_CTRL), 1u);
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_CTRL), 1u);
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 2u);
}

TEST(CameraControlNumericTest, RangesAreCutToTheWidthOfTheirType)
{
    Initialised<unsigned char> const eight(0x101, 0x2FF, 0x103);
    expectRange<unsigned char>(eight.control, 1, 255, 3);
    Initialised<unsigned short> const sixteen(0x10001, 0x2FFFF, 0x10003);
    expectRange<unsigned short>(sixteen.control, 1, 65535, 3);
    Initialised<unsigned int> const thirtyTwo(0, -1, 1);
    expectRange<unsigned int>(thirtyTwo.control, 0, 0xFFFFFFFF, 1);
    Initialised<long long> const sixtyFour(-5, 5, 20);
    expectRange<long long>(sixtyFour.control, -5, 5, 10);
}

TEST(CameraControlNumericTest, UnsignedRangesAreComparedUnsigned)
{
    Initialised<unsigned char> const eight(200, 100, 1);
    expectRange<unsigned char>(eight.control, 100, 200, 1);
    Initialised<unsigned int> const thirtyTwo(-1, INT_MAX, 1);
    expectRange<unsigned int>(thirtyTwo.control, INT_MAX, 0xFFFFFFFF, 1);
}

TEST(CameraControlNumericTest, EachInstantiationReportsItsOwnType)
{
    EXPECT_EQ(Initialised<int>(0, 1, 1).control.type(), ICameraControl::Int32);
    EXPECT_EQ(Initialised<long long>(0, 1, 1).control.type(), ICameraControl::Int64);
    EXPECT_EQ(Initialised<unsigned char>(0, 1, 1).control.type(), ICameraControl::UInt8);
    EXPECT_EQ(Initialised<unsigned short>(0, 1, 1).control.type(), ICameraControl::UInt16);
    EXPECT_EQ(Initialised<unsigned int>(0, 1, 1).control.type(), ICameraControl::UInt32);
}

} // namespace
