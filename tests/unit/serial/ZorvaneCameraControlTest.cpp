// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControlBoolean.h"

#include "ControlledCamera.h"
#include "Stopwatch.h"

#include <cstring>

namespace
{

using namespace ImageAcquisition;
using namespace VirtualCamera;

/// Selector 1 has one byte, 2 two bytes, 20 eight bytes. What all controls have in common is
/// tested on Booleans.
class ZorvaneCameraControlTest : public ControlledCameraTest
{
protected:
    /// Every exchange but GET_LEN fails without a packet.
    void expectNoExchange(ZorvaneCameraControl& control)
    {
        m_firmware.clearPackets();
        long long value = 77;
        int limit = 77;
        EXPECT_FALSE(control.initFlags());
        EXPECT_FALSE(control.updateState());
        EXPECT_FALSE(control.initDefaultValue());
        EXPECT_FALSE(control.getMinimum(limit));
        EXPECT_FALSE(control.getMaximum(limit));
        EXPECT_FALSE(control.getSharedControlValue(value, 0, 1));
        EXPECT_EQ(value, 77);
        EXPECT_EQ(limit, 77);
        EXPECT_FALSE(control.getControlValue(value));
        EXPECT_EQ(value, -1);
        EXPECT_FALSE(control.setSharedControlValue(1, 0, 1));
        EXPECT_FALSE(control.setControlValue(1));
        EXPECT_TRUE(m_firmware.packets().empty());
    }

    ZorvaneCameraControlBoolean m_small{&m_camera, "Small", oneByte, unit, family};
    ZorvaneCameraControlBoolean m_wide{&m_camera, "Wide", twoBytes, unit, family};
    ZorvaneCameraControlBoolean m_large{&m_camera, "Large", eightBytes, unit, family};
};

TEST_F(ZorvaneCameraControlTest, TellsWhatItWasMadeOf)
{
    EXPECT_EQ(m_large.id(), 20U);
    EXPECT_EQ(m_large.type(), ICameraControl::Boolean);
    EXPECT_EQ(m_large.family(), ICameraControl::Focus);
    EXPECT_STREQ(m_large.name(), "Large");
    EXPECT_STREQ(m_large.typeString(), "Boolean");
    EXPECT_STREQ(ICameraControl::familyString(ICameraControl::Focus), m_large.familyString());
}

TEST_F(ZorvaneCameraControlTest, CopiesItsName)
{
    char name[] = "Before";
    ZorvaneCameraControlBoolean const control(&m_camera, name, 1, 3, family);
    std::strcpy(name, "After");
    EXPECT_STREQ(control.name(), "Before");
    EXPECT_STREQ(ZorvaneCameraControlBoolean(&m_camera, nullptr, 1, 3, family).name(), "");
}

TEST_F(ZorvaneCameraControlTest, HasNoFlagsBeforeItAsked)
{
    EXPECT_FALSE(m_small.isReadOnly());
    EXPECT_FALSE(m_small.isWriteOnly());
    EXPECT_TRUE(m_small.needsClassUpdate());
    EXPECT_EQ(m_small.dataLength(), 0);
}

TEST_F(ZorvaneCameraControlTest, ReadsItsFlagsOutOfTheInfoByte)
{
    struct Expectation
    {
        std::uint8_t info;
        bool readOnly, writeOnly, needsClassUpdate;
    };
    for (Expectation const& expected : {Expectation{0x00, false, false, true},
                                        {0x01, true, false, true},
                                        {0x02, false, true, true},
                                        {0x03, false, false, true},
                                        {0x08, false, false, false},
                                        {0x09, true, false, false},
                                        {0x0b, false, false, false},
                                        {0xf6, false, true, true},
                                        {0xff, false, false, false}}) {
        SCOPED_TRACE(int(expected.info));
        m_firmware.setInfo(unit, oneByte, expected.info);
        ASSERT_TRUE(m_small.updateState());
        EXPECT_EQ(m_small.isReadOnly(), expected.readOnly);
        EXPECT_EQ(m_small.isWriteOnly(), expected.writeOnly);
        EXPECT_EQ(m_small.needsClassUpdate(), expected.needsClassUpdate);
        EXPECT_FALSE(m_small.isDisabled() || m_small.isGrabbed() || m_small.isInactive() ||
                     m_small.bestAsSlider() || m_small.isVolatile());
        EXPECT_TRUE(m_small.hasPayload() && m_small.executesOnWrite());
    }
}

TEST_F(ZorvaneCameraControlTest, AsksLengthAndFlagsInInitAndPausesAfterEach)
{
    Stopwatch const watch;
    EXPECT_TRUE(m_wide.init());
    EXPECT_GE(watch.seconds(), 0.1);
    EXPECT_EQ(m_wide.dataLength(), 2);
    EXPECT_EQ(m_firmware.packetBytes(), (std::vector<SerialBytes>{{0xa1, 0x85, 0, 2, 0, 3, 2, 0},
                                                                  {0xa1, 0x86, 0, 2, 0, 3, 1, 0}}));
}

TEST_F(ZorvaneCameraControlTest, AsksForFlagsAlsoWithoutALength)
{
    silence(GetLen);
    m_firmware.setInfo(unit, oneByte, 0x01);
    EXPECT_FALSE(m_small.init());
    EXPECT_EQ(codes(), (std::vector<int>{0x85, 0x85, 0x85, 0x85, 0x85, 0x86}));
    EXPECT_TRUE(m_small.isReadOnly());
}

TEST_F(ZorvaneCameraControlTest, KeepsTheLengthWhenTheFlagsFail)
{
    silence(GetInfo);
    EXPECT_FALSE(m_wide.init());
    EXPECT_EQ(m_wide.dataLength(), 2);
}

TEST_F(ZorvaneCameraControlTest, UpdatesItsFlagsAndTellsWhetherThatWorked)
{
    EXPECT_TRUE(m_small.init());
    EXPECT_FALSE(m_small.isReadOnly());
    m_firmware.setInfo(unit, oneByte, 0x01);
    EXPECT_TRUE(m_small.updateState());
    EXPECT_TRUE(m_small.isReadOnly());
    m_firmware.setInfo(unit, oneByte, 0x03);
    silence(GetInfo);
    EXPECT_FALSE(m_small.updateState());
    EXPECT_TRUE(m_small.isReadOnly());
}

TEST_F(ZorvaneCameraControlTest, ReadsTheWholeControl)
{
    ASSERT_TRUE(m_wide.initControlLength());
    long long value = 0;
    EXPECT_TRUE(m_wide.getControlValue(value));
    EXPECT_EQ(value, -2);
    EXPECT_EQ(lastPacket(), (SerialBytes{0xa1, 0x81, 0, 2, 0, 3, 2, 0}));
}

TEST_F(ZorvaneCameraControlTest, GivesTheValueLastWrittenWhenTheReadingFails)
{
    ASSERT_TRUE(m_wide.initControlLength());
    silence(GetCur, 10);
    long long value = 99;
    EXPECT_FALSE(m_wide.getControlValue(value));
    EXPECT_EQ(value, -1);
    EXPECT_TRUE(m_wide.setControlValue(-300));
    EXPECT_FALSE(m_wide.getControlValue(value));
    EXPECT_EQ(value, -300);
}

TEST_F(ZorvaneCameraControlTest, DoesNotTakeAValueReadForTheValueLastWritten)
{
    ASSERT_TRUE(m_wide.initControlLength());
    ASSERT_TRUE(m_wide.setControlValue(4));
    m_firmware.setData(unit, twoBytes, {9, 0});
    long long value = 0;
    EXPECT_TRUE(m_wide.getControlValue(value));
    EXPECT_EQ(value, 9);
    m_firmware.unplug();
    EXPECT_FALSE(m_wide.getControlValue(value));
    EXPECT_EQ(value, 4);
}

TEST_F(ZorvaneCameraControlTest, KeepsAValueThatAnUnpluggedCameraDidNotTake)
{
    ASSERT_TRUE(m_wide.initControlLength());
    m_firmware.unplug();
    EXPECT_FALSE(m_wide.setControlValue(5));
    long long value = 0;
    EXPECT_FALSE(m_wide.getControlValue(value));
    EXPECT_EQ(value, 5);
}

TEST_F(ZorvaneCameraControlTest, WritesWithTheSignExtended)
{
    ASSERT_TRUE(m_large.initControlLength());
    EXPECT_TRUE(m_large.setControlValue(-2));
    EXPECT_EQ(lastPacket(),
              (SerialBytes{0x21, 1, 0, 20, 0, 3, 8, 0, 0xfe, 255, 255, 255, 255, 255, 255, 255}));
}

TEST_F(ZorvaneCameraControlTest, ReadsAnyFieldOfAControl)
{
    ASSERT_TRUE(m_large.initControlLength());
    long long value = 0;
    EXPECT_TRUE(m_large.getSharedControlValue(value, 6, 2));
    EXPECT_EQ(value, 4);
    EXPECT_TRUE(m_large.getSharedControlValue(value, 2, 4));
    EXPECT_EQ(value, 0x00030002);
}

TEST_F(ZorvaneCameraControlTest, LeavesTheResultWhenAFieldCannotBeRead)
{
    ASSERT_TRUE(m_large.initControlLength());
    silence(GetCur);
    long long value = 99;
    EXPECT_FALSE(m_large.getSharedControlValue(value, 6, 2));
    EXPECT_EQ(value, 99);
}

TEST_F(ZorvaneCameraControlTest, WritesAFieldBetweenItsNeighboursAfterAPause)
{
    ASSERT_TRUE(m_large.initControlLength());
    m_firmware.clearPackets();
    Stopwatch const watch;
    EXPECT_TRUE(m_large.setSharedControlValue(0x1234, 2, 2));
    EXPECT_GE(watch.seconds(), 0.05);
    EXPECT_EQ(m_firmware.packetBytes(), (std::vector<SerialBytes>{{0xa1, 0x81, 0, 20, 0, 3, 8, 0},
                                                                  {0x21, 0x01, 0, 20, 0, 3, 8, 0, 1,
                                                                   0, 0x34, 0x12, 3, 0, 4, 0}}));
}

TEST_F(ZorvaneCameraControlTest, WritesNoFieldWithoutKnowingItsNeighbours)
{
    ASSERT_TRUE(m_large.initControlLength());
    m_firmware.clearPackets();
    silence(GetCur);
    EXPECT_FALSE(m_large.setSharedControlValue(5, 2, 2));
    EXPECT_EQ(codes(), (std::vector<int>(5, 0x81)));
}

TEST_F(ZorvaneCameraControlTest, GivesTheLimitsOfItsField)
{
    m_large.setShared(2, 2);
    ASSERT_TRUE(m_large.initControlLength());
    int limit = 99;
    EXPECT_TRUE(m_large.getMaximum(limit));
    EXPECT_EQ(limit, 0x0200);
    EXPECT_TRUE(m_large.getMinimum(limit));
    EXPECT_EQ(limit, 0);
    silence(GetMax);
    limit = 99;
    EXPECT_FALSE(m_large.getMaximum(limit));
    EXPECT_EQ(limit, 99);
}

TEST_F(ZorvaneCameraControlTest, TakesTheDefaultValueForTheCurrentOneWhenSomebodyAsksForIt)
{
    m_large.setShared(4, 2);
    ASSERT_TRUE(m_large.initControlLength());
    EXPECT_TRUE(m_large.initDefaultValue());
    EXPECT_EQ(lastPacket(), (SerialBytes{0xa1, 0x87, 0, 20, 0, 3, 8, 0}));
    silence(GetCur);
    long long value = 0;
    EXPECT_FALSE(m_large.getControlValue(value));
    EXPECT_EQ(value, 3);
}

TEST_F(ZorvaneCameraControlTest, AbsurdLengthAboveEightBytesIsTakenButEndsEveryLaterExchange)
{
    for (int const length : {9, 255, 32767}) {
        ZorvaneCameraControlBoolean control(&m_camera, "Control", oneByte, unit, family);
        m_firmware.claimLength(unit, oneByte, static_cast<std::uint16_t>(length));
        EXPECT_TRUE(control.initControlLength());
        EXPECT_EQ(control.dataLength(), length);
        expectNoExchange(control);
    }
    EXPECT_FALSE(m_small.init());
}

TEST_F(ZorvaneCameraControlTest, AbsurdLengthBelowZeroFails)
{
    for (int const length : {0xffff, 0x8000}) {
        ZorvaneCameraControlBoolean control(&m_camera, "Control", oneByte, unit, family);
        m_firmware.claimLength(unit, oneByte, static_cast<std::uint16_t>(length));
        EXPECT_FALSE(control.initControlLength());
        expectNoExchange(control);
    }
    EXPECT_FALSE(m_small.init());
}

TEST_F(ZorvaneCameraControlTest, AbsurdLengthThatLeavesNoRoomForTheFieldEndsEveryLaterExchange)
{
    m_wide.setShared(1, 2);
    EXPECT_TRUE(m_wide.initControlLength());
    expectNoExchange(m_wide);
    EXPECT_FALSE(m_wide.init());
}

TEST_F(ZorvaneCameraControlTest, AbsurdLengthMayBeExactlyTheEndOfTheField)
{
    m_wide.setShared(1, 1);
    EXPECT_TRUE(m_wide.init());
    EXPECT_TRUE(m_wide.setValue(true));
    EXPECT_EQ(m_firmware.data(unit, twoBytes), (SerialBytes{0xfe, 1}));
}

TEST_F(ZorvaneCameraControlTest, AbsurdLengthDoesNotHelpAFieldWithImpossibleBounds)
{
    for (auto const& [offset, length] : {std::pair(-1, 2), {0, -1}, {2147483647, 2}, {0, 9}}) {
        ZorvaneCameraControlBoolean control(&m_camera, "Control", eightBytes, unit, family);
        control.setShared(offset, length);
        EXPECT_TRUE(control.initControlLength());
        expectNoExchange(control);
    }
}

TEST_F(ZorvaneCameraControlTest, AbsurdLengthOfZeroReadsAsZero)
{
    m_firmware.claimLength(unit, oneByte, 0);
    EXPECT_TRUE(m_small.init());
    EXPECT_EQ(m_small.dataLength(), 0);
    long long value = 77;
    EXPECT_TRUE(m_small.getControlValue(value));
    EXPECT_EQ(value, 0);
    EXPECT_EQ(lastPacket(), (SerialBytes{0xa1, 0x81, 0, 1, 0, 3, 0, 0}));
}

TEST_F(ZorvaneCameraControlTest, FailsWithoutALink)
{
    ZorvaneCameraControlBoolean control(nullptr, "Auto Focus", 8, 1, ICameraControl::Focus);
    EXPECT_FALSE(control.init());
    EXPECT_FALSE(control.setValue(true));
}

} // namespace
