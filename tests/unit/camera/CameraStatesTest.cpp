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

class CameraStatesTest : public testing::Test
{
protected:
    void reachInitialised() { ASSERT_TRUE(m_camera.init()); }
    void reachSetUp()
    {
        reachInitialised();
        ASSERT_EQ(m_camera.setup(3), 0);
    }
    void reachCapturing()
    {
        reachSetUp();
        ASSERT_EQ(m_camera.startCapture(), 0);
    }
    void reachStopped()
    {
        reachCapturing();
        ASSERT_EQ(m_camera.stopCapture(), 0);
    }
    void reachCleanedUp()
    {
        reachStopped();
        ASSERT_EQ(m_camera.cleanup(), 0);
    }
    void TearDown() override
    {
        m_camera.cleanup();
        EXPECT_LT(m_watch.seconds(), 1) << "no call out of order may wait for a frame";
    }

    void expectControlsWork()
    {
        auto* const gain = dynamic_cast<ICameraControlNumeric<int>*>(m_camera.gainControl());
        ASSERT_NE(gain, nullptr);
        EXPECT_TRUE(gain->setValue(7));
        EXPECT_EQ(gain->value(), 7);
    }

    void expectNoFrame() { EXPECT_TRUE(m_camera.acquireFrame()->isInvalid()); }

    Stopwatch const m_watch{};
    VirtualCamera::InstalledCamera m_virtualCamera =
        VirtualCamera::aCamera()
            .withFormat("YUYV")
            .withSize(64, 48)
            .withInterval(1, 30)
            .withSize(32, 24)
            .withInterval(1, 100)
            .withControl(VirtualCamera::integerControl(V4L2_CID_GAIN, "Gain").range(0, 9))
            .install();
    DeviceStub const m_device{};
    Camera m_camera{&m_device};
};

TEST_F(CameraStatesTest, ConstructedKnowsItsRecordAndNothingElse)
{
    EXPECT_STREQ(m_camera.device()->systemName(), "/dev/video0");
    EXPECT_EQ(m_camera.controlNumber(), 0);
    EXPECT_EQ(m_camera.formatNumber(), 0);
    EXPECT_EQ(IImageFormat::invalid(), m_camera.format(0));
    EXPECT_EQ(IImageFormat::invalid(), m_camera.currentImageFormat());
    EXPECT_FALSE(m_camera.setCurrentImageFormat(0, 0, 0));
    EXPECT_FALSE(m_camera.softwareReset());
    EXPECT_EQ(m_camera.setup(3), -1);
    EXPECT_EQ(m_camera.startCapture(), -1);
    expectNoFrame();
    EXPECT_EQ(m_camera.releaseFrame(nullptr), -1);
    EXPECT_EQ(m_camera.stopCapture(), -1);
    EXPECT_EQ(m_camera.cleanup(), -1);
    EXPECT_EQ(m_virtualCamera.countOf(VirtualCamera::Call::Ioctl), 0u);
}

TEST_F(CameraStatesTest, InitialisedSelectsFormatsAndSetsControlsButDoesNotCapture)
{
    reachInitialised();
    expectControlsWork();
    EXPECT_TRUE(m_camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(m_camera.currentFrameSize()->width(), 32u);
    EXPECT_EQ(m_camera.startCapture(), -1);
    expectNoFrame();
    EXPECT_EQ(m_camera.releaseFrame(nullptr), -1);
    EXPECT_EQ(m_camera.releaseFrame(IFrame::invalid()), 0);
    EXPECT_EQ(m_camera.cleanup(), 0);
    EXPECT_EQ(m_camera.setup(3), 0);
}

TEST_F(CameraStatesTest, SetUpStartsButKeepsItsFormatAndHasNoFrames)
{
    reachSetUp();
    expectControlsWork();
    EXPECT_FALSE(m_camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(m_camera.currentFrameSize()->width(), 64u);
    expectNoFrame();
    EXPECT_EQ(m_camera.releaseFrame(nullptr), -1);
    EXPECT_EQ(m_camera.startCapture(), 0);
}

TEST_F(CameraStatesTest, CapturingDeliversFramesAndKeepsItsFormat)
{
    reachCapturing();
    expectControlsWork();
    IFrame* const frame = m_camera.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_EQ(m_camera.releaseFrame(frame), 0);
    EXPECT_EQ(m_camera.releaseFrame(nullptr), -1);
    EXPECT_FALSE(m_camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(m_camera.currentFrameSize()->width(), 64u);
    EXPECT_EQ(m_camera.startCapture(), -1) << "the buffers are the driver's already";
    EXPECT_EQ(m_camera.setup(3), -1);
    IFrame* const later = m_camera.acquireFrame();
    EXPECT_FALSE(later->isInvalid()) << "calls that failed changed nothing";
    EXPECT_EQ(m_camera.releaseFrame(later), 0);
    EXPECT_EQ(m_camera.stopCapture(), 0);
}

TEST_F(CameraStatesTest, StoppedTakesFramesBackButDeliversNoneUntilItIsSetUpAgain)
{
    reachCapturing();
    IFrame* const frame = m_camera.acquireFrame();
    ASSERT_FALSE(frame->isInvalid());
    unsigned char const* const bytes = frame->bytePtr();
    ASSERT_EQ(m_camera.stopCapture(), 0);
    expectControlsWork();
    EXPECT_EQ(frame->bytePtr(), bytes) << "a borrowed frame stays good until cleanup";
    EXPECT_GT(bytes[0] + bytes[1], 0);
    expectNoFrame();
    EXPECT_EQ(m_camera.releaseFrame(frame), 0);
    EXPECT_FALSE(m_camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(m_camera.stopCapture(), 0) << "stopping twice does no harm";
    EXPECT_EQ(m_camera.cleanup(), 0);
}

TEST_F(CameraStatesTest, StoppedDoesNotDeliverWhenItIsStartedWithoutCleanup)
{
    reachStopped();
    EXPECT_EQ(m_camera.startCapture(), 0);
    expectNoFrame();
    EXPECT_EQ(m_camera.stopCapture(), 0);
}

TEST_F(CameraStatesTest, StartedWithoutCleanupDeliversFramesThatAreAlreadyFilled)
{
    reachStopped();
    EXPECT_EQ(m_camera.startCapture(), 0);
    IFrame* frame = IFrame::invalid();
    // None is waited for, but each call finds those that the driver has filled by then.
    EXPECT_TRUE(await([&] {
        frame = m_camera.acquireFrame();
        return !frame->isInvalid();
    }));
    EXPECT_EQ(m_camera.releaseFrame(frame), 0);
    EXPECT_EQ(m_camera.stopCapture(), 0);
    expectNoFrame();
}

TEST_F(CameraStatesTest, CleanedUpIsLikeInitialised)
{
    reachCleanedUp();
    EXPECT_EQ(m_virtualCamera.accounting().liveMappings, 0);
    EXPECT_EQ(m_virtualCamera.accounting().allocatedBuffers, 0);
    expectControlsWork();
    expectNoFrame();
    EXPECT_EQ(m_camera.releaseFrame(nullptr), -1);
    EXPECT_EQ(m_camera.startCapture(), -1);
    EXPECT_EQ(m_camera.cleanup(), 0);
    EXPECT_TRUE(m_camera.setCurrentImageFormat(0, 1, 0));
    EXPECT_EQ(m_camera.setup(2), 0);
    EXPECT_EQ(m_camera.startCapture(), 0);
    IFrame* const frame = m_camera.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_EQ(frame->size(), 32u * 24u * 2u);
    EXPECT_EQ(m_camera.releaseFrame(frame), 0);
    EXPECT_EQ(m_camera.stopCapture(), 0);
}

} // namespace
