// SPDX-License-Identifier: MIT
#include "FuserFolder.h"
#include "Shell.h"
#include "Victim.h"

#include <ICameraControl.h>
#include <ICameraFactory.h>

#include <gtest/gtest.h>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

/// Opens a camera that leaves the bus meanwhile; the result is null or one that can do nothing.
CameraPointer openWhileUnplugged(EmulatedCameras const& cameras, std::string const& when)
{
    ListPointer const list = listDevices();
    IDevice const* const record = recordOf(*list, cameras.videoNode());
    EXPECT_NE(record, nullptr);
    cameras.command("unplug " + when);
    double const begin = monotonicSeconds();
    CameraPointer camera(ICameraFactory::getUniqueInstance().createBlockingCamera(record));
    double const end = monotonicSeconds();
    EXPECT_EQ(cameras.status()["plugged"], false);
    EXPECT_GT(cameras.unplugSeconds(), begin);
    EXPECT_LT(end - cameras.unplugSeconds(), patience);
    return camera;
}

TEST(OpeningUnplugTest, LeavesACameraThatCanDoNothing)
{
    Victim victim("ordinary");
    victim.open();
    victim.close();
    // The driver asks for the range of a control once in the life of a device.
    victim.device().command("unplug");
    // At the first question about a control, early among them, and late.
    for (int const request : {1, 9, 40}) {
        SCOPED_TRACE(request);
        RemainsCheck const remains;
        victim.replug();
        CameraPointer const camera =
            openWhileUnplugged(victim.device(), "control " + std::to_string(request));
        ASSERT_NE(camera, nullptr);
        EXPECT_TRUE(victim.device().waitUntilGone());
        for (int i = 0; i < camera->controlNumber(); ++i) {
            EXPECT_FALSE(camera->control(i)->isDisabled());
        }
        EXPECT_EQ(camera->setup(4), -1);
        EXPECT_TRUE(camera->acquireFrame()->isInvalid());
        EXPECT_EQ(camera->cleanup(), 0);
    }
    victim.replug();
    victim.open();
}

TEST(OpeningUnplugTest, OfASerialLinkGivesNoCamera)
{
    FuserFolder const folder;
    Victim victim("vendor-new");
    victim.open();
    for (int const packet : {1, 70}) {
        SCOPED_TRACE(packet);
        victim.close();
        RemainsCheck const remains;
        EXPECT_EQ(openWhileUnplugged(victim.device(), "serial " + std::to_string(packet)), nullptr);
        victim.replug();
    }
    victim.open();
}

} // namespace
