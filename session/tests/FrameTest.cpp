// SPDX-License-Identifier: MIT
#include "session/Frame.h"

#include "StreamedCamera.h"

#include "session/Picture.h"

#include <gtest/gtest.h>
#include <linux/videodev2.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <numeric>
#include <thread>

namespace
{

using namespace ImageAcquisition::Session;

unsigned long sumOf(Bytes bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), 0UL);
}

/// A frame whose stream and camera are gone.
Frame orphan(StreamedCamera& device)
{
    Camera camera = device.open();
    return camera.stream().next(5s);
}

TEST(FrameTest, IsEmptyWithoutAPicture)
{
    Frame const frame;
    EXPECT_FALSE(frame);
    EXPECT_TRUE(frame.bytes().empty());
    EXPECT_EQ(frame.selection().text(), "");
    EXPECT_EQ(frame.bytesPerLine(), 0u);
    EXPECT_EQ(frame.number(), 0u);
    EXPECT_EQ(frame.lostBefore(), 0u);
    EXPECT_EQ(frame.captured(), Frame::Clock::time_point());
    EXPECT_FALSE(frame.isDamaged());
    EXPECT_FALSE(frame.isShort());
}

TEST(FrameTest, BecomesAPicture)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->deliverFrames(1);
    Frame const frame = stream.next(5s);
    ASSERT_TRUE(frame);
    Picture picture;
    picture.convert(frame);
    Picture alone;
    alone.convert(frame.bytes(), {"YUYV", 64, 48, frame.bytesPerLine()});
    EXPECT_EQ(picture.width(), 64u);
    EXPECT_EQ(picture.height(), 48u);
    EXPECT_TRUE(std::equal(picture.rgb().begin(), picture.rgb().end(), alone.rgb().begin(),
                           alone.rgb().end()));
    EXPECT_GT(sumOf(picture.rgb()), 0u);
    EXPECT_THROW(picture.convert(Frame()), Error);
    EXPECT_TRUE(picture.empty());
}

TEST(FrameTest, GoesBackWhenItGoes)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->deliverFrames(1);
    {
        Frame const frame = stream.next(5s);
        ASSERT_TRUE(frame);
        EXPECT_EQ(device->accounting().queuedBuffers, 3);
    }
    EXPECT_EQ(device->accounting().queuedBuffers, 4);
}

TEST(FrameTest, GoesBackOnceHoweverItIsMoved)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->deliverFrames(2);
    Frame first = stream.next(5s);
    Frame second = std::move(first);
    EXPECT_FALSE(first);
    Frame third = stream.next(5s);
    device->clearLog();
    third = std::move(second);
    EXPECT_EQ(third.number(), 0u);
    EXPECT_EQ(device->countOf(VIDIOC_QBUF), 1u);
    Frame& itself = third;
    third = std::move(itself);
    EXPECT_TRUE(third);
    third.release();
    third.release();
    EXPECT_FALSE(third);
    EXPECT_EQ(device->countOf(VIDIOC_QBUF), 2u);
}

TEST(FrameTest, KeepsItsMemoryWhenStreamAndCameraAreGone)
{
    StreamedCamera device;
    {
        Frame const frame = orphan(device);
        ASSERT_TRUE(frame);
        EXPECT_GT(sumOf(frame.bytes()), 0u);
        EXPECT_EQ(frame.selection().text(), "YUYV 64x48@30");
        EXPECT_FALSE(device->accounting().streaming);
        EXPECT_EQ(device->accounting().liveMappings, 4);
        EXPECT_EQ(device->accounting().openDescriptors, 1);
    }
    EXPECT_TRUE(device->accounting().nothingHeld());
}

TEST(FrameTest, KeepsItsMemoryWhenTheCameraIsUnplugged)
{
    StreamedCamera device;
    Camera camera = device.open();
    Stream stream = camera.stream();
    Frame const frame = stream.next(5s);
    unsigned long const sum = sumOf(frame.bytes());
    device.unplug();
    ASSERT_TRUE(await([&] { return stream.state() == StreamState::Unplugged; }));
    EXPECT_EQ(sumOf(frame.bytes()), sum);
}

TEST(FrameTest, IsHeldAsLongAsOneLikes)
{
    StreamedCamera device;
    std::vector<Frame> held;
    {
        Camera camera = device.open();
        Stream stream = camera.stream();
        for (int i = 0; i < 4; ++i) {
            held.push_back(stream.next(5s));
        }
        EXPECT_FALSE(stream.next(20ms)) << "the driver has no buffer left";
        stream.stop();
    }
    EXPECT_TRUE(held.back());
    held.clear();
    EXPECT_TRUE(device->accounting().nothingHeld());
}

TEST(FrameTest, GoesBackOnAnyThread)
{
    StreamedCamera device;
    Camera camera = device.open();
    Stream stream = camera.stream();
    for (int i = 0; i < 50; ++i) {
        Frame frame = stream.next(5s);
        ASSERT_TRUE(frame);
        std::thread([moved = std::move(frame)] { EXPECT_GT(sumOf(moved.bytes()), 0u); }).join();
    }
}

TEST(FrameTest, GoesBackOnAnyThreadWhileTheStreamEnds)
{
    StreamedCamera device;
    for (int round = 0; round < 20; ++round) {
        std::vector<Frame> frames;
        std::vector<std::thread> threads;
        {
            Camera camera = device.open();
            Stream stream = camera.stream();
            for (int i = 0; i < 3; ++i) {
                threads.emplace_back([moved = stream.next(5s)]() mutable { moved.release(); });
            }
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        threads.clear();
        EXPECT_TRUE(device->accounting().nothingHeld());
    }
}

TEST(FrameTest, HasNoMoreBytesThanItsBuffer)
{
    StreamedCamera device(smallCamera().withOverstatedFrame(0, 0xFFFFFFFF));
    Camera camera = device.open();
    Stream stream = camera.stream();
    Frame const frame = stream.next(5s);
    EXPECT_EQ(frame.number(), 0u);
    EXPECT_EQ(frame.bytes().size(), smallImageSize);
    EXPECT_GT(sumOf(frame.bytes()), 0u);
}

TEST(FrameTest, TellsDamagedAndShortOnes)
{
    StreamedCamera device(
        StreamedCamera::onDemand().withCorruptedFrame(1).withShortFrame(2, smallImageSize - 1));
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->deliverFrames(3);
    Frame const good = stream.next(5s);
    EXPECT_FALSE(good.isDamaged() || good.isShort());
    Frame const damaged = stream.next(5s);
    EXPECT_TRUE(damaged.isDamaged());
    EXPECT_FALSE(damaged.isShort());
    Frame const cut = stream.next(5s);
    EXPECT_FALSE(cut.isDamaged());
    EXPECT_TRUE(cut.isShort());
    EXPECT_EQ(cut.bytes().size(), smallImageSize - 1);
}

TEST(FrameTest, IsNotShortForBeingCompressed)
{
    auto const compressed = VirtualCamera::aCamera()
                                .withFormat("MJPG", "", V4L2_FMT_FLAG_COMPRESSED)
                                .withSize(64, 48)
                                .withInterval(1, 30)
                                .paced(VirtualCamera::Pace::Immediate);
    StreamedCamera device(compressed);
    Camera camera = device.open();
    Stream stream = camera.stream();
    Frame const frame = stream.next(5s);
    ASSERT_TRUE(frame);
    EXPECT_FALSE(frame.isShort());
    EXPECT_EQ(frame.bytesPerLine(), 0u);
}

TEST(FrameTest, TellsWhatWasLostBeforeIt)
{
    StreamedCamera device(StreamedCamera::onDemand().withMissingFrame(1).withMissingFrame(2));
    Camera camera = device.open();
    Stream stream = camera.stream();
    device->deliverFrames(4);
    EXPECT_EQ(stream.next(5s).lostBefore(), 0u);
    Frame const frame = stream.next(5s);
    EXPECT_EQ(frame.number(), 3u);
    EXPECT_EQ(frame.lostBefore(), 2u);
    EXPECT_EQ(stream.statistics().lost, 2u);
}

TEST(FrameTest, TellsWhatWasLostBeforeThoseThatNobodyTook)
{
    StreamedCamera device(StreamedCamera::onDemand().withMissingFrame(1));
    Camera camera = device.open();
    Stream stream = camera.stream(newest);
    device->deliverFrames(2);
    for (unsigned int count = 1; count <= 3; ++count) {
        device->deliverFrames(1);
        ASSERT_TRUE(await([&] { return stream.statistics().received >= count; }));
    }
    ASSERT_TRUE(await([&] { return stream.statistics().thrownAway == 3; }));
    EXPECT_EQ(stream.next(0ms).lostBefore(), 1u);
}

TEST(FrameTest, IsCapturedOnTheSteadyClock)
{
    StreamedCamera device(StreamedCamera::onDemand());
    Camera camera = device.open();
    Stream stream = camera.stream();
    auto const before = Frame::Clock::now();
    device->deliverFrames(1);
    auto const after = Frame::Clock::now();
    Frame const frame = stream.next(5s);
    EXPECT_GE(frame.captured(), before - 1us) << "stamps are cut to microseconds";
    EXPECT_LE(frame.captured(), after);
}

} // namespace
