// SPDX-License-Identifier: MIT
// stopCapture() is the one call that another thread may make.
#include "ICameraFactory.h"

#include "DeviceStub.h"
#include "IBlockingCamera.h"
#include "IFrame.h"
#include "SmallCamera.h"
#include "Stopwatch.h"
#include "ThreadState.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::CameraBuilder;

std::unique_ptr<IBlockingCamera> openedCamera()
{
    DeviceStub const device{};
    return std::unique_ptr<IBlockingCamera>(
        ICameraFactory::getUniqueInstance().createBlockingCamera(&device));
}

TEST(CameraStopTest, EndsAWaitOfAnotherThread)
{
    auto const virtualCamera = smallCamera().withoutFrames().install();
    auto const camera = openedCamera();
    ASSERT_EQ(camera->setup(3), 0);
    ASSERT_EQ(camera->startCapture(), 0);
    bool invalid = false;
    double waited = 0;
    WatchedThread capture([&] {
        Stopwatch const watch;
        invalid = camera->acquireFrame()->isInvalid();
        waited = watch.seconds();
    });
    ASSERT_TRUE(capture.awaitSelect());
    Stopwatch const watch;
    EXPECT_EQ(camera->stopCapture(), 0);
    capture.join();
    EXPECT_LT(watch.seconds(), 1);
    EXPECT_LT(waited, 1.9);
    EXPECT_TRUE(invalid);
    EXPECT_EQ(camera->cleanup(), 0);
    EXPECT_TRUE(virtualCamera.accounting().liveMappings == 0);
}

TEST(CameraStopTest, EndsACaptureLoopOfAnotherThread)
{
    auto const virtualCamera = smallCamera().install();
    auto const camera = openedCamera();
    for (int round = 0; round < 20; ++round) {
        ASSERT_EQ(camera->setup(3), 0);
        ASSERT_EQ(camera->startCapture(), 0);
        std::atomic<int> frames{0};
        WatchedThread capture([&] {
            for (;;) {
                IFrame* const frame = camera->acquireFrame();
                bool const ended = frame->isInvalid();
                camera->releaseFrame(frame);
                if (ended) {
                    return;
                }
                ++frames;
            }
        });
        while (frames < 5) {
            std::this_thread::yield();
        }
        EXPECT_EQ(camera->stopCapture(), 0);
        capture.join();
        EXPECT_EQ(camera->cleanup(), 0);
        EXPECT_EQ(virtualCamera.accounting().liveMappings, 0);
        EXPECT_EQ(virtualCamera.accounting().allocatedBuffers, 0);
    }
}

TEST(CameraStopTest, IsNotForgottenWhenItComesBeforeTheWait)
{
    auto const virtualCamera = smallCamera().withoutFrames().install();
    auto const camera = openedCamera();
    ASSERT_EQ(camera->setup(3), 0);
    ASSERT_EQ(camera->startCapture(), 0);
    EXPECT_EQ(camera->stopCapture(), 0);
    Stopwatch const watch;
    EXPECT_TRUE(camera->acquireFrame()->isInvalid());
    EXPECT_LT(watch.seconds(), 1);
    EXPECT_EQ(camera->cleanup(), 0);
}

TEST(CameraStopTest, LeavesOtherCamerasAlone)
{
    auto const firstVirtual = smallCamera().withoutFrames().install();
    auto const secondVirtual = VirtualCamera::CameraBuilder("/dev/video1")
                                   .withFormat("YUYV")
                                   .withSize(64, 48)
                                   .withInterval(1, 30)
                                   .install();
    auto const first = openedCamera();
    DeviceStub device;
    device.node = "/dev/video1";
    std::unique_ptr<IBlockingCamera> const second(
        ICameraFactory::getUniqueInstance().createBlockingCamera(&device));
    for (auto* const camera : {first.get(), second.get()}) {
        ASSERT_EQ(camera->setup(3), 0);
        ASSERT_EQ(camera->startCapture(), 0);
    }
    WatchedThread capture([&] { first->acquireFrame(); });
    ASSERT_TRUE(capture.awaitSelect());
    EXPECT_EQ(first->stopCapture(), 0);
    capture.join();
    EXPECT_FALSE(second->acquireFrame()->isInvalid());
    EXPECT_EQ(second->stopCapture(), 0);
    first->cleanup();
    second->cleanup();
}

} // namespace
