// SPDX-License-Identifier: MIT
#include "Client.h"

#include <gtest/gtest.h>

#include <sys/select.h>

#include <thread>

namespace
{

using namespace VirtualCamera;

constexpr int atOnce = 0;
constexpr int longEnough = 5000;

CameraBuilder pacedCamera(unsigned framesPerSecond = 50)
{
    return aCamera().withFormat("GREY").withSize(64, 48).withInterval(1, framesPerSecond);
}

TEST(WaitTest, IsReadableWhenNotStreaming)
{
    auto const camera = pacedCamera().install();
    Client client;
    EXPECT_TRUE(client.readable(atOnce));
    ASSERT_EQ(client.request(1), 0);
    EXPECT_TRUE(client.readable(atOnce));
}

TEST(WaitTest, IsReadableWhenStreamingWithNothingEverQueued)
{
    auto const camera = pacedCamera().install();
    Client client;
    ASSERT_EQ(client.request(1), 0);
    ASSERT_EQ(client.stream(true), 0);
    EXPECT_TRUE(client.readable(atOnce));
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), EAGAIN);
}

TEST(WaitTest, BecomesReadableWhenAFrameIsDue)
{
    auto const camera = pacedCamera(1).install();
    Client client;
    auto const start = std::chrono::steady_clock::now();
    ASSERT_EQ(client.start(2), 0);
    EXPECT_FALSE(client.readable(atOnce));
    ASSERT_TRUE(client.readable(longEnough));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), 0);
    EXPECT_EQ(client.dequeue(buffer), EAGAIN);
}

TEST(WaitTest, StaysSilentWithoutAQueuedBuffer)
{
    auto const camera = pacedCamera().install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    ASSERT_TRUE(client.readable(longEnough));
    v4l2_buffer buffer{};
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_FALSE(client.readable(100));
    ASSERT_EQ(client.queue(0), 0);
    ASSERT_TRUE(client.readable(longEnough));
    ASSERT_EQ(client.dequeue(buffer), 0);
    EXPECT_GE(buffer.sequence, 5u) << "frames went on while no buffer was queued";
}

TEST(WaitTest, KeepsTheIntervalBetweenTimeStamps)
{
    auto const camera = pacedCamera().install();
    Client client;
    ASSERT_EQ(client.start(4), 0);
    v4l2_buffer buffers[3]{};
    for (v4l2_buffer& buffer : buffers) {
        ASSERT_TRUE(client.readable(longEnough));
        ASSERT_EQ(client.dequeue(buffer), 0);
    }
    auto const microseconds = [](timeval const& time) {
        return time.tv_sec * 1000000 + time.tv_usec;
    };
    for (int place = 1; place < 3; ++place) {
        EXPECT_NEAR(static_cast<double>(microseconds(buffers[place].timestamp) -
                                        microseconds(buffers[place - 1].timestamp)),
                    20000.0 * (buffers[place].sequence - buffers[place - 1].sequence), 1.0);
    }
}

TEST(WaitTest, WorksWithSelect)
{
    auto const camera = pacedCamera().install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    fd_set set;
    FD_ZERO(&set);
    FD_SET(client.descriptor(), &set);
    timeval timeout{5, 0};
    EXPECT_EQ(select(client.descriptor() + 1, &set, nullptr, nullptr, &timeout), 1);
}

TEST(WaitTest, WakesAnotherThreadsWaitOnUnplug)
{
    auto camera = pacedCamera().withoutFrames().install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    std::thread unplugger([&camera] { camera.unplug(); });
    EXPECT_TRUE(client.readable(longEnough));
    unplugger.join();
    v4l2_buffer buffer{};
    EXPECT_EQ(client.dequeue(buffer), ENODEV);
    EXPECT_EQ(client.stream(false), ENODEV);
    EXPECT_EQ(client.request(0), ENODEV);
    EXPECT_EQ(client.unmapAll(), 0);
    EXPECT_EQ(client.close(), 0);
    EXPECT_TRUE(camera.accounting().nothingHeld());
    EXPECT_EQ(Client().openError(), ENOENT);
}

TEST(WaitTest, WakesAnotherThreadsWaitWhenStreamingStops)
{
    auto const camera = pacedCamera().withoutFrames().install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    std::thread stopper([&client] { client.stream(false); });
    EXPECT_TRUE(client.readable(longEnough));
    stopper.join();
}

TEST(WaitTest, WakesWhenTheDeviceVanishesEvenWithoutAQueuedBuffer)
{
    auto const camera = pacedCamera(5).vanishingAtFrame(2).install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    ASSERT_TRUE(client.readable(longEnough));
    v4l2_buffer buffer{};
    ASSERT_EQ(client.dequeue(buffer), 0);
    ASSERT_TRUE(client.readable(longEnough));
    EXPECT_EQ(client.dequeue(buffer), ENODEV);
}

TEST(WaitTest, DeliversImmediatelyOnRequest)
{
    auto const camera = smallCamera().install();
    Client client;
    ASSERT_EQ(client.start(1), 0);
    v4l2_buffer buffer{};
    for (int frame = 0; frame < 100; ++frame) {
        ASSERT_TRUE(client.readable(atOnce));
        ASSERT_EQ(client.dequeue(buffer), 0);
        EXPECT_FALSE(client.readable(atOnce));
        ASSERT_EQ(client.queue(0), 0);
    }
    EXPECT_EQ(buffer.sequence, 99u);
}

} // namespace
