// SPDX-License-Identifier: MIT
#include "CameraWithControls.h"
#include "ICameraControlBoolean.h"
#include "ICameraControlNumeric.h"
#include "ICameraControlStringMenu.h"
#include "ScriptedVendorCamera.h"
#include "VendorRecord.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

class ExtensionUnitControlsTest : public testing::Test
{
protected:
    CameraWithControls m_opened{aVendorCamera(), CameraWithControls::Maker::Vendor};
};

ICameraControl::Type typeOf(ExpectedMapping const& row)
{
    switch (row.v4l2Type) {
    case V4L2_CTRL_TYPE_MENU:
        return ICameraControl::StringMenu;
    case V4L2_CTRL_TYPE_BOOLEAN:
        return ICameraControl::Boolean;
    default:
        return ICameraControl::Int32;
    }
}

TEST_F(ExtensionUnitControlsTest, AllAreListedWithNameTypeAndItems)
{
    EXPECT_EQ(m_opened.camera.controlNumber(), 29);
    for (ExpectedMapping const& row : expectedMappings()) {
        ICameraControl const& control = m_opened.control(row.id);
        EXPECT_EQ(control.name(), row.name);
        EXPECT_EQ(typeOf(row), control.type()) << row.name;
        EXPECT_EQ(m_opened.camera.control(row.name.c_str()), &control);
        EXPECT_NE(control.family(), ICameraControl::Unknown) << row.name;
        if (!row.menu.empty()) {
            auto const& menu = m_opened.as<ICameraControlStringMenu>(row.id);
            ASSERT_EQ(static_cast<int>(row.menu.size()), menu.count()) << row.name;
            for (int position = 0; position < menu.count(); ++position) {
                EXPECT_EQ(row.menu[static_cast<std::size_t>(position)].name, menu.string(position));
            }
        }
    }
}

TEST_F(ExtensionUnitControlsTest, NoneIsWarnedOfForItsFamily)
{
    testing::internal::CaptureStderr();
    DeviceStub const record = recordWithExtensionUnit();
    Camera again(&record);
    ASSERT_TRUE(again.init());
    EXPECT_EQ(again.controlNumber(), 29);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ExtensionUnitControlsTest, LightModeSendsTheDevicesValueOfItsItem)
{
    auto& light = m_opened.as<ICameraControlStringMenu>(0x08000000);
    ASSERT_EQ(light.count(), 2);
    EXPECT_STREQ(light.string(0), "Off");
    EXPECT_STREQ(light.string(1), "Continuous");
    EXPECT_TRUE(light.setCurrentIndex(1));
    EXPECT_EQ(m_opened.node.selectorBytes(1), std::vector<std::uint8_t>{3});
    EXPECT_EQ(light.currentIndex(), 1);
    EXPECT_STREQ(light.currentString(), "Continuous");
    EXPECT_TRUE(light.setCurrentIndex(0));
    EXPECT_EQ(m_opened.node.selectorBytes(1), std::vector<std::uint8_t>{0});
    EXPECT_FALSE(light.setCurrentIndex(2));
}

TEST_F(ExtensionUnitControlsTest, WhiteBalanceFieldsLieRedGreenBlue)
{
    EXPECT_TRUE(m_opened.as<ICameraControlNumeric<int>>(0x08000012).setValue(0x1122)); // Red
    EXPECT_TRUE(m_opened.as<ICameraControlNumeric<int>>(0x08000013).setValue(0x5566)); // Blue
    EXPECT_TRUE(m_opened.as<ICameraControlNumeric<int>>(0x08000014).setValue(0x3344)); // Green
    std::vector<std::uint8_t> const wanted = {0x22, 0x11, 0x44, 0x33, 0x66, 0x55};
    EXPECT_EQ(m_opened.node.selectorBytes(10), wanted);
}

TEST_F(ExtensionUnitControlsTest, PanAndTiltAreSigned)
{
    m_opened.node.setSelectorBytes(14, {0xFF, 0xFF, 0xFE, 0xFF});
    EXPECT_EQ(m_opened.as<ICameraControlNumeric<int>>(0x08000018).value(), -1);
    EXPECT_EQ(m_opened.as<ICameraControlNumeric<int>>(0x08000019).value(), -2);
}

TEST_F(ExtensionUnitControlsTest, BooleansAndWordsReachTheirSelectors)
{
    EXPECT_TRUE(m_opened.as<ICameraControlBoolean>(0x08000008).setValue(true));
    EXPECT_EQ(m_opened.node.selectorBytes(6), std::vector<std::uint8_t>{1});
    EXPECT_TRUE(m_opened.as<ICameraControlBoolean>(0x08000008).value());

    m_opened.node.setSelectorBytes(3, {0x78, 0x56, 0x34, 0x12});
    EXPECT_EQ(m_opened.as<ICameraControlNumeric<int>>(0x08000002).value(), 0x12345678);
}

} // namespace
