// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControlBoolean.h"
#include "serial/ZorvaneCameraControlNumeric.h"
#include "serial/ZorvaneCameraControlStringMenu.h"

#include "ControlledCamera.h"

#include <stdexcept>

namespace
{

using namespace ImageAcquisition;
using namespace VirtualCamera;

class SerialBooleanTest : public ControlledCameraTest
{
protected:
    ZorvaneCameraControlBoolean m_control{&m_camera, "Switch", oneByte, unit, family};
    ZorvaneCameraControlBoolean m_field{&m_camera, "Field", eightBytes, unit, family};
};

TEST_F(SerialBooleanTest, WritesOneOrZeroAndReadsAnythingButZeroAsTrue)
{
    ASSERT_TRUE(m_control.init());
    EXPECT_TRUE(m_control.setValue(true));
    EXPECT_EQ(m_firmware.data(unit, oneByte), (SerialBytes{1}));
    EXPECT_TRUE(m_control.setValue(false));
    EXPECT_EQ(m_firmware.data(unit, oneByte), (SerialBytes{0}));
    EXPECT_FALSE(m_control.value());
    m_firmware.setData(unit, oneByte, {0x80});
    EXPECT_TRUE(m_control.value());
}

TEST_F(SerialBooleanTest, AsksNoLimits)
{
    EXPECT_TRUE(m_control.init());
    EXPECT_EQ(codes(), (std::vector<int>{0x85, 0x86}));
}

TEST_F(SerialBooleanTest, HasTrueForADefaultThatIsNeverAskedFor)
{
    EXPECT_TRUE(m_control.defaultValue());
    ASSERT_TRUE(m_control.init());
    EXPECT_TRUE(m_control.defaultValue());
}

TEST_F(SerialBooleanTest, GivesTheValueLastWrittenWhenTheReadingFails)
{
    ASSERT_TRUE(m_control.init());
    m_firmware.unplug();
    EXPECT_TRUE(m_control.value());
    EXPECT_FALSE(m_control.setValue(false));
    EXPECT_FALSE(m_control.value());
}

TEST_F(SerialBooleanTest, ReadsAndWritesItsFieldOnly)
{
    m_field.setShared(4, 2);
    ASSERT_TRUE(m_field.init());
    EXPECT_TRUE(m_field.value());
    EXPECT_TRUE(m_field.setValue(false));
    EXPECT_EQ(m_firmware.data(unit, eightBytes), (SerialBytes{1, 0, 2, 0, 0, 0, 4, 0}));
    EXPECT_FALSE(m_field.value());
}

TEST_F(SerialBooleanTest, WritesTheWholeControlAfterItsFieldCouldNotBeWritten)
{
    m_field.setShared(4, 2);
    ASSERT_TRUE(m_field.init());
    m_firmware.clearPackets();
    silence(SetCur, 5);
    EXPECT_TRUE(m_field.setValue(true));
    SerialBytes const merged{0x21, 1, 0, 20, 0, 3, 8, 0, 1, 0, 2, 0, 1, 0, 4, 0};
    std::vector<SerialBytes> expected{{0xa1, 0x81, 0, 20, 0, 3, 8, 0}};
    expected.insert(expected.end(), 5, merged);
    expected.push_back({0x21, 1, 0, 20, 0, 3, 8, 0, 1, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(m_firmware.packetBytes(), expected);
}

TEST_F(SerialBooleanTest, WritesTheWholeControlAfterItsNeighboursCouldNotBeRead)
{
    m_field.setShared(4, 2);
    ASSERT_TRUE(m_field.init());
    m_firmware.clearPackets();
    silence(GetCur);
    EXPECT_TRUE(m_field.setValue(false));
    EXPECT_EQ(codes(), (std::vector<int>{0x81, 0x81, 0x81, 0x81, 0x81, 0x01}));
    EXPECT_EQ(SerialBytes(8, 0), m_firmware.data(unit, eightBytes));
    EXPECT_FALSE(m_field.value());
}

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

class SerialMenuTest : public ControlledCameraTest
{
protected:
    using Settings = std::vector<ZorvaneCameraControlStringMenu::IndexSetting>;

    ZorvaneCameraControlStringMenu m_menu{
        &m_camera, "Menu", oneByte,
        unit,      family, Settings{{0, "Off"}, {3, "Continuous"}, {7, "Pulsed"}, {3, "Again"}}};
    ZorvaneCameraControlStringMenu m_empty{&m_camera, "Empty", oneByte, unit, family, {}};
};

TEST_F(SerialMenuTest, ListsItsItems)
{
    EXPECT_EQ(m_menu.type(), ICameraControl::StringMenu);
    EXPECT_EQ(m_menu.count(), 4);
    EXPECT_STREQ(m_menu.string(0), "Off");
    EXPECT_STREQ(m_menu.string(3), "Again");
    EXPECT_THROW(m_menu.string(4), std::out_of_range);
    EXPECT_THROW(m_menu.string(-1), std::out_of_range);
    EXPECT_EQ(m_empty.count(), 0);
    EXPECT_THROW(m_empty.string(0), std::out_of_range);
}

TEST_F(SerialMenuTest, FindsTheFirstPositionOfAValue)
{
    EXPECT_EQ(m_menu.reverseMap(0), 0);
    EXPECT_EQ(m_menu.reverseMap(3), 1);
    EXPECT_EQ(m_menu.reverseMap(1), -1);
    EXPECT_EQ(m_empty.reverseMap(0), -1);
}

TEST_F(SerialMenuTest, SendsTheValueOfAPositionAndReadsItBack)
{
    ASSERT_TRUE(m_menu.init());
    EXPECT_EQ(m_menu.currentIndex(), 2);
    EXPECT_STREQ(m_menu.currentString(), "Pulsed");
    EXPECT_TRUE(m_menu.setCurrentIndex(1));
    EXPECT_EQ(m_firmware.data(unit, oneByte), (SerialBytes{3}));
    EXPECT_EQ(m_menu.currentIndex(), 1);
    EXPECT_STREQ(m_menu.currentString(), "Continuous");
}

TEST_F(SerialMenuTest, SendsNothingForPositionsOutsideTheList)
{
    ASSERT_TRUE(m_menu.init());
    m_firmware.clearPackets();
    EXPECT_FALSE(m_menu.setCurrentIndex(-1));
    EXPECT_FALSE(m_menu.setCurrentIndex(4));
    EXPECT_FALSE(m_empty.setCurrentIndex(0));
    EXPECT_TRUE(m_firmware.packets().empty());
}

TEST_F(SerialMenuTest, HasNoPositionForAValueThatIsNoItem)
{
    ASSERT_TRUE(m_menu.init());
    m_firmware.setData(unit, oneByte, {1});
    EXPECT_EQ(m_menu.currentIndex(), -1);
    EXPECT_THROW(m_menu.currentString(), std::out_of_range);
}

TEST_F(SerialMenuTest, HasNoDefaultBecauseItIsNeverAskedFor)
{
    ASSERT_TRUE(m_menu.init());
    EXPECT_EQ(m_menu.defaultIndex(), -1);
    EXPECT_THROW(m_menu.defaultString(), std::out_of_range);
    ZorvaneCameraControlStringMenu const withMinusOne(&m_camera, "Menu", oneByte, unit, family,
                                                      Settings{{0, "Off"}, {-1, "Nothing"}});
    EXPECT_EQ(withMinusOne.defaultIndex(), 1);
    EXPECT_STREQ(withMinusOne.defaultString(), "Nothing");
}

TEST_F(SerialMenuTest, GivesTheItemLastWrittenWhenTheReadingFails)
{
    ASSERT_TRUE(m_menu.init());
    ASSERT_TRUE(m_menu.setCurrentIndex(0));
    m_firmware.unplug();
    EXPECT_EQ(m_menu.currentIndex(), 0);
    EXPECT_FALSE(m_menu.setCurrentIndex(1));
    EXPECT_EQ(m_menu.currentIndex(), 1);
}

TEST_F(SerialMenuTest, KeepsToItsField)
{
    ZorvaneCameraControlStringMenu field(&m_camera, "Field", eightBytes, unit, family,
                                         Settings{{6, "Six"}, {4, "Four"}});
    field.setShared(6, 2);
    ASSERT_TRUE(field.init());
    EXPECT_EQ(field.currentIndex(), 1);
    EXPECT_TRUE(field.setCurrentIndex(0));
    EXPECT_EQ(m_firmware.data(unit, eightBytes), (SerialBytes{1, 0, 2, 0, 3, 0, 6, 0}));
    silence(SetCur, 5);
    EXPECT_TRUE(field.setCurrentIndex(1));
    EXPECT_EQ(m_firmware.data(unit, eightBytes), (SerialBytes{4, 0, 0, 0, 0, 0, 0, 0}));
}

} // namespace
