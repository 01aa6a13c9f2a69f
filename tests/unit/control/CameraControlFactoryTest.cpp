// SPDX-License-Identifier: MIT
#include "control/CameraControlFactory.h"
#include "CameraWithControls.h"
#include "ICameraControlBitMask.h"
#include "ICameraControlBoolean.h"
#include "ICameraControlButton.h"
#include "ICameraControlInt64Menu.h"
#include "ICameraControlNumeric.h"
#include "ICameraControlString.h"
#include "ICameraControlStringMenu.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <cstring>

using namespace ImageAcquisition;
using namespace VirtualCamera;

namespace
{

v4l2_queryctrl recordOf(unsigned int type, char const* name = "Gain")
{
    v4l2_queryctrl record{};
    record.id = V4L2_CID_GAIN;
    record.type = type;
    record.maximum = 2;
    std::strncpy(reinterpret_cast<char*>(record.name), name, sizeof record.name - 1);
    return record;
}

template <typename Interface>
bool offers(ICameraControl* control)
{
    return dynamic_cast<Interface*>(control) != nullptr;
}

struct Row
{
    unsigned int driverType;
    ICameraControl::Type type;
    char const* text;
    bool (*offersItsInterface)(ICameraControl*);
};

Row const table[] = {
    {1, ICameraControl::Int32, "Int32", offers<ICameraControlNumeric<int>>},
    {2, ICameraControl::Boolean, "Boolean", offers<ICameraControlBoolean>},
    {3, ICameraControl::StringMenu, "StringMenu", offers<ICameraControlStringMenu>},
    {4, ICameraControl::Button, "Button", offers<ICameraControlButton>},
    {5, ICameraControl::Int64, "Int64", offers<ICameraControlNumeric<long long>>},
    {7, ICameraControl::String, "String", offers<ICameraControlString>},
    {8, ICameraControl::BitMask, "BitMask", offers<ICameraControlBitMask>},
    {9, ICameraControl::Int64Menu, "Int64Menu", offers<ICameraControlInt64Menu>},
    {0x0100, ICameraControl::UInt8, "UInt8", offers<ICameraControlNumeric<unsigned char>>},
    {0x0101, ICameraControl::UInt16, "UInt16", offers<ICameraControlNumeric<unsigned short>>},
    {0x0102, ICameraControl::UInt16, "UInt16", offers<ICameraControlNumeric<unsigned short>>},
};

class CameraControlFactoryTest : public testing::Test
{
protected:
    std::unique_ptr<ICameraControl> create(v4l2_queryctrl const& record)
    {
        return std::unique_ptr<ICameraControl>(
            CameraControlFactory::createControl(m_opened.camera, record));
    }

    CameraWithControls m_opened{aCamera()};
};

TEST_F(CameraControlFactoryTest, EachDriverTypeBecomesItsTypedControl)
{
    for (Row const& row : table) {
        std::unique_ptr<ICameraControl> const control = create(recordOf(row.driverType));
        ASSERT_NE(control, nullptr) << row.driverType;
        EXPECT_EQ(control->type(), row.type) << row.driverType;
        EXPECT_STREQ(control->typeString(), row.text);
        for (Row const& other : table) {
            EXPECT_EQ(other.offersItsInterface(control.get()), other.type == row.type)
                << row.text << " as " << other.text;
        }
    }
}

TEST_F(CameraControlFactoryTest, MenusAlsoOfferWhatTheyHaveInCommon)
{
    EXPECT_TRUE(offers<ICameraControlBaseMenu>(create(recordOf(V4L2_CTRL_TYPE_MENU)).get()));
    EXPECT_TRUE(
        offers<ICameraControlBaseMenu>(create(recordOf(V4L2_CTRL_TYPE_INTEGER_MENU)).get()));
    EXPECT_FALSE(offers<ICameraControlBaseMenu>(create(recordOf(V4L2_CTRL_TYPE_INTEGER)).get()));
}

TEST_F(CameraControlFactoryTest, ClassHeadingsAndUnknownTypesBecomeNothing)
{
    for (unsigned int const type : {6u, 0u, 10u, 0xFFu, 0x0103u, 0x0104u, 0x0106u, 0xFFFFFFFFu}) {
        EXPECT_EQ(create(recordOf(type)), nullptr) << type;
    }
    EXPECT_EQ(m_opened.node.countOf(Call::Ioctl), 0u);
}

TEST_F(CameraControlFactoryTest, UnknownTypesAreNotWarnedOf)
{
    testing::internal::CaptureStderr();
    v4l2_queryctrl heading = recordOf(V4L2_CTRL_TYPE_CTRL_CLASS);
    heading.id = V4L2_CID_USER_CLASS;
    create(heading);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(CameraControlFactoryTest, ControlTakesIdNameFlagsAndFamilyFromTheRecord)
{
    v4l2_queryctrl record = recordOf(V4L2_CTRL_TYPE_INTEGER, "Gain, Analogue");
    record.flags = V4L2_CTRL_FLAG_SLIDER | V4L2_CTRL_FLAG_VOLATILE;
    std::unique_ptr<ICameraControl> const control = create(record);
    EXPECT_EQ(control->id(), 0x00980913u);
    EXPECT_STREQ(control->name(), "Gain, Analogue");
    EXPECT_TRUE(control->bestAsSlider());
    EXPECT_TRUE(control->isVolatile());
    EXPECT_FALSE(control->isReadOnly());
    EXPECT_EQ(control->family(), ICameraControl::Advanced);
}

TEST_F(CameraControlFactoryTest, NameThatFillsItsFieldIsNotReadPastIt)
{
    v4l2_queryctrl record = recordOf(V4L2_CTRL_TYPE_INTEGER);
    std::memset(record.name, 'n', sizeof record.name);
    record.minimum = 0x41414141; // What follows the name in the record.
    EXPECT_EQ(create(record)->name(), std::string(32, 'n'));
}

TEST_F(CameraControlFactoryTest, ControlIsInitialisedOnce)
{
    std::unique_ptr<ICameraControl> const menu = create(recordOf(V4L2_CTRL_TYPE_MENU));
    EXPECT_EQ(m_opened.node.countOf(VIDIOC_QUERYMENU), 3u);
}

TEST_F(CameraControlFactoryTest, InvalidControlIsRecognisable)
{
    std::unique_ptr<ICameraControl> const control(
        CameraControlFactory::createInvalidControl(m_opened.camera));
    EXPECT_EQ(control->id(), 0xFFFFFFFFu);
    EXPECT_STREQ(control->name(), "Invalid control");
    EXPECT_EQ(control->type(), ICameraControl::Invalid);
    EXPECT_STREQ(control->typeString(), "UnknownType");
    EXPECT_EQ(control->family(), ICameraControl::Unknown);
    EXPECT_STREQ(control->familyString(), "Unknown");
    EXPECT_FALSE(control->isDisabled());
    EXPECT_FALSE(control->isGrabbed());
    EXPECT_FALSE(control->isReadOnly());
    EXPECT_FALSE(control->needsClassUpdate());
    EXPECT_FALSE(control->isInactive());
    EXPECT_FALSE(control->bestAsSlider());
    EXPECT_FALSE(control->isWriteOnly());
    EXPECT_FALSE(control->isVolatile());
    EXPECT_FALSE(control->hasPayload());
    EXPECT_FALSE(control->executesOnWrite());
}

TEST_F(CameraControlFactoryTest, InvalidControlIsOfNoTypedInterface)
{
    std::unique_ptr<ICameraControl> const control(
        CameraControlFactory::createInvalidControl(m_opened.camera));
    for (Row const& row : table) {
        EXPECT_FALSE(row.offersItsInterface(control.get())) << row.text;
    }
}

TEST_F(CameraControlFactoryTest, InvalidControlIsMadeInSilence)
{
    testing::internal::CaptureStderr();
    std::unique_ptr<ICameraControl> const control(
        CameraControlFactory::createInvalidControl(m_opened.camera));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(m_opened.node.countOf(Call::Ioctl), 0u);
}

} // namespace
