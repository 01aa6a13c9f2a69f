// SPDX-License-Identifier: MIT
// Finding the one camera among the nodes of a machine with many that are none.
#include "ErrorOf.h"
#include "SessionCamera.h"
#include "Shell.h"
#include "V4l2Ctl.h"

#include <IDevice.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

using namespace KernelTest;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

/// The video nodes of the machine, by their numbers.
std::vector<std::string> videoNodes()
{
    return splitLines(runShell("ls -v /dev/video*").output);
}

/// Whether v4l2-ctl says that a node captures.
bool captures(std::string const& node)
{
    std::string const text = v4l2Ctl(node, "--info");
    return text.find("Video Capture", text.find("Device Caps")) != std::string::npos;
}

std::string portOf(std::string const& folder)
{
    return folder.substr(folder.rfind('/') + 1);
}

class SessionFindTest : public testing::Test
{
protected:
    EmulatedCameras const m_device{{"ordinary,release=0210"}};
    std::string const m_node = m_device.videoNode();
    std::string const m_port = portOf(m_device.usbFolder());
};

TEST_F(SessionFindTest, DescribesTheCameraAndTellsWhyTheOthersAreNone)
{
    ia::CameraList const list = ia::findCameras();
    ASSERT_EQ(list.cameras.size(), 1U);
    ia::Found const& camera = list.cameras.front();
    EXPECT_EQ(camera.node(), m_node);
    EXPECT_EQ(camera.name(), "Ordinary Camera");
    EXPECT_EQ(camera.serial(), "ORD001");
    EXPECT_EQ(camera.id(), "1d6b:0102");
    EXPECT_EQ(camera.port(), m_port);
    EXPECT_EQ(camera.index(), 0);
    EXPECT_EQ(camera.device().usbSpeed(), ImageAcquisition::UsbSpeedHigh);
    EXPECT_EQ(camera.device().usbRevision(), 0x0200);

    std::vector<std::string> nodes = videoNodes();
    nodes.erase(std::remove(nodes.begin(), nodes.end(), m_node), nodes.end());
    ASSERT_GE(nodes.size(), 4U) << "vivid's and the camera's second";
    ASSERT_EQ(list.leftOut.size(), nodes.size());
    int capturing = 0;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        ia::LeftOut const& one = list.leftOut[i];
        EXPECT_EQ(one.node, nodes[i]);
        bool const isCapturing = captures(one.node);
        capturing += isCapturing ? 1 : 0;
        EXPECT_EQ(one.reason,
                  isCapturing ? "has no USB device behind it" : "does not capture video")
            << one.node;
        EXPECT_EQ(one.why,
                  isCapturing ? ia::LeftOut::Why::NoUsbDevice : ia::LeftOut::Why::NoCapture);
        EXPECT_EQ(one.systemError, 0);
    }
    EXPECT_EQ(capturing, 1) << "vivid's";
}

TEST_F(SessionFindTest, FindsTheCameraByEveryTextThatMeansIt)
{
    std::string const name = m_node.substr(m_node.rfind('/') + 1);
    std::string const link = splitLines(runShell("ls /dev/v4l/by-id/*index0").output).front();
    for (std::string const& text :
         {std::string("0"), m_node, name, link, std::string("serial:ORD001"), "port:" + m_port,
          std::string("name:Ordinary Camera"), std::string("id:1D6B:0102"), std::string("ORD001"),
          m_port, std::string("Ordinary Camera"), std::string("1d6b:0102")}) {
        SCOPED_TRACE(text);
        auto const error = errorOf([&] { EXPECT_EQ(ia::findCamera(text).node(), m_node); });
        EXPECT_FALSE(error) << error->what();
    }
}

TEST_F(SessionFindTest, TellsWhatThereIsInstead)
{
    for (char const* const text :
         {"serial:ORD002", "port:9-9", "name:Ordinary", "id:1d6b:0103", "1", "something"}) {
        SCOPED_TRACE(text);
        auto const error = errorOf([&] { ia::findCamera(text); });
        ASSERT_TRUE(error);
        EXPECT_EQ(error->kind(), ia::ErrorKind::NotFound);
        EXPECT_THAT(error->hint(), HasSubstr("serial:ORD001"));
        EXPECT_THAT(error->hint(), HasSubstr(vividNode() + " has no USB device behind it"));
    }
}

TEST_F(SessionFindTest, RefusesTheNodesThatAreNoCameras)
{
    auto const generic = errorOf([] { ia::Camera::open(vividNode()); });
    ASSERT_TRUE(generic);
    EXPECT_EQ(generic->kind(), ia::ErrorKind::Unsupported);
    std::string const second = "/dev/video" + std::to_string(std::stoi(m_node.substr(10)) + 1);
    auto const metadata = errorOf([&] { ia::Camera::open(second); });
    ASSERT_TRUE(metadata);
    EXPECT_EQ(metadata->kind(), ia::ErrorKind::NotFound);
    EXPECT_EQ(metadata->reason(), "does not capture video");
    auto const none = errorOf([] { ia::Camera::open("/dev/video99"); });
    ASSERT_TRUE(none);
    EXPECT_EQ(none->kind(), ia::ErrorKind::NotFound);
}

} // namespace
