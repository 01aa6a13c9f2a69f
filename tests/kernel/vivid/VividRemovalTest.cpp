// SPDX-License-Identifier: MIT
#include "Shell.h"
#include "ThreadState.h"
#include "V4l2Ctl.h"
#include "VividBinding.h"
#include "VividCamera.h"

#include <ICameraControlButton.h>
#include <ICameraControlNumeric.h>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

bool nodeExists()
{
    return ::access(firstNode, F_OK) == 0;
}

/// Takes vivid's nodes away, as a pulled plug does, and brings them back at the end. Whoever has
/// one open must have closed it by then, or the new nodes get other numbers.
class Unplugged
{
public:
    Unplugged() { unplug(); }
    ~Unplugged()
    {
        bindVivid("bind");
        EXPECT_TRUE(waitFor([] { return nodeExists(); }));
        EXPECT_EQ(runShell("udevadm settle").status, 0);
    }
    Unplugged(Unplugged const&) = delete;
    Unplugged& operator=(Unplugged const&) = delete;

private:
    static void unplug()
    {
        bindVivid("unbind");
        EXPECT_TRUE(waitFor([] { return !nodeExists(); }));
    }
};

void expectDead(IBlockingCamera& camera)
{
    EXPECT_EQ(camera.setup(4), -1);
    EXPECT_TRUE(camera.acquireFrame()->isInvalid());
    EXPECT_EQ(camera.cleanup(), 0);
    EXPECT_FALSE(selectSmall(camera));
    auto* const brightness =
        dynamic_cast<ICameraControlNumeric<int>*>(camera.control("Brightness"));
    ASSERT_NE(brightness, nullptr);
    EXPECT_EQ(brightness->value(), 0);
    EXPECT_FALSE(brightness->setValue(100));
}

void expectCaptures()
{
    CameraPointer const camera = openCamera();
    ASSERT_TRUE(selectSmall(*camera));
    Stream const stream(*camera, 4);
    EXPECT_EQ(camera->acquireFrame()->bytesUsed(), smallSize);
}

TEST(VividRemovalTest, EndsTheWaitOfABlockedReader)
{
    CameraPointer camera = openCamera();
    ASSERT_TRUE(selectSmall(*camera));
    ASSERT_EQ(camera->setup(2), 0);
    ASSERT_EQ(camera->startCapture(), 0);
    IFrame* const held = camera->acquireFrame();
    ASSERT_FALSE(held->isInvalid());
    ASSERT_FALSE(camera->acquireFrame()->isInvalid());
    IFrame const* last = nullptr;
    {
        WatchedThread reader([&] { last = camera->acquireFrame(); });
        ASSERT_TRUE(reader.awaitSelect());
        Unplugged const absence;
        reader.join();
        EXPECT_TRUE(last->isInvalid());
        // The mapping outlives the device.
        EXPECT_EQ(bytesOf(*held).size(), smallSize);
        EXPECT_EQ(camera->releaseFrame(held), -1);
        EXPECT_EQ(camera->stopCapture(), -1);
        EXPECT_EQ(camera->cleanup(), 0);
        expectDead(*camera);
        camera.reset();
    }
    expectCaptures();
}

TEST(VividRemovalTest, ReachesACaptureThatRunsAndAnIdleCamera)
{
    CameraPointer capturing = openCamera();
    CameraPointer idle = openCamera(secondNode);
    ASSERT_TRUE(selectSmall(*capturing));
    ASSERT_EQ(capturing->setup(4), 0);
    ASSERT_EQ(capturing->startCapture(), 0);
    {
        std::atomic<int> frames{0};
        WatchedThread reader([&] {
            for (IFrame* frame; !(frame = capturing->acquireFrame())->isInvalid(); ++frames) {
                capturing->releaseFrame(frame);
            }
        });
        ASSERT_TRUE(waitFor([&] { return frames > 5; }));
        Unplugged const absence;
        reader.join();
        EXPECT_EQ(idle->startCapture(), -1);
        EXPECT_EQ(capturing->stopCapture(), -1);
        EXPECT_EQ(capturing->cleanup(), 0);
        expectDead(*capturing);
        expectDead(*idle);
        capturing.reset();
        idle.reset();
    }
    expectCaptures();
}

TEST(VividRemovalTest, OfTheModuleHasToWaitForTheCamera)
{
    CameraPointer camera = openCamera();
    EXPECT_NE(runShell("rmmod vivid").status, 0);
    ASSERT_TRUE(selectSmall(*camera));
    {
        Stream const stream(*camera, 4);
        EXPECT_FALSE(camera->acquireFrame()->isInvalid());
    }
    camera.reset();
    // udev may look at a node of its own accord for a moment.
    EXPECT_TRUE(waitFor([] { return runShell("rmmod vivid").status == 0; }));
    EXPECT_FALSE(nodeExists());
    ASSERT_EQ(runShell("modprobe vivid n_devs=2 node_types=0x1,0x1").status, 0);
    ASSERT_EQ(runShell("udevadm settle").status, 0);
    ASSERT_TRUE(waitFor([] { return nodeExists(); }));
    expectCaptures();
}

TEST(VividRemovalTest, OfADisconnectedDeviceEndsWithTheLastCamera)
{
    {
        CameraPointer const camera = openCamera();
        ASSERT_TRUE(selectSmall(*camera));
        ASSERT_EQ(camera->setup(4), 0);
        ASSERT_EQ(camera->startCapture(), 0);
        auto* const button = dynamic_cast<ICameraControlButton*>(camera->control("Disconnect"));
        ASSERT_NE(button, nullptr);
        EXPECT_TRUE(button->clicked());
        EXPECT_TRUE(camera->acquireFrame()->isInvalid());
        EXPECT_EQ(camera->stopCapture(), -1);
        EXPECT_EQ(camera->cleanup(), 0);
        expectDead(*camera);
    }
    expectCaptures();
}

} // namespace
