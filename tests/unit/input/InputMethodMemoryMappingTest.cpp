// SPDX-License-Identifier: MIT
// Streaming with the memory-mapped method.
#include "input/InputMethodMemoryMapping.h"

#include "OpenNode.h"
#include "SmallCamera.h"
#include "Stopwatch.h"
#include "ThreadState.h"
#include "V4l2Hook.h"
#include "input/InputMethodRead.h"

#include <gtest/gtest.h>

#include <linux/videodev2.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace
{

using namespace ImageAcquisition;
using VirtualCamera::Call;
using VirtualCamera::CameraBuilder;
using VirtualCamera::InstalledCamera;
using VirtualCamera::Pace;

/// A camera with a method that streams from it.
class Stream
{
public:
    explicit Stream(CameraBuilder const& builder, int buffers = 3)
        : camera(builder.install()), method(node.fd())
    {
        _setUp = method.setup(buffers, smallImageSize) == 0 && method.startCapture() == 0;
    }
    Stream(Stream const&) = delete;
    Stream& operator=(Stream const&) = delete;
    ~Stream()
    {
        EXPECT_TRUE(_setUp);
        method.cleanup();
        EXPECT_EQ(0, camera.accounting().liveMappings);
    }

    InstalledCamera camera;
    OpenNode const node;
    InputMethodMemoryMapping method;

private:
    bool _setUp = false;
};

TEST(MappedStream, QueuesAllBuffersInOrderAndStarts)
{
    Stream stream(smallCamera());
    auto const queued = stream.camera.calls(VIDIOC_QBUF);
    ASSERT_EQ(3u, queued.size());
    for (unsigned int i = 0; i < 3; ++i) {
        auto const buffer = queued[i].argument<v4l2_buffer>();
        EXPECT_EQ(i, buffer.index);
        EXPECT_EQ(static_cast<__u32>(V4L2_BUF_TYPE_VIDEO_CAPTURE), buffer.type);
        EXPECT_EQ(static_cast<__u32>(V4L2_MEMORY_MMAP), buffer.memory);
    }
    EXPECT_EQ(static_cast<int>(V4L2_BUF_TYPE_VIDEO_CAPTURE),
              stream.camera.calls(VIDIOC_STREAMON).front().argument<int>());
    EXPECT_TRUE(stream.camera.accounting().streaming);
    EXPECT_EQ(InputMethod::MemoryMapping, stream.method.type());
}

TEST(MappedStream, DoesNotStartWhenABufferIsRefused)
{
    auto const camera = smallCamera().failing(VIDIOC_QBUF, EIO, 2).install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    ASSERT_EQ(0, method.setup(3, smallImageSize));
    EXPECT_EQ(-1, method.startCapture());
    EXPECT_EQ(2u, camera.countOf(VIDIOC_QBUF));
    EXPECT_EQ(0u, camera.countOf(VIDIOC_STREAMON));
    method.cleanup();
}

TEST(MappedStream, DoesNotStartWhenTheDriverRefuses)
{
    auto const camera = smallCamera().failing(VIDIOC_STREAMON, EIO).install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    ASSERT_EQ(0, method.setup(3, smallImageSize));
    EXPECT_EQ(-1, method.startCapture());
    method.cleanup();
}

TEST(MappedStream, HandsOutAFrameThatClaimsMoreThanItsBufferHolds)
{
    Stream stream(smallCamera());
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

TEST(MappedStream, OnlyStartsWhenItHasNoBuffers)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    EXPECT_EQ(-1, method.startCapture()) << "the driver has no buffers either";
    EXPECT_EQ(0u, camera.countOf(VIDIOC_QBUF));
    EXPECT_EQ(1u, camera.countOf(VIDIOC_STREAMON));
}

TEST(MappedStream, DeliversThePicturesInOrder)
{
    Stream stream(smallCamera().paced(Pace::OnDemand));
    std::int64_t earlier = 0;
    for (unsigned int number = 0; number < 10; ++number) {
        stream.camera.deliverFrames(1);
        IFrame* const frame = stream.method.acquireFrame();
        ASSERT_FALSE(frame->isInvalid());
        EXPECT_EQ(number, frame->counter());
        EXPECT_EQ(smallImageSize, frame->bytesUsed());
        EXPECT_EQ(smallImageSize, frame->size());
        EXPECT_EQ(smallImageSize, frame->allocSize());
        EXPECT_FALSE(frame->isCorrupted());
        std::int64_t const time =
            frame->timeStamp().seconds * 1000000 + frame->timeStamp().microseconds;
        EXPECT_LE(earlier, time);
        EXPECT_LT(0, time);
        earlier = time;
        auto const expected = VirtualCamera::testPattern(V4L2_PIX_FMT_YUYV, 64, 48, number);
        ASSERT_EQ(smallImageSize, expected.size());
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), frame->bytePtr()));
        EXPECT_EQ(0, stream.method.releaseFrame(frame));
    }
}

TEST(MappedStream, ShowsTheDriversOwnMemory)
{
    Stream stream(smallCamera().paced(Pace::OnDemand), 1);
    stream.camera.deliverFrames(1);
    IFrame* const first = stream.method.acquireFrame();
    ASSERT_FALSE(first->isInvalid());
    unsigned char* const bytes = first->bytePtr();
    EXPECT_EQ(const_cast<IFrame const*>(first)->bytePtr(), bytes);
    std::fill(bytes, bytes + first->allocSize(), static_cast<unsigned char>(0));
    stream.method.releaseFrame(first);
    stream.camera.deliverFrames(1);
    IFrame* const second = stream.method.acquireFrame();
    EXPECT_EQ(bytes, second->bytePtr());
    EXPECT_NE(bytes + second->bytesUsed(),
              std::find_if(bytes, bytes + second->bytesUsed(), [](auto b) { return b != 0; }));
}

TEST(MappedStream, GapsInTheCounterTellOfLostFrames)
{
    Stream stream(smallCamera().withMissingFrame(1));
    EXPECT_EQ(0u, stream.method.acquireFrame()->counter());
    EXPECT_EQ(2u, stream.method.acquireFrame()->counter());
}

TEST(MappedStream, ReportsShortFramesByTheirBytes)
{
    Stream stream(smallCamera().withShortFrame(0, 100));
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_EQ(100u, frame->bytesUsed());
    EXPECT_EQ(100u, frame->size());
    EXPECT_EQ(smallImageSize, frame->allocSize());
}

TEST(MappedStream, HandsOutDamagedFramesMarked)
{
    Stream stream(smallCamera().withCorruptedFrame(0), 1);
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_FALSE(frame->isInvalid());
    EXPECT_TRUE(frame->isCorrupted());
    EXPECT_EQ(0, stream.camera.accounting().queuedBuffers);
    EXPECT_EQ(0, stream.method.releaseFrame(frame));
    EXPECT_EQ(1, stream.camera.accounting().queuedBuffers);
    EXPECT_FALSE(stream.method.acquireFrame()->isCorrupted());
}

TEST(MappedStream, GivesBackTheBufferAsItWasDequeued)
{
    Stream stream(smallCamera());
    IFrame* const frame = stream.method.acquireFrame();
    auto const dequeued = stream.camera.calls(VIDIOC_DQBUF).back().answer<v4l2_buffer>();
    EXPECT_EQ(0, stream.method.releaseFrame(frame));
    auto const queued = stream.camera.calls(VIDIOC_QBUF).back().argument<v4l2_buffer>();
    EXPECT_EQ(0, std::memcmp(&dequeued, &queued, sizeof queued));
}

TEST(MappedStream, ReportsThatTheDriverRefusedAFrame)
{
    Stream stream(smallCamera());
    IFrame* const frame = stream.method.acquireFrame();
    stream.camera.fail(VIDIOC_QBUF, EIO);
    EXPECT_EQ(-1, stream.method.releaseFrame(frame));
    EXPECT_EQ(0, stream.method.releaseFrame(frame));
}

TEST(MappedStream, TakesInvalidFramesBackWithoutTheDriver)
{
    Stream stream(smallCamera().paced(Pace::OnDemand));
    stream.camera.failFrom(VIDIOC_DQBUF, EIO);
    stream.camera.deliverFrames(1);
    IFrame* const own = stream.method.acquireFrame();
    ASSERT_TRUE(own->isInvalid());
    ASSERT_NE(IFrame::invalid(), own);
    InputMethod::InvalidFrame other(5);
    unsigned const before = stream.camera.countOf(Call::Ioctl);
    EXPECT_EQ(0, stream.method.releaseFrame(own));
    EXPECT_EQ(0, stream.method.releaseFrame(IFrame::invalid()));
    EXPECT_EQ(0, stream.method.releaseFrame(&other));
    EXPECT_EQ(before, stream.camera.countOf(Call::Ioctl));
}

TEST(MappedStream, RefusesNullAndForeignFramesWithoutTheDriver)
{
    Stream stream(smallCamera());
    InputMethodRead::Frame foreign(10);
    unsigned const before = stream.camera.countOf(Call::Ioctl);
    EXPECT_EQ(-1, stream.method.releaseFrame(nullptr));
    EXPECT_EQ(-1, stream.method.releaseFrame(&foreign));
    EXPECT_EQ(before, stream.camera.countOf(Call::Ioctl));
}

TEST(MappedStream, GivesUpAfterTwoSecondsWithoutAFrame)
{
    Stream stream(smallCamera().withoutFrames());
    Stopwatch const watch;
    IFrame* const frame = stream.method.acquireFrame();
    EXPECT_GE(watch.seconds(), 1.99);
    EXPECT_LT(watch.seconds(), 3);
    EXPECT_TRUE(frame->isInvalid());
    EXPECT_EQ(0u, stream.camera.countOf(VIDIOC_DQBUF));
    EXPECT_EQ(smallImageSize, frame->allocSize());
    EXPECT_TRUE(std::all_of(frame->bytePtr(), frame->bytePtr() + frame->allocSize(),
                            [](unsigned char byte) { return byte == 0; }));
}

TEST(MappedStream, TriesTenTimesWhenTheDriverSaysAgain)
{
    Stream stream(smallCamera());
    stream.camera.failFrom(VIDIOC_DQBUF, EAGAIN);
    EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
    EXPECT_EQ(10u, stream.camera.countOf(VIDIOC_DQBUF));
}

TEST(MappedStream, TakesTheFrameOfATenthAttempt)
{
    Stream stream(smallCamera());
    for (unsigned int use = 1; use <= 9; ++use) {
        stream.camera.fail(VIDIOC_DQBUF, EAGAIN, use);
    }
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
    EXPECT_EQ(10u, stream.camera.countOf(VIDIOC_DQBUF));
}

TEST(MappedStream, GivesUpAtOnceForAnyOtherError)
{
    for (int const error : {EIO, ENODEV, EINVAL, EPIPE}) {
        Stream stream(smallCamera());
        stream.camera.failFrom(VIDIOC_DQBUF, error);
        Stopwatch const watch;
        EXPECT_TRUE(stream.method.acquireFrame()->isInvalid()) << error;
        EXPECT_EQ(1u, stream.camera.countOf(VIDIOC_DQBUF));
        EXPECT_LT(watch.seconds(), 1);
    }
}

TEST(MappedStream, IsNotDisturbedByASignal)
{
    Stream stream(smallCamera());
    stream.camera.fail(VIDIOC_DQBUF, EINTR);
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
}

TEST(MappedStream, GivesUpForABufferIndexThatItDoesNotHave)
{
    for (unsigned int const index : {3u, 4u, 0x7fffffffu, 0xffffffffu}) {
        Stream stream(smallCamera().withWrongIndex(0, index));
        EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
        EXPECT_EQ(1u, stream.camera.countOf(VIDIOC_DQBUF));
    }
}

TEST(MappedStream, GivesUpAtOnceWhenTheCameraVanishes)
{
    Stream stream(smallCamera().paced(Pace::Interval).vanishingAtFrame(2));
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
    EXPECT_FALSE(stream.method.acquireFrame()->isInvalid());
    Stopwatch const watch;
    EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
    EXPECT_LT(watch.seconds(), 1);
    EXPECT_EQ(-1, stream.method.stopCapture());
    EXPECT_EQ(0, stream.method.cleanup());
}

TEST(MappedStream, HandsOutAnInvalidFrameBeforeSetupAndAfterCleanup)
{
    auto const camera = smallCamera().install();
    OpenNode const node;
    InputMethodMemoryMapping method(node.fd());
    Stopwatch const watch;
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame());
    ASSERT_EQ(0, method.setup(2, smallImageSize));
    ASSERT_EQ(0, method.cleanup());
    EXPECT_EQ(IFrame::invalid(), method.acquireFrame());
    EXPECT_LT(watch.seconds(), 1);
    EXPECT_EQ(0u, camera.countOf(VIDIOC_DQBUF));
}

TEST(MappedStream, StopsStreamingAfterItWokeTheWaiter)
{
    Stream stream(smallCamera());
    Stopwatch const watch;
    EXPECT_EQ(0, stream.method.stopCapture());
    EXPECT_GE(watch.seconds(), 0.01);
    EXPECT_FALSE(stream.camera.accounting().streaming);
    EXPECT_TRUE(stream.method.acquireFrame()->isInvalid());
}

TEST(MappedStream, ReportsThatTheDriverDidNotStop)
{
    Stream stream(smallCamera());
    stream.camera.fail(VIDIOC_STREAMOFF, EIO);
    EXPECT_EQ(-1, stream.method.stopCapture());
    EXPECT_EQ(0, stream.method.stopCapture());
}

TEST(MappedStream, LeavesABlockedWaitWhenAnotherThreadStopsIt)
{
    Stream stream(smallCamera().withoutFrames());
    bool invalid = false;
    double waited = 0;
    WatchedThread waiter([&] {
        Stopwatch const watch;
        invalid = stream.method.acquireFrame()->isInvalid();
        waited = watch.seconds();
    });
    ASSERT_TRUE(waiter.awaitSelect());
    EXPECT_EQ(0, stream.method.stopCapture());
    waiter.join();
    EXPECT_TRUE(invalid);
    EXPECT_LT(waited, 1.9);
}

TEST(MappedStream, WorksAgainAfterCleanupAndSetup)
{
    Stream stream(smallCamera());
    for (int round = 0; round < 3; ++round) {
        IFrame* const frame = stream.method.acquireFrame();
        ASSERT_FALSE(frame->isInvalid()) << round;
        EXPECT_EQ(0u, frame->counter()) << "counted from the start of streaming";
        EXPECT_EQ(0, stream.method.stopCapture());
        EXPECT_EQ(0, stream.method.cleanup());
        ASSERT_EQ(0, stream.method.setup(2, smallImageSize));
        ASSERT_EQ(0, stream.method.startCapture());
    }
}

} // namespace
