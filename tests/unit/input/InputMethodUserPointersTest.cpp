// SPDX-License-Identifier: MIT
// Streaming with the user-pointer method, which only sets up where no pipe can be made.
#include "input/InputMethodUserPointers.h"

#include "Stopwatch.h"
#include "Stream.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <cerrno>
#include <set>

namespace
{

using namespace ImageAcquisition;

using UserPointerStream = Stream<InputMethodUserPointers>;

VirtualCamera::CameraBuilder userPointerCamera()
{
    return cameraFor<InputMethodUserPointers>();
}

TEST(InputMethodUserPointersTest, LendsItsBuffersInOrderAndStarts)
{
    UserPointerStream stream(userPointerCamera());
    auto const queued = stream.camera.calls(VIDIOC_QBUF);
    ASSERT_EQ(queued.size(), 3u);
    std::set<unsigned long> addresses;
    for (unsigned int i = 0; i < 3; ++i) {
        auto const buffer = queued[i].argument<v4l2_buffer>();
        EXPECT_EQ(i, buffer.index);
        EXPECT_EQ(buffer.type, static_cast<__u32>(V4L2_BUF_TYPE_VIDEO_CAPTURE));
        EXPECT_EQ(buffer.memory, static_cast<__u32>(V4L2_MEMORY_USERPTR));
        EXPECT_EQ(buffer.length, smallImageSize);
        addresses.insert(buffer.m.userptr);
    }
    EXPECT_EQ(addresses.size(), 3u);
    EXPECT_TRUE(stream.camera.accounting().streaming);
    EXPECT_EQ(stream.method.type(), InputMethod::UserPointers);
}

TEST(InputMethodUserPointersTest, FindsTheFrameByItsAddressAndNotByTheIndex)
{
    UserPointerStream stream(userPointerCamera().withWrongIndex(0, 77));
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    auto const dequeued = stream.camera.calls(VIDIOC_DQBUF).back().answer<v4l2_buffer>();
    EXPECT_EQ(dequeued.index, 77u);
    EXPECT_EQ(reinterpret_cast<unsigned long>(frame->bytePtr()), dequeued.m.userptr);
}

TEST(InputMethodUserPointersTest, GivesUpAtOnceForABufferThatIsNotItsOwn)
{
    for (bool const wrongLength : {true, false}) {
        auto builder = userPointerCamera();
        if (wrongLength) {
            builder.withWrongLength(0, smallImageSize + 1);
        } else {
            builder.withWrongUserPointer(0, 0x1000);
        }
        UserPointerStream stream(builder);
        Stopwatch const watch;
        IFrame* const frame = stream.method.acquireFrame();
        EXPECT_TRUE(frame->isInvalid());
        EXPECT_EQ(frame->allocSize(), smallImageSize);
        EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 1u);
        EXPECT_LT(watch.seconds(), 1);
    }
}

TEST(InputMethodUserPointersTest, TriesAsOftenAsTheDriverSaysAgain)
{
    UserPointerStream stream(userPointerCamera());
    for (unsigned int use = 1; use <= 50; ++use) {
        stream.camera.fail(VIDIOC_DQBUF, EAGAIN, use);
    }
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
    EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 51u);
}

TEST(InputMethodUserPointersTest, EndsTheAttemptsOnceAStopIsPending)
{
    UserPointerStream stream(userPointerCamera());
    // A second setup leaves the buffers alone, and opens the pipe that the first could not.
    ASSERT_EQ(stream.method.setup(3, smallImageSize), -1);
    stream.camera.failFrom(VIDIOC_DQBUF, EAGAIN);
    stream.camera.fail(VIDIOC_STREAMOFF, EIO);
    EXPECT_EQ(stream.method.stopCapture(), -1);
    Stopwatch const watch;
    EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
    EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 1u);
    EXPECT_LT(watch.seconds(), 1);
}

TEST(InputMethodUserPointersTest, StopsStreaming)
{
    UserPointerStream stream(userPointerCamera());
    EXPECT_EQ(stream.method.stopCapture(), 0);
    EXPECT_FALSE(stream.camera.accounting().streaming);
}

} // namespace
