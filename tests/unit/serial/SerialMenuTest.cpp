// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControlStringMenu.h"

#include "ControlledCamera.h"

#include <stdexcept>

namespace
{

using namespace ImageAcquisition;
using namespace VirtualCamera;

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
