// SPDX-License-Identifier: MIT
#include "FuserFolder.h"
#include "Victim.h"

#include <ICameraControlNumeric.h>
#include <ICameraFactory.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

using Numeric = ICameraControlNumeric<int>;

/// When the camera left the bus, on the clock of the tests; 0 while it has not.
double unplugSeconds(EmulatedCameras const& cameras)
{
    double seconds = 0;
    for (EmulatedCameras::Json const& line : cameras.requests()) {
        if (line["kind"] == "event" && line["event"] == "unplug") {
            seconds = line["time"];
        }
    }
    return seconds;
}

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
    EXPECT_GT(unplugSeconds(cameras), begin);
    EXPECT_LT(end - unplugSeconds(cameras), patience);
    return camera;
}

} // namespace

TEST(UnpluggingDuringTheOpening, LeavesACameraThatCanDoNothing)
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

TEST(UnpluggingDuringTheOpening, OfASerialLinkGivesNoCamera)
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

TEST(UnpluggingInAPrivateControl, MakesItFail)
{
    Victim victim("vendor-old");
    victim.open();
    for (bool const isRead : {false, true}) {
        SCOPED_TRACE(isRead);
        victim.close();
        RemainsCheck const remains;
        victim.open();
        auto& light = dynamic_cast<Numeric&>(*victim.camera().lightIntensityControl());
        victim.device().command("unplug control 1");
        double const begin = monotonicSeconds();
        if (isRead) {
            EXPECT_EQ(light.value(), 0);
        } else {
            EXPECT_FALSE(light.setValue(7));
        }
        EXPECT_LT(monotonicSeconds() - begin, patience);
        EXPECT_EQ(victim.device().status()["plugged"], false);
        EXPECT_FALSE(victim.camera().softwareReset());
        victim.expectDead(false);
        victim.replug();
    }
    victim.open();
}

TEST(UnpluggingWhileFramesFlow, EndsTheControlsThatAreSetBetweenThem)
{
    Victim victim("ordinary");
    victim.open();
    for (char const* const when : {"frame 4", "control 7"}) {
        SCOPED_TRACE(when);
        victim.close();
        RemainsCheck const remains;
        victim.open();
        auto& contrast = dynamic_cast<Numeric&>(*victim.camera().control("Contrast"));
        victim.startCapture(4);
        victim.device().command(std::string("unplug ") + when);
        double longest = 0;
        double begin = monotonicSeconds();
        int number = 0;
        for (IFrame* frame; !(frame = victim.camera().acquireFrame())->isInvalid(); ++number) {
            contrast.setValue(contrast.minimum() + number % 2);
            victim.camera().releaseFrame(frame);
            longest = std::max(longest, monotonicSeconds() - begin);
            begin = monotonicSeconds();
        }
        EXPECT_GT(number, 0);
        EXPECT_LT(std::max(longest, monotonicSeconds() - begin), patience);
        EXPECT_EQ(victim.device().status()["plugged"], false);
        EXPECT_FALSE(contrast.setValue(contrast.maximum()));
        victim.expectDead(true);
        victim.replug();
    }
    victim.open();
}
