// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "control/CameraControlNumeric.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

constexpr unsigned int id = V4L2_CID_EXPOSURE_ABSOLUTE;

using SixtyFour = ICameraControlNumeric<long long>;
using Sixteen = ICameraControlNumeric<unsigned short>;

/// Reads and writes one value, and expects one extended call of each kind to have carried it.
template <typename T>
void expectExtendedTransfers(ControlScript const& script, T inDriver, T written)
{
    CameraWithControls opened({script});
    auto& control = opened.as<ICameraControlNumeric<T>>(id);
    opened.node.setControlValue(id, static_cast<std::int64_t>(inDriver));
    EXPECT_EQ(control.value(), inDriver);
    EXPECT_TRUE(control.setValue(written));
    EXPECT_EQ(static_cast<std::int64_t>(written), opened.node.controlValue(id));

    std::vector<CallRecord> const calls = opened.node.calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(CallId(VIDIOC_G_EXT_CTRLS), calls[0].call);
    EXPECT_EQ(calls[0].controlClass, 0x009A0000u);
    EXPECT_EQ(CallId(VIDIOC_S_EXT_CTRLS), calls[1].call);
    EXPECT_EQ(calls[1].controlClass, 0u);
    ASSERT_EQ(calls[1].controls.size(), 1u);
    EXPECT_EQ(id, calls[1].controls[0].id);
    EXPECT_EQ(calls[1].controls[0].size, 0u);
    EXPECT_EQ(static_cast<std::int64_t>(written), calls[1].controls[0].value);
}

TEST(ExtendedNumericTest, EightBitsTravelByExtendedCalls)
{
    expectExtendedTransfers<unsigned char>(unsigned8Control(id, "Narrow"), 200, 255);
}

TEST(ExtendedNumericTest, SixteenBitsTravelByExtendedCalls)
{
    expectExtendedTransfers<unsigned short>(unsigned16Control(id, "Wide"), 40000, 65535);
}

TEST(ExtendedNumericTest, ThirtyTwoBitScalarsTravelByExtendedCallsAsSixteen)
{
    expectExtendedTransfers<unsigned short>(unsigned32Control(id, "Wider"), 40000, 65535);
}

TEST(ExtendedNumericTest, SixtyFourBitsTravelByExtendedCalls)
{
    ControlScript const script = integer64Control(id, "Widest").range(-1000, 1000).showingRange();
    expectExtendedTransfers<long long>(script, -999, -1);
}

TEST(ExtendedNumericTest, SixtyFourBitValuesAreReadWhole)
{
    CameraWithControls opened({integer64Control(id, "Widest").range(INT64_MIN, INT64_MAX)});
    for (std::int64_t const value : {INT64_MIN, INT64_MAX, std::int64_t{0x123456789ABCDEF},
                                     std::int64_t{0xFFFFFFFF}, -std::int64_t{0x100000000}}) {
        opened.node.setControlValue(id, value);
        EXPECT_EQ(opened.as<SixtyFour>(id).value(), value);
    }
}

TEST(ExtendedNumericTest, InquiredValueKeepsItsThirtyTwoBits)
{
    CameraWithControls opened({integer64Control(id, "Widest").range(INT64_MIN, INT64_MAX)});
    opened.node.setControlValue(id, 0x500000007);
    auto const& control = dynamic_cast<CameraControl const&>(opened.control(id));
    EXPECT_EQ(control.inquireControlValue(), 7);
    EXPECT_EQ(control.inquireControlValueExt(), 0x500000007);
    EXPECT_EQ(opened.node.countOf(VIDIOC_G_CTRL), 0u);
}

TEST(ExtendedNumericTest, KernelShowsNoRangeOfSixtyFourBitsSoOnlyZeroIsAccepted)
{
    CameraWithControls const opened({integer64Control(id, "Widest").range(-1000, 1000)});
    auto& control = opened.as<SixtyFour>(id);
    EXPECT_EQ(control.minimum(), 0);
    EXPECT_EQ(control.maximum(), 0);
    EXPECT_EQ(control.step(), 0);
    EXPECT_FALSE(control.setValue(1));
    EXPECT_FALSE(control.setValue(-1));
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
    EXPECT_TRUE(control.setValue(0));
    EXPECT_EQ(opened.node.countOf(VIDIOC_S_EXT_CTRLS), 1u);
}

TEST(ExtendedNumericTest, ThirtyTwoBitRangeIsCutToItsLowSixteenBits)
{
    CameraWithControls const opened({unsigned32Control(id, "Wider").range(0, 70000)});
    auto& control = opened.as<Sixteen>(id);
    EXPECT_STREQ(control.typeString(), "UInt16");
    EXPECT_EQ(control.maximum(), 4464);
    EXPECT_FALSE(control.setValue(4465));
    EXPECT_FALSE(control.setValue(65535));
    EXPECT_EQ(opened.node.countOf(Call::Ioctl), 0u);
    EXPECT_TRUE(control.setValue(4464));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 4464);
}

TEST(ExtendedNumericTest, ThirtyTwoBitValuesAreCutToo)
{
    CameraWithControls opened({unsigned32Control(id, "Wider").range(0, 70000)});
    opened.node.setControlValue(id, 70001);
    EXPECT_EQ(opened.as<Sixteen>(id).value(), 4465);
}

TEST(ExtendedNumericTest, FullThirtyTwoBitsAreReachedByTheInstantiationForThem)
{
    // The camera makes none of these by itself.
    CameraWithControls opened({unsigned32Control(id, "Wider")});
    CameraControlNumeric<unsigned int> control(opened.camera, id, "Wider");
    control.setMinMaxStep(0, 0xFFFFFFFF, 1);
    EXPECT_TRUE(control.setValue(0xFFFFFFFE));
    EXPECT_EQ(opened.node.lastControlValueSent(id), 0xFFFFFFFE);
    EXPECT_EQ(control.value(), 0xFFFFFFFEu);
}

} // namespace
