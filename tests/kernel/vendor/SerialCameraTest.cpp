// SPDX-License-Identifier: MIT
#include "DescriptorCount.h"
#include "DeviceQueries.h"
#include "FramePainter.h"
#include "FuserFolder.h"
#include "PrivateControls.h"
#include "SerialRows.h"
#include "ThreeHands.h"
#include "Tool.h"

#include <ICameraControlNumeric.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace ImageAcquisition;
using namespace KernelTest;
using UsbCamera::FramePainter;

namespace
{

bool isOpenHere(std::string const& node)
{
    std::vector<std::string> const targets = descriptorTargets();
    return std::find(targets.begin(), targets.end(), node) != targets.end();
}

class SerialCameraTest : public testing::Test
{
protected:
    FuserFolder const m_folder;
    EmulatedCameras const m_cameras{{"vendor-new"}};
};

TEST_F(SerialCameraTest, FindsItsPortInTheKernelsLogAndHoldsIt)
{
    std::string const node = m_cameras.serialNode();
    std::string const line = lastKernelLine("ttyACM");
    std::string const usbPath = m_cameras.usbFolder().substr(m_cameras.usbFolder().rfind('/') + 1);
    EXPECT_NE(line.find("cdc_acm " + usbPath + ":1.5: " + node.substr(5) + ": USB ACM device"),
              std::string::npos)
        << line;
    CameraPointer camera = openListed(m_cameras.videoNode());
    ASSERT_NE(camera, nullptr);
    EXPECT_TRUE(isOpenHere(node));
    EXPECT_NE(runShell("./fuser " + node + " 2> /dev/null").output, "");
    camera.reset();
    EXPECT_FALSE(isOpenHere(node));
    EXPECT_EQ(runShell("./fuser " + node + " 2> /dev/null").output, "");
}

TEST_F(SerialCameraTest, DeliversEveryFrameWhileItsControlsAreUsed)
{
    CameraPointer const camera = openListed(m_cameras.videoNode());
    ASSERT_NE(camera, nullptr);
    ASSERT_TRUE(camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    auto& light = dynamic_cast<ICameraControlNumeric<int>&>(*camera->lightIntensityControl());
    FramePainter painter(160, 120);
    Stream const stream(*camera, 16);
    for (unsigned number = 0; number < 60; ++number) {
        IFrame* const frame = camera->acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->counter(), number);
        EXPECT_TRUE(bytesOf(*frame) == painter.paint(number)) << number;
        EXPECT_EQ(camera->releaseFrame(frame), 0);
        auto const value = static_cast<int>(10 * number);
        EXPECT_TRUE(light.setValue(value));
        EXPECT_EQ(light.value(), value);
    }
}

TEST_F(SerialCameraTest, LetsThreeThreadsTakeGiveBackAndSet)
{
    CameraPointer const camera = openListed(m_cameras.videoNode());
    ASSERT_NE(camera, nullptr);
    ASSERT_TRUE(camera->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    FramePainter painter(160, 120);
    ThreeHands hands(*camera,
                     dynamic_cast<ICameraControlNumeric<int>&>(*camera->lightIntensityControl()),
                     [&](IFrame const& frame) {
                         auto const number = static_cast<std::uint32_t>(frame.counter());
                         return bytesOf(frame) == painter.paint(number);
                     });
    hands.run(100, 16);
    EXPECT_EQ(hands.good(), 100U);
    EXPECT_EQ(hands.givenBack(), 100U);
    EXPECT_GT(hands.controlled(), 0U);
    EXPECT_EQ(hands.uncontrolled(), 0U);
}

TEST_F(SerialCameraTest, IsShownReadSetAndCapturedByTheTool)
{
    nlohmann::json const shown = readTool("show 0 --json");
    ASSERT_EQ(shown.at("controls").size(), serialRows().size());
    auto control = shown.at("controls").begin();
    for (SerialRow const& row : serialRows()) {
        EXPECT_EQ(control->at("name"), row.name);
        EXPECT_EQ(control->at("id"), row.selector) << row.name;
        EXPECT_NE(control->at("value"), nullptr) << row.name;
        ++control;
    }
    m_cameras.mark();
    EXPECT_EQ(runTool("set 0 lighting_mode=Continuous 'Focus Window X2=77' 2> /dev/null").status,
              0);
    auto const written = m_cameras.requests("SET_CUR");
    ASSERT_EQ(written.size(), 2U);
    EXPECT_EQ(written[0]["kind"], "serial");
    EXPECT_EQ(m_cameras.command("get 3 1"), "03");
    EXPECT_EQ(m_cameras.command("get 3 20"), "00004d0000000000");
    std::string const file = "frame.raw";
    EXPECT_EQ(runTool("capture 0 --format YUYV --size 160x120 -o " + file + " 2> /dev/null").status,
              0);
    EXPECT_EQ(readFile(file).size(), 160U * 120 * 2);
}

} // namespace
