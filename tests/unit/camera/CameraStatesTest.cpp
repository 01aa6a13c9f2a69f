// SPDX-License-Identifier: MIT
// One test for each state of a camera: what works there, and what fails. docs/states.md draws them.
#include "camera/Camera.h"

#include "Await.h"
#include "DeviceStub.h"
#include "ICameraControlNumeric.h"
#include "IFrameSize.h"
#include "IImageFormat.h"
#include "Stopwatch.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

namespace
{

using namespace ImageAcquisition;

class CameraStates : public testing::Test
{
protected:
    void reachInitialised() { ASSERT_TRUE(camera.init()); }
    void reachSetUp()
    {
        reachInitialised();
        ASSERT_EQ(0, camera.setup(3));
    }
    void reachCapturing()
    {
        reachSetUp();
        ASSERT_EQ(0, camera.startCapture());
    }
    void reachStopped()
    {
        reachCapturing();
        ASSERT_EQ(0, camera.stopCapture());
    }
    void reachCleanedUp()
    {
        reachStopped();
        ASSERT_EQ(0, camera.cleanup());
    }
    void TearDown() override
    {
        camera.cleanup();
        EXPECT_LT(watch.seconds(), 1) << "no call out of order may wait for a frame";
    }

    void expectControlsWork()
    {
        auto* const gain = dynamic_cast<ICameraControlNumeric<int>*>(camera.gainControl());
        ASSERT_NE(nullptr, gain);
        EXPECT_TRUE(gain->setValue(7));
        EXPECT_EQ(7, gain->value());
    }

    void expectNoFrame() { EXPECT_TRUE(camera.acquireFrame()->isInvalid()); }

    Stopwatch const watch;
    VirtualCamera::InstalledCamera virtualCamera =
        VirtualCamera::aCamera()
            .withFormat("YUYV")
            .withSize(64, 48)
            .withInterval(1, 30)
            .withSize(32, 24)
            .withInterval(1, 100)
            .withControl(VirtualCamera::integerControl(V4L2_CID_GAIN, "Gain").range(0, 9))
            .install();
    DeviceStub const device;
    Camera camera{&device};
};

TEST_F(CameraStates, ConstructedKnowsItsRecordAndNothingElse)
{
    EXPECT_STREQ("/dev/video0", camera.device()->systemName());
    EXPECT_EQ(0, camera.controlNumber());
    EXPECT_EQ(0, camera.formatNumber());
    EXPECT_EQ(IImageFormat::invalid(), camera.format(0));
    EXPECT_EQ(IImageFormat::invalid(), camera.currentImageFormat());
    EXPECT_FALSE(camera.setCurrentImageFormat(0, 0, 0));
    EXPECT_FALSE(camera.softwareReset());
    EXPECT_EQ(-1, camera.setup(3));
    EXPECT_EQ(-1, camera.startCapture());
    expectNoFrame();
    EXPECT_EQ(-1, camera.releaseFrame(nullptr));
    EXPECT_EQ(-1, camera.stopCapture());
    EXPECT_EQ(-1, camera.cleanup());
    EXPECT_EQ(0u, virtualCamera.countOf(VirtualCamera::Call::Ioctl));
}

TEST_F(CameraStates, InitialisedSelectsFormatsAndSetsControlsButDoesNotCapture)
{
    reachInitialised();
    expectControlsWork();
    EXPECT_TRUE(camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(32u, camera.currentFrameSize()->width());
    EXPECT_EQ(-1, camera.startCapture());
    expectNoFrame();
    EXPECT_EQ(-1, camera.releaseFrame(nullptr));
    EXPECT_EQ(0, camera.releaseFrame(IFrame::invalid()));
    EXPECT_EQ(0, camera.cleanup());
    EXPECT_EQ(0, camera.setup(3));
}

TEST_F(CameraStates, SetUpStartsButKeepsItsFormatAndHasNoFrames)
{
    reachSetUp();
    expectControlsWork();
    EXPECT_FALSE(camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(64u, camera.currentFrameSize()->width());
    expectNoFrame();
    EXPECT_EQ(-1, camera.releaseFrame(nullptr));
    EXPECT_EQ(0, camera.startCapture());
}

TEST_F(CameraStates, CapturingDeliversFramesAndKeepsItsFormat)
{
    reachCapturing();
    expectControlsWork();
    IFrame* const frame = camera.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_EQ(0, camera.releaseFrame(frame));
    EXPECT_EQ(-1, camera.releaseFrame(nullptr));
    EXPECT_FALSE(camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(64u, camera.currentFrameSize()->width());
    EXPECT_EQ(-1, camera.startCapture()) << "the buffers are the driver's already";
    EXPECT_EQ(-1, camera.setup(3));
    IFrame* const later = camera.acquireFrame();
    EXPECT_FALSE(later->isInvalid()) << "calls that failed changed nothing";
    EXPECT_EQ(0, camera.releaseFrame(later));
    EXPECT_EQ(0, camera.stopCapture());
}

TEST_F(CameraStates, StoppedTakesFramesBackButDeliversNoneUntilItIsSetUpAgain)
{
    reachCapturing();
    IFrame* const frame = camera.acquireFrame();
    ASSERT_FALSE(frame->isInvalid());
    unsigned char const* const bytes = frame->bytePtr();
    ASSERT_EQ(0, camera.stopCapture());
    expectControlsWork();
    EXPECT_EQ(bytes, frame->bytePtr()) << "a borrowed frame stays good until cleanup";
    EXPECT_LT(0, bytes[0] + bytes[1]);
    expectNoFrame();
    EXPECT_EQ(0, camera.releaseFrame(frame));
    EXPECT_FALSE(camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(0, camera.stopCapture()) << "stopping twice does no harm";
    EXPECT_EQ(0, camera.cleanup());
}

TEST_F(CameraStates, StoppedDoesNotDeliverWhenItIsStartedWithoutCleanup)
{
    reachStopped();
    EXPECT_EQ(0, camera.startCapture());
    expectNoFrame();
    EXPECT_EQ(0, camera.stopCapture());
}

TEST_F(CameraStates, StartedWithoutCleanupDeliversFramesThatAreAlreadyFilled)
{
    reachStopped();
    EXPECT_EQ(camera.startCapture(), 0);
    IFrame* frame = IFrame::invalid();
    // None is waited for, but each call finds those that the driver has filled by then.
    EXPECT_TRUE(await([&] {
        frame = camera.acquireFrame();
        return !frame->isInvalid();
    }));
    EXPECT_EQ(camera.releaseFrame(frame), 0);
    EXPECT_EQ(camera.stopCapture(), 0);
    expectNoFrame();
}

TEST_F(CameraStates, CleanedUpIsLikeInitialised)
{
    reachCleanedUp();
    EXPECT_EQ(0, virtualCamera.accounting().liveMappings);
    EXPECT_EQ(0, virtualCamera.accounting().allocatedBuffers);
    expectControlsWork();
    expectNoFrame();
    EXPECT_EQ(-1, camera.releaseFrame(nullptr));
    EXPECT_EQ(-1, camera.startCapture());
    EXPECT_EQ(0, camera.cleanup());
    EXPECT_TRUE(camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(0, camera.setup(2));
    EXPECT_EQ(0, camera.startCapture());
    IFrame* const frame = camera.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_EQ(32u * 24u * 2u, frame->size());
    EXPECT_EQ(0, camera.releaseFrame(frame));
    EXPECT_EQ(0, camera.stopCapture());
}

} // namespace
