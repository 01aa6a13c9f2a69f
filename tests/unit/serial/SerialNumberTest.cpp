// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControlNumeric.h"

#include "ControlledCamera.h"

namespace
{

using namespace ImageAcquisition;
using namespace VirtualCamera;

class SerialNumberTest : public ControlledCameraTest
{
protected:
    ZorvaneCameraControlNumeric<int> m_control{&m_camera, "Number", twoBytes, unit, family};
    ZorvaneCameraControlNumeric<int> m_field{&m_camera, "Field", eightBytes, unit, family};
};

TEST_F(SerialNumberTest, HasTheRangeZeroToZeroBeforeItAsked)
{
    EXPECT_EQ(m_control.minimum(), 0);
    EXPECT_EQ(m_control.maximum(), 0);
    EXPECT_EQ(m_control.step(), 1);
}

TEST_F(SerialNumberTest, AsksForTheMaximumAndThenForTheMinimum)
{
    EXPECT_TRUE(m_control.init());
    EXPECT_EQ(codes(), (std::vector<int>{0x85, 0x86, 0x83, 0x82}));
    EXPECT_EQ(m_control.minimum(), -5);
    EXPECT_EQ(m_control.maximum(), 255);
    EXPECT_EQ(m_control.step(), 1);
}

TEST_F(SerialNumberTest, TakesTheMaximumForAMinimumThatFails)
{
    silence(GetMin);
    EXPECT_TRUE(m_control.init());
    EXPECT_EQ(m_control.minimum(), 255);
    EXPECT_EQ(m_control.maximum(), 255);
}

TEST_F(SerialNumberTest, KeepsItsMaximumWhenAskingForItFails)
{
    silence(GetMax);
    EXPECT_TRUE(m_control.init());
    EXPECT_EQ(m_control.minimum(), -5);
    EXPECT_EQ(m_control.maximum(), 0);
}

TEST_F(SerialNumberTest, AsksForNoLimitsAfterItsFlagsFailed)
{
    silence(GetInfo);
    EXPECT_FALSE(m_control.init());
    EXPECT_EQ(codes(), (std::vector<int>{0x85, 0x86, 0x86, 0x86, 0x86, 0x86}));
}

TEST_F(SerialNumberTest, NeverAsksForItsLimitsAgain)
{
    ASSERT_TRUE(m_control.init());
    m_firmware.clearPackets();
    EXPECT_TRUE(m_control.updateState());
    EXPECT_EQ(m_control.value(), -2);
    EXPECT_TRUE(m_control.setValue(3));
    EXPECT_EQ(codes(), (std::vector<int>{0x86, 0x81, 0x01}));
}

TEST_F(SerialNumberTest, SendsValuesOutOfRangeAndToControlsThatCanOnlyBeRead)
{
    ASSERT_TRUE(m_control.init());
    EXPECT_TRUE(m_control.setValue(30000));
    EXPECT_EQ(m_firmware.data(unit, twoBytes), (SerialBytes{0x30, 0x75}));
    m_firmware.setInfo(unit, twoBytes, 0x01);
    ASSERT_TRUE(m_control.updateState());
    ASSERT_TRUE(m_control.isReadOnly());
    m_firmware.clearPackets();
    ReplyTimeout const shorter(m_camera, ReplyTimeout::forBoth);
    EXPECT_FALSE(m_control.setValue(2));
    EXPECT_EQ(codes(), std::vector<int>(5, 0x01));
}

TEST_F(SerialNumberTest, GivesMinusOneWhenTheReadingFails)
{
    ASSERT_TRUE(m_control.init());
    ASSERT_TRUE(m_control.setValue(42));
    m_firmware.unplug();
    EXPECT_EQ(m_control.value(), -1);
}

TEST_F(SerialNumberTest, GivesTheValueLastWrittenWhenTheReadingOfItsFieldFails)
{
    m_field.setShared(2, 2);
    ASSERT_TRUE(m_field.init());
    EXPECT_EQ(m_field.value(), 2);
    ASSERT_TRUE(m_field.setValue(42));
    EXPECT_EQ(m_firmware.data(unit, eightBytes), (SerialBytes{1, 0, 42, 0, 3, 0, 4, 0}));
    m_firmware.unplug();
    EXPECT_EQ(m_field.value(), 42);
}

TEST_F(SerialNumberTest, WritesTheWholeControlAfterItsFieldCouldNotBeWritten)
{
    m_field.setShared(2, 2);
    ASSERT_TRUE(m_field.init());
    silence(SetCur, 5);
    EXPECT_TRUE(m_field.setValue(-3));
    EXPECT_EQ(m_firmware.data(unit, eightBytes),
              (SerialBytes{0xfd, 255, 255, 255, 255, 255, 255, 255}));
}

TEST_F(SerialNumberTest, FailsWhenNeitherFieldNorControlCouldBeWritten)
{
    m_field.setShared(2, 2);
    ASSERT_TRUE(m_field.init());
    m_firmware.clearPackets();
    silence(SetCur);
    EXPECT_FALSE(m_field.setValue(9));
    EXPECT_EQ(m_firmware.packets().size(), 1 + 5 + 5U);
    m_firmware.unplug();
    EXPECT_EQ(m_field.value(), 9);
}

TEST_F(SerialNumberTest, HasATypeForEachWidth)
{
    auto const typeOf = [this](auto const zero) {
        return ZorvaneCameraControlNumeric<std::remove_const_t<decltype(zero)>>(
                   &m_camera, "Number", twoBytes, unit, family)
            .type();
    };
    EXPECT_EQ(typeOf(0), ICameraControl::Int32);
    EXPECT_EQ(typeOf(0LL), ICameraControl::Int64);
    EXPECT_EQ(typeOf(static_cast<unsigned char>(0)), ICameraControl::UInt8);
    EXPECT_EQ(typeOf(static_cast<unsigned short>(0)), ICameraControl::UInt16);
    EXPECT_EQ(typeOf(0U), ICameraControl::UInt32);
}

TEST_F(SerialNumberTest, CutsValuesToItsWidth)
{
    ZorvaneCameraControlNumeric<unsigned char> narrow(&m_camera, "Narrow", twoBytes, unit, family);
    ZorvaneCameraControlNumeric<long long> wide(&m_camera, "Wide", eightBytes, unit, family);
    ASSERT_TRUE(narrow.init());
    ASSERT_TRUE(wide.init());
    EXPECT_EQ(narrow.value(), 0xfe);
    EXPECT_EQ(narrow.minimum(), 0xfb);
    EXPECT_EQ(narrow.maximum(), 0xff);
    EXPECT_EQ(wide.value(), 0x0004000300020001);
}

} // namespace
