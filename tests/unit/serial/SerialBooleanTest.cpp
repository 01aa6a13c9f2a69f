// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControlBoolean.h"

#include "ControlledCamera.h"

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

} // namespace
