// SPDX-License-Identifier: MIT
// Streaming with the memory-mapped method.
#include "input/InputMethodMemoryMapping.h"

#include "Stopwatch.h"
#include "Stream.h"
#include "ThreadState.h"
#include "V4l2Hook.h"
#include "input/InputMethodRead.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <algorithm>
#include <cerrno>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::Pace;

using MappedStream = Stream<InputMethodMemoryMapping>;

TEST(InputMethodMemoryMappingTest, QueuesAllBuffersInOrderAndStarts)
{
    MappedStream stream(smallCamera());
    auto const queued = stream.camera.calls(VIDIOC_QBUF);
    ASSERT_EQ(queued.size(), 3u);
    for (unsigned int i = 0; i < 3; ++i) {
        auto const buffer = queued[i].argument<v4l2_buffer>();
        EXPECT_EQ(i, buffer.index);
        EXPECT_EQ(buffer.type, static_cast<__u32>(V4L2_BUF_TYPE_VIDEO_CAPTURE));
        EXPECT_EQ(buffer.memory, static_cast<__u32>(V4L2_MEMORY_MMAP));
    }
    EXPECT_EQ(stream.camera.calls(VIDIOC_STREAMON).front().argument<int>(),
              static_cast<int>(V4L2_BUF_TYPE_VIDEO_CAPTURE));
    EXPECT_TRUE(stream.camera.accounting().streaming);
    EXPECT_EQ(stream.method.type(), InputMethod::MemoryMapping);
}

TEST(InputMethodMemoryMappingTest, HandsOutAFrameThatClaimsMoreThanItsBufferHolds)
{
    MappedStream stream(smallCamera());
    V4l2Hook const hook([](int fd, unsigned long request, void* argument) {
        int const result = V4l2Hook::realIoctl(fd, request, argument);
        if (request == VIDIOC_DQBUF && result == 0) {
            static_cast<v4l2_buffer*>(argument)->bytesused = 0xffffffff;
        }
        return result;
    });
    IFrame* const frame = stream.method.acquireFrame();
    ASSERT_FALSE(frame->isInvalid());
    EXPECT_EQ(frame->bytesUsed(), 0xffffffffu);
    EXPECT_EQ(frame->size(), 0xffffffffu);
    EXPECT_EQ(frame->allocSize(), smallImageSize);
    EXPECT_EQ(stream.method.releaseFrame(frame), 0);
}

TEST(InputMethodMemoryMappingTest, OnlyStartsWhenItHasNoBuffers)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    EXPECT_EQ(method.startCapture(), -1) << "the driver has no buffers either";
    EXPECT_EQ(camera.countOf(VIDIOC_QBUF), 0u);
    EXPECT_EQ(camera.countOf(VIDIOC_STREAMON), 1u);
}

TEST(InputMethodMemoryMappingTest, ShowsTheDriversOwnMemory)
{
    MappedStream stream(smallCamera().paced(Pace::OnDemand), 1);
    stream.camera.deliverFrames(1);
    IFrame* const first = stream.method.acquireFrame();
    ASSERT_FALSE(first->isInvalid());
    unsigned char* const bytes = first->bytePtr();
    EXPECT_EQ(const_cast<IFrame const*>(first)->bytePtr(), bytes);
    std::fill(bytes, bytes + first->allocSize(), static_cast<unsigned char>(0));
    stream.method.releaseFrame(first);
    stream.camera.deliverFrames(1);
    IFrame* const second = stream.method.acquireFrame();
    EXPECT_EQ(second->bytePtr(), bytes);
    EXPECT_NE(bytes + second->bytesUsed(),
              std::find_if(bytes, bytes + second->bytesUsed(), [](auto b) { return b != 0; }));
}

TEST(InputMethodMemoryMappingTest, GapsInTheCounterTellOfLostFrames)
{
    MappedStream stream(smallCamera().withMissingFrame(1));
    EXPECT_EQ(stream.method.acquireFrame()->counter(), 0u);
    EXPECT_EQ(stream.method.acquireFrame()->counter(), 2u);
}

TEST(InputMethodMemoryMappingTest, TakesInvalidFramesBackWithoutTheDriver)
{
    MappedStream stream(smallCamera().paced(Pace::OnDemand));
    stream.camera.failFrom(VIDIOC_DQBUF, EIO);
    stream.camera.deliverFrames(1);
    IFrame* const own = stream.method.acquireFrame();
    ASSERT_TRUE(own->isInvalid());
    ASSERT_NE(IFrame::invalid(), own);
    InputMethod::InvalidFrame other(5);
    unsigned const before = stream.camera.countOf(Call::Ioctl);
    EXPECT_EQ(stream.method.releaseFrame(own), 0);
    EXPECT_EQ(stream.method.releaseFrame(IFrame::invalid()), 0);
    EXPECT_EQ(stream.method.releaseFrame(&other), 0);
    EXPECT_EQ(stream.camera.countOf(Call::Ioctl), before);
}

TEST(InputMethodMemoryMappingTest, TriesTenTimesWhenTheDriverSaysAgain)
{
    MappedStream stream(smallCamera());
    stream.camera.failFrom(VIDIOC_DQBUF, EAGAIN);
    EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
    EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 10u);
}

TEST(InputMethodMemoryMappingTest, TakesTheFrameOfATenthAttempt)
{
    MappedStream stream(smallCamera());
    for (unsigned int use = 1; use <= 9; ++use) {
        stream.camera.fail(VIDIOC_DQBUF, EAGAIN, use);
    }
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
    EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 10u);
}

TEST(InputMethodMemoryMappingTest, IsNotDisturbedByASignal)
{
    MappedStream stream(smallCamera());
    stream.camera.fail(VIDIOC_DQBUF, EINTR);
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
}

TEST(InputMethodMemoryMappingTest, GivesUpForABufferIndexThatItDoesNotHave)
{
    for (unsigned int const index : {3u, 4u, 0x7fffffffu, 0xffffffffu}) {
        MappedStream stream(smallCamera().withWrongIndex(0, index));
        EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
        EXPECT_EQ(stream.camera.countOf(VIDIOC_DQBUF), 1u);
    }
}

TEST(InputMethodMemoryMappingTest, GivesUpAtOnceWhenTheCameraVanishes)
{
    MappedStream stream(smallCamera().paced(Pace::Interval).vanishingAtFrame(2));
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
    Stopwatch const watch;
    EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
    EXPECT_LT(watch.seconds(), 1);
    EXPECT_EQ(stream.method.stopCapture(), -1);
    EXPECT_EQ(stream.method.cleanup(), 0);
}

TEST(InputMethodMemoryMappingTest, HandsOutAnInvalidFrameBeforeSetupAndAfterCleanup)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    Stopwatch const watch;
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame());
    ASSERT_EQ(method.setup(2, smallImageSize), 0);
    ASSERT_EQ(method.cleanup(), 0);
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame());
    EXPECT_LT(watch.seconds(), 1);
    EXPECT_EQ(camera.countOf(VIDIOC_DQBUF), 0u);
}

TEST(InputMethodMemoryMappingTest, StopsStreamingAfterItWokeTheWaiter)
{
    MappedStream stream(smallCamera());
    Stopwatch const watch;
    EXPECT_EQ(stream.method.stopCapture(), 0);
    EXPECT_GE(watch.seconds(), 0.01);
    EXPECT_FALSE(stream.camera.accounting().streaming);
    EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
}

TEST(InputMethodMemoryMappingTest, ReportsThatTheDriverDidNotStop)
{
    MappedStream stream(smallCamera());
    stream.camera.fail(VIDIOC_STREAMOFF, EIO);
    EXPECT_EQ(stream.method.stopCapture(), -1);
    EXPECT_EQ(stream.method.stopCapture(), 0);
}

TEST(InputMethodMemoryMappingTest, LeavesABlockedWaitWhenAnotherThreadStopsIt)
{
    MappedStream stream(smallCamera().withoutFrames());
    bool invalid = false;
    double waited = 0;
    WatchedThread waiter([&] {
        Stopwatch const watch;
        invalid = stream.method.acquireFrame()->isInvalid();
        waited = watch.seconds();
    });
    ASSERT_TRUE(waiter.awaitSelect());
    EXPECT_EQ(stream.method.stopCapture(), 0);
    waiter.join();
    EXPECT_TRUE(invalid);
    EXPECT_LT(waited, 1.9);
}

TEST(InputMethodMemoryMappingTest, WorksAgainAfterCleanupAndSetup)
{
    MappedStream stream(smallCamera());
    for (int round = 0; round < 3; ++round) {
        IFrame* const frame = stream.method.acquireFrame();
        ASSERT_FALSE(frame->isInvalid()) << round;
        EXPECT_EQ(frame->counter(), 0u) << "counted from the start of streaming";
        EXPECT_EQ(stream.method.stopCapture(), 0);
        EXPECT_EQ(stream.method.cleanup(), 0);
        ASSERT_EQ(stream.method.setup(2, smallImageSize), 0);
        ASSERT_EQ(stream.method.startCapture(), 0);
    }
}

} // namespace
