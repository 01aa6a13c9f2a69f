// SPDX-License-Identifier: MIT
#include "DescriptorCount.h"
#include "Shell.h"
#include "Tool.h"
#include "VividCamera.h"

#include <ICameraControl.h>
#include <ICameraFactory.h>
#include <IDevice.h>
#include <IDeviceList.h>
#include <IImageFormat.h>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

std::string thrownText(std::function<void()> const& action)
{
    try {
        action();
    } catch (std::invalid_argument const& error) {
        return error.what();
    }
    return "nothing";
}

TEST(VividFactoryTest, ANodeWithoutUsbParentThrowsInSingleCreation)
{
    ICameraFactory const& factory = ICameraFactory::getUniqueInstance();
    EXPECT_EQ(thrownText([&] { std::unique_ptr<IDevice>(factory.createDevice("video0")); }),
              "stoul");
}

TEST(VividFactoryTest, ANodeWithoutUsbParentThrowsInEnumeration)
{
    ICameraFactory const& factory = ICameraFactory::getUniqueInstance();
    EXPECT_EQ(thrownText([&] { std::unique_ptr<IDeviceList>(factory.createDeviceList()); }),
              "stoul");
}

TEST(VividFactoryTest, TheToolSaysWhichNodesHaveNoUsbParent)
{
    CommandResult const list = runTool("list");
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(splitLines(list.output).size(), 3U) << list.output;
    EXPECT_NE(list.output.find("No camera."), std::string::npos) << list.output;
    EXPECT_NE(list.output.find(firstNode), std::string::npos) << list.output;
    EXPECT_NE(list.output.find(secondNode), std::string::npos) << list.output;
    CommandResult const show = runTool("show video1");
    EXPECT_EQ(show.status, 1);
    EXPECT_NE(show.output.find(secondNode), std::string::npos) << show.output;
}

TEST(VividFactoryTest, AnAbsentNodeIsNoDevice)
{
    EXPECT_EQ(ICameraFactory::getUniqueInstance().createDevice("video9"), nullptr);
}

TEST(VividFactoryTest, ACameraOnAnAbsentNodeIsEmptyAndFails)
{
    CameraPointer const camera = openCamera("/dev/video9");
    ASSERT_NE(camera, nullptr);
    EXPECT_EQ(camera->formatNumber(), 0);
    EXPECT_EQ(camera->controlNumber(), 0);
    EXPECT_EQ(camera->setup(4), -1);
    EXPECT_TRUE(camera->acquireFrame()->isInvalid());
}

TEST(VividFactoryTest, ACameraLeavesNoDescriptorBehind)
{
    int const before = openDescriptors();
    {
        CameraPointer const camera = openCamera();
        ASSERT_TRUE(selectSmall(*camera));
        Stream const stream(*camera, 4);
        EXPECT_FALSE(camera->acquireFrame()->isInvalid());
        EXPECT_GT(openDescriptors(), before);
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
