// SPDX-License-Identifier: MIT
#include "Shell.h"
#include "ThreadState.h"
#include "V4l2Ctl.h"
#include "VividCamera.h"

#include <ICameraControlButton.h>
#include <IFrameSize.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <thread>

using namespace ImageAcquisition;
using namespace KernelTest;

namespace
{

class VividCaptureTest : public testing::Test
{
protected:
    void SetUp() override
    {
        showStillPicture();
        ASSERT_NE(m_camera, nullptr);
        ASSERT_TRUE(selectSmall(*m_camera));
    }

    /// Presses a button of vivid's, through the library.
    void press(char const* name) const
    {
        auto* const button = dynamic_cast<ICameraControlButton*>(m_camera->control(name));
        ASSERT_NE(button, nullptr) << name;
        EXPECT_TRUE(button->clicked()) << name;
    }

    CameraPointer m_camera = openCamera();
};

struct FrameRecord
{
    unsigned long long counter;
    double stamp;
};

using FrameRecords = std::vector<FrameRecord>;

/// Captures until it is enough; each frame has to be a good one of the right size.
FrameRecords captureUntil(IBlockingCamera& camera, unsigned size,
                          std::function<bool(FrameRecords const&)> const& isEnough)
{
    FrameRecords records;
    Stream const stream(camera, 8);
    while (!isEnough(records)) {
        IFrame* const frame = camera.acquireFrame();
        if (frame->isInvalid()) {
            ADD_FAILURE() << "no frame after " << records.size();
            break;
        }
        EXPECT_FALSE(frame->isCorrupted());
        EXPECT_EQ(frame->bytesUsed(), size);
        EXPECT_EQ(frame->size(), size);
        EXPECT_GE(frame->allocSize(), size);
        EXPECT_LE(stampSeconds(*frame), monotonicSeconds());
        records.push_back({frame->counter(), stampSeconds(*frame)});
        EXPECT_EQ(camera.releaseFrame(frame), 0);
    }
    return records;
}

FrameRecords captureFrames(IBlockingCamera& camera, std::size_t count, unsigned size = smallSize)
{
    return captureUntil(camera, size,
                        [=](FrameRecords const& records) { return records.size() >= count; });
}

/// How many numbers are missing in a sequence that has to rise.
unsigned long long countLost(FrameRecords const& frames)
{
    unsigned long long lost = 0;
    for (std::size_t i = 1; i < frames.size(); ++i) {
        EXPECT_GT(frames[i].counter, frames[i - 1].counter);
        EXPECT_GT(frames[i].stamp, frames[i - 1].stamp);
        lost += frames[i].counter - frames[i - 1].counter - 1;
    }
    return lost;
}

TEST_F(VividCaptureTest, FramesRiseInNumberAndTimeAndThreeHundredInARowComeWithoutLoss)
{
    double const begin = monotonicSeconds();
    // vivid skips a frame by itself when a busy host keeps the whole machine from running, so the
    // row may begin anew; a loss of the library's own making would never let it end.
    std::size_t row = 0;
    FrameRecords const frames =
        captureUntil(*m_camera, smallSize, [&](FrameRecords const& records) {
            std::size_t const count = records.size();
            bool const follows =
                count > 1 && records[count - 1].counter == records[count - 2].counter + 1;
            row = follows ? row + 1 : std::min<std::size_t>(count, 1);
            return row == 300 || count == 1000;
        });
    EXPECT_EQ(row, 300U);
    EXPECT_EQ(frames.front().counter, 0U);
    EXPECT_GE(frames.front().stamp, begin);
    std::cout << frames.size() << " frames captured, " << countLost(frames)
              << " skipped by the driver\n";
    double const interval = (frames.back().stamp - frames.front().stamp) /
                            static_cast<double>(frames.back().counter - frames.front().counter);
    EXPECT_NEAR(interval, 1.0 / 25, 0.2 / 25);
}

TEST_F(VividCaptureTest, NumbersStartAnewWithEachCapture)
{
    for (int round = 0; round < 3; ++round) {
        FrameRecords const frames = captureFrames(*m_camera, 3);
        ASSERT_EQ(frames.size(), 3U);
        EXPECT_EQ(frames.front().counter, 0U);
    }
}

TEST_F(VividCaptureTest, FramesAreThoseThatV4l2CtlWrites)
{
    for (char const* format : {"YUYV", "UYVY", "GREY", "NV12", "RGB3", "YU12", "RGGB"}) {
        SCOPED_TRACE(format);
        ASSERT_TRUE(selectSmall(*m_camera, format));
        Bytes const wanted = capturedByV4l2Ctl(firstNode);
        ASSERT_FALSE(wanted.empty());
        Stream const stream(*m_camera, 2);
        IFrame const* const frame = m_camera->acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(frame->bytesUsed(), wanted.size());
        EXPECT_TRUE(bytesOf(*frame) == wanted);
    }
}

TEST_F(VividCaptureTest, AStillPictureIsTheSameInEveryFrameAndDiffersFromAnother)
{
    Bytes const other = capturedByV4l2Ctl(firstNode);
    v4l2Ctl(firstNode, "--set-ctrl=test_pattern=10");
    Bytes const wanted = capturedByV4l2Ctl(firstNode);
    EXPECT_FALSE(wanted == other);
    Stream const stream(*m_camera, 4);
    for (int i = 0; i < 20; ++i) {
        IFrame* const frame = m_camera->acquireFrame();
        EXPECT_TRUE(bytesOf(*frame) == wanted) << i;
        m_camera->releaseFrame(frame);
    }
}

TEST_F(VividCaptureTest, AFrameWithTheErrorBitIsCorruptedAndTheNextIsNot)
{
    Stream const stream(*m_camera, 4);
    EXPECT_FALSE(m_camera->acquireFrame()->isCorrupted());
    press("Inject V4L2_BUF_FLAG_ERROR");
    bool wasCorrupted = false;
    for (int i = 0; i < 10 && !wasCorrupted; ++i) {
        IFrame* const frame = m_camera->acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        wasCorrupted = frame->isCorrupted();
        m_camera->releaseFrame(frame);
    }
    EXPECT_TRUE(wasCorrupted);
    EXPECT_FALSE(m_camera->acquireFrame()->isCorrupted());
}

TEST_F(VividCaptureTest, DroppedFramesAreGapsInTheNumbers)
{
    ControlKeeper const keeper(firstNode);
    v4l2Ctl(firstNode, "--set-ctrl=percentage_of_dropped_buffers=50");
    EXPECT_GT(countLost(captureFrames(*m_camera, 20)), 0U);
}

TEST_F(VividCaptureTest, RefusedCallsFailAndTheNextCaptureWorks)
{
    press("Inject VIDIOC_REQBUFS Error");
    EXPECT_EQ(m_camera->setup(4), -1);
    EXPECT_EQ(m_camera->cleanup(), 0);

    ASSERT_EQ(m_camera->setup(4), 0);
    press("Inject VIDIOC_QBUF Error");
    EXPECT_EQ(m_camera->startCapture(), -1);
    EXPECT_EQ(m_camera->cleanup(), 0);

    ASSERT_EQ(m_camera->setup(4), 0);
    press("Inject VIDIOC_STREAMON Error");
    EXPECT_EQ(m_camera->startCapture(), -1);
    EXPECT_EQ(m_camera->cleanup(), 0);

    EXPECT_EQ(captureFrames(*m_camera, 5).size(), 5U);
}

TEST_F(VividCaptureTest, AFatalErrorEndsInTheInvalidFrameAndTheNextCaptureWorks)
{
    {
        Stream const stream(*m_camera, 4);
        press("Inject Fatal Streaming Error");
        EXPECT_TRUE(m_camera->acquireFrame()->isInvalid());
    }
    EXPECT_EQ(captureFrames(*m_camera, 5).size(), 5U);
}

TEST_F(VividCaptureTest, WithAllBuffersHeldNoFrameComesWithinTwoSeconds)
{
    Stream const stream(*m_camera, 4);
    std::vector<IFrame*> held;
    for (int i = 0; i < 4; ++i) {
        held.push_back(m_camera->acquireFrame());
        ASSERT_FALSE(held.back()->isInvalid());
    }
    double const begin = monotonicSeconds();
    EXPECT_TRUE(m_camera->acquireFrame()->isInvalid());
    double const waited = monotonicSeconds() - begin;
    EXPECT_GE(waited, 1.99);
    EXPECT_LT(waited, 4);
    for (IFrame* const frame : held) {
        EXPECT_EQ(m_camera->releaseFrame(frame), 0);
    }
    EXPECT_FALSE(m_camera->acquireFrame()->isInvalid());
}

TEST_F(VividCaptureTest, TheDriverMayGrantMoreBuffersThanAskedFor)
{
    Stream const stream(*m_camera, 1);
    EXPECT_EQ(stream.takeAll().size(), 2U);
}

TEST_F(VividCaptureTest, TheDriverMayGrantFewerBuffersThanAskedFor)
{
    ASSERT_TRUE(m_camera->setCurrentImageFormat("YUYV", 320, 180, 1, 50));
    for (int const asked : {40, -1}) {
        Stream const stream(*m_camera, asked);
        EXPECT_EQ(stream.takeAll().size(), 32U) << asked;
    }
}

TEST_F(VividCaptureTest, NoBuffersAreNoCapture)
{
    EXPECT_EQ(m_camera->setup(0), -1);
    EXPECT_TRUE(m_camera->acquireFrame()->isInvalid());
    EXPECT_EQ(m_camera->cleanup(), 0);
}

TEST_F(VividCaptureTest, StoppingFromAnotherThreadEndsAWait)
{
    Stream const stream(*m_camera, 2);
    ASSERT_FALSE(m_camera->acquireFrame()->isInvalid());
    ASSERT_FALSE(m_camera->acquireFrame()->isInvalid());
    IFrame const* last = nullptr;
    double const begin = monotonicSeconds();
    double ended = begin;
    {
        WatchedThread reader([&] {
            last = m_camera->acquireFrame();
            ended = monotonicSeconds();
        });
        ASSERT_TRUE(reader.awaitSelect());
        EXPECT_EQ(m_camera->stopCapture(), 0);
    }
    EXPECT_TRUE(last->isInvalid());
    // Left alone it would have waited for two seconds.
    EXPECT_LT(ended - begin, 1.9);
}

TEST_F(VividCaptureTest, TheFormatStaysWhileStreaming)
{
    IFrameSize const* const before = m_camera->currentFrameSize();
    {
        Stream const stream(*m_camera, 4);
        EXPECT_FALSE(m_camera->setCurrentImageFormat("YUYV", 640, 360, 1, 25));
        EXPECT_FALSE(m_camera->setCurrentImageFormat("GREY", 320, 180, 1, 25));
        EXPECT_EQ(m_camera->currentFrameSize(), before);
        EXPECT_EQ(m_camera->acquireFrame()->bytesUsed(), smallSize);
    }
    EXPECT_TRUE(m_camera->setCurrentImageFormat("YUYV", 640, 360, 1, 25));
}

TEST_F(VividCaptureTest, TheFormatStaysWhileBuffersArePrepared)
{
    ASSERT_EQ(m_camera->setup(4), 0);
    EXPECT_FALSE(m_camera->setCurrentImageFormat("YUYV", 640, 360, 1, 25));
    EXPECT_EQ(m_camera->cleanup(), 0);
    EXPECT_TRUE(m_camera->setCurrentImageFormat("YUYV", 640, 360, 1, 25));
}

TEST_F(VividCaptureTest, TwoCamerasCaptureAtOnce)
{
    showStillPicture(secondNode);
    CameraPointer const other = openCamera(secondNode);
    ASSERT_NE(other, nullptr);
    ASSERT_TRUE(other->setCurrentImageFormat("GREY", 640, 360, 1, 10));
    FrameRecords fromOther;
    std::thread thread([&] { fromOther = captureFrames(*other, 20, 640 * 360); });
    FrameRecords const fromFirst = captureFrames(*m_camera, 50);
    thread.join();
    EXPECT_EQ(fromFirst.size(), 50U);
    EXPECT_EQ(fromOther.size(), 20U);
    // They did run at the same time.
    EXPECT_LT(fromFirst.front().stamp, fromOther.back().stamp);
    EXPECT_LT(fromOther.front().stamp, fromFirst.back().stamp);
    countLost(fromFirst);
    countLost(fromOther);
}

} // namespace
