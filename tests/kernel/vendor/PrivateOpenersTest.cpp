// SPDX-License-Identifier: MIT
#include "PrivateControls.h"
#include "Tool.h"

#include <ICameraControl.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <linux/types.h>
#include <linux/usb/video.h>
#include <linux/uvcvideo.h>
#include <linux/videodev2.h>
#include <map>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace ImageAcquisition;
using namespace KernelTest;
using Json = nlohmann::json;

namespace
{

class PrivateOpenersTest : public testing::Test
{
protected:
    EmulatedCameras const m_cameras{{"vendor-old"}};
    CameraPointer m_camera = openListed(m_cameras.videoNode());
};

/// Makes a control known to the driver by hand: 0, or what the driver has against it.
int errorOfMapping(std::string const& node, ExpectedMapping const& row)
{
    int const file = ::open(node.c_str(), O_RDWR | O_CLOEXEC);
    uvc_xu_control_mapping mapping{};
    mapping.id = row.id;
    std::snprintf(reinterpret_cast<char*>(mapping.name), sizeof mapping.name, "%s",
                  row.name.c_str());
    mapping.entity[0] = 1;
    mapping.selector = static_cast<std::uint8_t>(row.selector);
    mapping.size = static_cast<std::uint8_t>(row.size);
    mapping.offset = static_cast<std::uint8_t>(row.offset);
    mapping.v4l2_type = row.v4l2Type;
    mapping.data_type = row.dataType;
    int const error = ::ioctl(file, UVCIOC_CTRL_MAP, &mapping) == 0 ? 0 : errno;
    ::close(file);
    return error;
}

/// Ids of a camera's controls, in its order.
std::vector<unsigned> idsOf(ICamera const& camera)
{
    std::vector<unsigned> ids;
    for (int i = 0; i < camera.controlNumber(); ++i) {
        ids.push_back(camera.control(i)->id());
    }
    return ids;
}

char const* shownType(ExpectedMapping const& row)
{
    return !row.menu.empty()                        ? "StringMenu"
           : row.v4l2Type == V4L2_CTRL_TYPE_BOOLEAN ? "Boolean"
                                                    : "Int32";
}

char const* shownFamily(ExpectedMapping const& row)
{
    static std::map<unsigned, char const*> const names{
        {ICameraControl::Focus, "focus"},
        {ICameraControl::AutoControl, "auto-control"},
        {ICameraControl::ImageGeometry, "image-geometry"},
        {ICameraControl::ImageQuality, "image-quality"},
        {ICameraControl::Debug, "debug"},
        {ICameraControl::Lighting, "lighting"},
        {ICameraControl::Connection, "connection"},
        {ICameraControl::Status, "status"},
        {ICameraControl::Advanced, "advanced"}};
    return names.at(row.family);
}

TEST_F(PrivateOpenersTest, FindThemMappedAlreadyAndHaveTheSameControls)
{
    std::vector<unsigned> const ids = idsOf(*m_camera);
    for (ExpectedMapping const& row : expectedMappings()) {
        if (row.menu.empty()) {
            EXPECT_EQ(errorOfMapping(m_cameras.videoNode(), row), EEXIST) << row.name;
        }
    }
    CameraPointer const second = openListed(m_cameras.videoNode());
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(idsOf(*second), ids);
    ExpectedMapping const& row = expectedMappings().front();
    EXPECT_TRUE(setValue(controlOf(*second, row.name), row, 3));
    EXPECT_EQ(valueOf(controlOf(*m_camera, row.name), row), 3);

    m_camera.reset();
    m_camera = openListed(m_cameras.videoNode());
    ASSERT_NE(m_camera, nullptr);
    EXPECT_EQ(idsOf(*m_camera), ids);
    EXPECT_EQ(valueOf(controlOf(*m_camera, row.name), row), 3);
}

TEST_F(PrivateOpenersTest, MayBeAnotherProgramMeanwhile)
{
    ExpectedMapping const& row = expectedMappings().front();
    EXPECT_TRUE(setValue(controlOf(*m_camera, row.name), row, 3));
    EXPECT_EQ(runTool("get 0 'Light Mode'").output, "Light Mode: 1 (Continuous)\n");
    EXPECT_EQ(runTool("set 0 'Light Mode=Off' 'Focus, Max (Range)=300'").status, 0);
    EXPECT_EQ(valueOf(controlOf(*m_camera, row.name), row), 0);
    EXPECT_EQ(m_cameras.command("get 3 1"), "00");
    EXPECT_EQ(m_cameras.command("get 3 9"), "00002c010100");
}

TEST_F(PrivateOpenersTest, SeeThemInTheToolAsTheTableSays)
{
    std::map<std::string, Json> shown;
    Json const all = readTool("show 0 --json");
    for (Json const& control : all.at("controls")) {
        shown[control.at("name")] = control;
    }
    EXPECT_EQ(shown.size(), static_cast<std::size_t>(m_camera->controlNumber()));
    for (ExpectedMapping const& row : expectedMappings()) {
        SCOPED_TRACE(row.name);
        ASSERT_EQ(shown.count(row.name), 1U);
        Json const& control = shown.at(row.name);
        EXPECT_EQ(control.at("id"), row.id);
        EXPECT_EQ(control.at("type"), shownType(row));
        EXPECT_EQ(control.at("family"), shownFamily(row));
        std::vector<std::string> items;
        for (ExpectedMapping::Item const& item : row.menu) {
            items.push_back(item.name);
        }
        EXPECT_EQ(control.value("items", std::vector<std::string>{}), items);
        EXPECT_NE(control.at("value"), nullptr);
    }
}

} // namespace
