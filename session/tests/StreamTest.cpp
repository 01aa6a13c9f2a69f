// SPDX-License-Identifier: MIT
#include "session/Stream.h"

#include "DescriptorCount.h"
#include "ErrorOf.h"
#include "Stopwatch.h"
#include "StreamedCamera.h"
#include "ThreadCount.h"

#include <gmock/gmock.h>
#include <linux/videodev2.h>
#include <poll.h>

#include <cerrno>
#include <thread>

namespace
{

using namespace ImageAcquisition::Session;
using testing::HasSubstr;

bool isReadable(Stream const& stream)
{
    pollfd entry{stream.descriptor(), POLLIN, 0};
    return poll(&entry, 1, 0) == 1;
}

/// Waits until the stream's thread has had so many frames.
bool received(Stream const& stream, unsigned long long count)
{
    return await([&] { return stream.statistics().received >= count; });
}

TEST(StreamTest, HandsOutEveryFrameInOrder)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    for (unsigned long long number = 0; number < 30; ++number) {
        device->deliverFrames(1);
        Frame const frame = stream.next(5s);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame.number(), number);
        EXPECT_EQ(frame.bytes().size(), smallImageSize);
        EXPECT_EQ(frame.lostBefore(), 0u);
    }
    EXPECT_EQ(stream.statistics().received, 30u);
    EXPECT_EQ(stream.statistics().thrownAway, 0u);
}

TEST(StreamTest, TellsWhatTheFramesAre)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->deliverFrames(1);
    Frame const frame = stream.next(5s);
    EXPECT_EQ(frame.selection().text(), "YUYV 64x48@30");
    EXPECT_EQ(frame.bytesPerLine(), 128u);
    EXPECT_FALSE(frame.isDamaged());
    EXPECT_FALSE(frame.isShort());
}

TEST(StreamTest, KeepsTheOldestAndCountsWhatItHasNoRoomFor)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    for (unsigned int count = 1; count <= 10; ++count) {
        device->deliverFrames(1);
        ASSERT_TRUE(received(stream, count));
    }
    EXPECT_EQ(stream.statistics().thrownAway, 7u);
    for (unsigned long long number = 0; number < 3; ++number) {
        EXPECT_EQ(stream.next(0ms).number(), number);
    }
    EXPECT_FALSE(stream.next(0ms));
    EXPECT_EQ(stream.statistics().lost, 0u);
}

TEST(StreamTest, KeepsOnlyTheNewestWhereThatIsAskedFor)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream(newest);
    for (unsigned int count = 1; count <= 10; ++count) {
        device->deliverFrames(1);
        ASSERT_TRUE(received(stream, count));
    }
    EXPECT_EQ(stream.next(0ms).number(), 9u);
    EXPECT_FALSE(stream.next(0ms));
    EXPECT_EQ(stream.statistics().thrownAway, 9u);
}

TEST(StreamTest, HandsOutAFrameWhileTheClientHoldsAllButOneBuffer)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    std::vector<Frame> held;
    for (int i = 0; i < 4; ++i) {
        device->deliverFrames(1);
        held.push_back(stream.next(5s));
        ASSERT_TRUE(held.back());
    }
    EXPECT_EQ(device->accounting().queuedBuffers, 0);
    held.erase(held.begin());
    device->deliverFrames(1);
    EXPECT_EQ(stream.next(5s).number(), 4u);
}

TEST(StreamTest, LeavesWhenTheTimeIsOver)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    Stopwatch const watch;
    EXPECT_FALSE(stream.next(50ms));
    EXPECT_GE(watch.seconds(), 0.05);
    EXPECT_FALSE(stream.next(0ms));
    EXPECT_EQ(stream.state(), StreamState::Running);
    EXPECT_FALSE(stream.error());
    EXPECT_EQ(stream.statistics().timeOuts, 1u) << "to look is not to wait";
}

TEST(StreamTest, WaitsWithoutLimitWhenTheTimeIsNegative)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    std::thread other([&] {
        std::this_thread::sleep_for(30ms);
        device->deliverFrames(1);
    });
    EXPECT_TRUE(stream.next(-1ms));
    other.join();
}

TEST(StreamTest, IsReadableWhileItHasAFrame)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    EXPECT_FALSE(isReadable(stream));
    device->deliverFrames(2);
    ASSERT_TRUE(received(stream, 2));
    EXPECT_TRUE(await([&] { return isReadable(stream); }));
    EXPECT_TRUE(stream.next(0ms));
    EXPECT_TRUE(isReadable(stream));
    EXPECT_TRUE(stream.next(0ms));
    EXPECT_FALSE(isReadable(stream));
    stream.stop();
    EXPECT_TRUE(isReadable(stream));
}

// The thread signals a frame a moment after it can be taken: a signal for nothing must not last.
TEST(StreamTest, IsNotReadableForLongAfterAFrameWasSnatched)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    for (int round = 0; round < 200; ++round) {
        device->deliverFrames(1);
        while (!stream.next(0ms)) {
        }
        ASSERT_TRUE(await([&] { return !isReadable(stream) || stream.next(0ms); }));
        ASSERT_TRUE(await([&] { return !isReadable(stream); }));
    }
}

TEST(StreamTest, IsStoppedFromAnotherThread)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    std::thread other([&] {
        std::this_thread::sleep_for(30ms);
        stream.stop();
    });
    Stopwatch const watch;
    EXPECT_FALSE(stream.next(30s));
    EXPECT_LT(watch.seconds(), 5);
    other.join();
    EXPECT_EQ(stream.state(), StreamState::Stopped);
    EXPECT_FALSE(stream.error());
    EXPECT_EQ(stream.statistics().reason, "stopped");
    EXPECT_FALSE(stream.next(30s));
    stream.stop();
}

TEST(StreamTest, GivesBackWhatWaitsWhenItIsStopped)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->deliverFrames(2);
    ASSERT_TRUE(received(stream, 2));
    stream.stop();
    EXPECT_FALSE(stream.next(0ms));
    EXPECT_TRUE(await([&] { return device->accounting().allocatedBuffers == 0; }));
}

TEST(StreamTest, IsWalkedOverInALoopUntilItIsStopped)
{
    StreamedCamera device;
    Camera camera = device.open();
    Stream stream = camera.stream();
    unsigned long long count = 0;
    for (Frame& frame : stream) {
        EXPECT_TRUE(frame);
        if (++count == 20) {
            stream.stop();
        }
    }
    EXPECT_EQ(count, 20u);
}

TEST(StreamTest, IsWalkedOverWithTwoBuffersOnly)
{
    StreamedCamera device(StreamedCamera::onDemand().grantingAtMost(2));
    Camera camera = device.open();
    StreamOptions options;
    options.buffers = 2;
    Stream stream = camera.stream(options);
    unsigned long long count = 0;
    device->deliverFrames(1);
    for (Frame& frame : stream) {
        EXPECT_EQ(frame.number(), count);
        if (++count == 10) {
            break;
        }
        device->deliverFrames(1);
    }
    EXPECT_EQ(count, 10u);
}

TEST(StreamTest, EndsALoopWithTheReason)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    StreamOptions options;
    options.timeout = 20ms;
    Stream stream = camera.stream(options);
    auto const timedOut = errorOf([&] {
        for (Frame const& frame : stream) {
            static_cast<void>(frame);
        }
    });
    ASSERT_TRUE(timedOut);
    EXPECT_EQ(timedOut->kind(), ErrorKind::TimedOut);
    EXPECT_THAT(timedOut->what(), HasSubstr("none came within 20 ms"));
    device.unplug();
    auto const gone = errorOf([&] { stream.begin(); });
    ASSERT_TRUE(gone);
    EXPECT_EQ(gone->kind(), ErrorKind::Unplugged);
}

TEST(StreamTest, NoticesUnpluggingAtOnce)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    std::chrono::steady_clock::time_point unplugged;
    std::thread other([&] {
        std::this_thread::sleep_for(30ms);
        unplugged = std::chrono::steady_clock::now();
        device->unplug();
    });
    EXPECT_FALSE(stream.next(30s));
    auto const noticed = std::chrono::steady_clock::now();
    other.join();
    EXPECT_LT(noticed - unplugged, 100ms);
    EXPECT_EQ(stream.state(), StreamState::Unplugged);
    ASSERT_TRUE(stream.error());
    EXPECT_EQ(stream.error()->kind(), ErrorKind::Unplugged);
    EXPECT_EQ(stream.error()->node(), "/dev/video0");
    EXPECT_THAT(stream.statistics().reason, HasSubstr("the camera is gone"));
}

TEST(StreamTest, HandsOutWhatCameBeforeUnplugging)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->deliverFrames(2);
    ASSERT_TRUE(received(stream, 2));
    device.unplug();
    ASSERT_TRUE(await([&] { return stream.state() == StreamState::Unplugged; }));
    EXPECT_EQ(stream.next(0ms).number(), 0u);
    EXPECT_EQ(stream.next(0ms).number(), 1u);
    EXPECT_FALSE(stream.next(30s));
}

// Drivers may let go of a stream with any error, a moment before the node is taken away.
TEST(StreamTest, TakesAFailureForUnpluggingWhenTheNodeGoes)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->failFrom(VIDIOC_DQBUF, EIO);
    device->deliverFrames(1);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(stream.state(), StreamState::Running);
    device.machine().removeVideoNode("video0");
    ASSERT_TRUE(await([&] { return stream.state() != StreamState::Running; }));
    EXPECT_EQ(stream.state(), StreamState::Unplugged);
}

TEST(StreamTest, TakesAFailureForUnpluggingWhenThereIsNoStreamToStop)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->failFrom(VIDIOC_DQBUF, EIO);
    device->failFrom(VIDIOC_STREAMOFF, ENODEV);
    device->deliverFrames(1);
    EXPECT_FALSE(stream.next(30s));
    EXPECT_EQ(stream.state(), StreamState::Unplugged);
}

TEST(StreamTest, TellsADriversErrorFromUnplugging)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->fail(VIDIOC_DQBUF, EIO);
    device->deliverFrames(1);
    EXPECT_FALSE(stream.next(30s));
    EXPECT_EQ(stream.state(), StreamState::Failed);
    ASSERT_TRUE(stream.error());
    EXPECT_EQ(stream.error()->kind(), ErrorKind::Refused);
    EXPECT_EQ(stream.error()->systemError(), EIO);
}

TEST(StreamTest, GoesOnWhenAFrameIsToldTooEarly)
{
    StreamedCamera device;
    device->fail(VIDIOC_DQBUF, EAGAIN, 3);
    device->fail(VIDIOC_DQBUF, EINTR, 5);
    Camera camera = device.open();
    Stream stream = camera.stream();
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(stream.next(5s));
    }
}

TEST(StreamTest, RefusesASecondOneWhileItRuns)
{
    StreamedCamera device;
    Camera camera = device.open();
    Stream stream = camera.stream();
    auto const error = errorOf([&] { camera.stream(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Busy);
    EXPECT_TRUE(stream.next(5s));
}

// Its thread lets go of the camera a moment after the end.
TEST(StreamTest, IsFollowedByAnotherAsSoonAsItHasEnded)
{
    StreamedCamera device;
    Camera camera = device.open();
    Stream stream = camera.stream();
    for (int round = 0; round < 50; ++round) {
        EXPECT_TRUE(stream.next(5s));
        if (round % 2 == 0) {
            stream.stop();
        } else {
            device->fail(VIDIOC_DQBUF, EIO);
            while (stream.next(5s)) {
            }
        }
        auto const error = errorOf([&] { stream = camera.stream(); });
        ASSERT_FALSE(error) << round << ": " << error->what();
        device->stopFailing();
    }
}

TEST(StreamTest, RefusesASecondOneWhileFramesAreHeld)
{
    StreamedCamera device;
    Camera camera = device.open();
    Frame held = camera.stream().next(5s);
    ASSERT_TRUE(held);
    auto const error = errorOf([&] { camera.stream(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::Busy);
    EXPECT_THAT(error->what(), HasSubstr("still held"));
    EXPECT_EQ(held.bytes().size(), smallImageSize);
    held.release();
    EXPECT_TRUE(camera.stream().next(5s));
}

TEST(StreamTest, IsRefusedOnABusWithoutRoomWithWhatElseIsThere)
{
    StreamedCamera device(smallCamera(), StreamedCamera::numbered().withSpeed("12"));
    auto const other =
        device.machine().plug(VirtualCamera::aUsbDevice("1-3").withProduct("Other Cam"));
    device->fail(VIDIOC_STREAMON, ENOSPC);
    Camera camera = device.open();
    auto const error = errorOf([&] { camera.stream(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::NoBandwidth);
    EXPECT_EQ(error->systemError(), ENOSPC);
    EXPECT_EQ(error->reason(),
              "the bus has no room for YUYV 64x48@30, 0.1 MB a second; the link is full speed, 12 "
              "Mbit/s");
    EXPECT_EQ(error->hint(), "also on the bus: 1-3 'Other Cam'");
    EXPECT_TRUE(camera.stream().next(5s));
}

TEST(StreamTest, RefusesTooFewBuffers)
{
    StreamedCamera device;
    Camera camera = device.open();
    StreamOptions options;
    options.buffers = 1;
    auto const error = errorOf([&] { camera.stream(options); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::BadRequest);
}

TEST(StreamTest, MovesWhileItRuns)
{
    StreamedCamera device;
    Camera camera = device.open();
    Stream first = camera.stream();
    Stream second = std::move(first);
    EXPECT_TRUE(second.next(5s));
    first = std::move(second);
    EXPECT_TRUE(first.next(5s));
}

TEST(StreamTest, TellsWhenItIsStopped)
{
    StreamedCamera device;
    Camera camera = device.open();
    std::vector<StreamState> states;
    StreamOptions options;
    options.onState = [&](StreamState state) { states.push_back(state); };
    {
        Stream stream = camera.stream(options);
        EXPECT_TRUE(stream.next(5s));
    }
    EXPECT_THAT(states, testing::ElementsAre(StreamState::Stopped));
}

TEST(StreamTest, MayBeStoppedByWhatItTells)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    std::optional<Stream> stream;
    std::atomic<int> told{0};
    StreamOptions options;
    options.stayOn = true;
    options.onState = [&](StreamState) {
        ++told;
        stream->stop();
    };
    stream.emplace(camera.stream(options));
    device.unplug();
    EXPECT_TRUE(await([&] { return told == 2; }));
    EXPECT_EQ(stream->state(), StreamState::Stopped);
}

TEST(StreamTest, LeavesNeitherThreadNorDescriptorBehind)
{
    StreamedCamera device;
    {
        Camera camera = device.open();
        EXPECT_TRUE(camera.stream().next(5s));
    }
    int const threads = threadCount();
    int const descriptors = openDescriptors();
    for (int i = 0; i < 5; ++i) {
        Camera camera = device.open();
        EXPECT_TRUE(camera.stream().next(5s));
    }
    EXPECT_TRUE(awaitThreadCount(threads));
    EXPECT_TRUE(awaitAtMostDescriptors(descriptors));
    EXPECT_TRUE(device->accounting().nothingHeld());
}

} // namespace
