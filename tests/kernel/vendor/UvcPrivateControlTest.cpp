// SPDX-License-Identifier: MIT
#include "PrivateControls.h"

#include <ICameraControl.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlStringMenu.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <linux/videodev2.h>
#include <set>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::toHex;

namespace
{

std::set<std::string> const readOnly{"Error Status", "Temperature (C)"};

ICameraControl::Type typeOf(ExpectedMapping const& row)
{
    switch (row.v4l2Type) {
    case V4L2_CTRL_TYPE_MENU:
        return ICameraControl::Type::StringMenu;
    case V4L2_CTRL_TYPE_BOOLEAN:
        return ICameraControl::Type::Boolean;
    default:
        return ICameraControl::Type::Int32;
    }
}

class UvcPrivateControlTest : public testing::Test
{
protected:
    EmulatedCameras const m_cameras{{"vendor-old"}};
    CameraPointer const m_camera = openListed(m_cameras.videoNode());
};

/// A call by hand, past libv4l2.
int errorOfPlainCall(std::string const& node, unsigned long request, unsigned id)
{
    int const file = ::open(node.c_str(), O_RDWR | O_CLOEXEC);
    v4l2_control control{};
    control.id = id;
    int const error = ::ioctl(file, request, &control) == 0 ? 0 : errno;
    ::close(file);
    return error;
}

TEST_F(UvcPrivateControlTest, AreListedWithNameTypeFamilyAndItems)
{
    int found = 0;
    for (int i = 0; i < m_camera->controlNumber(); ++i) {
        found += m_camera->control(i)->id() >= V4L2_CID_PRIVATE_BASE ? 1 : 0;
    }
    EXPECT_EQ(found, static_cast<int>(expectedMappings().size()));
    for (ExpectedMapping const& row : expectedMappings()) {
        SCOPED_TRACE(row.name);
        ICameraControl const& control = controlOf(*m_camera, row.name);
        EXPECT_EQ(control.id(), row.id);
        EXPECT_EQ(control.type(), typeOf(row));
        EXPECT_EQ(control.family(), row.family);
        EXPECT_EQ(control.isReadOnly(), readOnly.count(row.name) != 0);
        auto const* const menu = dynamic_cast<ICameraControlStringMenu const*>(&control);
        ASSERT_EQ(menu != nullptr, !row.menu.empty());
        for (std::size_t item = 0; item < row.menu.size(); ++item) {
            EXPECT_EQ(menu->string(static_cast<int>(item)), row.menu[item].name);
        }
        EXPECT_EQ(menu != nullptr ? menu->count() : 0, static_cast<int>(row.menu.size()));
    }
    EXPECT_EQ(m_camera->lightModeControl()->id(), V4L2_CID_PRIVATE_BASE);
    EXPECT_EQ(m_camera->autoGammaControl()->id(), V4L2_CID_PRIVATE_BASE + 28U);
}

TEST_F(UvcPrivateControlTest, WrittenHereArriveAtTheExtensionUnitAndTouchNothingElse)
{
    for (ExpectedMapping const& row : expectedMappings()) {
        if (readOnly.count(row.name) != 0) {
            continue;
        }
        SCOPED_TRACE(row.name);
        ICameraControl& control = controlOf(*m_camera, row.name);
        long long const value = otherValue(control, row);
        Bytes const wanted = withNumber(cameraBytes(m_cameras, 3, row.selector), row.offset / 8,
                                        row.size / 8, value);
        m_cameras.mark();
        EXPECT_TRUE(setValue(control, row, value));
        auto const written = m_cameras.requests("SET_CUR");
        ASSERT_EQ(written.size(), 1U);
        EXPECT_EQ(written[0]["kind"], "unit");
        EXPECT_EQ(written[0]["unit"], 3);
        EXPECT_EQ(written[0]["selector"], row.selector);
        EXPECT_EQ(written[0]["data"], toHex(wanted));
        EXPECT_EQ(toHex(cameraBytes(m_cameras, 3, row.selector)), toHex(wanted));
        EXPECT_EQ(valueOf(control, row), value);
    }
}

TEST_F(UvcPrivateControlTest, ThatAreReadOnlyAreNotSent)
{
    m_cameras.mark();
    for (std::string const& name : readOnly) {
        EXPECT_FALSE(
            dynamic_cast<ICameraControlNumeric<int>&>(controlOf(*m_camera, name)).setValue(0));
    }
    EXPECT_TRUE(m_cameras.requests("SET_CUR").empty());
}

TEST_F(UvcPrivateControlTest, AreRefusedByThePlainCallsOfThisKernel)
{
    std::string const node = m_cameras.videoNode();
    m_cameras.mark();
    for (ExpectedMapping const& row : expectedMappings()) {
        EXPECT_EQ(errorOfPlainCall(node, VIDIOC_G_CTRL, row.id), EINVAL) << row.name;
        EXPECT_EQ(errorOfPlainCall(node, VIDIOC_S_CTRL, row.id), EINVAL) << row.name;
    }
    EXPECT_TRUE(m_cameras.requests("SET_CUR").empty());
    EXPECT_EQ(errorOfPlainCall(node, VIDIOC_S_CTRL, V4L2_CID_BRIGHTNESS), 0);
    EXPECT_EQ(m_cameras.requests("SET_CUR").size(), 1U);
}

} // namespace
