// SPDX-License-Identifier: MIT
#include "DescriptorCount.h"
#include "EmulatedCameras.h"
#include "FramePainter.h"
#include "FuserFolder.h"
#include "LibraryCamera.h"
#include "Shell.h"

#include <ICameraControlNumeric.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

std::vector<std::string> openTerminals()
{
    std::vector<std::string> targets = descriptorTargets();
    targets.erase(std::remove_if(targets.begin(), targets.end(),
                                 [](std::string const& target) {
                                     return target.rfind("/dev/ttyACM", 0) != 0;
                                 }),
                  targets.end());
    return targets;
}

ICameraControlNumeric<int>& lightOf(CameraPointer const& camera)
{
    return dynamic_cast<ICameraControlNumeric<int>&>(*camera->lightIntensityControl());
}

/// The cameras whose lines in the log are serial packets.
std::vector<unsigned> camerasAskedBySerial(EmulatedCameras const& cameras)
{
    std::vector<unsigned> numbers;
    for (EmulatedCameras::Json const& line : cameras.requests("SET_CUR")) {
        EXPECT_EQ(line["kind"], "serial");
        numbers.push_back(line["camera"]);
    }
    return numbers;
}

TEST(TwoCamerasTest, HaveASerialPortAndAStreamEach)
{
    FuserFolder const folder;
    EmulatedCameras const cameras({"vendor-new,serial=A", "vendor-new,serial=B"});
    CameraPointer const first = openListed(cameras.videoNode(1));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(openTerminals(), std::vector<std::string>{cameras.serialNode(1)});
    CameraPointer const second = openListed(cameras.videoNode(2));
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(openTerminals().size(), 2U);
    EXPECT_STREQ(first->device()->serial(), "A");
    EXPECT_STREQ(second->device()->serial(), "B");

    cameras.mark();
    EXPECT_TRUE(lightOf(first).setValue(111));
    EXPECT_TRUE(lightOf(second).setValue(222));
    EXPECT_EQ(camerasAskedBySerial(cameras), (std::vector<unsigned>{1, 2}));
    EXPECT_EQ(lightOf(first).value(), 111);
    EXPECT_EQ(lightOf(second).value(), 222);

    ASSERT_TRUE(first->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    ASSERT_TRUE(second->setCurrentImageFormat("YUYV", 160, 120, 1, 30));
    Stream const one(*first, 16);
    Stream const other(*second, 16);
    for (unsigned number = 0; number < 30; ++number) {
        for (CameraPointer const* const camera : {&first, &second}) {
            IFrame* const frame = (*camera)->acquireFrame();
            ASSERT_FALSE(frame->isInvalid());
            EXPECT_EQ(UsbCamera::FramePainter::readNumber(frame->bytePtr(), 160), number);
            EXPECT_EQ((*camera)->releaseFrame(frame), 0);
        }
    }
}

/// With ./fuser in the working directory and without it.
class TwoCamerasTest : public testing::TestWithParam<bool>
{
};

TEST_P(TwoCamerasTest, OnTheSamePortOfTwoControllersBothFindTheTerminalThatCameLast)
{
    std::optional<FuserFolder> folder;
    if (GetParam()) {
        folder.emplace();
    }
    ASSERT_EQ(runShell("dmesg --clear").status, 0);
    EmulatedCameras cameras(
        {"vendor-new,serial=A,port=3", "vendor-new,serial=B,port=3,controller=1"});
    // Plugged in anew, the first is the one that the kernel announced last.
    cameras.command("unplug", 1);
    ASSERT_TRUE(cameras.waitUntilGone(1));
    cameras.plug(1);
    std::string const terminal = cameras.serialNode(1);
    CameraPointer second = openListed(cameras.videoNode(2));
    ASSERT_NE(second, nullptr);
    EXPECT_STREQ(second->device()->serial(), "B");
    EXPECT_EQ(openTerminals(), std::vector<std::string>{terminal});
    cameras.mark();
    EXPECT_TRUE(lightOf(second).setValue(111));
    EXPECT_EQ(camerasAskedBySerial(cameras), std::vector<unsigned>{1});

    // The rightful one finds its port held and is not opened; the reset that follows reaches the
    // one that libusb lists first.
    EXPECT_EQ(openListed(cameras.videoNode(1)), nullptr);
    EXPECT_TRUE(waitFor([&] { return cameras.status(2)["plugs"] == 2; }));
    EXPECT_TRUE(cameras.waitUntilReady(2));
    // Not before: the driver must have given the device up.
    second.reset();
    EXPECT_EQ(cameras.status(1)["plugs"], 2) << "it was plugged in anew by this test only";
}

INSTANTIATE_TEST_SUITE_P(FuserOrNot, TwoCamerasTest, testing::Bool());

} // namespace
